// The base of everything that can be enqueued.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>

#include <vorn/mero/opencl/forward.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// One piece of work for a command queue: everything that its OpenCL entry point needs but the queue, the wait list and
/// the event. A command can be enqueued any number of times, on any number of queues.
///
/// A command holds the raw handles of the objects that it names and takes no reference on them: they, and the host
/// memory that it points to, must live until it has been enqueued, and host memory of a command that does not block
/// until it is complete. Sizes, offsets and pitches are in bytes, origins and regions of images in pixels.
class VORN_MERO_EXPORT command {
public:
    virtual ~command();

    /// Performs the entry point with exactly one capability call; a command queue calls this. The wait list and the
    /// place for the event, which may be null, are passed on as given. Throws what failed.
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
