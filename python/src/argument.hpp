#pragma once

#include "array.hpp"

namespace vorn::mero::python {

/// Local memory for a kernel argument; the type is empty where only bytes are given.
struct local {
    std::size_t bytes;
    std::optional<element> type;
};

/// What a kernel is called with, of any kind. Is made and destroyed with the GIL.
class argument {
public:
    /// `declared` tells what a number of Python becomes; null where the implementation tells nothing. The object must
    /// live as long.
    argument(nb::handle given, easy::detail::parameter const* declared, std::string const& place,
             _nq_cl_context* context);

    void check(easy::argument_place const& at) const;
    void set(exact::kernel& target, unsigned index) const;
    [[nodiscard]] _nq_cl_context* context() const noexcept;
    [[nodiscard]] std::string text() const;

private:
    [[nodiscard]] void const* data() const noexcept { return memory_ ? memory_->data() : packed_.data(); }
    void pack(nb::handle number, easy::detail::parameter const* declared, std::string const& place);

    array const* array_ = nullptr;
    local const* local_ = nullptr;
    bool is_null_ = false;
    std::optional<host_memory> memory_; ///< Of NumPy's numbers, and of vectors and structures.
    std::vector<std::byte> packed_;     ///< A number of Python, as the kernel declares it.
    easy::detail::value_shape shape_{easy::detail::scalar_kind::unknown, 1, 0};
    _nq_cl_context* context_;
};

} // namespace vorn::mero::python

namespace vorn::mero::easy {

/// The checks are those of the layer.
template <>
struct argument_traits<python::argument, default_version> {
    static void check(argument_place const& at, python::argument const& given) { given.check(at); }
    static void set(api<default_version>::kernel& target, unsigned index, python::argument const& given) {
        given.set(target, index);
    }
    static _nq_cl_context* context(python::argument const& given) noexcept { return given.context(); }
    static std::string text(python::argument const& given) { return given.text(); }
};

} // namespace vorn::mero::easy
