#pragma once

// Blocks of kernel launches, markers, barriers and waits. For the fields of all enqueue entry points see
// nq/blocks/enqueue_buffer.hpp.

#include <nq/types.hpp>

#include <cstddef>
#include <cstdint>

namespace nq::block {

/// Offset and sizes point to `work_dim` numbers; `global_work_offset` is null in OpenCL 1.0.
struct clEnqueueNDRangeKernel {
    _nq_cl_command_queue* command_queue;
    _nq_cl_kernel* kernel;
    std::size_t const* global_work_offset;
    std::size_t const* global_work_size;
    std::size_t const* local_work_size;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    std::int32_t status;
    std::uint32_t work_dim;
    std::uint32_t num_events_in_wait_list;
};
static_assert(offsetof(clEnqueueNDRangeKernel, command_queue) == 0 && offsetof(clEnqueueNDRangeKernel, kernel) == 8 &&
              offsetof(clEnqueueNDRangeKernel, global_work_offset) == 16 &&
              offsetof(clEnqueueNDRangeKernel, global_work_size) == 24 &&
              offsetof(clEnqueueNDRangeKernel, local_work_size) == 32 &&
              offsetof(clEnqueueNDRangeKernel, event_wait_list) == 40 &&
              offsetof(clEnqueueNDRangeKernel, event) == 48 && offsetof(clEnqueueNDRangeKernel, status) == 56 &&
              offsetof(clEnqueueNDRangeKernel, work_dim) == 60 &&
              offsetof(clEnqueueNDRangeKernel, num_events_in_wait_list) == 64 && sizeof(clEnqueueNDRangeKernel) == 72);

/// Until OpenCL 1.2. The library uses it in OpenCL 1.0 only.
struct clEnqueueTask {
    _nq_cl_command_queue* command_queue;
    _nq_cl_kernel* kernel;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    std::int32_t status;
    std::uint32_t num_events_in_wait_list;
};
static_assert(offsetof(clEnqueueTask, command_queue) == 0 && offsetof(clEnqueueTask, kernel) == 8 &&
              offsetof(clEnqueueTask, event_wait_list) == 16 && offsetof(clEnqueueTask, event) == 24 &&
              offsetof(clEnqueueTask, status) == 32 && offsetof(clEnqueueTask, num_events_in_wait_list) == 36 &&
              sizeof(clEnqueueTask) == 40);

/// OpenCL copies `args` during the call, and writes the address of each memory object's memory to its place in the
/// copy.
struct clEnqueueNativeKernel {
    _nq_cl_command_queue* command_queue;
    native_function user_func;
    void* args;
    std::size_t cb_args;
    _nq_cl_mem* const* mem_list;
    void const** args_mem_loc;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    std::int32_t status;
    std::uint32_t num_mem_objects;
    std::uint32_t num_events_in_wait_list;
};
static_assert(offsetof(clEnqueueNativeKernel, command_queue) == 0 && offsetof(clEnqueueNativeKernel, user_func) == 8 &&
              offsetof(clEnqueueNativeKernel, args) == 16 && offsetof(clEnqueueNativeKernel, cb_args) == 24 &&
              offsetof(clEnqueueNativeKernel, mem_list) == 32 && offsetof(clEnqueueNativeKernel, args_mem_loc) == 40 &&
              offsetof(clEnqueueNativeKernel, event_wait_list) == 48 && offsetof(clEnqueueNativeKernel, event) == 56 &&
              offsetof(clEnqueueNativeKernel, status) == 64 && offsetof(clEnqueueNativeKernel, num_mem_objects) == 68 &&
              offsetof(clEnqueueNativeKernel, num_events_in_wait_list) == 72 && sizeof(clEnqueueNativeKernel) == 80);

/// An event that completes when all earlier commands are complete. Until OpenCL 1.1, like clEnqueueBarrier.
struct clEnqueueMarker {
    _nq_cl_command_queue* command_queue;
    _nq_cl_event** event;
    std::int32_t status;
};
static_assert(offsetof(clEnqueueMarker, command_queue) == 0 && offsetof(clEnqueueMarker, event) == 8 &&
              offsetof(clEnqueueMarker, status) == 16 && sizeof(clEnqueueMarker) == 24);

/// The same for a wait list or, without one, for all earlier commands. Since OpenCL 1.2, like
/// clEnqueueBarrierWithWaitList.
struct clEnqueueMarkerWithWaitList {
    _nq_cl_command_queue* command_queue;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    std::int32_t status;
    std::uint32_t num_events_in_wait_list;
};
static_assert(offsetof(clEnqueueMarkerWithWaitList, command_queue) == 0 &&
              offsetof(clEnqueueMarkerWithWaitList, event_wait_list) == 8 &&
              offsetof(clEnqueueMarkerWithWaitList, event) == 16 &&
              offsetof(clEnqueueMarkerWithWaitList, status) == 24 &&
              offsetof(clEnqueueMarkerWithWaitList, num_events_in_wait_list) == 28 &&
              sizeof(clEnqueueMarkerWithWaitList) == 32);

/// Later commands wait for all earlier ones. Until OpenCL 1.1.
struct clEnqueueBarrier {
    _nq_cl_command_queue* command_queue;
    std::int32_t status;
};
static_assert(offsetof(clEnqueueBarrier, command_queue) == 0 && offsetof(clEnqueueBarrier, status) == 8 &&
              sizeof(clEnqueueBarrier) == 16);

/// Later commands wait for the list or, without one, for all earlier commands. Since OpenCL 1.2.
struct clEnqueueBarrierWithWaitList {
    _nq_cl_command_queue* command_queue;
    _nq_cl_event* const* event_wait_list;
    _nq_cl_event** event;
    std::int32_t status;
    std::uint32_t num_events_in_wait_list;
};
static_assert(offsetof(clEnqueueBarrierWithWaitList, command_queue) == 0 &&
              offsetof(clEnqueueBarrierWithWaitList, event_wait_list) == 8 &&
              offsetof(clEnqueueBarrierWithWaitList, event) == 16 &&
              offsetof(clEnqueueBarrierWithWaitList, status) == 24 &&
              offsetof(clEnqueueBarrierWithWaitList, num_events_in_wait_list) == 28 &&
              sizeof(clEnqueueBarrierWithWaitList) == 32);

/// Until OpenCL 1.1. The library uses it in OpenCL 1.0 only.
struct clEnqueueWaitForEvents {
    _nq_cl_command_queue* command_queue;
    _nq_cl_event* const* event_list;
    std::int32_t status;
    std::uint32_t num_events;
};
static_assert(offsetof(clEnqueueWaitForEvents, command_queue) == 0 &&
              offsetof(clEnqueueWaitForEvents, event_list) == 8 && offsetof(clEnqueueWaitForEvents, status) == 16 &&
              offsetof(clEnqueueWaitForEvents, num_events) == 20 && sizeof(clEnqueueWaitForEvents) == 24);

} // namespace nq::block
