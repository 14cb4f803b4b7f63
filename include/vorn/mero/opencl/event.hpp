// Events and user events.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl.hpp>
#endif
#ifdef VORN_MERO_OPENCL

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// The event of an enqueued command, or a user event. Made by a queue or by `event_promise::get_event`.
///
///     cl::event done = queue.enqueue_command(cl::read_buffer(buffer, false, 0, bytes, memory));
///     _nq_cl_event* const list[] = {cl::raw::get_raw_event(done)};
///     context.wait_for_events(1, list);
///     double const seconds = 1e-9 * double(done.profile_command_end() - done.profile_command_start());
///
/// Destroying an event does not stop its command. Queries make two calls; those that return an object make another to
/// retain it. Thread-safe.
class VORN_MERO_EXPORT event : public mero::internal::handle<internal::event_kind> {
public:
    using handle::handle;

    /// The state of the command. A failed command does not throw. Does not wait and does not make the command run:
    /// before polling, flush the queue.
    [[nodiscard]] event_execution_status execution_status();

    /// Throws the exception of the status with which the command failed. Returns for any other command, even a running
    /// one: wait first. Some implementations report a command as complete although its wait list failed;
    /// `context::wait_for_events` throws then.
    void check();

    /// The status with which the command failed; `success` for any other command, even a running one.
    [[nodiscard]] common::error_code error_code();

    /// The queue of the command, a `command_queue`, since OpenCL 2.0 a `host_command_queue`. Throws `std::logic_error`
    /// for a user event, which has none. Three calls.
    [[nodiscard]] internal::host_queue get_command_queue() const;

    /// OpenCL's number of the command (`cl_command_type`), 0x11F0 for a kernel launch and so on.
    [[nodiscard]] std::uint32_t get_command_type() const;

    /// When the command was enqueued, in nanoseconds of the device's clock, since an unspecified start: compare times
    /// of one device only. Throws `common::profiling_info_not_available` for a queue without profiling, a user event,
    /// or a command that is not complete; right after a blocking write it may not be.
    [[nodiscard]] std::uint64_t profile_command_queued() const;
    /// When the command was submitted to the device; otherwise as `profile_command_queued`.
    [[nodiscard]] std::uint64_t profile_command_submit() const;
    /// When the command started; otherwise as `profile_command_queued`.
    [[nodiscard]] std::uint64_t profile_command_start() const;
    /// When the command ended; otherwise as `profile_command_queued`.
    [[nodiscard]] std::uint64_t profile_command_end() const;

#if VORN_MERO_OPENCL >= 110
    /// The context of the event, on the same call handle. Since OpenCL 1.1.
    [[nodiscard]] context get_context() const;

    /// Whether the event belongs to a queue; false for a user event. Since OpenCL 1.1.
    [[nodiscard]] bool has_associated_command_queue() const;

    /// Has OpenCL call `fn` when the command reaches the state `type` or fails; at once if it already has. `fn` gets
    /// the raw event, the state (`type`, or a negative status after a failure) and `user_data`, which must stay valid
    /// until then.
    ///
    /// `fn` runs on any thread, perhaps one that waits for the event or flushes, and perhaps before this returns. It
    /// must not throw and must not wait for commands. Some implementations do not call it for a command that fails or
    /// has already ended: to know the end, wait for the event. Since OpenCL 1.1.
    void set_callback(commmand_exec_callback_type type, void (*fn)(_nq_cl_event*, int, void*), void* user_data);
#endif

#if VORN_MERO_OPENCL >= 200
    /// When the command and all kernels that it enqueued had ended; otherwise as `profile_command_end`. Since
    /// OpenCL 2.0.
    [[nodiscard]] std::uint64_t profile_command_complete() const;
#endif
};

#if VORN_MERO_OPENCL >= 110
/// The side of a user event that completes it. Move-only: one object can complete the event. Made by
/// `context::create_user_event`.
///
///     cl::event_promise ready = context.create_user_event();
///     cl::event const gate = ready.get_event();
///     _nq_cl_event* const list[] = {cl::raw::get_raw_event(gate)};
///     queue.enqueue_command_without_event(command, 1, list); // waits, and so must not block
///     ready.set_status_success();
///
/// The status can be set once; a second time throws `common::invalid_operation`. Destroying a promise does not complete
/// its event: commands that wait for it never start, and `finish` never returns. Oclgrind runs commands inside `flush`,
/// `finish` and the queue's release: there none of these returns before the status is set. Since OpenCL 1.1.
class VORN_MERO_EXPORT event_promise : public mero::internal::handle<internal::event_promise_kind> {
public:
    /// Adopts a reference that the caller holds. Makes no call.
    event_promise(nq::call_handle const& call_handle, _nq_cl_event* raw, internal::take_ownership tag) noexcept
        : handle(call_handle, raw, tag) {}
    event_promise(event_promise&&) noexcept = default;
    event_promise& operator=(event_promise&&) noexcept = default;

    /// Completes the event; commands that wait for it start. Callbacks of the event may run within this call.
    void set_status_success();

    /// Fails the event with a negative status; commands that wait for it fail too and do not run.
    /// `error_code::success` completes the event.
    void set_status_failure(common::error_code code);

    /// The event, for wait lists and callbacks. It may outlive the promise. One call, to retain it.
    [[nodiscard]] event get_event() const;
};
#endif

namespace raw {

/// The raw handle, for wait lists; null if the object was moved from. Valid while the object or another reference
/// lives.
[[nodiscard]] inline _nq_cl_event* get_raw_event(event const& object VORN_MERO_LIFETIMEBOUND) noexcept {
    return mero::internal::owner_access::raw(object);
}

/// The call handle of the object.
[[nodiscard]] VORN_MERO_EXPORT nq::call_handle const&
get_call_handle(event const& object VORN_MERO_LIFETIMEBOUND) noexcept;

/// Adds a reference that the caller must release.
VORN_MERO_EXPORT void retain(event const& object);

/// Drops a reference that the caller holds. Throws `common::bad_implementation` when OpenCL refuses.
VORN_MERO_EXPORT void release(event const& object);

/// OpenCL's reference count, which may be outdated at once.
[[nodiscard]] VORN_MERO_EXPORT std::uint32_t refcount(event const& object);

/// Wraps a raw handle and retains it: the caller keeps its own reference.
[[nodiscard]] VORN_MERO_EXPORT event create_event(nq::call_handle const& call_handle, _nq_cl_event* handle);

#if VORN_MERO_OPENCL >= 110
/// The raw handle of the user event, null if the object was moved from. Since OpenCL 1.1.
[[nodiscard]] inline _nq_cl_event* get_raw_event(event_promise const& object VORN_MERO_LIFETIMEBOUND) noexcept {
    return mero::internal::owner_access::raw(object);
}

/// The call handle of the object. Since OpenCL 1.1.
[[nodiscard]] VORN_MERO_EXPORT nq::call_handle const&
get_call_handle(event_promise const& object VORN_MERO_LIFETIMEBOUND) noexcept;

/// Adds a reference that the caller must release. Since OpenCL 1.1.
VORN_MERO_EXPORT void retain(event_promise const& object);

/// Drops a reference that the caller holds. Throws `common::bad_implementation` when OpenCL refuses. Since OpenCL 1.1.
VORN_MERO_EXPORT void release(event_promise const& object);

/// OpenCL's reference count, which may be outdated at once. Since OpenCL 1.1.
[[nodiscard]] VORN_MERO_EXPORT std::uint32_t refcount(event_promise const& object);
#endif

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE

#endif
