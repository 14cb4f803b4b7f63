// A process of its own for one scene with the logger, named by the first argument. The log level and target come from
// the environment, "mero.log" is that of the working directory.

#include "scripted/scripted.hpp"

#include <vorn/mero/internal/logger.hpp>
#include <vorn/mero/opencl_1_2.hpp>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/spdlog.h>
#include <sys/stat.h>
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
    {"log_first_at_exit", [] {
         doomed_at_exit();
         spdlog::get("a logger of the program"); // its use of spdlog begins late and ends early
     }}};

} // namespace

int main(int, char** arguments) { scenes.at(arguments[1])(); }
