// Command queues.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>

#include <vorn/mero/opencl/forward.hpp>
#include <vorn/mero/opencl/types.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

#if VORN_MERO_OPENCL < 200
/// The queue through which the host's commands reach a device; made by a context.
///
///     cl::command_queue queue = context.create_command_queue(device, false, false);
///     queue.enqueue_command_without_event(cl::write_buffer(buffer, false, 0, bytes, input));
///     queue.enqueue_command_without_event(cl::nd_range_kernel(kernel, 1, {0, 0, 0}, {1024, 1, 1}, {64, 1, 1}));
///     queue.enqueue_command_without_event(cl::read_buffer(buffer, true, 0, bytes, output));
///
/// Commands run in the order in which they were enqueued; in an out-of-order queue only wait lists, markers and
/// barriers order them. A wait list is an array of raw events (`raw::get_raw_event`) of this context that must be
/// complete before the command starts; it is passed on as given, read before the call returns, and null with a count of
/// 0 for none. Events of another queue need that queue flushed.
///
/// Whatever fails is thrown, and leaves neither event nor command behind. Several threads may enqueue to one queue as
/// far as the OpenCL implementation allows. Destroying the last queue object flushes and does not wait: call `finish`
/// while memory of the host is in use.
class VORN_MERO_EXPORT command_queue : public mero::internal::handle<internal::command_queue_kind> {
public:
    using handle::handle;

    /// Enqueues a command and gives the event of its completion. Makes one capability call and allocates nothing. A
    /// command that blocks is done with the host's memory when this returns.
    event enqueue_command(command const& c);
    event enqueue_command(command const& c, unsigned int num_events, _nq_cl_event* const* wait_list);

    /// The same where nothing is to wait for the command but the queue.
    void enqueue_command_without_event(command const& c);
    void enqueue_command_without_event(command const& c, unsigned int num_events, _nq_cl_event* const* wait_list);

#if VORN_MERO_OPENCL < 120
    /// An event that is complete once every command enqueued so far is. Until OpenCL 1.1.
    event enqueue_marker();

    /// Commands enqueued from here on wait for all before; of use in an out-of-order queue. Until OpenCL 1.1.
    void barrier();
#endif

#if VORN_MERO_OPENCL < 110
    /// Commands enqueued from here on wait for the events. Throws `common::invalid_operation` where a newer
    /// implementation has dropped it. In OpenCL 1.0 only.
    void enqueue_wait_for_events(unsigned int num_events, _nq_cl_event* const* wait_list);

    // A property that is switched on stays so; commands enqueued before are finished first. Throw
    // `common::invalid_queue_properties` where the device lacks it and `common::invalid_operation` where a newer
    // implementation has dropped them: give the property to `context::create_command_queue`. In OpenCL 1.0 only.
    void enable_out_of_order_execution();
    void enable_profiling();
#endif

#if VORN_MERO_OPENCL >= 120
    /// An event that is complete once the wait list is or, without one, every command enqueued so far. Since
    /// OpenCL 1.2.
    event enqueue_marker(unsigned int num_events, _nq_cl_event* const* wait_list);

    /// The same, and commands enqueued from here on wait for it. Since OpenCL 1.2.
    event barrier(unsigned int num_events, _nq_cl_event* const* wait_list);
#endif

    /// Has every command enqueued so far submitted to the device, and does not wait. Callbacks of events may run within
    /// this call.
    void flush();

    /// Blocks until every command enqueued so far is complete, whether it failed or not. Not to be called by a
    /// callback.
    void finish();

    /// The context of the queue, on the same call handle.
    context get_context() const;

    /// The device of the queue, on the same call handle.
    device get_device() const;

    /// Whether commands may run in another order than they were enqueued in.
    bool out_of_order_execution_enabled() const;

    /// Whether events of the queue can be asked for their times.
    bool profiling_enabled() const;
};
#endif

#if VORN_MERO_OPENCL >= 200
/// The queue through which the host's commands reach a device; made by a context.
///
///     cl::host_command_queue queue = context.create_host_command_queue(device, false, false);
///     queue.enqueue_command_without_event(cl::write_buffer(buffer, false, 0, bytes, input));
///     queue.enqueue_command_without_event(cl::nd_range_kernel(kernel, 1, {0, 0, 0}, {1024, 1, 1}, {64, 1, 1}));
///     queue.enqueue_command_without_event(cl::read_buffer(buffer, true, 0, bytes, output));
///
/// Commands run in the order in which they were enqueued; in an out-of-order queue only wait lists, markers and
/// barriers order them. A wait list is an array of raw events (`raw::get_raw_event`) of this context that must be
/// complete before the command starts; it is passed on as given, read before the call returns, and null with a count of
/// 0 for none. Events of another queue need that queue flushed.
///
/// Whatever fails is thrown, and leaves neither event nor command behind. Several threads may enqueue to one queue as
/// far as the OpenCL implementation allows. Destroying the last queue object flushes and does not wait: call `finish`
/// while memory of the host is in use. Since OpenCL 2.0.
class VORN_MERO_EXPORT host_command_queue : public mero::internal::handle<internal::host_command_queue_kind> {
public:
    using handle::handle;

    /// Enqueues a command and gives the event of its completion. Makes one capability call and allocates nothing. A
    /// command that blocks is done with the host's memory when this returns.
    event enqueue_command(command const& c);
    event enqueue_command(command const& c, unsigned int num_events, _nq_cl_event* const* wait_list);

