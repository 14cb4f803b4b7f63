// Records each call and each command with its times, and writes them at exit as a file for trace viewers, as a summary,
// or both.

#include "layer.hpp"
#include "profiler.hpp"
#include "trace_log.hpp"
#include "trace_record.hpp"
#include "trace_report.hpp"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <unistd.h>

namespace nq::layer {
namespace {

using namespace trace;

constexpr char const* name = "nq-trace";

struct settings {
    std::string output; // empty: no file
    bool summary = false;
    bool keep = false; // what is in the file
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
        } else if (part == "keep") {
            made.keep = true;
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
            throw std::invalid_argument("use output=FILE, keep, summary, profile or limit=MIB, not '" +
                                        std::string(part) + "'");
        }
    }
    if (!any && !made.summary) {
        made.output = "nq-trace-%p.json";
    }
    made.output = expanded(made.output);
    return made;
}

std::string unfinished(settings const& of) { return of.output.empty() ? "" : recording_of(of.output); }

void stop() noexcept { stop_profiling(); }

// With the number of the process before the end that tells the format.
std::string numbered(std::string const& output) {
    std::filesystem::path path = output;
    std::string const end = path.extension();
    return path.replace_extension().string() + '-' + std::to_string(getpid()) + end;
}

// Opens the log. A program may start others, which all have the same settings: if one of them writes the file, or has
// written it and it is to be kept, this process takes another.
int open_for(settings& made) {
    auto const is_written = [&] {
        return made.keep && !unfinished(made).empty() && access(made.output.c_str(), F_OK) == 0;
    };
    int why = is_written() ? EWOULDBLOCK : open_log(unfinished(made), made.limit);
    if (why == 0 && unfinished(made) != made.output && is_written()) { // in the meantime
        unlink(unfinished(made).c_str());
        why = EWOULDBLOCK;
    }
    if (why == EWOULDBLOCK) {
        made.output = numbered(made.output);
        why = open_log(unfinished(made), made.limit);
    }
    return why;
}

// Read at the first call. A program whose settings are wrong ends here, as there would be no trace of it.
settings const& read_settings() {
    std::string why;
    try {
        char const* const text = ::secure_getenv("NQ_TRACE");
        auto* const made = new settings(parse(text != nullptr ? text : ""));
        int const failure = open_for(*made);
        if (failure == 0) {
            std::atexit(stop); // before the OpenCL implementation ends
            return *made;
        }
        why = "cannot write " + unfinished(*made) + ": " + std::strerror(failure);
    } catch (std::exception const& failure) {
        why = failure.what();
    }
    print(name, "NQ_TRACE: " + why);
    std::_Exit(2);
}

settings const& chosen() {
    static settings const& all = read_settings();
    return all;
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
        if (lost_entries() != 0) {
            print(name, std::to_string(lost_entries()) + " entries were lost; raise limit=MIB in NQ_TRACE");
        }
        std::vector<report> made;
        made.emplace_back(file_head::own(), chunks());
        if (chosen().summary) {
            for (std::string const& line : made.front().summary()) {
                print(name, line);
            }
        }
        std::string const& output = chosen().output;
        bool const keeps = unfinished(chosen()) == output; // the recording is all that is wanted
        std::string const why = output.empty() || keeps ? "" : write_trace(output, made);
        if (!output.empty()) {
            print(name, why.empty() ? std::to_string(calls) + " calls in " + output : why);
        }
        if (why.empty() && !keeps) {
            unlink(unfinished(chosen()).c_str());
        }
    });
}

} // namespace

int perform(call const& made) noexcept {
    description const* const about = made.about();
    if (about == nullptr || is_forked()) {
        return forward(made);
    }
    [[maybe_unused]] static settings const& read = chosen();
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
