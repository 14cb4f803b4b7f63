// A sparse matrix times several vectors.

#include "support.hpp"

#include <array>

namespace ez = vorn::mero::easy;

static char const* const source = R"(
// Compressed rows, a work-item for each: row i has the elements first[i] to first[i + 1] - 1. Once for each vector.
kernel void one_vector(global uint const* first, global uint const* columns, global float const* values,
                       global float const* x, global float* y) {
    size_t row = get_global_id(0);
    float sum = 0.0f;
    for (uint i = first[row]; i < first[row + 1]; ++i) sum += values[i] * x[columns[i]];
    y[row] = sum;
}

// The same for eight vectors, element by element side by side: the matrix is read once, and each jump into x gets eight.
kernel void eight_vectors(global uint const* first, global uint const* columns, global float const* values,
                          global float8 const* x, global float8* y) {
    size_t row = get_global_id(0);
    float8 sum = 0.0f;
    for (uint i = first[row]; i < first[row + 1]; ++i) sum += values[i] * x[columns[i]];
    y[row] = sum;
}
)";

static void sparse_matrix(cookbook::recipe const& here) {
    std::size_t const n = here.size(1 << 17, 1 << 9);
    std::size_t const vectors = 8;
    std::vector<std::uint32_t> first{0};
    std::vector<std::uint32_t> columns;
    std::vector<float> values;
    for (std::size_t row = 0; row != n; ++row) { // 8 to 16 elements, some far from the diagonal
        for (std::size_t i = 0; i != 8 + row * 7 % 9; ++i) {
            columns.push_back(static_cast<std::uint32_t>((row + i * i * i * 31) % n));
            values.push_back(static_cast<float>((row + i) % 5));
        }
        first.push_back(static_cast<std::uint32_t>(columns.size()));
    }
    std::vector<std::array<float, vectors>> together(n), expected(n);
    std::vector<std::vector<float>> each(vectors, std::vector<float>(n));
    for (std::size_t i = 0; i != n * vectors; ++i) {
        each[i % vectors][i / vectors] = together[i / vectors][i % vectors] = static_cast<float>(i % 7);
    }
    for (std::size_t row = 0; row != n; ++row) { // all sums are exact
        for (std::size_t i = first[row]; i != first[row + 1]; ++i) {
            for (std::size_t v = 0; v != vectors; ++v) {
                expected[row][v] += values[i] * together[columns[i]][v];
            }
        }
    }

    ez::session gpu;
    auto program = gpu.build(source);
    auto one_vector = program["one_vector"], eight_vectors = program["eight_vectors"];
    auto begins = gpu.array(first), places = gpu.array(columns);
    auto elements = gpu.array(values);
    std::vector<ez::array<float>> xs, ys;
    for (auto const& values_of_one : each) {
        xs.push_back(gpu.array(values_of_one));
        ys.push_back(gpu.array<float>(n));
    }
    auto x = gpu.array(together), y = gpu.array<std::array<float, vectors>>(n);
    here.compare(
        [&] {
            std::chrono::nanoseconds took{};
            for (std::size_t v = 0; v != vectors; ++v) {
                took += one_vector(ez::range(n), begins, places, elements, xs[v], ys[v]).time();
            }
            return took;
        },
        [&] { return eight_vectors(ez::range(n), begins, places, elements, x, y).time(); });

    here.check(y.read() == expected, "the product with eight vectors is wrong");
    for (std::size_t v = 0; v != vectors; ++v) {
        auto const found = ys[v].read();
        for (std::size_t row = 0; row != n; ++row) {
            here.check(found[row] == expected[row][v], "the product with one vector is wrong");
        }
    }
    std::printf("%zu rows, %zu elements, %zu vectors\n", n, values.size(), vectors);
}

int main(int count, char** arguments) { return cookbook::run("sparse_matrix", sparse_matrix, count, arguments); }
