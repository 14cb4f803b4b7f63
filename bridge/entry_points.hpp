#pragma once

// The OpenCL entry points that the bridge uses, in the order of an implementation's dispatch table, each with the
// OpenCL version whose tables have its slot. The table of an older implementation ends before it.

#define CL_TARGET_OPENCL_VERSION 300
#define CL_USE_DEPRECATED_OPENCL_1_0_APIS
#define CL_USE_DEPRECATED_OPENCL_1_1_APIS
#define CL_USE_DEPRECATED_OPENCL_1_2_APIS
#define CL_USE_DEPRECATED_OPENCL_2_0_APIS
#define CL_USE_DEPRECATED_OPENCL_2_1_APIS
#define CL_USE_DEPRECATED_OPENCL_2_2_APIS
#include <CL/cl_icd.h>

#include <cstddef>
#include <span>

namespace nq::bridge {

/// One function pointer per entry point, null if missing. Laid out as an implementation's dispatch table.
using functions = cl_icd_dispatch;

/// major * 100 + minor, as in 102 for OpenCL 1.2.
using version_number = unsigned;

struct entry_point {
    char const* name;
    std::size_t slot; // in pointers
    version_number since;
};

/// Every entry point that a dispatch table can have on this system, including those of extensions.
std::span<entry_point const> entry_points() noexcept;

inline void*& slot(functions& table, std::size_t index) { return reinterpret_cast<void**>(&table)[index]; }
inline void* slot(functions const& table, std::size_t index) { return reinterpret_cast<void* const*>(&table)[index]; }

} // namespace nq::bridge
