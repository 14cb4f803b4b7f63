#pragma once

// Converts a block's fields to the arguments of an OpenCL function, and its result to the block's result fields.

#include "entry_points.hpp"

#include <bit>
#include <type_traits>

namespace nq::bridge {

/// A field of a block, converted to any parameter. Pointers of the wire and of OpenCL have the same representation.
template <class Field>
struct argument {
    Field field;

    template <class Parameter>
    operator Parameter() const noexcept {
        if constexpr (std::is_pointer_v<Parameter>) {
            return std::bit_cast<Parameter>(field);
        } else {
            return static_cast<Parameter>(field);
        }
    }
};
template <class Field>
argument(Field) -> argument<Field>;

/// Writes an error to a block, without a call.
template <class Block>
void refuse(Block& block, [[maybe_unused]] cl_int code) noexcept {
    if constexpr (requires { block.status; }) {
        block.status = code;
    }
    if constexpr (requires { block.error_code; }) {
        block.error_code = code;
    }
    if constexpr (requires { block.result; }) {
        block.result = nullptr;
    }
}

/// Calls a function that returns its status.
template <class Block, class Function, class... Fields>
void invoke(Block& block, Function function, Fields... fields) {
    block.status = function != nullptr ? function(argument{fields}...) : CL_INVALID_OPERATION;
}

/// Calls a function that returns an object or a pointer, and its status through the last parameter. If it fails, the
/// block gets null, and this returns the object that came with the error, if any.
template <class Block, class Function, class... Fields>
auto create(Block& block, Function function, Fields... fields) {
    using object = decltype(function(argument{fields}..., nullptr));
    if (function == nullptr) {
        refuse(block, CL_INVALID_OPERATION);
        return object{nullptr};
    }
    cl_int code = CL_SUCCESS;
    object made = function(argument{fields}..., &code);
    block.result = argument{code == CL_SUCCESS ? made : nullptr};
    block.error_code = code;
    return code == CL_SUCCESS ? nullptr : made;
}

} // namespace nq::bridge
