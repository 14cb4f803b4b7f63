#define CL_TARGET_OPENCL_VERSION 120
#include <boost/compute/core.hpp>

#include <cstdio>
#include <exception>
#include <vector>

namespace compute = boost::compute;

constexpr std::size_t count = 1024;
constexpr char const* source = "kernel void add(global float const* a, global float const* b, global float* sum)"
                               "{ size_t i = get_global_id(0); sum[i] = a[i] + b[i]; }";

int main() try {
    compute::device const device = compute::system::devices().at(0);
    std::vector<float> a(count, 1.0F);
    std::vector<float> b(count, 2.0F);
    std::vector<float> sum(count);
    std::size_t const bytes = count * sizeof(float);
    compute::context const context(device);
    compute::command_queue queue(context, device);
    compute::program const program = compute::program::build_with_source(source, context);
    compute::buffer const of_a(context, bytes, compute::buffer::copy_host_ptr, a.data());
    compute::buffer const of_b(context, bytes, compute::buffer::copy_host_ptr, b.data());
    compute::buffer const of_sum(context, bytes);
    compute::kernel add(program, "add");
    add.set_args(of_a, of_b, of_sum);
    queue.enqueue_1d_range_kernel(add, 0, count, 64);
    queue.enqueue_read_buffer(of_sum, 0, bytes, sum.data());
    std::printf("%g\n", sum[0]);
} catch (std::exception const& failure) {
    std::puts(failure.what());
    return 1;
}
