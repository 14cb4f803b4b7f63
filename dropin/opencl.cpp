// The functions of an OpenCL loader, up to OpenCL 3.0.

#include "entry.hpp"

#include <nq/export.hpp>

// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): the parameters have numbers
#define STATUS(entry, ...) NQ_PERFORM(entry, NQ_COUNT(__VA_ARGS__), __VA_ARGS__)
#define CREATE(entry, ...) NQ_PERFORM(entry, NQ_COUNT(__VA_ARGS__, error_code), __VA_ARGS__)
#include "../bridge/rows.inc"
NQ_ARGUMENTS(clLinkProgram, b.context, b.num_devices, b.device_list, b.options, b.num_input_programs, b.input_programs,
             b.pfn_notify, b.user_data)

namespace nq::dropin {
namespace {

// A loader that finds nothing has no platform either.
cl_int list_platforms(char const* name, decltype(&::clGetPlatformIDs) function, cl_uint capacity,
                      cl_platform_id* platforms, cl_uint* count) {
    return function_behind(name) != nullptr ? pass_on(name, function, capacity, platforms, count)
                                            : CL_PLATFORM_NOT_FOUND_KHR;
}

// A link that fails may return a program with the log, but not through libnq: it is made again without libnq.
cl_program link_program(char const* name, decltype(&::clLinkProgram) function, cl_context context, cl_uint device_count,
                        cl_device_id const* devices, char const* options, cl_uint count, cl_program const* programs,
                        parameter_of<decltype(::clLinkProgram), 6> notify, void* user_data, cl_int* error) {
    cl_int code = CL_SUCCESS;
    cl_program linked = perform<block::clLinkProgram>(name, function, context, device_count, devices, options, count,
                                                      programs, notify, user_data, &code);
    if (code != CL_SUCCESS && linked == nullptr && notify == nullptr) {
        cl_int again = CL_SUCCESS;
        linked = pass_on(name, function, context, device_count, devices, options, count, programs, notify, user_data,
                         &again);
        if (again == CL_SUCCESS) { // a layer had made the first one fail
            pass_on("clReleaseProgram", &::clReleaseProgram, linked);
            linked = nullptr;
        }
    }
    if (error != nullptr) {
        *error = code;
    }
    return linked;
}

// Without properties these are the functions of before OpenCL 3.0, which libnq has.
template <class Block, auto Before, class... Parameters>
cl_mem create_with_properties(char const* name, cl_mem (*function)(cl_context, cl_mem_properties const*, Parameters...),
                              cl_context context, cl_mem_properties const* properties, Parameters... others) {
    route const* const way = find_route(context);
    return properties == nullptr && way != nullptr && way->is_3_0
               ? perform<Block>(arguments_of<Block>::name, Before, context, others...)
               : pass_on(name, function, context, properties, others...);
}
constexpr auto create_buffer = [](auto... all) {
    return create_with_properties<block::clCreateBuffer, &::clCreateBuffer>(all...);
};
constexpr auto create_image = [](auto... all) {
    return create_with_properties<block::clCreateImage, &::clCreateImage>(all...);
};

} // namespace
} // namespace nq::dropin

NQ_PERFORM(clSVMAlloc, 4, b.context, b.flags, b.size, b.alignment)
NQ_PERFORM(clSVMFree, 2, b.context, b.svm_pointer)
NQ_DEFINE(clLinkProgram, 9, nq::dropin::link_program)

// What belongs to the loader
NQ_DEFINE(clGetPlatformIDs, 3, nq::dropin::list_platforms)
NQ_PASS_ON(clGetExtensionFunctionAddress, 1)
NQ_PASS_ON(clGetExtensionFunctionAddressForPlatform, 2)
extern "C" NQ_EXPORT cl_int CL_API_CALL clUnloadCompiler() {
    return nq::dropin::pass_on("clUnloadCompiler", &::clUnloadCompiler);
}

// OpenCL 3.0
NQ_DEFINE(clCreateBufferWithProperties, 6, nq::dropin::create_buffer)
NQ_DEFINE(clCreateImageWithProperties, 7, nq::dropin::create_image)
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
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
