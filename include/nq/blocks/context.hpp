#pragma once

// Blocks of contexts, sub-devices, queues, samplers and user events. A property list is null, or 64-bit words: names
// each followed by its value, and a closing 0.

#include <nq/types.hpp>

#include <cstddef>
#include <cstdint>

namespace nq::block {

/// Since OpenCL 1.2. Called twice: with null `out_devices` for their number, then for the devices, each with a
/// reference.
struct clCreateSubDevices {
    _nq_cl_device_id* in_device;
    std::int64_t const* properties;
    std::uint32_t num_devices;
    _nq_cl_device_id** out_devices;
    std::uint32_t* num_devices_ret;
    std::int32_t status;
};
static_assert(offsetof(clCreateSubDevices, in_device) == 0 && offsetof(clCreateSubDevices, properties) == 8 &&
              offsetof(clCreateSubDevices, num_devices) == 16 && offsetof(clCreateSubDevices, out_devices) == 24 &&
              offsetof(clCreateSubDevices, num_devices_ret) == 32 && offsetof(clCreateSubDevices, status) == 40 &&
              sizeof(clCreateSubDevices) == 48);

/// A context of devices. `pfn_notify` may be null.
struct clCreateContext {
    std::int64_t const* properties;
    std::uint32_t num_devices;
    _nq_cl_device_id* const* devices;
    context_callback pfn_notify;
    void* user_data;
    _nq_cl_context* result;
    std::int32_t error_code;
};
static_assert(offsetof(clCreateContext, properties) == 0 && offsetof(clCreateContext, num_devices) == 8 &&
              offsetof(clCreateContext, devices) == 16 && offsetof(clCreateContext, pfn_notify) == 24 &&
              offsetof(clCreateContext, user_data) == 32 && offsetof(clCreateContext, result) == 40 &&
              offsetof(clCreateContext, error_code) == 48 && sizeof(clCreateContext) == 56);

/// A context of all devices of a type. `pfn_notify` may be null.
struct clCreateContextFromType {
    std::int64_t const* properties;
    std::uint64_t device_type;
    context_callback pfn_notify;
    void* user_data;
    _nq_cl_context* result;
    std::int32_t error_code;
};
static_assert(offsetof(clCreateContextFromType, properties) == 0 &&
              offsetof(clCreateContextFromType, device_type) == 8 &&
              offsetof(clCreateContextFromType, pfn_notify) == 16 &&
              offsetof(clCreateContextFromType, user_data) == 24 && offsetof(clCreateContextFromType, result) == 32 &&
              offsetof(clCreateContextFromType, error_code) == 40 && sizeof(clCreateContextFromType) == 48);

/// Until OpenCL 1.2. `properties` are bits: 1 for out of order, 2 for profiling.
struct clCreateCommandQueue {
    _nq_cl_context* context;
    _nq_cl_device_id* device;
    std::uint64_t properties;
    std::int32_t error_code;
    _nq_cl_command_queue* result;
};
static_assert(offsetof(clCreateCommandQueue, context) == 0 && offsetof(clCreateCommandQueue, device) == 8 &&
              offsetof(clCreateCommandQueue, properties) == 16 && offsetof(clCreateCommandQueue, error_code) == 24 &&
              offsetof(clCreateCommandQueue, result) == 32 && sizeof(clCreateCommandQueue) == 40);

/// Since OpenCL 2.0. Unlike in clCreateCommandQueue, the device comes before the context.
struct clCreateCommandQueueWithProperties {
    _nq_cl_device_id* device;
    _nq_cl_context* context;
    std::uint64_t const* properties;
    _nq_cl_command_queue* result;
    std::int32_t error_code;
};
static_assert(offsetof(clCreateCommandQueueWithProperties, device) == 0 &&
              offsetof(clCreateCommandQueueWithProperties, context) == 8 &&
              offsetof(clCreateCommandQueueWithProperties, properties) == 16 &&
              offsetof(clCreateCommandQueueWithProperties, result) == 24 &&
              offsetof(clCreateCommandQueueWithProperties, error_code) == 32 &&
              sizeof(clCreateCommandQueueWithProperties) == 40);

/// Makes an on-device queue the default of its device. Since OpenCL 2.1.
struct clSetDefaultDeviceCommandQueue {
    _nq_cl_context* context;
    _nq_cl_device_id* device;
    _nq_cl_command_queue* command_queue;
    std::int32_t status;
};
static_assert(offsetof(clSetDefaultDeviceCommandQueue, context) == 0 &&
              offsetof(clSetDefaultDeviceCommandQueue, device) == 8 &&
              offsetof(clSetDefaultDeviceCommandQueue, command_queue) == 16 &&
              offsetof(clSetDefaultDeviceCommandQueue, status) == 24 && sizeof(clSetDefaultDeviceCommandQueue) == 32);

/// Switches properties of a queue: 1 for out of order, 2 for profiling. In OpenCL 1.0 only.
struct clSetCommandQueueProperty {
    _nq_cl_command_queue* command_queue;
    std::uint64_t properties;
    std::uint64_t* old_properties;
    std::int32_t status;
    std::uint32_t enable;
};
static_assert(offsetof(clSetCommandQueueProperty, command_queue) == 0 &&
              offsetof(clSetCommandQueueProperty, properties) == 8 &&
              offsetof(clSetCommandQueueProperty, old_properties) == 16 &&
              offsetof(clSetCommandQueueProperty, status) == 24 && offsetof(clSetCommandQueueProperty, enable) == 28 &&
              sizeof(clSetCommandQueueProperty) == 32);

/// Submits what is enqueued. Does not wait.
struct clFlush {
    _nq_cl_command_queue* command_queue;
    std::int32_t status;
};
static_assert(offsetof(clFlush, command_queue) == 0 && offsetof(clFlush, status) == 8 && sizeof(clFlush) == 16);

/// Blocks until all that is enqueued has ended.
struct clFinish {
    _nq_cl_command_queue* command_queue;
    std::int32_t status;
};
static_assert(offsetof(clFinish, command_queue) == 0 && offsetof(clFinish, status) == 8 && sizeof(clFinish) == 16);

/// A sampler from its three properties. Until OpenCL 1.2.
struct clCreateSampler {
    _nq_cl_context* context;
    std::uint32_t normalized_coords;
    std::uint32_t addressing_mode;
    std::uint32_t filter_mode;
    std::int32_t error_code;
    _nq_cl_sampler* result;
};
static_assert(offsetof(clCreateSampler, context) == 0 && offsetof(clCreateSampler, normalized_coords) == 8 &&
              offsetof(clCreateSampler, addressing_mode) == 12 && offsetof(clCreateSampler, filter_mode) == 16 &&
              offsetof(clCreateSampler, error_code) == 20 && offsetof(clCreateSampler, result) == 24 &&
              sizeof(clCreateSampler) == 32);

/// A sampler from a property list, which may be null. Since OpenCL 2.0.
struct clCreateSamplerWithProperties {
    _nq_cl_context* context;
    std::uint64_t const* sampler_properties;
    _nq_cl_sampler* result;
    std::int32_t error_code;
};
static_assert(offsetof(clCreateSamplerWithProperties, context) == 0 &&
              offsetof(clCreateSamplerWithProperties, sampler_properties) == 8 &&
              offsetof(clCreateSamplerWithProperties, result) == 16 &&
              offsetof(clCreateSamplerWithProperties, error_code) == 24 && sizeof(clCreateSamplerWithProperties) == 32);

/// An event that the program completes. Since OpenCL 1.1, like the next two.
struct clCreateUserEvent {
    _nq_cl_context* context;
    _nq_cl_event* result;
    std::int32_t error_code;
};
static_assert(offsetof(clCreateUserEvent, context) == 0 && offsetof(clCreateUserEvent, result) == 8 &&
              offsetof(clCreateUserEvent, error_code) == 16 && sizeof(clCreateUserEvent) == 24);

/// Ends a user event: 0 for success, a negative status for failure. Since OpenCL 1.1.
struct clSetUserEventStatus {
    _nq_cl_event* event;
    std::int32_t execution_status;
    std::int32_t status;
};
static_assert(offsetof(clSetUserEventStatus, event) == 0 && offsetof(clSetUserEventStatus, execution_status) == 8 &&
              offsetof(clSetUserEventStatus, status) == 12 && sizeof(clSetUserEventStatus) == 16);

/// Calls back when a command reaches a state: 0 complete and, since OpenCL 1.2, 1 running, 2 submitted. Since OpenCL
/// 1.1.
struct clSetEventCallback {
    _nq_cl_event* event;
    event_callback pfn_notify;
    void* user_data;
    std::int32_t status;
    std::int32_t command_exec_callback_type;
};
static_assert(offsetof(clSetEventCallback, event) == 0 && offsetof(clSetEventCallback, pfn_notify) == 8 &&
              offsetof(clSetEventCallback, user_data) == 16 && offsetof(clSetEventCallback, status) == 24 &&
              offsetof(clSetEventCallback, command_exec_callback_type) == 28 && sizeof(clSetEventCallback) == 32);

/// Waits until the events are complete. There is no leading object: the call handle tells whose events they are.
struct clWaitForEvents {
    _nq_cl_event* const* event_list;
    std::int32_t status;
    std::uint32_t num_events;
};
static_assert(offsetof(clWaitForEvents, event_list) == 0 && offsetof(clWaitForEvents, status) == 8 &&
              offsetof(clWaitForEvents, num_events) == 12 && sizeof(clWaitForEvents) == 16);

} // namespace nq::block
