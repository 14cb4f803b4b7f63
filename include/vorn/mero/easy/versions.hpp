#pragma once

#include <vorn/mero/opencl.hpp>

#include <string>
#include <type_traits>

namespace vorn::mero::easy {

/// The OpenCL version of `session`, `array` and the other short names: 1.2, which every implementation of today offers.
inline constexpr int default_version = 120;

namespace detail {

template <class Api, class = void>
inline constexpr bool is_built = false;
template <class Api>
inline constexpr bool is_built<Api, std::void_t<decltype(Api::number)>> = true;

template <class Api, class Action>
void call_if_built(Action& action) {
    if constexpr (is_built<Api>) {
        action(Api{});
    }
}

/// "1.2" of 120.
inline std::string version_text(int version) {
    return {static_cast<char>('0' + version / 100), '.', static_cast<char>('0' + version / 10 % 10)};
}

} // namespace detail

/// Calls `action(api<100>{})` and so on for each OpenCL version that the library was built with, oldest first.
///
///     ez::for_each_version([](auto version) {
///         using api = decltype(version);
///         std::printf("%d: %zu devices\n", api::number, api::get_all_devices().size());
///     });
template <class Action>
void for_each_version(Action&& action) {
    detail::call_if_built<api<100>>(action);
    detail::call_if_built<api<110>>(action);
    detail::call_if_built<api<120>>(action);
    detail::call_if_built<api<200>>(action);
    detail::call_if_built<api<210>>(action);
    detail::call_if_built<api<220>>(action);
}

} // namespace vorn::mero::easy
