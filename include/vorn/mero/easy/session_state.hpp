#pragma once

// What a session shares with the arrays, programs and kernels that it made.

#include <vorn/mero/easy/event.hpp>

#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <utility>

namespace vorn::mero::easy::detail {

/// Host memory that commands use. Sessions know it by this class, so that only programs that need it contain it.
class any_kept_memory {
public:
    any_kept_memory() = default;
    any_kept_memory(any_kept_memory const&) = delete;
    any_kept_memory& operator=(any_kept_memory const&) = delete;
    virtual ~any_kept_memory() = default;
    virtual void forget() = 0;
};

template <int Version>
class kept_memory final : public any_kept_memory {
public:
    /// Waits for the commands.
    ~kept_memory() override {
        for (auto const& [command, memory] : kept_) {
            try {
                command.wait();
            } catch (std::exception const&) { // it has ended, and its own event tells how
            }
        }
    }

    void keep(basic_event<Version> command, std::shared_ptr<void const> memory) {
        kept_.emplace_back(std::move(command), std::move(memory));
    }

    void forget() override {
        while (!kept_.empty() && kept_.front().first.done()) {
            kept_.pop_front();
        }
    }

private:
    std::deque<std::pair<basic_event<Version>, std::shared_ptr<void const>>> kept_;
};

/// A device, its context and queue, and the host memory that commands of the queue use.
template <int Version>
class session_state {
public:
    session_state(typename api<Version>::device its_device, typename api<Version>::context its_context,
                  typename api<Version>::host_queue its_queue) noexcept
        : device(std::move(its_device)), context(std::move(its_context)), queue(std::move(its_queue)) {}

    session_state(session_state const&) = delete;
    session_state& operator=(session_state const&) = delete;

    typename api<Version>::device device;
    typename api<Version>::context context;
    typename api<Version>::host_queue queue;

    /// Enqueues a command after what it waits for.
    basic_event<Version> enqueue(typename api<Version>::command const& command, waits<Version> const& earlier) {
        return basic_event<Version>(earlier.size() == 0
                                        ? queue.enqueue_command(command)
                                        : queue.enqueue_command(command, earlier.size(), earlier.data()));
    }

    /// Enqueues a command that blocks by itself if there is nothing to wait for, and only then: some implementations
    /// never return from a blocking command that waits for what fails.
    void enqueue_and_wait(typename api<Version>::command const& command, waits<Version> const& earlier) {
        if (earlier.size() == 0) {
            queue.enqueue_command_without_event(command);
        } else {
            enqueue(command, earlier).wait();
        }
    }

    /// An event for a command that has nothing to do.
    basic_event<Version> enqueue_nothing(waits<Version> const& earlier) {
        if constexpr (Version >= 120) {
            return basic_event<Version>(queue.enqueue_marker(earlier.size(), earlier.data()));
        } else {
            if (earlier.size() != 0) { // markers have no lists yet: a byte is written that nobody reads
                static char const unread = 0;
                auto scratch = context.create_buffer(typename api<Version>::mem_flags{}, 1, nullptr);
                return enqueue(typename api<Version>::write_buffer(scratch, false, 0, 1, &unread), earlier);
            }
            return basic_event<Version>(queue.enqueue_marker());
        }
    }

    /// Keeps memory until the command has ended: it goes at the next `keep` or `forget` after that.
    void keep(basic_event<Version> command, std::shared_ptr<void const> memory) {
        std::lock_guard<std::mutex> const lock(guard_);
        if (!kept_) {
            kept_ = std::make_unique<kept_memory<Version>>();
        }
        kept_->forget();
        static_cast<kept_memory<Version>&>(*kept_).keep(std::move(command), std::move(memory));
    }

    /// Lets memory go whose commands have ended, oldest first.
    void forget() {
        std::lock_guard<std::mutex> const lock(guard_);
        if (kept_) {
            kept_->forget();
        }
    }

private:
    std::mutex guard_;
    std::unique_ptr<any_kept_memory> kept_; // null before the first
};

/// Throws unless both objects belong to one context, which not every implementation compares.
inline void check_same_context(_nq_cl_context const* one, _nq_cl_context const* other) {
    if (one != other) {
        if (one == nullptr || other == nullptr) {
            refuse_moved_from();
        }
        throw argument_error("The objects belong to different contexts: use a session of `another_queue` or "
                             "`out_of_order`, or read the elements here and write them there");
    }
}

/// The session that an object belongs to; none once the object was moved from, which then is told who uses it.
template <int Version>
class session_link {
public:
    session_link(std::shared_ptr<session_state<Version>> state) noexcept : state_(std::move(state)) {}

    session_link(session_link const& other) : state_((static_cast<void>(*other), other.state_)) {}
    session_link& operator=(session_link const& other) {
        state_ = (static_cast<void>(*other), other.state_);
        return *this;
    }
    session_link(session_link&&) noexcept = default;
    session_link& operator=(session_link&&) noexcept = default;
    ~session_link() = default;

    session_state<Version>& operator*() const {
        if (!state_) {
            refuse_moved_from();
        }
        return *state_;
    }
    session_state<Version>* operator->() const { return &**this; }

    /// Not checked: null once the object was moved from.
    session_state<Version>* get() const noexcept { return state_.get(); }
    operator std::shared_ptr<session_state<Version>> const&() const noexcept { return state_; }

private:
    std::shared_ptr<session_state<Version>> state_;
};

} // namespace vorn::mero::easy::detail
