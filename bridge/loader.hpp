#pragma once

// The ICD loader, loaded at run time.

#include "entry_points.hpp"

#include <string>

namespace nq::bridge {

/// Loads the library that NQ_BRIDGE_OPENCL names, unless one has been loaded before. Not thread-safe.
/// Returns the reason when there is none, else an empty string.
std::string load();

/// The loader's own functions; all null before `load`.
functions const& loaded() noexcept;

/// The address of a name in the loaded library, or null.
void* find_symbol(char const* name) noexcept;

/// What NQ_BRIDGE_OPENCL says, or its default.
std::string loader_name();

} // namespace nq::bridge
