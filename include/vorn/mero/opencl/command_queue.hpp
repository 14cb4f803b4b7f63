// Command queues.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl.hpp>
#endif
#ifdef VORN_MERO_OPENCL

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// A queue that takes commands from the host to a device. Made by a context. Its class is `command_queue` until OpenCL
/// 1.2 and `host_command_queue` since OpenCL 2.0.
///
///     cl::command_queue queue = context.create_command_queue(device, false, false); // since 2.0 with host_ in both
///     queue.enqueue_command_without_event(cl::write_buffer(buffer, false, 0, bytes, input));
///     queue.enqueue_command_without_event(cl::nd_range_kernel(kernel, 1, {0, 0, 0}, {1024, 1, 1}, {64, 1, 1}));
///     queue.enqueue_command_without_event(cl::read_buffer(buffer, true, 0, bytes, output));
///
/// Commands run in the order of enqueueing; in an out-of-order queue only wait lists, markers and barriers order them.
/// A wait list is an array of raw events (`raw::get_raw_event`) of this context; the command starts when all are
/// complete. It is passed on unchanged and read before the call returns; for none give 0 and null. To wait for an event
/// of another queue, flush that queue.
///
/// If enqueueing throws, nothing has been enqueued. Several threads may enqueue to one queue as far as the OpenCL
/// implementation allows. Destroying the last queue object flushes but does not wait: call `finish` before you free
/// host memory that commands use.
#if VORN_MERO_OPENCL < 200
class VORN_MERO_EXPORT command_queue : public mero::internal::handle<internal::command_queue_kind> {
#else
class VORN_MERO_EXPORT host_command_queue : public mero::internal::handle<internal::host_command_queue_kind> {
#endif
public:
    using handle::handle;

    /// Enqueues a command and returns its event. Makes one capability call and allocates nothing. When this returns, a
    /// blocking command no longer uses host memory.
    [[nodiscard]] event enqueue_command(command const& c);

    /// The same with a wait list.
    [[nodiscard]] event enqueue_command(command const& c, unsigned int num_events, _nq_cl_event* const* wait_list);

    /// Enqueues a command without creating an event.
    void enqueue_command_without_event(command const& c);

    /// The same with a wait list.
    void enqueue_command_without_event(command const& c, unsigned int num_events, _nq_cl_event* const* wait_list);

#if VORN_MERO_OPENCL < 120
    /// An event that completes when all commands enqueued so far are complete. Until OpenCL 1.1.
    [[nodiscard]] event enqueue_marker();

    /// Makes later commands wait for all earlier ones, which matters in an out-of-order queue. Until OpenCL 1.1.
    void barrier();
#endif

#if VORN_MERO_OPENCL < 110
    /// Makes later commands wait for the events. Throws `common::invalid_operation` where a newer implementation has
    /// dropped this. In OpenCL 1.0 only.
    void enqueue_wait_for_events(unsigned int num_events, _nq_cl_event* const* wait_list);

    /// Switches out-of-order execution on, for good; earlier commands finish first. Throws
    /// `common::invalid_queue_properties` if the device does not support it, `common::invalid_operation` where a newer
    /// implementation has dropped this: then use `context::create_command_queue`. In OpenCL 1.0 only.
    void enable_out_of_order_execution();

    /// Switches profiling on, for good. Throws as `enable_out_of_order_execution`. In OpenCL 1.0 only.
    void enable_profiling();
#endif

#if VORN_MERO_OPENCL >= 120
    /// An event that completes when the wait list is complete or, without one, all commands enqueued so far. Since
    /// OpenCL 1.2.
    [[nodiscard]] event enqueue_marker(unsigned int num_events, _nq_cl_event* const* wait_list);

    /// The same, and later commands wait for that event. Since OpenCL 1.2.
    event barrier(unsigned int num_events, _nq_cl_event* const* wait_list);
#endif

    /// Submits all commands enqueued so far to the device. Does not wait (Oclgrind does). Callbacks of events may run
    /// within this call.
    void flush();

    /// Blocks until all commands enqueued so far are complete or have failed. Callbacks must not call this.
    void finish();

    /// The context of the queue, on the same call handle.
    [[nodiscard]] context get_context() const;

    /// The device of the queue, on the same call handle.
    [[nodiscard]] device get_device() const;

    /// Whether commands may run in another order than that of enqueueing.
    [[nodiscard]] bool out_of_order_execution_enabled() const;

