#include "sweep.hpp"

#include "../layers/progress.hpp"

#include <nq/describe.hpp>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <map>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <thread>

namespace nq::command {
namespace {

using clock = std::chrono::steady_clock;

// What a program that is to be failed writes to standard error.
class error_file {
public:
    error_file() : file_(memfd_create("standard error", MFD_CLOEXEC)) {
        if (file_ < 0) {
            throw std::runtime_error("there is no memory for what the program writes");
        }
    }
    error_file(error_file&& other) noexcept : file_(std::exchange(other.file_, -1)) {}
    error_file& operator=(error_file&& other) noexcept {
        std::swap(file_, other.file_);
        return *this;
    }
    ~error_file() {
        if (file_ >= 0) {
            close(file_);
        }
    }

    int number() const noexcept { return file_; }

    // The lines of a layer, without its name.
    std::vector<std::string> lines_of(std::string_view layer) const {
        std::string text;
        std::array<char, 4096> part{};
        for (off_t at = 0;;) {
            ssize_t const count = pread(file_, part.data(), part.size(), at);
            if (count <= 0) {
                break;
            }
            text.append(part.data(), static_cast<std::size_t>(count));
            at += count;
        }
        std::vector<std::string> lines;
        std::string const begin = "nq-" + std::string(layer) + ": ";
        for (std::size_t at = 0; at < text.size();) {
            std::size_t const end = std::min(text.find('\n', at), text.size());
            if (text.compare(at, begin.size(), begin) == 0) {
                lines.push_back(text.substr(at + begin.size(), end - at - begin.size()));
            }
            at = end + 1;
        }
        return lines;
    }

private:
    int file_;
};

struct run {
    pid_t process;
    error_file errors;
    clock::time_point begin;
    std::string rule; // which call fails, and how
    bool hung = false;
    int status = 0; // as of waitpid
};

// The name of the entry point that failed, from "call 38: clSetKernelArg = CL_OUT_OF_HOST_MEMORY"; empty if none did.
std::string failed_entry(run const& ended) {
    for (std::string const& line : ended.errors.lines_of("faults")) {
        std::size_t const begin = line.find(": ");
        std::size_t const end = line.find(" = ");
        if (line.starts_with("call ") && end != std::string::npos) {
            return line.substr(begin + 2, end - begin - 2);
        }
    }
    return {};
}

// What is wrong with how it ended; empty if nothing is. An object whose release fails is not released, whatever the
// program does.
std::string fault_of(run const& ended, std::string const& entry) {
    if (ended.hung) {
        return "hangs";
    }
    if (WIFSIGNALED(ended.status)) {
        char const* const name = sigabbrev_np(WTERMSIG(ended.status));
        return std::string("ends by SIG") + (name != nullptr ? name : "nal");
    }
    bool const releases = entry.starts_with("clRelease") || entry == "clSVMFree";
    auto const leaks = ended.errors.lines_of("leaks");
    return leaks.empty() || releases ? "" : leaks.front();
}

class sweeper {
public:
    sweeper(command_line const& program, sweep_options options)
        : options_(std::move(options)), program_({{"leaks", "exit-status=0"}, {"faults", "report"}}, program) {
        if (options_.jobs == 0) {
            options_.jobs = std::max(1U, std::thread::hardware_concurrency());
        }
    }

    int perform() {
        for (std::string const& each : options_.except) {
            if (!is_command(each)) {
                throw std::runtime_error("--except: give the name of an OpenCL entry point, not '" + each + "'");
            }
        }
        std::uint64_t const calls = count_calls();
        std::uint64_t const all = (calls + options_.step - 1) / options_.step * options_.failures.size();
        std::printf("%llu call%s, %llu run%s\n", static_cast<unsigned long long>(calls), calls == 1 ? "" : "s",
                    static_cast<unsigned long long>(all), all == 1 ? "" : "s");
        progress_.emplace(all, "runs");
        for (std::string const& failure : options_.failures) {
            for (std::uint64_t call = 1; call <= calls; call += options_.step) {
                while (running_.size() >= options_.jobs) {
                    wait_for_one();
                }
                start("call=" + std::to_string(call) + ":" + failure);
            }
        }
        while (!running_.empty()) {
            wait_for_one();
        }
        progress_.reset();
        return print_all();
    }

private:
    static clock::duration seconds(double count) {
        return std::chrono::duration_cast<clock::duration>(std::chrono::duration<double>(count));
    }

