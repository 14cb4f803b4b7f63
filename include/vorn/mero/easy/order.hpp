#pragma once

#include <vorn/mero/easy/event.hpp>
#include <vorn/mero/easy/session.hpp>

#include <exception>
#include <memory>
#include <utility>
#include <vector>

namespace vorn::mero::easy {

/// An event that the program ends: commands that wait for it start when it is completed, and fail when it fails.
///
///     ez::user_event loaded(gpu);
///     auto sum = add(ez::range(n), ez::after(loaded.event()), a, b, c); // does not start yet
///     read_file();
///     loaded.complete();
///
/// An object that is destroyed before fails its event. That comes too late for an object declared after it whose
/// destructor waits for commands behind the event, as that of a transfer, a `finish_guard` or shared memory does: it
/// waits for ever where an exception leaves the scope. Have the object that ends the event destroyed before it:
///
///     auto const reading = a.read_async(values.data(), n, 0, ez::after(loaded.event()));
///     ez::user_event last(std::move(loaded)); // declared last, it fails the event first
///
/// Move-only. Oclgrind runs commands inside `flush`, `finish` and the wait for an event: complete before these. Since
/// OpenCL 1.1.
template <int Version>
class basic_user_event {
public:
    /// A session of the version.
    using session_type = basic_session<Version>;

    /// In the context of a session.
    explicit basic_user_event(session_type const& owner)
        : host_(std::make_shared<detail::promised_event<Version>>(owner.context())) {
        static_assert(Version >= 110, "OpenCL has user events since 1.1");
    }

    basic_user_event(basic_user_event&&) noexcept = default;
    /// Its own event fails as in the destructor if it has not ended. `other` has none afterwards.
    basic_user_event& operator=(basic_user_event&& other) noexcept {
        basic_user_event ends(std::move(*this));
        host_ = std::move(other.host_);
        return *this;
    }
    basic_user_event(basic_user_event const&) = delete;
    basic_user_event& operator=(basic_user_event const&) = delete;

    /// An event that has not ended fails with an `order_error`, and with it what waits for it.
    ~basic_user_event() {
        if (host_ && host_->claim()) {
            host_->end(std::make_exception_ptr(order_error(
                "A user event was destroyed before it was completed: call `complete` on every path that succeeds")));
        }
    }

    /// For wait lists; it may outlive this object. Its `wait` rethrows what the event fails with.
    [[nodiscard]] basic_event<Version> event() const { return basic_event<Version>(host()); }

    /// Ends it; commands that wait for it start. Throws `order_error` if it has ended.
    void complete() { end(nullptr); }

    /// Fails it; commands that wait for it fail and do not run. Its `wait` rethrows `failure`. Throws
    /// `order_error` if it has ended, and for a null `failure`.
    void fail(std::exception_ptr const& failure) {
        if (!failure) {
            throw order_error(
                "A user event fails with an exception: give std::make_exception_ptr(...), or complete it");
        }
        end(failure);
    }

private:
    void end(std::exception_ptr const& failure) {
        if (!host()->claim()) {
            throw order_error(
                "A user event ends once, and this one has ended already: complete or fail it at one place");
        }
        host_->end(failure);
    }

    std::shared_ptr<detail::promised_event<Version>> const& host() const {
        if (!host_) {
            detail::refuse_moved_from();
        }
        return host_;
    }

    std::shared_ptr<detail::promised_event<Version>> host_;
};

/// `basic_user_event` of the default version.
using user_event = basic_user_event<default_version>;

/// An event that ends when all of these have, and fails when one fails. It is a marker in the queue of the first that
/// has a queue; if that queue is in order, it also comes after what is enqueued there. Throws `order_error` if none has
/// one. Since OpenCL 1.2.
template <int Version>
[[nodiscard]] basic_event<Version> when_all(std::vector<basic_event<Version>> const& events) {
    static_assert(Version >= 120, "OpenCL's markers take lists since 1.2");
    for (auto const& each : events) {
        if (each.exact().has_associated_command_queue()) {
            auto const list = after(events);
            return basic_event<Version>(each.exact().get_command_queue().enqueue_marker(list.size(), list.data()));
        }
    }
    throw order_error("when_all needs the event of a command among its events, to know a queue");
}

/// The same of these events.
template <int Version, class... More>
[[nodiscard]] basic_event<Version> when_all(basic_event<Version> const& first, More const&... more) {
    return when_all(std::vector<basic_event<Version>>{first, more...});
}

/// Finishes a session's queue where its scope ends, also when an exception leaves it. Declare it after what the
/// commands use, and before a user event that they wait for. What fails there is dropped: the commands' events tell it.
///
///     std::vector<float> values(n);          // outlives the guard
///     ez::finish_guard const guard(gpu);
///     gpu.queue().enqueue_command_without_event(cl::read_buffer(c.exact(), false, 0, bytes, values.data()));
template <class Session>
class finish_guard {
public:
    /// Of the queue of this session, which it keeps alive.
    explicit finish_guard(Session finished) : session_(std::move(finished)) {}

    finish_guard(finish_guard const&) = delete;
    finish_guard& operator=(finish_guard const&) = delete;

    /// Blocks until the queue is empty; drops a failure.
    ~finish_guard() {
        try {
            session_.finish();
        } catch (std::exception const&) { // nothing can be done about it here
        }
    }

private:
    Session session_;
};

} // namespace vorn::mero::easy
