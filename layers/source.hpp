#pragma once

// Where in the program a call was made.

#include <array>
#include <cstdint>
#include <string>

namespace nq::layer {

/// The return addresses of the calling functions, the innermost first.
struct call_site {
    static constexpr std::size_t depth = 24;

    std::array<std::uintptr_t, depth> addresses{};

    /// The site of the calling function. Unwinds the stack.
    static call_site here() noexcept;

    bool operator==(call_site const&) const = default;

    /// `file.cpp:13 function` of the first function that is neither a layer's, nor libvorn-mero's or in its headers,
    /// nor the C++ standard library's. Without debug information `program+0x1234 function`. Empty if there is none.
    /// Slow.
    std::string text() const;
};

} // namespace nq::layer
