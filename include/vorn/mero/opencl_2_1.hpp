#pragma once

/// The object interface to OpenCL 2.1, in the namespace `vorn::mero::opencl_2_1`. Compared with 2.0 it adds programs
/// from intermediate language, sub-groups, copies of kernels with their arguments, timers, and migration of shared
/// virtual memory. Features that an OpenCL 3.0 implementation lacks throw, usually `common::invalid_operation`.

#include <vorn/mero/opencl/dependencies.hpp>

#define VORN_MERO_OPENCL 210
#define VORN_MERO_NAMESPACE opencl_2_1
#include <vorn/mero/opencl/parts.hpp>
#undef VORN_MERO_NAMESPACE
#undef VORN_MERO_OPENCL
