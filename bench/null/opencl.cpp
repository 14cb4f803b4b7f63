// An OpenCL loader whose functions return at once, so that only the cost of the interface above remains. It has one
// platform with one device, and one object of each kind. Every status is success, except that clSetKernelArg returns -n
// for the argument index 1000 + n.

#define CL_TARGET_OPENCL_VERSION 300
#define CL_USE_DEPRECATED_OPENCL_1_0_APIS
#define CL_USE_DEPRECATED_OPENCL_1_1_APIS
#define CL_USE_DEPRECATED_OPENCL_1_2_APIS
#define CL_USE_DEPRECATED_OPENCL_2_0_APIS
#define CL_USE_DEPRECATED_OPENCL_2_1_APIS
#include <CL/cl_icd.h>

#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

thread_local unsigned long calls __attribute__((tls_model("initial-exec"))) = 0;

// Fills the dispatch table: the bridge checks that functions are there, and never calls them.
void not_called() { std::abort(); }

struct dispatch_table {
    dispatch_table() {
        for (auto& entry : entries) {
            entry = not_called;
        }
    }
    void (*entries[sizeof(cl_icd_dispatch) / sizeof(void*)])();
};
dispatch_table const dispatch;

template <class Handle>
Handle object() {
    static dispatch_table const* the_one = &dispatch;
    return reinterpret_cast<Handle>(&the_one);
}

template <class Handle>
Handle created(cl_int* error) {
    ++calls;
    if (error != nullptr) {
        *error = CL_SUCCESS;
    }
    return object<Handle>();
}

void event_into(cl_event* event) {
    if (event != nullptr) {
        *event = object<cl_event>();
    }
}

cl_int enqueued(cl_event* event) {
    ++calls;
    event_into(event);
    return CL_SUCCESS;
}

// Copies without the C library, whose instructions would count for the caller.
cl_int reply(std::size_t size, void* value, std::size_t* size_ret, void const* data, std::size_t length) {
    ++calls;
    if (size_ret != nullptr) {
        *size_ret = length;
    }
    if (value == nullptr) {
        return CL_SUCCESS;
    }
    if (size < length) {
        return CL_INVALID_VALUE;
    }
    for (std::size_t i = 0; i != length; ++i) {
        asm volatile("" ::: "memory"); // no memcpy
        static_cast<char*>(value)[i] = static_cast<char const*>(data)[i];
    }
    return CL_SUCCESS;
}

template <class T>
cl_int reply(std::size_t size, void* value, std::size_t* size_ret, T const& data) {
    return reply(size, value, size_ret, &data, sizeof data);
}

cl_int reply(std::size_t size, void* value, std::size_t* size_ret, std::string_view text) {
    return reply(size, value, size_ret, text.data(), text.size() + 1);
}

template <class Handle>
cl_int list(cl_uint capacity, Handle* handles, cl_uint* count) {
    ++calls;
    if (count != nullptr) {
        *count = 1;
    }
    if (handles != nullptr && capacity != 0) {
        *handles = object<Handle>();
    }
    return CL_SUCCESS;
}

} // namespace

#define STATUS(name, ...)                                                                                              \
    cl_int name(__VA_ARGS__) {                                                                                         \
        ++calls;                                                                                                       \
        return CL_SUCCESS;                                                                                             \
    }
#define CREATE(handle, name, ...)                                                                                      \
    handle name(__VA_ARGS__, cl_int* errcode_ret) { return created<handle>(errcode_ret); }
#define ENQUEUE(name, ...)                                                                                             \
    cl_int name(__VA_ARGS__, cl_uint, cl_event const*, cl_event* event) { return enqueued(event); }
#define INFO(name, handle) cl_int name(handle, cl_uint param, std::size_t size, void* value, std::size_t* size_ret)

using sizes = std::size_t const*;

