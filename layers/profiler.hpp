#pragma once

// Makes calls so that each enqueued command has an event with profiling, and collects the times when commands are done.

#include "layer.hpp"

#include <cstdint>

namespace nq::layer::trace {

/// Switches profiling on in queues that are made without it. The program sees queues without it.
void force_profiling() noexcept;

/// Makes a call. `number` names it in the command entries.
int perform_profiled(call const& made, description const& about, std::uint64_t number) noexcept;

/// Collects what is done. No calls are made afterwards but those of the program.
void stop_profiling() noexcept;

} // namespace nq::layer::trace
