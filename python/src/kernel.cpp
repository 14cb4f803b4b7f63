// Programs and kernels.

#include "argument.hpp"

#include <nanobind/stl/optional.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/variant.h>
#include <nanobind/stl/vector.h>

#include <memory>
#include <mutex>

namespace vorn::mero::python {
namespace {

struct program {
    held<easy::session> gpu;
    held<easy::program> it;
};

struct kernel {
    kernel(held<easy::session> session, easy::kernel made) : gpu(std::move(session)), it(std::move(made)) {}

    held<easy::session> gpu;
    held<easy::kernel> it;
    std::unique_ptr<std::mutex> one_caller = std::make_unique<std::mutex>(); ///< Arguments belong to the kernel.
};

/// One, two or three numbers; the missing ones are `rest`.
std::array<std::size_t, 3> three(extent const& given, std::size_t rest, char const* what) {
    std::array<std::size_t, 3> made{rest, rest, rest};
    if (auto const* const one = std::get_if<std::size_t>(&given)) {
        made[0] = *one;
        return made;
    }
    auto const& list = std::get<std::vector<std::size_t>>(given);
    if (list.empty() || list.size() > 3) {
        throw easy::argument_error(std::string(what) + " has one, two or three numbers, and not " +
                                   std::to_string(list.size()));
    }
    std::copy(list.begin(), list.end(), made.begin());
    return made;
}

easy::range range_of(extent const& size, std::optional<extent> const& local, std::optional<extent> const& offset) {
    auto const [x, y, z] = three(size, 1, "the size of a launch");
    auto const* const list = std::get_if<std::vector<std::size_t>>(&size);
    std::size_t const dimensions = list != nullptr ? list->size() : 1;
    auto made = dimensions == 1 ? easy::range(x) : dimensions == 2 ? easy::range(x, y) : easy::range(x, y, z);
    if (local) {
        auto const [i, j, k] = three(*local, 1, "a local size");
        made = made.local(i, j, k);
    }
    if (offset) {
        auto const [i, j, k] = three(*offset, 0, "an offset");
        made = made.from(i, j, k);
    }
    return made;
}

easy::event call(kernel& self, extent const& size, nb::args const& given, std::optional<extent> const& local_size,
                 std::optional<extent> const& offset, after const& earlier) {
    auto const over = range_of(size, local_size, offset);
    auto const& all = self.it->parameters();
    std::vector<argument> arguments;
    arguments.reserve(given.size());
    for (std::size_t i = 0; i != given.size(); ++i) {
        auto const* const declared = i < all.size() ? &all[i] : nullptr;
        arguments.emplace_back(given[i], declared, "kernel '" + self.it->name() + "', argument " + std::to_string(i),
                               easy::detail::raw_of(self.gpu->context()));
    }
    return without_gil([&] {
        std::lock_guard<std::mutex> const lock(*self.one_caller);
        return self.it->launch(over, easy::after(earlier), arguments);
    });
}

std::vector<std::string> arguments_of(kernel const& self) {
    std::vector<std::string> made;
    for (auto const& each : self.it->parameters()) {
        made.push_back(each.type.empty() ? "?" : each.type + " " + each.name);
    }
    return made;
}

using macros = nb::typed<nb::dict, nb::str, nb::object>;

easy::build_options options_of(std::string const& text, macros const& defines) {
    easy::build_options made(text);
    for (auto const& [key, value] : defines) {
        auto const name = nb::cast<std::string>(key);
        if (PyFloat_Check(value.ptr()) != 0) {
            made.define(name, nb::cast<double>(value));
        } else if (PyBool_Check(value.ptr()) != 0) {
            made.define(name, nb::cast<bool>(value));
        } else {
            made.define(name, std::string_view(nb::cast<std::string>(nb::str(value))));
        }
    }
    return made;
}

/// Has the session build a program.
template <class Build>
program built(session const& gpu, std::string const& options, macros const& defines, Build const& build) {
    auto const all = options_of(options, defines);
    return {gpu.it, held(without_gil([&] { return build(*gpu.it, all); }))};
}

void define_builds(nb::module_& module) {
    using easy::build_options;
    auto const options = nb::arg("options") = "";
    auto const defines = nb::arg("defines") = macros();
    nb::borrow<nb::class_<session>>(module.attr("Session"))
        .def(
            "build",
            [](session const& self, std::string const& source, std::string const& text, macros const& defined) {
                return built(self, text, defined, [&](easy::session const& gpu, build_options const& all) {
                    return gpu.build(source, all);
                });
            },
            nb::arg("source"), options, defines,
            "A program from source. `options` are OpenCL's own, `defines` macros and their values. Raises BuildFailure "
            "with the compiler's `log`. Blocks.")
        .def(
            "build_file",
            [](session const& self, nb::object const& path, std::string const& text, macros const& defined) {
                auto const name = nb::cast<std::string>(nb::module_::import_("os").attr("fspath")(path));
                return built(self, text, defined, [&](easy::session const& gpu, build_options const& all) {
                    return gpu.build_file(name, all);
                });
            },
            nb::arg("path"), options, defines,
            "A program from a file of source, which may include others of its folder. Raises FileError if it cannot be "
            "read.")
        .def(
            "build_binary",
            [](session const& self, nb::bytes const& binary, std::string const& text) {
                auto const* const begin = static_cast<unsigned char const*>(binary.data());
                std::vector<unsigned char> const bytes(begin, begin + binary.size());
                return built(self, text, macros(), [&](easy::session const& gpu, build_options const& all) {
                    return gpu.build_binary(bytes, all);
                });
            },
            nb::arg("binary"), options, "A program from `Program.binary` of the same device and driver.");
}

void define_programs(nb::module_& module) {
    nb::class_<program>(module, "Program", "A built program; made by a session.")
        .def(
            "__getitem__",
            [](program const& self, std::string const& name) {
                return kernel(self.gpu, without_gil([&] { return (*self.it)[name]; }));
            },
            nb::arg("name"), "The kernel of this name. Raises NoKernel, with those that there are.")
        .def_prop_ro("kernel_names", [](program const& self) { return self.it->exact().kernel_names(); })
        .def("binary",
             [](program const& self) {
                 auto const bytes = without_gil([&] { return self.it->binary(); });
                 return nb::bytes(bytes.data(), bytes.size());
             })
        .def(
            "on",
            [](program const& self, session const& other) {
                return program{other.it, held(self.it->on(*other.it))};
            },
            nb::arg("session"), "The same program, whose kernels use the queue of another session.")
        .def_prop_ro("int_ptr", [](program const& self) { return int_ptr(*self.it); })
        .def_static(
            "from_int_ptr",
            [](std::intptr_t pointer, session const& gpu, bool retain) {
                return program{gpu.it, held(from_int_ptr<easy::program, cl_program>(pointer, *gpu.it, retain))};
            },
            nb::arg("int_ptr"), nb::arg("session"), nb::arg("retain") = true, "Of a program that is built.");
}

} // namespace

void define_kernels(nb::module_& module) {
    nb::class_<local>(module, "Local", "Local memory for a kernel argument.")
        .def(
            "__init__",
            [](local* self, std::size_t count, nb::object const& dtype) {
                std::optional<element> type;
                if (!dtype.is_none()) {
                    type = element::of(dtype);
                }
                new (self) local{easy::detail::product(count, type ? type->size : 1), type};
            },
            nb::arg("count"), nb::arg("dtype") = nb::none(), "`count` elements; bytes without a dtype.");
    nb::class_<kernel>(module, "Kernel", "A function of a program, to be called like one.")
        .def("__call__", call,
             nb::sig("def __call__(self, size: int | Sequence[int], *arguments: object, "
                     "local: int | Sequence[int] | None = None, offset: int | Sequence[int] | None = None, "
                     "after: Sequence[Event] = ()) -> Event"),
             nb::arg("size"), nb::arg("arguments"), nb::kw_only(), nb::arg("local") = nb::none(),
             nb::arg("offset") = nb::none(), nb::arg("after") = after{},
             "Enqueues a launch of `size` work-items, a number or a tuple of up to three. Arguments are arrays, "
             "numbers, "
             "NumPy's numbers, memory of the buffer protocol for vectors and structures, `Local` and None. A number of "
             "Python becomes what the kernel declares, and raises ArgumentError where it does not fit; one of NumPy "
             "must "
             "have the declared kind and size. Raises LaunchError, with OpenCL's own exception as its cause, when "
             "OpenCL "
             "refuses. Threads may call one kernel. Does not block.")
        .def_prop_ro("name", [](kernel const& self) { return self.it->name(); })
        .def_prop_ro("arguments", arguments_of, "Type and name of each; '?' where the implementation tells nothing.")
        .def_prop_ro("int_ptr", [](kernel const& self) { return int_ptr(*self.it); })
        .def_static(
            "from_int_ptr",
            [](std::intptr_t pointer, session const& gpu, bool retain) {
                return kernel(gpu.it, from_int_ptr<easy::kernel, cl_kernel>(pointer, *gpu.it, retain));
            },
            nb::arg("int_ptr"), nb::arg("session"), nb::arg("retain") = true);
    define_programs(module);
    define_builds(module);
}

} // namespace vorn::mero::python
