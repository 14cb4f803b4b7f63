#pragma once

// The arguments of kernels: who sets them, and what they are.

#include "check.hpp"

namespace nq::layer::check {

/// Before a call: prints another thread that is setting an argument of the same kernel, a null image, and at a launch
/// the arguments that were released.
void check_kernel(call const& made, description const& about);

/// After the call.
void note_kernel(call const& made, description const& about, bool succeeded);

/// The last reference to a kernel is released.
void forget_kernel(void* kernel);

/// The declarations of a kernel's argument in a source, as written: `write_only image2d_t to`. Empty if there is none,
/// or several that differ.
std::string declaration_of(std::string const& source, std::string const& kernel, std::size_t argument);

} // namespace nq::layer::check
