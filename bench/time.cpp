#include "time.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace bench {
namespace {

using clock = std::chrono::steady_clock;

constexpr double batch_nanoseconds = 100000;
constexpr int pairs = 200;
constexpr int attempts = 5;
constexpr double control_tolerance = 0.02;

double median(std::vector<double> values) {
    auto const middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

struct side {
    operation const* performs;
    std::function<void()> const* finish;

    double nanoseconds(int count) const {
        auto const start = clock::now();
        performs->run(count);
        auto const end = clock::now();
        (*finish)();
        return std::chrono::duration<double, std::nano>(end - start).count() / count;
    }
};

struct comparison {
    double first;
    double second;
    double ratio;
};

comparison compare(side const& first, side const& second, int count) {
    std::vector<double> firsts;
    std::vector<double> seconds;
    std::vector<double> ratios;
    for (int pair = 0; pair != pairs; ++pair) {
        double times[2];
        for (int turn = 0; turn != 2; ++turn) {
            bool const is_second = (turn == 1) != (pair % 2 == 1);
            times[is_second ? 1 : 0] = (is_second ? second : first).nanoseconds(count);
        }
        firsts.push_back(times[0]);
        seconds.push_back(times[1]);
        ratios.push_back(times[1] / times[0]);
    }
    return {median(firsts), median(seconds), median(ratios)};
}

int batch_size(side const& of) {
    of.nanoseconds(10);
    return std::clamp(static_cast<int>(batch_nanoseconds / of.nanoseconds(10)), 1, 10000);
}

void print(side const& c_api, side const& other, std::string const& contender_name) {
    int const count = batch_size(c_api);
    other.nanoseconds(10);
    comparison control{};
    comparison measured{};
    for (int attempt = 0; attempt != attempts; ++attempt) {
        measured = compare(c_api, other, count);
        control = compare(c_api, c_api, count);
        if (std::abs(control.ratio - 1) <= control_tolerance) {
            break;
        }
    }
    std::printf("%s|%s|%.1f|%.1f|%.3f|%.3f\n", other.performs->name.c_str(), contender_name.c_str(), measured.first,
                measured.second, measured.ratio, control.ratio);
    std::fflush(stdout);
}

} // namespace

void time(std::vector<contender> const& contenders, std::string_view only) {
    contender const& c_api = contenders.front();
    for (operation const& reference : c_api.operations) {
        for (contender const& by : contenders) {
            for (operation const& each : by.operations) {
                bool const is_wanted = only.empty() || each.name == only;
                if (&by != &c_api && each.name == reference.name && is_wanted) {
                    print({&reference, &c_api.finish}, {&each, &by.finish}, by.name);
                }
            }
        }
    }
}

} // namespace bench
