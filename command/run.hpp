#pragma once

// Runs a program under a layer.

#include <string>
#include <vector>

namespace nq::command {

/// A program and its arguments.
using command_line = std::vector<std::string>;

/// Runs it with a layer preloaded, and the layer's settings in its environment. Returns its exit status, 128 and the
/// number of the signal if one ended it, as a shell does. Throws `std::runtime_error` if it cannot be run, or a layer
/// cannot be put before it.
int run_under(std::string const& layer, std::string const& settings, command_line const& program);

} // namespace nq::command
