#pragma once

// How a field of an argument block is described. The types of the fields tell the kinds of handles and which pointers
// are written through; the tables in the other headers of this folder add what types cannot tell. <nq/describe.hpp> has
// all.

#include <nq/commands.hpp>
#include <nq/describe/values.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>
#include <utility>

namespace nq {

/// What a field holds. If the field is a pointer with a length rule, what each element behind the pointer holds.
enum class field_kind : std::uint8_t {
    unknown,       ///< not described
    number,        ///< an index, an identifier, nanoseconds
    size,          ///< bytes, pixels or work-items
    count,         ///< elements of a list
    boolean,       ///< 0 or 1
    enumeration,   ///< one of the field's values
    bits,          ///< a sum of the field's values
    handle,        ///< an OpenCL object, see `field::object`
    status,        ///< the status of OpenCL
    callback,      ///< the address of a function of the program
    user_data,     ///< passed on to the callback
    text,          ///< characters
    bytes,         ///< memory without a type
    address,       ///< an address that is not followed
    property,      ///< 64-bit words that alternate between a name, one of the field's values, and its value
    image_format,  ///< two 32-bit words: channel order, channel type
    image_desc,    ///< `nq::image_desc`
    buffer_region, ///< `nq::buffer_region`
};

/// The kind of an OpenCL object.
enum class object_kind : std::uint8_t {
    none,          ///< no object
    platform,      ///< `_nq_cl_platform_id`
    device_id,     ///< `_nq_cl_device_id`
    context,       ///< `_nq_cl_context`
    command_queue, ///< `_nq_cl_command_queue`
    memory,        ///< `_nq_cl_mem`
    sampler,       ///< `_nq_cl_sampler`
    program,       ///< `_nq_cl_program`
    kernel,        ///< `_nq_cl_kernel`
    event          ///< `_nq_cl_event`
};

/// Whether libnq reads or writes a field, or the elements behind its pointer.
enum class direction : std::uint8_t {
    in, ///< libnq reads it
    out ///< libnq writes it
};

/// How many elements are behind a pointer. The operands are the offsets of other fields of the block.
enum class length_rule : std::uint8_t {
    none,            ///< the field is no pointer that is followed: it holds the value itself
    constant,        ///< as many as operand 0 is itself
    counted,         ///< as many as field 0 says. If each is a text or bytes, field 1 may point to their lengths
    zero_terminated, ///< up to a zero, which counts
    properties,      ///< pairs up to a zero in place of a name, which counts
    partition,       ///< words up to a zero; a partition by counts has a second zero
    rectangle,       ///< bytes, by the origin, region, row pitch and slice pitch in fields 0 to 3
    pixels,          ///< pixels, by the region, row pitch and slice pitch in fields 0 to 2
    image,           ///< pixels, by the width, height, depth, row pitch and slice pitch in fields 0 to 4
    described_image, ///< pixels, by the `nq::image_desc` that field 0 points to
    mapped,          ///< pixels, by the region in field 0, and the pitches that fields 1 and 2 point to
    opaque,          ///< not told by the block
};

/// Stands for an operand, status or result that there is not.
inline constexpr std::uint8_t absent = 0xFF;

/// A length rule and its operands.
struct length {
    length_rule rule = length_rule::none;                                         ///< the rule
    std::array<std::uint8_t, 5> operands{absent, absent, absent, absent, absent}; ///< `absent` if there is none
};

/// One field of a block.
struct field {
    char const* name = "";                       ///< as in OpenCL
    std::uint8_t offset = 0;                     ///< in the block, in bytes
    std::uint8_t size = 0;                       ///< 4 or 8
    std::uint8_t element_size = 0;               ///< behind a pointer, 0 if it is not known
    field_kind kind = field_kind::unknown;       ///< of the value or of the elements
    object_kind object = object_kind::none;      ///< of a handle
    nq::direction direction = nq::direction::in; ///< of the value or of the elements
    nq::length length{};                         ///< of the list behind a pointer
    value_set values{};                          ///< the names of an enumeration, of bits or of properties
};

/// One block.
struct description {
    char const* name = "";         ///< of the entry point
    field const* fields = nullptr; ///< the first
    std::size_t count = 0;         ///< of fields
    std::size_t size = 0;          ///< of the block, in bytes
    std::uint8_t status = absent;  ///< the offset of `status` or `error_code`
    std::uint8_t result = absent;  ///< the offset of `result`

