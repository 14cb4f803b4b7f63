#include "platform.hpp"

#include "guards.hpp"
#include "loader.hpp"

#include <charconv>

namespace nq::bridge {

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
    if (where.version < entry.since) {
        return false;
    }
    // Every object of an implementation starts with the address of its dispatch table.
    auto const& implementation = **reinterpret_cast<functions const* const*>(where.id);
    void* const target = slot(implementation, entry.slot);
    // A slot that points back at the loader would call itself forever.
    return target != nullptr && target != slot(loaded(), entry.slot);
}

platform describe(cl_platform_id id) {
    functions const& loader = loaded();
    platform made{loader, id, parse_version(info_text(loader.clGetPlatformInfo, id, CL_PLATFORM_VERSION)),
                  info_text(loader.clGetPlatformInfo, id, CL_PLATFORM_NAME), true};
    for (entry_point const& entry : entry_points()) {
        if (!reaches(made, entry)) {
            slot(made.cl, entry.slot) = nullptr;
        }
    }
    install_guards(made.name, made.cl);
    return made;
}

} // namespace nq::bridge
