#pragma once

#include <vorn/mero/easy/error.hpp>
#include <vorn/mero/easy/versions.hpp>

#include <algorithm>
#include <string>
#include <string_view>

namespace vorn::mero::easy {

/// What a program needs of a device; several with `|`:
///
///     ez::session gpu(ez::needs::images | ez::needs::fp64);         // within what MERO_DEVICE means
///     ez::basic_session<200> shared("intel", ez::needs::svm);
///     for (auto const& device : ez::find_devices(ez::needs::fp16)) { std::puts(device.name().c_str()); }
enum class needs : unsigned {
    nothing = 0,             ///< Nothing: any device will do.
    svm = 1U << 0U,          ///< Shared virtual memory, coarse-grained at least. Since OpenCL 2.0.
    images = 1U << 1U,       ///< Images and samplers.
    fp64 = 1U << 2U,         ///< `double` in kernels.
    fp16 = 1U << 3U,         ///< `half` in kernels, beyond loading and storing it.
    out_of_order = 1U << 4U, ///< Queues that run commands in any order.
    sub_groups = 1U << 5U,   ///< Sub-groups of a work-group; before OpenCL 2.1 as an extension.
    device_queue = 1U << 6U, ///< Queues on the device, for kernels that enqueue kernels. Since OpenCL 2.0.
    pipes = 1U << 7U,        ///< Pipes. Since OpenCL 2.0.
};

/// Both.
[[nodiscard]] constexpr needs operator|(needs one, needs other) noexcept {
    return static_cast<needs>(static_cast<unsigned>(one) | static_cast<unsigned>(other));
}

/// Whether `all` has `one`.
[[nodiscard]] constexpr bool contains(needs all, needs one) noexcept {
    return (static_cast<unsigned>(all) & static_cast<unsigned>(one)) == static_cast<unsigned>(one);
}

namespace detail {

struct need {
    needs flag;
    char const* name;
    int since; ///< The first version of `api` that has it.
};

inline constexpr need all_needs[] = {
    {needs::svm, "shared virtual memory (svm)", 200},
    {needs::images, "images", 100},
    {needs::fp64, "double precision (fp64)", 100},
    {needs::fp16, "half precision (fp16)", 100},
    {needs::out_of_order, "out-of-order queues (out_of_order)", 100},
    {needs::sub_groups, "sub-groups (sub_groups)", 100},
    {needs::device_queue, "queues on the device (device_queue)", 200},
    {needs::pipes, "pipes", 200},
};

template <class Device>
bool has_extension(Device const& device, std::string_view prefix) {
    auto const names = device.extensions();
    return std::any_of(names.begin(), names.end(),
                       [prefix](std::string const& each) { return each.compare(0, prefix.size(), prefix) == 0; });
}

template <int Version>
bool has(typename api<Version>::device const& device, needs what) {
    switch (what) {
    case needs::images:
        return device.image_support();
    case needs::fp64:
        return device.double_fp_round_to_nearest_supported() || has_extension(device, "cl_khr_fp64");
    case needs::fp16:
        return has_extension(device, "cl_khr_fp16");
    case needs::out_of_order:
        if constexpr (Version >= 200) {
            return device.host_out_of_order_command_queue_supported();
        } else {
            return device.out_of_order_command_queue_supported();
        }
    case needs::sub_groups:
        if constexpr (Version >= 210) {
            return device.max_num_sub_groups() != 0;
        } else {
            return has_extension(device, "cl_khr_subgroup") || has_extension(device, "cl_intel_subgroups");
        }
    default:
        if constexpr (Version >= 200) {
            return what == needs::svm            ? device.svm_coarse_grain_buffer_supported()
                   : what == needs::device_queue ? device.max_on_device_queues() != 0
                                                 : device.max_pipe_args() != 0;
        } else {
            return false;
        }
    }
}

} // namespace detail

/// What a device lacks of what is needed, for people: "images, double precision (fp64)". Empty if it has everything.
template <int Version = default_version>
[[nodiscard]] std::string lacks(typename api<Version>::device const& device, needs what) {
    std::string list;
    for (detail::need const& each : detail::all_needs) {
        bool found = !contains(what, each.flag);
        try {
            found = found || detail::has<Version>(device, each.flag);
        } catch (common::error const&) { // the device does not even know the question
        }
        if (!found) {
            list += detail::joined({list.empty() ? "" : ", ", each.name});
        }
    }
    return list;
}

namespace detail {

/// Throws `no_device` when no device of the version can have what is needed.
template <int Version>
void check_version(needs what) {
    for (need const& each : all_needs) {
        if (contains(what, each.flag) && each.since > Version) {
            std::string const since = std::to_string(each.since);
            throw no_device(joined({"OpenCL ", version_text(Version), " has no ", each.name, ": use version ", since,
                                    ", as in ez::basic_session<", since, ">"}));
        }
    }
}

} // namespace detail
} // namespace vorn::mero::easy
