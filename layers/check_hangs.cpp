#include "check_hangs.hpp"

#include <chrono>
#include <csignal>
#include <ctime>
#include <utility>

namespace nq::layer::check {
namespace {

constexpr std::chrono::seconds period(10);
constexpr double idle = 0.5; // seconds of processor time in a period

double processor_time() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

} // namespace

hang_watch::hang_watch(call const& made, std::string on) : made_(made), on_(std::move(on)), where_(here()) {
    sigset_t every{};
    sigset_t before{};
    sigfillset(&every);
    pthread_sigmask(SIG_SETMASK, &every, &before); // signals are the program's
    thread_ = std::thread([this] { look(); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

hang_watch::~hang_watch() {
    {
        std::scoped_lock const lock{mutex_};
        done_ = true;
    }
    ended_.notify_one();
    thread_.join();
}

void hang_watch::look() {
    std::unique_lock lock{mutex_};
    for (double before = processor_time(); !ended_.wait_for(lock, period, [this] { return done_; });) {
        double const now = processor_time();
        if (now - before < idle) {
            attempt([this] { remark(made_, where_, "has waited for 10 s, as has the whole process, for " + on_); });
            return;
        }
        before = now;
    }
}

} // namespace nq::layer::check
