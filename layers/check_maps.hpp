#pragma once

// Memory that the program has mapped, or had.

#include "check_areas.hpp"

namespace nq::layer::check {

/// Before a call: prints what unmaps that which is not mapped, and what uses memory that was mapped once. Whether the
/// call unmaps something.
bool check_maps(call const& made, description const& about, std::vector<access> const& accesses);

/// After a call that was to unmap something, and that OpenCL has refused.
void take_back_unmap(call const& made, description const& about);

/// After a call that succeeded: notes maps and shared memory.
void note_maps(call const& made, description const& about);

/// The last reference to a memory object is released.
void forget_memory(call const& made, void* memory);

/// At the end of the program.
void report_maps();

} // namespace nq::layer::check
