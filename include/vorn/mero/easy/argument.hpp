#pragma once

// What a kernel takes as an argument, and whether it fits what the source declares.

#include <vorn/mero/easy/error.hpp>
#include <vorn/mero/easy/parameter.hpp>
#include <vorn/mero/easy/versions.hpp>

#include <cstddef>
#include <exception>
#include <string>
#include <string_view>
#include <type_traits>

namespace vorn::mero::easy {

/// Local memory for a kernel argument.
template <class T>
struct local {
    /// Room for that many elements of `T`.
    explicit constexpr local(std::size_t elements) noexcept : count(elements) {}

    std::size_t count; ///< In elements.
};

/// Which argument of which kernel, and how the source declares it. The text is made when there is an error, since every
/// launch checks its arguments.
struct argument_place {
    /// "kernel 'vadd', argument 3 'n' (uint)".
    [[nodiscard]] std::string text() const {
        bool const is_named = !declared.name.empty();
        bool const is_typed = !declared.type.empty();
        return detail::joined({"kernel '", kernel, "', argument ", std::to_string(index), is_named ? " '" : "",
                               declared.name, is_named ? "'" : "", is_typed ? " (" : "", declared.type,
                               is_typed ? ")" : ""});
    }

    std::string const& kernel;         ///< The name of the kernel.
    unsigned index;                    ///< From 0.
    detail::parameter const& declared; ///< What the implementation tells of the declaration.
};

namespace detail {

[[noreturn, gnu::cold, gnu::noinline]] inline void refuse_value(argument_place const& at, value_shape const& given,
                                                                void const* value) {
    std::string const what = value_text(given, value);
    if (at.declared.kind != argument_kind::value) {
        throw argument_error(joined({at.text(), " takes ", name_of(at.declared.kind), ", but was given ", what, ": ",
                                     remedy_for(at.declared.kind)}));
    }
    value_shape const& wanted = *at.declared.wanted;
    bool const other_kind = differ(wanted.kind, given.kind);
    throw argument_error(joined({at.text(), " takes ", name_of(wanted.kind), other_kind ? "" : " of ",
                                 other_kind ? std::string() : std::to_string(wanted.size), other_kind ? "" : " bytes",
                                 ", but was given ", what, other_kind ? "" : " of ",
                                 other_kind ? std::string() : std::to_string(given.size),
                                 other_kind ? ": convert the value first" : ": pass a value of the right type"}));
}

[[noreturn, gnu::cold, gnu::noinline]] inline void refuse_object(argument_place const& at, argument_kind given) {
    throw argument_error(
        joined({at.text(), " takes ",
                at.declared.kind == argument_kind::value && at.declared.wanted ? name_of(at.declared.wanted->kind)
                                                                               : name_of(at.declared.kind),
                ", but was given ", name_of(given), ": ", remedy_for(at.declared.kind)}));
}

[[noreturn, gnu::cold, gnu::noinline]] inline void refuse_elements(argument_place const& at,
                                                                   value_shape const& element) {
    value_shape const& wanted = *at.declared.wanted;
    throw argument_error(
        joined({at.text(), " takes elements of ", std::to_string(wanted.scalar_size), " bytes, each ",
                name_of(wanted.kind), ", but was given elements of ", std::to_string(element.scalar_size), ", each ",
                name_of(element.kind), ": pass an array of the right type"}));
}

[[gnu::noinline]] inline void compare_value(argument_place const& at, value_shape const& given, void const* value) {
    auto const& wanted = at.declared.wanted;
    if (at.declared.kind != argument_kind::value ||
        (wanted && (differ(wanted->kind, given.kind) || wanted->size != given.size))) {
        refuse_value(at, given, value);
    }
}

/// Throws `argument_error` where a value cannot be meant for what is declared.
inline void check_value(argument_place const& at, value_shape const& given, void const* value) {
    if (at.declared.form != form_of(argument_kind::value, given)) {
        compare_value(at, given, value);
    }
}

/// The same for an object of OpenCL: an image, a sampler, memory whose elements are not known.
inline void check_object(argument_place const& at, argument_kind given) {
    if (at.declared.kind != given) {
        refuse_object(at, given);
    }
}

/// The same for an image, whose type is "image2d_t" or a sibling; any image with an empty text.
inline void check_image(argument_place const& at, std::string_view type) {
    check_object(at, argument_kind::image);
    std::string_view const wanted = at.declared.type;
    std::string_view const stem = type.substr(0, type.size() - (type.empty() ? 0 : 2)); // without "_t"
    std::size_t const found = wanted.rfind(stem);
    std::string_view const rest = found == std::string_view::npos ? wanted : wanted.substr(found + stem.size());
    if (!type.empty() && rest != "_t" && rest != "_depth_t" && rest != "_msaa_t" && rest != "_msaa_depth_t") {
        throw argument_error(joined({at.text(), " takes another kind of image, but was given one for ", type,
                                     ": pass an image of as many dimensions as declared"}));
    }
}

[[gnu::noinline]] inline void compare_memory(argument_place const& at, argument_kind given,
                                             value_shape const& element) {
    check_object(at, given);
    auto const& wanted = at.declared.wanted;
    if (wanted && element.kind != scalar_kind::unknown && wanted->kind != scalar_kind::unknown &&
        (wanted->kind != element.kind || wanted->scalar_size != element.scalar_size)) {
        refuse_elements(at, element);
    }
}

/// The same for memory with elements of a shape: `argument_kind::pointer` or `argument_kind::local`.
inline void check_memory(argument_place const& at, argument_kind given, value_shape const& element) {
    if (at.declared.form != form_of(given, element)) {
        compare_memory(at, given, element);
    }
}

/// What a class of the exact interface is to a kernel; `unknown` for one that may be several things.
template <class T, int Version>
constexpr argument_kind object_kind() noexcept {
    using exact = api<Version>;
    if constexpr (std::is_base_of<typename exact::image, T>::value) {
        return argument_kind::image;
    } else if constexpr (std::is_base_of<typename exact::sampler, T>::value) {
        return argument_kind::sampler;
    } else if constexpr (std::is_same<typename exact::local_memory, T>::value) {
        return argument_kind::local;
    } else if constexpr (std::is_same<typename exact::memory_object, T>::value) {
        return argument_kind::unknown;
    } else {
        if constexpr (Version >= 200) {
            if (std::is_same<typename exact::pipe, T>::value) {
                return argument_kind::pipe;
            }
            if (std::is_same<typename exact::device_command_queue, T>::value) {
                return argument_kind::queue;
            }
        }
        return argument_kind::pointer;
    }
}

/// The type that OpenCL C has for an image class of the exact interface; empty for the root of them.
template <class T, int Version>
constexpr std::string_view image_type() noexcept {
    using exact = api<Version>;
    if (std::is_same<typename exact::image_2d, T>::value) {
        return "image2d_t";
    }
    if (std::is_same<typename exact::image_3d, T>::value) {
        return "image3d_t";
    }
    if constexpr (Version >= 120) {
        return std::is_same<typename exact::image_1d, T>::value          ? "image1d_t"
               : std::is_same<typename exact::image_1d_buffer, T>::value ? "image1d_buffer_t"
               : std::is_same<typename exact::image_1d_array, T>::value  ? "image1d_array_t"
               : std::is_same<typename exact::image_2d_array, T>::value  ? "image2d_array_t"
                                                                         : "";
    }
    return {};
}

template <class T, int Version, class = void>
struct is_object : std::false_type {};
template <class T, int Version>
struct is_object<
    T, Version,
    std::void_t<decltype(std::declval<typename api<Version>::kernel&>().set_argument(0U, std::declval<T&>()))>>
    : std::bool_constant<!std::is_arithmetic<T>::value> {};

/// The bytes of local memory that an argument asks for.
template <class Argument>
struct local_bytes {
    static constexpr std::size_t of(Argument const&) noexcept { return 0; }
};
template <class T>
struct local_bytes<local<T>> {
    static std::size_t of(local<T> const& memory) { return product(memory.count, sizeof(T)); }
};

/// Whether the traits of a `T` tell the context that it belongs to.
template <class Traits, class T, class = void>
struct has_context : std::false_type {};
template <class Traits, class T>
struct has_context<Traits, T, std::void_t<decltype(Traits::context(std::declval<T const&>()))>> : std::true_type {};

} // namespace detail

/// How a kernel takes a `T`: specialise it to make a type an argument. `check` is called where the declaration is known
/// and throws `argument_error`; `set` hands over; `text` describes what was given, for messages. A function `context`
/// may return the raw handle of the context that it belongs to, which must be the kernel's.
///
///     template <int Version>
///     struct ez::argument_traits<my::matrix, Version> {
///         using buffer = ez::argument_traits<ez::basic_array<float, Version>, Version>;
///         static void check(ez::argument_place const& at, my::matrix const& m) { buffer::check(at, m.elements); }
///         static void set(typename vorn::mero::api<Version>::kernel& target, unsigned index, my::matrix const& m) {
///             buffer::set(target, index, m.elements);
///         }
///         static std::string text(my::matrix const&) { return "a matrix"; }
///     };
///
/// Without a specialisation a `T` is a value that is copied bytewise: a number, a vector (`std::array`, or a type of
/// `CL/cl_platform.h`), a structure.
template <class T, int Version, class = void>
struct argument_traits {
    /// Whether a kernel takes it: OpenCL copies its bytes.
    static constexpr bool is_copied = !std::is_pointer<T>::value && std::is_trivially_copyable<T>::value;

