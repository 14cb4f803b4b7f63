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
/// A wait list is an array of raw events (`raw::get_raw_event`) that must be complete before the command starts; it is
/// passed on as given. Whatever fails is thrown, and leaves neither event nor command behind. Several threads may
/// enqueue to one queue as far as the OpenCL implementation allows.
class VORN_MERO_EXPORT command_queue : public mero::internal::handle<internal::command_queue_kind> {
public:
    using handle::handle;

    /// Enqueues a command and gives the event of its completion. Makes one capability call and allocates nothing.
    event enqueue_command(command const& c);
    event enqueue_command(command const& c, unsigned int num_events, _nq_cl_event* const* wait_list);

    /// The same where nothing is to wait for the command but the queue.
    void enqueue_command_without_event(command const& c);
    void enqueue_command_without_event(command const& c, unsigned int num_events, _nq_cl_event* const* wait_list);

#if VORN_MERO_OPENCL < 120
    /// An event that is complete once every command enqueued so far is.
    event enqueue_marker();

    /// Commands enqueued from here on wait for all before.
    void barrier();
#endif

#if VORN_MERO_OPENCL < 110
    /// Commands enqueued from here on wait for the events.
    void enqueue_wait_for_events(unsigned int num_events, _nq_cl_event* const* wait_list);

    // A property that is switched on stays so.
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

    /// Has every command enqueued so far submitted to the device.
    void flush();

    /// Blocks until every command enqueued so far is complete.
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
/// A wait list is an array of raw events (`raw::get_raw_event`) that must be complete before the command starts; it is
/// passed on as given. Whatever fails is thrown, and leaves neither event nor command behind. Several threads may
/// enqueue to one queue as far as the OpenCL implementation allows. Since OpenCL 2.0.
class VORN_MERO_EXPORT host_command_queue : public mero::internal::handle<internal::host_command_queue_kind> {
public:
    using handle::handle;

    /// Enqueues a command and gives the event of its completion. Makes one capability call and allocates nothing.
    event enqueue_command(command const& c);
    event enqueue_command(command const& c, unsigned int num_events, _nq_cl_event* const* wait_list);

    /// The same where nothing is to wait for the command but the queue.
    void enqueue_command_without_event(command const& c);
    void enqueue_command_without_event(command const& c, unsigned int num_events, _nq_cl_event* const* wait_list);

    /// An event that is complete once the wait list is or, without one, every command enqueued so far.
    event enqueue_marker(unsigned int num_events, _nq_cl_event* const* wait_list);

    /// The same, and commands enqueued from here on wait for it.
    event barrier(unsigned int num_events, _nq_cl_event* const* wait_list);

    /// Has every command enqueued so far submitted to the device.
    void flush();

    /// Blocks until every command enqueued so far is complete.
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
    /// The queue that kernels of the device enqueue to when they name none. Throws
    /// `common::invalid_command_queue` when there is none. Since OpenCL 2.1.
    device_command_queue get_default_device_command_queue() const;
#endif
};

/// A queue on the device that kernels enqueue to, never the host. Since OpenCL 2.0.
class VORN_MERO_EXPORT device_command_queue : public mero::internal::handle<internal::device_command_queue_kind> {
public:
    using handle::handle;

    /// The context of the queue, on the same call handle.
    context get_context() const;

    /// Whether events of the queue can be asked for their times.
    bool profiling_enabled() const;

    /// Whether kernels enqueue here when they name no queue.
    bool is_default() const;

    /// In bytes.
    std::uint32_t device_queue_size() const;

#if VORN_MERO_OPENCL >= 210
    /// The default device queue of this queue's device. Since OpenCL 2.1.
    device_command_queue get_default_device_command_queue() const;
#endif
};
#endif

namespace raw {

#if VORN_MERO_OPENCL < 200
VORN_MERO_EXPORT _nq_cl_command_queue* get_raw_command_queue(command_queue const& object) noexcept;
VORN_MERO_EXPORT nq::call_handle const& get_call_handle(command_queue const& object) noexcept;
VORN_MERO_EXPORT void retain(command_queue const& object);

/// A status other than success is thrown as `common::bad_implementation`.
VORN_MERO_EXPORT void release(command_queue const& object);
VORN_MERO_EXPORT std::uint32_t refcount(command_queue const& object);
VORN_MERO_EXPORT command_queue create_command_queue(nq::call_handle const& call_handle, _nq_cl_command_queue* handle);
#endif

#if VORN_MERO_OPENCL >= 200
VORN_MERO_EXPORT _nq_cl_command_queue* get_raw_command_queue(host_command_queue const& object) noexcept;
VORN_MERO_EXPORT nq::call_handle const& get_call_handle(host_command_queue const& object) noexcept;
VORN_MERO_EXPORT void retain(host_command_queue const& object);

/// A status other than success is thrown as `common::bad_implementation`.
VORN_MERO_EXPORT void release(host_command_queue const& object);
VORN_MERO_EXPORT std::uint32_t refcount(host_command_queue const& object);
VORN_MERO_EXPORT host_command_queue create_host_command_queue(nq::call_handle const& call_handle,
                                                              _nq_cl_command_queue* handle);

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