    /// The same where nothing is to wait for the command but the queue.
    void enqueue_command_without_event(command const& c);
    void enqueue_command_without_event(command const& c, unsigned int num_events, _nq_cl_event* const* wait_list);

    /// An event that is complete once the wait list is or, without one, every command enqueued so far.
    event enqueue_marker(unsigned int num_events, _nq_cl_event* const* wait_list);

    /// The same, and commands enqueued from here on wait for it.
    event barrier(unsigned int num_events, _nq_cl_event* const* wait_list);

    /// Has every command enqueued so far submitted to the device, and does not wait. Callbacks of events may run within
    /// this call.
    void flush();

    /// Blocks until every command enqueued so far is complete, whether it failed or not. Not to be called by a
    /// callback.
    void finish();

    /// The context of the queue, on the same call handle.
    context get_context() const;

    /// The device of the queue, on the same call handle.
    device get_device() const;

    /// Whether commands may run in another order than they were enqueued in.
    bool out_of_order_execution_enabled() const;

    /// Whether events of the queue can be asked for their times.
    bool profiling_enabled() const;

#if VORN_MERO_OPENCL >= 210
    /// The queue that kernels of the device get from `get_default_queue()`; three calls. When there is none a
    /// `common::logic_error` is thrown, `invalid_command_queue` by some implementations and `invalid_value` by others.
    /// Since OpenCL 2.1.
    device_command_queue get_default_device_command_queue() const;
#endif
};

/// A queue on the device that kernels enqueue to, never the host; always out of order.
///
///     cl::device_command_queue children = context.create_default_device_command_queue(device, false);
///     program.build({device}, "-cl-std=CL2.0", nullptr, nullptr); // calls get_default_queue()
///     queue.enqueue_command_without_event(cl::nd_range_kernel(kernel, 1, {0, 0, 0}, {64, 1, 1}, {64, 1, 1}));
///     queue.finish(); // the children are complete too
///
/// It must live until the kernels that enqueue to it are complete. Where the device has no such queues, making one
/// throws; ask `device::max_on_device_queues`. Since OpenCL 2.0.
class VORN_MERO_EXPORT device_command_queue : public mero::internal::handle<internal::device_command_queue_kind> {
public:
    using handle::handle;

    /// The context of the queue, on the same call handle.
    context get_context() const;

    /// Whether events of the queue can be asked for their times.
    bool profiling_enabled() const;

    /// Whether kernels get this queue from `get_default_queue()`.
    bool is_default() const;

    /// In bytes, of what the queue holds of commands that have not run; fixed when it was made.
    std::uint32_t device_queue_size() const;

#if VORN_MERO_OPENCL >= 210
    /// The default device queue of this queue's device; otherwise as that of `host_command_queue`. Since OpenCL 2.1.
    device_command_queue get_default_device_command_queue() const;
#endif
};
#endif

namespace raw {

#if VORN_MERO_OPENCL < 200
// As for every class: the raw handle is null for an object that was moved from, `retain` adds a reference that the
// caller has to release, `refcount` is OpenCL's count at the moment, and the function that creates retains.
VORN_MERO_EXPORT _nq_cl_command_queue* get_raw_command_queue(command_queue const& object) noexcept;
VORN_MERO_EXPORT nq::call_handle const& get_call_handle(command_queue const& object) noexcept;
VORN_MERO_EXPORT void retain(command_queue const& object);

/// A status other than success is thrown as `common::bad_implementation`.
VORN_MERO_EXPORT void release(command_queue const& object);
VORN_MERO_EXPORT std::uint32_t refcount(command_queue const& object);
VORN_MERO_EXPORT command_queue create_command_queue(nq::call_handle const& call_handle, _nq_cl_command_queue* handle);
#endif

#if VORN_MERO_OPENCL >= 200
// As for every class: the raw handle is null for an object that was moved from, `retain` adds a reference that the
// caller has to release, `refcount` is OpenCL's count at the moment, and the function that creates retains.
VORN_MERO_EXPORT _nq_cl_command_queue* get_raw_command_queue(host_command_queue const& object) noexcept;
VORN_MERO_EXPORT nq::call_handle const& get_call_handle(host_command_queue const& object) noexcept;
VORN_MERO_EXPORT void retain(host_command_queue const& object);

/// A status other than success is thrown as `common::bad_implementation`.
VORN_MERO_EXPORT void release(host_command_queue const& object);
VORN_MERO_EXPORT std::uint32_t refcount(host_command_queue const& object);
VORN_MERO_EXPORT host_command_queue create_host_command_queue(nq::call_handle const& call_handle,
                                                              _nq_cl_command_queue* handle);

// The same for queues on the device. That a handle is of the one kind or the other is not looked at when it is wrapped.
VORN_MERO_EXPORT _nq_cl_command_queue* get_raw_command_queue(device_command_queue const& object) noexcept;
VORN_MERO_EXPORT nq::call_handle const& get_call_handle(device_command_queue const& object) noexcept;
VORN_MERO_EXPORT void retain(device_command_queue const& object);

/// A status other than success is thrown as `common::bad_implementation`.
VORN_MERO_EXPORT void release(device_command_queue const& object);
VORN_MERO_EXPORT std::uint32_t refcount(device_command_queue const& object);
VORN_MERO_EXPORT device_command_queue create_device_command_queue(nq::call_handle const& call_handle,
                                                                  _nq_cl_command_queue* handle);
#endif

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE
