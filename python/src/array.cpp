#include "array.hpp"

#include "kept.hpp"

#include <nanobind/stl/optional.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/variant.h>
#include <nanobind/stl/vector.h>

#include <algorithm>

namespace vorn::mero::python {

namespace {

using bytes_type = easy::array<std::byte>;
/// The number of the array's elements that the memory has room for. Plain bytes fit every array.
std::size_t count_in(array const& self, host_memory const& memory) {
    element const type = memory.type();
    auto const wanted = self.type.shape();
    auto const given = type.shape();
    if (type.size != 1 && (given.size != wanted.size || easy::detail::differ(wanted.kind, given.kind))) {
        throw easy::argument_error("an array of the format '" + self.type.format +
                                   "' does not go with memory of the format '" + type.format + "'");
    }
    if (memory.bytes() % self.type.size != 0) {
        throw easy::bounds_error(std::to_string(memory.bytes()) + " bytes are no number of elements of " +
                                 std::to_string(self.type.size));
    }
    return memory.bytes() / self.type.size;
}

nb::object read(array const& self, nb::object out, std::size_t offset, after const& earlier) {
    if (out.is_none()) {
        self.check(offset, 0);
        std::size_t const count = self.size() - offset;
        nb::object const made =
            nb::steal(PyByteArray_FromStringAndSize(nullptr, static_cast<Py_ssize_t>(count * self.type.size)));
        if (!made.is_valid()) {
            throw nb::python_error();
        }
        read(self, made, offset, earlier);
        nb::object const view = nb::steal(PyMemoryView_FromObject(made.ptr()));
        bool const is_known = self.type.format.size() == 1 && // to memoryview.cast
                              std::string("bBhHiIlLqQnNfd?").find(self.type.format) != std::string::npos;
        return !is_known                   ? view
               : offset == 0 && count != 0 ? view.attr("cast")(self.type.format, self.shape)
                                           : view.attr("cast")(self.type.format);
    }
    host_memory const memory(out, true);
    std::size_t const count = count_in(self, memory);
    self.check(offset, count);
    without_gil([&] {
        self.bytes->read(static_cast<std::byte*>(memory.data()), memory.bytes(), offset * self.type.size,
                         easy::after(earlier));
    });
    return out;
}

void write(array& self, nb::object const& source, std::size_t offset, after const& earlier) {
    host_memory const memory(source, false);
    self.check(offset, count_in(self, memory));
    without_gil([&] {
        self.bytes->write(static_cast<std::byte const*>(memory.data()), memory.bytes(), offset * self.type.size,
                          easy::after(earlier));
    });
}

easy::event fill(array& self, nb::object const& value, after const& earlier) {
    nb::bytes packed;
    if (PyObject_CheckBuffer(value.ptr()) != 0) {
        host_memory const memory(value, false);
        packed = nb::bytes(memory.data(), memory.bytes());
    } else {
        packed = self.type.pack(value);
    }
    if (packed.size() != self.type.size) {
        throw easy::argument_error("an element has " + std::to_string(self.type.size) + " bytes, and not " +
                                   std::to_string(packed.size()));
    }
    auto const* const begin = static_cast<unsigned char const*>(packed.data());
    std::vector<unsigned char> const pattern(begin, begin + packed.size());
    return without_gil([&] {
        auto const list = easy::after(earlier);
        if (self.size() == 0) {
            return self.gpu->state()->enqueue_nothing(list);
        }
        return self.gpu->state()->enqueue(exact::fill_buffer_bytes(self.bytes->exact(), pattern, 0, self.size()), list);
    });
}

array part(array& self, std::size_t offset, std::size_t count) {
    self.check(offset, count);
    try {
        return {self.gpu, held(self.bytes->part(offset * self.type.size, count * self.type.size)), self.type, {count}};
    } catch (easy::bounds_error const&) { // which counts bytes
        auto const& device = self.gpu->device();
        throw easy::bounds_error("a part cannot begin at element " + std::to_string(offset) + ": " + device.name() +
                                 " begins them at multiples of " + std::to_string(device.mem_base_addr_align() / 8) +
                                 " bytes; a kernel can take the offset as an argument instead");
    }
}

array on(array const& self, session const& other) {
    return {other.it, held(self.bytes->on(*other.it)), self.type, self.shape};
}

easy::event copy_to(array const& self, array& destination, std::size_t from, std::size_t to,
                    std::optional<std::size_t> const& count, after const& earlier) {
    std::size_t const size = self.type.size;
    self.check(from, 0);
    std::size_t const elements = count.value_or(self.size() - from);
    self.check(from, elements);
    return without_gil([&] {
        return self.bytes->copy_to(*destination.bytes, from * size, easy::detail::product(to, size), elements * size,
                                   easy::after(earlier));
    });
}

array adopted(std::intptr_t pointer, session const& gpu, nb::object const& dtype, bool retain) {
    element type = element::of(dtype);
    held<bytes_type> whole(from_int_ptr<bytes_type, cl_mem>(pointer, *gpu.it, retain));
    std::size_t const count = whole->size() / type.size;
    return {gpu.it, std::move(whole), std::move(type), {count}};
}

std::string repr(array const& self) {
    std::string extents;
    for (std::size_t const each : self.shape) {
        extents += (extents.empty() ? "" : ", ") + std::to_string(each);
    }
    return "<vorn_mero.Array of (" + extents + ") '" + self.type.format + "'>";
}

} // namespace

array array_over(session const& gpu, nb::object const& source) {
    auto memory = std::make_unique<host_memory>(source, true);
    element type = memory->type();
    auto shape = memory->shape();
    auto* const data = static_cast<std::byte*>(memory->data());
    std::size_t const bytes = memory->bytes();
    held<bytes_type> over(without_gil([&] { return gpu.it->array_over(data, bytes); }));
    if (bytes != 0) {
        keep_for(over->exact(), std::move(memory));
    }
    return {gpu.it, std::move(over), std::move(type), std::move(shape)};
}

array array_of(session const& gpu, nb::object const& source) {
    host_memory const memory(source, false);
    held<bytes_type> copy(without_gil([&] {
        auto made = gpu.it->array<std::byte>(memory.bytes());
        made.write(static_cast<std::byte const*>(memory.data()), memory.bytes());
        return made;
    }));
    return {gpu.it, std::move(copy), memory.type(), memory.shape()};
}

array empty_array(session const& gpu, extent const& shape, nb::object const& dtype) {
    element type = element::of(dtype);
    auto const* const one = std::get_if<std::size_t>(&shape);
    auto extents = one != nullptr ? std::vector<std::size_t>{*one} : std::get<std::vector<std::size_t>>(shape);
    std::size_t bytes = type.size;
    for (std::size_t const each : extents) {
        bytes = easy::detail::product(bytes, each);
    }
    return {gpu.it, held(without_gil([&] { return gpu.it->array<std::byte>(bytes); })), std::move(type),
            std::move(extents)};
}

void define_arrays(nb::module_& module) {
    nb::class_<array>(
        module, "Array",
        "Elements in a buffer of a device, made by a session. Offsets and counts are in elements, also of "
        "arrays of several dimensions. `after` is a list of events to wait for.")
        .def_prop_ro("size", &array::size, "The number of elements.")
        .def("__len__", &array::size)
        .def_prop_ro("shape",
                     [](array const& self) {
                         return nb::typed<nb::tuple, std::size_t, nb::ellipsis>(nb::tuple(nb::cast(self.shape)));
                     })
        .def_prop_ro(
            "format", [](array const& self) { return self.type.format; }, "As of the buffer protocol.")
        .def_prop_ro("itemsize", [](array const& self) { return self.type.size; })
        .def_prop_ro("nbytes", [](array const& self) { return self.bytes->size(); })
        .def("read", read, nb::arg("out") = nb::none(), nb::arg("offset") = 0, nb::arg("after") = after{},
             "Copies elements into `out`, any writable object with the buffer protocol, and returns it; as many as it "
             "has room for. Without one returns a memoryview of all from `offset` on. Blocks.")
        .def("write", write, nb::arg("source"), nb::arg("offset") = 0, nb::arg("after") = after{},
             "Copies what an object with the buffer protocol has to `offset` and behind. Blocks.")
        .def("fill", fill, nb::arg("value"), nb::arg("after") = after{}, "Sets every element. Does not block.")
        .def("copy_to", copy_to, nb::arg("destination"), nb::arg("offset") = 0, nb::arg("to") = 0,
             nb::arg("count") = nb::none(), nb::arg("after") = after{},
             "Copies elements to another array on the device. Does not block.")
        .def("part", part, nb::arg("offset"), nb::arg("count"), "Elements as an array by itself, in the same memory.")
        .def("on", on, nb::arg("session"), "The same elements by the queue of another session of the context.")
        .def_prop_ro("int_ptr", [](array const& self) { return int_ptr(*self.bytes); })
        .def_static("from_int_ptr", adopted, nb::arg("int_ptr"), nb::arg("session"), nb::arg("dtype") = "B",
                    nb::arg("retain") = true)
        .def("__repr__", repr);
}

} // namespace vorn::mero::python
