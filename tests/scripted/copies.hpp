#pragma once

// What the pointers of a block point to.

#include "scripted/scripted.hpp"

#include <concepts>

namespace scripted {

/// The words of a property list: pairs up to a zero in the place of a name, or a list of counts up to the zero that
/// ends it.
template <class Word>
std::size_t property_words(Word const* list) {
    constexpr Word partition_by_counts = 0x1087;
    std::size_t n = 0;
    if (list[0] == partition_by_counts) {
        while (list[n] != 0) {
            ++n;
        }
        return n + 1;
    }
    while (list[n] != 0) {
        n += 2;
    }
    return n + 1;
}

/// Copies what a block points to into `copies`.
template <class Block>
class copier {
public:
    copier(Block const& block, call& target) : block_(block), target_(target) {}

    void run() {
        arrays();
        fixed_sizes();
        texts();
        lists_of_texts();
    }

private:
    using parts = std::vector<std::string>;

    void array(char const* name, void const* data, std::size_t size) {
        if (data != nullptr) {
            target_.copies[name] = {std::string(static_cast<char const*>(data), size)};
        }
    }

    template <class T>
    static constexpr std::size_t element_size = sizeof(T);

    void text_list(char const* name, char const* const* list, std::size_t const* lengths, std::size_t count) {
        if (list == nullptr) {
            return;
        }
        parts& copies = target_.copies[name];
        for (std::size_t i = 0; i != count; ++i) {
            bool const has_length = lengths != nullptr && lengths[i] != 0;
            copies.push_back(list[i] == nullptr ? std::string()
                             : has_length       ? std::string(list[i], lengths[i])
                                                : std::string(list[i]));
        }
    }

// A field that not every block has, and a count that is no pointer: some listings have a pointer of that name.
#define HAS_ARRAY(field, count)                                                                                        \
    requires {                                                                                                         \
        requires std::is_pointer_v<decltype(block_.field)>;                                                            \
        requires std::integral<decltype(block_.count)>;                                                                \
    }
#define COPY_ARRAY(field, count)                                                                                       \
    if constexpr (HAS_ARRAY(field, count)) {                                                                           \
        array(#field, block_.field, block_.count* element_size<std::remove_pointer_t<decltype(block_.field)>>);        \
    }
#define COPY_BYTES(field, count)                                                                                       \
    if constexpr (HAS_ARRAY(field, count)) {                                                                           \
        array(#field, block_.field, block_.count);                                                                     \
    }
#define COPY_FIXED(field, size)                                                                                        \
    if constexpr (requires { requires std::is_pointer_v<decltype(block_.field)>; }) {                                  \
        array(#field, block_.field, size);                                                                             \
    }
#define COPY_TEXT(field)                                                                                               \
    if constexpr (requires { block_.field; }) {                                                                        \
        array(#field, block_.field, block_.field != nullptr ? std::strlen(block_.field) : 0);                          \
    }

    void arrays() {
        COPY_ARRAY(event_wait_list, num_events_in_wait_list)
        COPY_ARRAY(event_list, num_events)
        COPY_ARRAY(device_list, num_devices)
        COPY_ARRAY(devices, num_devices)
        COPY_ARRAY(lengths, count)
        COPY_ARRAY(lengths, num_devices)
        COPY_ARRAY(input_headers, num_input_headers)
        COPY_ARRAY(input_programs, num_input_programs)
        COPY_ARRAY(mem_objects, num_mem_objects)
        COPY_ARRAY(mem_list, num_mem_objects)
        COPY_ARRAY(args_mem_loc, num_mem_objects)
        COPY_ARRAY(svm_pointers, num_svm_pointers)
        COPY_ARRAY(sizes, num_svm_pointers)
        COPY_ARRAY(global_work_offset, work_dim)
        COPY_ARRAY(global_work_size, work_dim)
        COPY_ARRAY(local_work_size, work_dim)
        COPY_BYTES(args, cb_args)
        COPY_BYTES(arg_value, arg_size)
        COPY_BYTES(il, length)
        COPY_BYTES(input_value, input_value_size)
        COPY_BYTES(spec_value, spec_size)
        COPY_BYTES(pattern, pattern_size)
        if constexpr (std::same_as<Block, nq::block::clSetKernelExecInfo>) { // elsewhere this is where replies go
            array("param_value", block_.param_value, block_.param_value_size);
        }
    }

    void fixed_sizes() {
        constexpr std::size_t three_sizes = 3 * sizeof(std::size_t);
        COPY_FIXED(buffer_origin, three_sizes)
        COPY_FIXED(host_origin, three_sizes)
        COPY_FIXED(src_origin, three_sizes)
        COPY_FIXED(dst_origin, three_sizes)
        COPY_FIXED(origin, three_sizes)
        COPY_FIXED(region, three_sizes)
        COPY_FIXED(fill_color, 16)
        COPY_FIXED(image_format, 8)
        COPY_FIXED(image_desc, sizeof(nq::image_desc))
        COPY_FIXED(buffer_create_info, sizeof(nq::buffer_region))
        if constexpr (requires { property_words(block_.properties); }) {
            if (block_.properties != nullptr) {
                array("properties", block_.properties, property_words(block_.properties) * sizeof(std::uint64_t));
            }
        }
        if constexpr (requires { property_words(block_.sampler_properties); }) {
            if (block_.sampler_properties != nullptr) {
                array("sampler_properties", block_.sampler_properties,
                      property_words(block_.sampler_properties) * sizeof(std::uint64_t));
            }
        }
    }

    void texts() {
        COPY_TEXT(options)
        COPY_TEXT(kernel_name)
        COPY_TEXT(kernel_names)
        COPY_TEXT(func_name)
    }

    void lists_of_texts() {
        if constexpr (requires { block_.strings; }) {
            text_list("strings", block_.strings, block_.lengths, block_.count);
        }
        if constexpr (requires { block_.header_include_names; }) {
            text_list("header_include_names", block_.header_include_names, nullptr, block_.num_input_headers);
        }
        if constexpr (requires { block_.binaries; }) {
            binaries();
        }
    }

    void binaries() {
        if (block_.binaries == nullptr || block_.lengths == nullptr) {
            return;
        }
        parts& copies = target_.copies["binaries"];
        for (std::uint32_t i = 0; i != block_.num_devices; ++i) {
            auto const* const binary = reinterpret_cast<char const*>(block_.binaries[i]);
            copies.push_back(binary != nullptr ? std::string(binary, block_.lengths[i]) : std::string());
        }
    }

#undef HAS_ARRAY
#undef COPY_ARRAY
#undef COPY_BYTES
#undef COPY_FIXED
#undef COPY_TEXT

    Block const& block_;
    call& target_;
};

} // namespace scripted
