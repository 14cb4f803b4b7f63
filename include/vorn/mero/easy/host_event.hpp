#pragma once

// Events that the host ends: by a function that follows a command, or by the program itself.

#include <vorn/mero/easy/error.hpp>
#include <vorn/mero/easy/versions.hpp>

#include <nq/commands.hpp>
#include <vorn/mero/internal/call_capability.hpp>

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
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
    } catch (...) {
        return common::error_code::exec_status_error_for_events_in_wait_list;
    }
}

/// What is told, from any thread, that a command has ended; at least once, with null if it succeeded.
class follower {
public:
    follower() = default;
    follower(follower const&) = delete;
    follower& operator=(follower const&) = delete;
    virtual ~follower() = default;
    virtual void ended(std::exception_ptr const& failure) noexcept = 0;
    /// Finds out by itself that the command has failed.
    virtual void look() noexcept {}
};

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
    /// Whether it has ended. Finds out by itself that the origin failed.
    virtual bool done() = 0;
    /// Blocks until it has ended. Rethrows what it failed with.
    virtual void wait() = 0;
    /// Rethrows what it failed with, if it has.
    virtual void check() = 0;
    /// Tells a follower when it ends, at once if it has.
    virtual void tell(std::shared_ptr<follower> each) = 0;
};

/// A user event with its host's side. Whoever claims it ends it, once.
template <int Version>
class promised_event : public host_event<Version> {
public:
    using exact_type = typename api<Version>::event;

    /// Makes the user event.
    explicit promised_event(typename api<Version>::context context) : promise_(context.create_user_event()) {}

    exact_type event() const override { return promise_.get_event(); }
    exact_type const* origin() const noexcept override { return nullptr; }
    bool done() override { return has_ended(); }

    void wait() override {
        std::unique_lock<std::mutex> lock(guard_);
        changed_.wait(lock, [this] { return has_ended_; });
        rethrow();
    }

    void check() override {
        std::lock_guard<std::mutex> const lock(guard_);
        rethrow();
    }

    void tell(std::shared_ptr<follower> each) override {
        std::unique_lock<std::mutex> lock(guard_);
        if (!has_ended_) {
            followers_.push_back(std::move(each));
            return;
        }
        lock.unlock();
        each->ended(failure_);
    }

    /// True for the first call.
    bool claim() noexcept { return !is_claimed_.exchange(true); }

    /// For who claimed it: lets everything that waits for it start, or fail.
    void end(std::exception_ptr const& failure) noexcept {
        try {
            if (failure) {
                promise_.set_status_failure(status_of(failure));
            } else {
                promise_.set_status_success();
            }
        } catch (std::exception const&) { // OpenCL is gone; the waiting threads of the host must not hang
        }
        std::unique_lock<std::mutex> lock(guard_);
        failure_ = failure;
        has_ended_ = true;
        auto const followers = std::move(followers_);
        changed_.notify_all();
        lock.unlock();
        for (auto const& each : followers) {
            each->ended(failure);
        }
    }

protected:
    bool has_ended() {
        std::lock_guard<std::mutex> const lock(guard_);
        return has_ended_;
    }

private:
    void rethrow() const {
        if (failure_) {
            std::rethrow_exception(failure_);
        }
    }

    typename api<Version>::event_promise promise_;
    std::atomic<bool> is_claimed_ = false;
    std::mutex guard_;
    std::condition_variable changed_;
    bool has_ended_ = false;
    std::exception_ptr failure_; // does not change once it has ended
    std::vector<std::shared_ptr<follower>> followers_;
};

/// What OpenCL calls back for. Not every callback comes: so OpenCL is given a number, not an address, what no longer
/// waits for its callback takes itself off the list, and each addition has two of the others look for themselves.
class callback_list {
public:
    /// Sets the follower's number.
    void add(std::shared_ptr<follower> each, std::uintptr_t& number) {
        std::array<std::shared_ptr<follower>, 2> others;
        {
            std::lock_guard<std::mutex> const lock(guard_);
            for (auto& other : others) {
                auto const next = followers_.upper_bound(looked_);
                looked_ = next == followers_.end() ? 0 : next->first;
                other = next == followers_.end() ? nullptr : next->second;
            }
            followers_.emplace(++last_, std::move(each));
            number = last_;
        }
        for (auto const& other : others) {
            if (other) {
                other->look();
            }
        }
    }

