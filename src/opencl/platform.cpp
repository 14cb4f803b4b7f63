#include "opencl/perform.hpp"

template <>
struct vorn::mero::internal::ownership<vorn::mero::VORN_MERO_NAMESPACE::internal::platform_kind> : uncounted {};

template class vorn::mero::internal::owner<vorn::mero::VORN_MERO_NAMESPACE::internal::platform_kind>;

namespace vorn::mero::VORN_MERO_NAMESPACE {

using namespace detail;

namespace {

query<&block::clGetPlatformInfo::platform> ask(platform const& object, std::uint32_t name) {
    return {call_handle_of(object), name, raw_of(object)};
}

} // namespace

std::string platform::name() const { return read_text(ask(*this, cl::platform_name)); }
std::string platform::vendor() const { return read_text(ask(*this, cl::platform_vendor)); }
std::string platform::version() const { return read_text(ask(*this, cl::platform_version)); }

std::vector<std::string> platform::extensions() const {
    return mero::internal::split_space(read_text(ask(*this, cl::platform_extensions)));
}

bool platform::is_full_profile() const { return read_text(ask(*this, cl::platform_profile)) == "FULL_PROFILE"; }
bool platform::is_embedded_profile() const { return read_text(ask(*this, cl::platform_profile)) == "EMBEDDED_PROFILE"; }

std::vector<_nq_cl_device_id*> platform::get_raw_devices() const {
    std::uint32_t count = 0;
    block::clGetDeviceIDs block{.platform = raw_of(*this), .device_type = cl::device_type_all, .num_devices = &count};
    perform(call_handle_of(*this), block);
    std::vector<_nq_cl_device_id*> devices(count);
    block.num_entries = count;
    block.devices = devices.data();
    block.num_devices = nullptr;
    perform(call_handle_of(*this), block);
    return devices;
}

#if VORN_MERO_OPENCL < 120
void* get_extension_function_address(nq::call_handle const& call_handle, std::string const& name) {
    block::clGetExtensionFunctionAddress block{.func_name = name.c_str(), .result = nullptr};
    send(call_handle, block);
    return block.result;
}
#else
void* get_extension_function_address_for_platform(nq::call_handle const& call_handle, platform const& owner,
                                                  std::string const& name) {
    block::clGetExtensionFunctionAddressForPlatform block{
        .platform = raw_of(owner), .func_name = name.c_str(), .result = nullptr};
    send(call_handle, block);
    return block.result;
}
#endif

#if VORN_MERO_OPENCL >= 210
std::uint64_t platform::host_timer_resolution() const {
    return read_scalar<std::uint64_t>(ask(*this, cl::platform_host_timer_resolution));
}
#endif

namespace raw {

_nq_cl_platform_id* get_raw_platform_id(platform const& object) noexcept { return raw_of(object); }
nq::call_handle const& get_call_handle(platform const& object) noexcept { return call_handle_of(object); }
void retain(platform const&) {}
void release(platform const&) {}
std::uint32_t refcount(platform const&) { return 1; }

platform create_platform(nq::call_handle const& call_handle, _nq_cl_platform_id* handle) {
    return {call_handle, handle, internal::create_reference{}};
}

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE
