#include "opencl/perform.hpp"

#include <stdexcept>

#if VORN_MERO_OPENCL < 120
template <>
struct vorn::mero::internal::ownership<vorn::mero::VORN_MERO_NAMESPACE::internal::device_kind> : uncounted {};
#else
template <>
struct vorn::mero::internal::ownership<vorn::mero::VORN_MERO_NAMESPACE::internal::device_kind>
    : counted<nq::capability::VORN_MERO_NAMESPACE, nq::block::clRetainDevice, nq::block::clReleaseDevice> {
    static constexpr char const* destructor_message = "Exception caught in device::~device().";
};
#endif

template class vorn::mero::internal::owner<vorn::mero::VORN_MERO_NAMESPACE::internal::device_kind>;

namespace vorn::mero::VORN_MERO_NAMESPACE {

using namespace detail;

std::string device::name() const { return read_text(ask(*this, cl::device_name)); }
std::string device::vendor() const { return read_text(ask(*this, cl::device_vendor)); }
std::string device::driver_version() const { return read_text(ask(*this, cl::driver_version)); }
std::string device::device_version() const { return read_text(ask(*this, cl::device_version)); }

std::vector<std::string> device::extensions() const {
    return mero::internal::split_space(read_text(ask(*this, cl::device_extensions)));
}

platform device::get_platform() const { return read_object<platform>(*this, ask(*this, cl::device_platform)); }

bool device::is_embedded_profile() const { return read_text(ask(*this, cl::device_profile)) == "EMBEDDED_PROFILE"; }
bool device::is_full_profile() const { return !is_embedded_profile(); }

std::array<std::size_t, 3> device::max_work_item_sizes() const {
    return read_sizes(ask(*this, cl::device_max_work_item_sizes));
}

#if VORN_MERO_OPENCL >= 120
namespace {

_nq_cl_device_id* read_parent(device const& object) {
    return read_scalar<_nq_cl_device_id*>(detail::ask(object, cl::device_parent_device));
}

std::intptr_t read_partition_scheme(device const& object) {
    return read_scalar<std::intptr_t>(detail::ask(object, cl::device_partition_properties));
}

// Asks how many sub-devices a property list makes, then makes them.
std::vector<device> partition(device& parent, std::vector<std::int64_t> const& properties) {
    std::uint32_t count = 0;
    block::clCreateSubDevices block{
        .in_device = raw_of(parent), .properties = properties.data(), .num_devices_ret = &count};
    perform(call_handle_of(parent), block);
    if (count == 0) {
        return {};
    }
    std::vector<_nq_cl_device_id*> ids(count);
    block.num_devices = count;
    block.out_devices = ids.data();
    block.num_devices_ret = nullptr;
    perform(call_handle_of(parent), block);
    return parent.safe_create_devices_from_ids(ids);
}

} // namespace

std::vector<std::string> device::built_in_kernels() const {
    return mero::internal::split_semicolon(read_text(ask(*this, cl::device_built_in_kernels)));
}

bool device::is_root_device() const { return read_parent(*this) == nullptr; }

device device::parent_device() const {
    _nq_cl_device_id* const parent = read_parent(*this);
    if (parent == nullptr) {
        throw std::logic_error("Querying for the parent of a root-level device.  You should add a check using "
                               "device::is_root_device() before calling device::parent_device().");
    }
    return {call_handle_of(*this), parent, internal::create_reference{}};
}

bool device::partition_equally_supported() const {
    return read_partition_scheme(*this) == cl::device_partition_equally;
}

bool device::partition_by_counts_supported() const {
    return read_partition_scheme(*this) == cl::device_partition_by_counts;
}

bool device::partition_affinity_domain_supported() const {
    return static_cast<std::uint64_t>(partition_supported_affinity_domains()) != 0;
}

device_affinity_domain device::partition_supported_affinity_domains() const {
    return read_scalar<device_affinity_domain>(ask(*this, cl::device_partition_affinity_domain));
}

std::vector<device_partition_property> device::partition_type() const {
    auto properties = read_vector<device_partition_property>(ask(*this, cl::device_partition_type));
    if (!properties.empty() && properties.front() == 0) {
        properties.clear();
    }
    return properties;
}

std::vector<device> device::partition_equally(unsigned int compute_units) {
    return partition(*this, {cl::device_partition_equally, compute_units, 0});
}

std::vector<device> device::partition_by_counts(std::vector<unsigned int> const& counts) {
    std::vector<std::int64_t> properties;
    properties.reserve(counts.size() + 2);
    properties.push_back(cl::device_partition_by_counts);
    for (unsigned int const count : counts) {
        if (count == 0) {
            throw std::logic_error(
                "Cannot create a device with zero compute units.  Invalid usage of device::partition_by_counts()");
        }
        properties.push_back(count);
    }
    properties.push_back(cl::device_partition_by_counts_list_end);
    return partition(*this, properties);
}

std::vector<device> device::partition_by_affinity(device_affinity_domain domain) {
    return partition(*this, {cl::device_partition_by_affinity_domain, static_cast<std::int64_t>(domain), 0});
}

std::vector<device> device::safe_create_devices_from_ids(std::vector<_nq_cl_device_id*> const& ids) {
    return adopt_all<device>(call_handle_of(*this), ids.data(), ids.size());
}
#endif

#if VORN_MERO_OPENCL >= 210
std::pair<std::uint64_t, std::uint64_t> device::get_device_and_host_timer() const {
    std::uint64_t device_time = 0;
    std::uint64_t host_time = 0;
    block::clGetDeviceAndHostTimer block{
        .device = raw_of(*this), .device_timestamp = &device_time, .host_timestamp = &host_time, .status = 0};
    perform(call_handle_of(*this), block);
    return {host_time, device_time};
}

std::uint64_t device::get_host_timer() const {
    std::uint64_t host_time = 0;
    block::clGetHostTimer block{.device = raw_of(*this), .host_timestamp = &host_time, .status = 0};
    perform(call_handle_of(*this), block);
    return host_time;
}
#endif

std::vector<device> get_all_devices() {
    return mero::internal::find_devices<device>(detail::version, get_call_handle_device);
}

device get_call_handle_device(nq::call_handle const& call_handle) {
    block::call_handle_device block{};
    send(call_handle, block);
    return {call_handle, block.result, internal::create_reference{}};
}

namespace raw {

_nq_cl_device_id* get_raw_device_id(device const& object) noexcept { return raw_of(object); }
nq::call_handle const& get_call_handle(device const& object) noexcept { return call_handle_of(object); }
void retain(device const& object) { mero::internal::retain(object); }
void release(device const& object) { mero::internal::release(object); }

#if VORN_MERO_OPENCL < 120
std::uint32_t refcount(device const&) { return 1; }
#else
std::uint32_t refcount(device const& object) {
    return read_scalar<std::uint32_t>(ask(object, cl::device_reference_count));
}
#endif

device create_device(nq::call_handle const& call_handle, _nq_cl_device_id* handle) {
    return {call_handle, handle, internal::create_reference{}};
}

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE
