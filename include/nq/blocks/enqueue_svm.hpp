#pragma once

// Blocks of commands on shared virtual memory. Since OpenCL 2.0 unless stated otherwise. For the fields of all enqueue
// entry points see nq/blocks/enqueue_buffer.hpp.

#include <nq/types.hpp>

#include <cstddef>
#include <cstdint>

namespace nq::block {

/// OpenCL frees the pointers; if there is a callback, the callback must do so instead.
struct clEnqueueSVMFree {
    _nq_cl_command_queue* command_queue;
    void** svm_pointers;
    svm_free_callback pfn_free_func;
    void* user_data;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    std::int32_t status;
    std::uint32_t num_svm_pointers;
    std::uint32_t num_events_in_wait_list;
};
static_assert(offsetof(clEnqueueSVMFree, command_queue) == 0 && offsetof(clEnqueueSVMFree, svm_pointers) == 8 &&
              offsetof(clEnqueueSVMFree, pfn_free_func) == 16 && offsetof(clEnqueueSVMFree, user_data) == 24 &&
              offsetof(clEnqueueSVMFree, event_wait_list) == 32 && offsetof(clEnqueueSVMFree, event) == 40 &&
              offsetof(clEnqueueSVMFree, status) == 48 && offsetof(clEnqueueSVMFree, num_svm_pointers) == 52 &&
              offsetof(clEnqueueSVMFree, num_events_in_wait_list) == 56 && sizeof(clEnqueueSVMFree) == 64);

/// Copies bytes; either address may also be plain host memory.
struct clEnqueueSVMMemcpy {
    _nq_cl_command_queue* command_queue;
    void* dst_ptr;
    void const* src_ptr;
    std::size_t size;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    std::int32_t status;
    std::uint32_t blocking_copy;
    std::uint32_t num_events_in_wait_list;
};
static_assert(offsetof(clEnqueueSVMMemcpy, command_queue) == 0 && offsetof(clEnqueueSVMMemcpy, dst_ptr) == 8 &&
              offsetof(clEnqueueSVMMemcpy, src_ptr) == 16 && offsetof(clEnqueueSVMMemcpy, size) == 24 &&
              offsetof(clEnqueueSVMMemcpy, event_wait_list) == 32 && offsetof(clEnqueueSVMMemcpy, event) == 40 &&
              offsetof(clEnqueueSVMMemcpy, status) == 48 && offsetof(clEnqueueSVMMemcpy, blocking_copy) == 52 &&
              offsetof(clEnqueueSVMMemcpy, num_events_in_wait_list) == 56 && sizeof(clEnqueueSVMMemcpy) == 64);

/// OpenCL copies the pattern during the call.
struct clEnqueueSVMMemFill {
    _nq_cl_command_queue* command_queue;
    void* svm_ptr;
    void const* pattern;
    std::size_t pattern_size;
    std::size_t size;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    std::int32_t status;
    std::uint32_t num_events_in_wait_list;
};
static_assert(offsetof(clEnqueueSVMMemFill, command_queue) == 0 && offsetof(clEnqueueSVMMemFill, svm_ptr) == 8 &&
              offsetof(clEnqueueSVMMemFill, pattern) == 16 && offsetof(clEnqueueSVMMemFill, pattern_size) == 24 &&
              offsetof(clEnqueueSVMMemFill, size) == 32 && offsetof(clEnqueueSVMMemFill, event_wait_list) == 40 &&
              offsetof(clEnqueueSVMMemFill, event) == 48 && offsetof(clEnqueueSVMMemFill, status) == 56 &&
              offsetof(clEnqueueSVMMemFill, num_events_in_wait_list) == 60 && sizeof(clEnqueueSVMMemFill) == 64);

/// Gives the host a region, as `clEnqueueMapBuffer` does, at the address that it has.
struct clEnqueueSVMMap {
    std::uint64_t map_flags;
    _nq_cl_command_queue* command_queue;
    void* svm_ptr;
    std::size_t size;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    std::int32_t status;
    std::uint32_t blocking_map;
    std::uint32_t num_events_in_wait_list;
};
static_assert(offsetof(clEnqueueSVMMap, map_flags) == 0 && offsetof(clEnqueueSVMMap, command_queue) == 8 &&
              offsetof(clEnqueueSVMMap, svm_ptr) == 16 && offsetof(clEnqueueSVMMap, size) == 24 &&
              offsetof(clEnqueueSVMMap, event_wait_list) == 32 && offsetof(clEnqueueSVMMap, event) == 40 &&
              offsetof(clEnqueueSVMMap, status) == 48 && offsetof(clEnqueueSVMMap, blocking_map) == 52 &&
              offsetof(clEnqueueSVMMap, num_events_in_wait_list) == 56 && sizeof(clEnqueueSVMMap) == 64);

/// Ends a mapping.
struct clEnqueueSVMUnmap {
    _nq_cl_command_queue* command_queue;
    void* svm_ptr;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    std::int32_t status;
    std::uint32_t num_events_in_wait_list;
};
static_assert(offsetof(clEnqueueSVMUnmap, command_queue) == 0 && offsetof(clEnqueueSVMUnmap, svm_ptr) == 8 &&
              offsetof(clEnqueueSVMUnmap, event_wait_list) == 16 && offsetof(clEnqueueSVMUnmap, event) == 24 &&
              offsetof(clEnqueueSVMUnmap, status) == 32 && offsetof(clEnqueueSVMUnmap, num_events_in_wait_list) == 36 &&
              sizeof(clEnqueueSVMUnmap) == 40);

/// Since OpenCL 2.1. In the entry point's own order, then the status. Null `sizes`, or a size of 0, mean whole
/// allocations.
struct clEnqueueSVMMigrateMem {
    _nq_cl_command_queue* command_queue;
    std::uint32_t num_svm_pointers;
    void const* const* svm_pointers;
    std::size_t const* sizes;
    std::uint64_t flags;
    std::uint32_t num_events_in_wait_list;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    std::int32_t status;
};
static_assert(offsetof(clEnqueueSVMMigrateMem, command_queue) == 0 &&
              offsetof(clEnqueueSVMMigrateMem, num_svm_pointers) == 8 &&
              offsetof(clEnqueueSVMMigrateMem, svm_pointers) == 16 && offsetof(clEnqueueSVMMigrateMem, sizes) == 24 &&
              offsetof(clEnqueueSVMMigrateMem, flags) == 32 &&
              offsetof(clEnqueueSVMMigrateMem, num_events_in_wait_list) == 40 &&
              offsetof(clEnqueueSVMMigrateMem, event_wait_list) == 48 &&
              offsetof(clEnqueueSVMMigrateMem, event) == 56 && offsetof(clEnqueueSVMMigrateMem, status) == 64 &&
              sizeof(clEnqueueSVMMigrateMem) == 72);

} // namespace nq::block
