#pragma once

// The C API, from the loader that the bridge loads too, and the objects that both sides of a comparison use.

#define CL_TARGET_OPENCL_VERSION 300
#define CL_USE_DEPRECATED_OPENCL_1_2_APIS
#include <CL/cl.h>

#include <vorn/mero/opencl_2_1.hpp>

#include <vector>

namespace bench {

namespace mero = vorn::mero::opencl_2_1;

// The functions of the C API that are compared with.
// clang-format off
#define BENCH_FUNCTIONS(X) \
    X(clEnqueueCopyBuffer) X(clEnqueueCopyBufferRect) X(clEnqueueCopyBufferToImage) X(clEnqueueCopyImage) \
    X(clEnqueueCopyImageToBuffer) X(clEnqueueFillBuffer) X(clEnqueueFillImage) X(clEnqueueMapBuffer) \
    X(clEnqueueMapImage) X(clEnqueueMarkerWithWaitList) X(clEnqueueMigrateMemObjects) \
    X(clEnqueueNDRangeKernel) X(clEnqueueNativeKernel) X(clEnqueueReadBuffer) X(clEnqueueReadBufferRect) \
    X(clEnqueueReadImage) X(clEnqueueSVMFree) X(clEnqueueSVMMap) X(clEnqueueSVMMemFill) X(clEnqueueSVMMemcpy) \
    X(clEnqueueSVMMigrateMem) X(clEnqueueSVMUnmap) X(clEnqueueTask) X(clEnqueueUnmapMemObject) X(clEnqueueWriteBuffer) \
    X(clEnqueueWriteBufferRect) X(clEnqueueWriteImage) X(clGetDeviceInfo) X(clReleaseContext) \
    X(clReleaseEvent) X(clRetainContext) X(clSVMAlloc) X(clSetKernelArg)
// clang-format on

/// A function of the OpenCL loader; ends the process when it lacks it.
void* find(char const* name);

/// The functions of the C API under their own names.
struct c_functions {
#define BENCH_FUNCTION(name) decltype(&::name) name = reinterpret_cast<decltype(&::name)>(find(#name));
    BENCH_FUNCTIONS(BENCH_FUNCTION)
#undef BENCH_FUNCTION
};

c_functions const& c_api();

/// The objects that the operations work on, on one device.
struct fixture {
    explicit fixture(mero::device const& on);

    static constexpr std::size_t size = 4096;

    mero::device device;
    mero::context context;
    mero::host_command_queue queue;
    mero::program program;
    mero::kernel kernel;
    mero::buffer a;
    mero::buffer b;
    std::vector<unsigned char> host;

    cl_device_id raw_device() const { return reinterpret_cast<cl_device_id>(mero::raw::get_raw_device_id(device)); }
    cl_context raw_context() const { return reinterpret_cast<cl_context>(mero::raw::get_raw_context(context)); }
    cl_command_queue raw_queue() const {
        return reinterpret_cast<cl_command_queue>(mero::raw::get_raw_command_queue(queue));
    }
    cl_kernel raw_kernel() const { return reinterpret_cast<cl_kernel>(mero::raw::get_raw_kernel(kernel)); }
    static cl_mem raw(mero::memory_object const& object) {
        return reinterpret_cast<cl_mem>(mero::raw::get_raw_memory_object(object));
    }
};

} // namespace bench
