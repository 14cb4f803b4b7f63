#pragma once

#include <cstddef>
#include <new>

namespace unit {

/// Counts this thread's allocations outside of libnq while it lives, and has one of them fail.
class allocation_watch {
public:
    /// The `failing`-th allocation fails, counted from 1; with 0 none does.
    explicit allocation_watch(std::size_t failing = 0);
    allocation_watch(allocation_watch const&) = delete;
    allocation_watch& operator=(allocation_watch const&) = delete;
    ~allocation_watch();

    std::size_t count() const noexcept { return count_; }

    /// Throws `std::bad_alloc` when the allocation that is about to be made is to fail.
    static void allocate();

private:
    std::size_t failing_;
    std::size_t count_ = 0;
};

/// Runs what `prepare()` returns with its first allocation failing, then with its second, until none fails. Returns how
/// many failed.
template <class Prepare>
std::size_t until_no_allocation_fails(Prepare prepare) {
    for (std::size_t failing = 1;; ++failing) {
        auto const work = prepare();
        try {
            allocation_watch const watch(failing);
            work();
            return failing - 1;
        } catch (std::bad_alloc const&) { // as it should
        }
    }
}

} // namespace unit
