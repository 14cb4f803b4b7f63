#include "support.hpp"

#include <atomic>
#include <functional>

namespace real {
namespace {

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
