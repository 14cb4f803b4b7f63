#include "opencl/perform.hpp"

namespace vorn::mero::VORN_MERO_NAMESPACE {

command::~command() = default;

} // namespace vorn::mero::VORN_MERO_NAMESPACE
