// What a trace says in numbers.

#include "objects.hpp"
#include "trace_report.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <tuple>

namespace nq::layer::trace {
namespace {

// A table's row: the name, then numbers, with as many digits as they need.
std::string table_row(std::string const& first, std::vector<std::string> const& others) {
    std::array<char, 64> cell{};
    std::snprintf(cell.data(), cell.size(), "%-36s", first.c_str());
    std::string line = cell.data();
    for (std::string const& each : others) {
        std::snprintf(cell.data(), cell.size(), " %12s", each.c_str());
        line += cell.data();
    }
    return line;
}

} // namespace

// A call takes its effect on objects within it: releases as it begins, as another thread may then get the same address.
std::vector<kept_objects> report::not_released() const {
    struct effect {
        object_change change;
        char const* entry;
    };
    struct object {
        char const* entry;
        std::int64_t references;
        std::uint64_t time;
    };
    std::multimap<std::uint64_t, effect> effects; // by time
    for (one_call const& each : calls_) {
        if (failed(each)) {
            continue;
        }
        memory_reader const memory = memory_of(each);
        for (object_change const& change : released_by(*each.is, each.tail.data(), memory)) {
            effects.emplace(each.about.begin, effect{change, each.is->name});
        }
        for (object_change const& change : made_by(*each.is, each.tail.data(), memory)) {
            effects.emplace(each.about.end, effect{change, each.is->name});
        }
    }
    std::map<void*, object> living;
    for (auto const& [time, each] : effects) {
        if (each.change.is_new) {
            living[each.change.address] = {each.entry, 1, time};
        } else if (auto const found = living.find(each.change.address); found != living.end()) {
            found->second.references += each.change.references;
            if (found->second.references <= 0) {
                living.erase(found);
            }
        }
    }
    std::map<std::pair<std::string, std::int64_t>, std::pair<std::uint64_t, std::uint64_t>> counts; // first time, count
    for (auto const& [address, each] : living) {
        auto& [first, count] = counts[{each.entry, each.references}];
        first = count++ == 0 ? each.time : std::min(first, each.time);
    }
    std::multimap<std::uint64_t, kept_objects> in_order;
    for (auto const& [what, when] : counts) {
        in_order.insert({when.first, {what.first, when.second, what.second}});
    }
    std::vector<kept_objects> kept;
    kept.reserve(in_order.size());
    for (auto const& [time, each] : in_order) {
        kept.push_back(each);
    }
    return kept;
}

std::vector<std::string> report::summary() const {
    std::map<std::string, std::vector<std::uint64_t>> of_calls; // nanoseconds
    std::map<std::string, std::vector<std::uint64_t>> of_commands;
    std::map<std::string, std::uint64_t> failures;
    for (one_call const& each : calls_) {
        of_calls[each.is->name].push_back(each.about.end - each.about.begin);
        failures[each.is->name] += failed(each) ? 1U : 0U;
    }
    for (one_command const& each : commands_) {
        of_commands[each.name()].push_back(each.about.ended - each.about.started);
    }
    std::vector<std::string> lines;
    auto const add = [&](std::map<std::string, std::vector<std::uint64_t>>& table, bool is_of_calls) {
        std::vector<std::pair<std::uint64_t, std::string>> rows; // the most time first
        for (auto& [name, times] : table) {
            std::ranges::sort(times);
            std::uint64_t sum = 0;
            for (std::uint64_t const each : times) {
                sum += each;
            }
            std::vector<std::string> cells{std::to_string(times.size()), microseconds(sum), microseconds(times.front()),
                                           microseconds(times[times.size() / 2]), microseconds(times.back())};
            if (is_of_calls) {
                cells.insert(cells.begin() + 1, std::to_string(failures[name]));
            }
            rows.emplace_back(sum, table_row(name, cells));
        }
        std::ranges::sort(rows, std::greater{});
        for (auto const& [sum, text] : rows) {
            lines.push_back(text);
        }
    };
    lines.push_back(table_row("entry point, host times in us", {"calls", "failed", "total", "min", "median", "max"}));
    add(of_calls, true);
    if (!of_commands.empty()) {
        lines.push_back(table_row("command, device times in us", {"count", "total", "min", "median", "max"}));
        add(of_commands, false);
    }
    return lines;
}

} // namespace nq::layer::trace
