#pragma once

#include <cstddef>
#include <new>

namespace unit {

/// The allocations outside of libnq so far, and which of them is to fail; with 0 none is.
extern std::size_t allocated;
extern std::size_t failing_allocation;

/// What is larger fails too, while there is one of these.
struct little_memory {
    static constexpr std::size_t largest = 1 << 20;

    little_memory() {
        there_is = true;
        was_short = false;
    }
    little_memory(little_memory const&) = delete;
    little_memory& operator=(little_memory const&) = delete;
    ~little_memory() { there_is = false; }

    static bool there_is;
    static bool was_short; ///< Since the last one was made.
};

/// How many allocations some work makes. The n-th of them fails, counted from 1.
template <class Work>
std::size_t allocations_of(Work work, std::size_t failing = 0) {
    struct no_more_failing {
        ~no_more_failing() { failing_allocation = 0; }
    } const at_the_end;
    allocated = 0;
    failing_allocation = failing;
    work();
    return allocated;
}

/// Runs what `prepare()` returns with its first allocation failing, then with its second, until none fails. Returns how
/// many failed.
template <class Prepare>
std::size_t until_no_allocation_fails(Prepare prepare) {
    for (std::size_t failing = 1;; ++failing) {
        try {
            allocations_of(prepare(), failing);
            return failing - 1;
        } catch (std::bad_alloc const&) { // as it should
        }
    }
}

} // namespace unit
