// The base of all commands.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl.hpp>
#endif
#ifdef VORN_MERO_OPENCL

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// One piece of work for a command queue: everything that its OpenCL entry point needs except the queue, the wait list
/// and the event. A command can be enqueued any number of times, on any queues.
///
///     cl::write_buffer const upload(buffer, false, 0, bytes, memory);
///     cl::event first = queue.enqueue_command(upload);
///     _nq_cl_event* const list[] = {cl::raw::get_raw_event(first)};
///     queue.enqueue_command_without_event(upload, 1, list);
///
/// A command stores raw handles and retains nothing: the objects that it names must live until it has been enqueued. So
/// must the host memory that it points to; for a command that does not block, until it is complete. Sizes, offsets and
/// pitches are in bytes, origins and regions of images in pixels.
///
/// Constructors check nothing, make no call and allocate nothing, except to copy a list. When OpenCL refuses a command,
/// enqueueing it throws: `common::invalid_value` for a region outside its object or a null pointer,
/// `common::invalid_context` for objects of different contexts, `common::invalid_event_wait_list` for a wrong wait
/// list, `common::mem_object_allocation_failure` or `common::out_of_resources` for lack of memory. Later failures show
/// in the command's event. A blocking command should not wait for an event that may fail: some implementations then
/// throw `common::exec_status_error_for_events_in_wait_list`, some return, and PoCL never returns.
///
/// Several threads may enqueue one command at once, unless it stores results through references, as the maps do.
class VORN_MERO_EXPORT command {
public:
    virtual ~command() = default;

    /// Enqueues the command on a raw queue with one capability call; command queues call this. Passes the wait list and
    /// the address for the event on unchanged; `event` may be null. Throws what failed. A program may derive a class of
    /// its own and call another entry point of the C API here.
    virtual void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
                      _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const = 0;

protected:
    command() = default;
    command(command const&) = default;
    command(command&&) = default;
    command& operator=(command const&) = default;
    command& operator=(command&&) = default;
};

} // namespace vorn::mero::VORN_MERO_NAMESPACE

#endif
