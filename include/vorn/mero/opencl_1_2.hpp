#pragma once

/// The object interface to OpenCL 1.2, in the namespace `vorn::mero::opencl_1_2`. Compared with 1.1 it adds
/// sub-devices, reference counts of devices, one-dimensional images, image arrays, fills, migration, linking, built-in
/// kernels and kernel argument queries. Most implementations support it.

#include <vorn/mero/opencl/dependencies.hpp>

#define VORN_MERO_OPENCL 120
#define VORN_MERO_NAMESPACE opencl_1_2
#include <vorn/mero/opencl/parts.hpp>
#undef VORN_MERO_NAMESPACE
#undef VORN_MERO_OPENCL
