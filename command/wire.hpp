#pragma once

// Calls of this program's own, through the wire.

#include <nq/describe.hpp>
#include <nq/nq.hpp>

#include <cstdint>
#include <string>

namespace nq::command {

/// A call handle and its OpenCL version.
struct opened {
    nq_call_handle* handle = nullptr;
    capability version{};
};

/// The pointer that a word of a block holds.
template <class T>
T* to_pointer(std::uint64_t word) {
    return static_cast<T*>(const_cast<void*>(read_pointer(&word, 0)));
}

/// Makes a call. False if there is no such command, or the call failed.
template <class Block>
bool perform(opened through, Block& block) {
    std::uint32_t const id = find_command<Block>(through.version);
    bool const made = id != 0 && nq_call_capability(through.handle, id, &block, nullptr) == result::success;
    std::uint8_t const status = description_of<Block>.status;
    return made && (status == absent || read_field(&block, status, sizeof(std::int32_t)) == 0);
}

/// Asks an info query for a value of a fixed size. `Value{}` if it fails.
template <class Value, class Block>
Value ask(opened through, Block block, std::uint32_t which) {
    Value value{};
    block.param_name = which;
    block.param_value_size = sizeof value;
    block.param_value = &value;
    return perform(through, block) ? value : Value{};
}

/// Asks an info query for a text; empty if it fails.
template <class Block>
std::string ask_text(opened through, Block block, std::uint32_t which) {
    std::size_t size = 0;
    block.param_name = which;
    block.param_value_size_ret = &size;
    if (!perform(through, block) || size == 0) {
        return "";
    }
    std::string text(size, '\0');
    block.param_value_size = size;
    block.param_value = text.data();
    return perform(through, block) ? std::string(text.c_str()) : "";
}

} // namespace nq::command
