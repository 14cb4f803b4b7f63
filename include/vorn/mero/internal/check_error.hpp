#pragma once

#include <vorn/mero/common/export.hpp>

namespace vorn::mero::internal {

/// Throws the exception of an OpenCL status: the class of its name in `vorn::mero::common`, or
/// `common::unknown_opencl_error` for a status that no OpenCL version defines, such as that of an extension. Returns on
/// success (0). For programs that also call the C API:
///
///     vorn::mero::internal::check_error(clEnqueueSomething(cl::raw::get_raw_command_queue(queue)));
VORN_MERO_EXPORT void check_error(int status);

} // namespace vorn::mero::internal
