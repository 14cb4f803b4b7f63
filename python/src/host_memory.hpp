#pragma once

#include "module.hpp"

#include <memory>

namespace vorn::mero::python {

/// What the elements of memory are: a format of the module `struct`, or of the buffer protocol.
struct element {
    std::string format;
    std::size_t size;

    /// As kernels see it. Throws `argument_error` for another byte order than the host's.
    [[nodiscard]] easy::detail::value_shape shape() const;

    /// Of what Python says: a character of `struct`, or whatever NumPy takes as a dtype. With the GIL.
    static element of(nb::handle dtype);

    /// A number of Python as the bytes of an element. With the GIL; raises what `struct.pack` raises.
    [[nodiscard]] nb::bytes pack(nb::handle number) const;
};

/// The memory of an object with the buffer protocol, which must be contiguous: it is used where it is, never copied. Is
/// made and destroyed with the GIL, and keeps the object alive.
class host_memory {
public:
    /// Raises what the object raises, such as BufferError, for memory that is not contiguous, or not writable where it
    /// must be.
    host_memory(nb::handle object, bool is_written);
    host_memory(host_memory&& other) noexcept = default;
    host_memory(host_memory const&) = delete;
    host_memory& operator=(host_memory const&) = delete;
    host_memory& operator=(host_memory&&) = delete;

    [[nodiscard]] void* data() const noexcept { return view_->buf; }
    [[nodiscard]] std::size_t bytes() const noexcept { return static_cast<std::size_t>(view_->len); }
    [[nodiscard]] element type() const;
    [[nodiscard]] std::vector<std::size_t> shape() const;

private:
    struct release {
        void operator()(Py_buffer* view) const {
            PyBuffer_Release(view);
            delete view;
        }
    };

    std::unique_ptr<Py_buffer, release> view_; // may point into itself, and so must stay in its place
};

} // namespace vorn::mero::python
