// Performs a mixed load for long, and prints as JSON how memory, references and times develop.
//
//     soak library|c light|all SECONDS OPERATIONS MILLISECONDS
//
// By the library or by OpenCL's own functions; "light" leaves out commands and builds. Ends after so many seconds or
// operations, whichever comes first, and takes a sample after so many milliseconds.

#include "soak.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <malloc.h>
#include <random>
#include <unistd.h>

namespace {

using clock = std::chrono::steady_clock;

/// How many operations took how long; 16 steps between a power of two nanoseconds and the next.
class histogram {
public:
    void add(std::uint64_t nanoseconds) {
        auto const power = static_cast<std::size_t>(std::bit_width(nanoseconds | 16) - 1);
        ++counts_[power * 16 + (nanoseconds >> (power - 4)) % 16];
        ++total_;
        most_ = std::max(most_, nanoseconds);
    }

    std::uint64_t quantile(double share) const {
        auto left = static_cast<std::uint64_t>(share * static_cast<double>(total_));
        std::size_t i = 0;
        for (; i + 1 < counts_.size() && left >= counts_[i]; ++i) {
            left -= counts_[i];
        }
        return std::min(most_, (16 + i % 16) << (i / 16 - 4));
    }

    std::uint64_t count() const { return total_; }
    std::uint64_t most() const { return most_; }

private:
    std::array<std::uint64_t, 1024> counts_{};
    std::uint64_t total_ = 0;
    std::uint64_t most_ = 0;
};

std::size_t resident_bytes() {
    std::ifstream stream("/proc/self/statm");
    std::size_t pages = 0;
    stream >> pages >> pages;
    return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

void print_sample(char const* separator, double seconds, std::uint64_t operations) {
    auto const heap = mallinfo2();
    std::filesystem::directory_iterator const files("/proc/self/fd");
    std::printf("%s\n{\"seconds\": %.3f, \"operations\": %lu, \"resident\": %zu, \"heap\": %zu, \"references\": %ld, "
                "\"call_handles\": %ld, \"files\": %td}",
                separator, seconds, operations, resident_bytes(), heap.uordblks + heap.hblkhd,
                soak::living_references(), soak::open_call_handles(), std::distance(begin(files), end(files)));
}

/// Each operation as often as its weight says, in an order that looks like chance.
std::vector<std::size_t> order_of(std::vector<soak::operation> const& all, bool is_light) {
    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < all.size(); ++i) {
        order.insert(order.end(), is_light && all[i].uses_queue ? 0 : static_cast<std::size_t>(all[i].weight), i);
    }
    std::shuffle(order.begin(), order.end(), std::minstd_rand(1));
    return order;
}

void run(std::vector<soak::operation> const& all, std::vector<std::size_t> const& order, char** limits) {
    double const seconds = std::atof(limits[0]);
    std::uint64_t const operations = std::strtoull(limits[1], nullptr, 10);
    double const interval = std::atof(limits[2]) * 1e-3;
    std::vector<histogram> times(all.size());
    auto const start = clock::now();
    double passed = 0;
    double sampled = 0;
    std::printf("{\"samples\": [");
    std::uint64_t done = 0;
    while (done < operations && passed < seconds) {
        std::size_t const next = order[done % order.size()];
        auto const before = clock::now();
        all[next].run();
        auto const after = clock::now();
        times[next].add(static_cast<std::uint64_t>(std::chrono::nanoseconds(after - before).count()));
        ++done;
        passed = std::chrono::duration<double>(after - start).count();
        if (passed >= sampled + interval || done == operations) {
            print_sample(sampled > 0 ? "," : "", passed, done);
            sampled = passed;
        }
    }
    std::printf("],\n\"nanoseconds\": {");
    char const* separator = "";
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (times[i].count() > 0) {
            std::printf("%s\n\"%s\": {\"count\": %lu, \"p50\": %lu, \"p99\": %lu, \"max\": %lu}", separator,
                        all[i].name.c_str(), times[i].count(), times[i].quantile(0.5), times[i].quantile(0.99),
                        times[i].most());
            separator = ",";
        }
    }
    std::puts("}}");
}

} // namespace

int main(int count, char** words) {
    if (count != 6) {
        std::fprintf(stderr, "usage: soak library|c light|all SECONDS OPERATIONS MILLISECONDS\n");
        return 2;
    }
    try {
        auto const all = std::strcmp(words[1], "c") == 0 ? soak::c_load() : soak::library_load();
        run(all, order_of(all, std::strcmp(words[2], "light") == 0), words + 3);
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "soak: %s\n", failure.what());
        return 1;
    }
}
