#pragma once

// An OpenCL platform and the entry points of its implementation.

#include "entry_points.hpp"

#include <string>
#include <string_view>

namespace nq::bridge {

struct platform {
    functions cl; // the library's; null if the implementation lacks the entry point
    cl_platform_id id;
    version_number version;
    std::string name;
    functions const* table; // the implementation's own functions; null without cl_khr_icd
    bool behind_loader;     // the library's functions lead to the table's
    bool survives_fork;
};

/// The number in "OpenCL M.N ...", or 0.
version_number parse_version(std::string_view text) noexcept;

platform describe(cl_platform_id id);

/// Whether an entry point of the library reaches code of the platform's implementation.
bool reaches(platform const& where, entry_point const& entry) noexcept;

/// The reply of a text query of a platform or device, empty if it fails.
template <class Query, class Object>
std::string info_text(Query query, Object object, cl_uint name) {
    std::size_t size = 0;
    if (query(object, name, 0, nullptr, &size) != CL_SUCCESS || size == 0) {
        return {};
    }
    std::string text(size, '\0');
    if (query(object, name, size, text.data(), nullptr) != CL_SUCCESS) {
        return {};
    }
    text.resize(text.find('\0') == std::string::npos ? size : text.find('\0'));
    return text;
}

} // namespace nq::bridge