    /// The fields, in the order of their offsets.
    constexpr field const* begin() const { return fields; }
    /// One past the last field.
    constexpr field const* end() const { return fields + count; }
};

/// The field of a block that has this name; null if there is none.
[[nodiscard]] constexpr field const* find_field(description const& about, std::string_view name) noexcept {
    for (field const& each : about) {
        if (each.name == name) {
            return &each;
        }
    }
    return nullptr;
}

namespace detail {

// What the type of a field tells.
template <class T>
struct object_of : std::integral_constant<object_kind, object_kind::none> {};
#define NQ_OBJECT(type, kind)                                                                                          \
    template <>                                                                                                        \
    struct object_of<type> : std::integral_constant<object_kind, object_kind::kind> {};
NQ_OBJECT(_nq_cl_platform_id, platform)
NQ_OBJECT(_nq_cl_device_id, device_id)
NQ_OBJECT(_nq_cl_context, context)
NQ_OBJECT(_nq_cl_command_queue, command_queue)
NQ_OBJECT(_nq_cl_mem, memory)
NQ_OBJECT(_nq_cl_sampler, sampler)
NQ_OBJECT(_nq_cl_program, program)
NQ_OBJECT(_nq_cl_kernel, kernel)
NQ_OBJECT(_nq_cl_event, event)
#undef NQ_OBJECT

template <class T>
constexpr std::uint8_t size_of_element() {
    if constexpr (std::is_void_v<T> || std::is_same_v<std::remove_const_t<T>, char>) {
        return 1;
    } else if constexpr (std::is_function_v<T> || object_of<T>::value != object_kind::none) {
        return 0;
    } else {
        return sizeof(T);
    }
}

template <class T>
constexpr void follow(field& made) {
    using element = std::remove_pointer_t<T>;
    using inner = std::remove_const_t<std::remove_pointer_t<element>>;
    made.element_size = size_of_element<element>();
    if constexpr (object_of<element>::value != object_kind::none) {
        made.kind = field_kind::handle;
        made.object = object_of<element>::value;
    } else if constexpr (std::is_function_v<element>) {
        made.kind = field_kind::callback;
    } else if constexpr (std::is_same_v<element, char const>) {
        made.kind = field_kind::text;
        made.length.rule = length_rule::zero_terminated;
    } else if constexpr (std::is_pointer_v<element> && object_of<inner>::value != object_kind::none) {
        made.kind = field_kind::handle;
        made.object = object_of<inner>::value;
    } else if constexpr (std::is_same_v<element, nq::image_desc const>) {
        made.kind = field_kind::image_desc;
    } else if constexpr (std::is_same_v<element, nq::buffer_region const>) {
        made.kind = field_kind::buffer_region;
    }
    if constexpr (!std::is_const_v<element> && !std::is_void_v<element> && !std::is_function_v<element> &&
                  object_of<element>::value == object_kind::none) {
        made.direction = direction::out;
    }
}

template <class T, class... Rules>
constexpr field make_field(char const* name, std::size_t offset, Rules... rules) {
    field made;
    made.name = name;
    made.offset = static_cast<std::uint8_t>(offset);
    made.size = sizeof(T);
    if constexpr (std::is_pointer_v<T>) {
        follow<T>(made);
    }
    (rules(made), ...);
    return made;
}

// The rules of the tables.
namespace is {

struct kind {
    field_kind value;
    constexpr void operator()(field& made) const { made.kind = value; }
};
inline constexpr kind number{field_kind::number};
inline constexpr kind size{field_kind::size};
inline constexpr kind count{field_kind::count};
inline constexpr kind boolean{field_kind::boolean};
inline constexpr kind bytes{field_kind::bytes};
inline constexpr kind address{field_kind::address};
inline constexpr kind text{field_kind::text};

struct valued {
    field_kind kind;
    value_set values;
    constexpr void operator()(field& made) const {
        made.kind = kind;
        made.values = values;
    }
};
constexpr valued one_of(value_set values) { return {field_kind::enumeration, values}; }
constexpr valued bits_of(value_set values) { return {field_kind::bits, values}; }

inline constexpr auto plain = [](field&) {};
inline constexpr auto out = [](field& made) { made.direction = direction::out; };
inline constexpr auto in = [](field& made) { made.direction = direction::in; };
inline constexpr auto status = [](field& made) {
    made.kind = field_kind::status;
    made.direction = direction::out;
    made.values = values::status;
};
inline constexpr auto image_format = [](field& made) {
    made.kind = field_kind::image_format;
    made.element_size = 2 * sizeof(std::uint32_t);
};
inline constexpr auto user_data = [](field& made) {
    made.kind = field_kind::user_data;
    made.length.rule = length_rule::opaque;
};

} // namespace is

namespace has {

struct rule {
    nq::length length;
    constexpr void operator()(field& made) const { made.length = length; }
};
template <class... Operands>
constexpr rule by(length_rule how, Operands... operands) {
    rule made{{how}};
    std::size_t at = 0;
    ((made.length.operands[at++] = static_cast<std::uint8_t>(operands)), ...);
    return made;
}
inline constexpr rule one = by(length_rule::constant, 1);
inline constexpr rule three = by(length_rule::constant, 3);
inline constexpr rule no_known_length = by(length_rule::opaque);
template <class... Operands>
constexpr rule counted(Operands... operands) {
    return by(length_rule::counted, operands...);
}

struct list_of_properties {
    length_rule rule;
    value_set values;
    constexpr void operator()(field& made) const {
        made.kind = field_kind::property;
        made.length.rule = rule;
        made.values = values;
    }
};
constexpr list_of_properties properties(value_set values) { return {length_rule::properties, values}; }
constexpr list_of_properties partition(value_set values) { return {length_rule::partition, values}; }

} // namespace has

/// The name and the fields of a block. A block without a table does not compile.
template <class Block>
struct described;

// What makes a table complete: it has each field once, in order, with a kind, and a length if it is a pointer.
struct anything {
    template <class T>
    constexpr operator T() const noexcept;
};
template <class Block, std::size_t... Index>
constexpr auto takes(std::index_sequence<Index...>)
    -> decltype(Block{(static_cast<void>(Index), anything{})...}, true) {
    return true;
}
template <class Block>
constexpr bool takes(...) {
    return false;
}

template <class Block>
constexpr bool has_as_many_fields() {
    constexpr std::size_t count = std::size(described<Block>::fields);
    return takes<Block>(std::make_index_sequence<count>()) && !takes<Block>(std::make_index_sequence<count + 1>());
}

template <class Block>
constexpr bool tiles() {
    std::size_t at = 0;
    for (field const& each : described<Block>::fields) {
        at = (at + each.size - 1) / each.size * each.size;
        if (each.offset != at) {
            return false;
        }
        at += each.size;
    }
    return (at + alignof(Block) - 1) / alignof(Block) * alignof(Block) == sizeof(Block);
}

constexpr bool has_rule(field const& each) {
    bool const followed = each.element_size != 0;
    bool const named =
        each.kind == field_kind::enumeration || each.kind == field_kind::bits || each.kind == field_kind::status;
    return each.kind != field_kind::unknown && followed == (each.length.rule != length_rule::none) &&
           (named == (each.values.count != 0) || each.kind == field_kind::property);
}

template <class Block>
constexpr bool has_rules() {
    bool all = true;
    for (field const& each : described<Block>::fields) {
        all = all && has_rule(each);
    }
    return all;
}

constexpr bool is_named(field const& each, char const* name) {
    char const* have = each.name;
    while (*have != '\0' && *have == *name) {
        ++have;
        ++name;
    }
    return *have == *name;
}

template <class Block>
constexpr description make_description() {
    static_assert(has_as_many_fields<Block>(), "the description misses a field");
    static_assert(tiles<Block>(), "the fields are not described in the order of their offsets");
    static_assert(has_rules<Block>(), "a field has no kind, or a pointer no length");
    using table = described<Block>;
    description made{table::name, table::fields, std::size(table::fields), sizeof(Block)};
    for (field const& each : table::fields) {
        if (each.kind == field_kind::status && each.length.rule == length_rule::none) {
            made.status = each.offset;
        }
        if (is_named(each, "result")) {
            made.result = each.offset;
        }
    }
    return made;
}

} // namespace detail

/// The description of a block.
template <class Block>
inline constexpr description description_of = detail::make_description<Block>();

} // namespace nq

// One table: the block, then its fields in the order of their offsets. NQ_FIELD: the field, then what its type does not
// tell. <nq/describe.hpp> undefines all.
#define NQ_BLOCK(entry, ...)                                                                                           \
    template <>                                                                                                        \
    struct described<block::entry> {                                                                                   \
        using self = block::entry;                                                                                     \
        static constexpr char const* name = #entry;                                                                    \
        static constexpr field fields[] = {__VA_ARGS__};                                                               \
    };
#define NQ_FIELD(...) NQ_FIELD_(__VA_ARGS__, is::plain)
#define NQ_FIELD_(member, ...) make_field<decltype(self::member)>(#member, offsetof(self, member), __VA_ARGS__)
#define NQ_AT(member) offsetof(self, member)
#define NQ_STATUS NQ_FIELD(status, is::status)
#define NQ_ERROR_CODE NQ_FIELD(error_code, is::status)
#define NQ_RESULT NQ_FIELD(result, is::out)
#define NQ_LIST(member, ...) NQ_FIELD(member, has::counted(NQ_AT(__VA_ARGS__)))
