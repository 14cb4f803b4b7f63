#include "soak.hpp"

#define CL_TARGET_OPENCL_VERSION 120
#include <CL/cl.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <dlfcn.h>
#include <numeric>
#include <stdexcept>

// The operations of load.hpp without the library.

namespace {

/// A function of the loader, which is loaded as the bridge loads it.
template <class Function>
Function* entry(char const* name) {
    static void* const loader = dlopen("libOpenCL.so.1", RTLD_NOW | RTLD_LOCAL);
    return reinterpret_cast<Function*>(dlsym(loader, name));
}

#define CL(name)                                                                                                       \
    ([] {                                                                                                              \
        static auto* const found = entry<decltype(name)>(#name);                                                       \
        return found;                                                                                                  \
    }())

constexpr std::size_t items = 64;
constexpr std::size_t size = items * sizeof(int);
constexpr char const* source = "kernel void f(global int* a, int b) { a[get_global_id(0)] += b; }";

void require(bool condition) {
    if (!condition) {
        throw std::runtime_error("OpenCL does something else");
    }
}

cl_device_id find_device() {
    cl_platform_id platform = nullptr;
    cl_device_id device = nullptr;
    CL(clGetPlatformIDs)(1, &platform, nullptr);
    CL(clGetDeviceIDs)(platform, CL_DEVICE_TYPE_ALL, 1, &device, nullptr);
    return device;
}

struct objects {
    cl_device_id device = find_device();
    cl_context context = CL(clCreateContext)(nullptr, 1, &device, nullptr, nullptr, nullptr);
    cl_command_queue queue = CL(clCreateCommandQueue)(context, device, 0, nullptr);
    cl_program program = build(source);
    cl_mem store = make_buffer(size);

    cl_program build(char const* text) const {
        cl_program const made = CL(clCreateProgramWithSource)(context, 1, &text, nullptr, nullptr);
        CL(clBuildProgram)(made, 1, &device, "", nullptr, nullptr);
        return made;
    }
    cl_mem make_buffer(std::size_t bytes) const {
        return CL(clCreateBuffer)(context, CL_MEM_READ_WRITE, bytes, nullptr, nullptr);
    }
};

void discover(objects& on) { require(find_device() == on.device); }

void copy(objects& on) {
    for (int i = 0; i < 4; ++i) {
        CL(clRetainDevice)(on.device);
        CL(clRetainContext)(on.context);
        CL(clRetainCommandQueue)(on.queue);
        CL(clRetainProgram)(on.program);
        CL(clRetainMemObject)(on.store);
        CL(clReleaseMemObject)(on.store);
        CL(clReleaseProgram)(on.program);
        CL(clReleaseCommandQueue)(on.queue);
        CL(clReleaseContext)(on.context);
        CL(clReleaseDevice)(on.device);
    }
}

void query(objects& on) {
    std::size_t length = 0;
    std::array<char, 256> name{};
    CL(clGetDeviceInfo)(on.device, CL_DEVICE_NAME, 0, nullptr, &length);
    CL(clGetDeviceInfo)(on.device, CL_DEVICE_NAME, name.size(), name.data(), nullptr);
    CL(clGetMemObjectInfo)(on.store, CL_MEM_SIZE, sizeof length, &length, nullptr);
    require(length == size);
    cl_device_id device = nullptr;
    CL(clGetContextInfo)(on.context, CL_CONTEXT_DEVICES, sizeof device, &device, nullptr);
    require(device == on.device);
}

void make_and_release(objects& on) {
    cl_mem const made = on.make_buffer(size);
    CL(clRetainMemObject)(made);
    CL(clReleaseMemObject)(made);
    CL(clReleaseMemObject)(made);
}

void fail(objects& on) { require(on.make_buffer(0) == nullptr); }

void call_back(objects& on) {
    static std::atomic<long> called{0};
    cl_event const event = CL(clCreateUserEvent)(on.context, nullptr);
    CL(clSetEventCallback)
    (
        event, CL_COMPLETE, [](cl_event, cl_int, void*) { ++called; }, nullptr);
    CL(clSetUserEventStatus)(event, CL_COMPLETE);
    CL(clWaitForEvents)(1, &event);
    CL(clReleaseEvent)(event);
}

void transfer(objects& on) {
    std::array<int, items> values{};
    std::array<int, items> seen{};
    std::iota(values.begin(), values.end(), 1);
    cl_mem const store = on.make_buffer(size);
    cl_event written = nullptr;
    CL(clEnqueueWriteBuffer)(on.queue, store, CL_FALSE, 0, size, values.data(), 0, nullptr, &written);
    CL(clWaitForEvents)(1, &written);
    CL(clReleaseEvent)(written);
    CL(clEnqueueReadBuffer)(on.queue, store, CL_TRUE, 0, size, seen.data(), 0, nullptr, nullptr);
    CL(clReleaseMemObject)(store);
    require(seen == values);
}

void launch(objects& on) {
    std::array<int, items> values{};
    cl_mem const store = CL(clCreateBuffer)(on.context, CL_MEM_COPY_HOST_PTR, size, values.data(), nullptr);
    cl_kernel const kernel = CL(clCreateKernel)(on.program, "f", nullptr);
    int const more = 42;
    std::size_t const global = items;
    std::size_t const local = 1;
    cl_event done = nullptr;
    CL(clSetKernelArg)(kernel, 0, sizeof store, &store);
    CL(clSetKernelArg)(kernel, 1, sizeof more, &more);
    CL(clEnqueueNDRangeKernel)(on.queue, kernel, 1, nullptr, &global, &local, 0, nullptr, &done);
    CL(clWaitForEvents)(1, &done);
    CL(clReleaseEvent)(done);
    CL(clEnqueueReadBuffer)(on.queue, store, CL_TRUE, 0, size, values.data(), 0, nullptr, nullptr);
    CL(clReleaseKernel)(kernel);
    CL(clReleaseMemObject)(store);
    require(values[items - 1] == more);
}

void build(objects& on) {
    cl_program const made = on.build(source);
    CL(clReleaseKernel)(CL(clCreateKernel)(made, "f", nullptr));
    CL(clReleaseProgram)(made);
    cl_program const failed = on.build("kernel void f(int a) { nothing_here(; }");
    std::size_t length = 0;
    CL(clGetProgramBuildInfo)(failed, on.device, CL_PROGRAM_BUILD_LOG, 0, nullptr, &length);
    std::string log(length, '\0');
    CL(clGetProgramBuildInfo)(failed, on.device, CL_PROGRAM_BUILD_LOG, length, log.data(), nullptr);
    CL(clReleaseProgram)(failed);
}

} // namespace

namespace soak {

std::vector<operation> c_load() {
    static objects on;
    auto const with = [](void (*run)(objects&)) { return [run] { run(on); }; };
    return {{"discover", 40, false, with(discover)},  {"copy all handles", 100, false, with(copy)},
            {"query", 100, false, with(query)},       {"buffer", 100, false, with(make_and_release)},
            {"failure", 50, false, with(fail)},       {"logged failure", 10, false, [] {}},
            {"callback", 50, false, with(call_back)}, {"transfer", 30, true, with(transfer)},
            {"launch", 30, true, with(launch)},       {"build", 1, true, with(build)}};
}

} // namespace soak
