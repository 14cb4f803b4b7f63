#include <nq/error.hpp>
#include <nq/types.hpp>

namespace nq {

nq_error::nq_error(std::string const& message, int code) : message_(message), code_(code) {}
nq_error::nq_error(nq_error const&) = default;
nq_error& nq_error::operator=(nq_error const&) = default;
nq_error::~nq_error() = default;
char const* nq_error::what() const noexcept { return message_.c_str(); }

recoverable_error::recoverable_error(std::string const& message, int code) : nq_error(message, code) {}
unrecoverable_error::unrecoverable_error(std::string const& message, int code) : nq_error(message, code) {}

invalid_command_id::invalid_command_id()
    : recoverable_error("Invalid command ID provided to capability call.", result::invalid_command_id) {}

unknown_error::unknown_error(int code) : unrecoverable_error("Unknown error code returned by libnq.", code) {}

} // namespace nq
