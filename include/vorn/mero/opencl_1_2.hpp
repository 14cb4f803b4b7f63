#pragma once

/// The object interface to OpenCL 1.2: namespace `vorn::mero::opencl_1_2`. To that of 1.1 it adds sub-devices, counted
/// devices, images of one dimension and arrays of images, fills, migration, linking, built-in kernels and what the
/// source says of a kernel's arguments. Most implementations that are not of 3.0 offer this one.

#include <vorn/mero/opencl/dependencies.hpp>

#define VORN_MERO_OPENCL 120
#define VORN_MERO_NAMESPACE opencl_1_2
#include <vorn/mero/opencl/version.hpp>
#undef VORN_MERO_NAMESPACE
#undef VORN_MERO_OPENCL
