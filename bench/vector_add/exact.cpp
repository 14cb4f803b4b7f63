#include <vorn/mero/opencl_1_2.hpp>

#include <cstdio>
#include <exception>
#include <vector>

namespace cl = vorn::mero::opencl_1_2;

constexpr std::size_t count = 1024;
constexpr char const* source = "kernel void add(global float const* a, global float const* b, global float* sum)"
                               "{ size_t i = get_global_id(0); sum[i] = a[i] + b[i]; }";

int main() try {
    cl::device device = cl::get_all_devices().at(0);
    std::vector<float> a(count, 1.0F);
    std::vector<float> b(count, 2.0F);
    std::vector<float> sum(count);
    std::size_t const bytes = count * sizeof(float);
    cl::context context = cl::create_context({}, {device}, nullptr, nullptr);
    cl::command_queue queue = context.create_command_queue(device, false, false);
    cl::program program = context.create_program_from_source(source);
    program.build({device}, "", nullptr, nullptr);
    cl::buffer of_a = context.create_buffer(cl::mem_flags::copy_host_ptr, bytes, a.data());
    cl::buffer of_b = context.create_buffer(cl::mem_flags::copy_host_ptr, bytes, b.data());
    cl::buffer of_sum = context.create_buffer(cl::mem_flags::read_write, bytes, nullptr);
    cl::kernel add = program.create_kernel("add");
    add.set_argument(0, of_a);
    add.set_argument(1, of_b);
    add.set_argument(2, of_sum);
    queue.enqueue_command_without_event(cl::nd_range_kernel(add, 1, {0, 0, 0}, {count, 1, 1}, {64, 1, 1}));
    queue.enqueue_command_without_event(cl::read_buffer(of_sum, true, 0, bytes, sum.data()));
    std::printf("%g\n", sum[0]);
} catch (std::exception const& failure) {
    std::puts(failure.what());
    return 1;
}
