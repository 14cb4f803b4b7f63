#include "opencl/enqueue.hpp"

namespace vorn::mero::VORN_MERO_NAMESPACE {

using namespace detail;

read_buffer::read_buffer(buffer const& source, bool blocking, std::size_t offset, std::size_t size, void* destination)
    : source_(raw_of(source)), blocking_(blocking), offset_(offset), size_(size), destination_(destination) {}

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

write_buffer::write_buffer(buffer& destination, bool blocking, std::size_t offset, std::size_t size, void const* source)
    : destination_(raw_of(destination)), blocking_(blocking), offset_(offset), size_(size), source_(source) {}

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

copy_buffer::copy_buffer(buffer const& source, buffer& destination, std::size_t source_offset,
                         std::size_t destination_offset, std::size_t size)
    : source_(raw_of(source)), destination_(raw_of(destination)), source_offset_(source_offset),
      destination_offset_(destination_offset), size_(size) {}

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

map_buffer::map_buffer(void*& mapped, buffer& source, bool blocking, map_flags flags, std::size_t offset,
                       std::size_t size)
    : mapped_(&mapped), source_(raw_of(source)), blocking_(blocking), flags_(flags), offset_(offset), size_(size) {}

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

unmap_mem_object::unmap_mem_object(memory_object const& object, void* mapped)
    : object_(raw_of(object)), mapped_(mapped) {}

void unmap_mem_object::call(nq::call_handle const& handle, _nq_cl_command_queue* queue,
                            unsigned int num_events_in_wait_list, _nq_cl_event* const* event_wait_list,
                            _nq_cl_event** event) const {
    block::clEnqueueUnmapMemObject block;
    block.memobj = object_;
    block.mapped_ptr = mapped_;
    enqueueing{handle, queue, num_events_in_wait_list, event_wait_list, event}.enqueue(block);
}

#if VORN_MERO_OPENCL >= 110
read_buffer_rect::read_buffer_rect(buffer const& source, bool blocking, std::array<std::size_t, 3> buffer_origin,
                                   std::array<std::size_t, 3> host_origin, std::array<std::size_t, 3> region,
                                   std::size_t buffer_row_pitch, std::size_t buffer_slice_pitch,
                                   std::size_t host_row_pitch, std::size_t host_slice_pitch, void* destination)
    : source_(raw_of(source)), blocking_(blocking), buffer_origin_(buffer_origin), host_origin_(host_origin),
      region_(region), buffer_row_pitch_(buffer_row_pitch), buffer_slice_pitch_(buffer_slice_pitch),
      host_row_pitch_(host_row_pitch), host_slice_pitch_(host_slice_pitch), destination_(destination) {}

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

write_buffer_rect::write_buffer_rect(buffer& destination, bool blocking, std::array<std::size_t, 3> buffer_origin,
                                     std::array<std::size_t, 3> host_origin, std::array<std::size_t, 3> region,
                                     std::size_t buffer_row_pitch, std::size_t buffer_slice_pitch,
                                     std::size_t host_row_pitch, std::size_t host_slice_pitch, void const* source)
    : destination_(raw_of(destination)), blocking_(blocking), buffer_origin_(buffer_origin), host_origin_(host_origin),
      region_(region), buffer_row_pitch_(buffer_row_pitch), buffer_slice_pitch_(buffer_slice_pitch),
      host_row_pitch_(host_row_pitch), host_slice_pitch_(host_slice_pitch), source_(source) {}

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

copy_buffer_rect::copy_buffer_rect(buffer const& source, buffer& destination, std::array<std::size_t, 3> source_origin,
                                   std::array<std::size_t, 3> destination_origin, std::array<std::size_t, 3> region,
                                   std::size_t source_row_pitch, std::size_t source_slice_pitch,
                                   std::size_t destination_row_pitch, std::size_t destination_slice_pitch)
    : source_(raw_of(source)), destination_(raw_of(destination)), source_origin_(source_origin),
      destination_origin_(destination_origin), region_(region), source_row_pitch_(source_row_pitch),
      source_slice_pitch_(source_slice_pitch), destination_row_pitch_(destination_row_pitch),
      destination_slice_pitch_(destination_slice_pitch) {}

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
fill_buffer_base::fill_buffer_base(buffer& destination, void const* pattern, std::size_t pattern_size,
                                   std::size_t offset, std::size_t count)
    : destination_(raw_of(destination)), pattern_(pattern), pattern_size_(pattern_size), offset_(offset),
      count_(count) {}

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
