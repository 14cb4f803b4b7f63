// Conway's Life: each cell counts its eight neighbours.

#include "support.hpp"

namespace ez = vorn::mero::easy;

static char const* const source = R"(
// A byte for each cell: nine reads for one result.
kernel void by_cell(global uchar const* from, global uchar* to) {
    size_t w = get_global_size(0), h = get_global_size(1), x = get_global_id(0), y = get_global_id(1);
    size_t left = x != 0 ? x - 1 : w - 1, right = x != w - 1 ? x + 1 : 0;
    size_t above = (y != 0 ? y - 1 : h - 1) * w, below = (y != h - 1 ? y + 1 : 0) * w;
    uint count = from[above + left] + from[above + x] + from[above + right] + from[y * w + left] +
                 from[y * w + right] + from[below + left] + from[below + x] + from[below + right];
    to[y * w + x] = count == 3 || (count == 2 && from[y * w + x]);
}

// A bit for each cell: nine reads for 64 results. The counts are added bit by bit, for all 64 cells at once.
ulong to_left(global ulong const* row, size_t x, size_t w) { return row[x] << 1 | row[x != 0 ? x - 1 : w - 1] >> 63; }
ulong to_right(global ulong const* row, size_t x, size_t w) { return row[x] >> 1 | row[x != w - 1 ? x + 1 : 0] << 63; }
ulong two_of(ulong a, ulong b, ulong c) { return (a & b) | (c & (a ^ b)); }

kernel void by_word(global ulong const* from, global ulong* to) {
    size_t w = get_global_size(0), h = get_global_size(1), x = get_global_id(0), y = get_global_id(1);
    global ulong const* here = from + y * w;
    global ulong const *above = from + (y != 0 ? y - 1 : h - 1) * w, *below = from + (y != h - 1 ? y + 1 : 0) * w;
    ulong a = to_left(above, x, w), b = above[x], c = to_right(above, x, w), d = to_left(here, x, w);
    ulong e = to_right(here, x, w), f = to_left(below, x, w), g = below[x], i = to_right(below, x, w);
    ulong ones_above = a ^ b ^ c, ones_here = d ^ e, ones_below = f ^ g ^ i;
    ulong p = two_of(a, b, c), q = d & e, r = two_of(f, g, i), s = two_of(ones_above, ones_here, ones_below);
    ulong two_or_three = (p ^ q ^ r ^ s) & ~((p & q) | (r & s));
    to[y * w + x] = two_or_three & ((ones_above ^ ones_here ^ ones_below) | here[x]);
}
)";

static void stencil(cookbook::recipe const& here) {
    std::size_t const width = here.size(2048, 128);
    std::size_t const height = width / 2;
    std::size_t const steps = here.size(16, 4);
    std::vector<std::uint8_t> cells(width * height);
    std::vector<std::uint64_t> words(width * height / 64);
    for (std::size_t i = 0; i != cells.size(); ++i) {
        cells[i] = i * i % 7 == 1 || i % 11 == 3;
        words[i / 64] |= std::uint64_t(cells[i]) << i % 64;
    }

    ez::session gpu;
    auto program = gpu.build(source);
    auto by_cell = program["by_cell"];
    auto by_word = program["by_word"];
    auto cells_from = gpu.array(cells), cells_to = gpu.array(cells);
    auto words_from = gpu.array(words), words_to = gpu.array(words);
    auto const live = [&](auto& kernel, ez::range over, auto& from, auto& to, auto const& first) {
        from.write(first);
        std::chrono::nanoseconds took{};
        for (std::size_t i = 0; i != steps; ++i) {
            took += kernel(over, from, to).time();
            std::swap(from, to);
        }
        return took;
    };
    here.compare([&] { return live(by_cell, ez::range(width, height), cells_from, cells_to, cells); },
                 [&] { return live(by_word, ez::range(width / 64, height), words_from, words_to, words); });

    cells = cells_from.read();
    words = words_from.read();
    for (std::size_t i = 0; i != cells.size(); ++i) {
        here.check(cells[i] == (words[i / 64] >> i % 64 & 1), "the two ways differ");
    }
    std::printf("%td of %zu cells live after %zu steps\n", std::count(cells.begin(), cells.end(), 1), cells.size(),
                steps);
}

int main(int count, char** arguments) { return cookbook::run("stencil", stencil, count, arguments); }
