// Events and user events.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>

#include <vorn/mero/opencl/forward.hpp>
#include <vorn/mero/opencl/types.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// One enqueued command, or a user event.
class VORN_MERO_EXPORT event : public mero::internal::handle<internal::event_kind> {
public:
    using handle::handle;

    /// The state of the command; never throws for a failed one.
    event_execution_status execution_status();

    /// Throws the exception of the status that the command failed with; returns for any other command, a running one
    /// too.
    void check();

    /// The status that the command failed with, otherwise `success`, for a running command too.
    common::error_code error_code();

    /// The queue of the command. Throws `std::logic_error` for a user event, which has none.
#if VORN_MERO_OPENCL < 200
    command_queue get_command_queue() const;
#endif
#if VORN_MERO_OPENCL >= 200
    host_command_queue get_command_queue() const;
#endif

    /// OpenCL's number of the command (`cl_command_type`).
    std::uint32_t get_command_type() const;

    // When the command was enqueued, submitted to the device, started and ended, in nanoseconds of the device. Throw
    // `common::profiling_info_not_available` for a queue without profiling or a command that is not complete.
    std::uint64_t profile_command_queued() const;
    std::uint64_t profile_command_submit() const;
    std::uint64_t profile_command_start() const;
    std::uint64_t profile_command_end() const;

#if VORN_MERO_OPENCL >= 110
    /// The context of the event, on the same call handle. Since OpenCL 1.1.
    context get_context() const;

    /// False for a user event. Since OpenCL 1.1.
    bool has_associated_command_queue() const;

    /// Has `fn` called, with the raw event and the state, when the command reaches a state or fails; at once when it
    /// has already. `fn` runs on a thread of OpenCL's choice, which may be one that waits for the event; it must not
    /// throw, and must not wait for commands. Since OpenCL 1.1.
    void set_callback(commmand_exec_callback_type type, void (*fn)(_nq_cl_event*, int, void*), void* user_data);
#endif

#if VORN_MERO_OPENCL >= 200
    /// When the command and all kernels that it enqueued had ended. Since OpenCL 2.0.
    std::uint64_t profile_command_complete() const;
#endif
};

#if VORN_MERO_OPENCL >= 110
/// The side of a user event that completes it; move-only, so that exactly one object can. Made by
/// `context::create_user_event`.
///
/// OpenCL lets the status be set once. A promise that is destroyed before leaves its event pending, and what waits for
/// the event never starts. Since OpenCL 1.1.
class VORN_MERO_EXPORT event_promise : public mero::internal::handle<internal::event_promise_kind> {
public:
    /// Adopts a reference that the caller holds; makes no call.
    event_promise(nq::call_handle const& call_handle, _nq_cl_event* raw, internal::take_ownership tag) noexcept
        : handle(call_handle, raw, tag) {}
    event_promise(event_promise&&) noexcept = default;
    event_promise& operator=(event_promise&&) noexcept = default;

    /// Completes the event; what waits for it starts.
    void set_status_success();

    /// Fails the event with one of the negative statuses.
    void set_status_failure(common::error_code code);

    /// The event, for wait lists and callbacks. It may outlive the promise.
    event get_event() const;
};
#endif

namespace raw {

/// For wait lists; null for an object that was moved from.
VORN_MERO_EXPORT _nq_cl_event* get_raw_event(event const& object) noexcept;

/// The call handle that the object was made through.
VORN_MERO_EXPORT nq::call_handle const& get_call_handle(event const& object) noexcept;

/// Adds a reference that the caller has to release.
VORN_MERO_EXPORT void retain(event const& object);

/// A status other than success is thrown as `common::bad_implementation`.
VORN_MERO_EXPORT void release(event const& object);

/// OpenCL's count, which may have changed by the time that it is read.
VORN_MERO_EXPORT std::uint32_t refcount(event const& object);

/// Retains: the caller keeps its own reference.
VORN_MERO_EXPORT event create_event(nq::call_handle const& call_handle, _nq_cl_event* handle);

#if VORN_MERO_OPENCL >= 110
VORN_MERO_EXPORT _nq_cl_event* get_raw_event(event_promise const& object) noexcept;
VORN_MERO_EXPORT nq::call_handle const& get_call_handle(event_promise const& object) noexcept;
VORN_MERO_EXPORT void retain(event_promise const& object);

/// A status other than success is thrown as `common::bad_implementation`.
VORN_MERO_EXPORT void release(event_promise const& object);
VORN_MERO_EXPORT std::uint32_t refcount(event_promise const& object);
#endif

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE
