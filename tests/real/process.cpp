#include "interposer.hpp"
#include "support.hpp"

// What needs a process of its own: another environment, children, calls that may not come back.

#include <barrier>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace real {
namespace {

using device = api<100>::device;

bool failed() { return testing::UnitTest::GetInstance()->Failed(); }

device find(std::string const& implementation) {
    for (device const& each : api<100>::get_all_devices()) {
        if (implementation_of(each.get_platform().name()) == implementation) {
            return each;
        }
    }
    throw std::runtime_error("no device of " + implementation);
}

// Builds a program and runs it.
void work_on(device const& target) {
    bench<api<100>> b({}, target);
    auto values = b.store(counting(8));
    b.launch(b.function("kernel void f(global int* values) { values[get_global_id(0)] += 1; }", values), 8);
    EXPECT_EQ(b.load(values), counting(8, 2));
}

/// Every scenario of an implementation also with nulled pointers.
int run_nulled(std::string const& implementation) {
    start_nulling();
    GTEST_FLAG_SET(filter, implementation + ".*-*.comes_back*:*.forks*:*.refuses*:*.tells_of_a*");
    auto& listeners = testing::UnitTest::GetInstance()->listeners();
    delete listeners.Release(listeners.default_result_printer());
    run_tests(); // how the scenarios end is not the question
    for (std::string const& each : wrong_answers()) {
        std::cout << each << std::endl;
    }
    return wrong_answers().empty() ? 0 : 1;
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

int fork_before(std::string const& implementation) {
    in_fork([&] { work_on(find(implementation)); });
    work_on(find(implementation));
    return failed();
}

int fork_after(std::string const& implementation, bool works_in_child) {
    device const target = find(implementation);
    work_on(target);
    in_fork([&] {
        if (works_in_child) {
            work_on(target);
        } else {
            EXPECT_THROW(target.name(), nq::unrecoverable_error);
            EXPECT_THROW(find(implementation), nq::unrecoverable_error);
        }
    });
    work_on(target);
    return failed();
}

int discover_from_threads() {
    constexpr int count = 8;
    std::barrier start(count);
    std::array<std::size_t, count> found{};
    {
        std::vector<std::jthread> threads;
        for (std::size_t& mine : found) {
            threads.emplace_back([&start, &mine] {
                start.arrive_and_wait();
                mine = api<100>::get_all_devices().size();
            });
        }
    }
    EXPECT_EQ(std::ranges::count(found, api<100>::get_all_devices().size()), count);
    return failed();
}

SCENARIO(forks, "forks", 100, 100) {
    if (thread_sanitizer) {
        skip("ThreadSanitizer ends a forked child that starts threads");
    }
    std::string const hangs = "hangs in a child of a process that has used it; the bridge refuses instead";
    bool const works = !b.differs("pocl", hangs) && !b.differs("rusticl", hangs);
    expect_ends_well("fork_before " + b.name);
    auto const told = expect_ends_well((works ? "fork_after " : "fork_after_broken ") + b.name, "NQ_BRIDGE_VERBOSE=1");
    EXPECT_EQ(told.find("would hang in this process") == std::string::npos, works) << told;
    if (b.name == "pocl") {
        expect_ends_well("fork_after pocl", "POCL_DEVICES=basic");
    }
}

SCENARIO(comes_back_without_pointers, "null pointers", 100, 100) {
    if (address_sanitizer && b.name == "intel") {
        skip("a thread of it crashes in NotifyCmdStatusChanged under AddressSanitizer");
    }
    expect_ends_well("nulled " + b.name);
}

TEST(process, many_threads_discover_at_once) {
    // implementations replace the signal stacks of the threads that call them, which AddressSanitizer then frees
    for (int round = 0; round < 3; ++round) {
        expect_ends_well("threads", "ASAN_OPTIONS=$ASAN_OPTIONS:use_sigaltstack=0");
    }
}

/// Nothing is found, and the reason is told to those who ask for it.
void finds_nothing(std::string const& environment, std::vector<std::string> const& reasons) {
    EXPECT_EQ(expect_ends_well("count_devices", environment), "devices=0\n");
    std::string const told = expect_ends_well("count_devices", environment + " NQ_BRIDGE_VERBOSE=1");
    EXPECT_TRUE(told.ends_with("devices=0\n")) << told;
    for (std::string const& reason : reasons) {
        EXPECT_NE(told.find(reason), std::string::npos) << reason << "\n" << told;
    }
    EXPECT_EQ(told.find("no vendor file") != std::string::npos, reasons.front().starts_with("no vendor file")) << told;
}

TEST(process, without_a_loader) {
    finds_nothing("NQ_BRIDGE_OPENCL=libnone.so", {"there is no OpenCL loader: libnone.so",
                                                  "correct or unset NQ_BRIDGE_OPENCL, which names it, or install one"});
    finds_nothing("NQ_BRIDGE_OPENCL=libc.so.6", {"libc.so.6 is no OpenCL loader"});
}

TEST(process, without_an_implementation) {
    std::string const vendors = "OCL_ICD_VENDORS=" REAL_VENDORS;
    finds_nothing(vendors + "/none", {"no vendor file (*.icd) in " REAL_VENDORS "/none", "install one",
                                      "correct or unset OCL_ICD_VENDORS"});
    finds_nothing(vendors + "/unknown", {"/unknown/vendor.icd names libnovendor.so, which does not load",
                                         "vendor.icd, or install or repair the package that holds libnovendor.so"});
    finds_nothing(vendors + "/unknown/vendor.icd", {"/unknown/vendor.icd names libnovendor.so, which does not load"});
    finds_nothing(vendors + "/lacking", {"package that holds libvorn-mero-real_absent.so"});
    finds_nothing(vendors + "/strange", {"which loads but offers no platform"});
}

SCENARIO(tells_of_a_platform_without_devices, "platforms without devices", 100, 100) {
    if (b.name == "rusticl") {
        finds_nothing("-u RUSTICL_ENABLE OCL_ICD_VENDORS=libRusticlOpenCL.so.1",
                      {"the platform \"rusticl\" has no device", "RUSTICL_ENABLE=llvmpipe"});
    }
}

} // namespace

std::string expect_ends_well(std::string const& mode, std::string const& environment) {
    std::string const program = std::filesystem::read_symlink("/proc/self/exe").string();
    std::string const command = "env " + environment + " timeout 200 '" + program + "' --mode " + mode + " 2>&1";
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
    return mode == "nulled"              ? run_nulled(words.at(1))
           : mode == "count_devices"     ? count_devices()
           : mode == "threads"           ? discover_from_threads()
           : mode == "cache"             ? share_cache(words.at(1), words.at(2))
           : mode == "fork_before"       ? fork_before(words.at(1))
           : mode == "fork_after"        ? fork_after(words.at(1), true)
           : mode == "fork_after_broken" ? fork_after(words.at(1), false)
                                         : 2;
}

} // namespace real
