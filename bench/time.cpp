#include "time.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <iterator>

namespace bench {
namespace {

using clock = std::chrono::steady_clock;

constexpr double batch_nanoseconds = 100000;
constexpr double shortest_batch_nanoseconds = 10000; // reading the clock takes about 40
constexpr int most_in_batch = 10000;
constexpr std::size_t rounds_between_looks = 200;
constexpr std::size_t most_rounds = 1600;
constexpr double wanted_precision = 0.005;
constexpr double control_tolerance = 0.02;

double quantile(std::vector<double> values, double share) {
    auto const at = values.begin() + static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

struct side {
    operation const* performs;
    contender const* by;

    double nanoseconds(int count) const {
        auto const start = clock::now();
        performs->run(count);
        auto const end = clock::now();
        by->finish();
        return std::chrono::duration<double, std::nano>(end - start).count() / count;
    }
};

struct series {
    side measured;
    std::vector<double> times{};
    std::vector<double> ratios{};

    double ratio() const { return quantile(ratios, 0.5); }

    // Half of the 95 % confidence interval of the median, from the order statistics that enclose it.
    double uncertainty() const {
        double const reach = 0.98 / std::sqrt(static_cast<double>(ratios.size()));
        return (quantile(ratios, 0.5 + reach) - quantile(ratios, 0.5 - reach)) / 2;
    }

    bool is_precise() const { return uncertainty() <= wanted_precision * ratio(); }
};

// Every contender runs as often before its neighbour as after it, and equally often at each place of a round.
void run_rounds(std::vector<series>& all, int count) {
    std::vector<double> times(all.size());
    for (std::size_t round = 0; round != rounds_between_looks; ++round) {
        for (std::size_t turn = 0; turn != all.size(); ++turn) {
            std::size_t const forward = (turn + round / 2) % all.size();
            std::size_t const which = round % 2 == 0 ? forward : all.size() - 1 - forward;
            times[which] = all[which].measured.nanoseconds(count);
        }
        for (std::size_t i = 0; i != all.size(); ++i) {
            all[i].times.push_back(times[i]);
            all[i].ratios.push_back(times[i] / times[0]);
        }
    }
}

int batch_size(std::vector<side> const& sides) {
    double slowest = 0;
    double reference = 0;
    for (side const& each : sides) {
        std::vector<double> tries;
        for (int i = 0; i != 9; ++i) {
            tries.push_back(each.nanoseconds(50));
        }
        double const now = quantile(std::move(tries), 0.5);
        slowest = std::max(slowest, now);
        reference = &each == &sides.front() ? now : reference;
    }
    double const count = std::max(batch_nanoseconds / slowest, shortest_batch_nanoseconds / reference);
    return static_cast<int>(std::clamp(count, 1.0, double{most_in_batch}));
}

void measure(std::vector<side> sides) {
    sides.push_back(sides.front()); // the control
    int const count = batch_size(sides);
    std::vector<series> all;
    std::transform(sides.begin(), sides.end(), std::back_inserter(all), [](side const& each) { return series{each}; });
    bool settled = false;
    while (!settled && all.front().times.size() != most_rounds) {
        run_rounds(all, count);
        settled = std::abs(all.back().ratio() - 1) <= control_tolerance &&
                  std::all_of(all.begin(), all.end(), [](series const& each) { return each.is_precise(); });
    }
    all.front().ratios = std::move(all.back().ratios);
    all.pop_back();
    for (series const& each : all) {
        std::printf("%s|%s|%.1f|%.3f|%.3f|%.3f|%.3f\n", each.measured.performs->name.c_str(),
                    each.measured.by->name.c_str(), quantile(each.times, 0.5), each.ratio(), each.uncertainty(),
                    quantile(each.ratios, 0.25), quantile(each.ratios, 0.75));
    }
    std::fflush(stdout);
}

} // namespace

void time(std::vector<contender> const& contenders, std::string_view only) {
    for (operation const& reference : contenders.front().operations) {
        if (!only.empty() && reference.name != only) {
            continue;
        }
        std::vector<side> sides;
        for (contender const& by : contenders) {
            for (operation const& each : by.operations) {
                if (each.name == reference.name) {
                    sides.push_back({&each, &by});
                }
            }
        }
        measure(std::move(sides));
    }
}

} // namespace bench
