#pragma once

// With NQ_BRIDGE_VERBOSE=1: why devices are missing, and what to do about it, on standard error.

#include "discovery.hpp"

#include <string>

namespace nq::bridge {

/// `failure` is why there is no ICD loader, if there is none. The same report is written once only. Not thread-safe.
void explain_discovery(machine const& found, std::string const& failure);

/// That a platform cannot be used in this forked process; written once.
void explain_fork(platform const& lost) noexcept;

} // namespace nq::bridge
