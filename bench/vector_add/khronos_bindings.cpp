#define CL_HPP_TARGET_OPENCL_VERSION 120
#define CL_HPP_MINIMUM_OPENCL_VERSION 120
#define CL_HPP_ENABLE_EXCEPTIONS
#include <CL/opencl.hpp>

#include <cstdio>
#include <exception>
#include <vector>

constexpr std::size_t count = 1024;
constexpr char const* source = "kernel void add(global float const* a, global float const* b, global float* sum)"
                               "{ size_t i = get_global_id(0); sum[i] = a[i] + b[i]; }";

int main() try {
    std::vector<cl::Device> devices;
    cl::Platform::get().getDevices(CL_DEVICE_TYPE_ALL, &devices);
    cl::Device const device = devices.at(0);
    std::vector<float> a(count, 1.0F);
    std::vector<float> b(count, 2.0F);
    std::vector<float> sum(count);
    std::size_t const bytes = count * sizeof(float);
    cl::Context const context(device);
    cl::CommandQueue const queue(context, device);
    cl::Program program(context, source);
    program.build(std::vector<cl::Device>{device}, "");
    cl::Buffer const of_a(context, CL_MEM_COPY_HOST_PTR, bytes, a.data());
    cl::Buffer const of_b(context, CL_MEM_COPY_HOST_PTR, bytes, b.data());
    cl::Buffer const of_sum(context, CL_MEM_READ_WRITE, bytes);
    cl::Kernel add(program, "add");
    add.setArg(0, of_a);
    add.setArg(1, of_b);
    add.setArg(2, of_sum);
    queue.enqueueNDRangeKernel(add, cl::NullRange, count, 64);
    queue.enqueueReadBuffer(of_sum, CL_TRUE, 0, bytes, sum.data());
    std::printf("%g\n", sum[0]);
} catch (std::exception const& failure) {
    std::puts(failure.what());
    return 1;
}
