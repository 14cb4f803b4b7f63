#pragma once

/// The object interface to OpenCL 1.0: namespace `vorn::mero::opencl_1_0`. Devices, contexts, queues, buffers, images
/// of two and three dimensions, samplers, programs, kernels, events and their commands.
///
///     namespace cl = vorn::mero::opencl_1_0;
///     for (cl::device const& each : cl::get_all_devices()) {
///         std::puts(each.name().c_str());
///     }
///
/// It may be included beside its siblings; objects of two versions are unrelated types.

#include <vorn/mero/opencl/dependencies.hpp>

#define VORN_MERO_OPENCL 100
#define VORN_MERO_NAMESPACE opencl_1_0
#include <vorn/mero/opencl/version.hpp>
#undef VORN_MERO_NAMESPACE
#undef VORN_MERO_OPENCL
