#include "opencl/enqueue.hpp"

namespace vorn::mero::VORN_MERO_NAMESPACE {

using namespace detail;

void read_buffer::call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
                       _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const {
    block::clEnqueueReadBuffer block;
    block.buffer = source_;
    block.offset = offset_;
    block.size = size_;
    block.ptr = destination_;
    block.blocking_read = blocking_ ? 1 : 0;
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}

void write_buffer::call(nq::call_handle const& handle, _nq_cl_command_queue* queue,
                        unsigned int num_events_in_wait_list, _nq_cl_event* const* event_wait_list,
                        _nq_cl_event** event) const {
    block::clEnqueueWriteBuffer block;
    block.buffer = destination_;
    block.offset = offset_;
    block.size = size_;
    block.ptr = source_;
    block.blocking_write = blocking_ ? 1 : 0;
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}

void copy_buffer::call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
                       _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const {
    block::clEnqueueCopyBuffer block;
    block.src_buffer = source_;
    block.dst_buffer = destination_;
    block.src_offset = source_offset_;
    block.dst_offset = destination_offset_;
    block.size = size_;
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}

void map_buffer::call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
                      _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const {
    block::clEnqueueMapBuffer block;
    block.map_flags = static_cast<std::uint64_t>(flags_);
    block.buffer = source_;
    block.offset = offset_;
    block.size = size_;
    block.blocking_map = blocking_ ? 1 : 0;
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
    *mapped_ = block.result;
}

void unmap_mem_object::call(nq::call_handle const& handle, _nq_cl_command_queue* queue,
                            unsigned int num_events_in_wait_list, _nq_cl_event* const* event_wait_list,
                            _nq_cl_event** event) const {
    block::clEnqueueUnmapMemObject block;
    block.memobj = object_;
    block.mapped_ptr = mapped_;
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}

#if VORN_MERO_OPENCL >= 110
void read_buffer_rect::call(nq::call_handle const& handle, _nq_cl_command_queue* queue,
                            unsigned int num_events_in_wait_list, _nq_cl_event* const* event_wait_list,
                            _nq_cl_event** event) const {
    block::clEnqueueReadBufferRect block;
    block.buffer = source_;
    block.buffer_origin = buffer_origin_.data();
    block.host_origin = host_origin_.data();
    block.region = region_.data();
    block.buffer_row_pitch = buffer_row_pitch_;
    block.buffer_slice_pitch = buffer_slice_pitch_;
    block.host_row_pitch = host_row_pitch_;
    block.host_slice_pitch = host_slice_pitch_;
    block.ptr = destination_;
    block.blocking_read = blocking_ ? 1 : 0;
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}

void write_buffer_rect::call(nq::call_handle const& handle, _nq_cl_command_queue* queue,
                             unsigned int num_events_in_wait_list, _nq_cl_event* const* event_wait_list,
                             _nq_cl_event** event) const {
    block::clEnqueueWriteBufferRect block;
    block.buffer = destination_;
    block.buffer_origin = buffer_origin_.data();
    block.host_origin = host_origin_.data();
    block.region = region_.data();
    block.buffer_row_pitch = buffer_row_pitch_;
    block.buffer_slice_pitch = buffer_slice_pitch_;
    block.host_row_pitch = host_row_pitch_;
    block.host_slice_pitch = host_slice_pitch_;
    block.ptr = source_;
    block.blocking_write = blocking_ ? 1 : 0;
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}

void copy_buffer_rect::call(nq::call_handle const& handle, _nq_cl_command_queue* queue,
                            unsigned int num_events_in_wait_list, _nq_cl_event* const* event_wait_list,
                            _nq_cl_event** event) const {
    block::clEnqueueCopyBufferRect block;
    block.src_buffer = source_;
    block.dst_buffer = destination_;
    block.src_origin = source_origin_.data();
    block.dst_origin = destination_origin_.data();
    block.region = region_.data();
    block.src_row_pitch = source_row_pitch_;
    block.src_slice_pitch = source_slice_pitch_;
    block.dst_row_pitch = destination_row_pitch_;
    block.dst_slice_pitch = destination_slice_pitch_;
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}
#endif

#if VORN_MERO_OPENCL >= 120
void fill_buffer_base::call(nq::call_handle const& handle, _nq_cl_command_queue* queue,
                            unsigned int num_events_in_wait_list, _nq_cl_event* const* event_wait_list,
                            _nq_cl_event** event) const {
    block::clEnqueueFillBuffer block;
    block.buffer = destination_;
    block.pattern = pattern_;
    block.pattern_size = pattern_size_;
    block.offset = offset_;
    block.size = pattern_size_ * count_;
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}

fill_buffer_bytes::fill_buffer_bytes(buffer& destination, std::vector<unsigned char> const& pattern, std::size_t offset,
                                     std::size_t count)
    : destination_(raw_of(destination)), pattern_(pattern), offset_(offset), count_(count) {}

void fill_buffer_bytes::call(nq::call_handle const& handle, _nq_cl_command_queue* queue,
                             unsigned int num_events_in_wait_list, _nq_cl_event* const* event_wait_list,
                             _nq_cl_event** event) const {
    block::clEnqueueFillBuffer block;
    block.buffer = destination_;
    block.pattern = data_or_null(pattern_);
    block.pattern_size = pattern_.size();
    block.offset = offset_;
    block.size = pattern_.size() * count_;
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}

migrate_mem_objects::migrate_mem_objects(std::vector<_nq_cl_mem*> const& objects, migration_flags flags)
    : objects_(objects), flags_(flags) {}

void migrate_mem_objects::call(nq::call_handle const& handle, _nq_cl_command_queue* queue,
                               unsigned int num_events_in_wait_list, _nq_cl_event* const* event_wait_list,
                               _nq_cl_event** event) const {
    block::clEnqueueMigrateMemObjects block;
    block.flags = static_cast<std::uint64_t>(flags_);
    block.mem_objects = data_or_null(objects_);
    block.num_mem_objects = count_of(objects_);
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}
#endif

} // namespace vorn::mero::VORN_MERO_NAMESPACE
