#pragma once

// `perform` for every argument block: calls the entry point of the block's name.

#include "call.hpp"
#include "call_handle.hpp"
#include "lookup.hpp"

#include <nq/blocks.hpp>

// The entry point's name is followed by its arguments in its own order; `b` is the block. One name stands for block and
// function, so that they cannot disagree.
#define STATUS(entry, ...)                                                                                             \
    inline void perform(nq_call_handle const& handle, block::entry& b) {                                               \
        invoke(b, handle.owner->cl.entry, __VA_ARGS__);                                                                \
    }
#define CREATE(entry, ...)                                                                                             \
    inline void perform(nq_call_handle const& handle, block::entry& b) {                                               \
        create(b, handle.owner->cl.entry, __VA_ARGS__);                                                                \
    }
#define INFO(entry, ...)                                                                                               \
    STATUS(entry, __VA_ARGS__, b.param_name, b.param_value_size, b.param_value, b.param_value_size_ret)
#define ENQUEUE(entry, ...) STATUS(entry, __VA_ARGS__, b.num_events_in_wait_list, b.event_wait_list, b.event)
#define MAP(entry, ...) CREATE(entry, __VA_ARGS__, b.num_events_in_wait_list, b.event_wait_list, b.event)

namespace nq::bridge {

// Contexts, devices, queues, samplers, user events

STATUS(clCreateSubDevices, b.in_device, b.properties, b.num_devices, b.out_devices, b.num_devices_ret)
CREATE(clCreateContext, b.properties, b.num_devices, b.devices, b.pfn_notify, b.user_data)
// PoCL returns a context without devices along with an error. Releasing it would abort, so it is dropped.
CREATE(clCreateContextFromType, b.properties, b.device_type, b.pfn_notify, b.user_data)
CREATE(clCreateCommandQueue, b.context, b.device, b.properties)
CREATE(clCreateCommandQueueWithProperties, b.context, b.device, b.properties)
STATUS(clSetDefaultDeviceCommandQueue, b.context, b.device, b.command_queue)
STATUS(clSetCommandQueueProperty, b.command_queue, b.properties, b.enable, b.old_properties)
STATUS(clFlush, b.command_queue)
STATUS(clFinish, b.command_queue)
CREATE(clCreateSampler, b.context, b.normalized_coords, b.addressing_mode, b.filter_mode)
CREATE(clCreateSamplerWithProperties, b.context, b.sampler_properties)
CREATE(clCreateUserEvent, b.context)
STATUS(clSetUserEventStatus, b.event, b.execution_status)
STATUS(clSetEventCallback, b.event, b.command_exec_callback_type, b.pfn_notify, b.user_data)
STATUS(clWaitForEvents, b.num_events, b.event_list)

// References

STATUS(clRetainCommandQueue, b.command_queue)
STATUS(clReleaseCommandQueue, b.command_queue)
STATUS(clRetainContext, b.context)
STATUS(clReleaseContext, b.context)
STATUS(clRetainDevice, b.device)
STATUS(clReleaseDevice, b.device)
STATUS(clRetainEvent, b.event)
STATUS(clReleaseEvent, b.event)
STATUS(clRetainKernel, b.kernel)
STATUS(clReleaseKernel, b.kernel)
STATUS(clRetainMemObject, b.memobj)
STATUS(clReleaseMemObject, b.memobj)
STATUS(clRetainProgram, b.program)
STATUS(clReleaseProgram, b.program)
STATUS(clRetainSampler, b.sampler)
STATUS(clReleaseSampler, b.sampler)

// Memory objects

CREATE(clCreateBuffer, b.context, b.flags, b.size, b.host_ptr)
CREATE(clCreateSubBuffer, b.buffer, b.flags, b.buffer_create_type, b.buffer_create_info)
CREATE(clCreateImage, b.context, b.flags, b.image_format, b.image_desc, b.host_ptr)
CREATE(clCreateImage2D, b.context, b.flags, b.image_format, b.image_width, b.image_height, b.image_row_pitch,
       b.host_ptr)
CREATE(clCreateImage3D, b.context, b.flags, b.image_format, b.image_width, b.image_height, b.image_depth,
       b.image_row_pitch, b.image_slice_pitch, b.host_ptr)
CREATE(clCreatePipe, b.context, b.flags, b.pipe_packet_size, b.pipe_max_packets, b.properties)
STATUS(clSetMemObjectDestructorCallback, b.memobj, b.pfn_notify, b.user_data)

inline void perform(nq_call_handle const& handle, block::clSVMAlloc& b) {
    auto* const allocate = handle.owner->cl.clSVMAlloc;
    bool const possible = allocate != nullptr && b.context != nullptr;
    b.result = possible ? allocate(argument{b.context}, b.flags, b.size, b.alignment) : nullptr;
}

inline void perform(nq_call_handle const& handle, block::clSVMFree& b) {
    if (auto* const release = handle.owner->cl.clSVMFree; release != nullptr && b.context != nullptr) {
        release(argument{b.context}, b.svm_pointer);
    }
}

// Programs and kernels

CREATE(clCreateProgramWithSource, b.context, b.count, b.strings, b.lengths)
CREATE(clCreateProgramWithBinary, b.context, b.num_devices, b.device_list, b.lengths, b.binaries, b.binary_status)
CREATE(clCreateProgramWithBuiltInKernels, b.context, b.num_devices, b.device_list, b.kernel_names)
CREATE(clCreateProgramWithIL, b.context, b.il, b.length)
STATUS(clBuildProgram, b.program, b.num_devices, b.device_list, b.options, b.pfn_notify, b.user_data)
STATUS(clCompileProgram, b.program, b.num_devices, b.device_list, b.options, b.num_input_headers, b.input_headers,
       b.header_include_names, b.pfn_notify, b.user_data)
STATUS(clUnloadPlatformCompiler, b.platform)
STATUS(clSetProgramSpecializationConstant, b.program, b.spec_id, b.spec_size, b.spec_value)
STATUS(clSetProgramReleaseCallback, b.program, b.pfn_notify, b.user_data)
CREATE(clCreateKernel, b.program, b.kernel_name)
STATUS(clCreateKernelsInProgram, b.program, b.num_kernels, b.kernels, b.num_kernels_ret)
CREATE(clCloneKernel, b.source_kernel)
STATUS(clSetKernelArg, b.kernel, b.arg_index, b.arg_size, b.arg_value)
STATUS(clSetKernelArgSVMPointer, b.kernel, b.arg_index, b.arg_value)
STATUS(clSetKernelExecInfo, b.kernel, b.param_name, b.param_value_size, b.param_value)

// A failed link may return a program with the log, as rusticl and Intel's runtime do.
inline void perform(nq_call_handle const& handle, block::clLinkProgram& b) {
    functions const& cl = handle.owner->cl;
    auto* const left = create(b, cl.clLinkProgram, b.context, b.num_devices, b.device_list, b.options,
                              b.num_input_programs, b.input_programs, b.pfn_notify, b.user_data);
    if (left != nullptr) {
        cl.clReleaseProgram(left);
    }
}

// The loader's own clUnloadCompiler calls no implementation.
inline void perform(nq_call_handle const& handle, block::clUnloadCompiler& b) {
    auto* const unload = handle.owner->cl.clUnloadPlatformCompiler;
    b.status = unload != nullptr ? unload(handle.owner->id) : CL_SUCCESS;
}

// Queries

INFO(clGetPlatformInfo, b.platform)
STATUS(clGetDeviceIDs, b.platform, b.device_type, b.num_entries, b.devices, b.num_devices)
INFO(clGetDeviceInfo, b.device)
INFO(clGetContextInfo, b.context)
INFO(clGetCommandQueueInfo, b.command_queue)
INFO(clGetMemObjectInfo, b.memobj)
INFO(clGetImageInfo, b.image)
INFO(clGetPipeInfo, b.pipe)
INFO(clGetSamplerInfo, b.sampler)
INFO(clGetProgramInfo, b.program)
INFO(clGetKernelInfo, b.kernel)
INFO(clGetEventInfo, b.event)
INFO(clGetEventProfilingInfo, b.event)
INFO(clGetProgramBuildInfo, b.program, b.device)
INFO(clGetKernelWorkGroupInfo, b.kernel, b.device)
INFO(clGetKernelArgInfo, b.kernel, b.arg_index)
STATUS(clGetKernelSubGroupInfo, b.kernel, b.device, b.param_name, b.input_value_size, b.input_value, b.param_value_size,
       b.param_value, b.param_value_size_ret)
STATUS(clGetSupportedImageFormats, b.context, b.flags, b.image_type, b.num_entries, b.image_formats,
       b.num_image_formats)
STATUS(clGetDeviceAndHostTimer, b.device, b.device_timestamp, b.host_timestamp)
STATUS(clGetHostTimer, b.device, b.host_timestamp)

inline void perform(nq_call_handle const& handle, block::call_handle_device& b) { b.result = argument{handle.device}; }

inline void perform(nq_call_handle const& handle, block::clGetExtensionFunctionAddress& b) {
    b.result = extension_function(*handle.owner, b.func_name);
}

inline void perform(nq_call_handle const& handle, block::clGetExtensionFunctionAddressForPlatform& b) {
    b.result = extension_function_for_platform(*handle.owner, argument{b.platform}, b.func_name);
}

// Commands on buffers and on any memory object

ENQUEUE(clEnqueueReadBuffer, b.command_queue, b.buffer, b.blocking_read, b.offset, b.size, b.ptr)
ENQUEUE(clEnqueueWriteBuffer, b.command_queue, b.buffer, b.blocking_write, b.offset, b.size, b.ptr)
ENQUEUE(clEnqueueReadBufferRect, b.command_queue, b.buffer, b.blocking_read, b.buffer_origin, b.host_origin, b.region,
        b.buffer_row_pitch, b.buffer_slice_pitch, b.host_row_pitch, b.host_slice_pitch, b.ptr)
ENQUEUE(clEnqueueWriteBufferRect, b.command_queue, b.buffer, b.blocking_write, b.buffer_origin, b.host_origin, b.region,
        b.buffer_row_pitch, b.buffer_slice_pitch, b.host_row_pitch, b.host_slice_pitch, b.ptr)
ENQUEUE(clEnqueueCopyBuffer, b.command_queue, b.src_buffer, b.dst_buffer, b.src_offset, b.dst_offset, b.size)
ENQUEUE(clEnqueueCopyBufferRect, b.command_queue, b.src_buffer, b.dst_buffer, b.src_origin, b.dst_origin, b.region,
        b.src_row_pitch, b.src_slice_pitch, b.dst_row_pitch, b.dst_slice_pitch)
ENQUEUE(clEnqueueFillBuffer, b.command_queue, b.buffer, b.pattern, b.pattern_size, b.offset, b.size)
MAP(clEnqueueMapBuffer, b.command_queue, b.buffer, b.blocking_map, b.map_flags, b.offset, b.size)
ENQUEUE(clEnqueueUnmapMemObject, b.command_queue, b.memobj, b.mapped_ptr)
ENQUEUE(clEnqueueMigrateMemObjects, b.command_queue, b.num_mem_objects, b.mem_objects, b.flags)

// Commands on images

ENQUEUE(clEnqueueReadImage, b.command_queue, b.image, b.blocking_read, b.origin, b.region, b.row_pitch, b.slice_pitch,
        b.ptr)
ENQUEUE(clEnqueueWriteImage, b.command_queue, b.image, b.blocking_write, b.origin, b.region, b.input_row_pitch,
        b.input_slice_pitch, b.ptr)
ENQUEUE(clEnqueueCopyImage, b.command_queue, b.src_image, b.dst_image, b.src_origin, b.dst_origin, b.region)
ENQUEUE(clEnqueueFillImage, b.command_queue, b.image, b.fill_color, b.origin, b.region)
ENQUEUE(clEnqueueCopyImageToBuffer, b.command_queue, b.src_image, b.dst_buffer, b.src_origin, b.region, b.dst_offset)
ENQUEUE(clEnqueueCopyBufferToImage, b.command_queue, b.src_buffer, b.dst_image, b.src_offset, b.dst_origin, b.region)
MAP(clEnqueueMapImage, b.command_queue, b.image, b.blocking_map, b.map_flags, b.origin, b.region, b.image_row_pitch,
    b.image_slice_pitch)

// Kernels, markers, barriers

ENQUEUE(clEnqueueNDRangeKernel, b.command_queue, b.kernel, b.work_dim, b.global_work_offset, b.global_work_size,
        b.local_work_size)
ENQUEUE(clEnqueueTask, b.command_queue, b.kernel)
ENQUEUE(clEnqueueNativeKernel, b.command_queue, b.user_func, b.args, b.cb_args, b.num_mem_objects, b.mem_list,
        b.args_mem_loc)
STATUS(clEnqueueMarker, b.command_queue, b.event)
ENQUEUE(clEnqueueMarkerWithWaitList, b.command_queue)
STATUS(clEnqueueBarrier, b.command_queue)
ENQUEUE(clEnqueueBarrierWithWaitList, b.command_queue)
STATUS(clEnqueueWaitForEvents, b.command_queue, b.num_events, b.event_list)

// Commands on shared virtual memory

ENQUEUE(clEnqueueSVMFree, b.command_queue, b.num_svm_pointers, b.svm_pointers, b.pfn_free_func, b.user_data)
ENQUEUE(clEnqueueSVMMemcpy, b.command_queue, b.blocking_copy, b.dst_ptr, b.src_ptr, b.size)
ENQUEUE(clEnqueueSVMMemFill, b.command_queue, b.svm_ptr, b.pattern, b.pattern_size, b.size)
ENQUEUE(clEnqueueSVMMap, b.command_queue, b.blocking_map, b.map_flags, b.svm_ptr, b.size)
ENQUEUE(clEnqueueSVMUnmap, b.command_queue, b.svm_ptr)
ENQUEUE(clEnqueueSVMMigrateMem, b.command_queue, b.num_svm_pointers, b.svm_pointers, b.sizes, b.flags)

} // namespace nq::bridge

#undef STATUS
#undef CREATE
#undef INFO
#undef ENQUEUE
#undef MAP
