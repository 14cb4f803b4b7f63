#include "module.hpp"

#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <chrono>
#include <exception>

namespace vorn::mero::python {
namespace {

template <std::chrono::nanoseconds easy::durations::*Member>
std::int64_t nanoseconds(easy::durations const& times) {
    return (times.*Member).count();
}

} // namespace

void define_events(nb::module_& module) {
    using easy::durations;
    nb::class_<durations>(module, "Durations", "How long a command took, on the device's clock, in nanoseconds.")
        .def_prop_ro("queued", nanoseconds<&durations::queued>, "From its enqueueing to its hand-over to the device.")
        .def_prop_ro("waiting", nanoseconds<&durations::waiting>, "From there to its start.")
        .def_prop_ro("running", nanoseconds<&durations::running>, "From start to end.");

    using easy::event;
    nb::class_<event>(module, "Event", "A command that was enqueued. It may be dropped: the command runs all the same.")
        .def(
            "wait", [](event const& self) { without_gil([&] { self.wait(); }); },
            "Blocks until the command has ended. Raises the exception of its status when it failed.")
        .def_prop_ro("done", [](event const& self) { return without_gil([&] { return self.done(); }); })
        .def(
            "time", [](event const& self) { return without_gil([&] { return self.time().count(); }); },
            "Waits, and gives the nanoseconds from start to end.")
        .def(
            "times", [](event const& self) { return without_gil([&] { return self.times(); }); },
            "Waits, and gives the times of the command. Raises common.ProfilingInfoNotAvailable for a queue without "
            "profiling.")
        .def_prop_ro("int_ptr", int_ptr<event>)
        .def_static(
            "from_int_ptr",
            [](std::intptr_t pointer, session const& gpu, bool retain) {
                return from_int_ptr<event, cl_event>(pointer, *gpu.it, retain);
            },
            nb::arg("int_ptr"), nb::arg("session"), nb::arg("retain") = true);

    using easy::user_event;
    nb::class_<user_event>(module, "UserEvent",
                           "An event that the program ends: commands that wait for it start when it is completed, and "
                           "fail when it fails.")
        .def(
            "__init__", [](user_event* self, session const& gpu) { new (self) user_event(*gpu.it); },
            nb::arg("session"))
        .def_prop_ro("event", &user_event::event)
        .def("complete", [](user_event& self) { without_gil([&] { self.complete(); }); })
        .def(
            "fail",
            [](user_event& self, std::string const& text) {
                without_gil([&] { self.fail(std::make_exception_ptr(easy::error(text))); });
            },
            nb::arg("text"));

    module.def(
        "when_all", [](after const& events) { return easy::when_all(events); }, nb::arg("events"),
        "An event that ends when all of these have, and fails when one fails.");
}

} // namespace vorn::mero::python
