#include "scenario.hpp"

#include <algorithm>

namespace contract {

using namespace nq::block;

namespace {

template <nq::capability Version>
void listing(session<Version>& s) {
    std::uint32_t count = 0;
    s.ok(clGetDeviceIDs{.platform = s.platform, .device_type = device_type_all, .num_devices = &count});
    std::vector<_nq_cl_device_id*> devices(count);
    s.ok(clGetDeviceIDs{
        .platform = s.platform, .device_type = device_type_all, .num_entries = count, .devices = devices.data()});
    EXPECT_NE(std::ranges::find(devices, s.device), devices.end());
}

template <nq::capability Version>
void sub_devices(session<Version>& s) {
    std::array<std::int64_t, 3> const properties{partition_equally, 1, 0};
    std::uint32_t count = 0;
    clCreateSubDevices request{.in_device = s.device, .properties = properties.data(), .num_devices_ret = &count};
    if (!s.feature(request)) {
        s.ok(clRetainDevice{s.device});
        s.ok(clReleaseDevice{s.device});
        return;
    }
    std::vector<_nq_cl_device_id*> parts(count);
    request.num_devices = count;
    request.out_devices = parts.data();
    s.ok(request);
    for (_nq_cl_device_id* const part : parts) {
        EXPECT_EQ(s.template info<_nq_cl_device_id*>(clGetDeviceInfo{part}, device_parent), s.device);
        s.template references<clRetainDevice, clReleaseDevice, clGetDeviceInfo>(part, device_reference_count);
        s.ok(clReleaseDevice{part});
    }
}

// The loader knows clCreateSubDevicesEXT, and no implementation here has it.
template <nq::capability Version>
void lookups(session<Version>& s) {
    auto const look_up = [&s](char const* name) {
        if constexpr (nq::has_command<Version, clGetExtensionFunctionAddress>) {
            return s.call(clGetExtensionFunctionAddress{name, nullptr}).result;
        } else {
            EXPECT_EQ(s.call(clGetExtensionFunctionAddressForPlatform{nullptr, name, nullptr}).result, nullptr);
            return s.call(clGetExtensionFunctionAddressForPlatform{s.platform, name, nullptr}).result;
        }
    };
    EXPECT_EQ(look_up("clCreateSubDevicesEXT"), nullptr);
    EXPECT_EQ(look_up("clNoSuchFunction"), nullptr);
    EXPECT_EQ(look_up(nullptr), nullptr);
    void* const address = look_up("clIcdGetPlatformIDsKHR");
    EXPECT_EQ(address == nullptr, s.name == "oclgrind");
    if (address != nullptr) {
        std::uint32_t count = 0;
        auto* const list = reinterpret_cast<std::int32_t (*)(std::uint32_t, void*, std::uint32_t*)>(address);
        EXPECT_EQ(list(0, nullptr, &count), success);
        EXPECT_EQ(count, 1U);
    }
}

template <nq::capability Version>
void timers(session<Version>& s) {
    std::uint64_t device_time = 0;
    std::uint64_t host_time = 0;
    std::uint64_t later = 0;
    clGetDeviceAndHostTimer both{.device = s.device, .device_timestamp = &device_time, .host_timestamp = &host_time};
    clGetHostTimer host{.device = s.device, .host_timestamp = &later};
    if (s.feature(both)) {
        EXPECT_NE(device_time, 0U);
    }
    if (s.feature(host)) {
        EXPECT_GE(later, host_time);
        EXPECT_NE(host_time, 0U);
    }
}

} // namespace

template <nq::capability Version>
void platform_and_device(session<Version>& s) {
    listing(s);
    lookups(s);
    if constexpr (nq::has_command<Version, clCreateSubDevices>) {
        sub_devices(s);
    }
    if constexpr (nq::has_command<Version, clGetHostTimer>) {
        timers(s);
    }
}
CONTRACT_INSTANTIATE(platform_and_device);

} // namespace contract
