#pragma once

// Events that the host ends: by a function that follows a command, or by the program itself.

#include <vorn/mero/easy/error.hpp>
#include <vorn/mero/easy/versions.hpp>

#include <nq/commands.hpp>
#include <vorn/mero/internal/call_capability.hpp>

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <list>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace vorn::mero::easy::detail {

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

/// Blocks until a command has ended. Throws the exception of its status when it failed.
template <int Version>
void wait_for(typename api<Version>::event& event) {
    _nq_cl_event* const list[] = {raw_of(event)};
    nq::block::clWaitForEvents block;
    block.event_list = list;
    block.num_events = 1;
    try {
        perform<Version>(event, block);
    } catch (common::exec_status_error_for_events_in_wait_list const&) {
        if (event.error_code() != common::error_code::device_not_found) { // some (PoCL) have only -1 for what failed
            event.check(); // names the status of the command itself, where the implementation keeps it
        }
        throw;
    }
}

/// The exception of a command's negative status.
inline std::exception_ptr exception_of(std::int32_t status) noexcept {
    try {
        bool const is_bare = status == -1; // only that it failed, not that a device was not found
        internal::check_error(is_bare ? std::int32_t(common::error_code::exec_status_error_for_events_in_wait_list)
                                      : status);
    } catch (...) {
        return std::current_exception();
    }
    return nullptr;
}

/// The status for an event that fails with an exception: OpenCL's own if it has one.
inline common::error_code status_of(std::exception_ptr const& failure) noexcept {
    try {
        std::rethrow_exception(failure);
    } catch (common::opencl_error const& refused) {
        return refused.code();
    } catch (common::unknown_opencl_error const& refused) {
        if (refused.value() < 0) { // an event fails with a negative status
            return common::error_code(refused.value());
        }
    } catch (...) { // none of OpenCL's
    }
    return common::error_code::exec_status_error_for_events_in_wait_list;
}

class follower;

/// Followers to be told, each with what its command failed with.
using followers = std::list<std::pair<std::shared_ptr<follower>, std::exception_ptr>>;

/// What is told, from any thread, that a command has ended; at least once, with null if it succeeded.
class follower {
public:
    follower() = default;
    follower(follower const&) = delete;
    follower& operator=(follower const&) = delete;
    virtual ~follower() = default;
    /// Puts those that follow it in turn to the front of `next`; whoever calls tells them. So a chain of any length
    /// needs no more stack than one.
    virtual void ended(std::exception_ptr const& failure, followers& next) noexcept = 0;
    /// Finds out by itself that the command has failed.
    virtual void look_for_failure() noexcept {}
};

/// Tells them, and those that follow them.
inline void tell_all(followers next) noexcept {
    while (!next.empty()) {
        followers one;
        one.splice(one.begin(), next, next.begin());
        one.front().first->ended(one.front().second, next);
    }
}

/// Tells one, and those that follow it.
inline void tell_one(follower& each, std::exception_ptr const& failure) noexcept {
    followers next;
    each.ended(failure, next);
    tell_all(std::move(next));
}

/// The host's side of an event that the host ends. Threads may share it.
template <int Version>
class host_event {
public:
    host_event() = default;
    host_event(host_event const&) = delete;
    host_event& operator=(host_event const&) = delete;
    virtual ~host_event() = default;

    /// The event of OpenCL.
    virtual typename api<Version>::event event() const = 0;
    /// The command that must succeed first, null if there is none. Implementations that do not call back for a failed
    /// command fail at least the commands that wait for it; so wait lists hold both.
    virtual typename api<Version>::event const* origin() const noexcept = 0;
    /// What it follows, if that is the host's too; null once it has ended.
    virtual std::shared_ptr<host_event> before() const = 0;
    /// Whether it has ended. Ends it if it follows a command, and that has.
    virtual bool look() = 0;
    /// Blocks until it has ended, for which what it follows has to end. What it failed with.
    virtual std::exception_ptr settle() = 0;
    /// Rethrows what it failed with, if it has.
    virtual void check() = 0;
    /// Tells a follower when it ends, at once if it has.
    virtual void tell(std::shared_ptr<follower> each) = 0;

    /// Whether it has ended. Finds out by itself that the origin has.
    bool done() {
        auto first = before();
        for (auto next = first; next; next = next->before()) {
            first = next;
        }
        if (first) {
            first->look();
        }
        return look();
    }

    /// Blocks until it has ended. Rethrows what it failed with.
    void wait() {
        std::vector<std::shared_ptr<host_event>> earlier;
        for (auto each = before(); each; each = each->before()) {
            earlier.push_back(each);
        }
        for (; !earlier.empty(); earlier.pop_back()) { // in their order, so that none has to wait for several
            earlier.back()->settle();
        }
        if (auto const failure = settle()) {
            std::rethrow_exception(failure);
        }
    }
};

/// A user event with its host's side. Whoever claims it ends it, once.
template <int Version>
class promised_event : public host_event<Version> {
public:
    using exact_type = typename api<Version>::event;

    /// Makes the user event, to be ended after what it follows; null if that is nothing of the host.
    explicit promised_event(typename api<Version>::context context, std::shared_ptr<host_event<Version>> before = {})
        : promise_(context.create_user_event()), before_(std::move(before)) {}

    exact_type event() const override { return promise_.get_event(); }
    exact_type const* origin() const noexcept override { return nullptr; }
    bool look() override { return has_ended(); }

    std::shared_ptr<host_event<Version>> before() const override {
        std::lock_guard<std::mutex> const lock(guard_);
        return before_;
    }

    std::exception_ptr settle() override {
        std::unique_lock<std::mutex> lock(guard_);
        changed_.wait(lock, [this] { return has_ended_; });
        return failure_;
    }

    void check() override {
        std::lock_guard<std::mutex> const lock(guard_);
        if (failure_) {
            std::rethrow_exception(failure_);
        }
    }

    void tell(std::shared_ptr<follower> each) override {
        std::unique_lock<std::mutex> lock(guard_);
        if (!has_ended_) {
            followers_.emplace_back(std::move(each), nullptr);
            return;
        }
        lock.unlock();
        tell_one(*each, failure_);
    }

    /// True for the first call.
    bool claim() noexcept { return !is_claimed_.exchange(true); }

    /// For who claimed it: lets everything that waits for it start, or fail. Puts its followers to the front of `next`.
    void end(std::exception_ptr const& failure, followers& next) noexcept {
        try {
            if (failure) {
                promise_.set_status_failure(status_of(failure));
            } else {
                promise_.set_status_success();
            }
        } catch (std::exception const&) { // OpenCL is gone; the waiting threads of the host must not hang
        }
        std::shared_ptr<host_event<Version>> earlier; // goes when the lock has gone
        std::lock_guard<std::mutex> const lock(guard_);
        failure_ = failure;
        has_ended_ = true;
        earlier.swap(before_);
        for (auto& [each, its_failure] : followers_) {
            its_failure = failure;
        }
        next.splice(next.begin(), followers_);
        changed_.notify_all();
    }

    /// The same, and tells the followers.
    void end(std::exception_ptr const& failure) noexcept {
        followers next;
        end(failure, next);
        tell_all(std::move(next));
    }

protected:
    bool has_ended() const {
        std::lock_guard<std::mutex> const lock(guard_);
        return has_ended_;
    }

private:
    typename api<Version>::event_promise promise_;
    std::atomic<bool> is_claimed_ = false;
    std::shared_ptr<host_event<Version>> before_;
    mutable std::mutex guard_;
    std::condition_variable changed_;
    bool has_ended_ = false;
    std::exception_ptr failure_; // does not change once it has ended
    followers followers_;
};

} // namespace vorn::mero::easy::detail
