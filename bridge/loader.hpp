#pragma once

// The ICD loader, loaded at run time.

#include "entry_points.hpp"

#include <string>

namespace nq::bridge {

/// Loads the library that NQ_BRIDGE_OPENCL names, unless it has been loaded before. Returns an empty string, or the
/// reason of the failure. Not thread-safe.
std::string load();

/// The loader's own functions; all null before `load`.
functions const& loaded() noexcept;

/// The address of a name in the loaded library, or null.
void* find_symbol(char const* name) noexcept;

/// The value of NQ_BRIDGE_OPENCL, or its default.
std::string loader_name();

} // namespace nq::bridge
