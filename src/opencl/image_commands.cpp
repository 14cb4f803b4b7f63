#include "opencl/enqueue.hpp"

namespace vorn::mero::VORN_MERO_NAMESPACE {

using namespace detail;

void read_image::call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
                      _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const {
    block::clEnqueueReadImage block;
    block.image = source_;
    block.origin = origin_.data();
    block.region = region_.data();
    block.row_pitch = row_pitch_;
    block.slice_pitch = slice_pitch_;
    block.ptr = destination_;
    block.blocking_read = blocking_ ? 1 : 0;
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}

void write_image::call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
                       _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const {
    block::clEnqueueWriteImage block;
    block.image = destination_;
    block.origin = origin_.data();
    block.region = region_.data();
    block.input_row_pitch = input_row_pitch_;
    block.input_slice_pitch = input_slice_pitch_;
    block.ptr = source_;
    block.blocking_write = blocking_ ? 1 : 0;
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}

void copy_image::call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
                      _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const {
    block::clEnqueueCopyImage block;
    block.src_image = source_;
    block.dst_image = destination_;
    block.src_origin = source_origin_.data();
    block.dst_origin = destination_origin_.data();
    block.region = region_.data();
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}

void copy_image_to_buffer::call(nq::call_handle const& handle, _nq_cl_command_queue* queue,
                                unsigned int num_events_in_wait_list, _nq_cl_event* const* event_wait_list,
                                _nq_cl_event** event) const {
    block::clEnqueueCopyImageToBuffer block;
    block.src_image = source_;
    block.dst_buffer = destination_;
    block.src_origin = source_origin_.data();
    block.region = region_.data();
    block.dst_offset = destination_offset_;
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}

void copy_buffer_to_image::call(nq::call_handle const& handle, _nq_cl_command_queue* queue,
                                unsigned int num_events_in_wait_list, _nq_cl_event* const* event_wait_list,
                                _nq_cl_event** event) const {
    block::clEnqueueCopyBufferToImage block;
    block.src_buffer = source_;
    block.dst_image = destination_;
    block.src_offset = source_offset_;
    block.dst_origin = destination_origin_.data();
    block.region = region_.data();
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}

void map_image::call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
                     _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const {
    block::clEnqueueMapImage block;
    block.map_flags = static_cast<std::uint64_t>(flags_);
    block.image = source_;
    block.origin = origin_.data();
    block.region = region_.data();
    block.image_row_pitch = row_pitch_;
    block.image_slice_pitch = slice_pitch_;
    block.blocking_map = blocking_ ? 1 : 0;
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
    *mapped_ = block.result;
}

#if VORN_MERO_OPENCL >= 120
void fill_image_base::call(nq::call_handle const& handle, _nq_cl_command_queue* queue,
                           unsigned int num_events_in_wait_list, _nq_cl_event* const* event_wait_list,
                           _nq_cl_event** event) const {
    block::clEnqueueFillImage block;
    block.image = destination_;
    block.fill_color = fill_color_;
    block.origin = origin_.data();
    block.region = region_.data();
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}
#endif

} // namespace vorn::mero::VORN_MERO_NAMESPACE
