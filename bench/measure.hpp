#pragma once

// The cost of an operation of the library over the same operation of the C API.
//
// The two sides run in turns, in batches, in one process: on a machine whose speed drifts only the ratio of
// neighbouring batches means anything. Each operation is one benchmark, whose counters are the medians of its batches;
// its control compares the C API with itself in the same way and must be close to 1.

#include <functional>
#include <string>

namespace bench {

/// Runs an operation some times and gives the time of one, in nanoseconds.
using batch = std::function<double(int)>;

double now_in_nanoseconds();

template <class Operation>
batch batch_of(Operation operation) {
    return [operation](int count) mutable {
        double const start = now_in_nanoseconds();
        for (int i = 0; i != count; ++i) {
            operation();
        }
        return (now_in_nanoseconds() - start) / count;
    };
}

/// Registers the comparison of an operation of the C API with that of the library; `settle` runs untimed between
/// batches.
void compare_batches(std::string const& name, batch const& c_api, batch const& library,
                     std::function<void()> const& settle);

template <class CApi, class Library>
void compare(std::string const& name, CApi c_api, Library library, std::function<void()> const& settle) {
    compare_batches(name, batch_of(c_api), batch_of(library), settle);
}

} // namespace bench
