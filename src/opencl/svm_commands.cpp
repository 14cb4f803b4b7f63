#include "opencl/enqueue.hpp"

#include <stdexcept>

namespace vorn::mero::VORN_MERO_NAMESPACE {

using namespace detail;

#if VORN_MERO_OPENCL >= 200
svm_free::svm_free(std::vector<void*> const& pointers) : svm_free(pointers, nullptr, nullptr) {}
svm_free::svm_free(std::vector<void*> const& pointers,
                   void (*callback)(_nq_cl_command_queue*, std::uint32_t, void**, void*), void* user_data)
    : pointers_(pointers), callback_(callback), user_data_(user_data) {}

void svm_free::call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
                    _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const {
    block::clEnqueueSVMFree block;
    block.svm_pointers = const_cast<void**>(data_or_null(pointers_));
    block.pfn_free_func = callback_;
    block.user_data = user_data_;
    block.num_svm_pointers = count_of(pointers_);
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}

void svm_memcpy::call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
                      _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const {
    block::clEnqueueSVMMemcpy block;
    block.dst_ptr = destination_;
    block.src_ptr = source_;
    block.size = size_;
    block.blocking_copy = blocking_;
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}

void fill_svm_base::call(nq::call_handle const& handle, _nq_cl_command_queue* queue,
                         unsigned int num_events_in_wait_list, _nq_cl_event* const* event_wait_list,
                         _nq_cl_event** event) const {
    block::clEnqueueSVMMemFill block;
    block.svm_ptr = destination_;
    block.pattern = pattern_;
    block.pattern_size = pattern_size_;
    block.size = pattern_size_ * count_;
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}

void svm_map::call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
                   _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const {
    block::clEnqueueSVMMap block;
    block.map_flags = static_cast<std::uint64_t>(flags_);
    block.svm_ptr = pointer_;
    block.size = size_;
    block.blocking_map = blocking_ ? 1 : 0;
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}

void svm_unmap::call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
                     _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const {
    block::clEnqueueSVMUnmap block;
    block.svm_ptr = pointer_;
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}
#endif

#if VORN_MERO_OPENCL >= 210
svm_migrate_mem::svm_migrate_mem(std::vector<void const*> const& pointers, std::vector<std::size_t> const& sizes,
                                 migration_flags flags)
    : pointers_(pointers), sizes_(sizes), flags_(flags) {
    if (pointers_.size() != sizes_.size()) {
        throw std::logic_error("svm_migrate_mem::svm_migrate_mem : arguments svm_pointers and sizes must have an equal "
                               "number of elements.");
    }
}

void svm_migrate_mem::call(nq::call_handle const& handle, _nq_cl_command_queue* queue,
                           unsigned int num_events_in_wait_list, _nq_cl_event* const* event_wait_list,
                           _nq_cl_event** event) const {
    block::clEnqueueSVMMigrateMem block;
    block.num_svm_pointers = count_of(pointers_);
    block.svm_pointers = data_or_null(pointers_);
    block.sizes = data_or_null(sizes_);
    block.flags = static_cast<std::uint64_t>(flags_);
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}
#endif

} // namespace vorn::mero::VORN_MERO_NAMESPACE
