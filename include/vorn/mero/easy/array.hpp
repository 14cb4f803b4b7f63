#pragma once

#include <vorn/mero/easy/argument.hpp>
#include <vorn/mero/easy/error.hpp>
#include <vorn/mero/easy/event.hpp>

#include <memory>
#include <string>
#include <type_traits>
#include <vector>
#if __cplusplus >= 202002L
#include <span>
#endif

namespace vorn::mero::easy {

namespace detail {

/// What the objects of a session share.
template <int Version>
struct session_state {
    typename api<Version>::device device;
    typename api<Version>::context context;
    typename api<Version>::host_queue queue;
};

inline void check_bounds(std::size_t offset, std::size_t count, std::size_t size) {
    if (offset > size || count > size - offset) {
        throw bounds_error(joined({"elements ", std::to_string(offset), " to ", std::to_string(offset + count),
                                   " are not within an array of ", std::to_string(size)}));
    }
}

} // namespace detail

template <class T, int Version>
class mapped_array;

/// `size()` elements in a buffer, made by a session. A copy names the same memory. Offsets and counts are in elements.
///
///     auto numbers = gpu.array(std::vector<int>{1, 2, 3});
///     numbers.write({7, 8}, 1);                  // 1 7 8
///     std::vector<int> const all = numbers.read();
///
/// Every transfer blocks, on the queue of the session. Throws `bounds_error` for a region that leaves the array.
template <class T, int Version>
class basic_array {
    static_assert(std::is_trivially_copyable<T>::value, "OpenCL copies the elements byte by byte");

public:
    using value_type = T;
    using exact_type = typename api<Version>::buffer;

    /// Of a session's device; `exact` must have room for `size` elements.
    basic_array(std::shared_ptr<detail::session_state<Version>> session, exact_type exact, std::size_t size) noexcept
        : session_(std::move(session)), exact_(std::move(exact)), size_(size) {}

    /// The buffer of the exact interface.
    [[nodiscard]] exact_type& exact() noexcept { return exact_; }
    /// The same of an object that does not change.
    [[nodiscard]] exact_type const& exact() const noexcept { return exact_; }

    /// The number of elements.
    [[nodiscard]] std::size_t size() const noexcept { return size_; }

    /// The same elements, by way of another session's queue; of the same context.
    template <class Session>
    [[nodiscard]] basic_array on(Session const& other) const {
        return {other.state(), exact_, size_};
    }

    /// A copy of all elements.
    [[nodiscard]] std::vector<T> read() const {
        std::vector<T> values(size_);
        read(values.data(), size_);
        return values;
    }

    /// Copies `count` elements from `offset` on to the host.
    void read(T* destination, std::size_t count, std::size_t offset = 0) const {
        detail::check_bounds(offset, count, size_);
        if (count != 0) {
            session_->queue.enqueue_command_without_event(
                typename api<Version>::read_buffer(exact_, true, offset * sizeof(T), count * sizeof(T), destination));
        }
    }

    /// Copies `count` elements of the host to `offset` and behind.
    void write(T const* source, std::size_t count, std::size_t offset = 0) {
        detail::check_bounds(offset, count, size_);
        if (count != 0) {
            session_->queue.enqueue_command_without_event(
                typename api<Version>::write_buffer(exact_, true, offset * sizeof(T), count * sizeof(T), source));
        }
    }

    /// Copies the elements of a list to `offset` and behind.
    void write(std::vector<T> const& values, std::size_t offset = 0) { write(values.data(), values.size(), offset); }

#if __cplusplus >= 202002L
    /// Copies as many elements to the host as the span has.
    void read(std::span<T> destination, std::size_t offset = 0) const {
        read(destination.data(), destination.size(), offset);
    }

    /// Copies the elements of the span to `offset` and behind.
    void write(std::span<T const> source, std::size_t offset = 0) { write(source.data(), source.size(), offset); }
#endif

