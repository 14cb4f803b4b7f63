#pragma once

// Writes a call as text. <nq/describe.hpp> has the function for programs.

#include <nq/describe/memory.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

namespace nq::detail {

inline std::string hexadecimal(std::uint64_t value) {
    char text[20];
    std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(value));
    return text;
}

inline std::string name_of(value_set const& values, std::int64_t value) {
    char const* const name = values.name_of(value);
    return name != nullptr ? name : hexadecimal(static_cast<std::uint64_t>(value));
}

inline std::string names_of_bits(value_set const& values, std::uint64_t value) {
    if (value == 0) {
        return "0";
    }
    if (char const* const whole = values.name_of(static_cast<std::int64_t>(value)); whole != nullptr) {
        return whole;
    }
    std::string text;
    for (value_name const& each : values) {
        auto const bits = static_cast<std::uint64_t>(each.value);
        if (bits != 0 && (value & bits) == bits) {
            text += text.empty() ? "" : "|";
            text += each.name;
            value &= ~bits;
        }
    }
    return value == 0 ? text : text + (text.empty() ? "" : "|") + hexadecimal(value);
}

struct formatter {
    description const& call;
    void const* block;
    memory_reader read;

    /// `entry(argument=value, ...) = status`
    std::string text() const {
        std::string results;
        for_each_argument([&](field const& each, std::string const& value) {
            if (each.offset == call.status) {
                results.insert(0, " = " + value);
            } else if (each.offset == call.result) {
                results += (call.status == absent ? " = " : ", ") + value;
            }
        });
        return request() + results;
    }

    /// `entry(argument=value, ...)`
    std::string request() const {
        std::string arguments;
        for_each_argument([&](field const& each, std::string const& value) {
            if (each.offset != call.status && each.offset != call.result) {
                arguments += (arguments.empty() ? "" : ", ") + std::string(each.name) + '=' + value;
            }
        });
        return call.name + ('(' + arguments + ')');
    }

    /// Calls `visit(field, value)` for each argument, the status and the result. No result if there is a status and it
    /// is null.
    template <class Visit>
    void for_each_argument(Visit visit) const {
        for (field const& each : call) {
            if (each.offset == call.status) {
                visit(each, number(each, read_field(block, each)));
            } else if (each.offset != call.result || call.status == absent || read_field(block, each) != 0) {
                visit(each, value(each));
            }
        }
    }

private:
    static constexpr std::size_t longest_list = 8;
    static constexpr std::size_t longest_text = 64;
    static constexpr std::size_t longest_bytes = 16;

    static std::string address(void const* pointer) {
        return pointer == nullptr ? "null" : hexadecimal(reinterpret_cast<std::uintptr_t>(pointer));
    }

    static std::string number(field const& each, std::int64_t value) {
        auto const bits = static_cast<std::uint64_t>(value);
        switch (each.kind) {
        case field_kind::boolean:
            return value == 0 ? "false" : value == 1 ? "true" : std::to_string(bits);
        case field_kind::enumeration:
            return name_of(each.values, value);
        case field_kind::bits:
            return names_of_bits(each.values, bits);
        case field_kind::status: {
            char const* const name = each.values.name_of(value);
            return name != nullptr ? name : "status " + std::to_string(value);
        }
        case field_kind::handle:
        case field_kind::callback:
        case field_kind::address:
            return value == 0 ? "null" : hexadecimal(bits);
        default:
            return std::to_string(bits);
        }
    }

    std::string value(field const& each) const {
        if (each.length.rule == length_rule::none) {
            return number(each, read_field(block, each));
        }
        void const* const pointer = read_pointer(block, each.offset);
        bool const unread = each.direction == direction::out || each.length.rule == length_rule::opaque;
        if (pointer == nullptr || unread) {
            return address(pointer);
        }
        switch (each.kind) {
        case field_kind::text:
            return each.length.rule == length_rule::counted ? texts(each, pointer) : quoted(pointer);
        case field_kind::bytes:
            return bytes(each, pointer);
        case field_kind::property:
            return properties(each, pointer);
        case field_kind::image_format:
            return format(pointer);
        case field_kind::image_desc:
            return image(pointer);
        case field_kind::buffer_region:
            return region(pointer);
        default:
            return list(each, pointer);
        }
    }

    // In quotes. `length` is absent if the text ends with a zero.
    std::string quoted(void const* pointer, std::size_t length = std::size_t(-1)) const {
        std::string text = "\"";
        for (std::size_t i = 0; i < length; ++i) {
            char letter = 0;
            if (i == longest_text) {
                return text + "\"...";
            }
            if (!read(&letter, static_cast<char const*>(pointer) + i, 1)) {
                return address(pointer);
            }
            if (letter == '\0' && length == std::size_t(-1)) {
                break;
            }
            text += letter == '\n' ? "\\n" : letter == '\t' ? "\\t" : letter == '"' ? "\\\"" : std::string(1, letter);
        }
        return text + '"';
    }

    std::size_t count(field const& each) const {
        return extent_of(call, each, block, 0, read).value_or(0) / std::max<std::size_t>(each.element_size, 1);
    }

