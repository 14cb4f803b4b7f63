#pragma once

// The tables of commands that go to a queue.

#include <nq/describe/field.hpp>

#define NQ_QUEUE NQ_FIELD(command_queue)
#define NQ_EVENT NQ_FIELD(event, has::one)
#define NQ_EVENTS NQ_LIST(event_wait_list, num_events_in_wait_list), NQ_EVENT
#define NQ_NUM_EVENTS NQ_FIELD(num_events_in_wait_list, is::count)
#define NQ_BLOCKING(member) NQ_FIELD(member, is::boolean)
#define NQ_SIZE(member) NQ_FIELD(member, is::size)
#define NQ_THREE(member) NQ_FIELD(member, is::size, has::three)
#define NQ_SIZED(member, ...) NQ_FIELD(member, is::bytes, has::counted(NQ_AT(__VA_ARGS__)))
#define NQ_RECTANGLE                                                                                                   \
    is::bytes, has::by(length_rule::rectangle, NQ_AT(host_origin), NQ_AT(region), NQ_AT(host_row_pitch),               \
                       NQ_AT(host_slice_pitch))
#define NQ_BUFFER_RECT                                                                                                 \
    NQ_QUEUE, NQ_FIELD(buffer), NQ_THREE(buffer_origin), NQ_THREE(host_origin), NQ_THREE(region),                      \
        NQ_SIZE(buffer_row_pitch), NQ_SIZE(buffer_slice_pitch), NQ_SIZE(host_row_pitch), NQ_SIZE(host_slice_pitch)
#define NQ_PIXELS(row_pitch, slice_pitch)                                                                              \
    is::bytes, has::by(length_rule::pixels, NQ_AT(region), NQ_AT(row_pitch), NQ_AT(slice_pitch))
#define NQ_MAP_FLAGS NQ_FIELD(map_flags, is::bits_of(values::map_flags))
#define NQ_MIGRATION NQ_FIELD(flags, is::bits_of(values::migration_flags))

