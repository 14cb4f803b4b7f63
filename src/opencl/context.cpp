#include "opencl/perform.hpp"

#include <stdexcept>

// Contexts, and the factories that differ little between versions. Images are in context_images.cpp, queues in
// context_queues.cpp, programs in context_programs.cpp.

template <>
struct vorn::mero::internal::ownership<vorn::mero::VORN_MERO_NAMESPACE::internal::context_kind>
    : counted<nq::capability::VORN_MERO_NAMESPACE, nq::block::clRetainContext, nq::block::clReleaseContext> {
    static constexpr char const* destructor_message = "Exception caught in context::~context().";
};

template class vorn::mero::internal::owner<vorn::mero::VORN_MERO_NAMESPACE::internal::context_kind>;

namespace vorn::mero::VORN_MERO_NAMESPACE {

using namespace detail;

namespace {

query<&block::clGetContextInfo::context> ask(context const& object, std::uint32_t name) {
    return {call_handle_of(object), name, raw_of(object)};
}

// A context property has the layout of the word that it holds.
std::int64_t const* property_list(std::vector<context_property> const& properties) {
    return reinterpret_cast<std::int64_t const*>(data_or_null(properties));
}

} // namespace

context create_context(std::vector<context_property> const& properties, std::vector<device> const& devices,
                       void (*notify)(char const*, void const*, std::size_t, void*), void* user_data) {
    if (devices.empty()) {
        throw std::logic_error("Cannot create a context without supplying any devices!");
    }
    auto const ids = raw_handles(devices);
    block::clCreateContext block;
    block.properties = property_list(properties);
    block.num_devices = count_of(ids);
    block.devices = ids.data();
    block.pfn_notify = notify;
    block.user_data = user_data;
    return create<context>(devices.front(), block);
}

context create_context_from_type(nq::call_handle const& call_handle, std::vector<context_property> const& properties,
                                 device_type type, void (*notify)(char const*, void const*, std::size_t, void*),
                                 void* user_data) {
    block::clCreateContextFromType block;
    block.properties = property_list(properties);
    block.device_type = static_cast<std::uint64_t>(type);
    block.pfn_notify = notify;
    block.user_data = user_data;
    perform(call_handle, block);
    return {call_handle, block.result, internal::take_ownership{}};
}

std::vector<device> context::get_devices() const { return read_devices(*this, ask(*this, cl::context_devices)); }

std::vector<context_property> context::get_properties() const {
    return read_vector<context_property>(ask(*this, cl::context_properties));
}

platform context::get_platform() const {
    auto const devices = get_devices();
    if (devices.empty()) {
        throw common::bad_implementation("Context has no associated devices, this is impossible.");
    }
    return devices.front().get_platform();
}

buffer context::create_buffer(mem_flags flags, std::size_t size, void* host_ptr) {
    block::clCreateBuffer block;
    block.flags = static_cast<std::uint64_t>(flags);
    block.context = raw_of(*this);
    block.size = size;
    block.host_ptr = host_ptr;
    return create<buffer>(*this, block);
}

void context::wait_for_events(std::uint32_t count, _nq_cl_event* const* events) {
    block::clWaitForEvents block;
    block.event_list = events;
    block.num_events = count;
    perform(call_handle_of(*this), block);
}

#if VORN_MERO_OPENCL < 200
sampler context::create_sampler(bool normalized_coords, sampler_addressing_mode addressing_mode,
                                sampler_filter_mode filter_mode) {
    block::clCreateSampler block;
    block.context = raw_of(*this);
    block.normalized_coords = normalized_coords ? 1 : 0;
    block.addressing_mode = static_cast<std::uint32_t>(addressing_mode);
    block.filter_mode = static_cast<std::uint32_t>(filter_mode);
    return create<sampler>(*this, block);
}
#endif

#if VORN_MERO_OPENCL >= 110
sub_buffer context::create_sub_buffer(buffer& parent, mem_flags flags, std::size_t origin, std::size_t size) {
    nq::buffer_region const region{origin, size};
    block::clCreateSubBuffer block;
    block.flags = static_cast<std::uint64_t>(flags);
    block.buffer = raw_of(parent);
    block.buffer_create_info = &region;
    block.buffer_create_type = cl::buffer_create_type_region;
    return create<sub_buffer>(*this, block);
}

event_promise context::create_user_event() {
    block::clCreateUserEvent block;
    block.context = raw_of(*this);
    return create<event_promise>(*this, block);
}
#endif

#if VORN_MERO_OPENCL >= 200
sampler context::create_sampler(bool normalized_coords, sampler_addressing_mode addressing_mode,
                                sampler_filter_mode filter_mode) {
    std::vector<std::uint64_t> const properties{cl::sampler_normalized_coords,
                                                normalized_coords ? 1U : 0U,
                                                cl::sampler_addressing_mode,
                                                static_cast<std::uint64_t>(addressing_mode),
                                                cl::sampler_filter_mode,
                                                static_cast<std::uint64_t>(filter_mode),
                                                0};
    block::clCreateSamplerWithProperties block;
    block.context = raw_of(*this);
    block.sampler_properties = properties.data();
    return create<sampler>(*this, block);
}

pipe context::create_pipe(mem_flags flags, std::uint32_t packet_size, std::uint32_t max_packets) {
    block::clCreatePipe block;
    block.flags = static_cast<std::uint64_t>(flags);
    block.context = raw_of(*this);
    block.properties = nullptr;
    block.pipe_packet_size = packet_size;
    block.pipe_max_packets = max_packets;
    return create<pipe>(*this, block);
}

void* context::svm_allocate(svm_mem_flags flags, std::size_t size, std::size_t alignment) {
    block::clSVMAlloc block;
    block.flags = static_cast<std::uint64_t>(flags);
    block.context = raw_of(*this);
    block.size = size;
    block.alignment = static_cast<std::uint32_t>(alignment);
    block.result = nullptr;
    send(call_handle_of(*this), block);
    return block.result;
}

void context::svm_free(void* pointer) {
    block::clSVMFree block;
    block.context = raw_of(*this);
    block.svm_pointer = pointer;
    send(call_handle_of(*this), block);
}
#endif

namespace raw {

_nq_cl_context* get_raw_context(context const& object) noexcept { return raw_of(object); }
nq::call_handle const& get_call_handle(context const& object) noexcept { return call_handle_of(object); }
void retain(context const& object) { mero::internal::retain(object); }
void release(context const& object) { mero::internal::release(object); }

std::uint32_t refcount(context const& object) {
    return read_scalar<std::uint32_t>(ask(object, cl::context_reference_count));
}

context create_context(nq::call_handle const& call_handle, _nq_cl_context* handle) {
    return {call_handle, handle, internal::create_reference{}};
}

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE
