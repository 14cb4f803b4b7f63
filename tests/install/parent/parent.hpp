#pragma once

#include <vorn/mero/opencl.hpp>

namespace parent {

/// The names of all devices.
__attribute__((visibility("default"))) std::vector<std::string> names();

} // namespace parent
