// A program that finds a device and ends. The other start programs cost more by the price of loading their interface.
// Like them it uses the C++ library.

#define CL_TARGET_OPENCL_VERSION 300
#include <CL/cl.h>

#include <vector>

int main() {
    cl_platform_id platform = nullptr;
    clGetPlatformIDs(1, &platform, nullptr);
    cl_uint count = 0;
    clGetDeviceIDs(platform, CL_DEVICE_TYPE_ALL, 0, nullptr, &count);
    std::vector<cl_device_id> devices(count);
    clGetDeviceIDs(platform, CL_DEVICE_TYPE_ALL, count, devices.data(), nullptr);
    return devices.size() == 1 ? 0 : 1;
}
