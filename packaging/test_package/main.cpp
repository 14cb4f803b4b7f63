// Squares numbers on the first device, or on the one that MERO_DEVICE names.

#include <vorn/mero/easy.hpp>

#include <cstdio>
#include <exception>
#include <vector>

namespace ez = vorn::mero::easy;

int main() try {
    ez::session gpu;
    auto program = gpu.build("kernel void square(global float* v) { size_t i = get_global_id(0); v[i] *= v[i]; }");
    auto numbers = gpu.array(std::vector<float>{1.0F, 2.0F, 3.0F});
    program["square"](ez::range(3), numbers);
    auto const squares = numbers.read();
    std::printf("%s: %g %g %g\n", gpu.device().name().c_str(), squares[0], squares[1], squares[2]);
    return squares == std::vector<float>{1.0F, 4.0F, 9.0F} ? 0 : 1;
} catch (std::exception const& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
}
