#pragma once

// Blocks of the retain and release entry points: a handle and a status. Devices have them since OpenCL 1.2, platforms
// never.

#include <nq/types.hpp>

#include <cstddef>
#include <cstdint>

namespace nq::block {

/// Adds a reference.
struct clRetainCommandQueue {
    _nq_cl_command_queue* command_queue;
    std::int32_t status;
};
static_assert(offsetof(clRetainCommandQueue, command_queue) == 0 && offsetof(clRetainCommandQueue, status) == 8 &&
              sizeof(clRetainCommandQueue) == 16);

/// Drops a reference.
struct clReleaseCommandQueue {
    _nq_cl_command_queue* command_queue;
    std::int32_t status;
};
static_assert(offsetof(clReleaseCommandQueue, command_queue) == 0 && offsetof(clReleaseCommandQueue, status) == 8 &&
              sizeof(clReleaseCommandQueue) == 16);

/// Adds a reference.
struct clRetainContext {
    _nq_cl_context* context;
    std::int32_t status;
};
static_assert(offsetof(clRetainContext, context) == 0 && offsetof(clRetainContext, status) == 8 &&
              sizeof(clRetainContext) == 16);

/// Drops a reference.
struct clReleaseContext {
    _nq_cl_context* context;
    std::int32_t status;
};
static_assert(offsetof(clReleaseContext, context) == 0 && offsetof(clReleaseContext, status) == 8 &&
              sizeof(clReleaseContext) == 16);

/// Adds a reference. Since OpenCL 1.2.
struct clRetainDevice {
    _nq_cl_device_id* device;
    std::int32_t status;
};
static_assert(offsetof(clRetainDevice, device) == 0 && offsetof(clRetainDevice, status) == 8 &&
              sizeof(clRetainDevice) == 16);

/// Drops a reference. Since OpenCL 1.2.
struct clReleaseDevice {
    _nq_cl_device_id* device;
    std::int32_t status;
};
static_assert(offsetof(clReleaseDevice, device) == 0 && offsetof(clReleaseDevice, status) == 8 &&
              sizeof(clReleaseDevice) == 16);

/// Adds a reference.
struct clRetainEvent {
    _nq_cl_event* event;
    std::int32_t status;
};
static_assert(offsetof(clRetainEvent, event) == 0 && offsetof(clRetainEvent, status) == 8 &&
              sizeof(clRetainEvent) == 16);

/// Drops a reference.
struct clReleaseEvent {
    _nq_cl_event* event;
    std::int32_t status;
};
static_assert(offsetof(clReleaseEvent, event) == 0 && offsetof(clReleaseEvent, status) == 8 &&
              sizeof(clReleaseEvent) == 16);

/// Adds a reference.
struct clRetainKernel {
    _nq_cl_kernel* kernel;
    std::int32_t status;
};
static_assert(offsetof(clRetainKernel, kernel) == 0 && offsetof(clRetainKernel, status) == 8 &&
              sizeof(clRetainKernel) == 16);

/// Drops a reference.
struct clReleaseKernel {
    _nq_cl_kernel* kernel;
    std::int32_t status;
};
static_assert(offsetof(clReleaseKernel, kernel) == 0 && offsetof(clReleaseKernel, status) == 8 &&
              sizeof(clReleaseKernel) == 16);

/// Adds a reference.
struct clRetainMemObject {
    _nq_cl_mem* memobj;
    std::int32_t status;
};
static_assert(offsetof(clRetainMemObject, memobj) == 0 && offsetof(clRetainMemObject, status) == 8 &&
              sizeof(clRetainMemObject) == 16);

/// Drops a reference.
struct clReleaseMemObject {
    _nq_cl_mem* memobj;
    std::int32_t status;
};
static_assert(offsetof(clReleaseMemObject, memobj) == 0 && offsetof(clReleaseMemObject, status) == 8 &&
              sizeof(clReleaseMemObject) == 16);

/// Adds a reference.
struct clRetainProgram {
    _nq_cl_program* program;
    std::int32_t status;
};
static_assert(offsetof(clRetainProgram, program) == 0 && offsetof(clRetainProgram, status) == 8 &&
              sizeof(clRetainProgram) == 16);

/// Drops a reference.
struct clReleaseProgram {
    _nq_cl_program* program;
    std::int32_t status;
};
static_assert(offsetof(clReleaseProgram, program) == 0 && offsetof(clReleaseProgram, status) == 8 &&
              sizeof(clReleaseProgram) == 16);

/// Adds a reference.
struct clRetainSampler {
    _nq_cl_sampler* sampler;
    std::int32_t status;
};
static_assert(offsetof(clRetainSampler, sampler) == 0 && offsetof(clRetainSampler, status) == 8 &&
              sizeof(clRetainSampler) == 16);

/// Drops a reference.
struct clReleaseSampler {
    _nq_cl_sampler* sampler;
    std::int32_t status;
};
static_assert(offsetof(clReleaseSampler, sampler) == 0 && offsetof(clReleaseSampler, status) == 8 &&
              sizeof(clReleaseSampler) == 16);

} // namespace nq::block
