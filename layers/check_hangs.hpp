#pragma once

// Waits that may never end.

#include "check_order.hpp"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace nq::layer::check {

/// Looks at a call that waits for a user event, from another thread. Prints once which event it is if the process has
/// done nothing for ten seconds: a program that hangs does not come to its end, where findings are printed.
class hang_watch {
public:
    /// `made` must live as long as this. `on` is what it waits for, in words.
    hang_watch(call const& made, std::string on);
    ~hang_watch();
    hang_watch(hang_watch const&) = delete;
    hang_watch& operator=(hang_watch const&) = delete;

private:
    void look();

    call const& made_;
    std::string on_;
    place where_;
    std::mutex mutex_;
    std::condition_variable ended_;
    bool done_ = false;
    std::thread thread_;
};

} // namespace nq::layer::check
