#pragma once

#include <vorn/mero/easy/versions.hpp>

#include <nq/commands.hpp>
#include <vorn/mero/internal/call_capability.hpp>

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace vorn::mero::easy {

namespace detail {

/// The raw handle of any object of the exact interface.
template <class Object>
auto* raw_of(Object const& object) noexcept {
    return internal::owner_access::raw(object);
}

/// Performs an entry point that the exact interface lacks or has in another form.
template <int Version, class Object, class Block>
void perform(Object const& object, Block& block) {
    internal::call_capability(internal::owner_access::call_handle(object),
                              nq::command_id<api<Version>::capability, Block>, &block);
    internal::check_error(block.status);
}

} // namespace detail

/// How long a command took, on the device's clock.
struct durations {
    std::chrono::nanoseconds queued;  ///< From its enqueueing to its hand-over to the device.
    std::chrono::nanoseconds waiting; ///< From there to its start.
    std::chrono::nanoseconds running; ///< From start to end.
};

/// A command that was enqueued. It may be dropped: the command runs all the same.
template <int Version>
class basic_event {
public:
    using exact_type = typename api<Version>::event;

    /// Takes over an event of the exact interface.
    explicit basic_event(exact_type exact) noexcept : exact_(std::move(exact)) {}

    /// The event of the exact interface.
    [[nodiscard]] exact_type& exact() noexcept { return exact_; }
    /// The same of an object that does not change.
    [[nodiscard]] exact_type const& exact() const noexcept { return exact_; }

    /// Blocks until the command has ended. Throws the exception of its status when it failed.
    void wait() {
        _nq_cl_event* const list[] = {detail::raw_of(exact_)};
        nq::block::clWaitForEvents block;
        block.event_list = list;
        block.num_events = 1;
        try {
            detail::perform<Version>(exact_, block);
        } catch (common::exec_status_error_for_events_in_wait_list const&) {
            exact_.check(); // names the status of the command itself, where the implementation keeps it
            throw;
        }
    }

    /// Waits, and gives the time from start to end.
    [[nodiscard]] std::chrono::nanoseconds time() { return times().running; }

    /// Waits, and gives the times of the command. Throws `common::profiling_info_not_available` for a queue without
    /// profiling; the queue of a session has it.
    [[nodiscard]] durations times() {
        wait();
        std::array<std::uint64_t, 4> const moments{exact_.profile_command_queued(), exact_.profile_command_submit(),
                                                   exact_.profile_command_start(), exact_.profile_command_end()};
        auto const between = [&moments](std::size_t begin) {
            return std::chrono::nanoseconds(static_cast<std::int64_t>(moments[begin + 1] - moments[begin]));
        };
        return {between(0), between(1), between(2)};
    }

private:
    exact_type exact_;
};

/// `basic_event` of the default version.
using event = basic_event<default_version>;

/// Commands to wait for: it keeps a reference to each, so that the events themselves may go.
///
///     auto const loaded = first.copy_to(second);
///     kernel(ez::range(n), ez::after(loaded), second);
template <int Version, std::size_t Count>
class wait_list {
public:
    /// Of events of the exact interface; `after` makes one of the events of this layer.
    explicit wait_list(std::array<typename api<Version>::event, Count> events) : events_(std::move(events)) {
        for (std::size_t i = 0; i < Count; ++i) {
            raws_[i] = detail::raw_of(events_[i]);
        }
    }

    /// The raw handles, in order; valid as long as this object.
    [[nodiscard]] std::array<_nq_cl_event*, Count> const& raws() const noexcept { return raws_; }

private:
    std::array<typename api<Version>::event, Count> events_;
    std::array<_nq_cl_event*, Count> raws_{};
};

/// The list of these events. One retain for each.
template <int Version, class... More>
[[nodiscard]] wait_list<Version, 1 + sizeof...(More)> after(basic_event<Version> const& first, More const&... more) {
    return wait_list<Version, 1 + sizeof...(More)>({first.exact(), more.exact()...});
}

} // namespace vorn::mero::easy
