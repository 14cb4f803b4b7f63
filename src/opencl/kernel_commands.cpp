#include "opencl/enqueue.hpp"

namespace vorn::mero::VORN_MERO_NAMESPACE {

using namespace detail;

#if VORN_MERO_OPENCL < 110
nd_range_kernel::nd_range_kernel(kernel const& function, unsigned int work_dim, std::array<std::size_t, 3> global_size,
                                 std::array<std::size_t, 3> local_size)
    : function_(raw_of(function)), work_dim_(work_dim), global_size_(global_size), local_size_(local_size) {}
#else
nd_range_kernel::nd_range_kernel(kernel const& function, unsigned int work_dim,
                                 std::array<std::size_t, 3> global_offset, std::array<std::size_t, 3> global_size,
                                 std::array<std::size_t, 3> local_size)
    : function_(raw_of(function)), work_dim_(work_dim), global_offset_(global_offset), global_size_(global_size),
      local_size_(local_size) {}
#endif

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
task_kernel::task_kernel(kernel const& function) : function_(raw_of(function)) {}

void task_kernel::call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
                       _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const {
    block::clEnqueueTask block;
    block.kernel = function_;
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}
#endif

native_kernel::native_kernel(void (*user_func)(void*), void* args, std::size_t args_size, unsigned int num_mem_objects,
                             _nq_cl_mem* const* mem_list, void const** args_mem_loc)
    : user_func_(user_func), args_(args), args_size_(args_size), num_mem_objects_(num_mem_objects), mem_list_(mem_list),
      args_mem_loc_(args_mem_loc) {}

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
