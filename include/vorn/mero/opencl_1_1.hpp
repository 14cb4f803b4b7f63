#pragma once

/// The object interface to OpenCL 1.1: namespace `vorn::mero::opencl_1_1`. To that of 1.0 it adds sub-buffers, user
/// events, callbacks of events, boxes of buffers and launches from an offset; tasks go.

#include <vorn/mero/opencl/dependencies.hpp>

#define VORN_MERO_OPENCL 110
#define VORN_MERO_NAMESPACE opencl_1_1
#include <vorn/mero/opencl/version.hpp>
#undef VORN_MERO_NAMESPACE
#undef VORN_MERO_OPENCL
