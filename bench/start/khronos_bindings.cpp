#if __has_include(<CL/opencl.hpp>)

#define CL_HPP_TARGET_OPENCL_VERSION 200
#define CL_HPP_MINIMUM_OPENCL_VERSION 200
#define CL_HPP_ENABLE_EXCEPTIONS
#include <CL/opencl.hpp>

int main() {
    std::vector<cl::Device> devices;
    cl::Platform::get().getDevices(CL_DEVICE_TYPE_ALL, &devices);
    return devices.size() == 1 ? 0 : 1;
}

#else

int main() { return 77; } // as if left out

#endif
