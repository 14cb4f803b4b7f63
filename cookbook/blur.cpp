// A blurred picture: each pixel becomes a weighted mean of those around it.

#include "support.hpp"

#include <cmath>

namespace ez = vorn::mero::easy;

static char const* const source = R"(
// Once: (2 * RADIUS + 1)^2 pixels for each pixel. The picture has a margin of RADIUS, so that nothing tests for edges.
kernel void at_once(global float const* from, global float* to, constant float* weights, uint pitch) {
    size_t x = get_global_id(0), y = get_global_id(1);
    float sum = 0.0f;
    for (int j = 0; j <= 2 * RADIUS; ++j)
        for (int i = 0; i <= 2 * RADIUS; ++i) sum += weights[i] * weights[j] * from[(y + j) * pitch + x + i];
    to[y * get_global_size(0) + x] = sum;
}

// Twice: along the lines and then along the columns, 2 * (2 * RADIUS + 1) pixels for each, 16 pixels at a time.
kernel void along_lines(global float const* from, global float* between, constant float* weights, uint pitch) {
    size_t x = get_global_id(0) * 16, y = get_global_id(1);
    float16 sum = 0.0f;
    for (int i = 0; i <= 2 * RADIUS; ++i) sum += weights[i] * vload16(0, from + y * pitch + x + i);
    vstore16(sum, 0, between + y * get_global_size(0) * 16 + x);
}
kernel void along_columns(global float16 const* between, global float16* to, constant float* weights) {
    size_t x = get_global_id(0), y = get_global_id(1), width = get_global_size(0);
    float16 sum = 0.0f;
    for (int j = 0; j <= 2 * RADIUS; ++j) sum += weights[j] * between[(y + j) * width + x];
    to[y * width + x] = sum;
}
)";

static void blur(cookbook::recipe const& here) {
    std::size_t const n = here.size(1024, 32);
    std::size_t const radius = here.size(4, 2);
    std::size_t const pitch = n + 2 * radius;
    std::vector<float> weights(2 * radius + 1);
    float total = 0;
    for (std::size_t i = 0; i != weights.size(); ++i) {
        float const distance = (static_cast<float>(i) - static_cast<float>(radius)) / static_cast<float>(radius);
        total += weights[i] = std::exp(-2 * distance * distance);
    }
    for (float& each : weights) {
        each /= total;
    }
    std::vector<float> picture(pitch * pitch);
    picture[pitch / 2 * pitch + pitch / 2] = 1000; // one bright point: it becomes a bell

    ez::session gpu;
    auto program = gpu.build(source, ez::build_options().define("RADIUS", radius));
    auto at_once = program["at_once"], along_lines = program["along_lines"], along_columns = program["along_columns"];
    auto from = gpu.array(picture), factors = gpu.array(weights), between = gpu.array<float>(n * pitch);
    auto slow = gpu.array<float>(n * n), fast = gpu.array<float>(n * n);
    auto const width = static_cast<std::uint32_t>(pitch);
    here.compare([&] { return at_once(ez::range(n, n), from, slow, factors, width).time(); },
                 [&] {
                     auto lines = along_lines(ez::range(n / 16, pitch), from, between, factors, width);
                     auto columns = along_columns(ez::range(n / 16, n), between, fast, factors);
                     return lines.time() + columns.time();
                 });
    auto const once = slow.read(), twice = fast.read();
    for (std::size_t i = 0; i != n * n; ++i) {
        std::size_t const x = i % n - n / 2 + radius; // wraps where the pixel is too far left or above
        std::size_t const y = i / n - n / 2 + radius;
        float const bell = x <= 2 * radius && y <= 2 * radius ? 1000 * weights[x] * weights[y] : 0;
        here.check(std::abs(once[i] - bell) < 1e-3F, "the blur at once is wrong");
        here.check(std::abs(twice[i] - bell) < 1e-3F, "the blur by lines and columns is wrong");
    }
    std::printf("%zu x %zu pixels, radius %zu, the top of the bell is %.2f\n", n, n, radius, twice[n / 2 * n + n / 2]);
}

int main(int count, char** arguments) { return cookbook::run("blur", blur, count, arguments); }
