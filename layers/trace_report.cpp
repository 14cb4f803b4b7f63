#include "trace_report.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <limits>
#include <memory>
#include <optional>
#include <set>
#include <string_view>

namespace nq::layer::trace {
namespace {

constexpr std::uint64_t first_row = 1'000'000'000; // of the queues, above the numbers of threads
constexpr std::uint64_t lanes = 64;                // rows of a queue

// Of the call that is looked at; a reader of memory has no argument of its own.
thread_local std::span<std::byte const> segments;

bool read_segment(void* to, void const* from, std::size_t size) {
    auto const wanted = reinterpret_cast<std::uintptr_t>(from);
    for (std::size_t at = 0; at + sizeof(segment_head) <= segments.size();) {
        segment_head head{};
        std::memcpy(&head, segments.data() + at, sizeof head);
        at += sizeof head;
        if (head.size > segments.size() - at) {
            break;
        }
        if (wanted >= head.address && wanted - head.address <= head.size &&
            size <= head.size - (wanted - head.address)) {
            std::memcpy(to, segments.data() + at + (wanted - head.address), size);
            return true;
        }
        at += rounded(head.size);
    }
    return false;
}

std::uint64_t shifted(std::uint64_t time, std::int64_t by) { return time + static_cast<std::uint64_t>(by); }

// What makes times of one process times of another. Processes on one machine have one clock; those on two are compared
// by the clocks that people read.
std::int64_t shift_to(file_head const& reference, file_head const& of) {
    return reference.boot == of.boot ? 0 : of.wall_clock - reference.wall_clock;
}

} // namespace

report::report(file_head const& of, std::vector<chunk const*> const& from) : of_(of) {
    for (chunk const* const each : from) {
        read(*each);
    }
    std::ranges::sort(calls_, {}, [](one_call const& each) { return each.about.number; });
    std::ranges::sort(commands_, {}, [](one_command const& each) { return each.about.started; });
    std::ranges::sort(labels_, {}, &label_entry::time);
    name_kernels();
    match();
    align_clocks();
    std::ranges::sort(commands_, {}, &one_command::start);
    for (std::size_t i = 0; i < commands_.size(); ++i) {
        by_number_[commands_[i].about.number] = i;
    }
    choose_lanes();
}

void report::read(chunk const& from) {
    for_each_entry(from, [&](entry_kind kind, std::span<std::byte const> bytes) {
        if (kind == entry_kind::call && bytes.size() >= sizeof(call_entry)) {
            one_call made{{}, nullptr, from.thread, bytes.subspan(sizeof(call_entry)), {}};
            std::memcpy(&made.about, bytes.data(), sizeof made.about);
            made.is = describe(capability{made.about.version}, made.about.id);
            if (made.is != nullptr && made.is->size == made.about.block_size &&
                rounded(made.about.block_size) <= made.tail.size()) {
                calls_.push_back(made);
            }
        } else if (kind == entry_kind::command && bytes.size() == sizeof(command_entry)) {
            std::memcpy(&commands_.emplace_back().about, bytes.data(), bytes.size());
        } else if (kind == entry_kind::label && bytes.size() == sizeof(label_entry)) {
            std::memcpy(&labels_.emplace_back(), bytes.data(), bytes.size());
            labels_.back().text.back() = '\0';
        }
    });
}

bool report::failed(one_call const& made) {
    std::uint8_t const at = made.is->status;
    return made.about.result != result::success || (at != absent && read_field(made.tail.data(), at, 4) != 0);
}

memory_reader report::memory_of(one_call const& made) {
    segments = made.tail.subspan(rounded(made.about.block_size));
    return read_segment;
}

std::vector<std::pair<std::string, std::string>> report::arguments_of(one_call const& made) {
    std::vector<std::pair<std::string, std::string>> all;
    auto const add = [&all](field const& each, std::string value) { all.emplace_back(each.name, std::move(value)); };
    for_each_argument(capability{made.about.version}, made.about.id, made.tail.data(), add, memory_of(made));
    if (made.about.result != result::success) {
        all.emplace_back("result of libnq", std::to_string(made.about.result));
    }
    return all;
}

// A kernel or queue has the latest name before the call.
void report::name_kernels() {
    std::map<std::uint64_t, std::string> names;
    auto next = labels_.begin();
    for (one_call& each : calls_) {
        for (; next != labels_.end() && next->time <= each.about.begin; ++next) {
            names[next->address] = next->text.data();
        }
        description const& about = *each.is;
        bool const launches =
            &about == &description_of<block::clEnqueueNDRangeKernel> || &about == &description_of<block::clEnqueueTask>;
        if (launches) {
            each.kernel = names[read_field(each.tail.data(), offsetof(block::clEnqueueTask, kernel))];
            static_assert(offsetof(block::clEnqueueTask, kernel) == offsetof(block::clEnqueueNDRangeKernel, kernel));
        }
    }
    for (label_entry const& each : labels_) {
        queues_[each.address] = each.text.data();
    }
}

// A command belongs to a call that is still recorded.
void report::match() {
    for (one_command& each : commands_) {
        auto const found = std::ranges::lower_bound(calls_, each.about.number, {},
                                                    [](one_call const& made) { return made.about.number; });
        each.call = found != calls_.end() && found->about.number == each.about.number ? &*found : nullptr;
    }
    std::erase_if(commands_, [](one_command const& each) {
        return each.call == nullptr || each.about.ended < each.about.started;
    });
}

// A device noted the time of queueing within the call that enqueued. Of all commands of a queue together this gives the
// difference of the clocks to within the shortest call.
void report::align_clocks() {
    struct bounds {
        std::int64_t least = std::numeric_limits<std::int64_t>::min();
        std::int64_t most = std::numeric_limits<std::int64_t>::max();
    };
    std::map<std::uint64_t, bounds> of_queues;
    auto const signed_time = [](std::uint64_t time) { return static_cast<std::int64_t>(time); };
    for (one_command const& each : commands_) {
        bounds& known = of_queues[each.about.queue];
        std::int64_t const queued = signed_time(each.about.queued != 0 ? each.about.queued : each.about.started);
        known.least = std::max(known.least, queued - signed_time(each.call->about.end));
        known.most = std::min(known.most, queued - signed_time(each.call->about.begin));
    }
    for (one_command& each : commands_) {
        bounds const& known = of_queues[each.about.queue];
        each.offset = known.least + (known.most - known.least) / 2;
    }
}

void report::choose_lanes() {
    std::map<std::uint64_t, std::vector<std::uint64_t>> busy_until; // by queue: each lane
    for (one_command& each : commands_) {
        auto& of_queue = busy_until[each.about.queue];
        auto const free = std::ranges::find_if(of_queue, [&](std::uint64_t end) { return end <= each.start(); });
        each.lane = static_cast<unsigned>(std::min<std::ptrdiff_t>(free - of_queue.begin(), lanes - 1));
        if (free == of_queue.end() && of_queue.size() < lanes) {
            of_queue.push_back(0);
        }
        of_queue[each.lane] = each.end();
    }
}

std::string report::one_command::name() const {
    return call->kernel.empty() ? std::string(call->is->name).substr(std::string_view("clEnqueue").size())
                                : call->kernel;
}

std::vector<std::uint64_t> report::waited_for(one_call const& by) const {
    std::vector<std::uint64_t> events;
    for (field const& each : *by.is) {
        std::string_view const name = each.name;
        if (name == "event_wait_list" || name == "event_list") {
            memory_reader const memory = memory_of(by);
            auto const* from = static_cast<std::uint64_t const*>(read_pointer(by.tail.data(), each.offset));
            std::size_t const count = extent_of(*by.is, each, by.tail.data(), 0, memory).value_or(0) / 8;
            for (std::uint64_t event = 0; events.size() < count && memory(&event, from, sizeof event); ++from) {
                events.push_back(event);
            }
        }
    }
    return events;
}

void report::write_calls(writer& to, all_arrows const& arrows, std::int64_t shift, progress& shown) const {
    std::set<std::uint32_t> threads;
    for (one_call const& each : calls_) {
        if (threads.insert(each.thread).second) {
            to.add(trace::row{each.thread, "thread " + std::to_string(each.thread), false});
        }
        slice made{each.is->name,      each.thread, shifted(each.about.begin, shift), shifted(each.about.end, shift),
                   arguments_of(each), failed(each)};
        if (auto const own = by_number_.find(each.about.number); own != by_number_.end()) {
            made.arrows.push_back(arrows[own->second].front());
            made.arrows.back().begins = true;
        }
        to.add(made);
        shown.advance();
    }
}

void report::write_commands(writer& to, all_arrows const& arrows, std::int64_t shift, progress& shown) const {
    std::map<std::uint64_t, std::uint64_t> rows; // by queue: the first
    std::set<std::uint64_t> known;
    for (std::size_t i = 0; i < commands_.size(); ++i) {
        one_command const& each = commands_[i];
        std::uint64_t const row =
            rows.try_emplace(each.about.queue, first_row + rows.size() * lanes).first->second + each.lane;
        if (known.insert(row).second) {
            auto const device = queues_.find(each.about.queue);
            bool const named = device != queues_.end() && !device->second.empty();
            to.add(trace::row{
                row, "queue " + nq::detail::hexadecimal(each.about.queue) + (named ? " of " + device->second : ""),
                true});
        }
        slice made{each.name(), row, shifted(each.start(), shift), shifted(each.end(), shift),
                   arguments_of(*each.call)};
        made.arguments.emplace_back("waited in the queue, ns",
                                    std::to_string(each.about.submitted - each.about.queued));
        made.arguments.emplace_back("waited on the device, ns",
                                    std::to_string(each.about.started - each.about.submitted));
        made.arrows = arrows[i];
        to.add(made);
        shown.advance();
    }
}

// By the index of the command. The first is from the call that enqueued it.
report::all_arrows report::find_arrows(writer& to) const {
    all_arrows found(commands_.size());
    for (auto& each : found) {
        each.push_back({to.number_of_next_arrow(), false, false});
    }
    std::map<std::uint64_t, std::size_t> made_by; // by event, the latest
    for (one_call const& each : calls_) {
        auto const own = by_number_.find(each.about.number);
        if (own == by_number_.end()) {
            continue;
        }
        for (std::uint64_t const event : waited_for(each)) {
            if (auto const before = made_by.find(event); before != made_by.end()) {
                std::uint64_t const number = to.number_of_next_arrow();
                found[before->second].push_back({number, true, true});
                found[own->second].push_back({number, false, true});
            }
        }
        made_by[commands_[own->second].about.event] = own->second;
    }
    return found;
}

void report::write(writer& to, std::int64_t number, std::string const& name, std::int64_t shift,
                   progress& shown) const {
    to.begin_process(number, name);
    all_arrows const arrows = find_arrows(to);
    write_calls(to, arrows, shift, shown);
    write_commands(to, arrows, shift, shown);
    for (kept_objects const& each : not_released()) {
        to.add(each);
    }
}

std::string write_trace(std::string const& path, std::vector<report> const& processes) {
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) {
        return "cannot write " + path + ": " + std::strerror(errno);
    }
    bool const is_perfetto = path.ends_with(".pftrace") || path.ends_with(".perfetto-trace");
    auto const to = is_perfetto ? make_perfetto(file) : path.ends_with(".html") ? make_page(file) : make_json(file);
    bool const alone = processes.size() == 1;
    std::uint64_t slices = 0;
    for (report const& each : processes) {
        slices += each.slices();
    }
    progress shown(slices, "slices of " + path);
    for (std::size_t i = 0; i < processes.size(); ++i) {
        file_head const& of = processes[i].head();
        bool const ranked = of.rank >= 0;
        std::string const process = of.program.data() + (" (process " + std::to_string(of.process) + ")");
        processes[i].write(*to,
                           alone    ? of.process
                           : ranked ? of.rank + 1
                                    : static_cast<std::int64_t>(i) + 1,
                           ranked ? "rank " + std::to_string(of.rank) + ": " + process : process,
                           shift_to(processes.front().head(), of), shown);
    }
    return to->close() ? "" : "cannot write all of " + path;
}

} // namespace nq::layer::trace
