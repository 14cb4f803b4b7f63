#pragma once

/// The object interface to OpenCL 2.1: namespace `vorn::mero::opencl_2_1`.

#include <vorn/mero/opencl/dependencies.hpp>

#define VORN_MERO_OPENCL 210
#define VORN_MERO_NAMESPACE opencl_2_1
#include <vorn/mero/opencl/version.hpp>
#undef VORN_MERO_NAMESPACE
#undef VORN_MERO_OPENCL
