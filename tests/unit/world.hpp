#pragma once

#include "scripted/scripted.hpp"

#include <vorn/mero/opencl.hpp>

namespace unit {

/// The objects of an OpenCL version that tests call.
template <class Api>
struct world;

#define UNIT_BODY "unit/world_body.inc"
#include "unit/every_version.inc"

} // namespace unit
