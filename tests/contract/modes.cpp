#include "scenario.hpp"

#include <barrier>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace nq::block::contract {
namespace {

using enum capability;

bool failed() { return testing::UnitTest::GetInstance()->Failed(); }

/// Each command of a version with a block of zeros.
void zero_blocks(session const& s, capability_node node) {
    nq_call_handle* const handle = open(node);
    for (std::uint32_t id = 1; id <= command_count(s.version); ++id) {
        std::cout << s.name << " " << text_of(s.version) << " command " << id << " with zeros" << std::endl;
        alignas(8) std::array<unsigned char, 256> block{};
        if (nq_call_capability(handle, id, block.data(), nullptr) != 0) {
            std::abort();
        }
    }
    nq_close_call_handle(handle);
}

/// No missing argument ends the process, and those that have a guard are answered as it says.
int miss_arguments(std::string const& platform) {
    bool all_guarded = true;
    for (capability const version : versions) {
        for (capability_node const node : list_nodes(version)) {
            if (session s(version, node); s.name == platform) {
                zero_blocks(s, node);
                s.nulling = true;
                every_entry_point(s);
                all_guarded = guarded(s) && all_guarded;
            }
        }
    }
    return all_guarded ? 0 : 1; // what the other calls come to is not the question
}

capability_node node_of(std::string const& platform) {
    capability_node found{};
    for (capability_node const node : list_nodes(opencl_1_0)) {
        found = session(opencl_1_0, node).name == platform ? node : found;
    }
    return found;
}

// Builds a program and runs it.
void work_on(capability_node node) {
    session s(opencl_1_0, node);
    set_up(s);
    kernels(s);
    s.tear_down();
}

int count_devices() {
    std::uint64_t count = 99;
    EXPECT_EQ(nq_get_root_devices(0, nullptr, &count, nullptr), 0);
    std::cout << "devices=" << count << std::endl;
    return failed();
}

// Runs something in a forked child, which may hang.
void in_fork(std::function<void()> const& action) {
    std::cout.flush();
    pid_t const child = fork();
    if (child == 0) {
        alarm(20);
        action();
        _exit(failed());
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0) << "the forked child failed or hung";
}

int fork_before(std::string const& platform) {
    in_fork([&platform] { work_on(node_of(platform)); });
    work_on(node_of(platform));
    return failed();
}

// `working` says whether the platform is expected to work in the child.
int fork_after(std::string const& platform, bool working) {
    capability_node const node = node_of(platform);
    nq_call_handle* const before = open(node);
    work_on(node);
    in_fork([=] {
        call_handle_device block{};
        nq_call_handle* after = nullptr;
        int const expected = working ? nq::result::success : nq::result::unrecoverable;
        std::uint32_t const id = command_id<call_handle_device>(opencl_1_0);
        EXPECT_EQ(nq_call_capability(before, id, &block, nullptr), expected);
        EXPECT_EQ(nq_create_call_handle(node, &after, nullptr), expected);
        if (working) {
            work_on(node);
        }
    });
    work_on(node);
    return failed();
}

int discover_from_threads() {
    constexpr int count = 8;
    std::barrier start(count);
    std::array<std::size_t, count> found{};
    std::vector<std::thread> threads;
    for (std::size_t& mine : found) {
        threads.emplace_back([&start, &mine] {
            start.arrive_and_wait();
            for (capability_node const node : list_nodes(opencl_1_0)) {
                nq_close_call_handle(open(node));
                ++mine;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (std::size_t const each : found) {
        EXPECT_EQ(each, list_nodes(opencl_1_0).size());
    }
    return failed();
}

} // namespace

std::string expect_ends_well(std::string const& mode, std::string const& environment) {
    std::string const program = std::filesystem::read_symlink("/proc/self/exe").string();
    std::string const command = "env " + environment + " timeout 60 '" + program + "' --mode " + mode + " 2>&1";
    std::string output;
    FILE* const child = popen(command.c_str(), "r");
    for (int next = std::fgetc(child); next != EOF; next = std::fgetc(child)) {
        output += static_cast<char>(next);
    }
    EXPECT_EQ(pclose(child), 0) << mode << " ended after\n"
                                << output.substr(output.size() - std::min<std::size_t>(output.size(), 1500));
    return output;
}

int perform_mode(std::vector<std::string> const& words) {
    std::string const& mode = words.at(0);
    return mode == "miss_arguments"      ? miss_arguments(words.at(1))
           : mode == "count_devices"     ? count_devices()
           : mode == "threads"           ? discover_from_threads()
           : mode == "fork_before"       ? fork_before(words.at(1))
           : mode == "fork_after"        ? fork_after(words.at(1), true)
           : mode == "fork_after_broken" ? fork_after(words.at(1), false)
                                         : 2;
}

} // namespace nq::block::contract
