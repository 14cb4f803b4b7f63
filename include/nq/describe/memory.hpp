#pragma once

// Reads what a block's fields hold and refer to.

#include <nq/describe/field.hpp>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>

namespace nq {

/// Copies `size` bytes of the program's memory. Returns false if they cannot be read. A reader that asks the operating
/// system survives pointers that a plain copy would crash on.
using memory_reader = bool (*)(void* to, void const* from, std::size_t size);

namespace detail {

inline bool copy_memory(void* to, void const* from, std::size_t size) {
    std::memcpy(to, from, size);
    return true;
}

} // namespace detail

/// What the field at an offset of a block holds: 8 bytes, or 4 if `size` is 4.
inline std::uint64_t read_field(void const* block, std::size_t offset, std::size_t size = 8) {
    std::uint64_t value = 0;
    std::memcpy(&value, static_cast<unsigned char const*>(block) + offset, size);
    return value;
}

/// What a field of a block holds. A negative status keeps its sign.
inline std::int64_t read_field(void const* block, field const& each) {
    std::uint64_t const value = read_field(block, each.offset, each.size);
    return each.size == 4 && each.kind == field_kind::status ? static_cast<std::int32_t>(value)
                                                             : static_cast<std::int64_t>(value);
}

/// The pointer in a field at an offset of a block.
inline void const* read_pointer(void const* block, std::size_t offset) {
    void const* pointer = nullptr;
    std::memcpy(&pointer, static_cast<unsigned char const*>(block) + offset, sizeof pointer);
    return pointer;
}

/// Rows of bytes, with gaps between. A list is one row.
struct memory_rows {
    std::size_t offset = 0;     ///< of the first row, in bytes
    std::size_t width = 0;      ///< of a row, in bytes
    std::size_t count[2]{1, 1}; ///< of the rows in a slice, and of the slices
    std::size_t pitch[2]{0, 0}; ///< from a row to the next, and from a slice to the next, in bytes

    /// One past the last byte; 0 if there is none.
    constexpr std::size_t end() const {
        bool const empty = width == 0 || count[0] == 0 || count[1] == 0;
        return empty ? 0 : offset + (count[1] - 1) * pitch[1] + (count[0] - 1) * pitch[0] + width;
    }
};

namespace detail {

struct bounds {
    void const* block;
    memory_reader read;
    std::size_t pixel_size;

    std::optional<memory_rows> of(description const& call, field const& each) const {
        auto const& at = each.length.operands;
        switch (each.length.rule) {
        case length_rule::constant:
            return memory_rows{0, std::size_t{at[0]} * each.element_size};
        case length_rule::counted:
            return memory_rows{0, value(call, at[0]) * each.element_size};
        case length_rule::zero_terminated:
            return list(each, 1, 0);
        case length_rule::properties:
            return list(each, 16, 0);
        case length_rule::partition:
            return list(each, 8, word(read_pointer(block, each.offset)) == by_counts ? 1 : 0);
        case length_rule::rectangle:
            return rectangle(at);
        case length_rule::pixels:
            return region(at[0], read_field(block, at[1]), read_field(block, at[2]));
        case length_rule::mapped:
            return region(at[0], word(read_pointer(block, at[1])), word(read_pointer(block, at[2])));
        case length_rule::image: {
            std::size_t const size[] = {read_field(block, at[0]), read_field(block, at[1]), optional(at[2], 1)};
            return pixels(size, optional(at[3], 0), optional(at[4], 0));
        }
        case length_rule::described_image:
            return described_image(at[0]);
        case length_rule::none:
        case length_rule::opaque:
            break;
        }
        return std::nullopt;
    }

private:
    static constexpr std::uint64_t by_counts = 0x1087;

    std::size_t value(description const& call, std::size_t offset) const {
        for (field const& each : call) {
            if (each.offset == offset) {
                return read_field(block, offset, each.size);
            }
        }
        return 0;
    }

    std::size_t optional(std::uint8_t offset, std::size_t otherwise) const {
        return offset == absent ? otherwise : read_field(block, offset);
    }

    std::uint64_t word(void const* from) const {
        std::uint64_t value = 0;
        return from != nullptr && read(&value, from, sizeof value) ? value : 0;
    }

    // The bytes up to the zero after `zeros` others, in steps.
    std::optional<memory_rows> list(field const& each, std::size_t step, int zeros) const {
        auto const* const start = static_cast<unsigned char const*>(read_pointer(block, each.offset));
        std::size_t const width = step == 1 ? 1 : 8;
        for (auto const* at = start; at != nullptr; at += step) {
            std::uint64_t name = 0;
            if (!read(&name, at, width)) {
                break;
            }
            if (name == 0 && zeros-- == 0) {
                return memory_rows{0, static_cast<std::size_t>(at - start) + width};
            }
        }
        return std::nullopt;
    }

