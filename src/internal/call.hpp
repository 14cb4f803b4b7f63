#pragma once

// One capability call: the call layer's own result is checked first, the OpenCL status second. The results in the block
// are valid only if both pass.

#include <nq/call_handle.hpp>
#include <nq/nq.hpp>

#include "internal/throw_status.hpp"

#include <cstdint>

namespace vorn::mero::internal {

/// Throws the `nq` exception of a result of libnq; returns on success.
[[noreturn, gnu::cold]] void throw_call_failure(int result);

inline void check_result(int result) {
    if (result != nq::result::success) [[unlikely]] {
        throw_call_failure(result);
    }
}

/// Performs a command without checking an OpenCL status.
inline void call(nq_call_handle* handle, std::uint32_t command_id, void* block) {
    check_result(nq_call_capability(handle, command_id, block, nullptr));
}

template <class Block>
std::int32_t status_of(Block const& block) {
    if constexpr (requires { block.status; }) {
        return block.status;
    } else {
        return block.error_code;
    }
}

/// Performs a command and throws whatever failed.
template <class Block>
void call_checked(nq_call_handle* handle, std::uint32_t command_id, Block& block) {
    call(handle, command_id, &block);
    if (status_of(block) != 0) [[unlikely]] {
        throw_status(status_of(block));
    }
}

} // namespace vorn::mero::internal
