#pragma once

// Several devices at once; a program that uses them includes this header beside `vorn/mero/easy.hpp`.

#include <vorn/mero/easy/session.hpp>

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace vorn::mero::easy {

/// A session for each of several devices. Those of one platform share a context, so that they may use each other's
/// arrays (`array.on(session)`) and wait for each other's events; those of several platforms have nothing in common.
///
///     ez::devices all;                           // what MERO_DEVICE means, else every device
///     ez::devices fast(ez::needs::fp64);
///     ez::devices halves(gpu.device().partition_equally(4));
///     for (auto const& each : all) { std::puts(each.device().name().c_str()); }
///
/// Throws `no_device` when there is none as asked for. A copy names the same sessions.
template <int Version>
class basic_devices {
public:
    /// @{
    /// The type of each session, and of its device.
    using session_type = basic_session<Version>;
    using device_type = typename session_type::device_type;
    /// @}

    /// The devices that the environment variable MERO_DEVICE means, see `find_devices`; all without it.
    basic_devices() : basic_devices(detail::text_of_environment()) {}

    /// The devices that the text means, see `find_devices`.
    explicit basic_devices(std::string const& text) : basic_devices(found(find_devices<Version>(text), text)) {}
    /// The same.
    explicit basic_devices(char const* text) : basic_devices(std::string(text)) {}
    /// Those of them that have what is needed.
    basic_devices(std::string const& text, needs what)
        : basic_devices(found(find_devices<Version>(text, what), text, what)) {}
    /// The devices that have what is needed.
    explicit basic_devices(needs what) : basic_devices(std::string(), what) {}

    /// The devices that `accept(device)` returns true for.
    template <class Accept, class = detail::accepts<Accept, device_type>>
    explicit basic_devices(Accept&& accept)
        : basic_devices(found(find_devices<Version>(std::string(), accept), std::string(), accept)) {}

    /// These devices, or sub-devices; a device that is listed twice has two queues.
    explicit basic_devices(std::vector<device_type> const& list) {
        if (list.empty()) {
            throw no_device("The list of devices is empty: ask `find_devices`, or partition a device");
        }
        auto left = list;
        while (!left.empty()) {
            auto const platform = left.front().get_platform();
            auto const others = std::stable_partition(
                left.begin(), left.end(), [&](device_type const& each) { return each.get_platform() == platform; });
            std::vector<device_type> const together(left.begin(), others);
            add(together);
            left.erase(left.begin(), others);
        }
    }

    /// The number of devices.
    [[nodiscard]] std::size_t size() const noexcept { return sessions_.size(); }
    /// The session of a device; `index` must be less than `size()`. Devices of one platform stand side by side.
    [[nodiscard]] session_type const& operator[](std::size_t index) const noexcept { return sessions_[index]; }
    /// The first session.
    [[nodiscard]] auto begin() const noexcept { return sessions_.begin(); }
    /// Behind the last session.
    [[nodiscard]] auto end() const noexcept { return sessions_.end(); }

    /// The kernel of this name for each device, of a program that is built for each; otherwise as `session::build`.
    template <class... Source>
    [[nodiscard]] std::vector<basic_kernel<Version>> kernels(std::string const& name, Source const&... source) const {
        std::vector<basic_kernel<Version>> made;
        made.reserve(size());
        for (auto const& each : sessions_) {
            made.push_back(each.build(source...)[name]);
        }
        return made;
    }

private:
    template <class... Wanted>
    static std::vector<device_type> found(std::vector<device_type> list, Wanted const&... wanted) {
        if (list.empty()) {
            static_cast<void>(find_device<Version>(wanted...)); // throws, with what there is
        }
        return list;
    }

    void add(std::vector<device_type> const& together) {
        std::vector<device_type> once;
        for (auto const& each : together) {
            if (std::find(once.begin(), once.end(), each) == once.end()) {
                once.push_back(each);
            }
        }
        std::vector<typename api<Version>::context_property> const none;
        auto const context = create_context(none, once, nullptr, nullptr); // of the devices' namespace
        for (auto const& each : together) {
            sessions_.emplace_back(each, context);
        }
    }

    std::vector<session_type> sessions_;
};

/// `basic_devices` of the default version.
using devices = basic_devices<default_version>;

} // namespace vorn::mero::easy
