#pragma once

#include <vorn/mero/easy/error.hpp>
#include <vorn/mero/easy/needs.hpp>
#include <vorn/mero/easy/versions.hpp>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdlib>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace vorn::mero::easy {

namespace detail {

inline std::string lower_case(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char each) { return static_cast<char>(std::tolower(each)); });
    return text;
}

/// The name of a device's type, "device" for one that has none.
template <int Version>
char const* type_name(typename api<Version>::device const& device) {
    return device.is_type_gpu()           ? "gpu"
           : device.is_type_accelerator() ? "accelerator"
           : device.is_type_cpu()         ? "cpu"
                                          : "device";
}

/// Whether a name contains a text of lower-case letters.
[[gnu::noinline]] inline bool has_text(std::string name, std::string const& wanted) {
    return lower_case(std::move(name)).find(wanted) != std::string::npos;
}

template <int Version>
bool is_meant(typename api<Version>::device const& device, std::size_t number, std::string const& text) {
    if (text.find_first_not_of("0123456789") == std::string::npos) {
        return text == std::to_string(number);
    }
    std::string const wanted = lower_case(text);
    auto const platform = device.get_platform();
    return wanted == type_name<Version>(device) || has_text(device.name(), wanted) ||
           has_text(platform.name(), wanted) || has_text(platform.version(), wanted); // PoCL has its name there only
}

/// "0: rusticl: llvmpipe (cpu)".
template <int Version>
std::string line_of(typename api<Version>::device const& device, std::size_t number) {
    return joined({std::to_string(number), ": ", device.get_platform().name(), ": ", device.name(), " (",
                   type_name<Version>(device), ")"});
}

template <class Accept, class Device>
using accepts = std::enable_if_t<std::is_invocable_r<bool, Accept&, Device const&>::value>;

/// Throws `no_device`, and says of each device why it is not taken: because of the text, or because of `why`, which
/// returns a text.
template <int Version, class Why>
[[noreturn, gnu::cold, gnu::noinline]] void refuse_all(std::string const& text, std::string const& asked_for,
                                                       Why const& why) {
    std::string there;
    std::size_t number = 0;
    for (auto const& device : api<Version>::get_all_devices()) {
        bool const meant = text.empty() || is_meant<Version>(device, number, text);
        there += joined({line_of<Version>(device, number++), ": ", meant ? why(device) : "another name", "\n"});
    }
    if (there.empty()) {
        throw no_device(joined({"There is no OpenCL device. None offers OpenCL ", version_text(Version),
                                "; NQ_BRIDGE_VERBOSE=1 in the environment says why."}));
    }
    throw no_device(joined({"No OpenCL device ", text.empty() ? "" : "fits '", text, text.empty() ? "" : "'",
                            text.empty() || asked_for.empty() ? "" : " and ", asked_for, ". There are:\n", there,
                            "NQ_BRIDGE_VERBOSE=1 in the environment says why others are missing."}));
}

/// A variable of the environment; null without it, and in a program with another user's rights.
inline char const* trusted_environment(char const* name) {
#ifdef _WIN32
    return std::getenv(name); // no program has them there
#else
    return ::secure_getenv(name);
#endif
}

/// What MERO_DEVICE says; empty without it.
inline std::string text_of_environment() {
    char const* const text = trusted_environment("MERO_DEVICE");
    return text != nullptr ? text : "";
}

} // namespace detail

/// The devices that offer a version, a line each, numbered from 0 in the order of `get_all_devices`: for `--help`.
template <int Version = default_version>
[[nodiscard]] std::string list_devices() {
    std::string lines;
    std::size_t number = 0;
    for (auto const& device : api<Version>::get_all_devices()) {
        lines += detail::line_of<Version>(device, number++) + "\n";
    }
    return lines;
}

/// The devices that a text means and that `accept` returns true for, in the order of `get_all_devices`; maybe none. A
/// text means a number of `list_devices`, a type (`cpu`, `gpu`, `accelerator`), or a part of the device's name or of
/// its platform's name or version ("pocl"), in any case. An empty text means all.
template <int Version = default_version, class Accept, class = detail::accepts<Accept, typename api<Version>::device>>
[[nodiscard]] std::vector<typename api<Version>::device> find_devices(std::string const& text, Accept&& accept) {
    std::vector<typename api<Version>::device> found;
    std::size_t number = 0;
    for (auto const& device : api<Version>::get_all_devices()) {
        bool const meant = text.empty() || detail::is_meant<Version>(device, number, text);
        if (meant && accept(device)) {
            found.push_back(device);
        }
        ++number;
    }
    return found;
}

/// The devices that a text means, as above.
template <int Version = default_version>
[[nodiscard]] std::vector<typename api<Version>::device> find_devices(std::string const& text = {}) {
    return find_devices<Version>(text, [](typename api<Version>::device const&) { return true; });
}

/// The devices that a text means and that have what is needed. Throws `no_device` when none of this version can have
/// it.
template <int Version = default_version>
[[nodiscard]] std::vector<typename api<Version>::device> find_devices(std::string const& text, needs what) {
    detail::check_version<Version>(what);
    return find_devices<Version>(
        text, [what](typename api<Version>::device const& each) { return lacks<Version>(each, what).empty(); });
}

/// The devices that have what is needed.
template <int Version = default_version>
[[nodiscard]] std::vector<typename api<Version>::device> find_devices(needs what) {
    return find_devices<Version>(std::string(), what);
}

/// The first device that a text means and that `accept` returns true for, see `find_devices`. Throws `no_device` with a
/// list of the devices when there is none.
template <int Version = default_version, class Accept, class = detail::accepts<Accept, typename api<Version>::device>>
[[nodiscard]] typename api<Version>::device find_device(std::string const& text, Accept&& accept) {
    auto found = find_devices<Version>(text, accept);
    if (found.empty()) {
        detail::refuse_all<Version>(text, "is accepted", [](auto const&) { return "not accepted by the program"; });
    }
    return std::move(found.front());
}

/// The first device that a text means, as above.
template <int Version = default_version>
[[nodiscard]] typename api<Version>::device find_device(std::string const& text = {}) {
    auto found = find_devices<Version>(text);
    if (found.empty()) {
        detail::refuse_all<Version>(text, "", [](auto const&) { return ""; });
    }
    return std::move(found.front());
}

/// The first device that a text means and that has what is needed. Throws `no_device` when there is none: the message
/// says what each device lacks, or which OpenCL version to use.
template <int Version = default_version>
[[nodiscard]] typename api<Version>::device find_device(std::string const& text, needs what) {
    auto found = find_devices<Version>(text, what);
    if (found.empty()) {
        detail::refuse_all<Version>(text, "has what is needed",
                                    [what](auto const& each) { return "lacks " + lacks<Version>(each, what); });
    }
    return std::move(found.front());
}

/// The first device that has what is needed.
template <int Version = default_version>
[[nodiscard]] typename api<Version>::device find_device(needs what) {
    return find_device<Version>(std::string(), what);
}

/// The device that the environment variable MERO_DEVICE means, in the sense of `find_device`; the first without it.
template <int Version = default_version>
[[nodiscard]] typename api<Version>::device default_device() {
    return find_device<Version>(detail::text_of_environment());
}

/// The first device that MERO_DEVICE means and that has what is needed.
template <int Version = default_version>
[[nodiscard]] typename api<Version>::device default_device(needs what) {
    return find_device<Version>(detail::text_of_environment(), what);
}

} // namespace vorn::mero::easy
