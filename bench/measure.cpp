#include "measure.hpp"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <vector>

namespace bench {
namespace {

constexpr int batch_size = 64;

double median(std::vector<double> values) {
    auto const middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

struct sides {
    std::vector<double> first;
    std::vector<double> second;
    std::vector<double> ratios;
};

void run_pair(batch const& first, batch const& second, std::function<void()> const& settle, bool swapped, sides& into) {
    double times[2];
    for (int turn = 0; turn != 2; ++turn) {
        bool const is_second = (turn == 1) != swapped;
        times[is_second ? 1 : 0] = (is_second ? second : first)(batch_size);
        settle();
    }
    into.first.push_back(times[0]);
    into.second.push_back(times[1]);
    into.ratios.push_back(times[1] / times[0]);
}

void measure(benchmark::State& state, batch const& c_api, batch const& library, std::function<void()> const& settle) {
    sides compared;
    sides control;
    bool swapped = false;
    for (auto _ : state) {
        run_pair(c_api, library, settle, swapped, compared);
        run_pair(c_api, c_api, settle, swapped, control);
        state.SetIterationTime(compared.second.back() * 1e-9);
        swapped = !swapped;
    }
    state.counters["c_api_ns"] = median(compared.first);
    state.counters["library_ns"] = median(compared.second);
    state.counters["ratio"] = median(compared.ratios);
    state.counters["control"] = median(control.ratios);
}

} // namespace

double now_in_nanoseconds() {
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void compare_batches(std::string const& name, batch const& c_api, batch const& library,
                     std::function<void()> const& settle) {
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) { measure(state, c_api, library, settle); })
        ->UseManualTime()
        ->Iterations(200);
}

} // namespace bench
