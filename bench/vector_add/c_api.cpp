// Adds two vectors on the first device, once with each interface to OpenCL, to compare what their compilation costs.

#define CL_TARGET_OPENCL_VERSION 120
#include <CL/cl.h>

#include <cstdio>
#include <vector>

constexpr std::size_t count = 1024;
char const* source = "kernel void add(global float const* a, global float const* b, global float* sum)"
                     "{ size_t i = get_global_id(0); sum[i] = a[i] + b[i]; }";

int main() {
    cl_platform_id platform = nullptr;
    cl_device_id device = nullptr;
    if (clGetPlatformIDs(1, &platform, nullptr) != CL_SUCCESS ||
        clGetDeviceIDs(platform, CL_DEVICE_TYPE_ALL, 1, &device, nullptr) != CL_SUCCESS) {
        return 1;
    }
    std::vector<float> a(count, 1.0F);
    std::vector<float> b(count, 2.0F);
    std::vector<float> sum(count);
    std::size_t const bytes = count * sizeof(float);
    cl_context const context = clCreateContext(nullptr, 1, &device, nullptr, nullptr, nullptr);
    cl_command_queue const queue = clCreateCommandQueue(context, device, 0, nullptr);
    cl_program const program = clCreateProgramWithSource(context, 1, &source, nullptr, nullptr);
    if (clBuildProgram(program, 1, &device, "", nullptr, nullptr) != CL_SUCCESS) {
        return 1;
    }
    cl_mem const of_a = clCreateBuffer(context, CL_MEM_COPY_HOST_PTR, bytes, a.data(), nullptr);
    cl_mem const of_b = clCreateBuffer(context, CL_MEM_COPY_HOST_PTR, bytes, b.data(), nullptr);
    cl_mem const of_sum = clCreateBuffer(context, CL_MEM_READ_WRITE, bytes, nullptr, nullptr);
    cl_kernel const add = clCreateKernel(program, "add", nullptr);
    clSetKernelArg(add, 0, sizeof of_a, &of_a);
    clSetKernelArg(add, 1, sizeof of_b, &of_b);
    clSetKernelArg(add, 2, sizeof of_sum, &of_sum);
    clEnqueueNDRangeKernel(queue, add, 1, nullptr, &count, nullptr, 0, nullptr, nullptr);
    clEnqueueReadBuffer(queue, of_sum, CL_TRUE, 0, bytes, sum.data(), 0, nullptr, nullptr);
    std::printf("%g\n", sum[0]);
    clReleaseKernel(add);
    clReleaseMemObject(of_sum);
    clReleaseMemObject(of_b);
    clReleaseMemObject(of_a);
    clReleaseProgram(program);
    clReleaseCommandQueue(queue);
    clReleaseContext(context);
}
