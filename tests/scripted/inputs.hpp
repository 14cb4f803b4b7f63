#pragma once

// What a block says to OpenCL, in a form that two blocks can be compared by.

#include "names.hpp"

#include <nq/commands.hpp>

#include <cstring>
#include <map>
#include <numeric>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace scripted {

using names::name_of;

/// The bytes of some values, one behind the other.
template <class... T>
std::string bytes_of(T const&... values) {
    return (std::string() + ... + std::string(reinterpret_cast<char const*>(&values), sizeof values));
}

struct field {
    std::size_t offset;
    std::size_t size;
    bool is_place; ///< A pointer to where OpenCL writes a number or an object.
};

/// Initializes each field of a block in turn and notes where it lies.
struct layout_probe {
    std::vector<field>* fields;

    template <class T>
    requires std::is_scalar_v<T>
    operator T() const {
        using pointee = std::remove_pointer_t<T>;
        std::size_t const end = fields->empty() ? 0 : fields->back().offset + fields->back().size;
        fields->push_back({(end + sizeof(T) - 1) / sizeof(T) * sizeof(T), sizeof(T),
                           std::is_pointer_v<T> && std::is_scalar_v<pointee> && !std::is_const_v<pointee> &&
                               !std::is_void_v<std::remove_const_t<std::remove_pointer_t<pointee>>>});
        return T{};
    }
};

template <class Block, class... Probes>
std::vector<field> layout_of(Probes... probes) {
    if constexpr (requires { Block{probes..., layout_probe{}}; }) {
        return layout_of<Block>(probes..., layout_probe{});
    } else {
        std::vector<field> fields;
        ((probes.fields = &fields), ...);
        [[maybe_unused]] Block const filled{probes...};
        return fields;
    }
}

/// Reads the fields of a block, and what they stand for where that is not the value itself.
template <class Block>
struct reader {
    Block const& block;
    std::map<void const*, std::string> meanings{};

    std::vector<std::string> all() {
        static std::vector<field> const fields = layout_of<Block>();
        results();
        arrays();
        texts();
        std::vector<std::string> inputs;
        for (field const& field : fields) {
            char const* const place = reinterpret_cast<char const*>(&block) + field.offset;
            std::string const value(place, field.size);
            auto const meaning = meanings.find(place);
            inputs.push_back(meaning != meanings.end() ? meaning->second : field.is_place ? is_there(value) : value);
        }
        return inputs;
    }

    static std::string is_there(std::string const& pointer) {
        return pointer == std::string(sizeof(void*), '\0') ? "null" : "a place";
    }

    static std::string array(void const* begin, std::size_t size) {
        return "array " + std::string(static_cast<char const*>(begin), size);
    }

    static std::string words_to_zero(auto const* list) {
        constexpr std::remove_cvref_t<decltype(*list)> partition_by_counts = 0x1087; // else the list is one of pairs
        std::size_t n = 0;
        while (list[n] != 0) {
            n += list[0] == partition_by_counts ? 1 : 2;
        }
        return array(list, (n + 1) * sizeof *list);
    }

// Both are passed over in blocks that have no such field; null pointers stand for themselves.
#define SCRIPTED_VALUE(field, meaning)                                                                                 \
    if constexpr (requires { block.field; }) {                                                                         \
        meanings[&block.field] = meaning;                                                                              \
    }
#define SCRIPTED_POINTER(field, meaning)                                                                               \
    if constexpr (requires { block.field == nullptr, meaning; }) {                                                     \
        if (block.field != nullptr) {                                                                                  \
            meanings[&block.field] = meaning;                                                                          \
        }                                                                                                              \
    }
#define SCRIPTED_LIST(field, count) SCRIPTED_POINTER(field, array(block.field, block.count * sizeof *block.field))
#define SCRIPTED_ARRAY(field, size) SCRIPTED_POINTER(field, array(block.field, size))
#define SCRIPTED_TEXT(field) SCRIPTED_POINTER(field, "text " + std::string(block.field))

