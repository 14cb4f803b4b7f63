#pragma once

#include "scripted/scripted.hpp"

#include <vorn/mero/opencl.hpp>

namespace unit {

/// The objects of an OpenCL version that tests call.
template <class Api>
struct world;

#define UNIT_NAMESPACE opencl_1_0
#define UNIT_OPENCL 100
#include "unit/world_body.inc"
#undef UNIT_NAMESPACE
#undef UNIT_OPENCL
#define UNIT_NAMESPACE opencl_1_1
#define UNIT_OPENCL 110
#include "unit/world_body.inc"
#undef UNIT_NAMESPACE
#undef UNIT_OPENCL
#define UNIT_NAMESPACE opencl_1_2
#define UNIT_OPENCL 120
#include "unit/world_body.inc"
#undef UNIT_NAMESPACE
#undef UNIT_OPENCL
#define UNIT_NAMESPACE opencl_2_0
#define UNIT_OPENCL 200
#include "unit/world_body.inc"
#undef UNIT_NAMESPACE
#undef UNIT_OPENCL
#define UNIT_NAMESPACE opencl_2_1
#define UNIT_OPENCL 210
#include "unit/world_body.inc"
#undef UNIT_NAMESPACE
#undef UNIT_OPENCL
#define UNIT_NAMESPACE opencl_2_2
#define UNIT_OPENCL 220
#include "unit/world_body.inc"
#undef UNIT_NAMESPACE
#undef UNIT_OPENCL

} // namespace unit
