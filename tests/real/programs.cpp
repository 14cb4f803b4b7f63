#include "c_answers.hpp"

#include <nq/commands.hpp>
#include <nq/nq.hpp>

namespace real {
namespace {

char const* const two_kernels = "__kernel void doubles(__global int* v) { v[get_global_id(0)] *= 2; }"
                                "__kernel void negates(__global int* v) { v[get_global_id(0)] *= SIGN; }";

numbers const sent{1, 2, 3, -4};

/// What a kernel with one buffer as its argument makes of `sent`.
template <class Api>
numbers result_of(bench<Api>& b, typename Api::kernel kernel) {
    auto values = b.store(sent);
    b.set_arguments(kernel, values);
    b.launch(kernel, sent.size());
    return b.load(values);
}

numbers const negated{-1, -2, -3, 4};

SCENARIO(source, "programs from source", 100) {
    auto program = b.context.create_program_from_source(two_kernels);
    EXPECT_EQ(program.source_code(), two_kernels);
    program.build({}, "-DSIGN=-1", nullptr, nullptr);
    EXPECT_EQ(static_cast<int>(program.build_status(b.device)), 0) << program.build_log(b.device);
    EXPECT_EQ(program.build_options(b.device), "-DSIGN=-1");
    EXPECT_EQ(raw_of(program.get_context()), raw_of(b.context));
    ASSERT_EQ(program.get_devices().size(), 1U);
    EXPECT_EQ(program.get_devices().front(), b.device);
    EXPECT_EQ(program.create_all_kernels().size(), 2U);
    EXPECT_EQ(result_of(b, program.create_kernel("negates")), negated);
    EXPECT_THROW(program.create_kernel("absent"), common::invalid_kernel_name);
    if constexpr (Api::number >= 120) {
        auto names = program.kernel_names();
        std::ranges::sort(names);
        EXPECT_EQ(names, (std::vector<std::string>{"doubles", "negates"}));
        EXPECT_EQ(program.num_kernels(), 2U);
        EXPECT_EQ(program.binary_type(b.device), decltype(program.binary_type(b.device))::executable);
    }
}

SCENARIO(syntax_error, "programs with an error", 100) {
    auto program = b.context.create_program_from_source("__kernel void f() { this is no OpenCL C }");
    program.build({b.device}, "", nullptr, nullptr);
    EXPECT_EQ(static_cast<int>(program.build_status(b.device)), CL_BUILD_ERROR);
    EXPECT_NE(program.build_log(b.device).find("error"), std::string::npos) << program.build_log(b.device);
    EXPECT_THROW(program.create_kernel("f"), common::opencl_error);
}

SCENARIO(binaries, "programs from binaries", 100) {
    auto const binaries = b.build(two_kernels, "-DSIGN=-1").binaries();
    ASSERT_EQ(binaries.size(), 1U);
    EXPECT_EQ(binaries.front().device, b.device);
    ASSERT_FALSE(binaries.front().binary.empty());
    bench<Api> fresh(b.name, b.device);
    auto program = fresh.context.create_program_from_binary(binaries);
    fresh.build(program);
    EXPECT_EQ(result_of(fresh, program.create_kernel("negates")), negated);
    EXPECT_EQ(program.binaries().size(), 1U);
}

/// Compiles without linking, which the library leaves to programs that speak to libnq.
template <class Api>
typename Api::program compile(bench<Api>& b, char const* source) {
    auto program = b.context.create_program_from_source(source);
    nq::block::clCompileProgram block{};
    block.program = raw_of(program);
    block.options = "";
    auto const& handle = vorn::mero::internal::owner_access::call_handle(program);
    EXPECT_EQ(
        nq_call_capability(handle.get(), nq::command_id<Api::capability, nq::block::clCompileProgram>, &block, nullptr),
        0);
    EXPECT_EQ(block.status, 0) << program.build_log(b.device);
    return program;
}

SCENARIO(linked_alone, "programs compiled and linked", 120) {
    auto const compiled = compile(b, "__kernel void f(__global int* v) { v[get_global_id(0)] *= -1; }");
    EXPECT_EQ(static_cast<int>(compiled.binary_type(b.device)), CL_PROGRAM_BINARY_TYPE_COMPILED_OBJECT);
    auto program = b.context.link_programs({}, {compiled}, "", nullptr, nullptr);
    EXPECT_EQ(static_cast<int>(program.binary_type(b.device)), CL_PROGRAM_BINARY_TYPE_EXECUTABLE);
    EXPECT_EQ(program.kernel_names(), std::vector<std::string>{"f"});
    EXPECT_EQ(result_of(b, program.create_kernel("f")), negated);
}

SCENARIO(linked, "programs linked from two", 120) {
    auto const caller = compile(b, "int negate(int); __kernel void f(__global int* v)"
                                   "{ v[get_global_id(0)] = negate(v[get_global_id(0)]); }");
    auto const callee = compile(b, "int negate(int value) { return -value; }");
    auto program = b.context.link_programs({}, {caller, callee}, "", nullptr, nullptr);
    EXPECT_EQ(result_of(b, program.create_kernel("f")), negated);
    auto const library = b.context.link_programs({b.device}, {callee}, "-create-library", nullptr, nullptr);
    EXPECT_EQ(static_cast<int>(library.binary_type(b.device)), CL_PROGRAM_BINARY_TYPE_LIBRARY);
    auto over_library = b.context.link_programs({b.device}, {caller, library}, "", nullptr, nullptr);
    EXPECT_EQ(result_of(b, over_library.create_kernel("f")), negated);
}

SCENARIO(il, "intermediate language", 210) {
    auto program = b.context.create_program_from_il(intermediate_language());
    EXPECT_EQ(program.il(), intermediate_language());
    EXPECT_EQ(program.source_code(), "");
    b.build(program);
    EXPECT_EQ(result_of(b, program.create_kernel("f")), (numbers{101, 102, 103, 96}));
    EXPECT_TRUE(b.build(two_kernels, "-DSIGN=1").il().empty());
}

SCENARIO(specialized, "specialization constants", 220) {
    auto program = b.context.create_program_from_il(intermediate_language());
    auto other = b.context.create_program_from_il(intermediate_language());
    std::int32_t const summand = 5;
    program.set_specialization_constant_raw(7, sizeof summand, &summand);
    program.set_specialization_constant(8, true);
    b.build(program);
    b.build(other);
    EXPECT_EQ(result_of(b, program.create_kernel("f")), (numbers{-6, -7, -8, -1}));
    EXPECT_EQ(result_of(b, other.create_kernel("f")), (numbers{101, 102, 103, 96}));
    EXPECT_THROW(other.set_specialization_constant(9, true), common::invalid_spec_id);
}

SCENARIO(builtin_kernels, "built-in kernels", 120) {
    auto const names = b.device.built_in_kernels();
    if (names.empty()) {
        skip("the device lists no built-in kernels");
    }
    auto program = b.context.create_program_from_builtin_kernels({b.device}, names);
    for (auto const& name : names) {
        EXPECT_EQ(program.create_kernel(name).function_name(), name);
    }
}

SCENARIO(program_scope, "program scope queries", 200) {
    auto const program = b.build(two_kernels, "-DSIGN=1");
    auto const raw = reinterpret_cast<cl_program>(raw_of(program));
    auto const device = reinterpret_cast<cl_device_id>(raw_of(b.device));
    cl_program_build_info const size = CL_PROGRAM_BUILD_GLOBAL_VARIABLE_TOTAL_SIZE;
    expect_same("build_global_variable_total_size", ask(REAL_C_API(clGetProgramBuildInfo), raw, device, size),
                [&] { return program.build_global_variable_total_size(b.device); });
    if constexpr (Api::number >= 220) {
        auto const same = [raw](char const* member, cl_program_info name, auto call) {
            expect_same<cl_bool>(member, ask(REAL_C_API(clGetProgramInfo), raw, name), call,
                                 [](cl_bool value) { return value != 0; });
        };
        same("global_constructors_present", CL_PROGRAM_SCOPE_GLOBAL_CTORS_PRESENT,
             [&] { return program.global_constructors_present(); });
        same("global_destructors_present", CL_PROGRAM_SCOPE_GLOBAL_DTORS_PRESENT,
             [&] { return program.global_destructors_present(); });
    }
}

SCENARIO(release_callback, "program release callbacks", 220) {
    int calls = 0;
    {
        auto program = b.context.create_program_from_source(two_kernels);
        program.set_release_callback([](_nq_cl_program*, void* count) { ++*static_cast<int*>(count); }, &calls);
    }
    EXPECT_EQ(calls, 1);
}

} // namespace
} // namespace real