    /// Throws `argument_error` for a value of another kind or size than declared.
    static void check(argument_place const& at, T const& value) {
        detail::check_value(at, detail::shape<T>::value, &value);
    }
    /// OpenCL copies the bytes.
    static void set(typename api<Version>::kernel& target, unsigned index, T const& value) {
        static_assert(!std::is_pointer<T>::value,
                      "a pointer of the host means nothing to a device: pass an array or shared memory");
        static_assert(std::is_trivially_copyable<T>::value,
                      "an argument is an array, an OpenCL object of the kernel's version, or a value without pointers");
        target.set_argument_raw(index, sizeof value, &value);
    }
    /// The value for messages: "the integer 8".
    [[nodiscard]] static std::string text(T const& value) {
        return detail::value_text(detail::shape<T>::value, &value);
    }
};

/// Local memory.
template <class T, int Version>
struct argument_traits<local<T>, Version> {
    static void check(argument_place const& at, local<T> const&) {
        detail::check_memory(at, detail::argument_kind::local, detail::shape<T>::value);
    }
    static void set(typename api<Version>::kernel& target, unsigned index, local<T> const& memory) {
        target.set_argument(index, typename api<Version>::local_memory(detail::product(memory.count, sizeof(T))));
    }
    static std::string text(local<T> const& memory) {
        return detail::joined(
            {"local memory for ", std::to_string(memory.count), " elements of ", std::to_string(sizeof(T)), " bytes"});
    }
};

/// Objects of the exact interface, and the null pointer for memory.
template <class T, int Version>
struct argument_traits<T, Version, std::enable_if_t<detail::is_object<T, Version>::value>> {
    static constexpr auto kind = detail::object_kind<T, Version>();

    static void check(argument_place const& at, T const&) {
        if constexpr (kind == detail::argument_kind::image) {
            detail::check_image(at, detail::image_type<T, Version>());
        } else if constexpr (kind != detail::argument_kind::unknown) {
            detail::check_object(at, kind);
        }
    }
    static void set(typename api<Version>::kernel& target, unsigned index, T const& object) {
        target.set_argument(index, const_cast<T&>(object)); // only read
    }
    static std::string text(T const&) { return detail::name_of(kind); }
};

#if __cplusplus >= 202002L
/// What a kernel of the version takes as an argument: `template <ez::kernel_argument<200>... Arguments>`. Since C++20.
template <class T, int Version = default_version>
concept kernel_argument = !requires {
    argument_traits<T, Version>::is_copied;
}
|| argument_traits<T, Version>::is_copied;
#endif

} // namespace vorn::mero::easy
