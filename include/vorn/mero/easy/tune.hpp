#pragma once

#include <vorn/mero/easy/kernel.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <exception>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace vorn::mero::easy {

/// What `tune` found of one range.
struct measurement {
    range over;                    ///< The candidate.
    std::chrono::nanoseconds time; ///< The median of its runs; 0 if it was refused.
    std::string refusal;           ///< Why OpenCL refused it, for people; empty if it ran.
};

/// The best of several ranges for a kernel, and all that was measured.
struct tuned {
    range best;                            ///< The range with the least median.
    std::chrono::nanoseconds time;         ///< That median.
    std::vector<measurement> measurements; ///< In the order of the candidates.

    /// A line for each candidate, for people: "1024 work-items in groups of 64: 12.5 us".
    [[nodiscard]] std::string text() const {
        std::string lines;
        for (measurement const& each : measurements) {
            std::string const tenths = std::to_string((each.time.count() + 50) / 100);
            std::string const us =
                tenths.size() < 2 ? "0." + tenths : tenths.substr(0, tenths.size() - 1) + "." + tenths.back();
            lines += detail::joined({each.over.text(), ": ", each.refusal.empty() ? us + " us" : each.refusal, "\n"});
        }
        return lines;
    }
};

/// The ranges worth measuring for a kernel over a global size: as OpenCL chooses, then work-groups whose sizes are
/// powers of two, divide the global size, and suit kernel and device; the one that the source requires, if it does.
/// Round the global size up first, so that there are divisors: `ez::range(ez::round_up(n, 256))`.
template <int Version>
[[nodiscard]] std::vector<range> candidates(basic_kernel<Version> const& on, range const& over) {
    auto const& device = on.device();
    auto const required = on.exact().compile_work_group_size(device);
    if (over.local_size() != nullptr) {
        return {over};
    }
    if (required[0] != 0) {
        return {over.local(required[0], required[1], required[2])};
    }
    std::size_t const most = on.exact().max_work_group_size(device);
    auto const widest = device.max_work_item_sizes();
    std::size_t multiple = 1;
    if constexpr (Version >= 110) {
        multiple = std::min(most, on.exact().preferred_work_group_size_multiple(device));
    }
    std::vector<range> all{over};
    auto const fits = [&](unsigned i, std::size_t size) {
        return i < over.dimensions() ? size <= widest[i] && over.size()[i] % size == 0 : size == 1;
    };
    auto const collect = [&](std::size_t least) {
        for (std::size_t x = 1; x <= most; x *= 2) {
            for (std::size_t y = 1; y <= x && x * y <= most; y *= 2) {
                for (std::size_t z = 1; z <= y && x * y * z <= most; z *= 2) {
                    if (x * y * z >= least && fits(0, x) && fits(1, y) && fits(2, z)) {
                        all.push_back(over.local(x, y, z));
                    }
                }
            }
        }
    };
    collect(multiple);
    if (all.size() < 4) { // few divisors are that large
        all.resize(1, over);
        collect(1);
    }
    return all;
}

