#pragma once

// The command ids of every OpenCL version. Each version has a list of argument blocks, one for each entry point, in the
// order of their ids. The first id is 1.
//
//     nq::block::clFinish block{};
//     block.command_queue = raw_queue;
//     int const made = nq_call_capability(handle, nq::command_id<nq::capability::opencl_1_2, nq::block::clFinish>,
//                                         &block, nullptr);
//     // made == nq::result::success: the call was made, and block.status is what OpenCL answered

#include <nq/blocks.hpp>
#include <nq/types.hpp>

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace nq {

/// A list of argument blocks. The id of a block is its position, counted from 1; an entry point has different ids in
/// different versions. To make a dispatch table, expand the list:
///
///     template <class... Blocks>
///     void fill(table& t, nq::command_list<Blocks...>) { (t.add<Blocks>(), ...); }
template <class... Blocks>
struct command_list {
    /// The number of blocks, which is also the largest id.
    static constexpr std::uint32_t size = sizeof...(Blocks);

    /// This list with more blocks at its end.
    template <class... More>
    using append = command_list<Blocks..., More...>;

    /// The id of a block, 0 if it is not in the list.
    template <class Block>
    static constexpr std::uint32_t id_of() {
        std::uint32_t id = 0;
        std::uint32_t position = 0;
        ((++position, id = std::is_same_v<Blocks, Block> ? position : id), ...);
        return id;
    }
};

// The order of each list is fixed: other ids would be another wire.

/// The commands of OpenCL 1.0.
using opencl_1_0_commands = command_list<
    block::clBuildProgram, block::clCreateBuffer, block::clCreateCommandQueue, block::clCreateContext,
    block::clCreateContextFromType, block::clCreateImage2D, block::clCreateImage3D, block::clCreateKernelsInProgram,
    block::clCreateKernel, block::clCreateProgramWithBinary, block::clCreateProgramWithSource, block::clCreateSampler,
    block::clEnqueueBarrier, block::clEnqueueCopyBuffer, block::clEnqueueCopyBufferToImage, block::clEnqueueCopyImage,
    block::clEnqueueCopyImageToBuffer, block::clEnqueueMapBuffer, block::clEnqueueMapImage, block::clEnqueueMarker,
    block::clEnqueueNativeKernel, block::clEnqueueNDRangeKernel, block::clEnqueueReadBuffer, block::clEnqueueReadImage,
    block::clEnqueueTask, block::clEnqueueUnmapMemObject, block::clEnqueueWaitForEvents, block::clEnqueueWriteBuffer,
    block::clEnqueueWriteImage, block::clFinish, block::clFlush, block::call_handle_device,
    block::clGetCommandQueueInfo, block::clGetContextInfo, block::clGetDeviceIDs, block::clGetDeviceInfo,
    block::clGetEventInfo, block::clGetEventProfilingInfo, block::clGetExtensionFunctionAddress, block::clGetImageInfo,
    block::clGetKernelInfo, block::clGetKernelWorkGroupInfo, block::clGetMemObjectInfo, block::clGetPlatformInfo,
    block::clGetProgramBuildInfo, block::clGetProgramInfo, block::clGetSamplerInfo, block::clGetSupportedImageFormats,
    block::clReleaseCommandQueue, block::clReleaseContext, block::clReleaseEvent, block::clReleaseKernel,
    block::clReleaseMemObject, block::clReleaseProgram, block::clReleaseSampler, block::clRetainCommandQueue,
    block::clRetainContext, block::clRetainEvent, block::clRetainKernel, block::clRetainMemObject,
    block::clRetainProgram, block::clRetainSampler, block::clSetKernelArg, block::clUnloadCompiler,
    block::clWaitForEvents, block::clSetCommandQueueProperty>;

/// The commands of OpenCL 1.1.
using opencl_1_1_commands = command_list<
    block::clBuildProgram, block::clCreateBuffer, block::clCreateCommandQueue, block::clCreateContext,
    block::clCreateContextFromType, block::clCreateImage2D, block::clCreateImage3D, block::clCreateKernelsInProgram,
    block::clCreateKernel, block::clCreateProgramWithBinary, block::clCreateProgramWithSource, block::clCreateSampler,
    block::clCreateSubBuffer, block::clCreateUserEvent, block::clEnqueueBarrier, block::clEnqueueCopyBuffer,
    block::clEnqueueCopyBufferRect, block::clEnqueueCopyBufferToImage, block::clEnqueueCopyImage,
    block::clEnqueueCopyImageToBuffer, block::clEnqueueMapBuffer, block::clEnqueueMapImage, block::clEnqueueMarker,
    block::clEnqueueNativeKernel, block::clEnqueueNDRangeKernel, block::clEnqueueReadBuffer,
    block::clEnqueueReadBufferRect, block::clEnqueueReadImage, block::clEnqueueTask, block::clEnqueueUnmapMemObject,
    block::clEnqueueWaitForEvents, block::clEnqueueWriteBuffer, block::clEnqueueWriteBufferRect,
    block::clEnqueueWriteImage, block::clFinish, block::clFlush, block::call_handle_device,
    block::clGetCommandQueueInfo, block::clGetContextInfo, block::clGetDeviceIDs, block::clGetDeviceInfo,
    block::clGetEventInfo, block::clGetEventProfilingInfo, block::clGetExtensionFunctionAddress, block::clGetImageInfo,
    block::clGetKernelInfo, block::clGetKernelWorkGroupInfo, block::clGetMemObjectInfo, block::clGetPlatformInfo,
    block::clGetProgramBuildInfo, block::clGetProgramInfo, block::clGetSamplerInfo, block::clGetSupportedImageFormats,
    block::clReleaseCommandQueue, block::clReleaseContext, block::clReleaseEvent, block::clReleaseKernel,
    block::clReleaseMemObject, block::clReleaseProgram, block::clReleaseSampler, block::clRetainCommandQueue,
    block::clRetainContext, block::clRetainEvent, block::clRetainKernel, block::clRetainMemObject,
    block::clRetainProgram, block::clRetainSampler, block::clSetEventCallback, block::clSetKernelArg,
    block::clSetMemObjectDestructorCallback, block::clSetUserEventStatus, block::clUnloadCompiler,
    block::clWaitForEvents>;

/// The commands of OpenCL 1.2.
using opencl_1_2_commands = command_list<
    block::clBuildProgram, block::clCompileProgram, block::clCreateBuffer, block::clCreateCommandQueue,
    block::clCreateContext, block::clCreateContextFromType, block::clCreateImage, block::clCreateKernelsInProgram,
    block::clCreateKernel, block::clCreateProgramWithBinary, block::clCreateProgramWithBuiltInKernels,
    block::clCreateProgramWithSource, block::clCreateSampler, block::clCreateSubBuffer, block::clCreateSubDevices,
    block::clCreateUserEvent, block::clEnqueueBarrierWithWaitList, block::clEnqueueCopyBuffer,
    block::clEnqueueCopyBufferRect, block::clEnqueueCopyBufferToImage, block::clEnqueueCopyImage,
    block::clEnqueueCopyImageToBuffer, block::clEnqueueFillBuffer, block::clEnqueueFillImage, block::clEnqueueMapBuffer,
    block::clEnqueueMapImage, block::clEnqueueMarkerWithWaitList, block::clEnqueueMigrateMemObjects,
    block::clEnqueueNativeKernel, block::clEnqueueNDRangeKernel, block::clEnqueueReadBuffer,
    block::clEnqueueReadBufferRect, block::clEnqueueReadImage, block::clEnqueueTask, block::clEnqueueUnmapMemObject,
    block::clEnqueueWriteBuffer, block::clEnqueueWriteBufferRect, block::clEnqueueWriteImage, block::clFinish,
    block::clFlush, block::call_handle_device, block::clGetCommandQueueInfo, block::clGetContextInfo,
    block::clGetDeviceIDs, block::clGetDeviceInfo, block::clGetEventInfo, block::clGetEventProfilingInfo,
    block::clGetExtensionFunctionAddressForPlatform, block::clGetImageInfo, block::clGetKernelArgInfo,
    block::clGetKernelInfo, block::clGetKernelWorkGroupInfo, block::clGetMemObjectInfo, block::clGetPlatformInfo,
    block::clGetProgramBuildInfo, block::clGetProgramInfo, block::clGetSamplerInfo, block::clGetSupportedImageFormats,
    block::clLinkProgram, block::clReleaseCommandQueue, block::clReleaseContext, block::clReleaseDevice,
    block::clReleaseEvent, block::clReleaseKernel, block::clReleaseMemObject, block::clReleaseProgram,
    block::clReleaseSampler, block::clRetainCommandQueue, block::clRetainContext, block::clRetainDevice,
    block::clRetainEvent, block::clRetainKernel, block::clRetainMemObject, block::clRetainProgram,
    block::clRetainSampler, block::clSetEventCallback, block::clSetKernelArg, block::clSetMemObjectDestructorCallback,
    block::clSetUserEventStatus, block::clUnloadPlatformCompiler, block::clWaitForEvents>;

/// The commands of OpenCL 2.0.
using opencl_2_0_commands = command_list<
    block::clBuildProgram, block::clCompileProgram, block::clCreateBuffer, block::clCreateCommandQueueWithProperties,
    block::clCreateContext, block::clCreateContextFromType, block::clCreateImage, block::clCreateKernelsInProgram,
    block::clCreateKernel, block::clCreatePipe, block::clCreateProgramWithBinary,
    block::clCreateProgramWithBuiltInKernels, block::clCreateProgramWithSource, block::clCreateSamplerWithProperties,
    block::clCreateSubBuffer, block::clCreateSubDevices, block::clCreateUserEvent, block::clEnqueueBarrierWithWaitList,
    block::clEnqueueCopyBuffer, block::clEnqueueCopyBufferRect, block::clEnqueueCopyBufferToImage,
    block::clEnqueueCopyImage, block::clEnqueueCopyImageToBuffer, block::clEnqueueFillBuffer, block::clEnqueueFillImage,
    block::clEnqueueMapBuffer, block::clEnqueueMapImage, block::clEnqueueMarkerWithWaitList,
    block::clEnqueueMigrateMemObjects, block::clEnqueueNativeKernel, block::clEnqueueNDRangeKernel,
    block::clEnqueueReadBuffer, block::clEnqueueReadBufferRect, block::clEnqueueReadImage, block::clEnqueueSVMFree,
    block::clEnqueueSVMMap, block::clEnqueueSVMMemcpy, block::clEnqueueSVMMemFill, block::clEnqueueSVMUnmap,
    block::clEnqueueUnmapMemObject, block::clEnqueueWriteBuffer, block::clEnqueueWriteBufferRect,
    block::clEnqueueWriteImage, block::clFinish, block::clFlush, block::call_handle_device,
    block::clGetCommandQueueInfo, block::clGetContextInfo, block::clGetDeviceIDs, block::clGetDeviceInfo,
    block::clGetEventInfo, block::clGetEventProfilingInfo, block::clGetExtensionFunctionAddressForPlatform,
    block::clGetImageInfo, block::clGetKernelArgInfo, block::clGetKernelInfo, block::clGetKernelWorkGroupInfo,
    block::clGetMemObjectInfo, block::clGetPipeInfo, block::clGetPlatformInfo, block::clGetProgramBuildInfo,
    block::clGetProgramInfo, block::clGetSamplerInfo, block::clGetSupportedImageFormats, block::clLinkProgram,
    block::clReleaseCommandQueue, block::clReleaseContext, block::clReleaseDevice, block::clReleaseEvent,
    block::clReleaseKernel, block::clReleaseMemObject, block::clReleaseProgram, block::clReleaseSampler,
    block::clRetainCommandQueue, block::clRetainContext, block::clRetainDevice, block::clRetainEvent,
    block::clRetainKernel, block::clRetainMemObject, block::clRetainProgram, block::clRetainSampler,
    block::clSetEventCallback, block::clSetKernelArg, block::clSetKernelArgSVMPointer, block::clSetKernelExecInfo,
    block::clSetMemObjectDestructorCallback, block::clSetUserEventStatus, block::clSVMAlloc, block::clSVMFree,
    block::clUnloadPlatformCompiler, block::clWaitForEvents>;

/// The commands of OpenCL 2.1, those of 2.0 first.
using opencl_2_1_commands =
    opencl_2_0_commands::append<block::clSetDefaultDeviceCommandQueue, block::clGetDeviceAndHostTimer,
                                block::clGetHostTimer, block::clCreateProgramWithIL, block::clCloneKernel,
                                block::clGetKernelSubGroupInfo, block::clEnqueueSVMMigrateMem>;

/// The commands of OpenCL 2.2, those of 2.1 first.
using opencl_2_2_commands =
    opencl_2_1_commands::append<block::clSetProgramSpecializationConstant, block::clSetProgramReleaseCallback>;

namespace detail {

template <capability>
struct commands;
template <>
struct commands<capability::opencl_1_0> {
    using type = opencl_1_0_commands;
};
template <>
struct commands<capability::opencl_1_1> {
    using type = opencl_1_1_commands;
};
template <>
struct commands<capability::opencl_1_2> {
    using type = opencl_1_2_commands;
};
template <>
struct commands<capability::opencl_2_0> {
    using type = opencl_2_0_commands;
};
template <>
struct commands<capability::opencl_2_1> {
    using type = opencl_2_1_commands;
};
template <>
struct commands<capability::opencl_2_2> {
    using type = opencl_2_2_commands;
};

template <capability Version, class Block>
constexpr std::uint32_t checked_command_id() {
    constexpr std::uint32_t id = commands<Version>::type::template id_of<Block>();
    static_assert(id != 0, "this OpenCL version has no such entry point");
    return id;
}

} // namespace detail

/// The command list of an OpenCL version.
template <capability Version>
using commands = typename detail::commands<Version>::type;

/// Whether an OpenCL version has the entry point of a block.
template <capability Version, class Block>
inline constexpr bool has_command = commands<Version>::template id_of<Block>() != 0;

/// The command id of a block's entry point in an OpenCL version. Does not compile if the version lacks it.
template <capability Version, class Block>
inline constexpr std::uint32_t command_id = detail::checked_command_id<Version, Block>();

static_assert(commands<capability::opencl_1_0>::size == 66);
static_assert(commands<capability::opencl_1_1>::size == 73);
static_assert(commands<capability::opencl_1_2>::size == 81);
static_assert(commands<capability::opencl_2_0>::size == 91);
static_assert(commands<capability::opencl_2_1>::size == 98);
static_assert(commands<capability::opencl_2_2>::size == 100);

} // namespace nq
