#pragma once

#include "support.hpp"

namespace real {

void add_memory_objects();

} // namespace real
