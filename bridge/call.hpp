#pragma once

// Converts a block's fields to the arguments of an OpenCL function, and its result to the block's result fields.

#include "argument.hpp"
#include "guards.hpp"

namespace nq::bridge {

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

/// The error code if a function must not be called, else CL_SUCCESS. A null object comes first, since an ICD loader
/// refuses it before it looks for the function.
template <class Block, class Function, class First>
cl_int refusal(Block const& block, Function function, First first) noexcept {
    if constexpr (code_for_null<First> != CL_SUCCESS) {
        if (first == nullptr) {
            return code_for_null<First>;
        }
    }
    if (cl_int const code = missing_argument(block); code != CL_SUCCESS) {
        return code;
    }
    return function != nullptr ? CL_SUCCESS : CL_INVALID_OPERATION;
}

/// Calls a function that returns its status.
template <class Block, class Function, class First, class... Fields>
void invoke(Block& block, Function function, First const& first, Fields const&... fields) {
    if (cl_int const code = refusal(block, function, first); code != CL_SUCCESS) [[unlikely]] {
        refuse(block, code);
    } else {
        block.status = function(argument{first}, argument{fields}...);
    }
}

/// Calls a function that returns an object or a pointer, and its status through the last parameter. If it fails, the
/// block gets null, and this returns the object that came with the error, if any.
template <class Block, class Function, class First, class... Fields>
auto create(Block& block, Function function, First const& first, Fields const&... fields) {
    using object = decltype(function(argument{first}, argument{fields}..., nullptr));
    if (cl_int const code = refusal(block, function, first); code != CL_SUCCESS) [[unlikely]] {
        refuse(block, code);
        return object{nullptr};
    }
    cl_int code = CL_SUCCESS;
    object made = function(argument{first}, argument{fields}..., &code);
    block.result = argument{code == CL_SUCCESS ? made : nullptr};
    block.error_code = code;
    return code == CL_SUCCESS ? nullptr : made;
}

} // namespace nq::bridge
