#include "argument.hpp"

#include <nanobind/stl/string.h>

#include <cstring>

namespace vorn::mero::python {
namespace {

using easy::detail::argument_kind;

/// The character of `struct` for a number that OpenCL C declares; empty for what is no single number.
std::string format_of(std::string const& type) {
    constexpr std::pair<char const*, char const*> formats[] = {
        {"char", "b"}, {"uchar", "B"}, {"bool", "?"}, {"short", "h"}, {"ushort", "H"}, {"int", "i"},   {"uint", "I"},
        {"long", "q"}, {"ulong", "Q"}, {"half", "e"}, {"float", "f"}, {"double", "d"}, {"size_t", "Q"}};
    for (auto const& [name, format] : formats) {
        if (type == name) {
            return format;
        }
    }
    return {};
}

} // namespace

argument::argument(nb::handle given, easy::detail::parameter const* declared, std::string const& place,
                   _nq_cl_context* context)
    : context_(context) {
    if (nb::isinstance<array>(given)) {
        array_ = &nb::cast<array const&>(given);
    } else if (nb::isinstance<local>(given)) {
        local_ = &nb::cast<local const&>(given);
    } else if (given.is_none()) {
        is_null_ = true;
    } else if (PyObject_CheckBuffer(given.ptr()) != 0) {
        memory_.emplace(given, false);
        shape_ = memory_->type().shape();
        shape_.size = memory_->bytes();
    } else if (PyLong_Check(given.ptr()) != 0 || PyFloat_Check(given.ptr()) != 0) {
        pack(given, declared, place);
    } else {
        throw easy::argument_error(place + " was given a " + nb::cast<std::string>(given.type().attr("__name__")) +
                                   ": pass an Array, a number, a NumPy number or vector, a Local or None");
    }
}

void argument::pack(nb::handle number, easy::detail::parameter const* declared, std::string const& place) {
    std::string const format = declared == nullptr ? std::string() : format_of(declared->type);
    bool const is_whole = PyLong_Check(number.ptr()) != 0;
    if (format.empty()) {
        if (declared != nullptr && declared->kind != argument_kind::unknown) { // no number fits: the check says so
            shape_ = {is_whole ? easy::detail::scalar_kind::integer : easy::detail::scalar_kind::floating, 8, 8, true};
            packed_.resize(8);
            double const real = PyFloat_AsDouble(number.ptr());
            long long const whole = is_whole ? PyLong_AsLongLong(number.ptr()) : 0;
            PyErr_Clear(); // too large to be named in a message
            std::memcpy(packed_.data(), is_whole ? static_cast<void const*>(&whole) : &real, 8);
            return;
        }
        throw easy::argument_error(place + " has no declaration that tells the size of a number: pass a NumPy number");
    }
    element const type = element::of(nb::str(format.c_str()));
    bool const takes_floating = format == "f" || format == "d" || format == "e";
    if (!is_whole && !takes_floating) { // the check names the mistake
        double const real = PyFloat_AsDouble(number.ptr());
        shape_ = {easy::detail::scalar_kind::floating, sizeof real, sizeof real, true};
        packed_.resize(sizeof real);
        std::memcpy(packed_.data(), &real, sizeof real);
        return;
    }
    try {
        nb::bytes const bytes = element{"=" + format, type.size}.pack(number); // which refuses 1e300 as a float
        auto const* const begin = static_cast<std::byte const*>(bytes.data());
        packed_.assign(begin, begin + bytes.size());
        shape_ = type.shape();
    } catch (nb::python_error const& failure) {
        throw easy::argument_error(place + " takes " + declared->type + ", which cannot hold " +
                                   nb::cast<std::string>(nb::repr(number)) + ": " +
                                   nb::cast<std::string>(nb::str(failure.value())));
    }
}

void argument::check(easy::argument_place const& at) const {
    if (array_ != nullptr) {
        easy::detail::check_memory(at, argument_kind::pointer, array_->type.shape());
    } else if (local_ != nullptr) {
        auto const unknown = easy::detail::value_shape{easy::detail::scalar_kind::unknown, 1, 1};
        easy::detail::check_memory(at, argument_kind::local, local_->type ? local_->type->shape() : unknown);
    } else if (is_null_) {
        easy::detail::check_object(at, argument_kind::pointer);
    } else {
        easy::detail::check_value(at, shape_, data());
    }
}

void argument::set(exact::kernel& target, unsigned index) const {
    if (array_ != nullptr) {
        target.set_argument(index, const_cast<exact::buffer&>(array_->bytes->exact())); // only read
    } else if (local_ != nullptr) {
        target.set_argument(index, exact::local_memory(local_->bytes));
    } else if (is_null_) {
        target.set_argument(index, nullptr);
    } else {
        target.set_argument_raw(index, shape_.size, data());
    }
}

_nq_cl_context* argument::context() const noexcept {
    return array_ != nullptr ? array_->bytes->raw_context() : context_;
}

std::string argument::text() const {
    return array_ != nullptr
               ? "an array of " + std::to_string(array_->size()) + " elements of '" + array_->type.format + "'"
           : local_ != nullptr ? "local memory of " + std::to_string(local_->bytes) + " bytes"
           : is_null_          ? "None"
                               : easy::detail::value_text(shape_, data());
}

} // namespace vorn::mero::python
