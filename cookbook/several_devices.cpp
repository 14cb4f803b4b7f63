// A search by several devices for the number whose hash is least.

#include "support.hpp"

#include <vorn/mero/easy/split.hpp>

namespace ez = vorn::mero::easy;

static char const* const source = R"(
// The least hash of a stretch, with its number in the lower half.
kernel void search(global ulong* least, uint stretch, uint begin) {
    ulong best = ULONG_MAX;
    for (uint i = 0; i < stretch; ++i) {
        uint n = begin + get_global_id(0) * stretch + i, hash = n ^ 0x9E3779B9u;
        for (int round = 0; round < 8; ++round) {
            hash ^= hash >> 16;
            hash *= 0x7FEB352Du;
            hash ^= hash >> 15;
            hash *= 0x846CA68Bu;
        }
        best = min(best, (ulong)hash << 32 | n);
    }
    least[get_global_id(0)] = best;
}
)";

// A device with its own queue, kernel and results.
struct worker {
    worker(ez::session const& session, std::size_t items)
        : gpu(session), search(gpu.build(source)["search"]), least(gpu.array<std::uint64_t>(items)) {}

    ez::session gpu;
    ez::kernel search;
    ez::array<std::uint64_t> least;
};

static void several_devices(cookbook::recipe const& here) {
    std::size_t const stretch = here.size(1 << 12, 1 << 6);
    std::size_t const items = 1024;
    ez::session const whole;
    bool const divides = whole.device().max_compute_units() > 1 && whole.device().partition_max_sub_devices() > 1;
    ez::devices const parts(divides ? whole.device().partition_equally(1) : std::vector{whole.device()});
    std::vector<worker> workers; // for every device of the machine: of ez::devices() instead
    for (auto const& part : parts) {
        workers.emplace_back(part, items);
    }

    auto const find_least = [&](std::size_t used) {
        auto const shares = ez::shares_of(items, std::vector<double>(used, 1.0));
        for (std::size_t i = 0; i != used; ++i) {
            auto const begin = static_cast<std::uint32_t>(shares[i].offset * stretch);
            workers[i].search(ez::range(shares[i].count), workers[i].least, std::uint32_t(stretch), begin);
            workers[i].gpu.flush(); // now all work
        }
        std::uint64_t best = UINT64_MAX;
        for (std::size_t i = 0; i != used; ++i) {
            auto const found = workers[i].least.read();
            auto const end = found.begin() + static_cast<std::ptrdiff_t>(shares[i].count);
            best = std::min(best, *std::min_element(found.begin(), end));
        }
        return best;
    };
    std::uint64_t one = 0;
    std::uint64_t all = 0;
    here.compare([&] { one = find_least(1); }, [&] { all = find_least(workers.size()); });
    here.check(one == all, "the devices find another number");
    std::printf("%zu devices: of %zu numbers, %u has the least hash\n", workers.size(), items * stretch,
                std::uint32_t(all));
}

int main(int count, char** arguments) { return cookbook::run("several_devices", several_devices, count, arguments); }
