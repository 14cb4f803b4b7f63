#pragma once

#include <vorn/mero/opencl.hpp>

namespace vorn::mero::easy {

/// The OpenCL version of `session`, `array` and the other short names: 1.2, which every implementation of today offers.
inline constexpr int default_version = 120;

/// Calls `action(api<100>{})` and so on for each OpenCL version, oldest first.
///
///     ez::for_each_version([](auto version) {
///         using api = decltype(version);
///         std::printf("%d: %zu devices\n", api::number, api::get_all_devices().size());
///     });
template <class Action>
void for_each_version(Action&& action) {
    action(api<100>{});
    action(api<110>{});
    action(api<120>{});
    action(api<200>{});
    action(api<210>{});
    action(api<220>{});
}

} // namespace vorn::mero::easy
