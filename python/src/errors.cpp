// Every exception class of the C++ headers as a class of Python, with the same bases.

#include "module.hpp"

#include <nanobind/stl/pair.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <nq/error.hpp>

#include <array>
#include <cctype>
#include <exception>
#include <map>
#include <type_traits>

namespace vorn::mero::python {
namespace {

struct entry {
    char const* space;
    char const* name;
    char const* base;
    char const* text;
};

constexpr entry derived_first[] = {
#define EXCEPTION(number, space, name, base, text) {#space, #name, #base, text},
#include "exceptions.inc"
#undef EXCEPTION
};
constexpr std::size_t count = sizeof derived_first / sizeof derived_first[0];

/// By number; each lives as long as the process, as the translation does.
std::array<PyObject*, count> classes;

void translate(std::exception_ptr const& thrown, void* payload);

/// The exception that is nested in another as a Python object; null without one.
template <class Failure>
nb::object cause_of(Failure const& failure) {
    try {
        std::rethrow_if_nested(failure);
        return {};
    } catch (...) {
        try {
            translate(std::current_exception(), nullptr);
        } catch (...) { // no class of the library's
            return {};
        }
        nb::python_error const translated; // takes what has been set
        return nb::borrow(translated.value());
    }
}

template <class Failure>
void add_attributes(nb::object& made, Failure const& failure) {
    if constexpr (std::is_base_of<common::opencl_error, Failure>::value) {
        made.attr("code") = static_cast<int>(failure.code());
    } else if constexpr (std::is_base_of<common::unknown_opencl_error, Failure>::value) {
        made.attr("code") = failure.value();
    } else if constexpr (std::is_base_of<nq::nq_error, Failure>::value) {
        made.attr("code") = failure.code();
    } else if constexpr (std::is_base_of<easy::build_failure, Failure>::value) {
        std::vector<std::pair<std::string, std::string>> reports;
        for (auto const& each : failure.reports()) {
            reports.emplace_back(each.device, each.log);
        }
        made.attr("device") = failure.device();
        made.attr("options") = failure.options();
        made.attr("log") = failure.log();
        made.attr("reports") = reports;
    }
}

template <class Failure>
void raise(std::size_t number, Failure const& failure) {
    std::string text = failure.what();
    if constexpr (std::is_base_of<nq::nq_error, Failure>::value) {
        text = text.empty() ? "libnq returned " + std::to_string(failure.code()) : text;
    }
    nb::object made = nb::borrow(classes[number])(text);
    add_attributes(made, failure);
    nb::object cause = cause_of(failure);
    if (cause.is_valid()) {
        PyException_SetCause(made.ptr(), cause.release().ptr());
    }
    PyErr_SetObject(classes[number], made.ptr());
}

void translate(std::exception_ptr const& thrown, void* /*payload*/) {
    try {
        std::rethrow_exception(thrown);
    }
#define EXCEPTION(number, space, name, base, text)                                                                     \
    catch (space::name const& failure) {                                                                               \
        raise(number, failure);                                                                                        \
    }
#include "exceptions.inc"
#undef EXCEPTION
}

/// "InvalidValue" of "invalid_value".
std::string python_name(std::string const& name) {
    std::string made;
    bool begins = true;
    for (char const each : name) {
        if (each != '_') {
            made += begins ? static_cast<char>(std::toupper(static_cast<unsigned char>(each))) : each;
        }
        begins = each == '_';
    }
    auto const found = made.find("Opencl");
    return found == std::string::npos ? made : made.replace(found, 6, "OpenCL");
}

/// One of a class, whatever it is made of.
template <class Failure>
[[noreturn]] void throw_one() {
    if constexpr (std::is_default_constructible<Failure>::value) {
        throw Failure();
    } else if constexpr (std::is_constructible<Failure, std::string, common::error_code>::value) {
        throw Failure("text", common::error_code::invalid_value);
    } else if constexpr (std::is_constructible<Failure, int>::value) {
        throw Failure(-1234);
    } else if constexpr (std::is_constructible<Failure, std::string, int>::value) {
        throw Failure("text", -1234);
    } else if constexpr (std::is_same<Failure, easy::build_failure>::value) {
        throw Failure("device", "options", "text");
    } else {
        throw Failure("text");
    }
}

/// Throws the C++ exception of a qualified name.
void throw_by_name(std::string const& wanted) {
#define EXCEPTION(number, space, name, base, text)                                                                     \
    if (wanted == #space "::" #name) {                                                                                 \
        throw_one<space::name>();                                                                                      \
    }
#include "exceptions.inc"
#undef EXCEPTION
    throw nb::key_error(wanted.c_str());
}

} // namespace

void define_errors(nb::module_& module) {
    nb::module_ common = module.def_submodule("common", "The exceptions of OpenCL's statuses.");
    nb::module_ nq = module.def_submodule("nq", "The exceptions of libnq, by which the library reaches OpenCL.");
    std::map<std::string, PyObject*> known{{"std::exception", PyExc_Exception},
                                           {"std::runtime_error", PyExc_RuntimeError}};
    nb::dict by_name;
    for (std::size_t number = 0; number != count; ++number) {
        entry const& each = derived_first[count - 1 - number];
        std::string const space = each.space;
        nb::module_& scope = space == "vorn::mero::common" ? common : space == "nq" ? nq : module;
        std::string const name = python_name(each.name);
        std::string const qualified = nb::cast<std::string>(scope.attr("__name__")) + "." + name;
        PyObject* const made = PyErr_NewExceptionWithDoc(qualified.c_str(), each.text, known.at(each.base), nullptr);
        if (made == nullptr) {
            throw nb::python_error();
        }
        classes[number] = made;
        known[space + "::" + each.name] = made;
        by_name[(space + "::" + each.name).c_str()] = nb::borrow(made);
        scope.attr(name.c_str()) = nb::borrow(made);
    }
    nb::register_exception_translator(translate);
    module.def(
        "check", [](int status) { internal::check_error(status); }, nb::arg("status"),
        "Raises the exception of an OpenCL status, such as one from another library; nothing for 0.");
    module.attr("_exceptions") = by_name;
    module.def("_raise", throw_by_name, nb::arg("name"));
}

} // namespace vorn::mero::python
