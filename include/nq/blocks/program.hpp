#pragma once

// Blocks of programs and kernels. With a callback, an entry point may return before its work has ended; OpenCL calls
// the callback at the end. OpenCL copies sources, binaries, options and argument values during the call.

#include <nq/types.hpp>

#include <cstddef>
#include <cstdint>

namespace nq::block {

/// `strings` has `count` texts. If `lengths` is null, each ends with a zero.
struct clCreateProgramWithSource {
    _nq_cl_context* context;
    char const* const* strings;
    std::size_t const* lengths;
    _nq_cl_program* result;
    std::int32_t error_code;
    std::uint32_t count;
};
static_assert(offsetof(clCreateProgramWithSource, context) == 0 && offsetof(clCreateProgramWithSource, strings) == 8 &&
              offsetof(clCreateProgramWithSource, lengths) == 16 && offsetof(clCreateProgramWithSource, result) == 24 &&
              offsetof(clCreateProgramWithSource, error_code) == 32 &&
              offsetof(clCreateProgramWithSource, count) == 36 && sizeof(clCreateProgramWithSource) == 40);

/// One length and one binary for each device. `binary_status` may be null, else it receives a status for each.
struct clCreateProgramWithBinary {
    _nq_cl_context* context;
    _nq_cl_device_id* const* device_list;
    std::size_t const* lengths;
    unsigned char const* const* binaries;
    std::int32_t* binary_status;
    _nq_cl_program* result;
    std::int32_t error_code;
    std::uint32_t num_devices;
};
static_assert(offsetof(clCreateProgramWithBinary, context) == 0 &&
              offsetof(clCreateProgramWithBinary, device_list) == 8 &&
              offsetof(clCreateProgramWithBinary, lengths) == 16 &&
              offsetof(clCreateProgramWithBinary, binaries) == 24 &&
              offsetof(clCreateProgramWithBinary, binary_status) == 32 &&
              offsetof(clCreateProgramWithBinary, result) == 40 &&
              offsetof(clCreateProgramWithBinary, error_code) == 48 &&
              offsetof(clCreateProgramWithBinary, num_devices) == 52 && sizeof(clCreateProgramWithBinary) == 56);

/// Since OpenCL 1.2. `kernel_names` is one text, separated by semicolons.
struct clCreateProgramWithBuiltInKernels {
    _nq_cl_context* context;
    _nq_cl_device_id* const* device_list;
    char const* kernel_names;
    _nq_cl_program* result;
    std::int32_t error_code;
    std::uint32_t num_devices;
};
static_assert(offsetof(clCreateProgramWithBuiltInKernels, context) == 0 &&
              offsetof(clCreateProgramWithBuiltInKernels, device_list) == 8 &&
              offsetof(clCreateProgramWithBuiltInKernels, kernel_names) == 16 &&
              offsetof(clCreateProgramWithBuiltInKernels, result) == 24 &&
              offsetof(clCreateProgramWithBuiltInKernels, error_code) == 32 &&
              offsetof(clCreateProgramWithBuiltInKernels, num_devices) == 36 &&
              sizeof(clCreateProgramWithBuiltInKernels) == 40);

/// A program from `length` bytes of intermediate language. Since OpenCL 2.1.
struct clCreateProgramWithIL {
    _nq_cl_context* context;
    void const* il;
    std::size_t length;
    _nq_cl_program* result;
    std::int32_t error_code;
};
static_assert(offsetof(clCreateProgramWithIL, context) == 0 && offsetof(clCreateProgramWithIL, il) == 8 &&
              offsetof(clCreateProgramWithIL, length) == 16 && offsetof(clCreateProgramWithIL, result) == 24 &&
              offsetof(clCreateProgramWithIL, error_code) == 32 && sizeof(clCreateProgramWithIL) == 40);

/// A failed build has the status -11; clGetProgramBuildInfo then returns the log.
struct clBuildProgram {
    _nq_cl_program* program;
    _nq_cl_device_id* const* device_list;
    char const* options;
    program_callback pfn_notify;
    void* user_data;
    std::int32_t status;
    std::uint32_t num_devices;
};
static_assert(offsetof(clBuildProgram, program) == 0 && offsetof(clBuildProgram, device_list) == 8 &&
              offsetof(clBuildProgram, options) == 16 && offsetof(clBuildProgram, pfn_notify) == 24 &&
              offsetof(clBuildProgram, user_data) == 32 && offsetof(clBuildProgram, status) == 40 &&
              offsetof(clBuildProgram, num_devices) == 44 && sizeof(clBuildProgram) == 48);

/// Since OpenCL 1.2. The library does not use it.
struct clCompileProgram {
    _nq_cl_program* program;
    _nq_cl_device_id* const* device_list;
    char const* options;
    _nq_cl_program* const* input_headers;
    char const* const* header_include_names;
    program_callback pfn_notify;
    void* user_data;
    std::int32_t status;
    std::uint32_t num_devices;
    std::uint32_t num_input_headers;
};
static_assert(offsetof(clCompileProgram, program) == 0 && offsetof(clCompileProgram, device_list) == 8 &&
              offsetof(clCompileProgram, options) == 16 && offsetof(clCompileProgram, input_headers) == 24 &&
              offsetof(clCompileProgram, header_include_names) == 32 && offsetof(clCompileProgram, pfn_notify) == 40 &&
              offsetof(clCompileProgram, user_data) == 48 && offsetof(clCompileProgram, status) == 56 &&
              offsetof(clCompileProgram, num_devices) == 60 && offsetof(clCompileProgram, num_input_headers) == 64 &&
              sizeof(clCompileProgram) == 72);

/// Since OpenCL 1.2. The result is between the callback and its user data. Some implementations return a program, which
/// the caller must release, even if the link fails.
struct clLinkProgram {
    _nq_cl_context* context;
    _nq_cl_device_id* const* device_list;
    char const* options;
    _nq_cl_program* const* input_programs;
    program_callback pfn_notify;
    _nq_cl_program* result;
    void* user_data;
    std::int32_t error_code;
    std::uint32_t num_devices;
    std::uint32_t num_input_programs;
};
static_assert(offsetof(clLinkProgram, context) == 0 && offsetof(clLinkProgram, device_list) == 8 &&
              offsetof(clLinkProgram, options) == 16 && offsetof(clLinkProgram, input_programs) == 24 &&
              offsetof(clLinkProgram, pfn_notify) == 32 && offsetof(clLinkProgram, result) == 40 &&
              offsetof(clLinkProgram, user_data) == 48 && offsetof(clLinkProgram, error_code) == 56 &&
              offsetof(clLinkProgram, num_devices) == 60 && offsetof(clLinkProgram, num_input_programs) == 64 &&
              sizeof(clLinkProgram) == 72);

/// Until OpenCL 1.1; since then clUnloadPlatformCompiler.
struct alignas(8) clUnloadCompiler {
    std::int32_t status;
};
static_assert(offsetof(clUnloadCompiler, status) == 0 && sizeof(clUnloadCompiler) == 8);

/// A hint that no more programs are built. Since OpenCL 1.2.
struct clUnloadPlatformCompiler {
    _nq_cl_platform_id* platform;
    std::int32_t status;
};
static_assert(offsetof(clUnloadPlatformCompiler, platform) == 0 && offsetof(clUnloadPlatformCompiler, status) == 8 &&
              sizeof(clUnloadPlatformCompiler) == 16);

/// Sets a specialization constant, for later builds. Since OpenCL 2.2, like the next.
struct clSetProgramSpecializationConstant {
    _nq_cl_program* program;
    std::uint32_t spec_id;
    std::size_t spec_size;
    void const* spec_value;
    std::int32_t status;
};
static_assert(offsetof(clSetProgramSpecializationConstant, program) == 0 &&
              offsetof(clSetProgramSpecializationConstant, spec_id) == 8 &&
              offsetof(clSetProgramSpecializationConstant, spec_size) == 16 &&
              offsetof(clSetProgramSpecializationConstant, spec_value) == 24 &&
              offsetof(clSetProgramSpecializationConstant, status) == 32 &&
              sizeof(clSetProgramSpecializationConstant) == 40);

/// Calls back when the program is deleted. Since OpenCL 2.2.
struct clSetProgramReleaseCallback {
    _nq_cl_program* program;
    program_callback pfn_notify;
    void* user_data;
    std::int32_t status;
};
static_assert(offsetof(clSetProgramReleaseCallback, program) == 0 &&
              offsetof(clSetProgramReleaseCallback, pfn_notify) == 8 &&
              offsetof(clSetProgramReleaseCallback, user_data) == 16 &&
              offsetof(clSetProgramReleaseCallback, status) == 24 && sizeof(clSetProgramReleaseCallback) == 32);

/// A kernel by its name. The program must be built.
struct clCreateKernel {
    _nq_cl_program* program;
    char const* kernel_name;
    _nq_cl_kernel* result;
    std::int32_t error_code;
};
static_assert(offsetof(clCreateKernel, program) == 0 && offsetof(clCreateKernel, kernel_name) == 8 &&
              offsetof(clCreateKernel, result) == 16 && offsetof(clCreateKernel, error_code) == 24 &&
              sizeof(clCreateKernel) == 32);

/// Called twice: with null `kernels` for their number, then for the kernels, each with a reference.
struct clCreateKernelsInProgram {
    _nq_cl_program* program;
    _nq_cl_kernel** kernels;
    std::uint32_t* num_kernels_ret;
    std::int32_t status;
    std::uint32_t num_kernels;
};
static_assert(offsetof(clCreateKernelsInProgram, program) == 0 && offsetof(clCreateKernelsInProgram, kernels) == 8 &&
              offsetof(clCreateKernelsInProgram, num_kernels_ret) == 16 &&
              offsetof(clCreateKernelsInProgram, status) == 24 &&
              offsetof(clCreateKernelsInProgram, num_kernels) == 28 && sizeof(clCreateKernelsInProgram) == 32);

/// A copy of a kernel with the arguments that are set. Since OpenCL 2.1.
struct clCloneKernel {
    _nq_cl_kernel* source_kernel;
    _nq_cl_kernel* result;
    std::int32_t error_code;
};
static_assert(offsetof(clCloneKernel, source_kernel) == 0 && offsetof(clCloneKernel, result) == 8 &&
              offsetof(clCloneKernel, error_code) == 16 && sizeof(clCloneKernel) == 24);

/// Sets an argument: `arg_size` bytes, or the size of local memory where `arg_value` is null.
struct clSetKernelArg {
    _nq_cl_kernel* kernel;
    std::size_t arg_size;
    void const* arg_value;
    std::int32_t status;
    std::uint32_t arg_index;
};
static_assert(offsetof(clSetKernelArg, kernel) == 0 && offsetof(clSetKernelArg, arg_size) == 8 &&
              offsetof(clSetKernelArg, arg_value) == 16 && offsetof(clSetKernelArg, status) == 24 &&
              offsetof(clSetKernelArg, arg_index) == 28 && sizeof(clSetKernelArg) == 32);

/// Sets an argument to an address in shared virtual memory. Since OpenCL 2.0, like the next.
struct clSetKernelArgSVMPointer {
    _nq_cl_kernel* kernel;
    void const* arg_value;
    std::int32_t status;
    std::uint32_t arg_index;
};
static_assert(offsetof(clSetKernelArgSVMPointer, kernel) == 0 && offsetof(clSetKernelArgSVMPointer, arg_value) == 8 &&
              offsetof(clSetKernelArgSVMPointer, status) == 16 && offsetof(clSetKernelArgSVMPointer, arg_index) == 20 &&
              sizeof(clSetKernelArgSVMPointer) == 24);

/// Tells what memory a kernel reaches by pointers alone, and how. Since OpenCL 2.0.
struct clSetKernelExecInfo {
    _nq_cl_kernel* kernel;
    std::size_t param_value_size;
    void const* param_value;
    std::int32_t status;
    std::uint32_t param_name;
};
static_assert(offsetof(clSetKernelExecInfo, kernel) == 0 && offsetof(clSetKernelExecInfo, param_value_size) == 8 &&
              offsetof(clSetKernelExecInfo, param_value) == 16 && offsetof(clSetKernelExecInfo, status) == 24 &&
              offsetof(clSetKernelExecInfo, param_name) == 28 && sizeof(clSetKernelExecInfo) == 32);

} // namespace nq::block
