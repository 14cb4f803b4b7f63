#include "internal/call.hpp"

#include <nq/error.hpp>

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

} // namespace vorn::mero::internal
