#pragma once

// What the parts of the module share. Wherever a call of the library can block, the GIL is released around it, and
// taken again before a Python object is touched.

#include <nanobind/nanobind.h>

#include <vorn/mero/easy.hpp>
#include <vorn/mero/easy/borders.hpp>
#include <vorn/mero/easy/order.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorn::mero::python {

namespace nb = nanobind;
using exact = api<easy::default_version>;
using after = std::vector<easy::event>; ///< What a command waits for.

/// Calls without the GIL.
template <class Action>
auto without_gil(Action&& action) {
    nb::gil_scoped_release const released;
    return action();
}

/// Lets host memory go that OpenCL has no use for any more. With the GIL.
void forget_ended();

/// An object of the library that is destroyed without the GIL, since the last reference to a queue may wait for it. It
/// is itself made, moved and destroyed with the GIL.
template <class T>
class held {
public:
    explicit held(T value) : value_(std::move(value)) {}
    held(held&& other) noexcept : value_(std::exchange(other.value_, std::nullopt)) {}
    held(held const& other) = default;
    held& operator=(held const&) = delete;
    held& operator=(held&&) = delete;
    ~held() {
        if (value_) {
            without_gil([this] { value_.reset(); });
            forget_ended();
        }
    }

    T& operator*() noexcept { return *value_; }
    T const& operator*() const noexcept { return *value_; }
    T* operator->() noexcept { return &*value_; }
    T const* operator->() const noexcept { return &*value_; }

private:
    std::optional<T> value_;
};

/// A session as Python has it.
struct session {
    held<easy::session> it;
};

/// OpenCL's handle of an object, as PyOpenCL's `int_ptr`.
template <class Object>
std::intptr_t int_ptr(Object const& object) {
    return reinterpret_cast<std::intptr_t>(easy::to_cl(object));
}

/// An object from a handle: `retain` says that the caller keeps its reference.
template <class Object, class Handle>
Object from_int_ptr(std::intptr_t pointer, easy::session const& gpu, bool retain) {
    auto const handle = reinterpret_cast<Handle>(pointer);
    return retain ? easy::from_cl<Object>(handle, gpu, easy::retain)
                  : easy::from_cl<Object>(handle, gpu, easy::take_over);
}

/// What the parts of the module define, each in a source of its name.
void define_errors(nb::module_& module);
void define_devices(nb::module_& module);
void define_events(nb::module_& module);
void define_arrays(nb::module_& module);
void define_mappings(nb::module_& module);
void define_kernels(nb::module_& module);
void define_sessions(nb::module_& module);

} // namespace vorn::mero::python
