#pragma once

// The bytes of one run of a fuzz target, and how it says that something is wrong.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace fuzz {

/// The input. Behind its end there are zeros.
class input {
public:
    input(std::uint8_t const* data, std::size_t size) : at_(data), left_(size) {}

    bool empty() const { return left_ == 0; }

    std::uint8_t byte() {
        std::uint8_t value = 0;
        fill(&value, 1);
        return value;
    }
    /// A number below a bound.
    std::size_t below(std::size_t bound) { return byte() % bound; }

    /// Mostly a small number, at times any of eight bytes.
    std::uint64_t number() {
        std::uint64_t value = byte();
        if (value >= 0xF0) {
            fill(&value, sizeof value);
        }
        return value;
    }

    void fill(void* place, std::size_t size) {
        std::size_t const taken = size < left_ ? size : left_;
        if (size != 0) {
            std::memset(place, 0, size);
        }
        if (taken != 0) {
            std::memcpy(place, at_, taken);
        }
        at_ += taken;
        left_ -= taken;
    }

    std::string rest() {
        std::string text(left_, '\0');
        fill(text.data(), text.size());
        return text;
    }

private:
    std::uint8_t const* at_;
    std::size_t left_;
};

/// Ends the run: what was expected did not happen.
[[noreturn]] inline void fail(std::string const& what) {
    std::fprintf(stderr, "wrong: %s\n", what.c_str());
    std::abort();
}

inline void expect(bool holds, char const* what) {
    if (!holds) {
        fail(what);
    }
}

} // namespace fuzz
