#pragma once

// One capability call: the call layer's own result is checked first, the OpenCL status second. The results in the block
// are valid only if both pass.

#include <nq/call_handle.hpp>
#include <nq/nq.hpp>

#include "internal/throw_status.hpp"

#include <cstdint>

namespace vorn::mero::internal {

/// Throws the `nq` exception of a result of libnq other than success.
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
std::int32_t& status_of(Block& block) {
    if constexpr (requires { block.status; }) {
        return block.status;
    } else {
        return block.error_code;
    }
}

/// Performs a command, whatever comes of it. Returns libnq's result and OpenCL's status as one number, which is 0 if
/// both are: one test instead of two.
template <class Block>
int attempt(nq_call_handle* handle, std::uint32_t command_id, Block& block) {
    static_assert(nq::result::success == 0);
    int const result = nq_call_capability(handle, command_id, &block, nullptr);
    return result | status_of(block);
}

/// Performs a command and throws whatever failed, from the function that calls this.
template <class Block>
[[gnu::always_inline]] inline void call_checked(nq_call_handle* handle, std::uint32_t command_id, Block& block) {
    int const result = nq_call_capability(handle, command_id, &block, nullptr);
    std::int32_t& status = status_of(block);
    status |= result; // one test instead of two; after a successful call it is the status still
    if (status != 0) [[unlikely]] {
        check_result(result);
        throw_status(status);
    }
}

} // namespace vorn::mero::internal
