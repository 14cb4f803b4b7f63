#pragma once

#include <vorn/mero/easy/continuation.hpp>

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace vorn::mero::easy {

/// How long a command took, on the device's clock.
struct durations {
    std::chrono::nanoseconds queued;  ///< From its enqueueing to its hand-over to the device.
    std::chrono::nanoseconds waiting; ///< From there to its start.
    std::chrono::nanoseconds running; ///< From start to end.
};

/// A command that was enqueued. It may be dropped: the command runs all the same. A copy names the same command;
/// threads may share one.
///
///     auto sum = add(ez::range(n), a, b, c);
///     auto told = sum.then([&] { std::puts("the sum is there"); });
///     scale(ez::range(n), ez::after(sum), c);
///     told.wait();
template <int Version>
class basic_event {
public:
    /// The event of the exact interface.
    using exact_type = typename api<Version>::event;

    /// Takes over an event of the exact interface.
    explicit basic_event(exact_type exact) noexcept : exact_(std::move(exact)) {}

    /// Of what the host ends; made by `then` and by user events.
    explicit basic_event(std::shared_ptr<detail::host_event<Version>> host)
        : exact_(host->event()), host_(std::move(host)) {}

    /// @{
    /// Throws `moved_from` for an event that was moved from.
    basic_event(basic_event const& other) : exact_(other.there()), host_(other.host_) {}
    basic_event& operator=(basic_event const& other) {
        exact_ = other.there();
        host_ = other.host_;
        return *this;
    }
    /// @}
    basic_event(basic_event&&) noexcept = default;
    basic_event& operator=(basic_event&&) noexcept = default;
    ~basic_event() = default;

    /// The event of the exact interface.
    [[nodiscard]] exact_type& exact() noexcept { return exact_; }
    /// The same of an object that does not change.
    [[nodiscard]] exact_type const& exact() const noexcept { return exact_; }

    /// Blocks until the command has ended. Throws the exception of its status when it failed, and what a function of
    /// `then` threw.
    void wait() const {
        if (host_) {
            host_->wait();
        } else {
            detail::wait_for<Version>(there());
        }
    }

    /// Whether the command has ended; it may have failed, which `wait` tells. Does not wait for commands, but of a
    /// result of `then` it may call the function. Some implementations run no command before `session::flush` or a
    /// wait.
    [[nodiscard]] bool done() const {
        return host_ ? host_->done() : there().execution_status() <= api<Version>::event_execution_status::complete;
    }

    /// Has the function called once when the command has succeeded, and flushes the command's queue. The result ends
    /// when the function returns: other commands may wait for it. It fails if the command fails, in which case the
    /// function is not called, and if the function throws; its `wait` rethrows the exception, which goes nowhere else.
    ///
    /// The function is moved or copied here, and destroyed after its call. It runs on any thread: one of the
    /// implementation, or one that waits for an event, flushes, or calls `done` or `after` of the result, or this
    /// member, which does so at once where the command has ended: hold no lock that the function takes. It must not
    /// wait for commands. On some implementations (rusticl) it must not enqueue either: enqueue what follows
    /// beforehand, after the result. Since OpenCL 1.1.
    template <class Function>
    basic_event then(Function&& function) const {
        static_assert(Version >= 110, "OpenCL calls back since 1.1; wait for the event instead");
        static_assert(std::is_invocable<std::decay_t<Function>&>::value, "the function takes no arguments");
        auto const made = std::make_shared<detail::continuation<Version, std::decay_t<Function>>>(
            there(), host_, std::forward<Function>(function));
        made->start(made);
        return basic_event(std::shared_ptr<detail::host_event<Version>>(made));
    }

    /// Waits, and gives the time from start to end.
    [[nodiscard]] std::chrono::nanoseconds time() const { return times().running; }

    /// Waits, and gives the times of the command. Throws `common::profiling_info_not_available` for a queue without
    /// profiling, which the queue of a session has, and `order_error` for what the host ends.
    [[nodiscard]] durations times() const {
        wait();
        if (host_) {
            throw order_error(
                "Only commands have times: ask the event of the command, not what `then` returned for it, "
                "and no user event");
        }
        std::array<std::uint64_t, 4> const moments{exact_.profile_command_queued(), exact_.profile_command_submit(),
                                                   exact_.profile_command_start(), exact_.profile_command_end()};
        auto const between = [&moments](std::size_t begin) {
            return std::chrono::nanoseconds(static_cast<std::int64_t>(moments[begin + 1] - moments[begin]));
        };
        return {between(0), between(1), between(2)};
    }

private:
    template <int, std::size_t>
    friend class wait_list;

    exact_type& there() const {
        if (detail::raw_of(exact_) == nullptr) {
            detail::refuse_moved_from();
        }
        return exact_;
    }

    /// What a wait list holds of it. Throws what it failed with, if that is known: some implementations never start,
    /// and never end, a command that is enqueued after an event that has failed.
    template <class Take>
    void give_raws(Take take) const {
        if (host_) {
            if (host_->done()) {
                host_->check();
            }
            if (auto const* const origin = host_->origin()) {
                take(detail::raw_of(*origin));
            }
        }
        take(detail::raw_of(there()));
    }

    mutable exact_type exact_; // its own queries are not const
    std::shared_ptr<detail::host_event<Version>> host_;
};

/// `basic_event` of the default version.
using event = basic_event<default_version>;

/// As the number of events: only known when the program runs.
inline constexpr std::size_t any_count = static_cast<std::size_t>(-1);

/// Events to wait for, made by `after`: it keeps a reference to each, so that the events themselves may go.
///
///     auto const loaded = first.copy_to(second);
///     kernel(ez::range(n), ez::after(loaded), second);
template <int Version, std::size_t Count>
class wait_list {
public:
    /// Of these events. Throws what one of them failed with, if it is one of the host that has failed already.
    explicit wait_list(std::array<basic_event<Version>, Count> events) : events_(std::move(events)) {
        for (auto const& each : events_) {
            each.give_raws([this](_nq_cl_event* raw) { raws_[size_++] = raw; });
        }
    }

    /// The raw handles; valid as long as this object.
    [[nodiscard]] _nq_cl_event* const* data() const noexcept { return raws_.data(); }
    /// Their number.
    [[nodiscard]] unsigned size() const noexcept { return size_; }

private:
    std::array<basic_event<Version>, Count> events_;
    std::array<_nq_cl_event*, 2 * Count> raws_; // events of the host have two
    unsigned size_ = 0;
};

/// The same of a number of events that is known when the program runs; it may be 0.
template <int Version>
class wait_list<Version, any_count> {
public:
    /// Of these events, as above.
    explicit wait_list(std::vector<basic_event<Version>> events) : events_(std::move(events)) {
        raws_.reserve(events_.size());
        for (auto const& each : events_) {
            each.give_raws([this](_nq_cl_event* raw) { raws_.push_back(raw); });
        }
    }

    /// The raw handles, null if there is none; valid as long as this object.
    [[nodiscard]] _nq_cl_event* const* data() const noexcept { return raws_.empty() ? nullptr : raws_.data(); }
    /// Their number.
    [[nodiscard]] unsigned size() const noexcept { return static_cast<unsigned>(raws_.size()); }

private:
    std::vector<basic_event<Version>> events_;
    std::vector<_nq_cl_event*> raws_;
};

/// The list of these events. One retain for each. Of results of `then` it may call the functions.
template <int Version, class... More>
[[nodiscard]] wait_list<Version, 1 + sizeof...(More)> after(basic_event<Version> const& first, More const&... more) {
    return wait_list<Version, 1 + sizeof...(More)>({first, more...});
}

/// The same of a number of events that is known when the program runs.
template <int Version>
[[nodiscard]] wait_list<Version, any_count> after(std::vector<basic_event<Version>> events) {
    return wait_list<Version, any_count>(std::move(events));
}

/// A list of `after` as the argument of a member that enqueues; nothing to wait for by default.
template <int Version>
class waits {
public:
    constexpr waits() noexcept = default;

    /// Of a list, which must live until the command is enqueued.
    template <std::size_t Count>
    waits(wait_list<Version, Count> const& list) noexcept : data_(list.data()), size_(list.size()) {}

    /// The raw handles, null if there is none.
    [[nodiscard]] _nq_cl_event* const* data() const noexcept { return data_; }
    /// Their number.
    [[nodiscard]] unsigned size() const noexcept { return size_; }

private:
    _nq_cl_event* const* data_ = nullptr;
    unsigned size_ = 0;
};

} // namespace vorn::mero::easy
