#pragma once

/// The object interface to OpenCL 1.0, in the namespace `vorn::mero::opencl_1_0`: devices, contexts, queues, buffers,
/// images of two and three dimensions, samplers, programs, kernels, events and commands.
///
///     namespace cl = vorn::mero::opencl_1_0;
///     for (cl::device const& each : cl::get_all_devices()) {
///         std::puts(each.name().c_str());
///     }
///
/// It can be included together with its siblings; classes of different versions are unrelated types.

#include <vorn/mero/opencl/dependencies.hpp>

#define VORN_MERO_OPENCL 100
#define VORN_MERO_NAMESPACE opencl_1_0
#include <vorn/mero/opencl/parts.hpp>
#undef VORN_MERO_NAMESPACE
#undef VORN_MERO_OPENCL
