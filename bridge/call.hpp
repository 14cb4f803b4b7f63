#pragma once

// How a block's fields become the arguments of an OpenCL function, and its result the block's result fields.

#include "entry_points.hpp"

#include <bit>
#include <type_traits>

namespace nq::bridge {

/// A field of a block on its way into a parameter. The wire's pointers and OpenCL's have the same representation.
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

/// Leaves an error in a block without a call.
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

/// A function that returns its status.
template <class Block, class Function, class... Fields>
void invoke(Block& block, Function function, Fields... fields) {
    block.status = function != nullptr ? function(argument{fields}...) : CL_INVALID_OPERATION;
}

/// A function that returns an object or a pointer, and its status through its last parameter.
template <class Block, class Function, class... Fields>
void create(Block& block, Function function, Fields... fields) {
    if (function == nullptr) {
        return refuse(block, CL_INVALID_OPERATION);
    }
    cl_int code = CL_SUCCESS;
    block.result = argument{function(argument{fields}..., &code)};
    block.error_code = code;
    if (code != CL_SUCCESS) [[unlikely]] {
        block.result = nullptr;
    }
}

/// As `create`, for the two functions that can leave an object beside their error: nobody else would release it.
template <class Block, class Function, class Release, class... Fields>
void create_or_release(Block& block, Function function, Release release, Fields... fields) {
    if (function == nullptr) {
        return refuse(block, CL_INVALID_OPERATION);
    }
    cl_int code = CL_SUCCESS;
    auto* object = function(argument{fields}..., &code);
    if (code != CL_SUCCESS && object != nullptr) {
        release(object);
        object = nullptr;
    }
    block.result = argument{object};
    block.error_code = code;
}

} // namespace nq::bridge
