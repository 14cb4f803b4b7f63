#include "support.hpp"

#include <atomic>

namespace real {
namespace {

char const* const two_kernels = "__kernel void doubles(__global int* v) { v[get_global_id(0)] *= 2; }"
                                "__kernel void negates(__global int* v) { v[get_global_id(0)] *= SIGN; }";

numbers const sent{1, 2, 3, -4}, negated{-1, -2, -3, 4};

/// What a kernel with one buffer as its argument makes of `sent`.
template <class Api>
numbers result_of(bench<Api>& b, typename Api::kernel kernel) {
    auto values = b.store(sent);
    b.set_arguments(kernel, values);
    b.launch(kernel, sent.size());
    return b.load(values);
}

void count_call(_nq_cl_program*, void* calls) { ++*static_cast<std::atomic<int>*>(calls); }

SCENARIO(builds_source, "programs from source", 100) {
    auto program = b.context.create_program_from_source(two_kernels);
    expect_counted(program);
    EXPECT_EQ(program.source_code(), two_kernels);
    auto& calls = lasting<std::atomic<int>>();
    program.build({b.device}, "-DSIGN=-1", count_call, &calls);
    EXPECT_TRUE(comes_true([&calls] { return calls == 1; }));
    EXPECT_EQ(static_cast<int>(program.build_status(b.device)), 0) << program.build_log(b.device);
    EXPECT_EQ(program.build_options(b.device), "-DSIGN=-1");
    EXPECT_EQ(raw_of(program.get_context()), raw_of(b.context));
    EXPECT_EQ(program.get_devices(), std::vector{b.device});
    EXPECT_EQ(program.create_all_kernels().size(), 2U);
    EXPECT_EQ(result_of(b, program.create_kernel("negates")), negated);
    EXPECT_THROW(program.create_kernel("absent"), common::invalid_kernel_name);
    if constexpr (Api::number < 120) {
        b.expect(CL_SUCCESS, wire::clUnloadCompiler{});
    } else {
        b.expect(CL_SUCCESS, wire::clUnloadPlatformCompiler{raw_of(b.device.get_platform())});
        EXPECT_EQ(program.num_kernels(), 2U);
        EXPECT_EQ(program.binary_type(b.device), Api::program_binary_type::executable);
    }
}

SCENARIO(reports_errors, "programs with an error", 100) {
    auto program = b.context.create_program_from_source("__kernel void f() { this is no OpenCL C }");
    program.build({b.device}, "", nullptr, nullptr);
    EXPECT_EQ(static_cast<int>(program.build_status(b.device)), CL_BUILD_ERROR);
    EXPECT_NE(program.build_log(b.device).find("error"), std::string::npos) << program.build_log(b.device);
    EXPECT_THROW(program.create_kernel("f"), common::opencl_error);
}

SCENARIO(loads_binaries, "programs from binaries", 100) {
    auto const built = b.build(two_kernels, "-DSIGN=-1");
    auto const binaries = built.binaries();
    ASSERT_EQ(binaries.size(), 1U);
    EXPECT_EQ(binaries.front().device, b.device);
    ASSERT_FALSE(binaries.front().binary.empty());
    auto program = b.context.create_program_from_binary(binaries);
    b.build(program);
    EXPECT_EQ(result_of(b, program.create_kernel("negates")), negated);
    unsigned char* unwanted = nullptr;
    std::size_t size = 0;
    b.expect(CL_SUCCESS,
             wire::clGetProgramInfo{raw_of(built), sizeof unwanted, &unwanted, &size, 0, CL_PROGRAM_BINARIES});
    EXPECT_EQ(size, sizeof unwanted);
    std::int32_t loaded = -1;
    auto const* code = binaries.front().binary.data();
    size = binaries.front().binary.size();
    auto* const device = raw_of(b.device);
    auto const made = b.expect(CL_SUCCESS, wire::clCreateProgramWithBinary{.context = raw_of(b.context),
                                                                           .device_list = &device,
                                                                           .lengths = &size,
                                                                           .binaries = &code,
                                                                           .binary_status = &loaded,
                                                                           .num_devices = 1});
    EXPECT_EQ(loaded, CL_SUCCESS);
    b.expect(CL_SUCCESS, wire::clReleaseProgram{made.result});
}

SCENARIO(leaves_out_binaries, "sub-devices", 120, 120) {
    auto parts = b.device.partition_equally(1);
    parts.resize(std::min<std::size_t>(parts.size(), 2), b.device);
    auto context = create_context({}, parts, nullptr, nullptr);
    auto program = context.create_program_from_source(two_kernels);
    program.build(parts, "-DSIGN=-1", nullptr, nullptr);
    std::vector<unsigned char*> unwanted(parts.size());
    b.expect(CL_SUCCESS, wire::clGetProgramInfo{raw_of(program), unwanted.size() * sizeof(void*), unwanted.data(),
                                                nullptr, 0, CL_PROGRAM_BINARIES});
}

/// Compiles without linking, which the library leaves to programs that speak to libnq.
template <class Api>
typename Api::program compile(bench<Api>& b, char const* source, wire::clCompileProgram with = {}) {
    auto program = b.context.create_program_from_source(source);
    auto& calls = lasting<std::atomic<int>>();
    with.program = raw_of(program);
    with.options = "";
    with.pfn_notify = count_call;
    with.user_data = &calls;
    b.expect(CL_SUCCESS, with);
    EXPECT_TRUE(comes_true([&calls] { return calls == 1; }));
    EXPECT_EQ(program.binary_type(b.device), Api::program_binary_type::compiled_object);
    return program;
}

SCENARIO(compiles_and_links, "programs compiled and linked", 120) {
    auto const header = b.context.create_program_from_source("#define BODY v[get_global_id(0)] *= -1");
    auto* const headers = raw_of(header);
    char const* const name = "body.h";
    auto const object = compile(b, "#include \"body.h\"\n__kernel void f(__global int* v) { BODY; }",
                                {.input_headers = &headers, .header_include_names = &name, .num_input_headers = 1});
    auto& calls = lasting<std::atomic<int>>();
    auto program = b.context.link_programs({b.device}, {object}, "", count_call, &calls);
    EXPECT_TRUE(comes_true([&calls] { return calls == 1; }));
    EXPECT_EQ(program.binary_type(b.device), Api::program_binary_type::executable);
    EXPECT_EQ(program.kernel_names(), std::vector<std::string>{"f"});
    EXPECT_EQ(result_of(b, program.create_kernel("f")), negated);
    if (!b.differs("oclgrind", "links without a function that is called")) {
        auto const lacking = compile(b, "void missing(void); __kernel void all(void) { missing(); }");
        EXPECT_THROW(b.context.link_programs({}, {lacking}, "", nullptr, nullptr), common::opencl_error);
    }
}

SCENARIO(links_two, "programs linked from two", 120) {
    auto const caller = compile(b, "int negate(int); __kernel void f(__global int* v)"
                                   "{ v[get_global_id(0)] = negate(v[get_global_id(0)]); }");
    auto const callee = compile(b, "int negate(int value) { return -value; }");
    auto program = b.context.link_programs({}, {caller, callee}, "", nullptr, nullptr);
    EXPECT_EQ(result_of(b, program.create_kernel("f")), negated);
}

SCENARIO(builds_intermediate_language, "intermediate language", 210) {
    auto program = b.context.create_program_from_il(intermediate_language());
    EXPECT_EQ(program.il(), intermediate_language());
    b.build(program);
    EXPECT_EQ(result_of(b, program.create_kernel("f")), (numbers{101, 102, 103, 96}));
}

SCENARIO(specializes, "specialization constants", 220) {
    auto plain = b.context.create_program_from_source(two_kernels);
    EXPECT_THROW(plain.set_specialization_constant(8, true), common::opencl_error);
    auto program = b.context.create_program_from_il(intermediate_language());
    std::int32_t const summand = 5;
    program.set_specialization_constant_raw(7, sizeof summand, &summand);
    program.set_specialization_constant(8, true);
    b.build(program);
    EXPECT_EQ(result_of(b, program.create_kernel("f")), (numbers{-6, -7, -8, -1}));
}

SCENARIO(makes_built_in_kernels, "built-in kernels", 120) {
    auto names = b.device.built_in_kernels();
    if (names.empty()) {
        names.emplace_back("any");
    }
    auto program = b.context.create_program_from_builtin_kernels({b.device}, names);
    EXPECT_EQ(program.get_devices(), std::vector{b.device});
}

SCENARIO(answers_queries_of_program_scope, "program scope", 220) {
    auto const program = b.build(two_kernels, "-DSIGN=1");
    EXPECT_FALSE(program.global_constructors_present());
    EXPECT_FALSE(program.global_destructors_present());
}

SCENARIO(calls_back_on_release, "program release callbacks", 220) {
    auto& calls = lasting<std::atomic<int>>();
    b.context.create_program_from_source(two_kernels).set_release_callback(count_call, &calls);
    EXPECT_EQ(calls, 1);
}

} // namespace
} // namespace real
