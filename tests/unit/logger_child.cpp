// A process of its own for one scene with the logger, named by the first argument. The log level and target come from
// the environment, "mero.log" is that of the working directory.

#include "scripted/scripted.hpp"

#include <vorn/mero/internal/logger.hpp>
#include <vorn/mero/opencl_1_2.hpp>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <map>
#include <spdlog/details/null_mutex.h>
#include <spdlog/sinks/base_sink.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/spdlog.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace vorn::mero::opencl_1_2;
using vorn::mero::internal::get_mero_logger;

context make_context() {
    auto& libnq = scripted::libnq::instance();
    return {libnq.open(nq::capability::opencl_1_2), libnq.make<_nq_cl_context>(1), internal::take_ownership{}};
}

void release_and_fail() {
    context const doomed = make_context();
    scripted::libnq::instance().fail(scripted::status(-5));
}

// An object that is destroyed at process exit, and fails then.
context& doomed_at_exit() {
    static context doomed = make_context();
    scripted::libnq::instance().fail<nq::block::clReleaseContext>(scripted::status(-5));
    return doomed;
}

// A thread in the midst of logging, and what process exit meanwhile does to the logger.
std::atomic<bool> is_logging{false};
std::atomic<bool> may_end{false};
std::atomic<bool> has_logged{false};
std::atomic<bool> sink_is_gone{false};

void set(std::atomic<bool>& flag) {
    flag = true;
    flag.notify_all();
}

struct slow_sink : spdlog::sinks::base_sink<spdlog::details::null_mutex> {
    ~slow_sink() override { sink_is_gone = true; }
    void sink_it_(spdlog::details::log_msg const&) override {
        set(is_logging);
        may_end.wait(false);
        std::printf("%s", sink_is_gone ? "destroyed" : "logged");
    }
    void flush_() override { std::printf("flushed "); }
};

struct end_of_exit {
    ~end_of_exit() {
        set(may_end);
        has_logged.wait(false);
    }
};

std::map<std::string, void (*)()> const scenes = {
    {"release", [] { context const object = make_context(); }},
    {"release_and_look",
     [] {
         release_and_fail();
         auto* const logger = get_mero_logger();
         std::printf("%s %d %zu", logger->name().c_str(), static_cast<int>(logger->level()), logger->sinks().size());
     }},
    {"change_variables", // which no longer matter once the logger is there
     [] {
         release_and_fail();
         ::setenv("MERO_LOG_LEVEL", "off", 1);
         ::setenv("MERO_LOG_TARGET", "none", 1);
         release_and_fail();
     }},
    {"take_the_name", // before the library does
     [] {
         auto const own = spdlog::stderr_logger_mt("mero");
         release_and_fail();
         try {
             get_mero_logger();
         } catch (spdlog::spdlog_ex const& error) {
             std::printf("%s", error.what());
         }
     }},
    {"open_late", // a file that cannot be opened, until it can
     [] {
         ::mkdir("mero.log", 0700);
         release_and_fail();
         ::rmdir("mero.log");
         release_and_fail();
     }},
    {"outlive_the_logger",
     [] {
         doomed_at_exit();
         get_mero_logger();
     }},
    {"end_before_the_logger",
     [] {
         get_mero_logger();
         doomed_at_exit();
     }},
    {"exit_while_a_thread_logs",
     [] {
         scripted::libnq::instance();
         static end_of_exit const after_the_logger;
         get_mero_logger()->sinks() = {std::make_shared<slow_sink>()};
         std::thread([] {
             release_and_fail();
             set(has_logged);
         }).detach();
         is_logging.wait(false);
     }},
    {"log_first_at_exit", [] {
         doomed_at_exit();
         spdlog::get("a logger of the program"); // its use of spdlog begins late and ends early
     }}};

} // namespace

// In place of the system's: nothing of the library may wait.
extern "C" [[gnu::visibility("default")]] int nanosleep(timespec const*, timespec*) {
    std::printf("slept");
    return 0;
}

int main(int, char** arguments) { scenes.at(arguments[1])(); }
