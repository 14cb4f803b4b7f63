#pragma once

// The progress of long work.

#include <chrono>
#include <cstdint>
#include <string>

namespace nq {

/// A line on the terminal at standard error, as `[####      ] 87 of 218 runs`. Nothing is written where standard error
/// is no terminal. For one thread.
class progress {
public:
    /// `all` is how many there are, and `what` they are.
    progress(std::uint64_t all, std::string what);
    ~progress() { clear(); }
    progress(progress const&) = delete;
    progress& operator=(progress const&) = delete;

    /// Shows how many are done, ten times a second at most.
    void show(std::uint64_t done) noexcept;

    /// Shows that one more is done.
    void advance() noexcept { show(done_ + 1); }

    /// Takes the line away, until the next one; to be called before something else is printed.
    void clear() noexcept;

private:
    using clock = std::chrono::steady_clock;

    std::uint64_t all_;
    std::uint64_t done_ = 0;
    std::string what_;
    bool is_terminal_;
    bool is_shown_ = false;
    clock::time_point next_;
};

} // namespace nq
