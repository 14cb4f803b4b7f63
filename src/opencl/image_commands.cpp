#include "opencl/enqueue.hpp"

namespace vorn::mero::VORN_MERO_NAMESPACE {

using namespace detail;

read_image::read_image(image const& source, bool blocking, std::array<std::size_t, 3> origin,
                       std::array<std::size_t, 3> region, std::size_t row_pitch, std::size_t slice_pitch,
                       void* destination)
    : source_(raw_of(source)), blocking_(blocking), origin_(origin), region_(region), row_pitch_(row_pitch),
      slice_pitch_(slice_pitch), destination_(destination) {}

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

write_image::write_image(image& destination, bool blocking, std::array<std::size_t, 3> origin,
                         std::array<std::size_t, 3> region, std::size_t input_row_pitch, std::size_t input_slice_pitch,
                         void const* source)
    : destination_(raw_of(destination)), blocking_(blocking), origin_(origin), region_(region),
      input_row_pitch_(input_row_pitch), input_slice_pitch_(input_slice_pitch), source_(source) {}

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

copy_image::copy_image(image const& source, image& destination, std::array<std::size_t, 3> source_origin,
                       std::array<std::size_t, 3> destination_origin, std::array<std::size_t, 3> region)
    : source_(raw_of(source)), destination_(raw_of(destination)), source_origin_(source_origin),
      destination_origin_(destination_origin), region_(region) {}

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

copy_image_to_buffer::copy_image_to_buffer(image const& source, buffer& destination,
                                           std::array<std::size_t, 3> source_origin, std::array<std::size_t, 3> region,
                                           std::size_t destination_offset)
    : source_(raw_of(source)), destination_(raw_of(destination)), source_origin_(source_origin), region_(region),
      destination_offset_(destination_offset) {}

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

copy_buffer_to_image::copy_buffer_to_image(buffer const& source, image& destination, std::size_t source_offset,
                                           std::array<std::size_t, 3> destination_origin,
                                           std::array<std::size_t, 3> region)
    : source_(raw_of(source)), destination_(raw_of(destination)), source_offset_(source_offset),
      destination_origin_(destination_origin), region_(region) {}

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

map_image::map_image(void*& mapped, image& source, bool blocking, map_flags flags, std::array<std::size_t, 3> origin,
                     std::array<std::size_t, 3> region, std::size_t& row_pitch, std::size_t& slice_pitch)
    : mapped_(&mapped), source_(raw_of(source)), blocking_(blocking), flags_(flags), origin_(origin), region_(region),
      row_pitch_(&row_pitch), slice_pitch_(&slice_pitch) {}

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
fill_image_base::fill_image_base(image& destination, void const* fill_color, std::array<std::size_t, 3> origin,
                                 std::array<std::size_t, 3> region)
    : destination_(raw_of(destination)), fill_color_(fill_color), origin_(origin), region_(region) {}

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
