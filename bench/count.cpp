#include "count.hpp"

#include <cstdio>
#include <dlfcn.h>
#include <valgrind/callgrind.h>

namespace bench {
namespace {

constexpr int repetitions = 1000;

// A counter that only some processes have: the OpenCL that does nothing counts calls, a preloaded library allocations.
class counter {
public:
    explicit counter(char const* name)
        : read_(reinterpret_cast<unsigned long (*)()>(dlsym(RTLD_DEFAULT, name))), start_(now()) {}

    std::string per_operation() const {
        if (read_ == nullptr) {
            return "?";
        }
        char text[32];
        std::snprintf(text, sizeof text, "%g", static_cast<double>(now() - start_) / repetitions);
        return text;
    }

private:
    unsigned long now() const { return read_ != nullptr ? read_() : 0; }

    unsigned long (*read_)();
    unsigned long start_;
};

} // namespace

void count(std::vector<contender> const& contenders, std::string_view only) {
    for (contender const& by : contenders) {
        for (operation const& each : by.operations) {
            if (!only.empty() && each.name != only) {
                continue;
            }
            std::string const label = each.name + '|' + by.name; // the macros below use it in several statements
            each.run(10);
            counter const calls("null_opencl_calls");
            counter const allocations("counted_allocations");
            CALLGRIND_ZERO_STATS;
            CALLGRIND_TOGGLE_COLLECT;
            each.run(repetitions);
            CALLGRIND_TOGGLE_COLLECT;
            auto const calls_made = calls.per_operation();
            auto const allocations_made = allocations.per_operation();
            CALLGRIND_DUMP_STATS_AT(label.c_str());
            std::printf("%s|%s|%s\n", label.c_str(), calls_made.c_str(), allocations_made.c_str());
        }
    }
}

} // namespace bench
