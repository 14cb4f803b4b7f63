#pragma once

#include <nq/call_handle.hpp>
#include <vorn/mero/common/export.hpp>

#include <cstdint>

namespace vorn::mero::internal {

/// Performs one command of libnq on its argument block, for commands of a program's own: `nq::command_id` gives the id,
/// `nq::block` the blocks. Throws the `nq` exceptions when the call itself fails; the block's own status is the
/// caller's to check, with `check_error`.
///
///     nq::block::clFinish block;
///     block.command_queue = cl::raw::get_raw_command_queue(queue);
///     auto constexpr id = nq::command_id<nq::capability::opencl_1_2, nq::block::clFinish>;
///     vorn::mero::internal::call_capability(cl::raw::get_call_handle(queue), id, &block);
///     vorn::mero::internal::check_error(block.status);
VORN_MERO_EXPORT void call_capability(nq::call_handle const& handle, std::uint32_t command_id, void* block);

} // namespace vorn::mero::internal
