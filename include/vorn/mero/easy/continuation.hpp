#pragma once

// Functions that follow commands.

#include <vorn/mero/easy/host_event.hpp>

#include <array>
#include <cstdint>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

namespace vorn::mero::easy::detail {

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
                other->look_for_failure();
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
            tell_one(*taken, exception_of(status));
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
    continuation(exact_type source, std::shared_ptr<host_event<Version>> const& before, Function function)
        : promised_event<Version>(source.get_context(), before), follows_command_(!before),
          origin_(origin_of(std::move(source), before.get())), function_(std::move(function)) {}

    /// Asks to be told. Called once, with what owns this.
    void start(std::shared_ptr<follower> self) {
        if (auto const before = this->before()) {
            before->tell(std::move(self));
            return;
        }
        callback_list::all().add(std::move(self), number_);
        try {
            using when = typename api<Version>::commmand_exec_callback_type;
            void* const number = reinterpret_cast<void*>(number_); // NOLINT(performance-no-int-to-ptr): no address
            origin_->set_callback(when::complete, callback_list::call, number);
            if (origin_->has_associated_command_queue()) {
                origin_->get_command_queue().flush(); // some run no command before
            }
        } catch (...) {
            callback_list::all().take(number_);
            throw;
        }
        look(); // some do not call back for what has ended already
    }

    exact_type const* origin() const noexcept override { return origin_ ? &*origin_ : nullptr; }

    bool look() override {
        using status = typename api<Version>::event_execution_status;
        if (follows_command_ && !this->has_ended() && origin_->execution_status() <= status::complete) {
            tell_one(*this, exception_of(static_cast<std::int32_t>(origin_->error_code())));
        }
        return this->has_ended();
    }

    void look_for_failure() noexcept override {
        try {
            auto const status = origin_->error_code();
            if (status != common::error_code::success) {
                tell_one(*this, exception_of(static_cast<std::int32_t>(status)));
            }
        } catch (std::exception const&) { // it waits on
        }
    }

    std::exception_ptr settle() override {
        std::exception_ptr failure;
        if (auto const before = this->before()) {
            failure = before->settle();
            tell_one(*this, failure);
        } else if (!this->has_ended() && follows_command_) {
            try {
                wait_for<Version>(*origin_);
            } catch (...) {
                failure = std::current_exception();
            }
            tell_one(*this, failure);
        }
        return promised_event<Version>::settle();
    }

    void ended(std::exception_ptr const& failure, followers& next) noexcept override {
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
        this->end(outcome, next);
        callback_list::all().take(number_);
    }

private:
    static std::optional<exact_type> origin_of(exact_type source, host_event<Version> const* before) {
        if (before == nullptr) {
            return source;
        }
        auto const* const origin = before->origin();
        return origin != nullptr ? std::optional<exact_type>(*origin) : std::nullopt;
    }

    bool const follows_command_;
    std::optional<exact_type> origin_; // the command at the beginning; none behind a user event
    std::optional<Function> function_;
    std::uintptr_t number_ = 0;
};

} // namespace vorn::mero::easy::detail
