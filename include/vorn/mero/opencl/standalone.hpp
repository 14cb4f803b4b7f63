#pragma once

// Lets editors and documentation tools read a header of this folder by itself, as of the newest version. Programs
// include <vorn/mero/opencl_1_2.hpp> or a sibling instead; after one of those, this is an error.

#include <vorn/mero/internal/part_alone.hpp>
#include <vorn/mero/opencl/dependencies.hpp>

#define VORN_MERO_OPENCL 220
#define VORN_MERO_NAMESPACE opencl_2_2
