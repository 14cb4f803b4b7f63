#include "host_memory.hpp"

#include <nanobind/stl/string.h>

namespace vorn::mero::python {
namespace {

using easy::detail::scalar_kind;

scalar_kind kind_of(char code) {
    return std::string("fd").find(code) != std::string::npos               ? scalar_kind::floating
           : std::string("bBhHiIlLqQnNc?").find(code) != std::string::npos ? scalar_kind::integer
                                                                           : scalar_kind::unknown;
}

} // namespace

easy::detail::value_shape element::shape() const {
    bool const has_order = !format.empty() && std::string("@=<>!").find(format[0]) != std::string::npos;
    bool const is_swapped = has_order && (format[0] == '>' || format[0] == '!') && size > 1;
    if (is_swapped) {
        throw easy::argument_error("elements of the format '" + format + "' have another byte order than the device's");
    }
    std::string const code = has_order ? format.substr(1) : format;
    scalar_kind const kind = code.size() == 1 ? kind_of(code[0]) : scalar_kind::unknown;
    bool const is_signed = kind == scalar_kind::integer && std::string("bhilqn").find(code[0]) != std::string::npos;
    return {kind, size, size, is_signed};
}

element element::of(nb::handle dtype) {
    std::string text;
    if (nb::try_cast(dtype, text) && text.size() == 1) {
        return {text, nb::cast<std::size_t>(nb::module_::import_("struct").attr("calcsize")(text))};
    }
    return host_memory(nb::module_::import_("numpy").attr("empty")(0, dtype), false).type();
}

nb::bytes element::pack(nb::handle number) const {
    return nb::cast<nb::bytes>(nb::module_::import_("struct").attr("pack")(format, number));
}

host_memory::host_memory(nb::handle object, bool is_written) : view_(new Py_buffer{}) {
    int const flags = PyBUF_C_CONTIGUOUS | PyBUF_FORMAT | (is_written ? PyBUF_WRITABLE : 0);
    if (PyObject_GetBuffer(object.ptr(), view_.get(), flags) != 0) {
        throw nb::python_error();
    }
}

element host_memory::type() const {
    return {view_->format != nullptr ? view_->format : "B", static_cast<std::size_t>(view_->itemsize)};
}

std::vector<std::size_t> host_memory::shape() const { return {view_->shape, view_->shape + view_->ndim}; }

} // namespace vorn::mero::python
