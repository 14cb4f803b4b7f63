#pragma once

// With NQ_BRIDGE_VERBOSE (1, true, yes or on): why devices are missing, and what to do about it, on standard error.

#include "discovery.hpp"

#include <string>

namespace nq::bridge {

/// `failure` is the reason why there is no OpenCL library, empty if there is one. The same report is written only once.
/// Not thread-safe.
void explain_discovery(machine const& found, std::string const& failure);

/// Writes, once, that a platform does not work in this forked process.
void explain_fork(platform const& lost) noexcept;

} // namespace nq::bridge
