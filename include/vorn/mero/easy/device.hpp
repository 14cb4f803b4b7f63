#pragma once

#include <vorn/mero/easy/error.hpp>
#include <vorn/mero/easy/versions.hpp>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdlib>
#include <string>
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

template <int Version>
bool is_meant(typename api<Version>::device const& device, std::size_t number, std::string const& text) {
    std::string const wanted = lower_case(text);
    auto const in = [&wanted](std::string const& name) { return lower_case(name).find(wanted) != std::string::npos; };
    return wanted == std::to_string(number) || wanted == type_name<Version>(device) || in(device.name()) ||
           in(device.get_platform().name());
}

} // namespace detail

/// The devices that offer a version, a line each, numbered from 0 in the order of `get_all_devices`: for `--help`.
template <int Version = default_version>
[[nodiscard]] std::string list_devices() {
    std::string lines;
    std::size_t number = 0;
    for (auto const& device : api<Version>::get_all_devices()) {
        lines += detail::joined({std::to_string(number++), ": ", device.get_platform().name(), ": ", device.name(),
                                 " (", detail::type_name<Version>(device), ")\n"});
    }
    return lines;
}

/// The devices that a text means and that `accept` returns true for, in the order of `get_all_devices`; maybe none. A
/// text means a number of `list_devices`, a type (`cpu`, `gpu`, `accelerator`), or a part of the device's name or of
/// its platform's, in any case. An empty text means all.
template <int Version = default_version, class Accept>
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

/// The first device that a text means and that `accept` returns true for, see `find_devices`. Throws `no_device` with a
/// list of the devices when there is none.
template <int Version = default_version, class Accept>
[[nodiscard]] typename api<Version>::device find_device(std::string const& text, Accept&& accept) {
    auto found = find_devices<Version>(text, accept);
    if (!found.empty()) {
        return std::move(found.front());
    }
    std::string const there = list_devices<Version>();
    if (there.empty()) {
        throw no_device("There is no OpenCL device. NQ_BRIDGE_VERBOSE=1 in the environment says why.");
    }
    throw no_device(detail::joined({"No OpenCL device ", text.empty() ? "has what is needed" : "fits '", text,
                                    text.empty() ? "" : "'", ". There are:\n", there,
                                    "NQ_BRIDGE_VERBOSE=1 in the environment says why others are missing."}));
}

/// The first device that a text means, as above.
template <int Version = default_version>
[[nodiscard]] typename api<Version>::device find_device(std::string const& text = {}) {
    return find_device<Version>(text, [](typename api<Version>::device const&) { return true; });
}

/// The device that the environment variable MERO_DEVICE means, in the sense of `find_device`; the first without it.
template <int Version = default_version>
[[nodiscard]] typename api<Version>::device default_device() {
    char const* const text = std::getenv("MERO_DEVICE");
    return find_device<Version>(std::string(text != nullptr ? text : ""));
}

} // namespace vorn::mero::easy
