#pragma once

// Blocks that create memory objects and shared virtual memory. `host_ptr` is the caller's memory; `flags` tell how it
// is used.

#include <nq/types.hpp>

#include <cstddef>
#include <cstdint>

namespace nq::block {

/// A buffer of `size` bytes. `host_ptr` is null unless the flags use it.
struct clCreateBuffer {
    std::uint64_t flags;
    _nq_cl_context* context;
    std::size_t size;
    void* host_ptr;
    _nq_cl_mem* result;
    std::int32_t error_code;
};
static_assert(offsetof(clCreateBuffer, flags) == 0 && offsetof(clCreateBuffer, context) == 8 &&
              offsetof(clCreateBuffer, size) == 16 && offsetof(clCreateBuffer, host_ptr) == 24 &&
              offsetof(clCreateBuffer, result) == 32 && offsetof(clCreateBuffer, error_code) == 40 &&
              sizeof(clCreateBuffer) == 48);

/// Since OpenCL 1.1. OpenCL reads `buffer_create_info` during the call.
struct clCreateSubBuffer {
    std::uint64_t flags;
    _nq_cl_mem* buffer;
    buffer_region const* buffer_create_info;
    _nq_cl_mem* result;
    std::int32_t error_code;
    std::uint32_t buffer_create_type;
};
static_assert(offsetof(clCreateSubBuffer, flags) == 0 && offsetof(clCreateSubBuffer, buffer) == 8 &&
              offsetof(clCreateSubBuffer, buffer_create_info) == 16 && offsetof(clCreateSubBuffer, result) == 24 &&
              offsetof(clCreateSubBuffer, error_code) == 32 && offsetof(clCreateSubBuffer, buffer_create_type) == 36 &&
              sizeof(clCreateSubBuffer) == 40);

/// Since OpenCL 1.2. `image_format` points to two words of 32 bits, channel order and channel type.
struct clCreateImage {
    std::uint64_t flags;
    _nq_cl_context* context;
    void const* image_format;
    nq::image_desc const* image_desc;
    void* host_ptr;
    _nq_cl_mem* result;
    std::int32_t error_code;
};
static_assert(offsetof(clCreateImage, flags) == 0 && offsetof(clCreateImage, context) == 8 &&
              offsetof(clCreateImage, image_format) == 16 && offsetof(clCreateImage, image_desc) == 24 &&
              offsetof(clCreateImage, host_ptr) == 32 && offsetof(clCreateImage, result) == 40 &&
              offsetof(clCreateImage, error_code) == 48 && sizeof(clCreateImage) == 56);

/// A two-dimensional image. Until OpenCL 1.1, like clCreateImage3D.
struct clCreateImage2D {
    std::uint64_t flags;
    _nq_cl_context* context;
    void const* image_format;
    std::size_t image_width;
    std::size_t image_height;
    std::size_t image_row_pitch;
    void* host_ptr;
    _nq_cl_mem* result;
    std::int32_t error_code;
};
static_assert(offsetof(clCreateImage2D, flags) == 0 && offsetof(clCreateImage2D, context) == 8 &&
              offsetof(clCreateImage2D, image_format) == 16 && offsetof(clCreateImage2D, image_width) == 24 &&
              offsetof(clCreateImage2D, image_height) == 32 && offsetof(clCreateImage2D, image_row_pitch) == 40 &&
              offsetof(clCreateImage2D, host_ptr) == 48 && offsetof(clCreateImage2D, result) == 56 &&
              offsetof(clCreateImage2D, error_code) == 64 && sizeof(clCreateImage2D) == 72);

/// A three-dimensional image. Until OpenCL 1.1; since then clCreateImage.
struct clCreateImage3D {
    std::uint64_t flags;
    _nq_cl_context* context;
    void const* image_format;
    std::size_t image_width;
    std::size_t image_height;
    std::size_t image_depth;
    std::size_t image_row_pitch;
    std::size_t image_slice_pitch;
    void* host_ptr;
    _nq_cl_mem* result;
    std::int32_t error_code;
};
static_assert(offsetof(clCreateImage3D, flags) == 0 && offsetof(clCreateImage3D, context) == 8 &&
              offsetof(clCreateImage3D, image_format) == 16 && offsetof(clCreateImage3D, image_width) == 24 &&
              offsetof(clCreateImage3D, image_height) == 32 && offsetof(clCreateImage3D, image_depth) == 40 &&
              offsetof(clCreateImage3D, image_row_pitch) == 48 && offsetof(clCreateImage3D, image_slice_pitch) == 56 &&
              offsetof(clCreateImage3D, host_ptr) == 64 && offsetof(clCreateImage3D, result) == 72 &&
              offsetof(clCreateImage3D, error_code) == 80 && sizeof(clCreateImage3D) == 88);

/// Since OpenCL 2.0. `properties` is null.
struct clCreatePipe {
    std::uint64_t flags;
    _nq_cl_context* context;
    std::int64_t const* properties;
    _nq_cl_mem* result;
    std::uint32_t pipe_packet_size;
    std::uint32_t pipe_max_packets;
    std::int32_t error_code;
};
static_assert(offsetof(clCreatePipe, flags) == 0 && offsetof(clCreatePipe, context) == 8 &&
              offsetof(clCreatePipe, properties) == 16 && offsetof(clCreatePipe, result) == 24 &&
              offsetof(clCreatePipe, pipe_packet_size) == 32 && offsetof(clCreatePipe, pipe_max_packets) == 36 &&
              offsetof(clCreatePipe, error_code) == 40 && sizeof(clCreatePipe) == 48);

/// Since OpenCL 1.1. The library does not use it.
struct clSetMemObjectDestructorCallback {
    _nq_cl_mem* memobj;
    memory_callback pfn_notify;
    void* user_data;
    std::int32_t status;
};
static_assert(offsetof(clSetMemObjectDestructorCallback, memobj) == 0 &&
              offsetof(clSetMemObjectDestructorCallback, pfn_notify) == 8 &&
              offsetof(clSetMemObjectDestructorCallback, user_data) == 16 &&
              offsetof(clSetMemObjectDestructorCallback, status) == 24 &&
              sizeof(clSetMemObjectDestructorCallback) == 32);

/// Since OpenCL 2.0. No status: a null `result` means failure.
struct clSVMAlloc {
    std::uint64_t flags;
    _nq_cl_context* context;
    std::size_t size;
    void* result;
    std::uint32_t alignment;
};
static_assert(offsetof(clSVMAlloc, flags) == 0 && offsetof(clSVMAlloc, context) == 8 &&
              offsetof(clSVMAlloc, size) == 16 && offsetof(clSVMAlloc, result) == 24 &&
              offsetof(clSVMAlloc, alignment) == 32 && sizeof(clSVMAlloc) == 40);

/// Since OpenCL 2.0. No result and no status.
struct clSVMFree {
    _nq_cl_context* context;
    void* svm_pointer;
};
static_assert(offsetof(clSVMFree, context) == 0 && offsetof(clSVMFree, svm_pointer) == 8 && sizeof(clSVMFree) == 16);

} // namespace nq::block
