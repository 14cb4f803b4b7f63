#pragma once

/// The object interface to OpenCL 2.0, in the namespace `vorn::mero::opencl_2_0`. Compared with 1.2 it adds shared
/// virtual memory, pipes and on-device queues; `command_queue` becomes `host_command_queue` and `device_command_queue`.
/// Features that an OpenCL 3.0 implementation lacks throw, usually `common::invalid_operation`.

#include <vorn/mero/opencl/dependencies.hpp>

#define VORN_MERO_OPENCL 200
#define VORN_MERO_NAMESPACE opencl_2_0
#include <vorn/mero/opencl/parts.hpp>
#undef VORN_MERO_NAMESPACE
#undef VORN_MERO_OPENCL
