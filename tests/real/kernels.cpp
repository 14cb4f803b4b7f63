#include "c_answers.hpp"

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

/// The reply of an info query of the C API about a kernel on the device.
template <class Query, class Api, class... Arguments>
answer ask_kernel(Query query, bench<Api>& b, typename Api::kernel const& kernel, cl_uint name, Arguments... input) {
    return ask(query, reinterpret_cast<cl_kernel>(raw_of(kernel)), reinterpret_cast<cl_device_id>(raw_of(b.device)),
               name, input...);
}

SCENARIO(kernel_queries, "kernel queries", 100) {
    auto const program = b.build(all_kinds_of_arguments);
    auto kernel = typename Api::program(program).create_kernel("f");
    EXPECT_EQ(kernel.function_name(), "f");
    EXPECT_EQ(kernel.num_args(), 5U);
    EXPECT_EQ(raw_of(kernel.get_context()), raw_of(b.context));
    EXPECT_EQ(kernel.get_program(), program);
    EXPECT_EQ(kernel.compile_work_group_size(b.device), (std::array<std::size_t, 3>{8, 1, 1}));
    auto const same = [&](char const* member, cl_kernel_work_group_info name, auto call) {
        expect_same(member, ask_kernel(REAL_C_API(clGetKernelWorkGroupInfo), b, kernel, name), call);
    };
    same("max_work_group_size", CL_KERNEL_WORK_GROUP_SIZE, [&] { return kernel.max_work_group_size(b.device); });
    same("local_mem_size", CL_KERNEL_LOCAL_MEM_SIZE, [&] { return kernel.local_mem_size(b.device); });
    if constexpr (Api::number >= 110) {
        same("preferred_work_group_size_multiple", CL_KERNEL_PREFERRED_WORK_GROUP_SIZE_MULTIPLE,
             [&] { return kernel.preferred_work_group_size_multiple(b.device); });
        same("private_mem_per_work_item", CL_KERNEL_PRIVATE_MEM_SIZE,
             [&] { return kernel.private_mem_per_work_item(b.device); });
    }
    if constexpr (Api::number >= 120) {
        same("max_global_work_size", CL_KERNEL_GLOBAL_WORK_SIZE, [&] { return kernel.max_global_work_size(b.device); });
    }
}

SCENARIO(attributes, "kernel attributes", 120) {
    std::string all;
    for (auto const& part : b.build(all_kinds_of_arguments).create_kernel("f").attributes()) {
        all += part;
    }
    EXPECT_NE(all.find("reqd_work_group_size(8"), std::string::npos) << all;
}

