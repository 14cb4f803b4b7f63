#pragma once

/// The object interface to OpenCL 2.2: namespace `vorn::mero::opencl_2_2`. To that of 2.1 it adds specialization
/// constants, and what programs say and do at their end. What an implementation of 3.0 leaves out of it throws, mostly
/// `common::invalid_operation`.

#include <vorn/mero/opencl/dependencies.hpp>

#define VORN_MERO_OPENCL 220
#define VORN_MERO_NAMESPACE opencl_2_2
#include <vorn/mero/opencl/version.hpp>
#undef VORN_MERO_NAMESPACE
#undef VORN_MERO_OPENCL
