// Data in pieces: the host makes each, a kernel works on it, and the host uses the result.

#include "support.hpp"

#include <array>
#include <functional>
#include <numeric>
#include <optional>
#include <random>

namespace ez = vorn::mero::easy;

static char const* const source = R"(
kernel void work(global uint* x) {
    size_t i = get_global_id(0);
    uint value = x[i];
    for (int turn = 0; turn < 2; ++turn) value ^= value << 13, value ^= value >> 17, value ^= value << 5;
    x[i] = value;
}
)";

// A queue, and room for one piece on either side.
class lane {
public:
    lane(ez::session const& gpu, std::size_t piece)
        : values(piece), gpu_(gpu), work_(gpu.build(source)["work"]), room_(gpu.array<std::uint32_t>(piece)) {}

    // Enqueues the way of the values to the device and back. They must stay until `wait` returns.
    void start() {
        writing_.emplace(room_.write_async(values));
        work_(ez::range(values.size()), room_);
        reading_.emplace(room_.read_async(values.data(), values.size()));
        gpu_.flush();
    }

    void wait() const { reading_->wait(); }

    std::vector<std::uint32_t> values;

private:
    ez::session gpu_;
    ez::kernel work_;
    ez::array<std::uint32_t> room_;
    std::optional<ez::array<std::uint32_t>::transfer_type> writing_, reading_;
};

static void streaming(cookbook::recipe const& here) {
    std::size_t const pieces = here.size(16, 4);
    std::size_t const piece = here.size(1 << 19, 1 << 8);
    ez::session const gpu;
    std::array<lane, 2> lanes{lane(gpu, piece), lane(gpu.another_queue(), piece)};

    // With one lane, the host makes a piece, waits for the device, uses the result and goes on. With two, it does its
    // part for one lane while the device works for the other.
    auto const stream = [&](std::size_t used) {
        std::minstd_rand random;
        std::uint32_t sum = 0;
        for (std::size_t i = 0; i != pieces + used; ++i) {
            lane& next = lanes[i % used];
            if (i >= used) {
                next.wait();
                sum = std::accumulate(next.values.begin(), next.values.end(), sum);
            }
            if (i < pieces) {
                std::generate(next.values.begin(), next.values.end(), std::ref(random));
                next.start();
            }
        }
        return sum;
    };
    std::uint32_t slow = 0;
    std::uint32_t fast = 0;
    here.compare([&] { slow = stream(1); }, [&] { fast = stream(2); });

    std::minstd_rand random;
    std::uint32_t expected = 0;
    for (std::size_t i = 0; i != pieces * piece; ++i) {
        auto value = static_cast<std::uint32_t>(random());
        for (int turn = 0; turn != 2; ++turn) {
            value ^= value << 13, value ^= value >> 17, value ^= value << 5;
        }
        expected += value;
    }
    here.check(slow == expected, "the sum by one lane is wrong");
    here.check(fast == expected, "the sum by two lanes is wrong");
    std::printf("%zu pieces of %zu numbers, sum %u\n", pieces, piece, fast);
}

int main(int count, char** arguments) { return cookbook::run("streaming", streaming, count, arguments); }