    /// Null if it is not on the list.
    std::shared_ptr<follower> take(std::uintptr_t number) noexcept {
        std::lock_guard<std::mutex> const lock(guard_);
        auto const found = followers_.find(number);
        if (found == followers_.end()) {
            return nullptr;
        }
        auto taken = std::move(found->second);
        followers_.erase(found);
        return taken;
    }

    /// The list of the process; never destroyed, since implementations may call back while the process ends.
    static callback_list& all() {
        static auto& list = *new callback_list;
        return list;
    }

    /// The function for OpenCL.
    static void call(_nq_cl_event* /*event*/, int status, void* number) {
        if (auto const taken = all().take(reinterpret_cast<std::uintptr_t>(number))) {
            taken->ended(exception_of(status));
        }
    }

private:
    std::mutex guard_;
    std::uintptr_t last_ = 0;
    std::uintptr_t looked_ = 0; // the last that was asked to look
    std::map<std::uintptr_t, std::shared_ptr<follower>> followers_;
};

/// A function that runs when a command has succeeded: in a callback, or in whoever waits or asks for it and finds that
/// no callback came.
template <int Version, class Function>
class continuation final : public promised_event<Version>, public follower {
public:
    using exact_type = typename api<Version>::event;

    /// `before` is the host's side of `source`, null for a command.
    continuation(exact_type source, std::shared_ptr<host_event<Version>> before, Function function)
        : promised_event<Version>(source.get_context()), source_(std::move(source)), before_(std::move(before)),
          function_(std::move(function)) {}

    /// Asks to be told. Called once, with what owns this.
    void start(std::shared_ptr<follower> self) {
        if (before_) {
            before_->tell(std::move(self));
            return;
        }
        callback_list::all().add(std::move(self), number_);
        try {
            using when = typename api<Version>::commmand_exec_callback_type;
            void* const number = reinterpret_cast<void*>(number_); // NOLINT(performance-no-int-to-ptr): no address
            source_.set_callback(when::complete, callback_list::call, number);
            if (source_.has_associated_command_queue()) {
                source_.get_command_queue().flush(); // some run no command before
            }
        } catch (...) {
            callback_list::all().take(number_);
            throw;
        }
        done(); // some do not call back for what has ended already
    }

    exact_type const* origin() const noexcept override { return before_ ? before_->origin() : &source_; }

    bool done() override {
        if (before_) {
            before_->done();
        } else if (!this->has_ended()) {
            using status = typename api<Version>::event_execution_status;
            if (source_.execution_status() <= status::complete) {
                ended(exception_of(static_cast<std::int32_t>(source_.error_code())));
            }
        }
        return this->has_ended();
    }

    void look() noexcept override {
        try {
            auto const status = source_.error_code();
            if (status != common::error_code::success) {
                ended(exception_of(static_cast<std::int32_t>(status)));
            }
        } catch (std::exception const&) { // it waits on
        }
    }

    void wait() override {
        std::exception_ptr failure;
        try {
            before_ ? before_->wait() : wait_for<Version>(source_);
        } catch (...) {
            failure = std::current_exception();
        }
        ended(failure);
        promised_event<Version>::wait();
    }

    void ended(std::exception_ptr const& failure) noexcept override {
        if (!this->claim()) {
            return;
        }
        std::exception_ptr outcome = failure;
        try {
            if (!failure) {
                (*function_)();
            }
        } catch (...) {
            outcome = std::current_exception();
        }
        function_.reset();
        this->end(outcome);
        callback_list::all().take(number_);
    }

private:
    exact_type source_;
    std::shared_ptr<host_event<Version>> before_;
    std::optional<Function> function_;
    std::uintptr_t number_ = 0;
};

} // namespace vorn::mero::easy::detail
