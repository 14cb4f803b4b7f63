#pragma once

/// The object interface to OpenCL 1.1, in the namespace `vorn::mero::opencl_1_1`. Compared with 1.0 it adds
/// sub-buffers, user events, event callbacks, rectangular buffer copies and launches from an offset, and drops tasks.

#include <vorn/mero/opencl/dependencies.hpp>

#define VORN_MERO_OPENCL 110
#define VORN_MERO_NAMESPACE opencl_1_1
#include <vorn/mero/opencl/parts.hpp>
#undef VORN_MERO_NAMESPACE
#undef VORN_MERO_OPENCL
