#pragma once

// The dispatch tables: one per OpenCL version, indexed by command id.

#include <nq/types.hpp>

#include <cstddef>
#include <cstdint>
#include <span>

namespace nq::bridge {

/// Performs one entry point on its argument block; returns what `nq_call_capability` returns. The parameters are where
/// those of `nq_call_capability` are, so that it passes them on without moving them.
using thunk = int (*)(nq_call_handle const& handle, std::uint64_t index, void* block);

/// The OpenCL versions that `nq::capability` counts from 1.
inline constexpr std::size_t version_count = 6;

/// Empty for a version that does not exist.
std::span<thunk const> commands_of(nq::capability version) noexcept;

} // namespace nq::bridge