extern "C" {

/// The calls made so far on this thread.
unsigned long null_opencl_calls() { return calls; }

cl_int clGetPlatformIDs(cl_uint num_entries, cl_platform_id* platforms, cl_uint* num_platforms) {
    return list(num_entries, platforms, num_platforms);
}
cl_int clGetDeviceIDs(cl_platform_id, cl_device_type device_type, cl_uint num_entries, cl_device_id* devices,
                      cl_uint* num_devices) {
    return device_type == CL_DEVICE_TYPE_CUSTOM ? CL_DEVICE_NOT_FOUND : list(num_entries, devices, num_devices);
}

INFO(clGetPlatformInfo, cl_platform_id) {
    return reply(size, value, size_ret, std::string_view(param == CL_PLATFORM_VERSION ? "OpenCL 3.0 null" : "null"));
}
INFO(clGetDeviceInfo, cl_device_id) {
    switch (param) {
    case CL_DEVICE_NAME:
        return reply(size, value, size_ret, "a device that does nothing, with a name of sixty characters.");
    case CL_DEVICE_VERSION:
    case CL_DEVICE_OPENCL_C_VERSION:
        return reply(size, value, size_ret, std::string_view("OpenCL 3.0 null"));
    case CL_DEVICE_EXTENSIONS:
        return reply(size, value, size_ret, std::string_view(""));
    case CL_DEVICE_PLATFORM:
        return reply(size, value, size_ret, object<cl_platform_id>());
    case CL_DEVICE_TYPE:
    case CL_DEVICE_SVM_CAPABILITIES:
        return reply(size, value, size_ret, cl_bitfield{CL_DEVICE_SVM_COARSE_GRAIN_BUFFER});
    default:
        return reply(size, value, size_ret, cl_uint{8});
    }
}
INFO(clGetContextInfo, cl_context) {
    return param == CL_CONTEXT_DEVICES ? reply(size, value, size_ret, object<cl_device_id>())
                                       : reply(size, value, size_ret, cl_uint{1});
}
INFO(clGetCommandQueueInfo, cl_command_queue) {
    return param == CL_QUEUE_DEVICE    ? reply(size, value, size_ret, object<cl_device_id>())
           : param == CL_QUEUE_CONTEXT ? reply(size, value, size_ret, object<cl_context>())
                                       : reply(size, value, size_ret, cl_uint{1});
}

INFO(clGetProgramInfo, cl_program) { return reply(size, value, size_ret, cl_uint{param}); }
cl_int clGetProgramBuildInfo(cl_program, cl_device_id, cl_uint param, std::size_t size, void* value,
                             std::size_t* size_ret) {
    return param == CL_PROGRAM_BUILD_STATUS ? reply(size, value, size_ret, cl_build_status{CL_BUILD_SUCCESS})
                                            : reply(size, value, size_ret, std::string_view(""));
}
INFO(clGetKernelInfo, cl_kernel) {
    return param == CL_KERNEL_NUM_ARGS ? reply(size, value, size_ret, cl_uint{3})
                                       : reply(size, value, size_ret, std::string_view("add"));
}
cl_int clGetKernelArgInfo(cl_kernel, cl_uint, cl_uint param, std::size_t size, void* value, std::size_t* size_ret) {
    return param == CL_KERNEL_ARG_ADDRESS_QUALIFIER
               ? reply(size, value, size_ret, cl_uint{CL_KERNEL_ARG_ADDRESS_GLOBAL})
           : param == CL_KERNEL_ARG_TYPE_QUALIFIER
               ? reply(size, value, size_ret, cl_kernel_arg_type_qualifier{CL_KERNEL_ARG_TYPE_NONE})
               : reply(size, value, size_ret, std::string_view(param == CL_KERNEL_ARG_TYPE_NAME ? "float*" : "a"));
}

CREATE(cl_context, clCreateContext, cl_context_properties const*, cl_uint, cl_device_id const*,
       void (*)(char const*, void const*, std::size_t, void*), void*)
CREATE(cl_command_queue, clCreateCommandQueue, cl_context, cl_device_id, cl_command_queue_properties)
CREATE(cl_command_queue, clCreateCommandQueueWithProperties, cl_context, cl_device_id, cl_queue_properties const*)
CREATE(cl_mem, clCreateBuffer, cl_context, cl_mem_flags, std::size_t, void*)
CREATE(cl_mem, clCreateImage, cl_context, cl_mem_flags, cl_image_format const*, cl_image_desc const*, void*)
CREATE(cl_event, clCreateUserEvent, cl_context)
CREATE(cl_program, clCreateProgramWithSource, cl_context, cl_uint, char const**, sizes)
CREATE(cl_kernel, clCreateKernel, cl_program, char const*)
CREATE(cl_kernel, clCloneKernel, cl_kernel)
STATUS(clBuildProgram, cl_program, cl_uint, cl_device_id const*, char const*, void (*)(cl_program, void*), void*)

void* clSVMAlloc(cl_context, cl_svm_mem_flags, std::size_t, cl_uint) {
    ++calls;
    return object<void*>();
}
void clSVMFree(cl_context, void*) { ++calls; }

cl_int clSetKernelArg(cl_kernel, cl_uint index, std::size_t, void const*) {
    ++calls;
    return index < 1000 ? CL_SUCCESS : 1000 - static_cast<cl_int>(index);
}

STATUS(clRetainContext, cl_context)
STATUS(clReleaseContext, cl_context)
STATUS(clRetainCommandQueue, cl_command_queue)
STATUS(clReleaseCommandQueue, cl_command_queue)
STATUS(clRetainDevice, cl_device_id)
STATUS(clReleaseDevice, cl_device_id)
STATUS(clRetainEvent, cl_event)
STATUS(clReleaseEvent, cl_event)
STATUS(clRetainKernel, cl_kernel)
STATUS(clReleaseKernel, cl_kernel)
STATUS(clRetainMemObject, cl_mem)
STATUS(clReleaseMemObject, cl_mem)
STATUS(clRetainProgram, cl_program)
STATUS(clReleaseProgram, cl_program)
STATUS(clFlush, cl_command_queue)
STATUS(clFinish, cl_command_queue)

ENQUEUE(clEnqueueReadBuffer, cl_command_queue, cl_mem, cl_bool, std::size_t, std::size_t, void*)
ENQUEUE(clEnqueueWriteBuffer, cl_command_queue, cl_mem, cl_bool, std::size_t, std::size_t, void const*)
ENQUEUE(clEnqueueReadBufferRect, cl_command_queue, cl_mem, cl_bool, sizes, sizes, sizes, std::size_t, std::size_t,
        std::size_t, std::size_t, void*)
ENQUEUE(clEnqueueWriteBufferRect, cl_command_queue, cl_mem, cl_bool, sizes, sizes, sizes, std::size_t, std::size_t,
        std::size_t, std::size_t, void const*)
ENQUEUE(clEnqueueCopyBuffer, cl_command_queue, cl_mem, cl_mem, std::size_t, std::size_t, std::size_t)
ENQUEUE(clEnqueueCopyBufferRect, cl_command_queue, cl_mem, cl_mem, sizes, sizes, sizes, std::size_t, std::size_t,
        std::size_t, std::size_t)
ENQUEUE(clEnqueueFillBuffer, cl_command_queue, cl_mem, void const*, std::size_t, std::size_t, std::size_t)
ENQUEUE(clEnqueueUnmapMemObject, cl_command_queue, cl_mem, void*)
ENQUEUE(clEnqueueMigrateMemObjects, cl_command_queue, cl_uint, cl_mem const*, cl_mem_migration_flags)
ENQUEUE(clEnqueueReadImage, cl_command_queue, cl_mem, cl_bool, sizes, sizes, std::size_t, std::size_t, void*)
ENQUEUE(clEnqueueWriteImage, cl_command_queue, cl_mem, cl_bool, sizes, sizes, std::size_t, std::size_t, void const*)
ENQUEUE(clEnqueueCopyImage, cl_command_queue, cl_mem, cl_mem, sizes, sizes, sizes)
ENQUEUE(clEnqueueFillImage, cl_command_queue, cl_mem, void const*, sizes, sizes)
ENQUEUE(clEnqueueCopyImageToBuffer, cl_command_queue, cl_mem, cl_mem, sizes, sizes, std::size_t)
ENQUEUE(clEnqueueCopyBufferToImage, cl_command_queue, cl_mem, cl_mem, std::size_t, sizes, sizes)
ENQUEUE(clEnqueueNDRangeKernel, cl_command_queue, cl_kernel, cl_uint, sizes, sizes, sizes)
ENQUEUE(clEnqueueNativeKernel, cl_command_queue, void (*)(void*), void*, std::size_t, cl_uint, cl_mem const*,
        void const**)
ENQUEUE(clEnqueueMarkerWithWaitList, cl_command_queue)
cl_int clEnqueueMarker(cl_command_queue, cl_event* event) { return enqueued(event); }
ENQUEUE(clEnqueueBarrierWithWaitList, cl_command_queue)
ENQUEUE(clEnqueueSVMFree, cl_command_queue, cl_uint, void**, void (*)(cl_command_queue, cl_uint, void**, void*), void*)
ENQUEUE(clEnqueueSVMMemcpy, cl_command_queue, cl_bool, void*, void const*, std::size_t)
ENQUEUE(clEnqueueSVMMemFill, cl_command_queue, void*, void const*, std::size_t, std::size_t)
ENQUEUE(clEnqueueSVMMap, cl_command_queue, cl_bool, cl_map_flags, void*, std::size_t)
ENQUEUE(clEnqueueSVMUnmap, cl_command_queue, void*)
ENQUEUE(clEnqueueSVMMigrateMem, cl_command_queue, cl_uint, void const**, sizes, cl_mem_migration_flags)

void* clEnqueueMapBuffer(cl_command_queue, cl_mem, cl_bool, cl_map_flags, std::size_t, std::size_t, cl_uint,
                         cl_event const*, cl_event* event, cl_int* errcode_ret) {
    event_into(event);
    return created<void*>(errcode_ret);
}
void* clEnqueueMapImage(cl_command_queue, cl_mem, cl_bool, cl_map_flags, sizes, sizes, std::size_t*, std::size_t*,
                        cl_uint, cl_event const*, cl_event* event, cl_int* errcode_ret) {
    event_into(event);
    return created<void*>(errcode_ret);
}

} // extern "C"
