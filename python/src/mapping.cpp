// Elements of an array in the host's reach, as memory of the buffer protocol.

#include "array.hpp"

#include <nanobind/stl/optional.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

namespace vorn::mero::python {
namespace {

using written = easy::mapped_array<std::byte, easy::default_version>;
using only_read = easy::mapped_array<std::byte const, easy::default_version>;

enum class mode { read, write, both };

/// Mapped from `enter` on, until `leave` or, if Python still has views then, until the last of them is gone.
class mapping {
public:
    mapping(array its_array, mode how, std::size_t offset, std::size_t count, after earlier)
        : array_(std::move(its_array)), how_(how), offset_(offset * array_.type.size), count_(count),
          earlier_(std::move(earlier)) {
        bool const is_whole = count == array_.size();
        for (std::size_t const each : is_whole ? array_.shape : std::vector<std::size_t>{count}) {
            shape_.push_back(static_cast<Py_ssize_t>(each));
        }
        strides_.resize(shape_.size());
        auto stride = static_cast<Py_ssize_t>(array_.type.size);
        for (std::size_t i = shape_.size(); i-- != 0;) {
            strides_[i] = stride;
            stride *= shape_[i];
        }
    }

    static nb::object enter(nb::handle self) {
        auto& it = nb::cast<mapping&>(self);
        if (it.first_ != nullptr) {
            throw easy::order_error("the elements are mapped already");
        }
        it.map();
        nb::object view = nb::steal(PyMemoryView_FromObject(self.ptr()));
        if (!view.is_valid()) {
            throw nb::python_error();
        }
        it.view_ = nb::weakref(view);
        return view;
    }

    /// Raises BufferError while there are other views.
    void leave(nb::args const& /*what was raised*/) {
        if (view_.is_valid()) {
            nb::object const view = view_();
            if (!view.is_none()) {
                view.attr("release")();
            }
        }
        if (exports_ != 0) {
            PyErr_SetString(PyExc_BufferError, "views of mapped memory are left: drop them inside of the block");
            throw nb::python_error();
        }
        unmap();
    }

    static int get_buffer(PyObject* self, Py_buffer* view, int flags) {
        auto& it = *nb::inst_ptr<mapping>(self);
        bool const is_only_read = it.how_ == mode::read;
        if (it.first_ == nullptr || (is_only_read && (flags & PyBUF_WRITABLE) != 0)) {
            PyErr_SetString(PyExc_BufferError,
                            it.first_ == nullptr ? "not mapped: use it in a `with` block" : "mapped for reading only");
            view->obj = nullptr;
            return -1;
        }
        Py_INCREF(self);
        *view = Py_buffer{};
        view->obj = self;
        view->buf = it.first_;
        view->len = static_cast<Py_ssize_t>(it.count_ * it.array_.type.size);
        view->itemsize = static_cast<Py_ssize_t>(it.array_.type.size);
        view->readonly = is_only_read;
        view->ndim = static_cast<int>(it.shape_.size());
        view->format = (flags & PyBUF_FORMAT) != 0 ? it.array_.type.format.data() : nullptr;
        view->shape = it.shape_.data();
        view->strides = it.strides_.data();
        ++it.exports_;
        return 0;
    }

    static void release_buffer(PyObject* self, Py_buffer* /*view*/) { --nb::inst_ptr<mapping>(self)->exports_; }

private:
    void map() {
        static std::byte none{};
        std::size_t const bytes = count_ * array_.type.size;
        auto& source = *array_.bytes;
        if (how_ == mode::read) {
            read_.emplace(without_gil([&] { return source.map_read(offset_, bytes, easy::after(earlier_)); }));
        } else {
            written_.emplace(without_gil([&] {
                auto const list = easy::after(earlier_);
                return how_ == mode::write ? source.map_write(offset_, bytes, list) : source.map(offset_, bytes, list);
            }));
        }
        earlier_.clear();
        first_ = bytes == 0 ? &none : written_ ? (*written_)->data() : const_cast<std::byte*>((*read_)->data());
    }

    void unmap() {
        first_ = nullptr;
        read_.reset();
        written_.reset();
    }

    array array_;
    mode how_;
    std::size_t offset_; // in bytes
    std::size_t count_;
    after earlier_;
    std::vector<Py_ssize_t> shape_;
    std::vector<Py_ssize_t> strides_;
    std::optional<held<only_read>> read_;
    std::optional<held<written>> written_;
    std::byte* first_ = nullptr;
    nb::object view_; // a weak reference: the view keeps this object alive
    std::size_t exports_ = 0;
};

PyType_Slot slots[] = {{Py_bf_getbuffer, reinterpret_cast<void*>(mapping::get_buffer)},
                       {Py_bf_releasebuffer, reinterpret_cast<void*>(mapping::release_buffer)},
                       {0, nullptr}};

mapping* map(array const& self, std::string const& text, std::size_t offset, std::optional<std::size_t> const& count,
             after earlier) {
    if (text != "r" && text != "w" && text != "rw") {
        throw easy::argument_error("a mode is 'r', 'w' or 'rw', and not '" + text + "'");
    }
    self.check(offset, 0);
    std::size_t const elements = count.value_or(self.size() - offset);
    self.check(offset, elements);
    auto const how = text == "r" ? mode::read : text == "w" ? mode::write : mode::both;
    return new mapping(self, how, offset, elements, std::move(earlier));
}

} // namespace

void define_mappings(nb::module_& module) {
    nb::class_<mapping>(module, "Mapping", nb::type_slots(slots),
                        "Elements in place; made by `Array.map`. The memory goes back to the device at the end of the "
                        "`with` block, when no other view of it may be left, else BufferError is raised.")
        .def("__enter__", mapping::enter, nb::sig("def __enter__(self) -> memoryview"))
        .def("__exit__", &mapping::leave, nb::sig("def __exit__(self, *raised: object) -> None"));
    nb::borrow<nb::class_<array>>(module.attr("Array"))
        .def("map", map, nb::arg("mode") = "rw", nb::arg("offset") = 0, nb::arg("count") = nb::none(),
             nb::arg("after") = after{},
             "Elements in the host's reach for a `with` block, which gets a memoryview: NumPy uses it by "
             "`numpy.asarray`. 'r' is for reading only, 'w' for writing all of them: what was there may be gone. "
             "Kernels "
             "must not use elements that are mapped for writing.");
}

} // namespace vorn::mero::python
