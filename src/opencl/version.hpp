#pragma once

// Declares the OpenCL version of this compilation; the build compiles each source once for every version.

#include <vorn/mero/opencl/dependencies.hpp>

#ifndef VORN_MERO_BUILD_OPENCL
#define VORN_MERO_BUILD_OPENCL 220
#endif

#if VORN_MERO_BUILD_OPENCL == 100
#include <vorn/mero/opencl_1_0.hpp>
#define VORN_MERO_NAMESPACE opencl_1_0
#elif VORN_MERO_BUILD_OPENCL == 110
#include <vorn/mero/opencl_1_1.hpp>
#define VORN_MERO_NAMESPACE opencl_1_1
#elif VORN_MERO_BUILD_OPENCL == 120
#include <vorn/mero/opencl_1_2.hpp>
#define VORN_MERO_NAMESPACE opencl_1_2
#elif VORN_MERO_BUILD_OPENCL == 200
#include <vorn/mero/opencl_2_0.hpp>
#define VORN_MERO_NAMESPACE opencl_2_0
#elif VORN_MERO_BUILD_OPENCL == 210
#include <vorn/mero/opencl_2_1.hpp>
#define VORN_MERO_NAMESPACE opencl_2_1
#elif VORN_MERO_BUILD_OPENCL == 220
#include <vorn/mero/opencl_2_2.hpp>
#define VORN_MERO_NAMESPACE opencl_2_2
#endif
#define VORN_MERO_OPENCL VORN_MERO_BUILD_OPENCL
