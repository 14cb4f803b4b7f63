#pragma once

// Blocks of info queries and listings. A query is called twice: with null `param_value` for the size of the reply,
// which is written through `param_value_size_ret`, then for the reply itself, of at most `param_value_size` bytes.
// Texts end with a zero, which counts. Handles in a reply are not retained.

#include <nq/types.hpp>

#include <cstddef>
#include <cstdint>

namespace nq::block {

/// The call-handle device command: returns the device of a call handle. No status.
struct call_handle_device {
    _nq_cl_device_id* result;
};
static_assert(offsetof(call_handle_device, result) == 0 && sizeof(call_handle_device) == 8);

/// What a platform is.
struct clGetPlatformInfo {
    _nq_cl_platform_id* platform;
    std::uint32_t param_name;
    std::size_t param_value_size;
    void* param_value;
    std::size_t* param_value_size_ret;
    std::int32_t status;
};
static_assert(offsetof(clGetPlatformInfo, platform) == 0 && offsetof(clGetPlatformInfo, param_name) == 8 &&
              offsetof(clGetPlatformInfo, param_value_size) == 16 && offsetof(clGetPlatformInfo, param_value) == 24 &&
              offsetof(clGetPlatformInfo, param_value_size_ret) == 32 && offsetof(clGetPlatformInfo, status) == 40 &&
              sizeof(clGetPlatformInfo) == 48);

/// Called twice: with null `devices` for their number, then for the devices. A platform without devices has the status
/// -1.
struct clGetDeviceIDs {
    _nq_cl_platform_id* platform;
    std::uint64_t device_type;
    std::uint32_t num_entries;
    _nq_cl_device_id** devices;
    std::uint32_t* num_devices;
    std::int32_t status;
};
static_assert(offsetof(clGetDeviceIDs, platform) == 0 && offsetof(clGetDeviceIDs, device_type) == 8 &&
              offsetof(clGetDeviceIDs, num_entries) == 16 && offsetof(clGetDeviceIDs, devices) == 24 &&
              offsetof(clGetDeviceIDs, num_devices) == 32 && offsetof(clGetDeviceIDs, status) == 40 &&
              sizeof(clGetDeviceIDs) == 48);

/// What a device is and can do.
struct clGetDeviceInfo {
    _nq_cl_device_id* device;
    void* param_value;
    std::size_t* param_value_size_ret;
    std::uint32_t param_name;
    std::size_t param_value_size;
    std::int32_t status;
};
static_assert(offsetof(clGetDeviceInfo, device) == 0 && offsetof(clGetDeviceInfo, param_value) == 8 &&
              offsetof(clGetDeviceInfo, param_value_size_ret) == 16 && offsetof(clGetDeviceInfo, param_name) == 24 &&
              offsetof(clGetDeviceInfo, param_value_size) == 32 && offsetof(clGetDeviceInfo, status) == 40 &&
              sizeof(clGetDeviceInfo) == 48);

/// What a context was made of.
struct clGetContextInfo {
    _nq_cl_context* context;
    std::uint32_t param_name;
    std::size_t param_value_size;
    void* param_value;
    std::size_t* param_value_size_ret;
    std::int32_t status;
};
static_assert(offsetof(clGetContextInfo, context) == 0 && offsetof(clGetContextInfo, param_name) == 8 &&
              offsetof(clGetContextInfo, param_value_size) == 16 && offsetof(clGetContextInfo, param_value) == 24 &&
              offsetof(clGetContextInfo, param_value_size_ret) == 32 && offsetof(clGetContextInfo, status) == 40 &&
              sizeof(clGetContextInfo) == 48);

/// What a queue was made with.
struct clGetCommandQueueInfo {
    _nq_cl_command_queue* command_queue;
    std::size_t param_value_size;
    void* param_value;
    std::size_t* param_value_size_ret;
    std::int32_t status;
    std::uint32_t param_name;
};
static_assert(offsetof(clGetCommandQueueInfo, command_queue) == 0 &&
              offsetof(clGetCommandQueueInfo, param_value_size) == 8 &&
              offsetof(clGetCommandQueueInfo, param_value) == 16 &&
              offsetof(clGetCommandQueueInfo, param_value_size_ret) == 24 &&
              offsetof(clGetCommandQueueInfo, status) == 32 && offsetof(clGetCommandQueueInfo, param_name) == 36 &&
              sizeof(clGetCommandQueueInfo) == 40);

/// What a memory object was made with.
struct clGetMemObjectInfo {
    _nq_cl_mem* memobj;
    std::size_t param_value_size;
    void* param_value;
    std::size_t* param_value_size_ret;
    std::int32_t status;
    std::uint32_t param_name;
};
static_assert(offsetof(clGetMemObjectInfo, memobj) == 0 && offsetof(clGetMemObjectInfo, param_value_size) == 8 &&
              offsetof(clGetMemObjectInfo, param_value) == 16 &&
              offsetof(clGetMemObjectInfo, param_value_size_ret) == 24 && offsetof(clGetMemObjectInfo, status) == 32 &&
              offsetof(clGetMemObjectInfo, param_name) == 36 && sizeof(clGetMemObjectInfo) == 40);

/// What an image was made with.
struct clGetImageInfo {
    _nq_cl_mem* image;
    std::size_t param_value_size;
    void* param_value;
    std::size_t* param_value_size_ret;
    std::int32_t status;
    std::uint32_t param_name;
};
static_assert(offsetof(clGetImageInfo, image) == 0 && offsetof(clGetImageInfo, param_value_size) == 8 &&
              offsetof(clGetImageInfo, param_value) == 16 && offsetof(clGetImageInfo, param_value_size_ret) == 24 &&
              offsetof(clGetImageInfo, status) == 32 && offsetof(clGetImageInfo, param_name) == 36 &&
              sizeof(clGetImageInfo) == 40);

/// What a pipe was made with. Since OpenCL 2.0.
struct clGetPipeInfo {
    _nq_cl_mem* pipe;
    std::size_t param_value_size;
    void* param_value;
    std::size_t* param_value_size_ret;
    std::int32_t status;
    std::uint32_t param_name;
};
static_assert(offsetof(clGetPipeInfo, pipe) == 0 && offsetof(clGetPipeInfo, param_value_size) == 8 &&
              offsetof(clGetPipeInfo, param_value) == 16 && offsetof(clGetPipeInfo, param_value_size_ret) == 24 &&
              offsetof(clGetPipeInfo, status) == 32 && offsetof(clGetPipeInfo, param_name) == 36 &&
              sizeof(clGetPipeInfo) == 40);

/// What a sampler was made with.
struct clGetSamplerInfo {
    _nq_cl_sampler* sampler;
    std::size_t param_value_size;
    void* param_value;
    std::size_t* param_value_size_ret;
    std::int32_t status;
    std::uint32_t param_name;
};
static_assert(offsetof(clGetSamplerInfo, sampler) == 0 && offsetof(clGetSamplerInfo, param_value_size) == 8 &&
              offsetof(clGetSamplerInfo, param_value) == 16 && offsetof(clGetSamplerInfo, param_value_size_ret) == 24 &&
              offsetof(clGetSamplerInfo, status) == 32 && offsetof(clGetSamplerInfo, param_name) == 36 &&
              sizeof(clGetSamplerInfo) == 40);

/// What a program was made of, and its binaries.
struct clGetProgramInfo {
    _nq_cl_program* program;
    std::size_t param_value_size;
    void* param_value;
    std::size_t* param_value_size_ret;
    std::int32_t status;
    std::uint32_t param_name;
};
static_assert(offsetof(clGetProgramInfo, program) == 0 && offsetof(clGetProgramInfo, param_value_size) == 8 &&
              offsetof(clGetProgramInfo, param_value) == 16 && offsetof(clGetProgramInfo, param_value_size_ret) == 24 &&
              offsetof(clGetProgramInfo, status) == 32 && offsetof(clGetProgramInfo, param_name) == 36 &&
              sizeof(clGetProgramInfo) == 40);

/// What a kernel is.
struct clGetKernelInfo {
    _nq_cl_kernel* kernel;
    std::size_t param_value_size;
    void* param_value;
    std::size_t* param_value_size_ret;
    std::int32_t status;
    std::uint32_t param_name;
};
static_assert(offsetof(clGetKernelInfo, kernel) == 0 && offsetof(clGetKernelInfo, param_value_size) == 8 &&
              offsetof(clGetKernelInfo, param_value) == 16 && offsetof(clGetKernelInfo, param_value_size_ret) == 24 &&
              offsetof(clGetKernelInfo, status) == 32 && offsetof(clGetKernelInfo, param_name) == 36 &&
              sizeof(clGetKernelInfo) == 40);

/// What an event belongs to, and how far it is.
struct clGetEventInfo {
    _nq_cl_event* event;
    std::size_t param_value_size;
    void* param_value;
    std::size_t* param_value_size_ret;
    std::int32_t status;
    std::uint32_t param_name;
};
static_assert(offsetof(clGetEventInfo, event) == 0 && offsetof(clGetEventInfo, param_value_size) == 8 &&
              offsetof(clGetEventInfo, param_value) == 16 && offsetof(clGetEventInfo, param_value_size_ret) == 24 &&
              offsetof(clGetEventInfo, status) == 32 && offsetof(clGetEventInfo, param_name) == 36 &&
              sizeof(clGetEventInfo) == 40);

/// Replies are 64-bit nanoseconds of the device's clock.
struct clGetEventProfilingInfo {
    _nq_cl_event* event;
    std::size_t param_value_size;
    void* param_value;
    std::size_t* param_value_size_ret;
    std::int32_t status;
    std::uint32_t param_name;
};
static_assert(offsetof(clGetEventProfilingInfo, event) == 0 &&
              offsetof(clGetEventProfilingInfo, param_value_size) == 8 &&
              offsetof(clGetEventProfilingInfo, param_value) == 16 &&
              offsetof(clGetEventProfilingInfo, param_value_size_ret) == 24 &&
              offsetof(clGetEventProfilingInfo, status) == 32 && offsetof(clGetEventProfilingInfo, param_name) == 36 &&
              sizeof(clGetEventProfilingInfo) == 40);

/// How the build of a program for a device went, and its log.
struct clGetProgramBuildInfo {
    _nq_cl_program* program;
    _nq_cl_device_id* device;
    std::size_t param_value_size;
    void* param_value;
    std::size_t* param_value_size_ret;
    std::int32_t status;
    std::uint32_t param_name;
};
static_assert(offsetof(clGetProgramBuildInfo, program) == 0 && offsetof(clGetProgramBuildInfo, device) == 8 &&
              offsetof(clGetProgramBuildInfo, param_value_size) == 16 &&
              offsetof(clGetProgramBuildInfo, param_value) == 24 &&
              offsetof(clGetProgramBuildInfo, param_value_size_ret) == 32 &&
              offsetof(clGetProgramBuildInfo, status) == 40 && offsetof(clGetProgramBuildInfo, param_name) == 44 &&
              sizeof(clGetProgramBuildInfo) == 48);

/// How a kernel fits a device.
struct clGetKernelWorkGroupInfo {
    _nq_cl_kernel* kernel;
    _nq_cl_device_id* device;
    std::size_t param_value_size;
    void* param_value;
    std::size_t* param_value_size_ret;
    std::int32_t status;
    std::uint32_t param_name;
};
static_assert(offsetof(clGetKernelWorkGroupInfo, kernel) == 0 && offsetof(clGetKernelWorkGroupInfo, device) == 8 &&
              offsetof(clGetKernelWorkGroupInfo, param_value_size) == 16 &&
              offsetof(clGetKernelWorkGroupInfo, param_value) == 24 &&
              offsetof(clGetKernelWorkGroupInfo, param_value_size_ret) == 32 &&
              offsetof(clGetKernelWorkGroupInfo, status) == 40 &&
              offsetof(clGetKernelWorkGroupInfo, param_name) == 44 && sizeof(clGetKernelWorkGroupInfo) == 48);

/// How an argument of a kernel is declared. Since OpenCL 1.2.
struct clGetKernelArgInfo {
    _nq_cl_kernel* kernel;
    std::size_t param_value_size;
    void* param_value;
    std::size_t* param_value_size_ret;
    std::int32_t status;
    std::uint32_t arg_index;
    std::uint32_t param_name;
};
static_assert(offsetof(clGetKernelArgInfo, kernel) == 0 && offsetof(clGetKernelArgInfo, param_value_size) == 8 &&
              offsetof(clGetKernelArgInfo, param_value) == 16 &&
              offsetof(clGetKernelArgInfo, param_value_size_ret) == 24 && offsetof(clGetKernelArgInfo, status) == 32 &&
              offsetof(clGetKernelArgInfo, arg_index) == 36 && offsetof(clGetKernelArgInfo, param_name) == 40 &&
              sizeof(clGetKernelArgInfo) == 48);

/// Since OpenCL 2.1. `input_value` is the query's own argument: the local size of a launch, or a number.
struct clGetKernelSubGroupInfo {
    _nq_cl_kernel* kernel;
    _nq_cl_device_id* device;
    std::size_t input_value_size;
    void const* input_value;
    std::size_t param_value_size;
    void* param_value;
    std::size_t* param_value_size_ret;
    std::int32_t status;
    std::uint32_t param_name;
};
static_assert(offsetof(clGetKernelSubGroupInfo, kernel) == 0 && offsetof(clGetKernelSubGroupInfo, device) == 8 &&
              offsetof(clGetKernelSubGroupInfo, input_value_size) == 16 &&
              offsetof(clGetKernelSubGroupInfo, input_value) == 24 &&
              offsetof(clGetKernelSubGroupInfo, param_value_size) == 32 &&
              offsetof(clGetKernelSubGroupInfo, param_value) == 40 &&
              offsetof(clGetKernelSubGroupInfo, param_value_size_ret) == 48 &&
              offsetof(clGetKernelSubGroupInfo, status) == 56 && offsetof(clGetKernelSubGroupInfo, param_name) == 60 &&
              sizeof(clGetKernelSubGroupInfo) == 64);

/// Called twice. Each format is two 32-bit words, channel order and channel type.
struct clGetSupportedImageFormats {
    std::uint64_t flags;
    _nq_cl_context* context;
    void* image_formats;
    std::uint32_t* num_image_formats;
    std::int32_t status;
    std::uint32_t image_type;
    std::uint32_t num_entries;
};
static_assert(offsetof(clGetSupportedImageFormats, flags) == 0 && offsetof(clGetSupportedImageFormats, context) == 8 &&
              offsetof(clGetSupportedImageFormats, image_formats) == 16 &&
              offsetof(clGetSupportedImageFormats, num_image_formats) == 24 &&
              offsetof(clGetSupportedImageFormats, status) == 32 &&
              offsetof(clGetSupportedImageFormats, image_type) == 36 &&
              offsetof(clGetSupportedImageFormats, num_entries) == 40 && sizeof(clGetSupportedImageFormats) == 48);

/// Until OpenCL 1.1. No status: a null `result` means that there is no such function.
struct clGetExtensionFunctionAddress {
    char const* func_name;
    void* result;
};
static_assert(offsetof(clGetExtensionFunctionAddress, func_name) == 0 &&
              offsetof(clGetExtensionFunctionAddress, result) == 8 && sizeof(clGetExtensionFunctionAddress) == 16);

/// Since OpenCL 1.2. No status: a null `result` means that there is no such function.
struct clGetExtensionFunctionAddressForPlatform {
    _nq_cl_platform_id* platform;
    char const* func_name;
    void* result;
};
static_assert(offsetof(clGetExtensionFunctionAddressForPlatform, platform) == 0 &&
              offsetof(clGetExtensionFunctionAddressForPlatform, func_name) == 8 &&
              offsetof(clGetExtensionFunctionAddressForPlatform, result) == 16 &&
              sizeof(clGetExtensionFunctionAddressForPlatform) == 24);

/// Since OpenCL 2.1, like the next. The times are nanoseconds, written to the caller's variables.
struct clGetDeviceAndHostTimer {
    _nq_cl_device_id* device;
    std::uint64_t* device_timestamp;
    std::uint64_t* host_timestamp;
    std::int32_t status;
};
static_assert(offsetof(clGetDeviceAndHostTimer, device) == 0 &&
              offsetof(clGetDeviceAndHostTimer, device_timestamp) == 8 &&
              offsetof(clGetDeviceAndHostTimer, host_timestamp) == 16 &&
              offsetof(clGetDeviceAndHostTimer, status) == 24 && sizeof(clGetDeviceAndHostTimer) == 32);

/// The clock of the host, in nanoseconds. Since OpenCL 2.1.
struct clGetHostTimer {
    _nq_cl_device_id* device;
    std::uint64_t* host_timestamp;
    std::int32_t status;
};
static_assert(offsetof(clGetHostTimer, device) == 0 && offsetof(clGetHostTimer, host_timestamp) == 8 &&
              offsetof(clGetHostTimer, status) == 16 && sizeof(clGetHostTimer) == 24);

} // namespace nq::block
