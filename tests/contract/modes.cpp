#include "child.hpp"
#include "scenario.hpp"

#include <barrier>
#include <functional>
#include <iostream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace contract {
namespace {

using arguments = std::vector<std::string>;

bool failed() { return testing::UnitTest::GetInstance()->Failed(); }

template <nq::capability Version>
void for_platform(std::string const& platform, std::function<void(session<Version>&)> const& action) {
    for (nq::capability_node const node : list_nodes(Version)) {
        if (session<Version> s(node); s.name == platform) {
            action(s);
        }
    }
}

template <nq::capability Version>
void null_pointers(std::string const& platform) {
    for_platform<Version>(platform, [](session<Version>& s) {
        s.nulling = true;
        every_entry_point(s);
    });
}

template <nq::capability Version>
void zero_blocks(std::string const& platform) {
    for (nq::capability_node const node : list_nodes(Version)) {
        session<Version> const s(node);
        nq_call_handle* const handle = open(node);
        for (std::uint32_t id = 1; s.name == platform && id <= nq::commands<Version>::size; ++id) {
            std::cout << platform << " " << text_of(Version) << " command " << id << " with a block of zeros"
                      << std::endl;
            alignas(8) std::array<unsigned char, 256> block{};
            EXPECT_EQ(nq_call_capability(handle, id, block.data(), nullptr), 0);
        }
        nq_close_call_handle(handle);
    }
}

using oldest = session<nq::capability::opencl_1_0>;

nq::capability_node node_of(std::string const& platform) {
    nq::capability_node found{};
    for (nq::capability_node const node : list_nodes(oldest::version)) {
        found = oldest(node).name == platform ? node : found;
    }
    return found;
}

// Builds a program and runs it.
void work_on(nq::capability_node node) {
    oldest s(node);
    set_up(s);
    kernels(s);
    tear_down(s);
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
    nq::capability_node const node = node_of(platform);
    nq_call_handle* const before = open(node);
    work_on(node);
    in_fork([=] {
        nq::block::call_handle_device block{};
        constexpr std::uint32_t id = nq::command_id<oldest::version, nq::block::call_handle_device>;
        nq_call_handle* after = nullptr;
        int const expected = working ? nq::result::success : nq::result::unrecoverable;
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
            for (nq::capability_node const node : list_nodes(nq::capability::opencl_1_0)) {
                nq_close_call_handle(open(node));
                ++mine;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (std::size_t const each : found) {
        EXPECT_EQ(each, list_nodes(nq::capability::opencl_1_0).size());
    }
    return failed();
}

} // namespace

int run_mode(arguments const& words) {
    std::string const& mode = words.at(0);
    if (mode == "null_pointers") {
        for_each_version([&]<nq::capability Version>() { null_pointers<Version>(words.at(1)); });
        return 0; // whether they come back at all is the question
    }
    if (mode == "zero_blocks") {
        for_each_version([&]<nq::capability Version>() { zero_blocks<Version>(words.at(1)); });
        return failed();
    }
    return mode == "count_devices"       ? count_devices()
           : mode == "threads"           ? discover_from_threads()
           : mode == "fork_before"       ? fork_before(words.at(1))
           : mode == "fork_after"        ? fork_after(words.at(1), true)
           : mode == "fork_after_broken" ? fork_after(words.at(1), false)
                                         : 2;
}

} // namespace contract