    /// Whether events of the queue tell their times, see `event::profile_command_start`.
    [[nodiscard]] bool profiling_enabled() const;

#if VORN_MERO_OPENCL >= 210
    /// The queue that kernels on the device get from `get_default_queue()`. Three calls. If there is none, throws
    /// `common::invalid_command_queue` or `common::invalid_value`, depending on the implementation. Since OpenCL 2.1.
    [[nodiscard]] device_command_queue get_default_device_command_queue() const;
#endif
};

#if VORN_MERO_OPENCL >= 200
/// An on-device queue: kernels enqueue to it, the host cannot. Always out of order. Made by a context.
///
///     cl::device_command_queue children = context.create_default_device_command_queue(device, false);
///     program.build({device}, "-cl-std=CL2.0", nullptr, nullptr); // calls get_default_queue()
///     queue.enqueue_command_without_event(cl::nd_range_kernel(kernel, 1, {0, 0, 0}, {64, 1, 1}, {64, 1, 1}));
///     queue.finish(); // the children are complete too
///
/// It must live until the kernels that enqueue to it are complete. Creating one throws if
/// `device::max_on_device_queues` is 0. Since OpenCL 2.0.
class VORN_MERO_EXPORT device_command_queue : public mero::internal::handle<internal::device_command_queue_kind> {
public:
    using handle::handle;

    /// The context of the queue, on the same call handle.
    [[nodiscard]] context get_context() const;

    /// Whether events of the queue tell their times, see `event::profile_command_start`.
    [[nodiscard]] bool profiling_enabled() const;

    /// Whether kernels get this queue from `get_default_queue()`.
    [[nodiscard]] bool is_default() const;

    /// The size of the queue in bytes, fixed at creation: the space for commands that have not run yet.
    [[nodiscard]] std::uint32_t device_queue_size() const;

#if VORN_MERO_OPENCL >= 210
    /// The default on-device queue of this queue's device; otherwise as in `host_command_queue`. Since OpenCL 2.1.
    [[nodiscard]] device_command_queue get_default_device_command_queue() const;
#endif
};
#endif

namespace raw {

/// The raw handle, null if the object was moved from.
[[nodiscard]] VORN_MERO_EXPORT _nq_cl_command_queue*
get_raw_command_queue(internal::host_queue const& object VORN_MERO_LIFETIMEBOUND) noexcept;

/// The call handle of the object.
[[nodiscard]] VORN_MERO_EXPORT nq::call_handle const&
get_call_handle(internal::host_queue const& object VORN_MERO_LIFETIMEBOUND) noexcept;

/// Adds a reference that the caller must release.
VORN_MERO_EXPORT void retain(internal::host_queue const& object);

/// Drops a reference that the caller holds. Throws `common::bad_implementation` when OpenCL refuses.
VORN_MERO_EXPORT void release(internal::host_queue const& object);

/// OpenCL's reference count, which may be outdated at once.
[[nodiscard]] VORN_MERO_EXPORT std::uint32_t refcount(internal::host_queue const& object);

#if VORN_MERO_OPENCL < 200
/// Wraps a raw handle and retains it: the caller keeps its own reference. Until OpenCL 1.2.
[[nodiscard]] VORN_MERO_EXPORT command_queue create_command_queue(nq::call_handle const& call_handle,
                                                                  _nq_cl_command_queue* handle);
#else
/// Wraps a raw handle and retains it: the caller keeps its own reference. Whether it is a queue of this kind, host or
/// on-device, is not checked. Since OpenCL 2.0.
[[nodiscard]] VORN_MERO_EXPORT host_command_queue create_host_command_queue(nq::call_handle const& call_handle,
                                                                            _nq_cl_command_queue* handle);

/// The raw handle, null if the object was moved from. Since OpenCL 2.0.
[[nodiscard]] VORN_MERO_EXPORT _nq_cl_command_queue*
get_raw_command_queue(device_command_queue const& object VORN_MERO_LIFETIMEBOUND) noexcept;

/// The call handle of the object. Since OpenCL 2.0.
[[nodiscard]] VORN_MERO_EXPORT nq::call_handle const&
get_call_handle(device_command_queue const& object VORN_MERO_LIFETIMEBOUND) noexcept;

/// Adds a reference that the caller must release. Since OpenCL 2.0.
VORN_MERO_EXPORT void retain(device_command_queue const& object);

/// Drops a reference that the caller holds. Throws `common::bad_implementation` when OpenCL refuses. Since OpenCL 2.0.
VORN_MERO_EXPORT void release(device_command_queue const& object);

/// OpenCL's reference count, which may be outdated at once. Since OpenCL 2.0.
[[nodiscard]] VORN_MERO_EXPORT std::uint32_t refcount(device_command_queue const& object);

/// Wraps a raw handle and retains it: the caller keeps its own reference. Whether it is a queue of this kind, host or
/// on-device, is not checked. Since OpenCL 2.0.
[[nodiscard]] VORN_MERO_EXPORT device_command_queue create_device_command_queue(nq::call_handle const& call_handle,
                                                                                _nq_cl_command_queue* handle);
#endif

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE

#endif
