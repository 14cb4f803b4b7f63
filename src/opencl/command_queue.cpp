#include "opencl/perform.hpp"

#if VORN_MERO_OPENCL < 200
template <>
struct vorn::mero::internal::ownership<vorn::mero::VORN_MERO_NAMESPACE::internal::command_queue_kind>
    : counted<nq::capability::VORN_MERO_NAMESPACE, nq::block::clRetainCommandQueue, nq::block::clReleaseCommandQueue> {
    static constexpr char const* destructor_message = "Exception caught in command_queue::~command_queue().";
};

template class vorn::mero::internal::owner<vorn::mero::VORN_MERO_NAMESPACE::internal::command_queue_kind>;
#else
template <>
struct vorn::mero::internal::ownership<vorn::mero::VORN_MERO_NAMESPACE::internal::host_command_queue_kind>
    : counted<nq::capability::VORN_MERO_NAMESPACE, nq::block::clRetainCommandQueue, nq::block::clReleaseCommandQueue> {
    static constexpr char const* destructor_message = "Exception caught in host_command_queue::~host_command_queue().";
};

template <>
struct vorn::mero::internal::ownership<vorn::mero::VORN_MERO_NAMESPACE::internal::device_command_queue_kind>
    : counted<nq::capability::VORN_MERO_NAMESPACE, nq::block::clRetainCommandQueue, nq::block::clReleaseCommandQueue> {
    static constexpr char const* destructor_message =
        "Exception caught in device_command_queue::~device_command_queue().";
};

template class vorn::mero::internal::owner<vorn::mero::VORN_MERO_NAMESPACE::internal::host_command_queue_kind>;
template class vorn::mero::internal::owner<vorn::mero::VORN_MERO_NAMESPACE::internal::device_command_queue_kind>;
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

using namespace detail;

using internal::host_queue;

namespace {

template <class Kind>
query<&block::clGetCommandQueueInfo::command_queue> ask_queue(owner<Kind> const& object, std::uint32_t name) {
    return {call_handle_of(object), name, raw_of(object)};
}

template <class Kind>
bool has_property(owner<Kind> const& object, std::uint64_t property) {
    return (read_scalar<std::uint64_t>(ask_queue(object, cl::queue_properties)) & property) != 0;
}

// Performs an entry point whose block has only a queue and a status.
template <class Block>
void apply(host_queue const& queue) {
    Block block;
    block.command_queue = raw_of(queue);
    perform(call_handle_of(queue), block);
}

// The event that `enqueue(address)` makes. It is written where it is to stay; a failing call may have written anything.
template <class Enqueue>
[[gnu::always_inline]] inline event make_event(host_queue const& queue, Enqueue enqueue) {
    event made(call_handle_of(queue), nullptr, internal::take_ownership{});
    struct guard {
        ~guard() {
            if (!is_written) {
                *place = nullptr;
            }
        }

        _nq_cl_event** place;
        bool is_written = false;
    } call{owner_access::place(made)};
    enqueue(call.place);
    call.is_written = true;
    return made;
}

} // namespace

event host_queue::enqueue_command(command const& c) { return enqueue_command(c, 0, nullptr); }

event host_queue::enqueue_command(command const& c, unsigned int num_events, _nq_cl_event* const* wait_list) {
    return make_event(
        *this, [&](_nq_cl_event** made) { c.call(call_handle_of(*this), raw_of(*this), num_events, wait_list, made); });
}

void host_queue::enqueue_command_without_event(command const& c) {
    c.call(call_handle_of(*this), raw_of(*this), 0, nullptr, nullptr);
}

void host_queue::enqueue_command_without_event(command const& c, unsigned int num_events,
                                               _nq_cl_event* const* wait_list) {
    c.call(call_handle_of(*this), raw_of(*this), num_events, wait_list, nullptr);
}

void host_queue::flush() { apply<block::clFlush>(*this); }
void host_queue::finish() { apply<block::clFinish>(*this); }
context host_queue::get_context() const { return read_object<context>(*this, ask_queue(*this, cl::queue_context)); }
device host_queue::get_device() const { return read_object<device>(*this, ask_queue(*this, cl::queue_device)); }

bool host_queue::out_of_order_execution_enabled() const {
    return has_property(*this, cl::queue_out_of_order_exec_mode_enable);
}

bool host_queue::profiling_enabled() const { return has_property(*this, cl::queue_profiling_enable); }

#if VORN_MERO_OPENCL < 120
event host_queue::enqueue_marker() {
    return make_event(*this, [&](_nq_cl_event** made) {
        block::clEnqueueMarker block;
        block.command_queue = raw_of(*this);
        block.event = made;
        perform(call_handle_of(*this), block);
    });
}

