#include "internal/call.hpp"

#include <nq/error.hpp>
#include <vorn/mero/internal/call_capability.hpp>

namespace vorn::mero::internal {

void throw_call_failure(int result) {
    switch (result) {
    case nq::result::invalid_command_id:
        throw nq::invalid_command_id();
    case nq::result::unrecoverable:
        throw nq::unrecoverable_error("", result);
    default:
        throw nq::unknown_error(result);
    }
}

void call_capability(nq::call_handle const& handle, std::uint32_t command_id, void* block) {
    call(handle.get(), command_id, block);
}

} // namespace vorn::mero::internal
