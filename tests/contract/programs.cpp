#include "scenario.hpp"

namespace contract {

using namespace nq::block;

char const* const kernel_source =
    "__kernel void add(__global int* data, int value) { data[get_global_id(0)] += value; }"
    "__kernel void store(__global int* data) { data[get_global_id(0)] = get_global_id(0); }";

namespace {

void count_call(_nq_cl_program*, void* counter) {
    if (counter != nullptr) {
        ++*static_cast<std::atomic<int>*>(counter);
    }
}

/// Runs the kernel "store" of a built program and checks what it wrote.
template <nq::capability Version>
void expect_works(session<Version>& s, _nq_cl_program* program) {
    auto* const buffer = make_buffer(s, numbers{});
    auto* const kernel = make_kernel(s, program, "store");
    set_argument(s, kernel, 0, buffer);
    launch(s, kernel);
    EXPECT_EQ(read(s, buffer), counting_from(0));
    s.ok(clReleaseKernel{kernel});
    s.ok(clReleaseMemObject{buffer});
}

template <nq::capability Version>
void from_source(session<Version>& s, _nq_cl_program* program) {
    std::atomic<int> built = 0;
    s.ok(clBuildProgram{.program = program,
                        .device_list = &s.device,
                        .options = "",
                        .pfn_notify = count_call,
                        .user_data = &built,
                        .num_devices = 1});
    EXPECT_EQ(built, 1);
    EXPECT_EQ(s.template info<std::int32_t>(clGetProgramBuildInfo{program, s.device}, build_status), success);
    EXPECT_EQ(s.text(clGetProgramInfo{program}, program_source), kernel_source);
    s.template references<clRetainProgram, clReleaseProgram, clGetProgramInfo>(program, program_reference_count);
    expect_works(s, program);
    std::array<_nq_cl_kernel*, 2> kernels{};
    std::uint32_t count = 0;
    s.ok(clCreateKernelsInProgram{
        .program = program, .kernels = kernels.data(), .num_kernels_ret = &count, .num_kernels = 2});
    EXPECT_EQ(count, 2U);
    for (_nq_cl_kernel* const kernel : kernels) {
        s.ok(clReleaseKernel{kernel});
    }
}

template <nq::capability Version>
void from_binary(session<Version>& s, _nq_cl_program* built) {
    auto const size = s.template info<std::size_t>(clGetProgramInfo{built}, program_binary_sizes);
    std::vector<unsigned char> binary(size);
    auto* data = binary.data();
    EXPECT_EQ(s.template info<unsigned char*>(clGetProgramInfo{built}, program_binaries), nullptr); // not wanted
    s.ok(clGetProgramInfo{
        .program = built, .param_value_size = sizeof data, .param_value = &data, .param_name = program_binaries});
    std::int32_t loaded = -1;
    auto* const program = s.ok(clCreateProgramWithBinary{.context = s.context,
                                                         .device_list = &s.device,
                                                         .lengths = &size,
                                                         .binaries = &data,
                                                         .binary_status = &loaded,
                                                         .num_devices = 1})
                              .result;
    EXPECT_EQ(loaded, success);
    build(s, program, nullptr);
    expect_works(s, program);
    s.ok(clReleaseProgram{program});
}

template <nq::capability Version>
void compiled_and_linked(session<Version>& s) {
    char const* const name = "body.h";
    auto* const header = make_program(s, "#define BODY data[get_global_id(0)] = get_global_id(0)");
    auto* const object = make_program(s, "#include \"body.h\"\n__kernel void store(__global int* data) { BODY; }");
    s.ok(clCompileProgram{.program = object,
                          .device_list = &s.device,
                          .options = "",
                          .input_headers = &header,
                          .header_include_names = &name,
                          .num_devices = 1,
                          .num_input_headers = 1});
    std::atomic<int> linked = 0;
    auto* const program = s.ok(clLinkProgram{.context = s.context,
                                             .device_list = &s.device,
                                             .options = "",
                                             .input_programs = &object,
                                             .pfn_notify = count_call,
                                             .user_data = &linked,
                                             .num_devices = 1,
                                             .num_input_programs = 1})
                              .result;
    EXPECT_EQ(linked, 1);
    expect_works(s, program);
    for (_nq_cl_program* const each : {header, object, program}) {
        s.ok(clReleaseProgram{each});
    }
}

// rusticl and Intel's runtime hand out a program beside the error of a failed link.
template <nq::capability Version>
void not_to_be_linked(session<Version>& s) {
    auto* const object = make_program(s, "void missing(void); __kernel void all(void) { missing(); }");
    s.ok(clCompileProgram{.program = object, .device_list = &s.device, .options = "", .num_devices = 1});
    auto const made = s.call(clLinkProgram{.context = s.context,
                                           .device_list = &s.device,
                                           .options = "",
                                           .input_programs = &object,
                                           .num_devices = 1,
                                           .num_input_programs = 1});
    EXPECT_NE(made.error_code, success);
    EXPECT_EQ(made.result, nullptr);
    s.ok(clReleaseProgram{object});
}

template <nq::capability Version>
void built_in(session<Version>& s) {
    std::string names = s.text(clGetDeviceInfo{s.device}, device_built_in_kernels);
    names = names.empty() ? "any" : names.substr(0, names.find(';'));
    clCreateProgramWithBuiltInKernels request{
        .context = s.context, .device_list = &s.device, .kernel_names = names.c_str(), .num_devices = 1};
    if (s.feature(request)) {
        EXPECT_EQ(s.template info<_nq_cl_device_id*>(clGetProgramInfo{request.result}, program_devices), s.device);
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

template <nq::capability Version>
std::int32_t constant_of(session<Version>& s, _nq_cl_program* program) {
    build(s, program);
    auto* const buffer = make_buffer(s, numbers{});
    auto* const kernel = make_kernel(s, program, "store");
    set_argument(s, kernel, 0, buffer);
    launch(s, kernel);
    auto const value = read(s, buffer)[0];
    s.ok(clReleaseKernel{kernel});
    s.ok(clReleaseMemObject{buffer});
    return value;
}

template <nq::capability Version>
_nq_cl_program* specialized(session<Version>& s, _nq_cl_program* program) {
    std::uint32_t const value = 5;
    clSetProgramSpecializationConstant request{
        .program = program, .spec_id = 7, .spec_size = sizeof value, .spec_value = &value};
    EXPECT_TRUE(s.feature(request));
    EXPECT_EQ(constant_of(s, program), 5);
    return program;
}

template <nq::capability Version>
void from_intermediate_language(session<Version>& s) {
    clCreateProgramWithIL request{.context = s.context, .il = module.data(), .length = sizeof module};
    if (!s.feature(request)) {
        return;
    }
    std::remove_const_t<decltype(module)> stored{};
    s.get(clGetProgramInfo{request.result}, program_il, stored);
    EXPECT_EQ(stored, module);
    EXPECT_EQ(constant_of(s, request.result), 100);
    s.ok(clReleaseProgram{request.result});
    if constexpr (nq::has_command<Version, clSetProgramSpecializationConstant>) {
        s.ok(clReleaseProgram{specialized(s, s.ok(request).result)});
    }
}

template <nq::capability Version>
void from_2_2(session<Version>& s, _nq_cl_program* program) {
    clSetProgramReleaseCallback callback{.program = program, .pfn_notify = count_call};
    s.feature(callback);
    if (expected_code(s.name, "clSetProgramSpecializationConstant") != success) {
        std::uint32_t const value = 5;
        clSetProgramSpecializationConstant request{
            .program = program, .spec_id = 7, .spec_size = sizeof value, .spec_value = &value};
        s.feature(request);
    }
}

} // namespace

template <nq::capability Version>
void programs(session<Version>& s) {
    auto* const program = make_program(s, kernel_source);
    if constexpr (nq::has_command<Version, clSetProgramSpecializationConstant>) {
        from_2_2(s, program);
    }
    from_source(s, program);
    from_binary(s, program);
    if constexpr (nq::has_command<Version, clUnloadCompiler>) {
        s.ok(clUnloadCompiler{});
    } else {
        s.ok(clUnloadPlatformCompiler{s.platform});
        compiled_and_linked(s);
        if (s.name != "oclgrind") { // it links anything
            not_to_be_linked(s);
        }
        built_in(s);
    }
    if constexpr (nq::has_command<Version, clCreateProgramWithIL>) {
        from_intermediate_language(s);
    }
    s.ok(clReleaseProgram{program});
}
CONTRACT_INSTANTIATE(programs);

} // namespace contract
