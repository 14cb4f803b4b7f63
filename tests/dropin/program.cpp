// A program of the Khronos C++ bindings, which knows nothing of libnq. Prints what it sees of each platform, or of one.
//
//     program [PLATFORM [leak | released]]

#define CL_HPP_ENABLE_EXCEPTIONS
#define CL_HPP_MINIMUM_OPENCL_VERSION 100
#define CL_HPP_TARGET_OPENCL_VERSION 120
#define CL_TARGET_OPENCL_VERSION 300

#include <CL/opencl.hpp>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

struct session {
    cl::Device device;
    cl::Context context{device};
    cl::CommandQueue queue{context, device};
    bool newest = device.getInfo<CL_DEVICE_VERSION>() >= "OpenCL 3";
};

template <class Function>
void report(char const* what, Function function) {
    try {
        std::printf("  %s: %s\n", what, std::string(function()).c_str());
    } catch (cl::Error const& failure) {
        std::printf("  %s: %s = %d\n", what, failure.what(), failure.err());
    }
}

std::string scale(session& here, char const* name) {
    cl::Program program(here.context, "kernel void scale(global float* a, float f) { a[get_global_id(0)] *= f; }");
    program.build();
    std::vector<float> values(256, 3);
    cl::Buffer buffer(here.context, values.begin(), values.end(), false);
    cl::Kernel kernel(program, name);
    kernel.setArg(0, buffer);
    kernel.setArg(1, 2.0F);
    cl::UserEvent start(here.context);
    std::vector<cl::Event> const after{start};
    here.queue.enqueueNDRangeKernel(kernel, cl::NullRange, values.size(), 64, &after);
    start.setStatus(CL_COMPLETE);
    auto* const mapped = static_cast<float*>(here.queue.enqueueMapBuffer(buffer, CL_TRUE, CL_MAP_READ, 0, 1024));
    std::string const text = std::to_string(mapped[255]);
    here.queue.enqueueUnmapMemObject(buffer, mapped);
    here.queue.finish();
    return text;
}

// A failed link leaves a program with a log.
std::string link(session& here) {
    cl::Program part(here.context, "int missing(int); kernel void k(global int* a) { *a = missing(1); }");
    part.compile();
    cl_program const parts[] = {part()};
    cl_int code = CL_SUCCESS;
    cl_program const made = clLinkProgram(here.context(), 0, nullptr, nullptr, 1, parts, nullptr, nullptr, &code);
    cl::Program const owner(made);
    return std::to_string(code) + (made != nullptr ? ", a program" : ", no program");
}

std::string properties(session& here) {
    if (!here.newest) {
        return "not there";
    }
    cl_int code = CL_SUCCESS;
    cl::Buffer const made(clCreateBufferWithProperties(here.context(), nullptr, CL_MEM_READ_ONLY, 64, nullptr, &code));
    std::size_t size = 0;
    clGetMemObjectInfo(made(), CL_MEM_PROPERTIES, 0, nullptr, &size);
    return std::to_string(code) + ", " + std::to_string(size) + " bytes of properties";
}

std::string null_objects() {
    cl_int code = CL_SUCCESS;
    cl_mem const made = clCreateBuffer(nullptr, 0, 64, nullptr, &code);
    return std::to_string(clGetDeviceInfo(nullptr, CL_DEVICE_NAME, 0, nullptr, nullptr)) + " " +
           std::to_string(clReleaseKernel(nullptr)) + " " + std::to_string(clWaitForEvents(0, nullptr)) + " " +
           std::to_string(code) + (made == nullptr ? "" : ", an object");
}

std::string loader() {
    using info = cl_int (*)(cl_uint, std::size_t, void*, std::size_t*);
    auto* const ask = reinterpret_cast<info>(clGetExtensionFunctionAddress("clGetICDLoaderInfoOCLICD"));
    char name[64] = "another";
    return ask != nullptr && ask(3, sizeof name, name, nullptr) == CL_SUCCESS ? name : "another";
}

void see(cl::Platform const& platform, std::string const& mistake) {
    std::printf("%s\n", platform.getInfo<CL_PLATFORM_NAME>().c_str());
    std::vector<cl::Device> devices;
    platform.getDevices(CL_DEVICE_TYPE_ALL, &devices);
    session here{devices.at(0)};
    report("launch", [&] { return scale(here, "scale"); });
    report("wrong name", [&] { return scale(here, "skale"); });
    report("link", [&] { return link(here); });
    report("properties", [&] { return properties(here); });
    report("GPUs", [&] { return std::to_string(cl::Context(CL_DEVICE_TYPE_GPU).getInfo<CL_CONTEXT_NUM_DEVICES>()); });
    if (mistake == "leak") {
        clRetainContext(here.context());
    } else if (mistake == "released") { // which crashes, or does not
        cl::Program program(here.context, "kernel void one(int a) {}");
        program.build();
        cl_int const value = 1;
        cl_kernel const kernel = clCreateKernel(program(), "one", nullptr);
        clReleaseKernel(kernel);
        clSetKernelArg(kernel, 0, sizeof value, &value);
    }
}

} // namespace

int main(int count, char** arguments) {
    std::vector<cl::Platform> platforms;
    cl::Platform::get(&platforms);
    for (cl::Platform const& each : platforms) {
        if (count < 2 || each.getInfo<CL_PLATFORM_NAME>() == arguments[1]) {
            see(each, count > 2 ? arguments[2] : "");
        }
    }
    report("null objects", null_objects);
    report("loader", loader);
}
