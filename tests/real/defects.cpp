#include "support.hpp"

namespace real {

using enum common::error_code;

std::vector<defect> const& known_defects() {
    static std::vector<defect> const all{
        {"pocl", "image commands, 1d_buffer", success, "fills of such images crash, and none is ever deleted"},
        {"pocl", "image maps, 1d_buffer", success, "such an image is never deleted"},
        {"rusticl", "image commands, 1d_buffer", success, "what is written does not reach the buffer"},
        {"rusticl", "image maps, 1d_buffer", success, "what is written does not reach the buffer"},
        {"rusticl", "image maps, 1d_array", success, "maps the wrong layer"},
        {"rusticl", "native kernels", invalid_operation, "has no native kernels"},
        {"pocl", "pipes", invalid_operation, "has no pipes"},
        {"rusticl", "pipes", invalid_operation, "has no pipes"},
        {"oclgrind", "pipes", invalid_operation, "has no pipes"},
    };
    return all;
}

} // namespace real
