#pragma once

// Extension functions: every use asks OpenCL for the address and calls it directly.

#include "opencl/perform.hpp"

#include <stdexcept>

namespace vorn::mero::VORN_MERO_NAMESPACE::detail {

#if VORN_MERO_OPENCL < 120
template <class Object>
void* find_function(Object const& owner, char const* name) {
    return get_extension_function_address(call_handle_of(owner), name);
}
#else
template <class Object>
void* find_function(Object const& owner, char const* name) {
    return get_extension_function_address_for_platform(call_handle_of(owner), owner.get_platform(), name);
}
#endif

/// The address of an extension function for an object's platform. Throws `std::logic_error` with `otherwise` if there
/// is none.
template <class Function, class Object>
Function* require_function(Object const& owner, char const* name, char const* otherwise) {
    void* const address = find_function(owner, name);
    if (address == nullptr) {
        throw std::logic_error(otherwise);
    }
    return reinterpret_cast<Function*>(address);
}

/// Reads a 64-bit number through `get(size, value, &size_ret)`, which returns OpenCL's status.
template <class Get>
std::uint64_t read_number(Get get) {
    struct {
        void operator()(std::size_t size, void* value) { mero::internal::check_error(get(size, value, &reported)); }

        Get& get;
        std::size_t reported = 0;
    } ask{get};
    return mero::internal::read_scalar<std::uint64_t>(ask);
}

} // namespace vorn::mero::VORN_MERO_NAMESPACE::detail