    /// Sets every element. Does not block.
    basic_event<Version> fill(T const& value) {
        static_assert(Version >= 120, "OpenCL fills since 1.2; write a vector instead");
        static_assert(sizeof(T) <= 128 && (sizeof(T) & (sizeof(T) - 1)) == 0,
                      "OpenCL fills with patterns of 1, 2, 4, ... 128 bytes");
        using fill_buffer = typename api<Version>::template fill_buffer<T>;
        return basic_event<Version>(session_->queue.enqueue_command(fill_buffer(exact_, value, 0, size_)));
    }

    /// Copies all elements to the front of another array, on the device. Does not block.
    basic_event<Version> copy_to(basic_array& destination) const {
        detail::check_bounds(0, size_, destination.size());
        return basic_event<Version>(session_->queue.enqueue_command(
            typename api<Version>::copy_buffer(exact_, destination.exact(), 0, 0, size_ * sizeof(T))));
    }

    /// Gives the host the elements in place, for reading and writing, until the result is destroyed; kernels must not
    /// use the array meanwhile. Blocks until the elements are there.
    [[nodiscard]] mapped_array<T, Version> map() { return mapped_array<T, Version>(*this, session_); }

private:
    std::shared_ptr<detail::session_state<Version>> session_;
    exact_type exact_;
    std::size_t size_;
};

/// The elements of an array in the host's reach, a range for loops. The destructor gives them back to the device; it
/// drops a failure, which later commands on the array then meet.
template <class T, int Version>
class mapped_array {
public:
    /// Blocks until the elements are there; `basic_array::map` calls it.
    mapped_array(basic_array<T, Version>& array, std::shared_ptr<detail::session_state<Version>> session)
        : session_(std::move(session)), exact_(array.exact()), size_(array.size()) {
        using flags = typename api<Version>::map_flags;
        void* mapped = nullptr;
        session_->queue.enqueue_command_without_event(
            typename api<Version>::map_buffer(mapped, exact_, true, flags::read | flags::write, 0, size_ * sizeof(T)));
        elements_ = static_cast<T*>(mapped);
    }

    mapped_array(mapped_array&& other) noexcept
        : session_(std::move(other.session_)), exact_(std::move(other.exact_)), size_(std::exchange(other.size_, 0)),
          elements_(std::exchange(other.elements_, nullptr)) {}

    mapped_array(mapped_array const&) = delete;
    mapped_array& operator=(mapped_array const&) = delete;
    mapped_array& operator=(mapped_array&&) = delete;

    ~mapped_array() {
        if (elements_ != nullptr) {
            try {
                session_->queue.enqueue_command_without_event(
                    typename api<Version>::unmap_mem_object(exact_, elements_));
            } catch (std::exception const&) { // nothing can be done about it here
            }
        }
    }

    /// The first element.
    [[nodiscard]] T* begin() const noexcept { return elements_; }
    /// Behind the last element.
    [[nodiscard]] T* end() const noexcept { return elements_ + size_; }
    /// The first element.
    [[nodiscard]] T* data() const noexcept { return elements_; }
    /// The number of elements.
    [[nodiscard]] std::size_t size() const noexcept { return size_; }

    /// The element; `index` must be less than `size()`.
    [[nodiscard]] T& operator[](std::size_t index) const noexcept { return elements_[index]; }

private:
    std::shared_ptr<detail::session_state<Version>> session_;
    typename api<Version>::buffer exact_;
    std::size_t size_;
    T* elements_ = nullptr;
};

/// An array is memory to a kernel.
template <class T, int Version>
struct argument_traits<basic_array<T, Version>, Version> {
    static void check(argument_place const& at, basic_array<T, Version> const&) {
        detail::check_memory(at, detail::argument_kind::pointer, detail::shape<T>::value);
    }
    static void set(typename api<Version>::kernel& target, unsigned index, basic_array<T, Version> const& array) {
        target.set_argument(index, const_cast<typename api<Version>::buffer&>(array.exact())); // only read
    }
    static std::string text(basic_array<T, Version> const& array) {
        return detail::joined(
            {"an array of ", std::to_string(array.size()), " elements of ", std::to_string(sizeof(T)), " bytes"});
    }
};

/// `basic_array` of the default version.
template <class T>
using array = basic_array<T, default_version>;

} // namespace vorn::mero::easy
