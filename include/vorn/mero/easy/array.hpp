#pragma once

#include <vorn/mero/easy/argument.hpp>
#include <vorn/mero/easy/error.hpp>
#include <vorn/mero/easy/transfer.hpp>

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>
#if __cplusplus >= 202002L
#include <span>
#endif

namespace vorn::mero::easy {

namespace detail {

[[noreturn, gnu::cold, gnu::noinline]] inline void refuse_bounds(std::size_t offset, std::size_t count,
                                                                 std::size_t size) {
    std::size_t const end =
        count > static_cast<std::size_t>(-1) - offset ? static_cast<std::size_t>(-1) : offset + count;
    throw bounds_error(
        joined({"elements ", std::to_string(offset), " to ", std::to_string(end), " are not within an array of ",
                std::to_string(size), ": ask for fewer, or make a larger array"}));
}

constexpr bool is_within(std::size_t offset, std::size_t count, std::size_t size) noexcept {
    return offset <= size && count <= size - offset;
}

inline void check_bounds(std::size_t offset, std::size_t count, std::size_t size) {
    if (!is_within(offset, count, size)) {
        refuse_bounds(offset, count, size);
    }
}

} // namespace detail

#if __cplusplus >= 202002L
/// What an array has as elements: `template <ez::element T> void sort(ez::array<T>& numbers);`. Since C++20.
template <class T>
concept element = std::is_object_v<T> && std::is_trivially_copyable_v<T>;

/// Elements side by side in host memory: a `std::vector`, a `std::array`, a `std::span` and so on. Since C++20.
template <class List>
concept element_list = requires(List& list) {
    std::span(list.data(), list.size());
}
&&element<std::remove_pointer_t<decltype(std::declval<List&>().data())>>;
#endif

/// `size()` elements in a buffer, made by a session. A copy names the same memory. Offsets and counts are in elements.
///
///     auto numbers = gpu.array(std::vector<int>{1, 2, 3});
///     numbers.write({7, 8}, 1);                  // 1 7 8
///     std::vector<int> const all = numbers.read();
///     auto last = numbers.part(2, 1);            // the same memory as the last element
///
/// `read`, `write` and the `map` functions block; the rest returns an event. All use the queue of the session. Each
/// takes a list of `after` as its last argument, for commands of other queues. Throws `bounds_error` for a region that
/// leaves the array.
template <class T, int Version>
class basic_array {
    static_assert(std::is_trivially_copyable<T>::value, "OpenCL copies the elements byte by byte");

public:
    /// @{
    /// The types of its elements, its buffer, and what its members take and return.
    using value_type = T;
    using exact_type = typename api<Version>::buffer;
    using event_type = basic_event<Version>;
    using transfer_type = basic_transfer<Version>;
    using waits_type = waits<Version>;
    /// @}

    /// Of a session's device; `exact` must have room for `size` elements. `is_part` says that it is a sub-buffer.
    basic_array(std::shared_ptr<detail::session_state<Version>> state, exact_type exact, std::size_t size,
                bool is_part = false) noexcept
        : state_(std::move(state)), exact_(std::move(exact)), size_(size), is_part_(is_part) {}

    /// The buffer of the exact interface.
    [[nodiscard]] exact_type& exact() noexcept { return exact_; }
    /// The same of an object that does not change.
    [[nodiscard]] exact_type const& exact() const noexcept { return exact_; }

    /// The number of elements.
    [[nodiscard]] std::size_t size() const noexcept { return size_; }

    /// The raw handle of its context, which kernels must share; null if it was moved from.
    [[nodiscard]] _nq_cl_context* raw_context() const noexcept {
        return state_.get() != nullptr ? detail::raw_of(state_.get()->context) : nullptr;
    }

    /// The same elements, by way of another session's queue; of the same context, else throws `argument_error`.
    template <class Session>
    [[nodiscard]] basic_array on(Session const& other) const {
        detail::check_same_context(raw_context(), detail::raw_of(other.context()));
        basic_array made(other.state(), exact_, size_);
        made.is_part_ = is_part_;
        return made;
    }

