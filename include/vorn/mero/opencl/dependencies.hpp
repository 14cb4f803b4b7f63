#pragma once

// What the headers of this folder need, the same for every version. They do not include it themselves when an umbrella
// header reads them: it would see the macros of a version.

#include <nq/call_handle.hpp>
#include <nq/error.hpp>
#include <vorn/mero/common/error.hpp>
#include <vorn/mero/common/export.hpp>
#include <vorn/mero/internal/check_error.hpp>
#include <vorn/mero/internal/find_devices.hpp>
#include <vorn/mero/internal/handle.hpp>
#include <vorn/mero/internal/kept_pattern.hpp>
#include <vorn/mero/internal/lifetimebound.hpp>
#include <vorn/mero/internal/strings.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace vorn::mero {

/// An OpenCL version as one type, by its number: 100, 110, 120, 200, 210 or 220. Complete once the version's header is
/// included, see vorn/mero/opencl/api.hpp.
template <int Version>
struct api;

} // namespace vorn::mero
