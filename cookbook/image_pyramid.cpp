// A picture in ever smaller sizes, each half as wide and high as the one before.

#include "support.hpp"

namespace ez = vorn::mero::easy;

static char const* const source = R"(
// Each pixel is the mean of a square of `factor` x `factor`.
kernel void shrink(global float const* from, global float* to, uint factor) {
    size_t x = get_global_id(0), y = get_global_id(1), width = get_global_size(0) * factor;
    global float const* square = from + y * factor * width + x * factor;
    float sum = 0.0f;
    for (uint j = 0; j < factor; ++j)
        for (uint i = 0; i < factor; ++i) sum += square[j * width + i];
    to[y * get_global_size(0) + x] = sum / (factor * factor);
}

// The same for a square of 2 x 2.
kernel void halve(global float const* from, global float* to) {
    size_t x = get_global_id(0), y = get_global_id(1), width = get_global_size(0);
    global float const* square = from + y * 4 * width + x * 2;
    to[y * width + x] = 0.25f * (square[0] + square[1] + square[2 * width] + square[2 * width + 1]);
}
)";

static void image_pyramid(cookbook::recipe const& here) {
    std::size_t const n = here.size(2048, 64);
    std::size_t const levels = here.size(7, 4);
    std::vector<float> picture(n * n);
    for (std::size_t i = 0; i != n * n; ++i) {
        picture[i] = static_cast<float>((i % n * 13 ^ i / n * 7) % 256);
    }

    ez::session gpu;
    auto program = gpu.build(source);
    auto shrink = program["shrink"], halve = program["halve"];
    std::vector<ez::array<float>> slow{gpu.array(picture)}, fast = slow;
    for (std::size_t level = 1; level != levels; ++level) {
        slow.push_back(gpu.array<float>((n >> level) * (n >> level)));
        fast.push_back(gpu.array<float>((n >> level) * (n >> level)));
    }
    auto const each_level = [&](auto&& make) {
        std::chrono::nanoseconds took{};
        for (std::size_t level = 1; level != levels; ++level) {
            took += make(ez::range(n >> level, n >> level), level).time();
        }
        return took;
    };
    here.compare( // from the picture, or from the level before
        [&] {
            return each_level([&](ez::range const& pixels, std::size_t level) {
                return shrink(pixels, slow[0], slow[level], 1U << level);
            });
        },
        [&] {
            return each_level([&](ez::range const& pixels, std::size_t level) {
                return halve(pixels, fast[level - 1], fast[level]);
            });
        });
    for (std::size_t level = 1; level != levels; ++level) {
        auto const above = fast[level - 1].read(), now = fast[level].read();
        here.check(slow[level].read() == now, "the two ways differ"); // sums of bytes are exact
        for (std::size_t i = 0, width = n >> level; i != now.size(); ++i) {
            std::size_t const corner = i / width * width * 4 + i % width * 2;
            here.check(now[i] * 4 == above[corner] + above[corner + 1] + above[corner + 2 * width] +
                                         above[corner + 2 * width + 1],
                       "a pixel is not the mean of four");
        }
        std::printf("%4zu x %4zu pixels, the first is %.2f\n", n >> level, n >> level, now[0]);
    }
}

int main(int count, char** arguments) { return cookbook::run("image_pyramid", image_pyramid, count, arguments); }
