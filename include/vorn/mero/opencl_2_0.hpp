#pragma once

/// The object interface to OpenCL 2.0: namespace `vorn::mero::opencl_2_0`. To that of 1.2 it adds shared virtual
/// memory, pipes and queues on the device; `command_queue` becomes `host_command_queue` and `device_command_queue`.
/// What an implementation of 3.0 leaves out of it throws, mostly `common::invalid_operation`.

#include <vorn/mero/opencl/dependencies.hpp>

#define VORN_MERO_OPENCL 200
#define VORN_MERO_NAMESPACE opencl_2_0
#include <vorn/mero/opencl/version.hpp>
#undef VORN_MERO_NAMESPACE
#undef VORN_MERO_OPENCL
