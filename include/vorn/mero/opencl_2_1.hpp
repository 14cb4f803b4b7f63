#pragma once

/// The object interface to OpenCL 2.1: namespace `vorn::mero::opencl_2_1`. To that of 2.0 it adds programs from
/// intermediate language, sub-groups, kernels that are copied with their arguments, timers, and migration of shared
/// virtual memory. What an implementation of 3.0 leaves out of it throws, mostly `common::invalid_operation`.

#include <vorn/mero/opencl/dependencies.hpp>

#define VORN_MERO_OPENCL 210
#define VORN_MERO_NAMESPACE opencl_2_1
#include <vorn/mero/opencl/version.hpp>
#undef VORN_MERO_NAMESPACE
#undef VORN_MERO_OPENCL
