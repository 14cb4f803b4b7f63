#pragma once

// Which arguments of each kernel are set.

#include "layer.hpp"

#include <cstddef>

namespace nq::layer {

/// Notes what a successful call sets, and new kernels.
void note_success(call const& made, description const* about);

/// Whether a kernel's argument is set.
bool is_set(void* kernel, std::size_t index);

} // namespace nq::layer
