#include <vorn/mero/easy.hpp>

#include <cstdio>
#include <exception>
#include <vector>

namespace ez = vorn::mero::easy;

constexpr std::size_t count = 1024;
constexpr char const* source = "kernel void add(global float const* a, global float const* b, global float* sum)"
                               "{ size_t i = get_global_id(0); sum[i] = a[i] + b[i]; }";

int main() try {
    ez::session const gpu;
    ez::program const program = gpu.build(source);
    auto a = gpu.array(std::vector<float>(count, 1.0F));
    auto b = gpu.array(std::vector<float>(count, 2.0F));
    auto sum = gpu.array<float>(count);
    program["add"](ez::range(count), a, b, sum);
    std::printf("%g\n", sum.read()[0]);
} catch (std::exception const& failure) {
    std::puts(failure.what());
    return 1;
}
