#pragma once

#include <bit>
#include <type_traits>

namespace nq::bridge {

/// A field of a block, converted to any parameter, or a parameter to any field. Pointers of the wire and of OpenCL have
/// the same representation.
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

} // namespace nq::bridge
