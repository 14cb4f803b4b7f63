#pragma once

// The OpenCL library, loaded at run time: an ICD loader, or an implementation that is used without one.

#include "entry_points.hpp"

#include <string>

namespace nq::bridge {

/// Loads the library that NQ_BRIDGE_OPENCL names; without it takes the one that the process has preloaded or linked;
/// else loads libOpenCL.so.1. Does nothing if there is one already. Returns an empty string, or the reason of the
/// failure. Not thread-safe.
std::string load();

/// Set by `load`.
extern functions library_functions;

/// The library's own functions; all null before `load`. Inline, so that a guard that only passes on saves no registers.
inline functions const& loaded() noexcept { return library_functions; }

/// Whether a function is part of the library, and not of an implementation behind it.
bool is_in_library(void* function) noexcept;

/// The dispatch table of an implementation with cl_khr_icd: its objects begin with the address of the table.
functions const* dispatch_table(cl_platform_id object) noexcept;

} // namespace nq::bridge
