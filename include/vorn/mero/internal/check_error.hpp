#pragma once

#include <vorn/mero/common/export.hpp>

namespace vorn::mero::internal {

/// Throws the exception of an OpenCL status: the class of `vorn::mero::common` that bears its name, or
/// `common::unknown_opencl_error` for a number that no OpenCL version defines. Returns on success (0).
VORN_MERO_EXPORT void check_error(int status);

} // namespace vorn::mero::internal
