#pragma once

// Blocks of commands on buffers and on any memory object. All enqueue entry points share these fields:
// `event_wait_list` has `num_events_in_wait_list` events, read during the call. `event` is the address for the new
// event, with a reference for the caller; null if none is wanted. A blocking flag is 0 or 1; if 0, host memory must
// live until the command is complete.

#include <nq/types.hpp>

#include <cstddef>
#include <cstdint>

namespace nq::block {

/// From a buffer to host memory. Offset and size are in bytes.
struct clEnqueueReadBuffer {
    _nq_cl_command_queue* command_queue;
    _nq_cl_mem* buffer;
    std::size_t offset;
    std::size_t size;
    void* ptr;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    std::int32_t status;
    std::uint32_t blocking_read;
    std::uint32_t num_events_in_wait_list;
};
static_assert(offsetof(clEnqueueReadBuffer, command_queue) == 0 && offsetof(clEnqueueReadBuffer, buffer) == 8 &&
              offsetof(clEnqueueReadBuffer, offset) == 16 && offsetof(clEnqueueReadBuffer, size) == 24 &&
              offsetof(clEnqueueReadBuffer, ptr) == 32 && offsetof(clEnqueueReadBuffer, event_wait_list) == 40 &&
              offsetof(clEnqueueReadBuffer, event) == 48 && offsetof(clEnqueueReadBuffer, status) == 56 &&
              offsetof(clEnqueueReadBuffer, blocking_read) == 60 &&
              offsetof(clEnqueueReadBuffer, num_events_in_wait_list) == 64 && sizeof(clEnqueueReadBuffer) == 72);

/// From host memory to a buffer. Offset and size are in bytes.
struct clEnqueueWriteBuffer {
    _nq_cl_command_queue* command_queue;
    _nq_cl_mem* buffer;
    std::size_t offset;
    std::size_t size;
    void const* ptr;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    std::int32_t status;
    std::uint32_t blocking_write;
    std::uint32_t num_events_in_wait_list;
};
static_assert(offsetof(clEnqueueWriteBuffer, command_queue) == 0 && offsetof(clEnqueueWriteBuffer, buffer) == 8 &&
              offsetof(clEnqueueWriteBuffer, offset) == 16 && offsetof(clEnqueueWriteBuffer, size) == 24 &&
              offsetof(clEnqueueWriteBuffer, ptr) == 32 && offsetof(clEnqueueWriteBuffer, event_wait_list) == 40 &&
              offsetof(clEnqueueWriteBuffer, event) == 48 && offsetof(clEnqueueWriteBuffer, status) == 56 &&
              offsetof(clEnqueueWriteBuffer, blocking_write) == 60 &&
              offsetof(clEnqueueWriteBuffer, num_events_in_wait_list) == 64 && sizeof(clEnqueueWriteBuffer) == 72);

/// Since OpenCL 1.1, like the other rectangular copies. Origins and region point to three numbers each.
struct clEnqueueReadBufferRect {
    _nq_cl_command_queue* command_queue;
    _nq_cl_mem* buffer;
    std::size_t const* buffer_origin;
    std::size_t const* host_origin;
    std::size_t const* region;
    std::size_t buffer_row_pitch;
    std::size_t buffer_slice_pitch;
    std::size_t host_row_pitch;
    std::size_t host_slice_pitch;
    void* ptr;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    std::int32_t status;
    std::uint32_t blocking_read;
    std::uint32_t num_events_in_wait_list;
};
static_assert(
    offsetof(clEnqueueReadBufferRect, command_queue) == 0 && offsetof(clEnqueueReadBufferRect, buffer) == 8 &&
    offsetof(clEnqueueReadBufferRect, buffer_origin) == 16 && offsetof(clEnqueueReadBufferRect, host_origin) == 24 &&
    offsetof(clEnqueueReadBufferRect, region) == 32 && offsetof(clEnqueueReadBufferRect, buffer_row_pitch) == 40 &&
    offsetof(clEnqueueReadBufferRect, buffer_slice_pitch) == 48 &&
    offsetof(clEnqueueReadBufferRect, host_row_pitch) == 56 &&
    offsetof(clEnqueueReadBufferRect, host_slice_pitch) == 64 && offsetof(clEnqueueReadBufferRect, ptr) == 72 &&
    offsetof(clEnqueueReadBufferRect, event_wait_list) == 80 && offsetof(clEnqueueReadBufferRect, event) == 88 &&
    offsetof(clEnqueueReadBufferRect, status) == 96 && offsetof(clEnqueueReadBufferRect, blocking_read) == 100 &&
    offsetof(clEnqueueReadBufferRect, num_events_in_wait_list) == 104 && sizeof(clEnqueueReadBufferRect) == 112);

/// From host memory to a buffer. Since OpenCL 1.1.
struct clEnqueueWriteBufferRect {
    _nq_cl_command_queue* command_queue;
    _nq_cl_mem* buffer;
    std::size_t const* buffer_origin;
    std::size_t const* host_origin;
    std::size_t const* region;
    std::size_t buffer_row_pitch;
    std::size_t buffer_slice_pitch;
    std::size_t host_row_pitch;
    std::size_t host_slice_pitch;
    void const* ptr;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    std::int32_t status;
    std::uint32_t blocking_write;
    std::uint32_t num_events_in_wait_list;
};
static_assert(
    offsetof(clEnqueueWriteBufferRect, command_queue) == 0 && offsetof(clEnqueueWriteBufferRect, buffer) == 8 &&
    offsetof(clEnqueueWriteBufferRect, buffer_origin) == 16 && offsetof(clEnqueueWriteBufferRect, host_origin) == 24 &&
    offsetof(clEnqueueWriteBufferRect, region) == 32 && offsetof(clEnqueueWriteBufferRect, buffer_row_pitch) == 40 &&
    offsetof(clEnqueueWriteBufferRect, buffer_slice_pitch) == 48 &&
    offsetof(clEnqueueWriteBufferRect, host_row_pitch) == 56 &&
    offsetof(clEnqueueWriteBufferRect, host_slice_pitch) == 64 && offsetof(clEnqueueWriteBufferRect, ptr) == 72 &&
    offsetof(clEnqueueWriteBufferRect, event_wait_list) == 80 && offsetof(clEnqueueWriteBufferRect, event) == 88 &&
    offsetof(clEnqueueWriteBufferRect, status) == 96 && offsetof(clEnqueueWriteBufferRect, blocking_write) == 100 &&
    offsetof(clEnqueueWriteBufferRect, num_events_in_wait_list) == 104 && sizeof(clEnqueueWriteBufferRect) == 112);

/// From buffer to buffer; within one, the regions must not overlap. Offsets and size are in bytes.
struct clEnqueueCopyBuffer {
    _nq_cl_command_queue* command_queue;
    _nq_cl_mem* src_buffer;
    _nq_cl_mem* dst_buffer;
    std::size_t src_offset;
    std::size_t dst_offset;
    std::size_t size;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    std::int32_t status;
    std::uint32_t num_events_in_wait_list;
};
static_assert(offsetof(clEnqueueCopyBuffer, command_queue) == 0 && offsetof(clEnqueueCopyBuffer, src_buffer) == 8 &&
              offsetof(clEnqueueCopyBuffer, dst_buffer) == 16 && offsetof(clEnqueueCopyBuffer, src_offset) == 24 &&
              offsetof(clEnqueueCopyBuffer, dst_offset) == 32 && offsetof(clEnqueueCopyBuffer, size) == 40 &&
              offsetof(clEnqueueCopyBuffer, event_wait_list) == 48 && offsetof(clEnqueueCopyBuffer, event) == 56 &&
              offsetof(clEnqueueCopyBuffer, status) == 64 &&
              offsetof(clEnqueueCopyBuffer, num_events_in_wait_list) == 68 && sizeof(clEnqueueCopyBuffer) == 72);

/// From buffer to buffer. Since OpenCL 1.1.
struct clEnqueueCopyBufferRect {
    _nq_cl_command_queue* command_queue;
    _nq_cl_mem* src_buffer;
    _nq_cl_mem* dst_buffer;
    std::size_t const* src_origin;
    std::size_t const* dst_origin;
    std::size_t const* region;
    std::size_t src_row_pitch;
    std::size_t src_slice_pitch;
    std::size_t dst_row_pitch;
    std::size_t dst_slice_pitch;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    std::int32_t status;
    std::uint32_t num_events_in_wait_list;
};
static_assert(offsetof(clEnqueueCopyBufferRect, command_queue) == 0 &&
              offsetof(clEnqueueCopyBufferRect, src_buffer) == 8 &&
              offsetof(clEnqueueCopyBufferRect, dst_buffer) == 16 &&
              offsetof(clEnqueueCopyBufferRect, src_origin) == 24 &&
              offsetof(clEnqueueCopyBufferRect, dst_origin) == 32 && offsetof(clEnqueueCopyBufferRect, region) == 40 &&
              offsetof(clEnqueueCopyBufferRect, src_row_pitch) == 48 &&
              offsetof(clEnqueueCopyBufferRect, src_slice_pitch) == 56 &&
              offsetof(clEnqueueCopyBufferRect, dst_row_pitch) == 64 &&
              offsetof(clEnqueueCopyBufferRect, dst_slice_pitch) == 72 &&
              offsetof(clEnqueueCopyBufferRect, event_wait_list) == 80 &&
              offsetof(clEnqueueCopyBufferRect, event) == 88 && offsetof(clEnqueueCopyBufferRect, status) == 96 &&
              offsetof(clEnqueueCopyBufferRect, num_events_in_wait_list) == 100 &&
              sizeof(clEnqueueCopyBufferRect) == 104);

/// Since OpenCL 1.2. OpenCL copies the pattern during the call.
struct clEnqueueFillBuffer {
    _nq_cl_command_queue* command_queue;
    _nq_cl_mem* buffer;
    void const* pattern;
    std::size_t pattern_size;
    std::size_t offset;
    std::size_t size;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    std::int32_t status;
    std::uint32_t num_events_in_wait_list;
};
static_assert(offsetof(clEnqueueFillBuffer, command_queue) == 0 && offsetof(clEnqueueFillBuffer, buffer) == 8 &&
              offsetof(clEnqueueFillBuffer, pattern) == 16 && offsetof(clEnqueueFillBuffer, pattern_size) == 24 &&
              offsetof(clEnqueueFillBuffer, offset) == 32 && offsetof(clEnqueueFillBuffer, size) == 40 &&
              offsetof(clEnqueueFillBuffer, event_wait_list) == 48 && offsetof(clEnqueueFillBuffer, event) == 56 &&
              offsetof(clEnqueueFillBuffer, status) == 64 &&
              offsetof(clEnqueueFillBuffer, num_events_in_wait_list) == 68 && sizeof(clEnqueueFillBuffer) == 72);

/// `result` is the address in host memory, usable when the event is complete.
struct clEnqueueMapBuffer {
    std::uint64_t map_flags;
    _nq_cl_command_queue* command_queue;
    _nq_cl_mem* buffer;
    std::size_t offset;
    std::size_t size;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    void* result;
    std::int32_t error_code;
    std::uint32_t blocking_map;
    std::uint32_t num_events_in_wait_list;
};
static_assert(offsetof(clEnqueueMapBuffer, map_flags) == 0 && offsetof(clEnqueueMapBuffer, command_queue) == 8 &&
              offsetof(clEnqueueMapBuffer, buffer) == 16 && offsetof(clEnqueueMapBuffer, offset) == 24 &&
              offsetof(clEnqueueMapBuffer, size) == 32 && offsetof(clEnqueueMapBuffer, event_wait_list) == 40 &&
              offsetof(clEnqueueMapBuffer, event) == 48 && offsetof(clEnqueueMapBuffer, result) == 56 &&
              offsetof(clEnqueueMapBuffer, error_code) == 64 && offsetof(clEnqueueMapBuffer, blocking_map) == 68 &&
              offsetof(clEnqueueMapBuffer, num_events_in_wait_list) == 72 && sizeof(clEnqueueMapBuffer) == 80);

/// Ends a mapping of a buffer or an image. `mapped_ptr` is the address that the mapping returned.
struct clEnqueueUnmapMemObject {
    _nq_cl_command_queue* command_queue;
    _nq_cl_mem* memobj;
    void* mapped_ptr;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    std::int32_t status;
    std::uint32_t num_events_in_wait_list;
};
static_assert(offsetof(clEnqueueUnmapMemObject, command_queue) == 0 && offsetof(clEnqueueUnmapMemObject, memobj) == 8 &&
              offsetof(clEnqueueUnmapMemObject, mapped_ptr) == 16 &&
              offsetof(clEnqueueUnmapMemObject, event_wait_list) == 24 &&
              offsetof(clEnqueueUnmapMemObject, event) == 32 && offsetof(clEnqueueUnmapMemObject, status) == 40 &&
              offsetof(clEnqueueUnmapMemObject, num_events_in_wait_list) == 44 &&
              sizeof(clEnqueueUnmapMemObject) == 48);

/// Moves memory objects to the device of the queue, or to the host. Since OpenCL 1.2.
struct clEnqueueMigrateMemObjects {
    std::uint64_t flags;
    _nq_cl_command_queue* command_queue;
    _nq_cl_mem* const* mem_objects;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    std::int32_t status;
    std::uint32_t num_mem_objects;
    std::uint32_t num_events_in_wait_list;
};
static_assert(offsetof(clEnqueueMigrateMemObjects, flags) == 0 &&
              offsetof(clEnqueueMigrateMemObjects, command_queue) == 8 &&
              offsetof(clEnqueueMigrateMemObjects, mem_objects) == 16 &&
              offsetof(clEnqueueMigrateMemObjects, event_wait_list) == 24 &&
              offsetof(clEnqueueMigrateMemObjects, event) == 32 && offsetof(clEnqueueMigrateMemObjects, status) == 40 &&
              offsetof(clEnqueueMigrateMemObjects, num_mem_objects) == 44 &&
              offsetof(clEnqueueMigrateMemObjects, num_events_in_wait_list) == 48 &&
              sizeof(clEnqueueMigrateMemObjects) == 56);

} // namespace nq::block
