#include "opencl/wire.hpp"

namespace vorn::mero::VORN_MERO_NAMESPACE {

command::~command() = default;

} // namespace vorn::mero::VORN_MERO_NAMESPACE
