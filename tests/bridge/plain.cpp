// An OpenCL implementation with one device that is no plug-in of an ICD loader: it exports its functions, has few of
// them, and its objects do not begin with a dispatch table.

#define CL_TARGET_OPENCL_VERSION 220
#include <CL/cl.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

std::uintptr_t first_word = 1; // no address

template <class Handle>
cl_int list(cl_uint capacity, Handle* handles, cl_uint* count) {
    if (handles != nullptr && capacity > 0) {
        *handles = reinterpret_cast<Handle>(&first_word);
    }
    if (count != nullptr) {
        *count = 1;
    }
    return CL_SUCCESS;
}

cl_int answer(std::string_view bytes, std::size_t size, void* value, std::size_t* needed) {
    if (needed != nullptr) {
        *needed = bytes.size();
    }
    std::copy_n(bytes.data(), std::min(size, bytes.size()), static_cast<char*>(value));
    return CL_SUCCESS;
}

} // namespace

#pragma GCC visibility push(default)

cl_int clGetPlatformIDs(cl_uint num_entries, cl_platform_id* platforms, cl_uint* num_platforms) {
    return list(num_entries, platforms, num_platforms);
}

cl_int clGetDeviceIDs(cl_platform_id, cl_device_type, cl_uint num_entries, cl_device_id* devices,
                      cl_uint* num_devices) {
    return list(num_entries, devices, num_devices);
}

cl_int clGetPlatformInfo(cl_platform_id, cl_platform_info name, std::size_t size, void* value,
                         std::size_t* param_value_size_ret) {
    using namespace std::string_view_literals;
    auto const text = [&](std::string_view bytes) { return answer(bytes, size, value, param_value_size_ret); };
    return name == CL_PLATFORM_VERSION      ? text("OpenCL 2.2 plain\0"sv)
           : name == CL_PLATFORM_NAME       ? text("Plain\0"sv)
           : name == CL_PLATFORM_EXTENSIONS ? text("cl_khr_icd_like cl_khr_fp64\0"sv)
                                            : CL_INVALID_VALUE;
}

cl_int clGetDeviceInfo(cl_device_id, cl_device_info name, std::size_t size, void* value,
                       std::size_t* param_value_size_ret) {
    void* const platform = &first_word;
    return name == CL_DEVICE_PLATFORM
               ? answer({reinterpret_cast<char const*>(&platform), sizeof platform}, size, value, param_value_size_ret)
               : clGetPlatformInfo(nullptr, CL_PLATFORM_VERSION, size, value, param_value_size_ret);
}

cl_int clRetainDevice(cl_device_id) { return CL_SUCCESS; }
cl_int clReleaseDevice(cl_device_id) { return CL_SUCCESS; }

// Nothing stands between these and a null context.
void* clSVMAlloc(cl_context, cl_svm_mem_flags, std::size_t, cl_uint) { std::abort(); }
void clSVMFree(cl_context, void*) { std::abort(); }
