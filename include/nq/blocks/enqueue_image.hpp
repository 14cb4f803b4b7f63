#pragma once

// Blocks of commands on images. Origins and regions point to three numbers, in pixels; pitches are in bytes. For the
// fields of all enqueue entry points see nq/blocks/enqueue_buffer.hpp.

#include <nq/types.hpp>

#include <cstddef>
#include <cstdint>

namespace nq::block {

/// From an image to host memory. Pitches of 0 mean rows and slices without gaps.
struct clEnqueueReadImage {
    _nq_cl_command_queue* command_queue;
    _nq_cl_mem* image;
    std::size_t const* origin;
    std::size_t const* region;
    std::size_t row_pitch;
    std::size_t slice_pitch;
    void* ptr;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    std::int32_t status;
    std::uint32_t blocking_read;
    std::uint32_t num_events_in_wait_list;
};
static_assert(offsetof(clEnqueueReadImage, command_queue) == 0 && offsetof(clEnqueueReadImage, image) == 8 &&
              offsetof(clEnqueueReadImage, origin) == 16 && offsetof(clEnqueueReadImage, region) == 24 &&
              offsetof(clEnqueueReadImage, row_pitch) == 32 && offsetof(clEnqueueReadImage, slice_pitch) == 40 &&
              offsetof(clEnqueueReadImage, ptr) == 48 && offsetof(clEnqueueReadImage, event_wait_list) == 56 &&
              offsetof(clEnqueueReadImage, event) == 64 && offsetof(clEnqueueReadImage, status) == 72 &&
              offsetof(clEnqueueReadImage, blocking_read) == 76 &&
              offsetof(clEnqueueReadImage, num_events_in_wait_list) == 80 && sizeof(clEnqueueReadImage) == 88);

/// From host memory to an image. Pitches of 0 mean rows and slices without gaps.
struct clEnqueueWriteImage {
    _nq_cl_command_queue* command_queue;
    _nq_cl_mem* image;
    std::size_t const* origin;
    std::size_t const* region;
    std::size_t input_row_pitch;
    std::size_t input_slice_pitch;
    void const* ptr;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    std::int32_t status;
    std::uint32_t blocking_write;
    std::uint32_t num_events_in_wait_list;
};
static_assert(offsetof(clEnqueueWriteImage, command_queue) == 0 && offsetof(clEnqueueWriteImage, image) == 8 &&
              offsetof(clEnqueueWriteImage, origin) == 16 && offsetof(clEnqueueWriteImage, region) == 24 &&
              offsetof(clEnqueueWriteImage, input_row_pitch) == 32 &&
              offsetof(clEnqueueWriteImage, input_slice_pitch) == 40 && offsetof(clEnqueueWriteImage, ptr) == 48 &&
              offsetof(clEnqueueWriteImage, event_wait_list) == 56 && offsetof(clEnqueueWriteImage, event) == 64 &&
              offsetof(clEnqueueWriteImage, status) == 72 && offsetof(clEnqueueWriteImage, blocking_write) == 76 &&
              offsetof(clEnqueueWriteImage, num_events_in_wait_list) == 80 && sizeof(clEnqueueWriteImage) == 88);

/// From image to image, of one format.
struct clEnqueueCopyImage {
    _nq_cl_command_queue* command_queue;
    _nq_cl_mem* src_image;
    _nq_cl_mem* dst_image;
    std::size_t const* src_origin;
    std::size_t const* dst_origin;
    std::size_t const* region;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    std::int32_t status;
    std::uint32_t num_events_in_wait_list;
};
static_assert(offsetof(clEnqueueCopyImage, command_queue) == 0 && offsetof(clEnqueueCopyImage, src_image) == 8 &&
              offsetof(clEnqueueCopyImage, dst_image) == 16 && offsetof(clEnqueueCopyImage, src_origin) == 24 &&
              offsetof(clEnqueueCopyImage, dst_origin) == 32 && offsetof(clEnqueueCopyImage, region) == 40 &&
              offsetof(clEnqueueCopyImage, event_wait_list) == 48 && offsetof(clEnqueueCopyImage, event) == 56 &&
              offsetof(clEnqueueCopyImage, status) == 64 &&
              offsetof(clEnqueueCopyImage, num_events_in_wait_list) == 68 && sizeof(clEnqueueCopyImage) == 72);

/// Since OpenCL 1.2. `fill_color` points to four values of 32 bits; OpenCL copies them during the call.
struct clEnqueueFillImage {
    _nq_cl_command_queue* command_queue;
    _nq_cl_mem* image;
    void const* fill_color;
    std::size_t const* origin;
    std::size_t const* region;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    std::int32_t status;
    std::uint32_t num_events_in_wait_list;
};
static_assert(offsetof(clEnqueueFillImage, command_queue) == 0 && offsetof(clEnqueueFillImage, image) == 8 &&
              offsetof(clEnqueueFillImage, fill_color) == 16 && offsetof(clEnqueueFillImage, origin) == 24 &&
              offsetof(clEnqueueFillImage, region) == 32 && offsetof(clEnqueueFillImage, event_wait_list) == 40 &&
              offsetof(clEnqueueFillImage, event) == 48 && offsetof(clEnqueueFillImage, status) == 56 &&
              offsetof(clEnqueueFillImage, num_events_in_wait_list) == 60 && sizeof(clEnqueueFillImage) == 64);

/// From an image to a buffer, without gaps from `dst_offset` bytes on.
struct clEnqueueCopyImageToBuffer {
    _nq_cl_command_queue* command_queue;
    _nq_cl_mem* src_image;
    _nq_cl_mem* dst_buffer;
    std::size_t const* src_origin;
    std::size_t const* region;
    std::size_t dst_offset;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    std::int32_t status;
    std::uint32_t num_events_in_wait_list;
};
static_assert(
    offsetof(clEnqueueCopyImageToBuffer, command_queue) == 0 && offsetof(clEnqueueCopyImageToBuffer, src_image) == 8 &&
    offsetof(clEnqueueCopyImageToBuffer, dst_buffer) == 16 && offsetof(clEnqueueCopyImageToBuffer, src_origin) == 24 &&
    offsetof(clEnqueueCopyImageToBuffer, region) == 32 && offsetof(clEnqueueCopyImageToBuffer, dst_offset) == 40 &&
    offsetof(clEnqueueCopyImageToBuffer, event_wait_list) == 48 && offsetof(clEnqueueCopyImageToBuffer, event) == 56 &&
    offsetof(clEnqueueCopyImageToBuffer, status) == 64 &&
    offsetof(clEnqueueCopyImageToBuffer, num_events_in_wait_list) == 68 && sizeof(clEnqueueCopyImageToBuffer) == 72);

/// From a buffer, without gaps from `src_offset` bytes on, to an image.
struct clEnqueueCopyBufferToImage {
    _nq_cl_command_queue* command_queue;
    _nq_cl_mem* src_buffer;
    _nq_cl_mem* dst_image;
    std::size_t src_offset;
    std::size_t const* dst_origin;
    std::size_t const* region;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    std::int32_t status;
    std::uint32_t num_events_in_wait_list;
};
static_assert(
    offsetof(clEnqueueCopyBufferToImage, command_queue) == 0 && offsetof(clEnqueueCopyBufferToImage, src_buffer) == 8 &&
    offsetof(clEnqueueCopyBufferToImage, dst_image) == 16 && offsetof(clEnqueueCopyBufferToImage, src_offset) == 24 &&
    offsetof(clEnqueueCopyBufferToImage, dst_origin) == 32 && offsetof(clEnqueueCopyBufferToImage, region) == 40 &&
    offsetof(clEnqueueCopyBufferToImage, event_wait_list) == 48 && offsetof(clEnqueueCopyBufferToImage, event) == 56 &&
    offsetof(clEnqueueCopyBufferToImage, status) == 64 &&
    offsetof(clEnqueueCopyBufferToImage, num_events_in_wait_list) == 68 && sizeof(clEnqueueCopyBufferToImage) == 72);

/// `result` is the address in host memory. The pitches are written through the pointers.
struct clEnqueueMapImage {
    std::uint64_t map_flags;
    _nq_cl_command_queue* command_queue;
    _nq_cl_mem* image;
    std::size_t const* origin;
    std::size_t const* region;
    std::size_t* image_row_pitch;
    std::size_t* image_slice_pitch;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    void* result;
    std::int32_t error_code;
    std::uint32_t blocking_map;
    std::uint32_t num_events_in_wait_list;
};
static_assert(offsetof(clEnqueueMapImage, map_flags) == 0 && offsetof(clEnqueueMapImage, command_queue) == 8 &&
              offsetof(clEnqueueMapImage, image) == 16 && offsetof(clEnqueueMapImage, origin) == 24 &&
              offsetof(clEnqueueMapImage, region) == 32 && offsetof(clEnqueueMapImage, image_row_pitch) == 40 &&
              offsetof(clEnqueueMapImage, image_slice_pitch) == 48 &&
              offsetof(clEnqueueMapImage, event_wait_list) == 56 && offsetof(clEnqueueMapImage, event) == 64 &&
              offsetof(clEnqueueMapImage, result) == 72 && offsetof(clEnqueueMapImage, error_code) == 80 &&
              offsetof(clEnqueueMapImage, blocking_map) == 84 &&
              offsetof(clEnqueueMapImage, num_events_in_wait_list) == 88 && sizeof(clEnqueueMapImage) == 96);

} // namespace nq::block
