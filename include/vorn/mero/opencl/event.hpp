// Events and user events.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>

#include <vorn/mero/opencl/forward.hpp>
#include <vorn/mero/opencl/types.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// One enqueued command, or a user event: made by a queue or by `event_promise::get_event`.
///
///     cl::event done = queue.enqueue_command(cl::read_buffer(buffer, false, 0, bytes, memory));
///     _nq_cl_event* const list[] = {cl::raw::get_raw_event(done)};
///     context.wait_for_events(1, list);
///     double const seconds = 1e-9 * double(done.profile_command_end() - done.profile_command_start());
///
/// It may be dropped before the command has run, which goes on all the same. Queries make two calls; any number of
/// threads may use one event.
class VORN_MERO_EXPORT event : public mero::internal::handle<internal::event_kind> {
public:
    using handle::handle;

    /// The state of the command; never throws for a failed one. It does not wait, and does not make the command run:
    /// flush the queue before asking again and again.
    event_execution_status execution_status();

    /// Throws the exception of the status that the command failed with; returns for any other command, a running one
    /// too: wait first. Some implementations report a command whose wait list failed as complete;
    /// `context::wait_for_events` does throw then.
    void check();

    /// The status that the command failed with, otherwise `success`, for a running command too.
    common::error_code error_code();

#if VORN_MERO_OPENCL < 200
    /// The queue of the command. Throws `std::logic_error` for a user event, which has none. Three calls. Until
    /// OpenCL 1.2.
    command_queue get_command_queue() const;
#endif
#if VORN_MERO_OPENCL >= 200
    /// The queue of the command. Throws `std::logic_error` for a user event, which has none. Three calls. Since
    /// OpenCL 2.0.
    host_command_queue get_command_queue() const;
#endif

    /// OpenCL's number of the command (`cl_command_type`), 0x11F0 for a kernel launch and so on.
    std::uint32_t get_command_type() const;

    // When the command was enqueued, submitted to the device, started and ended, in nanoseconds of the device's clock,
    // of any origin: compare times of one device only. Throw `common::profiling_info_not_available` for a queue without
    // profiling, a user event, or a command that is not complete, which right after a blocking write it may not be.
    std::uint64_t profile_command_queued() const;
    std::uint64_t profile_command_submit() const;
    std::uint64_t profile_command_start() const;
    std::uint64_t profile_command_end() const;

#if VORN_MERO_OPENCL >= 110
    /// The context of the event, on the same call handle. Since OpenCL 1.1.
    context get_context() const;

    /// False for a user event. Since OpenCL 1.1.
    bool has_associated_command_queue() const;

    /// Has `fn` called with the raw event, its state (`type`, or a negative status when the command failed) and
    /// `user_data`, when the command reaches the state or fails; at once when it has already. `user_data` and what it
    /// points to must live until then.
    ///
    /// `fn` runs on a thread of OpenCL's choice, which may be one of the program that waits for the event, or flushes;
    /// it must not throw, and must not wait for commands. It may run before this returns. Not every implementation
    /// calls it for a command that fails: to know that one has ended, wait for it. Since OpenCL 1.1.
    void set_callback(commmand_exec_callback_type type, void (*fn)(_nq_cl_event*, int, void*), void* user_data);
#endif

#if VORN_MERO_OPENCL >= 200
    /// When the command and all kernels that it enqueued had ended; otherwise as `profile_command_end`. Since
    /// OpenCL 2.0.
    std::uint64_t profile_command_complete() const;
#endif
};

#if VORN_MERO_OPENCL >= 110
/// The side of a user event that completes it; move-only, so that exactly one object can. Made by
/// `context::create_user_event`.
///
///     cl::event_promise ready = context.create_user_event();
///     cl::event const gate = ready.get_event();
///     _nq_cl_event* const list[] = {cl::raw::get_raw_event(gate)};
///     queue.enqueue_command(command, 1, list); // waits, and so must not block
///     ready.set_status_success();
///
/// OpenCL lets the status be set once; a second time is `common::invalid_operation`. A promise that is destroyed before
/// leaves its event pending, and what waits for the event never starts, so that `finish` never returns. Oclgrind runs
/// commands inside `flush`, `finish` and the queue's release, and none of these returns there before the promise is
/// kept. Since OpenCL 1.1.
class VORN_MERO_EXPORT event_promise : public mero::internal::handle<internal::event_promise_kind> {
public:
    /// Adopts a reference that the caller holds; makes no call.
    event_promise(nq::call_handle const& call_handle, _nq_cl_event* raw, internal::take_ownership tag) noexcept
        : handle(call_handle, raw, tag) {}
    event_promise(event_promise&&) noexcept = default;
    event_promise& operator=(event_promise&&) noexcept = default;

    /// Completes the event; what waits for it starts. Callbacks of the event may run within this call.
    void set_status_success();

    /// Fails the event with one of the negative statuses; commands that wait for it fail as well and do not run.
    /// `error_code::success` completes it.
    void set_status_failure(common::error_code code);

    /// The event, for wait lists and callbacks. It may outlive the promise. One call, to retain.
    event get_event() const;
};
#endif

namespace raw {

/// For wait lists; null for an object that was moved from. Valid as long as the object or another reference lives.
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
// The same for promises, of which there is no `create`: they are not shared.
VORN_MERO_EXPORT _nq_cl_event* get_raw_event(event_promise const& object) noexcept;
VORN_MERO_EXPORT nq::call_handle const& get_call_handle(event_promise const& object) noexcept;
VORN_MERO_EXPORT void retain(event_promise const& object);

/// A status other than success is thrown as `common::bad_implementation`.
VORN_MERO_EXPORT void release(event_promise const& object);
VORN_MERO_EXPORT std::uint32_t refcount(event_promise const& object);
#endif

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE
