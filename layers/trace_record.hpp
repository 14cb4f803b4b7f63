#pragma once

// Writes a call into the log of a trace, with the memory that its arguments refer to.

#include "layer.hpp"
#include "trace_log.hpp"

namespace nq::layer::trace {

/// After the call was made. `entry` has its number, times and result.
void record(call const& made, description const& about, call_entry const& entry);

} // namespace nq::layer::trace