    /// `count` elements from `offset` on as an array by itself, in the same memory, which it keeps alive. Throws
    /// `bounds_error` where the device cannot begin a part at `offset`. Since OpenCL 1.1.
    [[nodiscard]] basic_array part(std::size_t offset, std::size_t count);

    /// A copy of all elements.
    [[nodiscard]] std::vector<T> read(waits_type const& earlier = {}) const {
        std::vector<T> values(size_);
        static_cast<void>(*state_);
        read(values.data(), size_, 0, earlier);
        return values;
    }

    /// Copies `count` elements from `offset` on to the host.
    void read(T* destination, std::size_t count, std::size_t offset = 0, waits_type const& earlier = {}) const {
        check_bounds(offset, count);
        if (count != 0) {
            state_.get()->enqueue_and_wait(typename api<Version>::read_buffer(exact_, earlier.size() == 0,
                                                                              offset * sizeof(T), count * sizeof(T),
                                                                              destination),
                                           earlier);
        }
    }

    /// Copies `count` elements of the host to `offset` and behind.
    void write(T const* source, std::size_t count, std::size_t offset = 0, waits_type const& earlier = {}) {
        check_bounds(offset, count);
        if (count != 0) {
            state_.get()->enqueue_and_wait(typename api<Version>::write_buffer(exact_, earlier.size() == 0,
                                                                               offset * sizeof(T), count * sizeof(T),
                                                                               source),
                                           earlier);
        }
    }

    /// Copies the elements of a list to `offset` and behind.
    void write(std::vector<T> const& values, std::size_t offset = 0, waits_type const& earlier = {}) {
        write(values.data(), values.size(), offset, earlier);
    }
    /// The same.
    void write(std::initializer_list<T> values, std::size_t offset = 0, waits_type const& earlier = {}) {
        write(values.begin(), values.size(), offset, earlier);
    }

    /// Reads all elements into memory of the result's own, without blocking.
    basic_reading<T, Version> read_async(waits_type const& earlier = {}) const {
        return basic_reading<T, Version>(size_,
                                         [&](T* destination) { return enqueue_read(destination, size_, 0, earlier); });
    }

    /// Reads `count` elements from `offset` on into the program's memory. Does not block; the result's destructor does.
    transfer_type read_async(T* destination, std::size_t count, std::size_t offset = 0,
                             waits_type const& earlier = {}) const {
        check_bounds(offset, count);
        return transfer_type(enqueue_read(destination, count, offset, earlier));
    }

    /// Writes the elements of a list that the session keeps until they are written. Does not block. The memory goes
    /// with a later asynchronous write, `session::finish` or the session.
    event_type write_async(std::vector<T>&& values, std::size_t offset = 0, waits_type const& earlier = {}) {
        check_bounds(offset, values.size());
        auto const kept = std::make_shared<std::vector<T>>(std::move(values));
        auto written = enqueue_write(kept->data(), kept->size(), offset, earlier);
        try {
            state_->keep(written, kept);
        } catch (...) { // no memory to note it
            written.wait();
            throw;
        }
        return written;
    }

    /// Writes `count` elements of the program's memory. Does not block; the result's destructor does.
    transfer_type write_async(T const* source, std::size_t count, std::size_t offset = 0,
                              waits_type const& earlier = {}) {
        check_bounds(offset, count);
        return transfer_type(enqueue_write(source, count, offset, earlier));
    }

    /// Writes the elements of a list that outlives the result. Does not block; the result's destructor does.
    transfer_type write_async(std::vector<T> const& values, std::size_t offset = 0, waits_type const& earlier = {}) {
        return write_async(values.data(), values.size(), offset, earlier);
    }
    /// Writes a copy of the values, as of a list that is moved.
    event_type write_async(std::initializer_list<T> values, std::size_t offset = 0, waits_type const& earlier = {}) {
        return write_async(std::vector<T>(values), offset, earlier);
    }

#if __cplusplus >= 202002L
    /// Copies as many elements to the host as the span has.
    void read(std::span<T> destination, std::size_t offset = 0, waits_type const& earlier = {}) const {
        read(destination.data(), destination.size(), offset, earlier);
    }

    /// Copies the elements of the span to `offset` and behind.
    void write(std::span<T const> source, std::size_t offset = 0, waits_type const& earlier = {}) {
        write(source.data(), source.size(), offset, earlier);
    }

