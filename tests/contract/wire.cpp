#include "child.hpp"
#include "session.hpp"

#include <filesystem>
#include <fstream>

namespace contract {
namespace {

TEST(wire, version) { EXPECT_EQ(nq_version(), nq::version); }

TEST(wire, listings_answer_the_total_and_write_no_more_than_the_capacity) {
    std::uint64_t total = 0;
    ASSERT_EQ(nq_get_root_devices(0, nullptr, &total, nullptr), 0);
    EXPECT_EQ(nq_get_root_devices(0, nullptr, nullptr, nullptr), 0);
    std::vector<nq::device> devices(total + 1, 77);
    EXPECT_EQ(nq_get_root_devices(total + 1, devices.data(), nullptr, nullptr), 0);
    EXPECT_EQ(devices.back(), 77U);
    for (std::uint64_t i = 0; i < total; ++i) {
        nq::capability_node node{};
        std::uint64_t count = 9;
        EXPECT_EQ(nq_find_capability_nodes(devices[i], nq::capability::opencl_1_0, 0, &node, &count, nullptr), 0);
        EXPECT_EQ(count, 1U);
        EXPECT_EQ(node.first, 0U);
        EXPECT_EQ(nq_find_capability_nodes(devices[i], nq::capability::opencl_1_0, 1, nullptr, nullptr, nullptr), 0);
        for (std::uint64_t const unknown : {0U, 7U}) {
            EXPECT_EQ(nq_find_capability_nodes(devices[i], nq::capability{unknown}, 1, &node, &count, nullptr), 0);
            EXPECT_EQ(count, 0U);
        }
    }
}

TEST(wire, refuses_what_it_did_not_hand_out) {
    std::uint64_t count = 9;
    nq_call_handle* handle = nullptr;
    EXPECT_EQ(nq_find_capability_nodes(0, nq::capability::opencl_1_0, 0, nullptr, &count, nullptr), -1);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(nq_create_call_handle({0, 0}, &handle, nullptr), -1);
    EXPECT_EQ(nq_create_call_handle({1, 7}, &handle, nullptr), -1);
    for (nq::capability_node const node : list_nodes(nq::capability::opencl_1_0)) {
        EXPECT_EQ(nq_create_call_handle(node, nullptr, nullptr), -1);
    }
    EXPECT_EQ(handle, nullptr);
}

// OpenCL 3.0 devices have every version; others have those up to their own.
TEST(wire, offers_the_versions_of_the_device) {
    for (nq::capability_node const node : list_nodes(nq::capability::opencl_1_0)) {
        session<nq::capability::opencl_1_0> s(node);
        std::string const version = s.text(nq::block::clGetDeviceInfo{s.device}, device_version);
        bool const old = version.starts_with("OpenCL 1.2");
        EXPECT_TRUE(old || version.starts_with("OpenCL 3.")) << version;
        for (std::uint64_t number = 1; number <= 6; ++number) {
            std::uint64_t count = 9;
            EXPECT_EQ(nq_find_capability_nodes(node.first, nq::capability{number}, 0, nullptr, &count, nullptr), 0);
            EXPECT_EQ(count, number <= 3 || !old ? 1U : 0U) << s.name << " " << number;
        }
    }
}

TEST(wire, refuses_unknown_commands_null_blocks_and_closed_handles) {
    for_each_version([]<nq::capability Version>() {
        for (nq::capability_node const node : list_nodes(Version)) {
            nq_call_handle* const handle = open(node);
            nq::block::call_handle_device block{};
            constexpr std::uint32_t id = nq::command_id<Version, nq::block::call_handle_device>;
            for (std::uint32_t const unknown : {0U, nq::commands<Version>::size + 1, 0xFFFFFFFFU}) {
                EXPECT_EQ(nq_call_capability(handle, unknown, &block, nullptr), -2);
            }
            EXPECT_EQ(nq_call_capability(handle, id, nullptr, nullptr), -1);
            EXPECT_EQ(nq_call_capability(nullptr, id, &block, nullptr), -1);
            EXPECT_EQ(nq_call_capability(handle, id, &block, nullptr), 0);
            nq_close_call_handle(handle);
            for (nq_call_handle* const later : {open(node), open(node)}) { // none takes the closed one's place
                EXPECT_NE(later, handle);
                nq_close_call_handle(later);
            }
            EXPECT_EQ(nq_call_capability(handle, id, &block, nullptr), -1);
        }
    });
    nq_close_call_handle(nullptr);
}

TEST(process, many_threads_discover_at_once) {
    for (int round = 0; round < 3; ++round) {
        // implementations replace the signal stacks of the threads that call them, which AddressSanitizer then frees
        auto const child = run_self({"threads"}, {{"ASAN_OPTIONS", with_option("ASAN_OPTIONS", "use_sigaltstack=0")}});
        EXPECT_TRUE(child.ended_well) << tail(child);
    }
}

/// A folder of vendor files that is removed again.
class vendor_folder {
public:
    explicit vendor_folder(std::string const& library = {}) {
        std::string name = (std::filesystem::temp_directory_path() / "vendors.XXXXXX").string();
        path_ = mkdtemp(name.data());
        if (!library.empty()) {
            std::ofstream(path_ / "vendor.icd") << library << "\n";
        }
    }
    vendor_folder(vendor_folder const&) = delete;
    vendor_folder& operator=(vendor_folder const&) = delete;
    ~vendor_folder() { std::filesystem::remove_all(path_); }