SCENARIO(arguments, "kernel arguments", 100) {
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

SCENARIO(argument_info, "kernel argument info", 120) {
    auto const kernel = b.build(all_kinds_of_arguments, "-cl-kernel-arg-info").create_kernel("f");
    struct row {
        cl_kernel_arg_address_qualifier address;
        cl_kernel_arg_access_qualifier access;
        cl_kernel_arg_type_qualifier type;
        char const* type_name;
        char const* name;
    };
    unsigned int index = 0;
    for (row const& each :
         {row{CL_KERNEL_ARG_ADDRESS_GLOBAL, CL_KERNEL_ARG_ACCESS_NONE, CL_KERNEL_ARG_TYPE_RESTRICT, "int*", "out"},
          {CL_KERNEL_ARG_ADDRESS_CONSTANT, CL_KERNEL_ARG_ACCESS_NONE, CL_KERNEL_ARG_TYPE_CONST, "int*", "in"},
          {CL_KERNEL_ARG_ADDRESS_LOCAL, CL_KERNEL_ARG_ACCESS_NONE, 0, "int*", "scratch"},
          {CL_KERNEL_ARG_ADDRESS_PRIVATE, CL_KERNEL_ARG_ACCESS_NONE, 0, "int", "scale"},
          {CL_KERNEL_ARG_ADDRESS_GLOBAL, CL_KERNEL_ARG_ACCESS_READ_ONLY, 0, "image2d_t", "picture"}}) {
        EXPECT_EQ(static_cast<cl_uint>(kernel.argument_address_qualifier(index)), each.address) << each.name;
        EXPECT_EQ(static_cast<cl_uint>(kernel.argument_access_qualifier(index)), each.access) << each.name;
        EXPECT_EQ(static_cast<cl_ulong>(kernel.argument_type_qualifier(index)), each.type) << each.name;
        EXPECT_EQ(kernel.argument_type_name(index), each.type_name);
        EXPECT_EQ(kernel.argument_name(index), each.name);
        ++index;
    }
    EXPECT_THROW(kernel.argument_name(index), common::logic_error);
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
    EXPECT_EQ(fresh.function_name(), "f");
    EXPECT_THROW(b.launch(fresh, 1), common::invalid_kernel_args);
    b.set_arguments(fresh, out, 2);
    EXPECT_EQ(result_of(fresh), 2);
    EXPECT_EQ(result_of(kernel), 1);
    if constexpr (Api::number >= 210) {
        auto copied = kernel.copy();
        auto constructed(kernel);
        EXPECT_EQ(result_of(copied), 1);
        b.set_arguments(copied, out, 3);
        b.set_arguments(constructed, out, 4);
        EXPECT_EQ(result_of(kernel), 1);
        EXPECT_EQ(result_of(copied), 3);
        EXPECT_EQ(result_of(constructed), 4);
        constructed = kernel;
        b.set_arguments(constructed, out, 5);
        EXPECT_EQ(result_of(kernel), 5);
    }
}

template <std::size_t N, class Api>
void expect_sub_groups(bench<Api>& b, typename Api::kernel const& kernel, std::array<std::size_t, N> const& local) {
    auto const same = [&](char const* member, cl_kernel_sub_group_info name, auto call) {
        auto const query = REAL_C_API(clGetKernelSubGroupInfo);
        expect_same(member, ask_kernel(query, b, kernel, name, sizeof local, local.data()), call);
    };
    same("get_max_sub_group_size_for_nd_range", CL_KERNEL_MAX_SUB_GROUP_SIZE_FOR_NDRANGE,
         [&] { return kernel.get_max_sub_group_size_for_nd_range(b.device, local); });
    same("get_sub_group_count_for_nd_range", CL_KERNEL_SUB_GROUP_COUNT_FOR_NDRANGE,
         [&] { return kernel.get_sub_group_count_for_nd_range(b.device, local); });
}

SCENARIO(sub_groups, "sub-groups", 210) {
    if (b.device.max_num_sub_groups() == 0) {
        auto const kernel = b.build("__kernel void f() {}").create_kernel("f");
        EXPECT_THROW(kernel.get_max_num_sub_groups(b.device), common::invalid_operation);
        skip("the device has no sub-groups");
    }
    auto sizes = b.store(numbers(2));
    auto kernel = b.function("#pragma OPENCL EXTENSION cl_khr_subgroups : enable\n"
                             "__kernel void f(__global int* sizes) { if (get_global_id(0) == 0) {"
                             "  sizes[0] = get_max_sub_group_size(); sizes[1] = get_num_sub_groups(); } }",
                             sizes);
    std::array<std::size_t, 1> const local{40};
    auto const largest = kernel.get_max_sub_group_size_for_nd_range(b.device, local);
    auto const count = kernel.get_sub_group_count_for_nd_range(b.device, local);
    b.launch(kernel, 40, 40);
    EXPECT_EQ(b.load(sizes), (numbers{static_cast<std::int32_t>(largest), static_cast<std::int32_t>(count)}));
    expect_sub_groups(b, kernel, local);
    expect_sub_groups(b, kernel, std::array<std::size_t, 2>{16, 4});
    expect_sub_groups(b, kernel, std::array<std::size_t, 3>{8, 4, 2});
    for (std::size_t const wanted : {1U, 3U}) {
        std::array const fitting{kernel.get_local_size_for_sub_group_count(b.device, wanted)};
        EXPECT_EQ(kernel.get_sub_group_count_for_nd_range(b.device, fitting), wanted);
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

constexpr std::int32_t width = 8, height = 6, depth = 4;

numbers marked(unsigned int dimensions, region const& range, box const& local) {
    numbers grid(width * height * depth);
    auto const item = static_cast<std::int32_t>(1000 * dimensions + 10000 * (local[0] + 10 * local[1]) + 1);
    for_each_in(range, {width, height, depth},
                [&](std::size_t, std::size_t at) { grid.at(at) = item + static_cast<std::int32_t>(at); });
    return grid;
}

/// What a range makes of the unused dimensions.
box used(box values, unsigned int dimensions, std::size_t rest) {
    std::fill(values.begin() + dimensions, values.end(), rest);
    return values;
}

SCENARIO(launches_kernels_in_each_dimension, "kernel launches", 100) {
    box const size{4, 4, 2}, local{2, 2, 1};
    auto program = b.build(mark_source);
    for (unsigned int dimensions = 1; dimensions <= 3; ++dimensions) {
        for (box const& offset : {box{0, 0, 0}, box{3, 1, 2}}) {
            auto grid = b.store(numbers(width * height * depth));
            auto kernel = program.create_kernel("f");
            b.set_arguments(kernel, grid, width, height);
            if constexpr (Api::number < 110) {
                if (offset != box{}) {
                    continue;
                }
                b.run(typename Api::nd_range_kernel(kernel, dimensions, size, local));
            } else {
                b.run(typename Api::nd_range_kernel(kernel, dimensions, offset, size, local));
            }
            EXPECT_EQ(b.load(grid), marked(dimensions, {used(offset, dimensions, 0), used(size, dimensions, 1)},
                                           used(local, dimensions, 1)))
                << dimensions;
        }
    }
}

SCENARIO(runs_tasks, "tasks", 100, 100) {
    auto values = b.store(counting(10));
    auto total = b.store(numbers(1));
    auto const kernel = b.function(R"(
kernel void f(global int const* values, int count, global int* total) {
    for (int i = 0; i < count; ++i) { *total += values[i] * (int)get_global_size(0); }
})",
                                   values, std::int32_t{10}, total);
    b.run(typename Api::task_kernel(kernel));
    EXPECT_EQ(b.load(total), numbers{55});
}

struct native_arguments {
    std::int32_t const* source;
    std::int32_t* destination;
    std::size_t count;
    std::atomic<std::thread::id>* thread;
};

void reverse(void* block) {
    auto const* const arguments = static_cast<native_arguments*>(block);
    std::reverse_copy(arguments->source, arguments->source + arguments->count, arguments->destination);
    *arguments->thread = std::this_thread::get_id();
}

SCENARIO(runs_native_kernels, "native kernels", 100) {
    auto source = b.store(counting(3));
    auto destination = b.store(numbers(3));
    std::atomic<std::thread::id> thread;
    native_arguments arguments{nullptr, nullptr, 3, &thread};
    std::array<_nq_cl_mem*, 2> const objects{raw_of(source), raw_of(destination)};
    std::array<void const*, 2> places{&arguments.source, &arguments.destination};
    typename Api::native_kernel const command(reverse, &arguments, sizeof arguments, 2, objects.data(), places.data());
    b.run(command);
    EXPECT_TRUE(b.device.can_execute_native_kernels());
    EXPECT_EQ(b.load(destination), (numbers{3, 2, 1}));
    tell_thread("the native kernel", thread);
}

} // namespace
} // namespace real
