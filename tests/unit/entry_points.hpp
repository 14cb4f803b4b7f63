#pragma once

#include <array>
#include <string_view>

namespace unit {

/// The entry points of an OpenCL version in the order of their command ids, the first being 1. Written out here on
/// their own, so that a slip in the library's lists is seen. `call_handle_device` is libnq's own command.
inline constexpr std::string_view opencl_1_0 =
    "clBuildProgram clCreateBuffer clCreateCommandQueue clCreateContext clCreateContextFromType clCreateImage2D "
    "clCreateImage3D clCreateKernelsInProgram clCreateKernel clCreateProgramWithBinary clCreateProgramWithSource "
    "clCreateSampler clEnqueueBarrier clEnqueueCopyBuffer clEnqueueCopyBufferToImage clEnqueueCopyImage "
    "clEnqueueCopyImageToBuffer clEnqueueMapBuffer clEnqueueMapImage clEnqueueMarker clEnqueueNativeKernel "
    "clEnqueueNDRangeKernel clEnqueueReadBuffer clEnqueueReadImage clEnqueueTask clEnqueueUnmapMemObject "
    "clEnqueueWaitForEvents clEnqueueWriteBuffer clEnqueueWriteImage clFinish clFlush call_handle_device "
    "clGetCommandQueueInfo clGetContextInfo clGetDeviceIDs clGetDeviceInfo clGetEventInfo clGetEventProfilingInfo "
    "clGetExtensionFunctionAddress clGetImageInfo clGetKernelInfo clGetKernelWorkGroupInfo clGetMemObjectInfo "
    "clGetPlatformInfo clGetProgramBuildInfo clGetProgramInfo clGetSamplerInfo clGetSupportedImageFormats "
    "clReleaseCommandQueue clReleaseContext clReleaseEvent clReleaseKernel clReleaseMemObject clReleaseProgram "
    "clReleaseSampler clRetainCommandQueue clRetainContext clRetainEvent clRetainKernel clRetainMemObject "
    "clRetainProgram clRetainSampler clSetKernelArg clUnloadCompiler clWaitForEvents clSetCommandQueueProperty";
inline constexpr std::string_view opencl_1_1 =
    "clBuildProgram clCreateBuffer clCreateCommandQueue clCreateContext clCreateContextFromType clCreateImage2D "
    "clCreateImage3D clCreateKernelsInProgram clCreateKernel clCreateProgramWithBinary clCreateProgramWithSource "
    "clCreateSampler clCreateSubBuffer clCreateUserEvent clEnqueueBarrier clEnqueueCopyBuffer "
    "clEnqueueCopyBufferRect clEnqueueCopyBufferToImage clEnqueueCopyImage clEnqueueCopyImageToBuffer "
    "clEnqueueMapBuffer clEnqueueMapImage clEnqueueMarker clEnqueueNativeKernel clEnqueueNDRangeKernel "
    "clEnqueueReadBuffer clEnqueueReadBufferRect clEnqueueReadImage clEnqueueTask clEnqueueUnmapMemObject "
    "clEnqueueWaitForEvents clEnqueueWriteBuffer clEnqueueWriteBufferRect clEnqueueWriteImage clFinish clFlush "
    "call_handle_device clGetCommandQueueInfo clGetContextInfo clGetDeviceIDs clGetDeviceInfo clGetEventInfo "
    "clGetEventProfilingInfo clGetExtensionFunctionAddress clGetImageInfo clGetKernelInfo clGetKernelWorkGroupInfo "
    "clGetMemObjectInfo clGetPlatformInfo clGetProgramBuildInfo clGetProgramInfo clGetSamplerInfo "
    "clGetSupportedImageFormats clReleaseCommandQueue clReleaseContext clReleaseEvent clReleaseKernel "
    "clReleaseMemObject clReleaseProgram clReleaseSampler clRetainCommandQueue clRetainContext clRetainEvent "
    "clRetainKernel clRetainMemObject clRetainProgram clRetainSampler clSetEventCallback clSetKernelArg "
    "clSetMemObjectDestructorCallback clSetUserEventStatus clUnloadCompiler clWaitForEvents";
inline constexpr std::string_view opencl_1_2 =
    "clBuildProgram clCompileProgram clCreateBuffer clCreateCommandQueue clCreateContext clCreateContextFromType "
    "clCreateImage clCreateKernelsInProgram clCreateKernel clCreateProgramWithBinary "
    "clCreateProgramWithBuiltInKernels clCreateProgramWithSource clCreateSampler clCreateSubBuffer "
    "clCreateSubDevices clCreateUserEvent clEnqueueBarrierWithWaitList clEnqueueCopyBuffer clEnqueueCopyBufferRect "
    "clEnqueueCopyBufferToImage clEnqueueCopyImage clEnqueueCopyImageToBuffer clEnqueueFillBuffer "
    "clEnqueueFillImage clEnqueueMapBuffer clEnqueueMapImage clEnqueueMarkerWithWaitList clEnqueueMigrateMemObjects "
    "clEnqueueNativeKernel clEnqueueNDRangeKernel clEnqueueReadBuffer clEnqueueReadBufferRect clEnqueueReadImage "
    "clEnqueueTask clEnqueueUnmapMemObject clEnqueueWriteBuffer clEnqueueWriteBufferRect clEnqueueWriteImage "
    "clFinish clFlush call_handle_device clGetCommandQueueInfo clGetContextInfo clGetDeviceIDs clGetDeviceInfo "
    "clGetEventInfo clGetEventProfilingInfo clGetExtensionFunctionAddressForPlatform clGetImageInfo "
    "clGetKernelArgInfo clGetKernelInfo clGetKernelWorkGroupInfo clGetMemObjectInfo clGetPlatformInfo "
    "clGetProgramBuildInfo clGetProgramInfo clGetSamplerInfo clGetSupportedImageFormats clLinkProgram "
    "clReleaseCommandQueue clReleaseContext clReleaseDevice clReleaseEvent clReleaseKernel clReleaseMemObject "
    "clReleaseProgram clReleaseSampler clRetainCommandQueue clRetainContext clRetainDevice clRetainEvent "
    "clRetainKernel clRetainMemObject clRetainProgram clRetainSampler clSetEventCallback clSetKernelArg "
    "clSetMemObjectDestructorCallback clSetUserEventStatus clUnloadPlatformCompiler clWaitForEvents";
inline constexpr std::string_view opencl_2_0 =
    "clBuildProgram clCompileProgram clCreateBuffer clCreateCommandQueueWithProperties clCreateContext "
    "clCreateContextFromType clCreateImage clCreateKernelsInProgram clCreateKernel clCreatePipe "
    "clCreateProgramWithBinary clCreateProgramWithBuiltInKernels clCreateProgramWithSource "
    "clCreateSamplerWithProperties clCreateSubBuffer clCreateSubDevices clCreateUserEvent "
    "clEnqueueBarrierWithWaitList clEnqueueCopyBuffer clEnqueueCopyBufferRect clEnqueueCopyBufferToImage "
    "clEnqueueCopyImage clEnqueueCopyImageToBuffer clEnqueueFillBuffer clEnqueueFillImage clEnqueueMapBuffer "
    "clEnqueueMapImage clEnqueueMarkerWithWaitList clEnqueueMigrateMemObjects clEnqueueNativeKernel "
    "clEnqueueNDRangeKernel clEnqueueReadBuffer clEnqueueReadBufferRect clEnqueueReadImage clEnqueueSVMFree "
    "clEnqueueSVMMap clEnqueueSVMMemcpy clEnqueueSVMMemFill clEnqueueSVMUnmap clEnqueueUnmapMemObject "
    "clEnqueueWriteBuffer clEnqueueWriteBufferRect clEnqueueWriteImage clFinish clFlush call_handle_device "
    "clGetCommandQueueInfo clGetContextInfo clGetDeviceIDs clGetDeviceInfo clGetEventInfo clGetEventProfilingInfo "
    "clGetExtensionFunctionAddressForPlatform clGetImageInfo clGetKernelArgInfo clGetKernelInfo "
    "clGetKernelWorkGroupInfo clGetMemObjectInfo clGetPipeInfo clGetPlatformInfo clGetProgramBuildInfo "
    "clGetProgramInfo clGetSamplerInfo clGetSupportedImageFormats clLinkProgram clReleaseCommandQueue "
    "clReleaseContext clReleaseDevice clReleaseEvent clReleaseKernel clReleaseMemObject clReleaseProgram "
    "clReleaseSampler clRetainCommandQueue clRetainContext clRetainDevice clRetainEvent clRetainKernel "
    "clRetainMemObject clRetainProgram clRetainSampler clSetEventCallback clSetKernelArg clSetKernelArgSVMPointer "
    "clSetKernelExecInfo clSetMemObjectDestructorCallback clSetUserEventStatus clSVMAlloc clSVMFree "
    "clUnloadPlatformCompiler clWaitForEvents";
inline constexpr std::string_view added_by_opencl_2_1 =
    "clSetDefaultDeviceCommandQueue clGetDeviceAndHostTimer clGetHostTimer clCreateProgramWithIL clCloneKernel "
    "clGetKernelSubGroupInfo clEnqueueSVMMigrateMem";
inline constexpr std::string_view added_by_opencl_2_2 =
    "clSetProgramSpecializationConstant clSetProgramReleaseCallback";

/// The name of a command id; empty for one that the version lacks.
constexpr std::string_view entry_point(int version, std::size_t id) {
    std::string_view const common = version == 100   ? opencl_1_0
                                    : version == 110 ? opencl_1_1
                                    : version == 120 ? opencl_1_2
                                                     : opencl_2_0;
    std::array const lists{common, version >= 210 ? added_by_opencl_2_1 : "",
                           version >= 220 ? added_by_opencl_2_2 : ""};
    for (std::string_view list : lists) {
        while (!list.empty()) {
            std::string_view const name = list.substr(0, list.find(' '));
            if (--id == 0) {
                return name;
            }
            list.remove_prefix(name.size() == list.size() ? name.size() : name.size() + 1);
        }
    }
    return {};
}

} // namespace unit
