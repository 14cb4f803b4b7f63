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

// The segments of the call that is being formatted; a reader has no argument of its own.
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

std::string escaped(std::string_view text) {
    std::string made = "\"";
    for (char const each : text) {
        std::array<char, 8> code{};
        if (each == '"' || each == '\\') {
            made += '\\';
            made += each;
        } else if (static_cast<unsigned char>(each) < 0x20 || static_cast<unsigned char>(each) > 0x7E) {
            std::snprintf(code.data(), code.size(), "\\u%04x", static_cast<unsigned char>(each));
            made += code.data();
        } else {
            made += each;
        }
    }
    return made + '"';
}

std::string microseconds(std::uint64_t nanoseconds) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%llu.%03llu", static_cast<unsigned long long>(nanoseconds / 1000),
                  static_cast<unsigned long long>(nanoseconds % 1000));
    return text.data();
}

std::string hexadecimal(std::uint64_t value) { return nq::detail::hexadecimal(value); }

// A table's row: the name, then numbers, with as many digits as they need.
std::string row(std::string const& first, std::vector<std::string> const& others) {
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

// Writes one event a line.
class report::json {
public:
    json(std::FILE* to, std::int64_t process) : to_(to), process_(process) {
        std::fputs(R"({"displayTimeUnit":"ns","traceEvents":[)", to_);
    }

    void event(char const* phase, std::string const& name, std::uint64_t row, std::string const& rest) {
        std::fprintf(to_, R"(%s{"ph":"%s","name":%s,"pid":%lld,"tid":%llu%s})", count_++ == 0 ? "\n" : ",\n", phase,
                     escaped(name).c_str(), static_cast<long long>(process_), static_cast<unsigned long long>(row),
                     rest.c_str());
    }

    void slice(std::string const& name, std::uint64_t row, std::uint64_t begin, std::uint64_t end,
               std::string const& arguments) {
        event("X", name, row,
              ",\"ts\":" + microseconds(begin) + ",\"dur\":" + microseconds(end - begin) + ",\"args\":{" + arguments +
                  "}");
    }

    void arrow(std::string const& name, std::uint64_t from, std::uint64_t at, std::uint64_t to, std::uint64_t until) {
        std::string const id = ",\"cat\":" + escaped(name) + ",\"id\":" + std::to_string(++arrows_);
        event("s", name, from, id + ",\"ts\":" + microseconds(at));
        event("f", name, to, id + R"(,"bp":"e","ts":)" + microseconds(until));
    }

    bool close() {
        std::fputs("\n]}\n", to_);
        bool const written = std::ferror(to_) == 0;
        return std::fclose(to_) == 0 && written;
    }

private:
    std::FILE* to_;
    std::int64_t process_;
    std::uint64_t count_ = 0;
    std::uint64_t arrows_ = 0;
};

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

std::string report::text_of(one_call const& made) {
    segments = made.tail.subspan(rounded(made.about.block_size));
    std::string text = format_call(capability{made.about.version}, made.about.id, made.tail.data(), read_segment);
    return made.about.result == result::success ? text : text + ", libnq's result " + std::to_string(made.about.result);
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
            segments = by.tail.subspan(rounded(by.about.block_size));
            auto const* from = static_cast<std::uint64_t const*>(read_pointer(by.tail.data(), each.offset));
            std::size_t const count = extent_of(*by.is, each, by.tail.data(), 0, read_segment).value_or(0) / 8;
            for (std::uint64_t event = 0; events.size() < count && read_segment(&event, from, sizeof event); ++from) {
                events.push_back(event);
            }
        }
    }
    return events;
}

void report::write_calls(json& to) const {
    std::set<std::uint32_t> threads;
    for (one_call const& each : calls_) {
        if (threads.insert(each.thread).second) {
            to.event("M", "thread_name", each.thread,
                     R"(,"args":{"name":"thread )" + std::to_string(each.thread) + R"("})");
        }
        to.slice(each.is->name, each.thread, each.about.begin, each.about.end,
                 "\"call\":" + escaped(text_of(each)) + (failed(each) ? ",\"failed\":true" : ""));
    }
}

void report::write_commands(json& to) const {
    std::map<std::uint64_t, std::uint64_t> rows; // by queue
    for (one_command const& each : commands_) {
        auto const [found, is_new] = rows.try_emplace(each.about.queue, first_row + rows.size() * lanes);
        if (is_new) {
            auto const device = queues_.find(each.about.queue);
            to.event("M", "thread_name", found->second,
                     R"(,"args":{"name":)" +
                         escaped("queue " + hexadecimal(each.about.queue) +
                                 (device != queues_.end() ? " of " + device->second : "")) +
                         "}");
        }
        std::uint64_t const row = found->second + each.lane;
        to.slice(each.name(), row, each.start(), each.end(),
                 "\"call\":" + escaped(text_of(*each.call)) +
                     ",\"queued\":" + std::to_string(each.about.submitted - each.about.queued) +
                     ",\"submitted\":" + std::to_string(each.about.started - each.about.submitted));
        to.arrow("enqueue", each.call->thread, each.call->about.begin, row, each.start());
    }
}

void report::write_arrows(json& to) const {
    std::map<std::uint64_t, std::uint64_t> rows;
    for (one_command const& each : commands_) {
        rows.try_emplace(each.about.queue, first_row + rows.size() * lanes);
    }
    std::map<std::uint64_t, one_command const*> made_by; // by event, the latest
    for (one_call const& each : calls_) {
        auto const own = by_number_.find(each.about.number);
        if (own == by_number_.end()) {
            continue;
        }
        one_command const& waits = commands_[own->second];
        for (std::uint64_t const event : waited_for(each)) {
            if (auto const found = made_by.find(event); found != made_by.end()) {
                one_command const& before = *found->second;
                to.arrow("wait", rows.at(before.about.queue) + before.lane, before.start(),
                         rows.at(waits.about.queue) + waits.lane, waits.start());
            }
        }
        made_by[waits.about.event] = &waits;
    }
}

std::string report::write(std::string const& path) const {
    std::FILE* const file = std::fopen(path.c_str(), "w");
    if (file == nullptr) {
        return "cannot write " + path + ": " + std::strerror(errno);
    }
    json to(file, of_.process);
    to.event("M", "process_name", 0, R"(,"args":{"name":)" + escaped(of_.program.data()) + "}");
    write_calls(to);
    write_commands(to);
    write_arrows(to);
    return to.close() ? "" : "cannot write all of " + path;
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
            rows.emplace_back(sum, row(name, cells));
        }
        std::ranges::sort(rows, std::greater{});
        for (auto const& [sum, text] : rows) {
            lines.push_back(text);
        }
    };
    lines.push_back(row("entry point, host times in us", {"calls", "failed", "total", "min", "median", "max"}));
    add(of_calls, true);
    if (!of_commands.empty()) {
        lines.push_back(row("command, device times in us", {"count", "total", "min", "median", "max"}));
        add(of_commands, false);
    }
    return lines;
}

} // namespace nq::layer::trace
