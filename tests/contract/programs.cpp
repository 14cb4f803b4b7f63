#include "scenario.hpp"

namespace nq::block::contract {

char const* const kernel_source =
    "__kernel void add(__global int* data, int value) { data[get_global_id(0)] += value; }"
    "__kernel void store(__global int* data) { data[get_global_id(0)] = get_global_id(0); }";

_nq_cl_program* make_program(session& s, char const* source) {
    return s.make<clReleaseProgram>(clCreateProgramWithSource{.strings = &source, .count = 1});
}

void build(session& s, _nq_cl_program* program, char const* options) {
    s.ok(clBuildProgram{.program = program, .options = options});
}

_nq_cl_kernel* make_kernel(session& s, _nq_cl_program* program, char const* name) {
    return s.make<clReleaseKernel>(clCreateKernel{.program = program, .kernel_name = name});
}

void launch(session& s, _nq_cl_kernel* kernel) {
    std::size_t const count = numbers{}.size();
    s.ok(clEnqueueNDRangeKernel{.kernel = kernel, .global_work_size = &count});
}

namespace {

/// What the kernel "store" of a built program writes.
numbers stored_by(session& s, _nq_cl_program* program) {
    auto* const buffer = make_buffer(s);
    auto* const kernel = make_kernel(s, program, "store");
    set_argument(s, kernel, 0, buffer);
    launch(s, kernel);
    return read(s, buffer);
}

void from_source(session& s, _nq_cl_program* program) {
    std::atomic<int> built = 0;
    s.ok(clBuildProgram{.program = program, .options = "", .pfn_notify = count_call, .user_data = &built});
    EXPECT_EQ(built, 1);
    EXPECT_EQ(s.info<std::int32_t>(clGetProgramBuildInfo{program, s.device}, CL_PROGRAM_BUILD_STATUS), CL_SUCCESS);
    EXPECT_EQ(s.text(clGetProgramInfo{program}, CL_PROGRAM_SOURCE), kernel_source);
    s.references<clRetainProgram, clReleaseProgram, clGetProgramInfo>(program, CL_PROGRAM_REFERENCE_COUNT);
    EXPECT_EQ(stored_by(s, program), counting_from(0));
    std::array<_nq_cl_kernel*, 2> kernels{};
    s.ok(clCreateKernelsInProgram{.program = program, .kernels = kernels.data(), .num_kernels = kernels.size()});
    for (_nq_cl_kernel* const kernel : kernels) {
        s.ok(clReleaseKernel{kernel});
    }
}

void from_binary(session& s, _nq_cl_program* built) {
    auto const size = s.info<std::size_t>(clGetProgramInfo{built}, CL_PROGRAM_BINARY_SIZES);
    std::vector<unsigned char> binary(size);
    auto* data = binary.data();
    EXPECT_EQ(s.info<unsigned char*>(clGetProgramInfo{built}, CL_PROGRAM_BINARIES), nullptr); // not wanted
    s.ok(clGetProgramInfo{built, sizeof data, &data, nullptr, 0, CL_PROGRAM_BINARIES});
    std::int32_t loaded = -1;
    auto* const program = s.make<clReleaseProgram>(
        clCreateProgramWithBinary{.lengths = &size, .binaries = &data, .binary_status = &loaded});
    EXPECT_EQ(loaded, CL_SUCCESS);
    build(s, program, nullptr);
    EXPECT_EQ(stored_by(s, program), counting_from(0));
}

void compiled_and_linked(session& s) {
    char const* const name = "body.h";
    auto* const header = make_program(s, "#define BODY data[get_global_id(0)] = get_global_id(0)");
    auto* const object = make_program(s, "#include \"body.h\"\n__kernel void store(__global int* data) { BODY; }");
    s.ok(clCompileProgram{.program = object,
                          .options = "",
                          .input_headers = &header,
                          .header_include_names = &name,
                          .num_input_headers = 1});
    std::atomic<int> linked = 0;
    auto* const program = s.make<clReleaseProgram>(clLinkProgram{.options = "",
                                                                 .input_programs = &object,
                                                                 .pfn_notify = count_call,
                                                                 .user_data = &linked,
                                                                 .num_input_programs = 1});
    EXPECT_EQ(linked, 1);
    EXPECT_EQ(stored_by(s, program), counting_from(0));
}

// rusticl and Intel's runtime hand out a program beside the error of a failed link.
void not_to_be_linked(session& s) {
    auto* const object = make_program(s, "void missing(void); __kernel void all(void) { missing(); }");
    s.ok(clCompileProgram{.program = object, .options = ""});
    auto const made = s.call(clLinkProgram{.context = s.context, .input_programs = &object, .num_input_programs = 1});
    EXPECT_NE(made.error_code, CL_SUCCESS);
    EXPECT_EQ(made.result, nullptr);
}

void built_in(session& s) {
    std::string names = s.text(clGetDeviceInfo{s.device}, CL_DEVICE_BUILT_IN_KERNELS);
    names = names.empty() ? "any" : names.substr(0, names.find(';'));
    clCreateProgramWithBuiltInKernels request{.kernel_names = names.c_str()};
    if (s.feature(request)) {
        EXPECT_EQ(s.info<_nq_cl_device_id*>(clGetProgramInfo{request.result}, CL_PROGRAM_DEVICES), s.device);
        s.ok(clReleaseProgram{request.result});
    }
}

// OpCapability Addresses, Kernel; a kernel "store" with one pointer, to which it writes the constant with the id 7,
// by default 100.
constexpr std::array<std::uint32_t, 56> module{
    0x07230203, 0x00010000, 0x00070000, 0x00000009, 0x00000000, 0x00020011, 0x00000004, 0x00020011,
    0x00000006, 0x0003000e, 0x00000002, 0x00000002, 0x0005000f, 0x00000006, 0x00000001, 0x726f7473,
    0x00000065, 0x00040047, 0x00000002, 0x00000001, 0x00000007, 0x00020013, 0x00000003, 0x00040015,
    0x00000004, 0x00000020, 0x00000000, 0x00040020, 0x00000005, 0x00000005, 0x00000004, 0x00040021,
    0x00000006, 0x00000003, 0x00000005, 0x00040032, 0x00000004, 0x00000002, 0x00000064, 0x00050036,
    0x00000003, 0x00000001, 0x00000000, 0x00000006, 0x00030037, 0x00000005, 0x00000007, 0x000200f8,
    0x00000008, 0x0005003e, 0x00000007, 0x00000002, 0x00000002, 0x00000004, 0x000100fd, 0x00010038};

// The constant can be set where there are such programs; elsewhere any program will do to be refused.
void from_intermediate_language(session& s, _nq_cl_program* other) {
    std::uint32_t const value = 5;
    clCreateProgramWithIL request{.il = module.data(), .length = sizeof module};
    bool const works = s.feature(request);
    clSetProgramSpecializationConstant constant{works ? request.result : other, 7, sizeof value, &value};
    bool const specialized = s.has<clSetProgramSpecializationConstant>() && s.feature(constant);
    if (works) {
        EXPECT_EQ(s.info<std::remove_const_t<decltype(module)>>(clGetProgramInfo{request.result}, CL_PROGRAM_IL),
                  module);
        build(s, request.result);
        EXPECT_EQ(stored_by(s, request.result)[0], specialized ? 5 : 100);
        s.ok(clReleaseProgram{request.result});
    }
}

void add_to_first(void* arguments) {
    if (arguments != nullptr) {
        ++**static_cast<std::int32_t**>(arguments);
    }
}

void native(session& s, _nq_cl_mem* buffer) {
    void* argument = nullptr;
    void const* place = &argument;
    auto const before = read(s, buffer)[0];
    clEnqueueNativeKernel request{.user_func = add_to_first,
                                  .args = &argument,
                                  .cb_args = sizeof argument,
                                  .mem_list = &buffer,
                                  .args_mem_loc = &place,
                                  .num_mem_objects = 1};
    bool const works = s.feature(request);
    EXPECT_EQ(read(s, buffer)[0], works ? before + 1 : before);
}

void sub_groups(session& s, _nq_cl_kernel* kernel) {
    std::size_t const local = 16;
    std::size_t size = 0;
    clGetKernelSubGroupInfo request{.kernel = kernel,
                                    .input_value_size = sizeof local,
                                    .input_value = &local,
                                    .param_value_size = sizeof size,
                                    .param_value = &size,
                                    .param_name = CL_KERNEL_MAX_SUB_GROUP_SIZE_FOR_NDRANGE};
    bool const works = s.feature(request);
    EXPECT_EQ(size > 0, works);
}

// A clone brings the arguments along.
void clone(session& s, _nq_cl_kernel* kernel, _nq_cl_mem* buffer) {
    auto const before = read(s, buffer)[3];
    auto* const copy = s.make<clReleaseKernel>(clCloneKernel{kernel});
    set_argument(s, kernel, 1, std::int32_t{1000});
    launch(s, copy);
    EXPECT_EQ(read(s, buffer)[3], before + 10);
}

} // namespace

void programs(session& s) {
    auto* const program = make_program(s, kernel_source);
    if (s.has<clSetProgramReleaseCallback>()) {
        clSetProgramReleaseCallback callback{.program = program, .pfn_notify = count_call};
        s.feature(callback);
    }
    from_source(s, program);
    from_binary(s, program);
    if (s.has<clUnloadCompiler>()) {
        s.ok(clUnloadCompiler{});
    } else {
        s.ok(clUnloadPlatformCompiler{s.platform});
        compiled_and_linked(s);
        if (s.name != "oclgrind") { // it links anything
            not_to_be_linked(s);
        }
        built_in(s);
    }
    if (s.has<clCreateProgramWithIL>()) {
        from_intermediate_language(s, program);
    }
}

void kernels(session& s) {
    auto* const program = make_program(s, kernel_source);
    build(s, program, s.has<clGetKernelArgInfo>() ? "-cl-kernel-arg-info" : "");
    auto* const kernel = make_kernel(s, program, "add");
    EXPECT_EQ(s.text(clGetKernelInfo{kernel}, CL_KERNEL_FUNCTION_NAME), "add");
    s.references<clRetainKernel, clReleaseKernel, clGetKernelInfo>(kernel, CL_KERNEL_REFERENCE_COUNT);
    EXPECT_GT(s.info<std::size_t>(clGetKernelWorkGroupInfo{kernel}, CL_KERNEL_WORK_GROUP_SIZE), 0U);
    if (s.has<clGetKernelArgInfo>()) {
        EXPECT_EQ(s.text(clGetKernelArgInfo{.kernel = kernel, .arg_index = 1}, CL_KERNEL_ARG_NAME), "value");
    }
    auto* const buffer = make_buffer(s, counting_from(0));
    set_argument(s, kernel, 0, buffer);
    set_argument(s, kernel, 1, std::int32_t{10});
    launch(s, kernel);
    EXPECT_EQ(read(s, buffer), counting_from(10));
    if (s.has<clEnqueueTask>()) {
        s.ok(clEnqueueTask{.kernel = kernel});
        EXPECT_EQ(read(s, buffer)[0], 20);
    }
    native(s, buffer);
    if (s.has<clCloneKernel>()) {
        clone(s, kernel, buffer);
        sub_groups(s, kernel);
    }
}

} // namespace nq::block::contract