    void start(std::string const& rule) {
        program_.set(rule + ",report");
        error_file errors;
        pid_t const process = program_.start(errors.number());
        running_.push_back({process, std::move(errors), clock::now(), rule});
    }

    // The program as it is. The layer reads how calls shall fail, and refuses what it does not know.
    std::uint64_t count_calls() {
        std::string rules;
        for (std::string const& failure : options_.failures) {
            rules += (rules.empty() ? "" : ",") + failure + ":call=" + std::to_string(UINT64_MAX); // which none reaches
        }
        limit_ = seconds(options_.seconds);
        start(rules);
        run const first = wait_for(running_.back());
        auto const lines = first.errors.lines_of("faults");
        if (std::string const refusal = "NQ_FAULTS: "; !lines.empty() && lines.front().starts_with(refusal)) {
            throw std::runtime_error("--failure: " + lines.front().substr(refusal.size()));
        }
        own_status_ = shell_status(first.status);
        auto const took = std::chrono::duration<double>(clock::now() - first.begin);
        limit_ = options_.seconds > 0 ? limit_ : seconds(10 + took.count() * 10);
        if (std::string const fault = fault_of(first, ""); !fault.empty()) {
            std::printf("without a failing call: %s\n", fault.c_str());
        } else if (own_status_ != 0) {
            std::printf("without a failing call: exit status %d\n", own_status_);
        }
        std::uint64_t calls = 0;
        if (!lines.empty()) {
            std::from_chars(lines.back().data(), lines.back().data() + lines.back().size(), calls);
        }
        if (calls == 0) {
            throw std::runtime_error("the program made no call through libnq, or did not come to its end, so that "
                                     "nothing is known of its calls");
        }
        return calls;
    }

    run wait_for(run& which) {
        pid_t done = 0;
        while ((done = waitpid(which.process, &which.status, WNOHANG)) == 0) {
            if (limit_ != clock::duration::zero() && clock::now() - which.begin > limit_ && !which.hung) {
                which.hung = true;
                kill(-which.process, SIGKILL);
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        if (done < 0) {
            throw std::runtime_error(std::string("cannot wait for the program: ") + std::strerror(errno));
        }
        kill(-which.process, SIGKILL); // what it left behind
        auto const place = running_.begin() + (&which - running_.data());
        run ended = std::move(which);
        running_.erase(place);
        return ended;
    }

    // The oldest: the others run on.
    void wait_for_one() {
        judge(wait_for(running_.front()));
        progress_->advance();
    }

    void judge(run const& ended) {
        std::string const entry = failed_entry(ended);
        if (entry.empty() && !ended.hung && WIFEXITED(ended.status)) {
            ++outcomes_["failed nothing: the call has no status, or was not made"];
            return;
        }
        std::string const fault = fault_of(ended, entry);
        if (std::find(options_.except.begin(), options_.except.end(), entry) != options_.except.end()) {
            ++outcomes_["do not count"];
        } else if (fault.empty()) {
            int const status = WEXITSTATUS(ended.status);
            ++outcomes_["ended with exit status " + std::to_string(status)];
        } else {
            ++broke_;
            progress_->clear();
            std::printf("%-40s %-30s %s\n", ended.rule.c_str(), entry.c_str(), fault.c_str());
        }
    }

    int print_all() const {
        for (auto const& [what, count] : outcomes_) {
            std::printf("%llu %s\n", static_cast<unsigned long long>(count), what.c_str());
        }
        std::printf("%llu broke", static_cast<unsigned long long>(broke_));
        std::printf(broke_ == 0 ? "\n" : "; to see one again: vorn-mero faults --rule RULE -- PROGRAM\n");
        return broke_ != 0 && options_.exit_status != 0 ? options_.exit_status : own_status_;
    }

    sweep_options options_;
    launch program_;
    std::vector<run> running_;
    std::uint64_t broke_ = 0;
    std::optional<progress> progress_{};
    int own_status_ = 0;
    clock::duration limit_{};
    std::map<std::string, std::uint64_t> outcomes_;
};

} // namespace

int sweep(command_line const& program, sweep_options options) { return sweeper(program, std::move(options)).perform(); }

} // namespace nq::command