    void results() {
        SCRIPTED_VALUE(result, "")
        SCRIPTED_VALUE(status, "")
        SCRIPTED_VALUE(error_code, "")
        SCRIPTED_VALUE(param_value, is_there(bytes_of(block.param_value)))
        SCRIPTED_VALUE(image_formats, is_there(bytes_of(block.image_formats)))
        if constexpr (requires { block.map_flags; }) { // the caller's own
            SCRIPTED_VALUE(image_row_pitch, bytes_of(block.image_row_pitch))
            SCRIPTED_VALUE(image_slice_pitch, bytes_of(block.image_slice_pitch))
        }
    }

    void arrays() {
        constexpr std::size_t three_sizes = 3 * sizeof(std::size_t);
        SCRIPTED_LIST(device_list, num_devices)
        SCRIPTED_LIST(devices, num_devices)
        SCRIPTED_LIST(lengths, num_devices)
        SCRIPTED_LIST(input_programs, num_input_programs)
        SCRIPTED_LIST(mem_objects, num_mem_objects)
        SCRIPTED_LIST(svm_pointers, num_svm_pointers)
        SCRIPTED_LIST(sizes, num_svm_pointers)
        SCRIPTED_LIST(global_work_offset, work_dim)
        SCRIPTED_LIST(global_work_size, work_dim)
        SCRIPTED_LIST(local_work_size, work_dim)
        SCRIPTED_ARRAY(arg_value, block.arg_size)
        SCRIPTED_ARRAY(il, block.length)
        SCRIPTED_ARRAY(input_value, block.input_value_size)
        SCRIPTED_ARRAY(spec_value, block.spec_size)
        SCRIPTED_ARRAY(pattern, block.pattern_size)
        SCRIPTED_ARRAY(buffer_origin, three_sizes)
        SCRIPTED_ARRAY(host_origin, three_sizes)
        SCRIPTED_ARRAY(src_origin, three_sizes)
        SCRIPTED_ARRAY(dst_origin, three_sizes)
        SCRIPTED_ARRAY(origin, three_sizes)
        SCRIPTED_ARRAY(region, three_sizes)
        SCRIPTED_ARRAY(fill_color, 16)
        SCRIPTED_ARRAY(image_format, 8)
        SCRIPTED_ARRAY(buffer_create_info, sizeof(nq::buffer_region))
        SCRIPTED_POINTER(image_desc, fields_of(*block.image_desc))
        SCRIPTED_POINTER(properties, words_to_zero(block.properties))
        SCRIPTED_POINTER(sampler_properties, words_to_zero(block.sampler_properties))
        if constexpr (std::is_same_v<Block, nq::block::clSetKernelExecInfo>) {
            SCRIPTED_ARRAY(param_value, block.param_value_size)
        }
    }

    void texts() {
        SCRIPTED_TEXT(options)
        SCRIPTED_TEXT(kernel_name)
        SCRIPTED_TEXT(kernel_names)
        SCRIPTED_TEXT(func_name)
        SCRIPTED_POINTER(strings, block.strings[0] != nullptr ? "text " + std::string(block.strings[0]) : "no text")
        if constexpr (requires { block.binaries; }) {
            std::string& binaries = meanings[&block.binaries];
            for (std::uint32_t i = 0; i != block.num_devices; ++i) {
                binaries += array(block.binaries[i], block.lengths[i]);
            }
        }
    }

    // Without what lies between the fields.
    static std::string fields_of(nq::image_desc const& descriptor) {
        auto const inputs = reader<nq::image_desc>{descriptor}.all();
        return std::accumulate(inputs.begin(), inputs.end(), std::string());
    }

#undef SCRIPTED_VALUE
#undef SCRIPTED_POINTER
#undef SCRIPTED_LIST
#undef SCRIPTED_ARRAY
#undef SCRIPTED_TEXT
};

/// A block's fields in order, without results. A pointer to what OpenCL reads stands for what it leads to, one to where
/// OpenCL writes for being there; wait lists and the caller's memory are compared by their addresses.
template <class Block>
std::vector<std::string> inputs_of(Block const& block) {
    return reader<Block>{block}.all();
}

} // namespace scripted
