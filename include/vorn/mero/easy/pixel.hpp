#pragma once

#include <array>
#include <cstdint>

namespace vorn::mero::easy {

/// A format of images: OpenCL's numbers for the order and the type of the channels, what the host has for a pixel, and
/// for a channel of a fill's colour.
template <std::uint32_t Order, std::uint32_t Type, class Pixel, class Fill>
struct pixel_format {
    /// A pixel in host memory.
    using pixel = Pixel;
    using color = std::array<Fill, 4>; ///< Red, green, blue, alpha.
    /// The channels, a `cl_channel_order`.
    static constexpr std::uint32_t order = Order;
    /// What a channel is, a `cl_channel_type`.
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
/// Red: 8 bits for 0 to 1.
struct r8 : detail::r<0x10D2, std::uint8_t, float> {};
/// Red, green: each 8 bits for 0 to 1.
struct rg8 : detail::rg<0x10D2, std::uint8_t, float> {};
/// Red, green, blue, alpha: each 8 bits for 0 to 1.
struct rgba8 : detail::rgba<0x10D2, std::uint8_t, float> {};
/// Blue, green, red, alpha: each 8 bits for 0 to 1.
struct bgra8 : pixel_format<0x10B6, 0x10D2, std::array<std::uint8_t, 4>, float> {};
/// Red: 16 bits for 0 to 1.
struct r16 : detail::r<0x10D3, std::uint16_t, float> {};
/// Red, green: each 16 bits for 0 to 1.
struct rg16 : detail::rg<0x10D3, std::uint16_t, float> {};
/// Red, green, blue, alpha: each 16 bits for 0 to 1.
struct rgba16 : detail::rgba<0x10D3, std::uint16_t, float> {};
/// Red, green, blue, alpha: each 8 bits for -1 to 1.
struct rgba8_snorm : detail::rgba<0x10D0, std::int8_t, float> {};
/// Red, green, blue, alpha: each 16 bits for -1 to 1.
struct rgba16_snorm : detail::rgba<0x10D1, std::int16_t, float> {};

// Integers, signed (i) and unsigned (u).
/// Red: signed integer of 8 bits.
struct r8i : detail::r<0x10D7, std::int8_t, std::int32_t> {};
/// Red, green: signed integers of 8 bits.
struct rg8i : detail::rg<0x10D7, std::int8_t, std::int32_t> {};
/// Red, green, blue, alpha: signed integers of 8 bits.
struct rgba8i : detail::rgba<0x10D7, std::int8_t, std::int32_t> {};
/// Red: signed integer of 16 bits.
struct r16i : detail::r<0x10D8, std::int16_t, std::int32_t> {};
/// Red, green: signed integers of 16 bits.
struct rg16i : detail::rg<0x10D8, std::int16_t, std::int32_t> {};
/// Red, green, blue, alpha: signed integers of 16 bits.
struct rgba16i : detail::rgba<0x10D8, std::int16_t, std::int32_t> {};
/// Red: signed integer of 32 bits.
struct r32i : detail::r<0x10D9, std::int32_t, std::int32_t> {};
/// Red, green: signed integers of 32 bits.
struct rg32i : detail::rg<0x10D9, std::int32_t, std::int32_t> {};
/// Red, green, blue, alpha: signed integers of 32 bits.
struct rgba32i : detail::rgba<0x10D9, std::int32_t, std::int32_t> {};
/// Red: unsigned integer of 8 bits.
struct r8u : detail::r<0x10DA, std::uint8_t, std::uint32_t> {};
/// Red, green: unsigned integers of 8 bits.
struct rg8u : detail::rg<0x10DA, std::uint8_t, std::uint32_t> {};
/// Red, green, blue, alpha: unsigned integers of 8 bits.
struct rgba8u : detail::rgba<0x10DA, std::uint8_t, std::uint32_t> {};
/// Red: unsigned integer of 16 bits.
struct r16u : detail::r<0x10DB, std::uint16_t, std::uint32_t> {};
/// Red, green: unsigned integers of 16 bits.
struct rg16u : detail::rg<0x10DB, std::uint16_t, std::uint32_t> {};
/// Red, green, blue, alpha: unsigned integers of 16 bits.
struct rgba16u : detail::rgba<0x10DB, std::uint16_t, std::uint32_t> {};
/// Red: unsigned integer of 32 bits.
struct r32u : detail::r<0x10DC, std::uint32_t, std::uint32_t> {};
/// Red, green: unsigned integers of 32 bits.
struct rg32u : detail::rg<0x10DC, std::uint32_t, std::uint32_t> {};
/// Red, green, blue, alpha: unsigned integers of 32 bits.
struct rgba32u : detail::rgba<0x10DC, std::uint32_t, std::uint32_t> {};

// Floating-point numbers; those of 16 bits are the bits of a half to the host.
/// Red: floating-point number of 16 bits.
struct r16f : detail::r<0x10DD, std::uint16_t, float> {};
/// Red, green: floating-point numbers of 16 bits.
struct rg16f : detail::rg<0x10DD, std::uint16_t, float> {};
/// Red, green, blue, alpha: floating-point numbers of 16 bits.
struct rgba16f : detail::rgba<0x10DD, std::uint16_t, float> {};
/// Red: floating-point number of 32 bits.
struct r32f : detail::r<0x10DE, float, float> {};
/// Red, green: floating-point numbers of 32 bits.
struct rg32f : detail::rg<0x10DE, float, float> {};
/// Red, green, blue, alpha: floating-point numbers of 32 bits.
struct rgba32f : detail::rgba<0x10DE, float, float> {};

} // namespace vorn::mero::easy
