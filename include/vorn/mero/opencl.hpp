#pragma once

/// The object interfaces to all OpenCL versions, each in its own namespace.

#include <vorn/mero/opencl_1_0.hpp>
#include <vorn/mero/opencl_1_1.hpp>
#include <vorn/mero/opencl_1_2.hpp>
#include <vorn/mero/opencl_2_0.hpp>
#include <vorn/mero/opencl_2_1.hpp>
#include <vorn/mero/opencl_2_2.hpp>
