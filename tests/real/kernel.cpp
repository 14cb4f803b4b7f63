#include "support.hpp"

#include <atomic>

namespace real {
namespace {

char const* const all_kinds_of_arguments =
    "__kernel __attribute__((reqd_work_group_size(8, 1, 1)))"
    "void f(__global int* restrict out, __constant int* in, __local int* scratch,"
    "       const int scale, __read_only image2d_t picture) {"
    "  scratch[get_local_id(0)] = in[get_global_id(0)] * scale;"
    "  barrier(CLK_LOCAL_MEM_FENCE);"
    "  out[get_global_id(0)] = scratch[7 - get_local_id(0)] + get_image_width(picture); }";

SCENARIO(answers_queries_of_kernels, "kernels", 100) {
    auto program = b.build(all_kinds_of_arguments);
    auto const kernel = program.create_kernel("f");
    expect_counted(kernel);
    EXPECT_EQ(kernel.function_name(), "f");
    EXPECT_EQ(kernel.num_args(), 5U);
    EXPECT_EQ(raw_of(kernel.get_context()), raw_of(b.context));
    EXPECT_EQ(kernel.get_program(), program);
    EXPECT_EQ(kernel.compile_work_group_size(b.device), (std::array<std::size_t, 3>{8, 1, 1}));
}

SCENARIO(sets_arguments, "kernel arguments", 100) {
    auto out = b.store(numbers(8)), constants = b.store(counting(8));
    auto picture = b.context.create_image_2d(Api::mem_flags::read_only,
                                             {Api::image_channel_order::rgba, Api::image_channel_type::unsigned_int8},
                                             5, 1, 0, nullptr);
    auto kernel = b.function(all_kinds_of_arguments, out, constants, typename Api::local_memory(32), 10, picture);
    b.launch(kernel, 8, 8);
    EXPECT_EQ(b.load(out), (numbers{85, 75, 65, 55, 45, 35, 25, 15}));
    auto copied = b.function("__kernel void f(__global int* out, __global int* in) { *out = in == 0 ? 1 : 2; }", out);
    copied.set_argument(1, nullptr);
    b.launch(copied, 1);
    EXPECT_EQ(b.load(out).front(), 1);
    EXPECT_THROW(kernel.set_argument(5, out), common::invalid_arg_index);
}

SCENARIO(tells_of_arguments, "kernel argument info", 120) {
    auto const kernel = b.build(all_kinds_of_arguments, "-cl-kernel-arg-info").create_kernel("f");
    EXPECT_EQ(static_cast<int>(kernel.argument_address_qualifier(2)), CL_KERNEL_ARG_ADDRESS_LOCAL);
    EXPECT_EQ(static_cast<int>(kernel.argument_access_qualifier(4)), CL_KERNEL_ARG_ACCESS_READ_ONLY);
    EXPECT_EQ(static_cast<int>(kernel.argument_type_qualifier(0)), CL_KERNEL_ARG_TYPE_RESTRICT);
    EXPECT_EQ(kernel.argument_type_name(1), "int*");
    EXPECT_EQ(kernel.argument_name(3), "scale");
    EXPECT_THROW(kernel.argument_name(5), common::logic_error);
}

SCENARIO(clones, "kernel clones", 100) {
    auto out = b.store(numbers(1));
    auto const result_of = [&](typename Api::kernel const& kernel) {
        b.launch(kernel, 1);
        return b.load(out).front();
    };
    // Intel's runtime forgets a program that only its kernels hold
    auto program = b.build("__kernel void f(__global int* out, int value) { *out = value; }");
    auto kernel = program.create_kernel("f");
    b.set_arguments(kernel, out, 1);
    auto fresh = kernel.clone();
    EXPECT_THROW(b.launch(fresh, 1), common::invalid_kernel_args);
    b.set_arguments(fresh, out, 2);
    EXPECT_EQ(result_of(fresh), 2);
    EXPECT_EQ(result_of(kernel), 1);
    if constexpr (Api::number >= 210) {
        auto copied = kernel.copy();
        EXPECT_EQ(result_of(copied), 1);
        b.set_arguments(copied, out, 3);
        EXPECT_EQ(result_of(kernel), 1);
        EXPECT_EQ(result_of(copied), 3);
    }
}

SCENARIO(counts_sub_groups, "sub-groups", 210) {
    auto sizes = b.store(numbers(2));
    auto const any = b.function("__kernel void f(__global int* sizes) { sizes[0] = 1; }", sizes);
    EXPECT_GT(any.get_max_num_sub_groups(b.device), 0U);
    auto kernel = b.function("#pragma OPENCL EXTENSION cl_khr_subgroups : enable\n"
                             "__kernel void f(__global int* sizes) { if (get_global_id(0) == 0) {"
                             "  sizes[0] = get_max_sub_group_size(); sizes[1] = get_num_sub_groups(); } }",
                             sizes);
    std::array<std::size_t, 1> const local{40};
    auto const largest = kernel.get_max_sub_group_size_for_nd_range(b.device, local);
    auto const count = kernel.get_sub_group_count_for_nd_range(b.device, local);
    b.launch(kernel, 40, 40);
    EXPECT_EQ(b.load(sizes), (numbers{static_cast<std::int32_t>(largest), static_cast<std::int32_t>(count)}));
    for (std::size_t const wanted : {1U, 3U}) {
        std::array const fitting{kernel.get_local_size_for_sub_group_count(b.device, wanted)};
        EXPECT_EQ(kernel.get_sub_group_count_for_nd_range(b.device, fitting), wanted);
        std::size_t bytes = 0;
        b.expect(CL_SUCCESS, wire::clGetKernelSubGroupInfo{.kernel = raw_of(kernel),
                                                           .device = raw_of(b.device),
                                                           .input_value_size = sizeof wanted,
                                                           .input_value = &wanted,
                                                           .param_value_size_ret = &bytes,
                                                           .param_name = CL_KERNEL_LOCAL_SIZE_FOR_SUB_GROUP_COUNT});
        EXPECT_EQ(bytes, sizeof fitting);
    }
    EXPECT_GE(kernel.get_max_num_sub_groups(b.device), count);
    EXPECT_EQ(kernel.compile_num_sub_groups(b.device), 0U);
}

// Adds to each element what identifies its work-item; an element that two items reach, or none, shows.
constexpr char const* mark_source = R"(
kernel void f(global int* grid, int width, int height) {
    int const at = (int)((get_global_id(2) * height + get_global_id(1)) * width + get_global_id(0));
    grid[at] += 1 + at + 1000 * (int)get_work_dim() + 10000 * (int)(get_local_size(0) + 10 * get_local_size(1));
})";

SCENARIO(launches_kernels, "kernel launches", 100) {
    constexpr std::int32_t width = 8, height = 6, depth = 4;
    region const range{Api::number < 110 ? box{} : box{3, 1, 2}, {4, 4, 2}};
    box const local{4, 2, 1};
    auto grid = b.store(numbers(width * height * depth));
    auto const kernel = b.function(mark_source, grid, width, height);
    if constexpr (Api::number < 110) {
        b.run(typename Api::nd_range_kernel(kernel, 3, range.size, local));
    } else {
        b.run(typename Api::nd_range_kernel(kernel, 3, range.origin, range.size, local));
    }
    numbers expected(width * height * depth);
    for_each_in(range, {width, height, depth}, [&](std::size_t, std::size_t at) {
        expected.at(at) = 1 + static_cast<std::int32_t>(at) + 3000 + 240000;
    });
    EXPECT_EQ(b.load(grid), expected);
}

SCENARIO(runs_tasks, "tasks", 100, 120) {
    auto total = b.store(counting(1, 40));
    auto const kernel = b.function("kernel void f(global int* total) { *total += get_global_size(0); }", total);
    if constexpr (Api::number < 110) {
        b.run(typename Api::task_kernel(kernel));
    } else {
        b.expect(CL_SUCCESS, wire::clEnqueueTask{raw_of(b.queue), raw_of(kernel)});
    }
    EXPECT_EQ(b.load(total), numbers{41});
}

struct native_arguments {
    std::int32_t const* source;
    std::int32_t* destination;
    std::size_t count;
};

void reverse(void* block) {
    auto const* const arguments = static_cast<native_arguments*>(block);
    std::reverse_copy(arguments->source, arguments->source + arguments->count, arguments->destination);
}

SCENARIO(runs_native_kernels, "native kernels", 100) {
    auto source = b.store(counting(3));
    auto destination = b.store(numbers(3));
    native_arguments arguments{nullptr, nullptr, 3};
    std::array<_nq_cl_mem*, 2> const objects{raw_of(source), raw_of(destination)};
    std::array<void const*, 2> places{&arguments.source, &arguments.destination};
    b.run(typename Api::native_kernel(reverse, &arguments, sizeof arguments, 2, objects.data(), places.data()));
    EXPECT_TRUE(b.device.can_execute_native_kernels());
    EXPECT_EQ(b.load(destination), (numbers{3, 2, 1}));
}

} // namespace
} // namespace real
