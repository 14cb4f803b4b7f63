#include "scenario.hpp"

#include <algorithm>
#include <thread>

namespace nq::block::contract {
namespace {

using enum capability;

TEST(wire, version) { EXPECT_EQ(nq_version(), nq::version); }

TEST(wire, listings_answer_the_total_and_write_no_more_than_the_capacity) {
    std::uint64_t total = 0;
    ASSERT_EQ(nq_get_root_devices(0, nullptr, &total, nullptr), 0);
    EXPECT_EQ(nq_get_root_devices(0, nullptr, nullptr, nullptr), 0);
    std::vector<nq::device> devices(total + 1, 77);
    EXPECT_EQ(nq_get_root_devices(total + 1, devices.data(), nullptr, nullptr), 0);
    EXPECT_EQ(devices.back(), 77U);
    devices.pop_back();
    for (nq::device const device : devices) {
        capability_node node{};
        std::uint64_t count = 9;
        EXPECT_EQ(nq_find_capability_nodes(device, opencl_1_0, 0, &node, &count, nullptr), 0);
        EXPECT_EQ(count, 1U);
        EXPECT_EQ(node.first, 0U);
        EXPECT_EQ(nq_find_capability_nodes(device, opencl_1_0, 1, nullptr, nullptr, nullptr), 0);
        for (std::uint64_t const unknown : {0U, 7U}) {
            EXPECT_EQ(nq_find_capability_nodes(device, capability{unknown}, 1, &node, &count, nullptr), 0);
            EXPECT_EQ(count, 0U);
        }
    }
}

TEST(wire, refuses_what_it_did_not_hand_out) {
    std::uint64_t count = 9;
    nq_call_handle* handle = nullptr;
    EXPECT_EQ(nq_find_capability_nodes(0, opencl_1_0, 0, nullptr, &count, nullptr), -1);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(nq_create_call_handle({0, 0}, &handle, nullptr), -1);
    EXPECT_EQ(nq_create_call_handle({1, 7}, &handle, nullptr), -1);
    for (capability_node const node : list_nodes(opencl_1_0)) {
        EXPECT_EQ(nq_create_call_handle(node, nullptr, nullptr), -1);
    }
    EXPECT_EQ(handle, nullptr);
}

// OpenCL 3.0 devices have every version; others have those up to their own.
TEST(wire, offers_the_versions_of_the_device) {
    for (capability_node const node : list_nodes(opencl_1_0)) {
        session s(opencl_1_0, node);
        std::string const own = s.text(clGetDeviceInfo{s.device}, CL_DEVICE_VERSION);
        bool const old = own.starts_with("OpenCL 1.2");
        EXPECT_TRUE(old || own.starts_with("OpenCL 3.")) << own;
        for (capability const version : versions) {
            std::uint64_t count = 9;
            EXPECT_EQ(nq_find_capability_nodes(node.first, version, 0, nullptr, &count, nullptr), 0);
            EXPECT_EQ(count, version <= opencl_1_2 || !old ? 1U : 0U) << s.name << " " << text_of(version);
        }
    }
}

TEST(wire, refuses_unknown_commands_and_null_blocks) {
    for (capability const version : versions) {
        for (capability_node const node : list_nodes(version)) {
            nq_call_handle* const handle = open(node);
            call_handle_device block{};
            std::uint32_t const id = command_id<call_handle_device>(version);
            for (std::uint32_t const unknown : {0U, command_count(version) + 1, 0xFFFFFFFFU}) {
                EXPECT_EQ(nq_call_capability(handle, unknown, &block, nullptr), -2);
            }
            EXPECT_EQ(nq_call_capability(handle, id, nullptr, nullptr), -1);
            EXPECT_EQ(nq_call_capability(nullptr, id, &block, nullptr), -1);
            nq_close_call_handle(handle);
        }
    }
    nq_close_call_handle(nullptr);
}

/// What a call on a handle comes to.
int use(nq_call_handle* handle, capability version) {
    call_handle_device block{};
    return nq_call_capability(handle, command_id<call_handle_device>(version), &block, nullptr);
}

// However often it is opened, so that devices of two discoveries are equal and a program that asks on and on does not
// grow.
TEST(wire, a_node_has_one_call_handle_which_the_last_of_its_openings_closes) {
    std::set<nq_call_handle*> seen;
    for (capability const version : versions) {
        for (capability_node const node : list_nodes(version)) {
            nq_call_handle* const handle = open(node);
            EXPECT_TRUE(seen.insert(handle).second) << "another device or version has this one";
            EXPECT_EQ(open(node), handle);
            nq_close_call_handle(handle);
            EXPECT_EQ(use(handle, version), 0);
            for (int closed = 0; closed < 3; ++closed) { // the last two have nothing left to close
                nq_close_call_handle(handle);
                EXPECT_EQ(use(handle, version), -1);
            }
            EXPECT_EQ(open(node), handle);
            EXPECT_EQ(use(handle, version), 0);
            nq_close_call_handle(handle);
            EXPECT_EQ(use(handle, version), -1);
        }
    }
}

TEST(wire, threads_open_and_close_one_call_handle) {
    for (capability_node const node : list_nodes(opencl_1_0)) {
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([node] {
                for (int round = 0; round < 10'000; ++round) {
                    nq_call_handle* const handle = open(node);
                    EXPECT_EQ(use(handle, opencl_1_0), 0);
                    nq_close_call_handle(handle);
                }
            });
        }
        std::ranges::for_each(threads, &std::thread::join);
        nq_call_handle* const handle = open(node);
        nq_close_call_handle(handle);
        EXPECT_EQ(use(handle, opencl_1_0), -1) << "an opening was lost or counted twice";
    }
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
}

TEST(process, without_a_loader) {
    finds_nothing("NQ_BRIDGE_OPENCL=libnone.so",
                  {"there is no OpenCL loader: libnone.so", "install one", "NQ_BRIDGE_OPENCL"});
    finds_nothing("NQ_BRIDGE_OPENCL=libc.so.6", {"libc.so.6 is no OpenCL loader"});
}

TEST(process, without_an_implementation) {
    std::string const vendors = "OCL_ICD_VENDORS=" CONTRACT_VENDORS;
    finds_nothing(vendors + "/none",
                  {"no vendor file (*.icd) in " CONTRACT_VENDORS "/none", "install one", "OCL_ICD_VENDORS"});
    finds_nothing(vendors + "/unknown", {"/unknown/vendor.icd names libnovendor.so, which does not load",
                                         "package that holds libnovendor.so"});
    finds_nothing(vendors + "/lacking", {"package that holds libcontract_absent.so"});
    finds_nothing(vendors + "/strange", {"which loads but offers no platform"});
}

TEST(process, with_a_platform_without_devices) {
    for (capability_node const node : list_nodes(opencl_1_0)) {
        if (session(opencl_1_0, node).name == "rusticl") {
            return finds_nothing("-u RUSTICL_ENABLE OCL_ICD_VENDORS=libRusticlOpenCL.so.1",
                                 {"the platform \"rusticl\" has no device", "RUSTICL_ENABLE=llvmpipe"});
        }
    }
    GTEST_SKIP() << "no device of rusticl here";
}

} // namespace
} // namespace nq::block::contract
