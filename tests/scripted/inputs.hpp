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

/// Collects what the fields of a block stand for where that is not the value
/// itself.
template <class Block>
class reader {
public:
    explicit reader(Block const& block) : block_(block) {
        results();
        arrays();
        texts();
    }

    std::vector<std::string> all() const {
        static std::vector<field> const fields = layout_of<Block>();
        std::vector<std::string> inputs;
        for (field const& field : fields) {
            char const* const place = reinterpret_cast<char const*>(&block_) + field.offset;
            std::string const value(place, field.size);
            auto const meaning = meanings_.find(place);
            inputs.push_back(meaning != meanings_.end() ? meaning->second : field.is_place ? is_there(value) : value);
        }
        return inputs;
    }

private:
    static std::string is_there(std::string const& pointer) {
        return pointer == std::string(sizeof(void*), '\0') ? "null" : "a place";
    }

    void means(void const* place, std::string meaning) { meanings_[place] = std::move(meaning); }

    /// Null pointers stand for themselves.
    template <class T>
    requires std::is_pointer_v<T>
    void array(T const& field, std::size_t size) {
        if (field != nullptr) {
            auto const* const bytes = static_cast<char const*>(static_cast<void const*>(field));
            means(&field, "array " + std::string(bytes, size));
        }
    }

    template <class Word>
    void words_to_zero(Word const* const& list) {
        constexpr Word partition_by_counts = 0x1087; // else the list is one of pairs
        std::size_t n = 0;
        while (list != nullptr && list[n] != 0) {
            n += list[0] == partition_by_counts ? 1 : 2;
        }
        array(list, (n + 1) * sizeof(Word));
    }

// Applied to blocks that have such a field only.
#define SCRIPTED_ARRAY(field, size)                                                                                    \
    if constexpr (requires { array(block_.field, size); }) {                                                           \
        array(block_.field, size);                                                                                     \
    }
#define SCRIPTED_LIST(field, count) SCRIPTED_ARRAY(field, block_.count * sizeof *block_.field)

    void results() {
        if constexpr (requires { block_.result; }) {
            means(&block_.result, "");
        }
        if constexpr (requires { block_.status; }) {
            means(&block_.status, "");
        }
        if constexpr (requires { block_.error_code; }) {
            means(&block_.error_code, "");
        }
        if constexpr (requires { block_.param_value_size_ret; }) {
            means(&block_.param_value, is_there(bytes_of(block_.param_value)));
        }
        if constexpr (requires { block_.image_formats; }) {
            means(&block_.image_formats, is_there(bytes_of(block_.image_formats)));
        }
        if constexpr (requires { block_.image_slice_pitch, block_.map_flags; }) { // the caller's own
            means(&block_.image_row_pitch, bytes_of(block_.image_row_pitch));
            means(&block_.image_slice_pitch, bytes_of(block_.image_slice_pitch));
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
        SCRIPTED_ARRAY(arg_value, block_.arg_size)
        SCRIPTED_ARRAY(il, block_.length)
        SCRIPTED_ARRAY(input_value, block_.input_value_size)
        SCRIPTED_ARRAY(spec_value, block_.spec_size)
        SCRIPTED_ARRAY(pattern, block_.pattern_size)
        SCRIPTED_ARRAY(buffer_origin, three_sizes)
        SCRIPTED_ARRAY(host_origin, three_sizes)
        SCRIPTED_ARRAY(src_origin, three_sizes)
        SCRIPTED_ARRAY(dst_origin, three_sizes)
        SCRIPTED_ARRAY(origin, three_sizes)
        SCRIPTED_ARRAY(region, three_sizes)
        SCRIPTED_ARRAY(fill_color, 16)
        SCRIPTED_ARRAY(image_format, 8)
        SCRIPTED_ARRAY(buffer_create_info, sizeof(nq::buffer_region))
        if constexpr (requires { block_.image_desc; }) {
            auto const inputs =
                reader<nq::image_desc>(*block_.image_desc).all(); // without what lies between its fields
            means(&block_.image_desc, std::accumulate(inputs.begin(), inputs.end(), std::string("image ")));
        }
        if constexpr (requires { words_to_zero(block_.properties); }) {
            words_to_zero(block_.properties);
        }
        if constexpr (requires { words_to_zero(block_.sampler_properties); }) {
            words_to_zero(block_.sampler_properties);
        }
        if constexpr (std::is_same_v<Block, nq::block::clSetKernelExecInfo>) {
            array(block_.param_value, block_.param_value_size);
        }
    }

    void texts() {
        SCRIPTED_ARRAY(options, std::strlen(block_.options) + 1)
        SCRIPTED_ARRAY(kernel_name, std::strlen(block_.kernel_name) + 1)
        SCRIPTED_ARRAY(kernel_names, std::strlen(block_.kernel_names) + 1)
        SCRIPTED_ARRAY(func_name, std::strlen(block_.func_name) + 1)
        if constexpr (requires { block_.strings; }) {
            char const* const text = block_.strings[0];
            means(&block_.strings, text != nullptr ? "text " + std::string(text) : "no text");
        }
        if constexpr (requires { block_.binaries; }) {
            std::string binaries = "binaries";
            for (std::uint32_t i = 0; i != block_.num_devices; ++i) {
                binaries += ' ' + std::string(reinterpret_cast<char const*>(block_.binaries[i]), block_.lengths[i]);
            }
            means(&block_.binaries, binaries);
        }
    }

#undef SCRIPTED_ARRAY
#undef SCRIPTED_LIST

    Block const& block_;
    std::map<void const*, std::string> meanings_;
};

/// A block's fields in order, without results. A pointer to what OpenCL reads
/// stands for what it leads to, one to where OpenCL writes for being there;
/// wait lists and the caller's memory are compared by their addresses.
template <class Block>
std::vector<std::string> inputs_of(Block const& block) {
    return reader<Block>(block).all();
}

} // namespace scripted