namespace detail {

template <class... Arguments>
inline constexpr bool depends_on_range = (std::is_invocable<Arguments const&, range const&>::value || ...);

/// An argument for one range: what it returns, if it is a function of the range.
template <class Argument>
decltype(auto) argument_for(range const& over, Argument const& argument) {
    if constexpr (std::is_invocable<Argument const&, range const&>::value) {
        return argument(over);
    } else {
        return (argument);
    }
}

/// A candidate by both clocks: a queue may be without profiling, a device's clock may be wrong.
struct timing {
    measurement by_device;
    std::chrono::nanoseconds by_host;
};

template <int Version>
std::chrono::nanoseconds device_time(basic_event<Version>& launched) {
    try {
        return launched.time();
    } catch (common::profiling_info_not_available const&) {
        return {};
    }
}

/// The medians of five runs after one to warm up.
template <int Version, class... Arguments>
timing median_times(basic_kernel<Version>& on, range const& over, Arguments const&... arguments) {
    constexpr std::size_t runs = 5;
    using clock = std::chrono::steady_clock;
    std::array<std::chrono::nanoseconds, runs + 1> device{};
    std::array<std::chrono::nanoseconds, runs + 1> host{};
    for (std::size_t i = 0; i != device.size(); ++i) {
        auto const begin = clock::now();
        auto launched = on(over, argument_for(over, arguments)...);
        launched.wait();
        host[i] = clock::now() - begin;
        device[i] = device_time(launched);
    }
    std::sort(device.begin() + 1, device.end());
    std::sort(host.begin() + 1, host.end());
    return {{over, device[1 + runs / 2], {}}, host[1 + runs / 2]};
}

/// Measures one candidate. A refusal of an argument is the program's mistake, unless the argument depends on the range.
template <int Version, class... Arguments>
timing measure(basic_kernel<Version>& on, range const& over, Arguments const&... arguments) {
    auto const refusal = [&over](std::exception const& refused) { return timing{{over, {}, refused.what()}, {}}; };
    try {
        return median_times(on, over, arguments...);
    } catch (argument_error const& refused) {
        if (!depends_on_range<Arguments...>) {
            throw;
        }
        return refusal(refused);
    } catch (launch_error const& refused) {
        return refusal(refused);
    } catch (common::error const& failed) { // enqueued, and then failed on the device
        return refusal(failed);
    }
}

/// Picks the best. The host's clock counts if the device's cannot be right for one of them, as rusticl's for any
/// kernel.
inline tuned best_of(std::vector<timing> const& all, std::string const& name) {
    constexpr std::chrono::nanoseconds believable(100); // no launch is faster
    auto const ran = [](timing const& each) { return each.by_device.refusal.empty(); };
    bool const by_host = std::any_of(all.begin(), all.end(),
                                     [&](timing const& each) { return ran(each) && each.by_device.time < believable; });
    std::vector<measurement> measurements;
    measurement const* best = nullptr;
    measurements.reserve(all.size());
    for (timing const& each : all) {
        measurements.push_back(each.by_device);
        if (ran(each)) {
            measurement& last = measurements.back();
            last.time = by_host ? each.by_host : last.time;
            best = best == nullptr || last.time < best->time ? &last : best;
        }
    }
    if (best == nullptr) {
        throw launch_error(joined({"kernel '", name, "': ",
                                   all.empty() ? "there is no range to measure"
                                               : "OpenCL refuses all " + std::to_string(all.size()) +
                                                     " ranges. The first: " + all.front().by_device.refusal,
                                   "; try ez::candidates, or leave the local size to OpenCL"}));
    }
    measurement const chosen = *best;
    return {chosen.over, chosen.time, std::move(measurements)};
}

} // namespace detail

/// Measures a kernel over each candidate and picks the fastest: one run to warm up, then the median of five.
///
///     auto const found = ez::tune(blur, ez::range(640, 480), picture, result);
///     blur(found.best, picture, result);
///     auto const sum_group = [](ez::range const& over) { return ez::local<float>((*over.local_size())[0]); };
///     auto const of_two = ez::tune(sum, {ez::range(n).local(64), ez::range(n).local(128)}, numbers, sum_group);
///
/// An argument may be a function of the range, for local memory that depends on the work-group. The kernel runs six
/// times for each candidate on the arguments as they are: it must stand that its output is its input again. Candidates
/// that OpenCL refuses are skipped; throws `launch_error` when it refuses all. Blocks.
template <int Version, class... Arguments>
[[nodiscard]] tuned tune(basic_kernel<Version>& on, std::vector<range> const& choices, Arguments const&... arguments) {
    std::vector<detail::timing> all;
    all.reserve(choices.size());
    for (range const& each : choices) {
        all.push_back(detail::measure(on, each, arguments...));
    }
    return detail::best_of(all, on.name());
}

/// The same with the `candidates` of a global size; with those that have work-groups, if an argument is a function.
template <int Version, class... Arguments>
[[nodiscard]] tuned tune(basic_kernel<Version>& on, range const& over, Arguments const&... arguments) {
    auto choices = candidates(on, over);
    if (detail::depends_on_range<Arguments...>) {
        choices.erase(std::remove_if(choices.begin(), choices.end(),
                                     [](range const& each) { return each.local_size() == nullptr; }),
                      choices.end());
    }
    return tune(on, choices, arguments...);
}

/// The same with the candidates that a function returns for the largest work-group that the kernel can have here:
///
///     auto const largest = [n](std::size_t most) { return std::vector<ez::range>{ez::range(n).local(most)}; };
///     auto const found = ez::tune(sum, largest, numbers);
template <int Version, class Generate, class... Arguments,
          class = std::enable_if_t<std::is_invocable_r<std::vector<range>, Generate const&, std::size_t>::value>>
[[nodiscard]] tuned tune(basic_kernel<Version>& on, Generate const& generate, Arguments const&... arguments) {
    std::vector<range> const made = generate(on.exact().max_work_group_size(on.device()));
    return tune(on, made, arguments...);
}

} // namespace vorn::mero::easy
