#pragma once

// The OpenCL version that a test is compiled for; the build compiles each once per version.

#ifndef UNIT_OPENCL
#define UNIT_OPENCL 220
#define UNIT_NAMESPACE opencl_2_2
#define UNIT_HEADER <vorn/mero/opencl_2_2.hpp>
#endif
#include UNIT_HEADER

#pragma GCC diagnostic ignored "-Wunused-result" // tests look at what is sent and thrown

namespace unit {

using namespace vorn::mero::UNIT_NAMESPACE; // NOLINT(google-build-using-namespace)
#if UNIT_OPENCL >= 200
using vorn::mero::UNIT_NAMESPACE::pipe; // not the system's
#endif
using namespace nq::block; // NOLINT(google-build-using-namespace)
namespace block = nq::block;
namespace common = vorn::mero::common;
using api = vorn::mero::api<UNIT_OPENCL>;
using vorn::mero::internal::owner_access;

} // namespace unit
