#include "support.hpp"

#include <set>
#include <thread>

// The functions of libnq themselves.

namespace real {
namespace {

using enum nq::capability;

std::vector<nq::capability_node> list_nodes(nq::capability version) {
    std::uint64_t total = 0;
    EXPECT_EQ(nq_get_root_devices(0, nullptr, &total, nullptr), 0);
    std::vector<nq::device> devices(total);
    EXPECT_EQ(nq_get_root_devices(total, devices.data(), nullptr, nullptr), 0);
    std::vector<nq::capability_node> nodes;
    for (nq::device const device : devices) {
        nq::capability_node node{};
        std::uint64_t offered = 0;
        EXPECT_EQ(nq_find_capability_nodes(device, version, 1, &node, &offered, nullptr), 0);
        nodes.insert(nodes.end(), offered, node);
    }
    return nodes;
}

nq_call_handle* open(nq::capability_node node) {
    nq_call_handle* handle = nullptr;
    EXPECT_EQ(nq_create_call_handle(node, &handle, nullptr), 0);
    return handle;
}

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
        nq::capability_node node{};
        std::uint64_t count = 9;
        EXPECT_EQ(nq_find_capability_nodes(device, opencl_1_0, 0, &node, &count, nullptr), 0);
        EXPECT_EQ(count, 1U);
        EXPECT_EQ(node.first, 0U);
        EXPECT_EQ(nq_find_capability_nodes(device, opencl_1_0, 1, nullptr, nullptr, nullptr), 0);
        for (std::uint64_t const unknown : {0U, 7U}) {
            EXPECT_EQ(nq_find_capability_nodes(device, nq::capability{unknown}, 1, &node, &count, nullptr), 0);
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
    for (nq::capability_node const node : list_nodes(opencl_1_0)) {
        EXPECT_EQ(nq_create_call_handle(node, nullptr, nullptr), -1);
    }
    EXPECT_EQ(handle, nullptr);
}

// OpenCL 3.0 devices have every version; others have those up to their own.
TEST(wire, offers_the_versions_of_the_device) {
    for_each_version([]<class Api>(Api) {
        auto const offered = Api::get_all_devices();
        for (auto const& device : api<100>::get_all_devices()) {
            std::string const own = device.device_version();
            bool const old = own.starts_with("OpenCL 1.2");
            EXPECT_TRUE(old || own.starts_with("OpenCL 3.")) << own;
            auto const same = [&](auto const& each) { return raw_of(each) == raw_of(device); };
            EXPECT_EQ(std::ranges::count_if(offered, same), Api::number <= 120 || !old) << own << " " << Api::number;
        }
    });
}

/// What a call on a handle comes to.
template <class Api>
int use(nq_call_handle* handle, Api) {
    wire::call_handle_device block{};
    return nq_call_capability(handle, nq::command_id<Api::capability, wire::call_handle_device>, &block, nullptr);
}

TEST(wire, refuses_unknown_commands_and_null_blocks) {
    for_each_version([]<class Api>(Api version) {
        for (nq::capability_node const node : list_nodes(Api::capability)) {
            nq_call_handle* const handle = open(node);
            wire::call_handle_device block{};
            for (std::uint32_t const unknown : {0U, nq::commands<Api::capability>::size + 1, 0xFFFFFFFFU}) {
                EXPECT_EQ(nq_call_capability(handle, unknown, &block, nullptr), -2);
            }
            EXPECT_EQ(nq_call_capability(handle, 1, nullptr, nullptr), -1);
            EXPECT_EQ(use(nullptr, version), -1);
            nq_close_call_handle(handle);
        }
    });
    nq_close_call_handle(nullptr);
}

// However often it is opened, so that devices of two discoveries are equal and a program that asks on and on does not
// grow.
TEST(wire, a_node_has_one_call_handle_which_the_last_of_its_openings_closes) {
    std::set<nq_call_handle*> seen;
    for_each_version([&seen]<class Api>(Api version) {
        for (nq::capability_node const node : list_nodes(Api::capability)) {
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
    });
}

TEST(wire, threads_open_and_close_one_call_handle) {
    for (nq::capability_node const node : list_nodes(opencl_1_0)) {
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([node] {
                for (int round = 0; round < 10'000; ++round) {
                    nq_call_handle* const handle = open(node);
                    EXPECT_EQ(use(handle, api<100>{}), 0);
                    nq_close_call_handle(handle);
                }
            });
        }
        std::ranges::for_each(threads, &std::thread::join);
        nq_call_handle* const handle = open(node);
        nq_close_call_handle(handle);
        EXPECT_EQ(use(handle, api<100>{}), -1) << "an opening was lost or counted twice";
    }
}

} // namespace
} // namespace real
