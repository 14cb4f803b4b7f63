#include "support.hpp"

namespace real {

using enum common::error_code;

std::vector<defect> const& known_defects() {
    static std::vector<defect> const all{
        {"rusticl", "native kernels", invalid_operation, "has no native kernels"},
        {"pocl", "pipes", invalid_operation, "has no pipes"},
        {"rusticl", "pipes", invalid_operation, "has no pipes"},
        {"oclgrind", "pipes", invalid_operation, "has no pipes"},
    };
    return all;
}

} // namespace real