void host_queue::barrier() { apply<block::clEnqueueBarrier>(*this); }
#endif

#if VORN_MERO_OPENCL < 110
void host_queue::enqueue_wait_for_events(unsigned int num_events, _nq_cl_event* const* wait_list) {
    block::clEnqueueWaitForEvents block;
    block.command_queue = raw_of(*this);
    block.event_list = wait_list;
    block.num_events = num_events;
    perform(call_handle_of(*this), block);
}

namespace {

void enable_property(host_queue const& queue, std::uint64_t property) {
    block::clSetCommandQueueProperty block;
    block.command_queue = raw_of(queue);
    block.properties = property;
    block.old_properties = nullptr;
    block.enable = 1;
    perform(call_handle_of(queue), block);
}

} // namespace

void host_queue::enable_out_of_order_execution() { enable_property(*this, cl::queue_out_of_order_exec_mode_enable); }
void host_queue::enable_profiling() { enable_property(*this, cl::queue_profiling_enable); }
#endif

#if VORN_MERO_OPENCL >= 120
namespace {

template <class Block>
event enqueue_wait(host_queue const& queue, unsigned int num_events, _nq_cl_event* const* wait_list) {
    return make_event(queue, [&](_nq_cl_event** made) {
        Block block;
        block.command_queue = raw_of(queue);
        block.event_wait_list = wait_list;
        block.event = made;
        block.num_events_in_wait_list = num_events;
        perform(call_handle_of(queue), block);
    });
}

} // namespace

event host_queue::enqueue_marker(unsigned int num_events, _nq_cl_event* const* wait_list) {
    return enqueue_wait<block::clEnqueueMarkerWithWaitList>(*this, num_events, wait_list);
}

event host_queue::barrier(unsigned int num_events, _nq_cl_event* const* wait_list) {
    return enqueue_wait<block::clEnqueueBarrierWithWaitList>(*this, num_events, wait_list);
}
#endif

#if VORN_MERO_OPENCL >= 200
context device_command_queue::get_context() const {
    return read_object<context>(*this, ask_queue(*this, cl::queue_context));
}
bool device_command_queue::profiling_enabled() const { return has_property(*this, cl::queue_profiling_enable); }
bool device_command_queue::is_default() const { return has_property(*this, cl::queue_on_device_default); }

std::uint32_t device_command_queue::device_queue_size() const {
    return read_scalar<std::uint32_t>(ask_queue(*this, cl::queue_size));
}
#endif

#if VORN_MERO_OPENCL >= 210
device_command_queue host_command_queue::get_default_device_command_queue() const {
    return read_object<device_command_queue>(*this, ask_queue(*this, cl::queue_device_default));
}

device_command_queue device_command_queue::get_default_device_command_queue() const {
    return read_object<device_command_queue>(*this, ask_queue(*this, cl::queue_device_default));
}
#endif

namespace raw {

_nq_cl_command_queue* get_raw_command_queue(host_queue const& object) noexcept { return raw_of(object); }
nq::call_handle const& get_call_handle(host_queue const& object) noexcept { return call_handle_of(object); }
void retain(host_queue const& object) { mero::internal::retain(object); }
void release(host_queue const& object) { mero::internal::release(object); }

std::uint32_t refcount(host_queue const& object) {
    return read_scalar<std::uint32_t>(ask_queue(object, cl::queue_reference_count));
}

#if VORN_MERO_OPENCL < 200
command_queue create_command_queue(nq::call_handle const& call_handle, _nq_cl_command_queue* handle) {
    return {call_handle, handle, internal::create_reference{}};
}
#else
host_command_queue create_host_command_queue(nq::call_handle const& call_handle, _nq_cl_command_queue* handle) {
    return {call_handle, handle, internal::create_reference{}};
}

_nq_cl_command_queue* get_raw_command_queue(device_command_queue const& object) noexcept { return raw_of(object); }
nq::call_handle const& get_call_handle(device_command_queue const& object) noexcept { return call_handle_of(object); }
void retain(device_command_queue const& object) { mero::internal::retain(object); }
void release(device_command_queue const& object) { mero::internal::release(object); }

std::uint32_t refcount(device_command_queue const& object) {
    return read_scalar<std::uint32_t>(ask_queue(object, cl::queue_reference_count));
}

device_command_queue create_device_command_queue(nq::call_handle const& call_handle, _nq_cl_command_queue* handle) {
    return {call_handle, handle, internal::create_reference{}};
}
#endif

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE
