#include "platform.hpp"

#include "guards.hpp"
#include "loader.hpp"

#include <charconv>

namespace nq::bridge {
namespace {

// Only an implementation with cl_khr_icd starts its objects with the address of its dispatch table. ocl-icd demands
// that the platform lists the extension, the Khronos loader that it answers for the suffix.
bool has_dispatch_table(std::string const& extensions, std::string const& icd_suffix) {
    return (" " + extensions + " ").find(" cl_khr_icd ") != std::string::npos || !icd_suffix.empty();
}

} // namespace

version_number parse_version(std::string_view text) noexcept {
    constexpr std::string_view prefix = "OpenCL ";
    if (!text.starts_with(prefix)) {
        return 0;
    }
    version_number major = 0;
    version_number minor = 0;
    char const* const end = text.data() + text.size();
    auto const dot = std::from_chars(text.data() + prefix.size(), end, major);
    if (dot.ec != std::errc{} || dot.ptr == end || *dot.ptr != '.' ||
        std::from_chars(dot.ptr + 1, end, minor).ec != std::errc{}) {
        return 0;
    }
    return major * 100 + minor;
}

bool reaches(platform const& where, entry_point const& entry) noexcept {
    void* const function = slot(loaded(), entry.slot);
    if (where.table == nullptr) {
        return function != nullptr;
    }
    if (function == nullptr || where.version < entry.since) {
        return false;
    }
    void* const target = slot(*where.table, entry.slot);
    // A slot that points back at the loader would call itself forever.
    return target != nullptr && !(where.behind_loader && target == function);
}

platform describe(cl_platform_id id) {
    functions const& library = loaded();
    auto const text = [&](cl_platform_info name) { return info_text(library.clGetPlatformInfo, id, name); };
    platform made{library, id, parse_version(text(CL_PLATFORM_VERSION)), text(CL_PLATFORM_NAME), nullptr, false, true};
    if (has_dispatch_table(text(CL_PLATFORM_EXTENSIONS), text(CL_PLATFORM_ICD_SUFFIX_KHR))) {
        made.table = dispatch_table(id);
        // An implementation's table leads to its own functions, a loader's functions to another library's.
        made.behind_loader =
            made.table != nullptr && !is_in_library(reinterpret_cast<void*>(made.table->clGetPlatformInfo));
    }
    for (entry_point const& entry : entry_points()) {
        if (!reaches(made, entry)) {
            slot(made.cl, entry.slot) = nullptr;
        }
    }
    install_guards(made.name, made.cl);
    return made;
}

} // namespace nq::bridge