    /// The same without blocking; the result's destructor does.
    transfer_type read_async(std::span<T> destination, std::size_t offset = 0, waits_type const& earlier = {}) const {
        return read_async(destination.data(), destination.size(), offset, earlier);
    }

    /// The same without blocking; the result's destructor does.
    transfer_type write_async(std::span<T const> source, std::size_t offset = 0, waits_type const& earlier = {}) {
        return write_async(source.data(), source.size(), offset, earlier);
    }
#endif

    /// As `session::flush`, of the queue that the array uses.
    void flush() const { state_->queue.flush(); }

    /// Sets every element. Does not block.
    event_type fill(T const& value, waits_type const& earlier = {}) { return fill(value, 0, size_, earlier); }

    /// Sets `count` elements from `offset` on. Does not block.
    event_type fill(T const& value, std::size_t offset, std::size_t count, waits_type const& earlier = {}) {
        static_assert(Version >= 120, "OpenCL fills since 1.2; write a vector instead");
        static_assert(sizeof(T) <= 128 && (sizeof(T) & (sizeof(T) - 1)) == 0,
                      "OpenCL fills with patterns of 1, 2, 4, ... 128 bytes");
        check_bounds(offset, count);
        using fill_buffer = typename api<Version>::template fill_buffer<T>;
        return count == 0 ? state_->enqueue_nothing(earlier)
                          : state_->enqueue(fill_buffer(exact_, value, offset * sizeof(T), count), earlier);
    }

    /// Copies all elements to the front of another array, on the device. Does not block.
    event_type copy_to(basic_array& destination, waits_type const& earlier = {}) const {
        return copy_to(destination, 0, 0, size_, earlier);
    }

    /// Copies `count` elements from `from` on to another array, there from `to` on. Does not block.
    event_type copy_to(basic_array& destination, std::size_t from, std::size_t to, std::size_t count,
                       waits_type const& earlier = {}) const {
        check_bounds(from, count);
        destination.check_bounds(to, count);
        detail::check_same_context(raw_context(), destination.raw_context());
        using copy_buffer = typename api<Version>::copy_buffer;
        return count == 0 ? state_->enqueue_nothing(earlier)
                          : state_->enqueue(copy_buffer(exact_, destination.exact_, from * sizeof(T), to * sizeof(T),
                                                        count * sizeof(T)),
                                            earlier);
    }

    /// Gives the host the elements in place, for reading and writing, until the result is destroyed; kernels must not
    /// use the array meanwhile. Blocks until the elements are there.
    mapped_array<T, Version> map(waits_type const& earlier = {}) { return map(0, size_, earlier); }
    /// The same of `count` elements from `offset` on.
    mapped_array<T, Version> map(std::size_t offset, std::size_t count, waits_type const& earlier = {}) {
        return map_as<T>(flags::read | flags::write, offset, count, earlier);
    }

    /// The same for reading only; kernels may read the array meanwhile.
    mapped_array<T const, Version> map_read(waits_type const& earlier = {}) const {
        return map_read(0, size_, earlier);
    }
    /// The same of `count` elements from `offset` on.
    mapped_array<T const, Version> map_read(std::size_t offset, std::size_t count,
                                            waits_type const& earlier = {}) const {
        return map_as<T const>(flags::read, offset, count, earlier);
    }

    /// The same for writing all of the elements: what was there may be gone. Spares copying it to the host, since
    /// OpenCL 1.2.
    mapped_array<T, Version> map_write(waits_type const& earlier = {}) { return map_write(0, size_, earlier); }
    /// The same of `count` elements from `offset` on.
    mapped_array<T, Version> map_write(std::size_t offset, std::size_t count, waits_type const& earlier = {}) {
        if constexpr (Version >= 120) {
            return map_as<T>(flags::write_invalidate_region, offset, count, earlier);
        } else {
            return map_as<T>(flags::write, offset, count, earlier);
        }
    }

private:
    using flags = typename api<Version>::map_flags;

    void check_bounds(std::size_t offset, std::size_t count) const {
        if (!detail::is_within(offset, count, size_)) {
            refuse_bounds(offset, count);
        }
    }