namespace nq::detail {

// Buffers and any memory object

NQ_BLOCK(clEnqueueReadBuffer, NQ_QUEUE, NQ_FIELD(buffer), NQ_SIZE(offset), NQ_SIZE(size),
         NQ_FIELD(ptr, is::bytes, is::out, has::counted(NQ_AT(size))), NQ_EVENTS, NQ_STATUS, NQ_BLOCKING(blocking_read),
         NQ_NUM_EVENTS)
NQ_BLOCK(clEnqueueWriteBuffer, NQ_QUEUE, NQ_FIELD(buffer), NQ_SIZE(offset), NQ_SIZE(size), NQ_SIZED(ptr, size),
         NQ_EVENTS, NQ_STATUS, NQ_BLOCKING(blocking_write), NQ_NUM_EVENTS)
NQ_BLOCK(clEnqueueReadBufferRect, NQ_BUFFER_RECT, NQ_FIELD(ptr, is::out, NQ_RECTANGLE), NQ_EVENTS, NQ_STATUS,
         NQ_BLOCKING(blocking_read), NQ_NUM_EVENTS)
NQ_BLOCK(clEnqueueWriteBufferRect, NQ_BUFFER_RECT, NQ_FIELD(ptr, NQ_RECTANGLE), NQ_EVENTS, NQ_STATUS,
         NQ_BLOCKING(blocking_write), NQ_NUM_EVENTS)
NQ_BLOCK(clEnqueueCopyBuffer, NQ_QUEUE, NQ_FIELD(src_buffer), NQ_FIELD(dst_buffer), NQ_SIZE(src_offset),
         NQ_SIZE(dst_offset), NQ_SIZE(size), NQ_EVENTS, NQ_STATUS, NQ_NUM_EVENTS)
NQ_BLOCK(clEnqueueCopyBufferRect, NQ_QUEUE, NQ_FIELD(src_buffer), NQ_FIELD(dst_buffer), NQ_THREE(src_origin),
         NQ_THREE(dst_origin), NQ_THREE(region), NQ_SIZE(src_row_pitch), NQ_SIZE(src_slice_pitch),
         NQ_SIZE(dst_row_pitch), NQ_SIZE(dst_slice_pitch), NQ_EVENTS, NQ_STATUS, NQ_NUM_EVENTS)
NQ_BLOCK(clEnqueueFillBuffer, NQ_QUEUE, NQ_FIELD(buffer), NQ_SIZED(pattern, pattern_size), NQ_SIZE(pattern_size),
         NQ_SIZE(offset), NQ_SIZE(size), NQ_EVENTS, NQ_STATUS, NQ_NUM_EVENTS)
NQ_BLOCK(clEnqueueMapBuffer, NQ_MAP_FLAGS, NQ_QUEUE, NQ_FIELD(buffer), NQ_SIZE(offset), NQ_SIZE(size), NQ_EVENTS,
         NQ_FIELD(result, is::bytes, is::out, has::counted(NQ_AT(size))), NQ_ERROR_CODE, NQ_BLOCKING(blocking_map),
         NQ_NUM_EVENTS)
NQ_BLOCK(clEnqueueUnmapMemObject, NQ_QUEUE, NQ_FIELD(memobj), NQ_FIELD(mapped_ptr, is::address, has::no_known_length),
         NQ_EVENTS, NQ_STATUS, NQ_NUM_EVENTS)
NQ_BLOCK(clEnqueueMigrateMemObjects, NQ_MIGRATION, NQ_QUEUE, NQ_LIST(mem_objects, num_mem_objects), NQ_EVENTS,
         NQ_STATUS, NQ_FIELD(num_mem_objects, is::count), NQ_NUM_EVENTS)

// Images

NQ_BLOCK(clEnqueueReadImage, NQ_QUEUE, NQ_FIELD(image), NQ_THREE(origin), NQ_THREE(region), NQ_SIZE(row_pitch),
         NQ_SIZE(slice_pitch), NQ_FIELD(ptr, is::out, NQ_PIXELS(row_pitch, slice_pitch)), NQ_EVENTS, NQ_STATUS,
         NQ_BLOCKING(blocking_read), NQ_NUM_EVENTS)
NQ_BLOCK(clEnqueueWriteImage, NQ_QUEUE, NQ_FIELD(image), NQ_THREE(origin), NQ_THREE(region), NQ_SIZE(input_row_pitch),
         NQ_SIZE(input_slice_pitch), NQ_FIELD(ptr, NQ_PIXELS(input_row_pitch, input_slice_pitch)), NQ_EVENTS, NQ_STATUS,
         NQ_BLOCKING(blocking_write), NQ_NUM_EVENTS)
NQ_BLOCK(clEnqueueCopyImage, NQ_QUEUE, NQ_FIELD(src_image), NQ_FIELD(dst_image), NQ_THREE(src_origin),
         NQ_THREE(dst_origin), NQ_THREE(region), NQ_EVENTS, NQ_STATUS, NQ_NUM_EVENTS)
NQ_BLOCK(clEnqueueFillImage, NQ_QUEUE, NQ_FIELD(image),
         NQ_FIELD(fill_color, is::bytes, has::by(length_rule::constant, 16)), NQ_THREE(origin), NQ_THREE(region),
         NQ_EVENTS, NQ_STATUS, NQ_NUM_EVENTS)
NQ_BLOCK(clEnqueueCopyImageToBuffer, NQ_QUEUE, NQ_FIELD(src_image), NQ_FIELD(dst_buffer), NQ_THREE(src_origin),
         NQ_THREE(region), NQ_SIZE(dst_offset), NQ_EVENTS, NQ_STATUS, NQ_NUM_EVENTS)
NQ_BLOCK(clEnqueueCopyBufferToImage, NQ_QUEUE, NQ_FIELD(src_buffer), NQ_FIELD(dst_image), NQ_SIZE(src_offset),
         NQ_THREE(dst_origin), NQ_THREE(region), NQ_EVENTS, NQ_STATUS, NQ_NUM_EVENTS)
NQ_BLOCK(clEnqueueMapImage, NQ_MAP_FLAGS, NQ_QUEUE, NQ_FIELD(image), NQ_THREE(origin), NQ_THREE(region),
         NQ_FIELD(image_row_pitch, is::size, has::one), NQ_FIELD(image_slice_pitch, is::size, has::one), NQ_EVENTS,
         NQ_FIELD(result, is::bytes, is::out,
                  has::by(length_rule::mapped, NQ_AT(region), NQ_AT(image_row_pitch), NQ_AT(image_slice_pitch))),
         NQ_ERROR_CODE, NQ_BLOCKING(blocking_map), NQ_NUM_EVENTS)

// Kernels, markers, barriers

NQ_BLOCK(clEnqueueNDRangeKernel, NQ_QUEUE, NQ_FIELD(kernel),
         NQ_FIELD(global_work_offset, is::size, has::counted(NQ_AT(work_dim))),
         NQ_FIELD(global_work_size, is::size, has::counted(NQ_AT(work_dim))),
         NQ_FIELD(local_work_size, is::size, has::counted(NQ_AT(work_dim))), NQ_EVENTS, NQ_STATUS,
         NQ_FIELD(work_dim, is::count), NQ_NUM_EVENTS)
NQ_BLOCK(clEnqueueTask, NQ_QUEUE, NQ_FIELD(kernel), NQ_EVENTS, NQ_STATUS, NQ_NUM_EVENTS)
NQ_BLOCK(clEnqueueNativeKernel, NQ_QUEUE, NQ_FIELD(user_func), NQ_SIZED(args, cb_args), NQ_SIZE(cb_args),
         NQ_LIST(mem_list, num_mem_objects),
         NQ_FIELD(args_mem_loc, is::address, is::in, has::counted(NQ_AT(num_mem_objects))), NQ_EVENTS, NQ_STATUS,
         NQ_FIELD(num_mem_objects, is::count), NQ_NUM_EVENTS)
NQ_BLOCK(clEnqueueMarker, NQ_QUEUE, NQ_EVENT, NQ_STATUS)
NQ_BLOCK(clEnqueueMarkerWithWaitList, NQ_QUEUE, NQ_EVENTS, NQ_STATUS, NQ_NUM_EVENTS)
NQ_BLOCK(clEnqueueBarrier, NQ_QUEUE, NQ_STATUS)
NQ_BLOCK(clEnqueueBarrierWithWaitList, NQ_QUEUE, NQ_EVENTS, NQ_STATUS, NQ_NUM_EVENTS)
NQ_BLOCK(clEnqueueWaitForEvents, NQ_QUEUE, NQ_LIST(event_list, num_events), NQ_STATUS, NQ_FIELD(num_events, is::count))

// Shared virtual memory

NQ_BLOCK(clEnqueueSVMFree, NQ_QUEUE, NQ_FIELD(svm_pointers, is::address, is::in, has::counted(NQ_AT(num_svm_pointers))),
         NQ_FIELD(pfn_free_func), NQ_FIELD(user_data, is::user_data), NQ_EVENTS, NQ_STATUS,
         NQ_FIELD(num_svm_pointers, is::count), NQ_NUM_EVENTS)
NQ_BLOCK(clEnqueueSVMMemcpy, NQ_QUEUE, NQ_FIELD(dst_ptr, is::bytes, is::out, has::counted(NQ_AT(size))),
         NQ_SIZED(src_ptr, size), NQ_SIZE(size), NQ_EVENTS, NQ_STATUS, NQ_BLOCKING(blocking_copy), NQ_NUM_EVENTS)
NQ_BLOCK(clEnqueueSVMMemFill, NQ_QUEUE, NQ_FIELD(svm_ptr, is::bytes, is::out, has::counted(NQ_AT(size))),
         NQ_SIZED(pattern, pattern_size), NQ_SIZE(pattern_size), NQ_SIZE(size), NQ_EVENTS, NQ_STATUS, NQ_NUM_EVENTS)
NQ_BLOCK(clEnqueueSVMMap, NQ_MAP_FLAGS, NQ_QUEUE, NQ_FIELD(svm_ptr, is::bytes, is::out, has::counted(NQ_AT(size))),
         NQ_SIZE(size), NQ_EVENTS, NQ_STATUS, NQ_BLOCKING(blocking_map), NQ_NUM_EVENTS)
NQ_BLOCK(clEnqueueSVMUnmap, NQ_QUEUE, NQ_FIELD(svm_ptr, is::address, has::no_known_length), NQ_EVENTS, NQ_STATUS,
         NQ_NUM_EVENTS)
NQ_BLOCK(clEnqueueSVMMigrateMem, NQ_QUEUE, NQ_FIELD(num_svm_pointers, is::count),
         NQ_FIELD(svm_pointers, is::address, has::counted(NQ_AT(num_svm_pointers))),
         NQ_FIELD(sizes, is::size, has::counted(NQ_AT(num_svm_pointers))), NQ_MIGRATION, NQ_NUM_EVENTS, NQ_EVENTS,
         NQ_STATUS)

} // namespace nq::detail

#undef NQ_QUEUE
#undef NQ_EVENT
#undef NQ_EVENTS
#undef NQ_NUM_EVENTS
#undef NQ_BLOCKING
#undef NQ_SIZE
#undef NQ_THREE
#undef NQ_SIZED
#undef NQ_RECTANGLE
#undef NQ_BUFFER_RECT
#undef NQ_PIXELS
#undef NQ_MAP_FLAGS
#undef NQ_MIGRATION
