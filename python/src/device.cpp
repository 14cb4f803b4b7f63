// Devices, contexts and queues.

#include "module.hpp"

#include <nanobind/operators.h>
#include <nanobind/stl/array.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <functional>

namespace vorn::mero::python {
namespace {

using device = exact::device;

template <class Result>
auto query(Result (device::*member)() const) {
    return [member](device const& self) { return (self.*member)(); };
}

void define_choice(nb::module_& module) {
    using easy::needs;
    nb::enum_<needs>(module, "Needs", nb::is_flag(), "What a program needs of a device; several with `|`.")
        .value("nothing", needs::nothing)
        .value("images", needs::images, "Images and samplers.")
        .value("fp64", needs::fp64, "`double` in kernels.")
        .value("fp16", needs::fp16, "`half` in kernels, beyond loading and storing it.")
        .value("out_of_order", needs::out_of_order, "Queues that run commands in any order.")
        .value("sub_groups", needs::sub_groups, "Sub-groups of a work-group.");
    module.def(
        "find_devices",
        [](std::string const& text, needs what) { return without_gil([&] { return easy::find_devices(text, what); }); },
        nb::arg("text") = "", nb::arg("needs") = needs::nothing,
        "The devices that a text means and that have what is needed, maybe none. A text means a number of "
        "`list_devices`, a type (cpu, gpu, accelerator), or a part of the device's name or of its platform's name or "
        "version, in any case; an empty text means all.");
    module.def(
        "find_device",
        [](std::string const& text, needs what) { return without_gil([&] { return easy::find_device(text, what); }); },
        nb::arg("text") = "", nb::arg("needs") = needs::nothing,
        "The first device of `find_devices`. Raises NoDevice, with what there is, if there is none.");
    module.def(
        "default_device", [](needs what) { return without_gil([&] { return easy::default_device(what); }); },
        nb::arg("needs") = needs::nothing,
        "The device that the environment variable MERO_DEVICE means, in the sense of `find_devices`; the first without "
        "it.");
    module.def(
        "list_devices", [] { return without_gil([] { return easy::list_devices(); }); },
        "The devices, a line each, numbered from 0.");
}

} // namespace

void define_devices(nb::module_& module) {
    nb::class_<device>(module, "Device", "A device for OpenCL 1.2. Equal and hashed by what it names.")
        .def_prop_ro("name", query(&device::name))
        .def_prop_ro("vendor", query(&device::vendor))
        .def_prop_ro("driver_version", query(&device::driver_version))
        .def_prop_ro("device_version", query(&device::device_version), "The OpenCL version and the driver's own text.")
        .def_prop_ro("extensions", query(&device::extensions))
        .def_prop_ro("type", [](device const& self) { return easy::detail::type_name<exact::number>(self); })
        .def_prop_ro("platform_name", [](device const& self) { return self.get_platform().name(); })
        .def_prop_ro("platform_version", [](device const& self) { return self.get_platform().version(); })
        .def_prop_ro("max_compute_units", query(&device::max_compute_units))
        .def_prop_ro("max_clock_frequency", query(&device::max_clock_frequency), "In MHz.")
        .def_prop_ro("max_work_group_size", query(&device::max_work_group_size))
        .def_prop_ro("max_work_item_sizes", query(&device::max_work_item_sizes))
        .def_prop_ro("max_mem_alloc_size", query(&device::max_mem_alloc_size), "In bytes.")
        .def_prop_ro("global_mem_size", query(&device::global_mem_size), "In bytes.")
        .def_prop_ro("local_mem_size", query(&device::local_mem_size), "In bytes.")
        .def_prop_ro("host_unified_memory", query(&device::host_unified_memory))
        .def_prop_ro("is_root", query(&device::is_root_device), "False for a part of another device.")
        .def(
            "partition_equally",
            [](device& self, std::uint32_t units) {
                return without_gil([&] { return self.partition_equally(units); });
            },
            nb::arg("units"), "Parts of the device that have this number of compute units each.")
        .def_prop_ro("int_ptr", int_ptr<device>, "OpenCL's handle as a number, valid as long as the device.")
        .def_static(
            "from_int_ptr",
            [](std::intptr_t pointer) {
                return without_gil([&] { return easy::find_device(reinterpret_cast<cl_device_id>(pointer)); });
            },
            nb::arg("int_ptr"))
        .def(nb::self == nb::self, nb::sig("def __eq__(self, other: object, /) -> bool"))
        .def("__hash__", [](device const& self) { return std::hash<device>()(self); })
        .def("__repr__", [](device const& self) { return "<vorn_mero.Device '" + self.name() + "'>"; });
    define_choice(module);

    using context = exact::context;
    nb::class_<held<context>>(module, "Context", "What sessions on the same devices share.")
        .def_prop_ro("devices", [](held<context> const& self) { return self->get_devices(); })
        .def_prop_ro("reference_count", [](held<context> const& self) { return exact::refcount(*self); })
        .def_prop_ro("int_ptr", [](held<context> const& self) { return int_ptr(*self); });

    using queue = exact::host_queue;
    nb::class_<held<queue>>(module, "Queue", "The queue of a session.")
        .def_prop_ro("device", [](held<queue> const& self) { return self->get_device(); })
        .def_prop_ro("context", [](held<queue> const& self) { return held<context>(self->get_context()); })
        .def_prop_ro("reference_count", [](held<queue> const& self) { return exact::refcount(*self); })
        .def_prop_ro("int_ptr", [](held<queue> const& self) { return int_ptr(*self); });
}

} // namespace vorn::mero::python
