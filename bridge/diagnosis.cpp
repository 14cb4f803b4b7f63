#include "diagnosis.hpp"

namespace nq::bridge {

void explain_discovery(machine const&, std::string const&) {}
void explain_fork(platform const&) noexcept {}

} // namespace nq::bridge
