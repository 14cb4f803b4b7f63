#include "support.hpp"

namespace real {
namespace {

SCENARIO(answers_queries, "devices and platforms", 100) {
    auto const platform = b.device.get_platform();
    EXPECT_TRUE(b.device.device_version().starts_with("OpenCL "));
    EXPECT_TRUE(platform.version().starts_with("OpenCL "));
    EXPECT_EQ(b.name, implementation_of(platform.name()));
    EXPECT_EQ(b.context.get_platform(), platform);
    auto const devices = platform.get_raw_devices();
    EXPECT_NE(std::ranges::find(devices, raw_of(b.device)), devices.end());
    EXPECT_TRUE(std::ranges::all_of(b.device.max_work_item_sizes(), [](std::size_t size) { return size > 0; }));
    EXPECT_EQ(std::ranges::count(Api::get_all_devices(), b.device), 1);
    if constexpr (Api::number >= 120) {
        EXPECT_TRUE(b.device.partition_type().empty());
        EXPECT_THROW(b.device.parent_device(), std::logic_error);
    }
}

template <class Api>
void* look_up(bench<Api>& b, _nq_cl_platform_id* platform, char const* name) {
    if constexpr (Api::number < 120) {
        return b.perform(wire::clGetExtensionFunctionAddress{name}).result;
    } else {
        return b.perform(wire::clGetExtensionFunctionAddressForPlatform{platform, name}).result;
    }
}

// The loader knows clCreateSubDevicesEXT, and no implementation here has it.
SCENARIO(looks_functions_up, "extension functions", 100) {
    auto* const platform = raw_of(b.device.get_platform());
    for (char const* const name : {"clCreateSubDevicesEXT", "clNoSuchFunction", static_cast<char const*>(nullptr)}) {
        EXPECT_EQ(look_up(b, platform, name), nullptr);
    }
    auto* const list = reinterpret_cast<cl_int (*)(cl_uint, cl_platform_id*, cl_uint*)>(
        look_up(b, platform, "clIcdGetPlatformIDsKHR"));
    if (list == nullptr) {
        EXPECT_EQ(b.name, "oclgrind");
        skip("has no function of its own to be found");
    }
    cl_uint count = 0;
    EXPECT_EQ(list(0, nullptr, &count), CL_SUCCESS);
    EXPECT_EQ(count, 1U);
    if constexpr (Api::number >= 120) {
        EXPECT_EQ(look_up(b, nullptr, "clIcdGetPlatformIDsKHR"), nullptr);
    }
}

SCENARIO(reads_host_timer, "host timers", 210) {
    auto const before = b.device.get_host_timer();
    EXPECT_GT(before, 0U);
    EXPECT_LE(before, b.device.get_host_timer());
}

SCENARIO(reads_both_timers, "device and host timers", 210) {
    auto const [host_before, device_before] = b.device.get_device_and_host_timer();
    EXPECT_LE(host_before, b.device.get_host_timer());
    auto const before = b.device.get_host_timer();
    auto const [host, device] = b.device.get_device_and_host_timer();
    EXPECT_LE(before, host);
    EXPECT_LT(device_before, device);
}

template <class Api>
void expect_parts(bench<Api>& b, std::vector<typename Api::device> const& parts, std::intptr_t scheme) {
    EXPECT_GE(parts.size(), 2U);
    for (auto const& part : parts) {
        EXPECT_FALSE(part.is_root_device());
        EXPECT_EQ(part.parent_device(), b.device);
        EXPECT_EQ(part.max_compute_units(), 1U);
        EXPECT_EQ(std::intptr_t{part.partition_type().at(0)}, scheme);
        expect_counted(part);
    }
}

SCENARIO(partitions_devices, "sub-devices", 120) {
    auto const units = b.device.max_compute_units();
    auto const parts = b.device.partition_equally(1);
    if (parts.size() < 2) {
        skip("the device has but one compute unit");
    }
    expect_parts(b, parts, CL_DEVICE_PARTITION_EQUALLY);
    expect_parts(b, b.device.partition_by_counts({1, 1}), CL_DEVICE_PARTITION_BY_COUNTS);
    EXPECT_THROW(b.device.partition_by_counts({units, units}), common::opencl_error);
}

} // namespace
} // namespace real
