#include "array.hpp"

#include <nanobind/stl/string.h>
#include <nanobind/stl/variant.h>
#include <nanobind/stl/vector.h>

#include <vorn/mero/easy/devices.hpp>

#include <variant>

namespace vorn::mero::python {
namespace {

using device = exact::device;
using choice = std::variant<std::monostate, std::string, device>;

easy::session chosen(choice const& which, easy::needs what) {
    if (auto const* const text = std::get_if<std::string>(&which)) {
        return easy::session(*text, what);
    }
    auto const* const one = std::get_if<device>(&which);
    return one != nullptr ? easy::session(*one) : easy::session(what);
}

/// A session for each device; those of one platform share a context.
std::vector<session> sessions(std::vector<device> const& devices) {
    auto const made = without_gil([&] { return easy::devices(devices); });
    std::vector<session> list;
    for (auto const& each : made) {
        list.push_back({held(each)});
    }
    return list;
}

session of_queue(std::intptr_t pointer, bool retain) {
    auto const queue = reinterpret_cast<cl_command_queue>(pointer);
    return {held(without_gil([&] {
        return retain ? easy::from_cl<easy::session>(queue, easy::retain)
                      : easy::from_cl<easy::session>(queue, easy::take_over);
    }))};
}

session of_context(std::intptr_t pointer, std::intptr_t wanted) {
    auto const context = reinterpret_cast<cl_context>(pointer);
    auto const one = reinterpret_cast<cl_device_id>(wanted);
    return {held(without_gil([&] {
        return one == nullptr ? easy::session::on_device_of(context) : easy::session::on_device_of(context, one);
    }))};
}

} // namespace

void define_sessions(nb::module_& module) {
    auto const none = nb::arg("device") = nb::none();
    nb::class_<session>(module, "Session",
                        "A device, a context for it and a queue with profiling: what a program needs to begin. Threads "
                        "may share one.")
        .def(
            "__init__",
            [](session* self, choice const& which, easy::needs what) {
                new (self) session{held(without_gil([&] { return chosen(which, what); }))};
            },
            none, nb::arg("needs") = easy::needs::nothing,
            "On a Device, on the first one that a text means (see `find_devices`), or on the one that MERO_DEVICE "
            "means. "
            "Raises NoDevice.")
        .def("array", array_of, nb::arg("source"), "An array with a copy of what an object of the buffer protocol has.")
        .def("array_over", array_over, nb::arg("source"),
             "An array in the memory of a writable object of the buffer protocol, such as a NumPy array: devices that "
             "share the host's memory copy nothing. Touch its elements only through `Array.map` while the array lives. "
             "The object is kept alive until OpenCL has no use for its memory.")
        .def("empty", empty_array, nb::arg("shape"), nb::arg("dtype"),
             "An array that nothing has been written to. `dtype` is a character of the module struct, or what NumPy "
             "takes as one.")
        .def(
            "finish",
            [](session const& self) {
                without_gil([&] { self.it->finish(); });
                forget_ended();
            },
            "Blocks until everything enqueued so far has ended.")
        .def(
            "flush", [](session const& self) { without_gil([&] { self.it->flush(); }); },
            "Has everything enqueued so far run, without waiting.")
        .def(
            "another_queue", [](session const& self) { return session{held(self.it->another_queue())}; },
            "A session on a further queue of the same device and context.")
        .def(
            "out_of_order", [](session const& self) { return session{held(self.it->out_of_order())}; },
            "The same with a queue that runs commands in any order, but for what they wait for. Raises Unsupported.")
        .def_prop_ro("device", [](session const& self) { return self.it->device(); })
        .def_prop_ro("context", [](session const& self) { return held(self.it->context()); })
        .def_prop_ro("queue", [](session const& self) { return held(self.it->queue()); })
        .def_static("from_int_ptr", of_queue, nb::arg("int_ptr"), nb::arg("retain") = true,
                    "On a queue of another library.")
        .def_static("on_context", of_context, nb::arg("context"), nb::arg("device") = 0,
                    "In a context of another library, on its first device or on that of a handle.")
        .def("__repr__",
             [](session const& self) { return "<vorn_mero.Session on '" + self.it->device().name() + "'>"; });
    module.def("sessions", sessions, nb::arg("devices"),
               "A session for each device. Those of one platform share a context: they may use each other's arrays and "
               "wait for each other's events.");
}

} // namespace vorn::mero::python