    [[noreturn, gnu::cold, gnu::noinline]] void refuse_bounds(std::size_t offset, std::size_t count) const {
        detail::refuse_bounds(offset, count, (static_cast<void>(*state_), size_));
    }

    event_type enqueue_read(T* destination, std::size_t count, std::size_t offset, waits_type const& earlier) const {
        using read_buffer = typename api<Version>::read_buffer;
        return count == 0
                   ? state_->enqueue_nothing(earlier)
                   : state_->enqueue(read_buffer(exact_, false, offset * sizeof(T), count * sizeof(T), destination),
                                     earlier);
    }

    event_type enqueue_write(T const* source, std::size_t count, std::size_t offset, waits_type const& earlier) {
        using write_buffer = typename api<Version>::write_buffer;
        return count == 0 ? state_->enqueue_nothing(earlier)
                          : state_->enqueue(write_buffer(exact_, false, offset * sizeof(T), count * sizeof(T), source),
                                            earlier);
    }

    template <class Element>
    mapped_array<Element, Version> map_as(flags how, std::size_t offset, std::size_t count,
                                          waits_type const& earlier) const {
        check_bounds(offset, count);
        static_cast<void>(*state_);
        return {state_, exact_, how, offset, count, earlier};
    }

    [[noreturn, gnu::cold, gnu::noinline]] void refuse_offset(std::size_t offset) const {
        std::size_t const step = state_->device.mem_base_addr_align() / 8;
        std::size_t elements = 1;
        while (elements * sizeof(T) % step != 0) {
            ++elements;
        }
        throw bounds_error(
            detail::joined({"a part cannot begin at element ", std::to_string(offset), ": ", state_->device.name(),
                            " begins them at multiples of ", std::to_string(elements), " elements of ",
                            std::to_string(sizeof(T)), " bytes; a kernel can take the offset as an argument instead"}));
    }

    detail::session_link<Version> state_;
    exact_type exact_;
    detail::zero_once_moved<std::size_t> size_; // so that no region is within it
    bool is_part_;
};

template <class T, int Version>
basic_array<T, Version> basic_array<T, Version>::part(std::size_t offset, std::size_t count) {
    static_assert(Version >= 110, "OpenCL has parts of buffers since 1.1");
    check_bounds(offset, count);
    if (count == 0) { // OpenCL has no empty ones
        return {state_, exact_, 0};
    }
    using sub_buffer = typename api<Version>::sub_buffer;
    using create_reference = typename api<Version>::create_reference;
    auto const& handle = internal::owner_access::call_handle(exact_);
    exact_type whole = exact_;
    std::size_t begin = offset * sizeof(T);
    if (is_part_) { // OpenCL has no parts of parts
        sub_buffer self(handle, detail::raw_of(exact_), create_reference{});
        begin += self.offset();
        whole = self.parent_buffer();
    }
    try {
        auto const made =
            state_->context.create_sub_buffer(whole, typename api<Version>::mem_flags{}, begin, count * sizeof(T));
        basic_array part(state_, exact_type(handle, detail::raw_of(made), create_reference{}), count);
        part.is_part_ = true;
        return part;
    } catch (common::misaligned_sub_buffer_offset const&) {
        refuse_offset(offset);
    }
}

/// An array is memory to a kernel.
template <class T, int Version>
struct argument_traits<basic_array<T, Version>, Version> {
    static void check(argument_place const& at, basic_array<T, Version> const&) {
        detail::check_memory(at, detail::argument_kind::pointer, detail::shape<T>::value);
    }
    static void set(typename api<Version>::kernel& target, unsigned index, basic_array<T, Version> const& array) {
        target.set_argument(index, const_cast<typename api<Version>::buffer&>(array.exact())); // only read
    }
    static _nq_cl_context* context(basic_array<T, Version> const& array) noexcept { return array.raw_context(); }
    static std::string text(basic_array<T, Version> const& array) {
        return detail::joined(
            {"an array of ", std::to_string(array.size()), " elements of ", std::to_string(sizeof(T)), " bytes"});
    }
};

/// `basic_array` of the default version.
template <class T>
using array = basic_array<T, default_version>;

} // namespace vorn::mero::easy
