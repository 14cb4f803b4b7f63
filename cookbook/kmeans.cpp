// Points in clusters: each point goes to the nearest centre, each centre to the mean of its points.

#include "support.hpp"

#include <array>
#include <cmath>

namespace ez = vorn::mero::easy;

static char const* const source = R"(
// The device names the nearest centre of each point; the host computes the means.
kernel void label(global float2 const* points, constant float2* centres, global uint* labels) {
    float2 own = points[get_global_id(0)];
    float least = INFINITY;
    uint best = 0;
    for (uint i = 0; i < CLUSTERS; ++i) {
        float2 to = centres[i] - own;
        if (dot(to, to) < least) {
            least = dot(to, to);
            best = i;
        }
    }
    labels[get_global_id(0)] = best;
}

// Sixteen points at a time, and the sums of the points of each centre at once: the host gets sums instead of labels.
kernel void add_up(global float16 const* xs, global float16 const* ys, constant float2* centres, global float16* sums,
                   uint length) {
    float16 x[CLUSTERS], y[CLUSTERS], number[CLUSTERS];
    for (uint i = 0; i < CLUSTERS; ++i) x[i] = y[i] = number[i] = 0.0f;
    for (uint n = get_global_id(0) * length; n < (get_global_id(0) + 1) * length; ++n) {
        float16 least = INFINITY;
        int16 best = 0;
        for (uint i = 0; i < CLUSTERS; ++i) {
            float16 to_x = centres[i].x - xs[n], to_y = centres[i].y - ys[n], distance = to_x * to_x + to_y * to_y;
            best = distance < least ? (int16)i : best;
            least = fmin(distance, least);
        }
        for (uint i = 0; i < CLUSTERS; ++i) {
            x[i] += best == (int16)i ? xs[n] : 0.0f;
            y[i] += best == (int16)i ? ys[n] : 0.0f;
            number[i] += best == (int16)i ? (float16)1.0f : 0.0f;
        }
    }
    for (uint i = 0; i < CLUSTERS; ++i) {
        global float16* own = sums + (get_global_id(0) * CLUSTERS + i) * 3;
        own[0] = x[i];
        own[1] = y[i];
        own[2] = number[i];
    }
}
)";

using point = std::array<float, 2>;
using total = std::array<double, 3>; // of x and y, and the number of points

static void kmeans(cookbook::recipe const& here) {
    std::size_t const n = here.size(1 << 19, 1 << 10);
    std::size_t const clusters = 8;
    std::size_t const items = 64;
    std::vector<point> points(n);
    std::vector<float> x(n);
    std::vector<float> y(n);
    for (std::size_t i = 0; i != n; ++i) { // clouds around the corners of an octagon
        double const angle = static_cast<double>(i % clusters) * 0.785;
        x[i] = static_cast<float>(3 * std::cos(angle) + static_cast<double>(i * 7919 % 1009) / 1009 - 0.5);
        y[i] = static_cast<float>(3 * std::sin(angle) + static_cast<double>(i * 5003 % 997) / 997 - 0.5);
        points[i] = {x[i], y[i]};
    }
    std::vector<point> const begin(points.begin(), points.begin() + clusters);

    ez::session gpu;
    auto program = gpu.build(source, ez::build_options().define("CLUSTERS", clusters));
    auto label = program["label"], add_up = program["add_up"];
    auto input = gpu.array(points), centres = gpu.array(begin);
    auto xs = gpu.array(x), ys = gpu.array(y), sums = gpu.array<float>(items * clusters * 3 * 16);
    auto labels = gpu.array<std::uint32_t>(n);
    std::vector<total> slow;
    std::vector<total> fast;
    here.compare( // one turn; the next begins at the means
        [&] {
            slow.assign(clusters, {});
            label(ez::range(n), input, centres, labels);
            auto const found = labels.read();
            for (std::size_t i = 0; i != n; ++i) {
                auto& to = slow[found[i]];
                to = {to[0] + points[i][0], to[1] + points[i][1], to[2] + 1};
            }
        },
        [&] {
            fast.assign(clusters, {});
            add_up(ez::range(items).local(1), xs, ys, centres, sums, std::uint32_t(n / 16 / items));
            auto const found = sums.read();
            for (std::size_t i = 0; i != found.size(); ++i) {
                fast[i / 48 % clusters][i / 16 % 3] += found[i];
            }
        });
    for (std::size_t i = 0; i != clusters; ++i) { // the first points were one of each cloud
        double const to_x = fast[i][0] / fast[i][2], to_y = fast[i][1] / fast[i][2];
        here.check(slow[i][2] == fast[i][2] && std::abs(slow[i][0] - fast[i][0]) < 1 + std::abs(slow[i][0]) * 1e-4,
                   "the two ways differ");
        here.check(std::abs(std::hypot(to_x, to_y) - 3) < 0.2, "a centre is far from its cloud");
        std::printf("centre %zu of %.0f points: (%.2f, %.2f)\n", i, fast[i][2], to_x, to_y);
    }
}

int main(int count, char** arguments) { return cookbook::run("kmeans", kmeans, count, arguments); }
