#include "child.hpp"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>

namespace contract {
namespace {

[[noreturn]] void become(std::vector<std::string>& arguments, std::map<std::string, std::string> const& environment,
                         int output) {
    for (auto const& [name, value] : environment) {
        value.empty() ? unsetenv(name.c_str()) : setenv(name.c_str(), value.c_str(), 1);
    }
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    std::vector<char*> raw{const_cast<char*>("contract"), const_cast<char*>("--mode")};
    for (std::string& argument : arguments) {
        raw.push_back(argument.data());
    }
    raw.push_back(nullptr);
    execv("/proc/self/exe", raw.data());
    _exit(127);
}

// Until the end of the output or the time limit.
std::string collect(int input) {
    auto const deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    std::string output;
    std::array<char, 4096> part;
    for (;;) {
        auto const left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        pollfd waiting{input, POLLIN, 0};
        if (left.count() <= 0 || poll(&waiting, 1, static_cast<int>(left.count())) <= 0) {
            return output + "\ntime limit reached\n";
        }
        auto const size = ::read(input, part.data(), part.size());
        if (size <= 0) {
            return output;
        }
        output.append(part.data(), static_cast<std::size_t>(size));
    }
}

} // namespace

outcome run_self(std::vector<std::string> arguments, std::map<std::string, std::string> const& environment) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) {
        return {false, "no pipe"};
    }
    pid_t const child = fork();
    if (child == 0) {
        become(arguments, environment, ends[1]);
    }
    close(ends[1]);
    outcome made{false, collect(ends[0])};
    close(ends[0]);
    if (made.output.ends_with("time limit reached\n")) {
        kill(child, SIGKILL);
    }
    int status = 0;
    waitpid(child, &status, 0);
    made.ended_well = status == 0;
    return made;
}

std::string with_option(char const* variable, std::string const& option) {
    char const* const options = std::getenv(variable);
    return options != nullptr ? options + (":" + option) : option;
}

std::string tail(outcome const& child) {
    std::size_t const length = std::min<std::size_t>(child.output.size(), 1500);
    return child.output.substr(child.output.size() - length);
}

} // namespace contract