    // A box whose rows have `width` bytes. Pitches of 0: there are no gaps.
    static memory_rows box(std::size_t const (&size)[3], std::size_t width, std::size_t row, std::size_t slice) {
        row = row != 0 ? row : width;
        return {0, width, {size[1], size[2]}, {row, slice != 0 ? slice : row * size[1]}};
    }

    std::optional<memory_rows> pixels(std::size_t const (&size)[3], std::size_t row, std::size_t slice) const {
        return pixel_size != 0 ? std::optional(box(size, size[0] * pixel_size, row, slice)) : std::nullopt;
    }

    std::optional<memory_rows> region(std::size_t offset, std::size_t row, std::size_t slice) const {
        std::size_t size[3];
        void const* const from = read_pointer(block, offset);
        return from != nullptr && read(size, from, sizeof size) ? pixels(size, row, slice) : std::nullopt;
    }

    template <class Operands>
    std::optional<memory_rows> rectangle(Operands const& at) const {
        std::size_t origin[3];
        std::size_t size[3];
        void const* const from = read_pointer(block, at[0]);
        void const* const extent = read_pointer(block, at[1]);
        if (from == nullptr || extent == nullptr || !read(origin, from, sizeof origin) ||
            !read(size, extent, sizeof size)) {
            return std::nullopt;
        }
        memory_rows made = box(size, size[0], read_field(block, at[2]), read_field(block, at[3]));
        made.offset = origin[2] * made.pitch[1] + origin[1] * made.pitch[0] + origin[0];
        return made;
    }

    std::optional<memory_rows> described_image(std::size_t offset) const {
        image_desc about{};
        void const* const from = read_pointer(block, offset);
        if (from == nullptr || !read(&about, from, sizeof about)) {
            return std::nullopt;
        }
        auto const at_least_one = [](std::size_t size) { return size != 0 ? size : 1; };
        constexpr std::uint32_t array_of_lines = 0x10F5;
        std::size_t const layers = at_least_one(about.image_array_size) * at_least_one(about.image_depth);
        std::size_t const size[] = {about.image_width, at_least_one(about.image_height), layers};
        std::size_t const slice = about.image_type == array_of_lines && about.image_slice_pitch == 0
                                      ? about.image_row_pitch
                                      : about.image_slice_pitch;
        return pixels(size, about.image_row_pitch, slice);
    }
};

} // namespace detail

/// The bytes of a pixel, by the two words of an image's format; 0 for a format that OpenCL 2.2 does not have.
constexpr std::size_t pixel_size_of(std::uint32_t order, std::uint32_t type) noexcept {
    constexpr std::uint32_t first_order = 0x10B0; // CL_R
    constexpr std::uint32_t first_type = 0x10D0;  // CL_SNORM_INT8
    constexpr std::uint8_t channels[] = {1, 1, 2, 2, 3, 4, 4, 4, 1, 1, 1, 2, 3, 1, 1, 3, 3, 4, 4, 4};
    constexpr std::uint8_t sizes[] = {1, 2, 1, 2, 2, 2, 4, 1, 2, 4, 1, 2, 4, 2, 4, 4, 4};
    constexpr std::uint32_t packed[] = {4, 5, 6, 15, 16}; // all channels are in one number
    std::uint32_t const of_order = order - first_order;
    std::uint32_t const of_type = type - first_type;
    if (of_order >= sizeof channels || of_type >= sizeof sizes) {
        return 0;
    }
    for (std::uint32_t const each : packed) {
        if (each == of_type) {
            return sizes[of_type];
        }
    }
    return std::size_t{channels[of_order]} * sizes[of_type];
}

/// Where the bytes behind the pointer in a field are, by its length rule. Nothing if it is not known, or cannot be
/// read. The rules in pixels need the size of a pixel in bytes. Lists of texts and binaries: the list itself.
inline std::optional<memory_rows> rows_of(description const& call, field const& each, void const* block,
                                          std::size_t pixel_size = 0, memory_reader read = detail::copy_memory) {
    return detail::bounds{block, read, pixel_size}.of(call, each);
}

/// How many bytes are behind the pointer in a field, with the gaps between rows. As `rows_of`.
inline std::optional<std::size_t> extent_of(description const& call, field const& each, void const* block,
                                            std::size_t pixel_size = 0, memory_reader read = detail::copy_memory) {
    auto const rows = rows_of(call, each, block, pixel_size, read);
    return rows ? std::optional(rows->end()) : std::nullopt;
}

} // namespace nq
