#pragma once

#include <array>
#include <cstdint>

namespace vorn::mero::easy {

/// A format of images: OpenCL's numbers for the order and the type of the channels, what the host has for a pixel, and
/// for a channel of a fill's colour.
template <std::uint32_t Order, std::uint32_t Type, class Pixel, class Fill>
struct pixel_format {
    using pixel = Pixel;
    using color = std::array<Fill, 4>; ///< Red, green, blue, alpha.
    static constexpr std::uint32_t order = Order;
    static constexpr std::uint32_t type = Type;
};

namespace detail {

template <std::uint32_t Type, class Channel, class Fill>
using r = pixel_format<0x10B0, Type, Channel, Fill>;
template <std::uint32_t Type, class Channel, class Fill>
using rg = pixel_format<0x10B2, Type, std::array<Channel, 2>, Fill>;
template <std::uint32_t Type, class Channel, class Fill>
using rgba = pixel_format<0x10B5, Type, std::array<Channel, 4>, Fill>;

} // namespace detail

// Integers that kernels read as floating-point numbers: from 0 to 1, or from -1 to 1 (snorm).
struct r8 : detail::r<0x10D2, std::uint8_t, float> {};
struct rg8 : detail::rg<0x10D2, std::uint8_t, float> {};
struct rgba8 : detail::rgba<0x10D2, std::uint8_t, float> {};
struct bgra8 : pixel_format<0x10B6, 0x10D2, std::array<std::uint8_t, 4>, float> {};
struct r16 : detail::r<0x10D3, std::uint16_t, float> {};
struct rg16 : detail::rg<0x10D3, std::uint16_t, float> {};
struct rgba16 : detail::rgba<0x10D3, std::uint16_t, float> {};
struct rgba8_snorm : detail::rgba<0x10D0, std::int8_t, float> {};
struct rgba16_snorm : detail::rgba<0x10D1, std::int16_t, float> {};

// Integers, signed (i) and unsigned (u).
struct r8i : detail::r<0x10D7, std::int8_t, std::int32_t> {};
struct rg8i : detail::rg<0x10D7, std::int8_t, std::int32_t> {};
struct rgba8i : detail::rgba<0x10D7, std::int8_t, std::int32_t> {};
struct r16i : detail::r<0x10D8, std::int16_t, std::int32_t> {};
struct rg16i : detail::rg<0x10D8, std::int16_t, std::int32_t> {};
struct rgba16i : detail::rgba<0x10D8, std::int16_t, std::int32_t> {};
struct r32i : detail::r<0x10D9, std::int32_t, std::int32_t> {};
struct rg32i : detail::rg<0x10D9, std::int32_t, std::int32_t> {};
struct rgba32i : detail::rgba<0x10D9, std::int32_t, std::int32_t> {};
struct r8u : detail::r<0x10DA, std::uint8_t, std::uint32_t> {};
struct rg8u : detail::rg<0x10DA, std::uint8_t, std::uint32_t> {};
struct rgba8u : detail::rgba<0x10DA, std::uint8_t, std::uint32_t> {};
struct r16u : detail::r<0x10DB, std::uint16_t, std::uint32_t> {};
struct rg16u : detail::rg<0x10DB, std::uint16_t, std::uint32_t> {};
struct rgba16u : detail::rgba<0x10DB, std::uint16_t, std::uint32_t> {};
struct r32u : detail::r<0x10DC, std::uint32_t, std::uint32_t> {};
struct rg32u : detail::rg<0x10DC, std::uint32_t, std::uint32_t> {};
struct rgba32u : detail::rgba<0x10DC, std::uint32_t, std::uint32_t> {};

// Floating-point numbers; those of 16 bits are the bits of a half to the host.
struct r16f : detail::r<0x10DD, std::uint16_t, float> {};
struct rg16f : detail::rg<0x10DD, std::uint16_t, float> {};
struct rgba16f : detail::rgba<0x10DD, std::uint16_t, float> {};
struct r32f : detail::r<0x10DE, float, float> {};
struct rg32f : detail::rg<0x10DE, float, float> {};
struct rgba32f : detail::rgba<0x10DE, float, float> {};

} // namespace vorn::mero::easy
