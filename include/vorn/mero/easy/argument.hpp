#pragma once

// Whether a value fits what the source of a kernel declares of an argument.

#include <vorn/mero/easy/array.hpp>
#include <vorn/mero/easy/error.hpp>

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace vorn::mero::easy {

/// Local memory for a kernel argument.
template <class T>
struct local {
    /// Room for that many elements of `T`.
    explicit constexpr local(std::size_t elements) noexcept : count(elements) {}

    std::size_t count; ///< In elements.
};

namespace detail {

enum class scalar_kind { unknown, integer, floating };

/// A number or a vector of numbers, as C++ or OpenCL has it; of `unknown` kind only the size is known.
struct value_shape {
    scalar_kind kind;
    std::size_t scalar_size;
    std::size_t size;
};

template <class T>
constexpr scalar_kind kind_of() noexcept {
    return std::is_floating_point<T>::value                       ? scalar_kind::floating
           : std::is_integral<T>::value || std::is_enum<T>::value ? scalar_kind::integer
                                                                  : scalar_kind::unknown;
}

template <class T>
struct shape {
    static constexpr value_shape value{kind_of<T>(), sizeof(T), sizeof(T)};
};

template <class T, std::size_t Count>
struct shape<std::array<T, Count>> {
    static constexpr value_shape value{kind_of<T>(), sizeof(T), sizeof(T) * Count};
};

/// What an OpenCL type name means, "float4" or "uint"; nothing for a name that is no number's.
inline std::optional<value_shape> shape_named(std::string const& name) {
    static std::array<std::pair<char const*, value_shape>, 12> const scalars{{
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
    for (auto const& [scalar, one] : scalars) {
        if (name == scalar) {
            return one;
        }
        for (std::size_t const lanes : {2U, 3U, 4U, 8U, 16U}) {
            if (name == scalar + std::to_string(lanes)) {
                return value_shape{one.kind, one.scalar_size, one.scalar_size * (lanes == 3 ? 4 : lanes)};
            }
        }
    }
    return std::nullopt;
}

enum class address_space { unknown, global, constant, local, private_ };

/// What the implementation tells of an argument; of `unknown` address space where it tells nothing.
struct parameter {
    parameter() = default;
    parameter(std::string its_name, std::string its_type, address_space its_space)
        : name(std::move(its_name)), type(std::move(its_type)), space(its_space),
          takes_pointer(!type.empty() && type.back() == '*'),
          wanted(shape_named(takes_pointer ? type.substr(0, type.size() - 1) : type)) {}

    std::string name;
    std::string type;
    address_space space = address_space::unknown;
    bool takes_pointer = false;
    std::optional<value_shape> wanted; ///< Of the value, or of the elements that a pointer names; if it is a number's.
};

/// The parameters of a kernel, without descriptions where the implementation keeps none.
template <int Version>
std::vector<parameter> parameters_of(typename api<Version>::kernel const& kernel) {
    std::vector<parameter> parameters(kernel.num_args());
    if constexpr (Version >= 120) {
        constexpr unsigned first_space = 0x119B; // CL_KERNEL_ARG_ADDRESS_GLOBAL, _LOCAL, _CONSTANT, _PRIVATE
        constexpr std::array<address_space, 4> spaces{address_space::global, address_space::local,
                                                      address_space::constant, address_space::private_};
        try {
            for (unsigned i = 0; i != parameters.size(); ++i) {
                auto const space = static_cast<unsigned>(kernel.argument_address_qualifier(i)) - first_space;
                parameters[i] = parameter(kernel.argument_name(i), kernel.argument_type_name(i),
                                          space < spaces.size() ? spaces[space] : address_space::unknown);
            }
        } catch (common::opencl_error const&) { // a program from a binary, for one: the rest stays unknown
        }
    }
    return parameters;
}

/// Where an error is. The text is made when there is one, since every launch checks its arguments.
struct place {
    /// "kernel 'vadd', argument 3 'n' (uint)".
    std::string text() const {
        bool const is_named = !declared.name.empty();
        bool const is_typed = !declared.type.empty();
        return joined({"kernel '", kernel, "', argument ", std::to_string(index), is_named ? " '" : "", declared.name,
                       is_named ? "'" : "", is_typed ? " (" : "", declared.type, is_typed ? ")" : ""});
    }

    std::string const& kernel;
    unsigned index;
    parameter const& declared;
};

inline char const* name_of(scalar_kind kind) noexcept {
    return kind == scalar_kind::floating  ? "a floating-point number"
           : kind == scalar_kind::integer ? "an integer"
                                          : "a value";
}

/// Whether both are known, and not the same.
constexpr bool differ(scalar_kind one, scalar_kind other) noexcept {
    return one != other && one != scalar_kind::unknown && other != scalar_kind::unknown;
}

constexpr bool fits_value(parameter const& declared, value_shape const& given) noexcept {
    auto const& wanted = declared.wanted;
    return !declared.takes_pointer && (!wanted || (!differ(wanted->kind, given.kind) && wanted->size == given.size));
}

constexpr bool fits_pointer(parameter const& declared, value_shape const& element, bool local) noexcept {
    auto const& wanted = declared.wanted;
    return declared.takes_pointer && local == (declared.space == address_space::local) &&
           (!wanted || element.kind == scalar_kind::unknown || wanted->kind == scalar_kind::unknown ||
            (wanted->kind == element.kind && wanted->scalar_size == element.scalar_size));
}

[[noreturn, gnu::cold, gnu::noinline]] inline void refuse_value(place const& at, value_shape const& given) {
    if (at.declared.takes_pointer) {
        throw argument_error(
            joined({at.text(), " takes a pointer, but was given ", name_of(given.kind), ": pass an array"}));
    }
    value_shape const& wanted = *at.declared.wanted;
    if (differ(wanted.kind, given.kind)) {
        throw argument_error(joined({at.text(), " takes ", name_of(wanted.kind), ", but was given ",
                                     name_of(given.kind), ": convert the value first"}));
    }
    throw argument_error(joined({at.text(), " takes ", std::to_string(wanted.size), " bytes, but was given ",
                                 std::to_string(given.size), ": pass a value of the right type"}));
}

[[noreturn, gnu::cold, gnu::noinline]] inline void refuse_pointer(place const& at, value_shape const& element,
                                                                  bool local) {
    bool const takes_local = at.declared.space == address_space::local;
    if (!at.declared.takes_pointer || local != takes_local) {
        throw argument_error(joined({at.text(), " takes ",
                                     !at.declared.takes_pointer ? "no pointer"
                                     : takes_local              ? "local memory: pass ez::local"
                                                                : "memory of an array: pass one"}));
    }
    value_shape const& wanted = *at.declared.wanted;
    throw argument_error(
        joined({at.text(), " takes elements of ", std::to_string(wanted.scalar_size), " bytes, each ",
                name_of(wanted.kind), ", but was given elements of ", std::to_string(element.scalar_size), ", each ",
                name_of(element.kind), ": pass an array of the right type"}));
}

/// Throws `argument_error` where a value cannot be meant for what is declared.
inline void check_value(place const& at, value_shape const& given) {
    if (!fits_value(at.declared, given)) {
        refuse_value(at, given);
    }
}

/// The same for an array with elements of a shape, or for local memory.
inline void check_pointer(place const& at, value_shape const& element, bool local) {
    if (!fits_pointer(at.declared, element, local)) {
        refuse_pointer(at, element, local);
    }
}

} // namespace detail
} // namespace vorn::mero::easy
