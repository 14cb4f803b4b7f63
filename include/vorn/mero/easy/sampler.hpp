#pragma once

#include <vorn/mero/easy/versions.hpp>

#include <cstdint>

namespace vorn::mero::easy {

/// What a kernel reads outside an image.
enum class address : std::uint32_t {
    none = 0x1130,   ///< Undefined: the kernel must stay inside.
    edge = 0x1131,   ///< The nearest pixel of the edge.
    zero = 0x1132,   ///< Zero, with alpha 1 if the format has no alpha.
    repeat = 0x1133, ///< The image again and again; normalized coordinates only.
    mirror = 0x1134, ///< The same, every other one mirrored. Since OpenCL 1.1.
};

/// How a kernel reads between pixels.
enum class filter : std::uint32_t {
    nearest = 0x1140, ///< The nearest pixel.
    linear = 0x1141,  ///< A mean of the pixels around; of floating-point formats.
};

/// What a kernel's coordinates count.
enum class coordinates {
    pixels,     ///< From 0 to the size of the image.
    normalized, ///< From 0 to 1.
};

/// How a kernel reads images: an argument, made by `session::sampler`.
///
///     auto const smooth = gpu.sampler(ez::address::edge, ez::filter::linear);
///     blur(ez::range(w, h), picture, smooth, result);
template <int Version>
using basic_sampler = typename api<Version>::sampler;

/// `basic_sampler` of the default version.
using sampler = basic_sampler<default_version>;

} // namespace vorn::mero::easy
