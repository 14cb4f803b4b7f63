#pragma once

// The version of the library whose headers these are. Programs built with one minor version run with every patch
// version of it; until 1.0 not with another minor version.

#define VORN_MERO_VERSION_MAJOR 0
#define VORN_MERO_VERSION_MINOR 1
#define VORN_MERO_VERSION_PATCH 0

/// One number to compare: 10000 for each major version, 100 for each minor one, 1 for each patch.
#define VORN_MERO_VERSION (VORN_MERO_VERSION_MAJOR * 10000 + VORN_MERO_VERSION_MINOR * 100 + VORN_MERO_VERSION_PATCH)

namespace vorn::mero {

/// The value of `VORN_MERO_VERSION_MAJOR`.
inline constexpr int version_major = VORN_MERO_VERSION_MAJOR;

/// The value of `VORN_MERO_VERSION_MINOR`.
inline constexpr int version_minor = VORN_MERO_VERSION_MINOR;

/// The value of `VORN_MERO_VERSION_PATCH`.
inline constexpr int version_patch = VORN_MERO_VERSION_PATCH;

/// The value of `VORN_MERO_VERSION`.
inline constexpr int version = VORN_MERO_VERSION;

} // namespace vorn::mero
