#pragma once

// Memory of the program that a command uses until it is done.

#include "layer.hpp"

#include <cstdint>
#include <vector>

namespace nq::layer::check {

/// Rows of bytes: slices of rows of `width` bytes each.
struct area {
    std::uintptr_t begin = 0;
    std::size_t width = 0;
    std::size_t rows = 1;
    std::size_t row_pitch = 0;
    std::size_t slices = 1;
    std::size_t slice_pitch = 0;

    /// One past the last byte.
    std::uintptr_t end() const noexcept {
        bool const empty = width == 0 || rows == 0 || slices == 0;
        return empty ? begin : begin + (slices - 1) * slice_pitch + (rows - 1) * row_pitch + width;
    }
};

/// Whether they have a byte in common. False for areas of so many rows that telling takes long.
bool overlaps(area const& left, area const& right) noexcept;

/// An area, and whether the command writes there.
struct access {
    area where;
    bool writes;
};

/// What a command reads and writes in the memory of the program after its call has returned. Empty if the call waits.
std::vector<access> accesses_of(call const& made, description const& about);

/// Whether the call returns only when its command is done.
bool is_blocking(call const& made, description const& about) noexcept;

} // namespace nq::layer::check
