// Many small systems of equations.

#include "support.hpp"

#include <cmath>

namespace ez = vorn::mero::easy;

static char const* const source = R"(
// Solves a system of its own in each work-item. A system is 8 lines of 8 coefficients and the right side.
kernel void solve(global float const* systems, global float* solutions) {
    float a[8][9];
    for (int i = 0; i < 72; ++i) a[i / 9][i % 9] = systems[get_global_id(0) * 72 + i];
    for (int k = 0; k < 8; ++k)
        for (int i = 0; i < 8; ++i) {
            float factor = a[i][k] / a[k][k];
            for (int j = k; j < 9; ++j) a[i][j] -= i != k ? factor * a[k][j] : 0.0f;
        }
    for (int i = 0; i < 8; ++i) solutions[get_global_id(0) * 8 + i] = a[i][8] / a[i][i];
}
)";

static void batched(cookbook::recipe const& here) {
    std::size_t const n = here.size(4096, 16);
    std::vector<float> systems(n * 72);
    for (std::size_t i = 0; i != systems.size(); ++i) { // the solution of each is 1, 2, ... 8
        systems[i] = static_cast<float>(i * 7 % 5) + (i % 72 / 9 == i % 9 ? 40.0F : 0.0F);
        if (i % 9 == 8) {
            systems[i] = 0;
            for (std::size_t j = 0; j != 8; ++j) {
                systems[i] += systems[i - 8 + j] * static_cast<float>(j + 1);
            }
        }
    }

    ez::session gpu;
    auto solve = gpu.build(source)["solve"];
    auto input = gpu.array(systems);
    auto slow = gpu.array<float>(n * 8), fast = gpu.array<float>(n * 8);
    here.compare(
        [&] {
            for (std::size_t i = 0; i != n; ++i) {
                solve(ez::range(1).from(i), input, slow);
            }
            gpu.finish();
        },
        [&] {
            solve(ez::range(n), input, fast);
            gpu.finish();
        });
    for (auto const& solutions : {slow.read(), fast.read()}) {
        for (std::size_t i = 0; i != n * 8; ++i) {
            here.check(std::abs(solutions[i] - static_cast<float>(i % 8 + 1)) < 1e-3F, "a solution is wrong");
        }
    }
    std::printf("%zu systems of 8 equations\n", n);
}

int main(int count, char** arguments) { return cookbook::run("batched", batched, count, arguments); }
