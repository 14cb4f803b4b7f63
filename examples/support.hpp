#pragma once

// What several examples need besides their subject, and the convenient layer.

#include <vorn/mero/easy.hpp>

#include <cstring>
#include <string>

namespace example {

/// The value after an option on the command line, or `otherwise`.
inline std::string option(int count, char** arguments, char const* name, std::string const& otherwise) {
    for (int i = 1; i + 1 < count; ++i) {
        if (std::strcmp(arguments[i], name) == 0) {
            return arguments[i + 1];
        }
    }
    return otherwise;
}

} // namespace example