    template <class Write>
    static std::string bracketed(std::size_t count, Write write) {
        std::string text = "[";
        for (std::size_t i = 0; i < std::min(count, longest_list); ++i) {
            text += (i == 0 ? "" : ", ") + write(i);
        }
        return text + (count > longest_list ? ", ... " + std::to_string(count) + "]" : "]");
    }

    std::string list(field const& each, void const* pointer) const {
        bool readable = true;
        std::string const text = bracketed(count(each), [&](std::size_t i) {
            std::uint64_t value = 0;
            readable = readable && read(&value, static_cast<char const*>(pointer) + i * each.element_size,
                                        std::min<std::size_t>(each.element_size, sizeof value));
            return number(each, static_cast<std::int64_t>(value));
        });
        return readable ? text : address(pointer);
    }

    std::string texts(field const& each, void const* pointer) const {
        std::uint8_t const at = each.length.operands[1];
        auto const* const lengths = at == absent ? nullptr : static_cast<std::size_t const*>(read_pointer(block, at));
        return bracketed(count(each), [&](std::size_t i) {
            void const* text = nullptr;
            std::size_t length = 0;
            bool const found = read(&text, static_cast<char const*>(pointer) + i * sizeof text, sizeof text) &&
                               (lengths == nullptr || read(&length, lengths + i, sizeof length));
            if (!found || text == nullptr) {
                return address(text);
            }
            return length != 0 ? quoted(text, length) : quoted(text);
        });
    }

    // The bytes in the order of memory; numbers of 4 and 8 bytes as a number too.
    std::string bytes(field const& each, void const* pointer) const {
        std::size_t const size = extent_of(call, each, block, 0, read).value_or(0);
        unsigned char content[longest_bytes];
        bool const list_of_pointers = each.element_size != 1;
        if (size == 0 || size > longest_bytes || list_of_pointers || !read(content, pointer, size)) {
            return address(pointer);
        }
        std::string text = "{";
        char digits[48];
        for (std::size_t i = 0; i < size; ++i) {
            std::snprintf(digits, sizeof digits, i == 0 ? "%02x" : " %02x", content[i]);
            text += digits;
        }
        text += '}';
        if (size == sizeof(float)) {
            float real = 0;
            std::int32_t whole = 0;
            std::memcpy(&real, content, size);
            std::memcpy(&whole, content, size);
            std::snprintf(digits, sizeof digits, " (%d or %g)", whole, static_cast<double>(real));
            text += digits;
        } else if (size == sizeof(std::uint64_t)) {
            text += " (" + hexadecimal(read_field(content, 0)) + ")";
        }
        return text;
    }

    std::string properties(field const& each, void const* pointer) const {
        auto const words = extent_of(call, each, block, 0, read);
        bool const pairs = each.length.rule == length_rule::properties;
        if (!words) {
            return address(pointer);
        }
        std::size_t const count = *words / 8 - 1;
        return bracketed(pairs ? count / 2 : count, [&](std::size_t i) {
            std::int64_t word[2] = {};
            std::size_t const width = pairs ? 16 : 8;
            if (!read(word, static_cast<char const*>(pointer) + i * width, width)) {
                return std::string("?");
            }
            char const* const name = pairs || i == 0 ? each.values.name_of(word[0]) : nullptr;
            std::string const first = name != nullptr ? name
                                      : pairs         ? hexadecimal(static_cast<std::uint64_t>(word[0]))
                                                      : std::to_string(word[0]);
            return pairs ? first + '=' + hexadecimal(static_cast<std::uint64_t>(word[1])) : first;
        });
    }

    std::string format(void const* pointer) const {
        std::uint32_t words[2];
        return read(words, pointer, sizeof words) ? "{" + name_of(values::channel_order, words[0]) + ", " +
                                                        name_of(values::channel_type, words[1]) + "}"
                                                  : address(pointer);
    }

    std::string region(void const* pointer) const {
        nq::buffer_region words{};
        return read(&words, pointer, sizeof words)
                   ? "{origin=" + std::to_string(words.origin) + ", size=" + std::to_string(words.size) + "}"
                   : address(pointer);
    }

    std::string image(void const* pointer) const {
        nq::image_desc about{};
        if (!read(&about, pointer, sizeof about)) {
            return address(pointer);
        }
        std::string text = "{";
        text += name_of(values::mem_object_type, about.image_type);
        auto const add = [&text](char const* name, std::size_t number) {
            text += number != 0 ? std::string(", ") + name + '=' + std::to_string(number) : "";
        };
        add("width", about.image_width);
        add("height", about.image_height);
        add("depth", about.image_depth);
        add("array_size", about.image_array_size);
        add("row_pitch", about.image_row_pitch);
        add("slice_pitch", about.image_slice_pitch);
        add("mip_levels", about.num_mip_levels);
        add("samples", about.num_samples);
        return text + (about.mem_object != nullptr ? ", mem_object=" + address(about.mem_object) + "}" : "}");
    }
};

} // namespace nq::detail
