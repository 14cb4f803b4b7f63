#include "opencl/enqueue.hpp"

namespace vorn::mero::VORN_MERO_NAMESPACE {

using namespace detail;

void nd_range_kernel::call(nq::call_handle const& handle, _nq_cl_command_queue* queue,
                           unsigned int num_events_in_wait_list, _nq_cl_event* const* event_wait_list,
                           _nq_cl_event** event) const {
    block::clEnqueueNDRangeKernel block;
    block.kernel = function_;
    block.global_work_offset = offset();
    block.global_work_size = global_size_.data();
    block.local_work_size = local_size_.data();
    block.work_dim = work_dim_;
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}

#if VORN_MERO_OPENCL < 110
void task_kernel::call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
                       _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const {
    block::clEnqueueTask block;
    block.kernel = function_;
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}
#endif

void native_kernel::call(nq::call_handle const& handle, _nq_cl_command_queue* queue,
                         unsigned int num_events_in_wait_list, _nq_cl_event* const* event_wait_list,
                         _nq_cl_event** event) const {
    block::clEnqueueNativeKernel block;
    block.user_func = user_func_;
    block.args = args_;
    block.cb_args = args_size_;
    block.mem_list = mem_list_;
    block.args_mem_loc = args_mem_loc_;
    block.num_mem_objects = num_mem_objects_;
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}

} // namespace vorn::mero::VORN_MERO_NAMESPACE
