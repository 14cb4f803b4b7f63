#pragma once

// Transfers that go on while the program does, and elements in the host's reach.

#include <vorn/mero/easy/session_state.hpp>

#include <cstddef>
#include <exception>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

namespace vorn::mero::easy {

/// A transfer from or to memory of the program, which must not go or change before the transfer has ended: the
/// destructor waits for that. Declare what it uses before it, and move a user event that it waits for into an object
/// declared after it, see `basic_user_event`. Move-only.
///
///     std::vector<float> values(n);
///     auto const reading = a.read_async(values.data(), n);
///     work_that_may_throw();
///     reading.wait();
template <int Version>
class [[nodiscard]] basic_transfer {
public:
    /// Of a command that was enqueued.
    explicit basic_transfer(basic_event<Version> command) : command_(std::move(command)) {}

    /// `other` waits for nothing afterwards.
    basic_transfer(basic_transfer&& other) noexcept : command_(std::exchange(other.command_, std::nullopt)) {}
    basic_transfer(basic_transfer const&) = delete;
    basic_transfer& operator=(basic_transfer const&) = delete;
    basic_transfer& operator=(basic_transfer&&) = delete;

    /// Blocks until the transfer has ended; drops a failure, which its event tells.
    ~basic_transfer() {
        if (command_) {
            try {
                command_->wait();
            } catch (std::exception const&) { // it has ended, and its event tells how
            }
        }
    }

    /// The event of the transfer, which does not keep the memory.
    [[nodiscard]] basic_event<Version> const& event() const {
        if (!command_) {
            detail::refuse_moved_from();
        }
        return *command_;
    }

    /// Blocks until the transfer has ended. Throws the exception of its status when it failed.
    void wait() const { event().wait(); }

    /// Whether the transfer has ended, see `basic_event::done`.
    [[nodiscard]] bool done() const { return event().done(); }

private:
    std::optional<basic_event<Version>> command_;
};

/// Elements on their way to the host, in memory of their own. The destructor waits for the transfer. Move-only.
///
///     auto reading = c.read_async();
///     other_work();
///     std::vector<float> const result = reading.get();
template <class T, int Version>
class [[nodiscard]] basic_reading {
public:
    /// Has `start(destination)` enqueue the transfer of `count` elements.
    template <class Start>
    basic_reading(std::size_t count, Start start) : values_(count), transfer_(start(values_.data())) {}

    /// The event of the transfer.
    [[nodiscard]] basic_event<Version> const& event() const { return transfer_.event(); }

    /// Whether the elements are there, see `basic_event::done`.
    [[nodiscard]] bool done() const { return transfer_.done(); }

    /// Blocks until the elements are there, and gives them away, once. Throws the exception of the transfer's status
    /// when it failed.
    [[nodiscard]] std::vector<T> get() {
        transfer_.wait();
        return std::move(values_);
    }

private:
    std::vector<T> values_;
    basic_transfer<Version> transfer_; // destroyed first
};

/// Elements in the host's reach, a range for loops.
template <class T>
class element_range {
public:
    /// `count` elements from `first` on.
    element_range(T* first, std::size_t count) noexcept : first_(first), count_(count) {}

    /// The first element.
    [[nodiscard]] T* begin() const noexcept { return first_; }
    /// Behind the last element.
    [[nodiscard]] T* end() const noexcept { return first_ + count_; }
    /// The first element.
    [[nodiscard]] T* data() const noexcept { return first_; }
    /// The number of elements.
    [[nodiscard]] std::size_t size() const noexcept { return count_; }

    /// The element; `index` must be less than `size()`.
    [[nodiscard]] T& operator[](std::size_t index) const noexcept { return first_[index]; }

private:
    T* first_;
    std::size_t count_;
};

/// Elements of an array in the host's reach; `T` is const for those that are only read. The destructor gives them back
/// to the device; it drops a failure, which later commands on the array then meet.
template <class T, int Version>
class [[nodiscard]] mapped_array : public element_range<T> {
public:
    /// @{
    /// The types of the version.
    using flags_type = typename api<Version>::map_flags;
    using buffer_type = typename api<Version>::buffer;
    /// @}

    /// Blocks until the elements are there; the `map` functions of an array call it. Offset and count are in elements.
    mapped_array(std::shared_ptr<detail::session_state<Version>> state, buffer_type buffer, flags_type how,
                 std::size_t offset, std::size_t count, waits<Version> const& earlier)
        : element_range<T>(mapped(*state, buffer, how, offset, count, earlier), count), state_(std::move(state)),
          buffer_(std::move(buffer)), is_mapped_(count != 0) {}

    /// `other` is empty afterwards.
    mapped_array(mapped_array&& other) noexcept
        : element_range<T>(std::exchange(static_cast<element_range<T>&>(other), element_range<T>(nullptr, 0))),
          state_(std::move(other.state_)), buffer_(std::move(other.buffer_)),
          is_mapped_(std::exchange(other.is_mapped_, false)) {}

    mapped_array(mapped_array const&) = delete;
    mapped_array& operator=(mapped_array const&) = delete;
    mapped_array& operator=(mapped_array&&) = delete;

    /// Gives the elements back, without blocking.
    ~mapped_array() {
        if (is_mapped_) {
            try {
                state_->queue.enqueue_command_without_event(typename api<Version>::unmap_mem_object(
                    buffer_, const_cast<std::remove_const_t<T>*>(this->data())));
            } catch (std::exception const&) { // nothing can be done about it here
            }
        }
    }

private:
    static T* mapped(detail::session_state<Version>& state, buffer_type& buffer, flags_type how, std::size_t offset,
                     std::size_t count, waits<Version> const& earlier) {
        void* first = nullptr;
        bool const blocking = earlier.size() == 0; // some block for ever on an event that fails
        if (count != 0) {
            state.enqueue_and_wait(
                typename api<Version>::map_buffer(first, buffer, blocking, how, offset * sizeof(T), count * sizeof(T)),
                earlier);
        }
        return static_cast<T*>(first);
    }

    detail::session_link<Version> state_;
    buffer_type buffer_;
    bool is_mapped_;
};

} // namespace vorn::mero::easy