    std::string name() const { return path_.string(); }

private:
    std::filesystem::path path_;
};

/// Nothing is found, and the reason is told to those who ask for it.
void finds_nothing(std::map<std::string, std::string> environment, std::vector<std::string> const& reasons) {
    auto const quiet = run_self({"count_devices"}, environment);
    EXPECT_TRUE(quiet.ended_well) << tail(quiet);
    EXPECT_EQ(quiet.output, "devices=0\n");
    environment["NQ_BRIDGE_VERBOSE"] = "1";
    auto const verbose = run_self({"count_devices"}, environment);
    EXPECT_TRUE(verbose.ended_well) << tail(verbose);
    for (std::string const& reason : reasons) {
        EXPECT_NE(verbose.output.find(reason), std::string::npos) << reason << "\n" << verbose.output;
    }
    EXPECT_NE(verbose.output.find("devices=0\n"), std::string::npos);
}

TEST(process, without_a_loader) {
    finds_nothing({{"NQ_BRIDGE_OPENCL", "libnone.so"}},
                  {"there is no OpenCL loader: libnone.so", "install one", "NQ_BRIDGE_OPENCL"});
    finds_nothing({{"NQ_BRIDGE_OPENCL", "libc.so.6"}}, {"libc.so.6 is no OpenCL loader"});
}

TEST(process, without_an_implementation) {
    vendor_folder const folder;
    finds_nothing({{"OCL_ICD_VENDORS", folder.name()}},
                  {"no vendor file (*.icd) in " + folder.name(), "install one", "OCL_ICD_VENDORS"});
}

TEST(process, with_a_vendor_library_that_does_not_load) {
    vendor_folder const absent("libnovendor.so");
    finds_nothing(
        {{"OCL_ICD_VENDORS", absent.name()}},
        {absent.name() + "/vendor.icd names libnovendor.so, which does not load", "package that holds libnovendor.so"});
    vendor_folder const lacking(CONTRACT_LACKING_VENDOR);
    finds_nothing({{"OCL_ICD_VENDORS", lacking.name()}}, {"package that holds libcontract_absent.so"});
    vendor_folder const strange(CONTRACT_ABSENT);
    finds_nothing({{"OCL_ICD_VENDORS", strange.name()}}, {"which loads but offers no platform"});
}

TEST(process, with_a_platform_without_devices) {
    for (nq::capability_node const node : list_nodes(nq::capability::opencl_1_0)) {
        if (session<nq::capability::opencl_1_0>(node).name == "rusticl") {
            return finds_nothing({{"OCL_ICD_VENDORS", "libRusticlOpenCL.so.1"}, {"RUSTICL_ENABLE", ""}},
                                 {"the platform \"rusticl\" has no device", "RUSTICL_ENABLE=llvmpipe"});
        }
    }
    GTEST_SKIP() << "no device of rusticl here";
}

} // namespace
} // namespace contract
