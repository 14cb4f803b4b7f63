// The base of everything that can be enqueued.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>

#include <vorn/mero/opencl/forward.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// One piece of work for a command queue: everything that its OpenCL entry point needs but the queue, the wait list and
/// the event. A command can be enqueued any number of times, on any number of queues.
///
///     cl::write_buffer const upload(buffer, false, 0, bytes, memory);
///     cl::event first = queue.enqueue_command(upload);
///     _nq_cl_event* const list[] = {cl::raw::get_raw_event(first)};
///     queue.enqueue_command_without_event(upload, 1, list);
///
/// A command holds the raw handles of the objects that it names and takes no reference on them: they, and the host
/// memory that it points to, must live until it has been enqueued, and host memory of a command that does not block
/// until it is complete. Sizes, offsets and pitches are in bytes, origins and regions of images in pixels.
///
/// Making one checks nothing, makes no call and, but for those that keep a list, allocates nothing. What OpenCL refuses
/// is thrown when it is enqueued: `common::invalid_value` for a region that leaves its object or a null pointer,
/// `common::invalid_context` for objects of different contexts, `common::invalid_event_wait_list`,
/// `common::mem_object_allocation_failure` and `common::out_of_resources` for want of memory. What goes wrong later
/// shows in the command's event. One that blocks should not wait for an event that may fail: some implementations throw
/// `common::exec_status_error_for_events_in_wait_list` then, some return, PoCL never does.
///
/// Any number of threads may enqueue one command at once, but for those that store through a reference (the maps).
class VORN_MERO_EXPORT command {
public:
    virtual ~command();

    /// Performs the entry point with exactly one capability call; a command queue calls this. The wait list and the
    /// place for the event, which may be null, are passed on as given. Throws what failed. A class of a program's own
    /// may derive from `command` and perform another entry point of the C API here, with the raw handles.
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
