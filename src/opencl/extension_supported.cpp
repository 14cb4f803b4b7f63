#include "opencl/perform.hpp"

#include "internal/extension_match.hpp"

namespace vorn::mero::internal {

bool extension_supported(VORN_MERO_NAMESPACE::device const& target, std::string const& name) {
    return matches_any_extension(target.extensions(), name);
}

} // namespace vorn::mero::internal
