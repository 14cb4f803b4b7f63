#pragma once

#include "host_memory.hpp"

#include <memory>

namespace vorn::mero::python {

/// Keeps host memory until OpenCL has deleted the buffer that uses it, which is after the last command on it.
void keep_for(exact::buffer const& user, std::unique_ptr<host_memory> memory);

} // namespace vorn::mero::python
