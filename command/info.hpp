#pragma once

// Lists what the OpenCL implementations of a machine have, and compares two such lists.

#include <string>

namespace nq::command {

/// Prints the platforms and devices, as text or as JSON. Returns the exit status: 0, or 1 if there is no device.
int print_info(bool json);

/// Prints what differs between two files that `print_info` has written as JSON. Returns 1 if anything does, else 0.
/// Throws `std::runtime_error` if one of them is no such file.
int print_differences(std::string const& before, std::string const& after);

} // namespace nq::command
