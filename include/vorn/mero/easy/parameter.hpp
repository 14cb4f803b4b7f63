#pragma once

// How the source of a kernel declares an argument, and what values look like beside that.

#include <vorn/mero/easy/error.hpp>
#include <vorn/mero/easy/versions.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace vorn::mero::easy::detail {

enum class scalar_kind { unknown, integer, floating };

/// A number or a vector of numbers, as C++ or OpenCL has it; of `unknown` kind only the size is known.
struct value_shape {
    scalar_kind kind;
    std::size_t scalar_size;
    std::size_t size;
    bool is_signed = false;
};

template <class Scalar>
constexpr value_shape shape_of(std::size_t size) noexcept {
    constexpr scalar_kind kind = std::is_floating_point<Scalar>::value ? scalar_kind::floating
                                 : std::is_integral<Scalar>::value || std::is_enum<Scalar>::value
                                     ? scalar_kind::integer
                                     : scalar_kind::unknown;
    return {kind, sizeof(Scalar), size, std::is_signed<Scalar>::value || std::is_enum<Scalar>::value};
}

template <class T, class = void>
struct shape {
    static constexpr value_shape value = shape_of<T>(sizeof(T));
};

template <class T, std::size_t Count>
struct shape<std::array<T, Count>> {
    static constexpr value_shape value = shape_of<T>(sizeof(std::array<T, Count>));
};

template <class T, std::size_t Count>
struct shape<T[Count]> {
    static constexpr value_shape value = shape_of<T>(sizeof(T) * Count);
};

/// The vectors of `CL/cl_platform.h`: unions whose member `s` has the numbers.
template <class T>
struct shape<T, std::enable_if_t<std::is_union<T>::value && std::is_array<decltype(T::s)>::value>> {
    static constexpr value_shape value = shape_of<std::remove_extent_t<decltype(T::s)>>(sizeof(T));
};

/// What an OpenCL type name means, "float4" or "uint"; nothing for a name that is no number's.
[[gnu::noinline]] inline std::optional<value_shape> shape_named(std::string_view name) {
    static constexpr std::array<std::pair<std::string_view, value_shape>, 12> scalars{{
        {"char", {scalar_kind::integer, 1, 1}},
        {"uchar", {scalar_kind::integer, 1, 1}},
        {"bool", {scalar_kind::integer, 1, 1}},
        {"short", {scalar_kind::integer, 2, 2}},
        {"ushort", {scalar_kind::integer, 2, 2}},
        {"int", {scalar_kind::integer, 4, 4}},
        {"uint", {scalar_kind::integer, 4, 4}},
        {"long", {scalar_kind::integer, 8, 8}},
        {"ulong", {scalar_kind::integer, 8, 8}},
        {"half", {scalar_kind::unknown, 2, 2}},
        {"float", {scalar_kind::floating, 4, 4}},
        {"double", {scalar_kind::floating, 8, 8}},
    }};
    std::string_view const stem = name.substr(0, name.find_first_of("0123456789"));
    std::string_view const lanes = name.substr(stem.size());
    std::size_t const count = lanes.empty()                  ? 1
                              : lanes == "2"                 ? 2
                              : lanes == "3" || lanes == "4" ? 4
                              : lanes == "8"                 ? 8
                              : lanes == "16"                ? 16
                                                             : 0;
    for (auto const& [scalar, one] : scalars) {
        if (stem == scalar && count != 0) {
            return value_shape{one.kind, one.scalar_size, one.scalar_size * count};
        }
    }
    return std::nullopt;
}

/// What an argument is, as far as the host must tell it apart.
enum class argument_kind { unknown, value, pointer, local, image, sampler, pipe, queue };

enum class address_space { unknown, global, constant, local, private_ };

/// Whether it is an image's type, "image2d_t" or a sibling; some compilers put the access before it.
[[gnu::noinline]] inline bool names_image(std::string_view type) noexcept {
    constexpr std::array<std::string_view, 12> images{"image1d_t",
                                                      "image1d_buffer_t",
                                                      "image1d_array_t",
                                                      "image2d_t",
                                                      "image2d_array_t",
                                                      "image2d_depth_t",
                                                      "image2d_msaa_t",
                                                      "image2d_array_depth_t",
                                                      "image2d_array_msaa_t",
                                                      "image2d_msaa_depth_t",
                                                      "image2d_array_msaa_depth_t",
                                                      "image3d_t"};
    type.remove_prefix(type.rfind(' ') + 1); // all of it without a blank
    return std::find(images.begin(), images.end(), type) != images.end();
}

inline bool names_pointer(std::string_view type) noexcept { return !type.empty() && type.back() == '*'; }

inline argument_kind kind_named(std::string_view type, address_space space, bool is_pipe) {
    return space == address_space::unknown                           ? argument_kind::unknown
           : is_pipe                                                 ? argument_kind::pipe
           : names_image(type)                                       ? argument_kind::image
           : type == "sampler_t"                                     ? argument_kind::sampler
           : type == "queue_t"                                       ? argument_kind::queue
           : space == address_space::local                           ? argument_kind::local
           : space != address_space::private_ || names_pointer(type) ? argument_kind::pointer
                                                                     : argument_kind::value;
}

/// What decides whether an argument fits, as one number: two that are equal fit.
constexpr std::uint64_t form_of(argument_kind kind, value_shape const& shape) noexcept {
    std::uint64_t const size = kind == argument_kind::value ? shape.size : shape.scalar_size;
    return size << 16U | static_cast<std::uint64_t>(shape.kind) << 8U | static_cast<std::uint64_t>(kind);
}

