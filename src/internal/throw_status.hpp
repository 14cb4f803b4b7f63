#pragma once

// Throwing the exception of an OpenCL status from the function that found it: every function between costs the unwinder
// about 2800 instructions. What a `throw` of one of sixty classes would do is done with the functions that the compiler
// itself calls for it.

#include <vorn/mero/common/error.hpp>

#include <cxxabi.h>
#include <typeinfo>

namespace vorn::mero::internal {

/// The exception of a status other than success, made in memory of the C++ runtime's for exceptions.
[[gnu::cold]] common::error* make_exception(int status);

/// Ends the life of what `make_exception` made, once it was caught.
void destroy_exception(void* exception);

[[noreturn, gnu::always_inline]] inline void throw_status(int status) {
    common::error* const made = make_exception(status);
    abi::__cxa_throw(made, const_cast<std::type_info*>(&typeid(*made)), destroy_exception);
}

} // namespace vorn::mero::internal
