#pragma once

#include "host_memory.hpp"

#include <cstddef>
#include <variant>

namespace vorn::mero::python {

/// Elements of a device, whose type is only known when the program runs.
struct array {
    held<easy::session> gpu;
    held<easy::array<std::byte>> bytes;
    element type;
    std::vector<std::size_t> shape;

    /// The number of elements.
    [[nodiscard]] std::size_t size() const noexcept { return bytes->size() / type.size; }

    /// Throws `bounds_error` for elements that are not there.
    void check(std::size_t offset, std::size_t count) const { easy::detail::check_bounds(offset, count, size()); }
};

using extent = std::variant<std::size_t, std::vector<std::size_t>>;

/// A copy of host memory.
array array_of(session const& gpu, nb::object const& source);
/// Host memory itself, which is kept until OpenCL has no use for it.
array array_over(session const& gpu, nb::object const& source);
/// Elements that nothing has been written to.
array empty_array(session const& gpu, extent const& shape, nb::object const& dtype);

} // namespace vorn::mero::python
