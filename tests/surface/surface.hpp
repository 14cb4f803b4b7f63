#pragma once

// What the generated checks of the surface are made of. Each is true of a declaration that is exactly as the table has
// it; a check that does not hold does not compile.

#include <nq/call_handle.hpp>

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace vorn::mero::surface {

using std::array;
using std::size_t;
using std::string;
using std::vector;
using uint8 = std::uint8_t;
using int32 = std::int32_t;
using uint32 = std::uint32_t;
using uint64 = std::uint64_t;
using array3 = std::array<std::size_t, 3>;

/// Takes a function or a member of exactly the given pointer type; overloads are told apart by it.
template <class Pointer>
constexpr bool has(Pointer) {
    return true;
}

/// A type that a template must wait for.
template <class Type, class>
struct dependent {
    using type = Type;
};

/// Becomes a parameter of exactly one type: no conversion may follow.
template <class Parameter>
struct exactly {
    template <class T>
    requires std::same_as<T, std::remove_cvref_t<Parameter>>
    operator T() const;
};

template <class Parameter>
requires(!std::is_const_v<Parameter>) struct exactly<Parameter&> {
    template <class T>
    requires std::same_as<T, Parameter>
    operator T&() const;
};

/// Whether a class has a constructor of exactly these parameters (by value and by constant reference are one).
template <class Class, class... Parameters>
concept constructs = std::is_constructible_v<Class, exactly<Parameters>...>;

template <class T>
concept compares = requires(T const& a) {
    { a == a } -> std::same_as<bool>;
};

template <class T>
concept orders = requires(T const& a) {
    { a < a } -> std::same_as<bool>;
};

template <class T>
concept copy_assigns = requires(T& a, T const& b) {
    { a = b } -> std::same_as<T&>;
};

template <class T>
concept move_assigns = requires(T& a, T&& b) {
    { a = std::move(b) } -> std::same_as<T&>;
};

/// An OpenCL value of the given width: scoped, and able to carry any number.
template <class T, class Underlying>
concept value_type =
    std::is_enum_v<T> && !std::is_convertible_v<T, Underlying> && std::same_as<std::underlying_type_t<T>, Underlying>;

template <class T>
concept bit_field = requires(T& a, T b) {
    { b | b } -> std::same_as<T>;
    { b& b } -> std::same_as<T>;
    { b ^ b } -> std::same_as<T>;
    { ~b } -> std::same_as<T>;
    { a |= b } -> std::same_as<T&>;
    { a &= b } -> std::same_as<T&>;
    { a ^= b } -> std::same_as<T&>;
};

template <bit_field T>
constexpr bool computes() {
    constexpr T all = T(~std::underlying_type_t<T>{0});
    T a{0b1100};
    a |= T{0b0001};
    bool const added = a == T{0b1101};
    a &= T{0b0111};
    bool const masked = a == T{0b0101};
    a ^= T{0b0110};
    return added && masked && a == T{0b0011} && (T{0b1100} | T{0b1010}) == T{0b1110} &&
           (T{0b1100} & T{0b1010}) == T{0b1000} && (T{0b1100} ^ T{0b1010}) == T{0b0110} && ~T{} == all;
}

/// What programs rely on of every object class: a small value that can only be made from what it says it is made from,
/// and whose moving makes no call.
template <class T, class Raw>
concept object = sizeof(T) == sizeof(nq::call_handle) + sizeof(Raw*) + (std::is_polymorphic_v<T> ? sizeof(void*) : 0) &&
                 std::is_nothrow_move_constructible_v<T>&& std::is_nothrow_move_assignable_v<
                     T>&& std::is_nothrow_destructible_v<T> &&
                 !std::is_default_constructible_v<T> && !std::is_convertible_v<Raw*, T> &&
                 !std::is_constructible_v<T, Raw*> && !std::is_constructible_v<T, nq::call_handle const&, Raw*> &&
                 !std::is_convertible_v<T, Raw*>;

template <class T, class Raw>
concept handle = object<T, Raw> && !std::is_polymorphic_v<T>;

template <class T, class Raw>
concept promise = handle<T, Raw>;

template <class T>
concept memory = object<T, _nq_cl_mem> && std::has_virtual_destructor_v<T>;

template <class T>
concept command = std::has_virtual_destructor_v<T> && std::is_nothrow_destructible_v<T> && !std::is_abstract_v<T> &&
                  !std::is_default_constructible_v<T>;

template <class T>
concept launch = command<T> && !std::is_copy_constructible_v<T>;

/// An exception class that adds nothing but its name to its base.
template <class T, class Base>
concept failure = std::is_base_of_v<Base, T> && std::is_convertible_v<T*, std::exception*> &&
                      sizeof(T) == sizeof(Base) &&
                  std::is_default_constructible_v<T> && !std::is_constructible_v<T, std::string const&>;

/// Stands for a name that a namespace lacks.
struct missing;

} // namespace vorn::mero::surface
