#pragma once

#include "opencl.hpp"

// Each registers the comparisons of one family of operations.
namespace bench {

void compare_basics(fixture& on);
void compare_buffer_commands(fixture& on);
void compare_image_commands(fixture& on);
void compare_kernel_commands(fixture& on);
void compare_shared_memory_commands(fixture& on);
void compare_tasks(fixture const& on); // a command of OpenCL 1.0 alone

} // namespace bench
