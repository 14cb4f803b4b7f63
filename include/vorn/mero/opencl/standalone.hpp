#pragma once

// Lets an editor or a documentation tool read one of the bodies beside this file alone, as of the newest version.
// Programs include <vorn/mero/opencl_1_2.hpp> or one of its siblings instead: a body after one of those is refused.

#include <vorn/mero/internal/part_alone.hpp>
#include <vorn/mero/opencl/dependencies.hpp>

#define VORN_MERO_OPENCL 220
#define VORN_MERO_NAMESPACE opencl_2_2
