#pragma once

/// The object interface to OpenCL 2.2, in the namespace `vorn::mero::opencl_2_2`. Compared with 2.1 it adds
/// specialization constants, release callbacks of programs, and queries for constructors and destructors. Features that
/// an OpenCL 3.0 implementation lacks throw, usually `common::invalid_operation`.

#include <vorn/mero/opencl/dependencies.hpp>

#define VORN_MERO_OPENCL 220
#define VORN_MERO_NAMESPACE opencl_2_2
#include <vorn/mero/opencl/parts.hpp>
#undef VORN_MERO_NAMESPACE
#undef VORN_MERO_OPENCL
