// Records each call and each command with its times, and writes them at exit as a file for trace viewers, as a summary,
// or both.

#include "layer.hpp"
#include "profiler.hpp"
#include "trace_log.hpp"
#include "trace_report.hpp"

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string_view>
#include <unistd.h>

namespace nq::layer {
namespace {

using namespace trace;

constexpr char const* name = "nq-trace";
constexpr std::size_t most_of_a_list = 128; // bytes of what a field refers to

struct settings {
    std::string output; // empty: no file
    bool summary = false;
    std::size_t limit = std::size_t{256} << 20U;
};

settings parse(std::string_view text) {
    settings made;
    bool any = false;
    for (std::size_t start = 0; start < text.size();) {
        std::size_t const end = std::min(text.find(',', start), text.size());
        std::string_view const part = text.substr(start, end - start);
        std::string_view const value = part.substr(std::min(part.find('=') + 1, part.size()));
        start = end + 1;
        if (part == "summary") {
            made.summary = true;
        } else if (part == "profile") {
            force_profiling();
        } else if (part.starts_with("output=") && !value.empty()) {
            made.output = value;
            any = true;
        } else if (part.starts_with("limit=")) {
            std::size_t size = 0;
            auto const [stop, error] = std::from_chars(value.data(), value.data() + value.size(), size);
            if (error != std::errc{} || stop != value.data() + value.size() || size == 0 || size > 1U << 20U) {
                throw std::invalid_argument("limit= takes a number of MiB, not '" + std::string(value) + "'");
            }
            made.limit = size << 20U;
        } else {
            throw std::invalid_argument("use output=FILE, summary, profile or limit=MIB, not '" + std::string(part) +
                                        "'");
        }
    }
    if (!any && !made.summary) {
        made.output = "nq-trace-%p.json";
    }
    if (std::size_t const at = made.output.find("%p"); at != std::string::npos) {
        made.output.replace(at, 2, std::to_string(getpid()));
    }
    return made;
}

std::string unfinished(settings const& of) { return of.output.empty() ? "" : of.output + ".part"; }

void stop() noexcept { stop_profiling(); }

// Read at the first call. A program whose settings are wrong ends here, as there would be no trace of it.
settings const& chosen() {
    static settings const& all = *[] {
        std::string why;
        try {
            char const* const text = std::getenv("NQ_TRACE");
            auto* const made = new settings(parse(text != nullptr ? text : ""));
            why = open_log(unfinished(*made), made->limit);
            if (why.empty()) {
                std::atexit(stop); // before the OpenCL implementation ends
                return made;
            }
        } catch (std::exception const& failure) {
            why = failure.what();
        }
        print(name, "NQ_TRACE: " + why);
        std::_Exit(2);
    }();
    return all;
}

struct piece {
    void const* address;
    std::size_t size;
};

bool can_read(void const* address, std::size_t size) {
    std::array<char, most_of_a_list> probe; // NOLINT(cppcoreguidelines-pro-type-member-init): filled
    return read_safely(probe.data(), address, size);
}

// What the arguments refer to, as far as it is shown. Of a failed call only what can be read.
template <std::size_t Most>
std::size_t find_pieces(call const& made, description const& about, bool failed, std::array<piece, Most>& found) {
    auto* const read = failed ? read_safely : nq::detail::copy_memory;
    std::size_t count = 0;
    for (field const& each : about) {
        bool const followed = each.length.rule != length_rule::none && each.direction == direction::in &&
                              each.length.rule != length_rule::opaque && each.length.rule < length_rule::rectangle;
        void const* const address = followed ? read_pointer(made.block, each.offset) : nullptr;
        if (address == nullptr || count == Most) {
            continue;
        }
        std::size_t size = extent_of(about, each, made.block, 0, read).value_or(0);
        bool const whole = each.kind != field_kind::bytes || size <= 16;
        size = std::min(size, most_of_a_list);
        if (size != 0 && whole && (!failed || can_read(address, size))) {
            found.at(count++) = {address, size};
        }
    }
    return count;
}

void record(call const& made, description const& about, call_entry entry) {
    std::array<piece, 8> pieces{};
    bool const failed = entry.result != result::success ||
                        (about.status != absent && read_field(made.block, about.status, sizeof(std::int32_t)) != 0);
    std::size_t const count = find_pieces(made, about, failed, pieces);
    std::size_t size = sizeof entry + rounded(about.size);
    for (std::size_t i = 0; i < count; ++i) {
        size += sizeof(segment_head) + rounded(pieces.at(i).size);
    }
    std::byte* const place = begin_entry(size);
    if (place == nullptr) {
        return;
    }
    entry.head.size = static_cast<std::uint32_t>(size);
    entry.block_size = static_cast<std::uint32_t>(about.size);
    std::memcpy(place, &entry, sizeof entry);
    std::byte* at = place + sizeof entry;
    std::memcpy(at, made.block, about.size);
    at += rounded(about.size);
    for (std::size_t i = 0; i < count; ++i) {
        piece const& each = pieces.at(i);
        segment_head const head{reinterpret_cast<std::uintptr_t>(each.address), each.size};
        std::memcpy(at, &head, sizeof head);
        std::memcpy(at + sizeof head, each.address, each.size);
        at += sizeof head + rounded(each.size);
    }
    end_entry(place);
}

void label(call const& made, _nq_cl_kernel* kernel) {
    label_entry entry;
    entry.address = reinterpret_cast<std::uintptr_t>(kernel);
    entry.time = now();
    block::clGetKernelInfo named{.kernel = kernel,
                                 .param_value_size = entry.text.size() - 1,
                                 .param_value = entry.text.data(),
                                 .param_name = "CL_KERNEL_FUNCTION_NAME"_cl};
    if (kernel != nullptr && ask(made, named)) {
        append(entry);
    }
}

void label_kernels(call const& made, description const& about) {
    if (auto const* const created = as<block::clCreateKernel>(made, &about); created != nullptr) {
        label(made, created->result);
    } else if (auto const* const clone = as<block::clCloneKernel>(made, &about); clone != nullptr) {
        label(made, clone->result);
    } else if (auto const* const all = as<block::clCreateKernelsInProgram>(made, &about);
               all != nullptr && all->status == 0 && all->kernels != nullptr) {
        std::uint32_t const told = all->num_kernels_ret != nullptr ? *all->num_kernels_ret : all->num_kernels;
        std::for_each_n(all->kernels, std::min(told, all->num_kernels), [&](auto* each) { label(made, each); });
    }
}

std::atomic<std::uint64_t> calls = 0;

[[gnu::destructor]] void finish() {
    if (calls == 0 || is_forked()) {
        return;
    }
    stop_profiling();
    attempt([] {
        report const made(file_head::own(), chunks());
        if (chosen().summary) {
            for (std::string const& line : made.summary()) {
                print(name, line);
            }
        }
        if (lost_entries() != 0) {
            print(name, std::to_string(lost_entries()) + " entries were lost; raise limit=MIB in NQ_TRACE");
        }
        if (!chosen().output.empty()) {
            std::string const why = made.write(chosen().output);
            print(name, why.empty() ? std::to_string(calls) + " calls in " + chosen().output : why);
            if (why.empty()) {
                unlink(unfinished(chosen()).c_str());
            }
        }
    });
}

} // namespace

int perform(call const& made) noexcept {
    description const* const about = made.about();
    if (about == nullptr || is_forked()) {
        return forward(made);
    }
    chosen();
    call_entry entry;
    entry.number = calls.fetch_add(1, std::memory_order_relaxed);
    entry.id = made.id;
    entry.version = static_cast<std::uint32_t>(made.version);
    entry.begin = now();
    entry.result = perform_profiled(made, *about, entry.number);
    entry.end = now();
    attempt([&] {
        record(made, *about, entry);
        label_kernels(made, *about);
    });
    return entry.result;
}

} // namespace nq::layer