/// What the implementation tells of an argument; of `unknown` kind where it tells nothing.
struct parameter {
    parameter() = default;
    [[gnu::noinline]] parameter(std::string its_name, std::string its_type, address_space space, bool is_pipe)
        : name(std::move(its_name)), type(std::move(its_type)), kind(kind_named(type, space, is_pipe)),
          wanted(shape_named(std::string_view(type).substr(0, type.size() - (names_pointer(type) ? 1 : 0)))),
          form(wanted ? form_of(kind, *wanted) : 0) {}

    std::string name;
    std::string type;
    argument_kind kind = argument_kind::unknown;
    std::optional<value_shape> wanted; ///< Of the value, or of the elements that a pointer names; if it is a number's.
    std::uint64_t form = 0; ///< `form_of` what is wanted; 0, which fits nothing at once, if that is not known.
};

/// The parameters of a kernel, without descriptions where the implementation keeps none.
template <int Version>
std::vector<parameter> parameters_of(typename api<Version>::kernel const& kernel) {
    std::vector<parameter> parameters(kernel.num_args());
    if constexpr (Version >= 120) {
        constexpr unsigned first_space = 0x119B; // CL_KERNEL_ARG_ADDRESS_GLOBAL, _LOCAL, _CONSTANT, _PRIVATE
        constexpr unsigned pipe_qualifier = 1U << 3U;
        constexpr std::array<address_space, 4> spaces{address_space::global, address_space::local,
                                                      address_space::constant, address_space::private_};
        try {
            for (unsigned i = 0; i != parameters.size(); ++i) {
                auto const space = static_cast<unsigned>(kernel.argument_address_qualifier(i)) - first_space;
                bool const is_pipe =
                    Version >= 200 && (static_cast<unsigned>(kernel.argument_type_qualifier(i)) & pipe_qualifier) != 0;
                parameters[i] = parameter(kernel.argument_name(i), kernel.argument_type_name(i),
                                          space < spaces.size() ? spaces[space] : address_space::unknown, is_pipe);
            }
        } catch (common::error const&) { // a program from a binary, for one: the rest stays unknown
        }
    }
    return parameters;
}

inline char const* name_of(scalar_kind kind) noexcept {
    return kind == scalar_kind::floating  ? "a floating-point number"
           : kind == scalar_kind::integer ? "an integer"
                                          : "a value";
}

inline char const* name_of(argument_kind kind) noexcept {
    constexpr std::array<char const*, 8> names{"an object", "a value",   "a pointer", "local memory",
                                               "an image",  "a sampler", "a pipe",    "a queue of the device"};
    return names[static_cast<unsigned>(kind)];
}

inline char const* remedy_for(argument_kind wanted) noexcept {
    constexpr std::array<char const*, 8> remedies{"pass what the source declares",
                                                  "pass a value of that type",
                                                  "pass an array",
                                                  "pass ez::local",
                                                  "pass one made by gpu.image",
                                                  "pass one made by gpu.sampler",
                                                  "pass one of the context",
                                                  "pass one of the context"};
    return remedies[static_cast<unsigned>(wanted)];
}

/// Whether both are known, and not the same.
constexpr bool differ(scalar_kind one, scalar_kind other) noexcept {
    return one != other && one != scalar_kind::unknown && other != scalar_kind::unknown;
}

template <class Scalar>
Scalar scalar_at(void const* value, std::size_t index) noexcept {
    Scalar scalar;
    std::memcpy(&scalar, static_cast<unsigned char const*>(value) + index * sizeof scalar, sizeof scalar);
    return scalar;
}

inline std::string scalar_text(value_shape const& shape, void const* value, std::size_t index) {
    if (shape.kind == scalar_kind::floating) {
        std::array<char, 32> text{};
        double const number = shape.scalar_size == sizeof(float) ? static_cast<double>(scalar_at<float>(value, index))
                                                                 : scalar_at<double>(value, index);
        std::snprintf(text.data(), text.size(), "%g", number);
        return text.data();
    }
    switch (shape.scalar_size) {
    case 1:
        return shape.is_signed ? std::to_string(scalar_at<std::int8_t>(value, index))
                               : std::to_string(scalar_at<std::uint8_t>(value, index));
    case 2:
        return shape.is_signed ? std::to_string(scalar_at<std::int16_t>(value, index))
                               : std::to_string(scalar_at<std::uint16_t>(value, index));
    case 4:
        return shape.is_signed ? std::to_string(scalar_at<std::int32_t>(value, index))
                               : std::to_string(scalar_at<std::uint32_t>(value, index));
    default:
        return shape.is_signed ? std::to_string(scalar_at<std::int64_t>(value, index))
                               : std::to_string(scalar_at<std::uint64_t>(value, index));
    }
}

/// "the integer 8", "the vector {1, 2.5}" or "a value of 12 bytes".
[[gnu::cold, gnu::noinline]] inline std::string value_text(value_shape const& shape, void const* value) {
    bool const is_read = shape.kind != scalar_kind::unknown && shape.scalar_size <= sizeof(double);
    std::size_t const count = shape.size / shape.scalar_size;
    if (!is_read || count > 16) {
        return joined({"a value of ", std::to_string(shape.size), " bytes"});
    }
    if (count == 1) {
        return joined({shape.kind == scalar_kind::floating ? "the floating-point number " : "the integer ",
                       scalar_text(shape, value, 0)});
    }
    std::string text = "the vector {";
    for (std::size_t i = 0; i != count; ++i) {
        text += joined({i == 0 ? "" : ", ", scalar_text(shape, value, i)});
    }
    return text + "}";
}

} // namespace vorn::mero::easy::detail
