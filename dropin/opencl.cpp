// The functions of an OpenCL loader, up to OpenCL 3.0.

#include "entry.hpp"

#include <nq/export.hpp>

#define STATUS(entry, ...) NQ_PERFORM(entry, NQ_COUNT(__VA_ARGS__), __VA_ARGS__)
#define CREATE(entry, ...) NQ_PERFORM(entry, NQ_COUNT(__VA_ARGS__, error_code), __VA_ARGS__)
#include "../bridge/rows.inc"

NQ_PERFORM(clSVMAlloc, 4, b.context, b.flags, b.size, b.alignment)
NQ_PERFORM(clSVMFree, 2, b.context, b.svm_pointer)
NQ_PERFORM(clLinkProgram, 9, b.context, b.num_devices, b.device_list, b.options, b.num_input_programs, b.input_programs,
           b.pfn_notify, b.user_data)
NQ_PERFORM(clGetExtensionFunctionAddressForPlatform, 2, b.platform, b.func_name)

// What names no device
NQ_PASS_ON(clGetPlatformIDs, 3)
NQ_PASS_ON(clGetExtensionFunctionAddress, 1)
extern "C" NQ_EXPORT cl_int CL_API_CALL clUnloadCompiler() {
    auto* const unload = reinterpret_cast<decltype(&clUnloadCompiler)>(nq::dropin::function_behind("clUnloadCompiler"));
    return unload != nullptr ? unload() : CL_SUCCESS;
}

// OpenCL 3.0
NQ_PASS_ON(clCreateBufferWithProperties, 6)
NQ_PASS_ON(clCreateImageWithProperties, 7)
NQ_PASS_ON(clSetContextDestructorCallback, 3)

// Extensions
NQ_PASS_ON(clCreateSubDevicesEXT, 5)
NQ_PASS_ON(clRetainDeviceEXT, 1)
NQ_PASS_ON(clReleaseDeviceEXT, 1)
NQ_PASS_ON(clGetKernelSubGroupInfoKHR, 8)
NQ_PASS_ON(clCreateFromGLBuffer, 4)
NQ_PASS_ON(clCreateFromGLTexture, 6)
NQ_PASS_ON(clCreateFromGLTexture2D, 6)
NQ_PASS_ON(clCreateFromGLTexture3D, 6)
NQ_PASS_ON(clCreateFromGLRenderbuffer, 4)
NQ_PASS_ON(clGetGLObjectInfo, 3)
NQ_PASS_ON(clGetGLTextureInfo, 5)
NQ_PASS_ON(clEnqueueAcquireGLObjects, 6)
NQ_PASS_ON(clEnqueueReleaseGLObjects, 6)
NQ_PASS_ON(clGetGLContextInfoKHR, 5)
NQ_PASS_ON(clCreateEventFromGLsyncKHR, 3)
NQ_PASS_ON(clCreateFromEGLImageKHR, 6)
NQ_PASS_ON(clEnqueueAcquireEGLObjectsKHR, 6)
NQ_PASS_ON(clEnqueueReleaseEGLObjectsKHR, 6)
NQ_PASS_ON(clCreateEventFromEGLSyncKHR, 4)
