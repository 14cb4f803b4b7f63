#include "session.hpp"

#include <algorithm>
#include <iostream>
#include <sys/mman.h>
#include <unistd.h>

namespace nq::block::contract {

namespace {

constexpr std::int32_t absent = CL_INVALID_OPERATION;

// What the platforms lack of the six tables. Where the code is not `absent`, the implementation answered it itself.
std::map<std::string_view, std::map<std::string, std::int32_t>> const lacking{
    {"clSetCommandQueueProperty", {{"pocl", absent}, {"rusticl", absent}, {"intel", absent}}},
    {"clEnqueueNativeKernel", {{"rusticl", absent}}},
    {"clEnqueueWaitForEvents", {{"pocl", absent}, {"rusticl", absent}}},
    {"clCreateSubDevices", {{"rusticl", absent}, {"oclgrind", CL_INVALID_VALUE}}},
    {"clCreateProgramWithBuiltInKernels", {{"rusticl", absent}, {"oclgrind", CL_INVALID_VALUE}, {"intel", absent}}},
    {"clCreatePipe", {{"pocl", absent}, {"rusticl", absent}}},
    {"clSVMAlloc", {{"rusticl", absent}}},
    {"clGetDeviceAndHostTimer", {{"pocl", absent}, {"rusticl", absent}}},
    {"clGetHostTimer", {{"pocl", absent}, {"rusticl", absent}}},
    {"clCreateProgramWithIL", {{"pocl", CL_INVALID_VALUE}, {"rusticl", absent}}},
    {"clGetKernelSubGroupInfo", {{"pocl", absent}, {"rusticl", absent}}},
    {"clSetProgramSpecializationConstant", {{"pocl", absent}, {"rusticl", absent}}},
    {"clSetProgramReleaseCallback", {{"pocl", absent}, {"rusticl", absent}, {"intel", absent}}}};

} // namespace

std::int32_t expected_code(std::string const& platform, std::string_view entry_point) {
    auto const entry = lacking.find(entry_point);
    return entry != lacking.end() && entry->second.contains(platform) ? entry->second.at(platform) : CL_SUCCESS;
}

std::string text_of(capability version) {
    constexpr std::array texts{"opencl_1_0", "opencl_1_1", "opencl_1_2", "opencl_2_0", "opencl_2_1", "opencl_2_2"};
    return texts.at(static_cast<std::size_t>(version) - 1);
}

std::uint32_t command_count(capability version) {
    constexpr std::array counts{opencl_1_0_commands::size, opencl_1_1_commands::size, opencl_1_2_commands::size,
                                opencl_2_0_commands::size, opencl_2_1_commands::size, opencl_2_2_commands::size};
    return counts.at(static_cast<std::size_t>(version) - 1);
}

std::vector<capability_node> list_nodes(capability version) {
    std::uint64_t count = 0;
    EXPECT_EQ(nq_get_root_devices(0, nullptr, &count, nullptr), 0);
    std::vector<nq::device> devices(count);
    EXPECT_EQ(nq_get_root_devices(count, devices.data(), &count, nullptr), 0);
    std::vector<capability_node> nodes;
    for (nq::device const device : devices) {
        capability_node node{};
        std::uint64_t offered = 0;
        EXPECT_EQ(nq_find_capability_nodes(device, version, 1, &node, &offered, nullptr), 0);
        nodes.insert(nodes.end(), offered, node);
    }
    return nodes;
}

nq_call_handle* open(capability_node node) {
    nq_call_handle* handle = nullptr;
    EXPECT_EQ(nq_create_call_handle(node, &handle, nullptr), 0);
    return handle;
}

session::session(capability offered, capability_node node) : version(offered), handle_(open(node)) {
    device = call(call_handle_device{}).result;
    platform = info<_nq_cl_platform_id*>(clGetDeviceInfo{device}, CL_DEVICE_PLATFORM);
    auto const known = names::short_names.find(text(clGetPlatformInfo{platform}, CL_PLATFORM_NAME));
    name = known != names::short_names.end() ? known->second : "other";
}

void session::tear_down() {
    ok(clFinish{});
    std::for_each(releases_.rbegin(), releases_.rend(), [](auto const& release) { release(); });
    releases_.clear();
}

bool session::nulls_pointer(std::span<std::byte> field, void const* code, std::string const& call) const {
    std::uintptr_t word = 0;
    unsigned char resident = 0;
    std::memcpy(&word, field.data(), sizeof word);
    auto const page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    // The flag beside a code, which makes a command blocking, can look like an address.
    bool const holds_code = code >= field.data() && code < field.data() + field.size();
    if (holds_code || mincore(reinterpret_cast<void*>(word / page * page), 1, &resident) != 0) {
        return false;
    }
    std::ranges::fill(field, std::byte{});
    std::cout << name << " " << text_of(version) << " " << call << std::endl;
    return true;
}

} // namespace nq::block::contract
