#include "opencl/perform.hpp"

#include <algorithm>
#include <stdexcept>

template <>
struct vorn::mero::internal::ownership<vorn::mero::VORN_MERO_NAMESPACE::internal::event_kind>
    : counted<nq::capability::VORN_MERO_NAMESPACE, nq::block::clRetainEvent, nq::block::clReleaseEvent> {
    static constexpr char const* destructor_message = "Exception caught in event::~event().";
};

template class vorn::mero::internal::owner<vorn::mero::VORN_MERO_NAMESPACE::internal::event_kind>;

#if VORN_MERO_OPENCL >= 110
template <>
struct vorn::mero::internal::ownership<vorn::mero::VORN_MERO_NAMESPACE::internal::event_promise_kind>
    : counted<nq::capability::VORN_MERO_NAMESPACE, nq::block::clRetainEvent, nq::block::clReleaseEvent> {
    static constexpr char const* destructor_message = "Exception caught in event_promise::~event_promise().";
};

template class vorn::mero::internal::owner<vorn::mero::VORN_MERO_NAMESPACE::internal::event_promise_kind>;
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

using namespace detail;

namespace {

template <class Kind>
query<&block::clGetEventInfo::event> ask_event(owner<Kind> const& object, std::uint32_t name) {
    return {call_handle_of(object), name, raw_of(object)};
}

std::int32_t read_status(event const& object) {
    return read_scalar<std::int32_t>(ask_event(object, cl::event_command_execution_status));
}

std::uint64_t read_profile(event const& object, std::uint32_t name) {
    return read_scalar<std::uint64_t>(
        query<&block::clGetEventProfilingInfo::event>(call_handle_of(object), name, raw_of(object)));
}

} // namespace

event_execution_status event::execution_status() {
    return static_cast<event_execution_status>(std::max(read_status(*this), -1));
}

void event::check() { mero::internal::check_error(std::min(read_status(*this), 0)); }

common::error_code event::error_code() { return static_cast<common::error_code>(std::min(read_status(*this), 0)); }

std::uint32_t event::get_command_type() const {
    return read_scalar<std::uint32_t>(ask_event(*this, cl::event_command_type));
}

std::uint64_t event::profile_command_queued() const { return read_profile(*this, cl::profiling_command_queued); }
std::uint64_t event::profile_command_submit() const { return read_profile(*this, cl::profiling_command_submit); }
std::uint64_t event::profile_command_start() const { return read_profile(*this, cl::profiling_command_start); }
std::uint64_t event::profile_command_end() const { return read_profile(*this, cl::profiling_command_end); }

internal::host_queue event::get_command_queue() const {
    auto* const queue = read_scalar<_nq_cl_command_queue*>(ask_event(*this, cl::event_command_queue));
    if (queue == nullptr) {
        throw std::logic_error("Obtained a NULL command-queue. You must check that there is an associated "
                               "command-queue before you call event::get_command_queue()");
    }
    return {call_handle_of(*this), queue, internal::create_reference{}};
}

#if VORN_MERO_OPENCL >= 110
context event::get_context() const { return read_object<context>(*this, ask_event(*this, cl::event_context)); }

bool event::has_associated_command_queue() const {
    return read_scalar<_nq_cl_command_queue*>(ask_event(*this, cl::event_command_queue)) != nullptr;
}

void event::set_callback(commmand_exec_callback_type type, void (*fn)(_nq_cl_event*, int, void*), void* user_data) {
    block::clSetEventCallback block;
    block.event = raw_of(*this);
    block.pfn_notify = fn;
    block.user_data = user_data;
    block.command_exec_callback_type = static_cast<std::int32_t>(type);
    perform(call_handle_of(*this), block);
}

namespace {

void set_status(event_promise const& promise, std::int32_t status) {
    block::clSetUserEventStatus block;
    block.event = raw_of(promise);
    block.execution_status = status;
    perform(call_handle_of(promise), block);
}

} // namespace

void event_promise::set_status_success() { set_status(*this, 0); }

void event_promise::set_status_failure(common::error_code code) { set_status(*this, static_cast<std::int32_t>(code)); }

event event_promise::get_event() const { return {call_handle_of(*this), raw_of(*this), internal::create_reference{}}; }
#endif

#if VORN_MERO_OPENCL >= 200
std::uint64_t event::profile_command_complete() const { return read_profile(*this, cl::profiling_command_complete); }
#endif

namespace raw {

nq::call_handle const& get_call_handle(event const& object) noexcept { return call_handle_of(object); }
void retain(event const& object) { mero::internal::retain(object); }
void release(event const& object) { mero::internal::release(object); }
std::uint32_t refcount(event const& object) {
    return read_scalar<std::uint32_t>(ask_event(object, cl::event_reference_count));
}
event create_event(nq::call_handle const& call_handle, _nq_cl_event* handle) {
    return {call_handle, handle, internal::create_reference{}};
}

#if VORN_MERO_OPENCL >= 110
nq::call_handle const& get_call_handle(event_promise const& object) noexcept { return call_handle_of(object); }
void retain(event_promise const& object) { mero::internal::retain(object); }
void release(event_promise const& object) { mero::internal::release(object); }
std::uint32_t refcount(event_promise const& object) {
    return read_scalar<std::uint32_t>(ask_event(object, cl::event_reference_count));
}
#endif

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE
