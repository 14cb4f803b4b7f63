// Data of the host's for a kernel, and its results for the host, with copies and without.

#include "support.hpp"

#include <numeric>

namespace ez = vorn::mero::easy;

static char const* const source = "kernel void square(global uint* x) { size_t i = get_global_id(0); x[i] *= x[i]; }";

// What the host does before and after the kernel.
static void make(std::uint32_t* first, std::uint32_t* last) {
    for (auto* each = first; each != last; ++each) {
        *each = static_cast<std::uint32_t>(each - first) % 4;
    }
}

static std::uint32_t with_copies(ez::kernel& square, ez::array<std::uint32_t>& array,
                                 std::vector<std::uint32_t>& values) {
    make(values.data(), values.data() + values.size());
    array.write(values);
    square(ez::range(array.size()), array);
    array.read(values.data(), values.size());
    return std::accumulate(values.begin(), values.end(), 0U);
}

// The host works in the device's own memory, where the two share it.
static std::uint32_t in_place(ez::kernel& square, ez::array<std::uint32_t>& array) {
    {
        auto const mapped = array.map_write();
        make(mapped.begin(), mapped.end());
    } // here the device gets it back
    square(ez::range(array.size()), array);
    auto const mapped = array.map_read();
    return std::accumulate(mapped.begin(), mapped.end(), 0U);
}

static void zero_copy(cookbook::recipe const& here) {
    std::size_t const n = here.size(1 << 22, 1 << 12);
    ez::session gpu;
    auto square = gpu.build(source)["square"];
    auto array = gpu.array<std::uint32_t>(n);
    std::vector<std::uint32_t> values(n);
    std::uint32_t copied = 0;
    std::uint32_t mapped = 0;
    here.compare([&] { copied = with_copies(square, array, values); }, [&] { mapped = in_place(square, array); });
    here.check(copied == n / 4 * 14, "the sum of the copies is wrong");
    here.check(mapped == copied, "the sum in place is wrong");
    std::printf("sum %u of %zu squares\n", mapped, n);
}

int main(int count, char** arguments) { return cookbook::run("zero_copy", zero_copy, count, arguments); }
