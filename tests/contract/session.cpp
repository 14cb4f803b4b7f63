#include "session.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <iterator>
#include <map>
#include <sys/mman.h>
#include <unistd.h>

namespace contract {
namespace {

using codes = std::map<std::string, std::int32_t>;

// What each platform lacks of the six tables. Where the code is not that of a lacking entry point, the implementation
// answered it itself.
std::map<std::string, codes> const& lacking() {
    static std::map<std::string, codes> const table{
        {"pocl",
         {{"clSetCommandQueueProperty", invalid_operation},
          {"clEnqueueWaitForEvents", invalid_operation},
          {"clCreatePipe", invalid_operation},
          {"clGetDeviceAndHostTimer", invalid_operation},
          {"clGetHostTimer", invalid_operation},
          {"clCreateProgramWithIL", invalid_value},
          {"clGetKernelSubGroupInfo", invalid_operation},
          {"clSetProgramSpecializationConstant", invalid_operation},
          {"clSetProgramReleaseCallback", invalid_operation}}},
        {"rusticl",
         {{"clSetCommandQueueProperty", invalid_operation},
          {"clEnqueueNativeKernel", invalid_operation},
          {"clEnqueueWaitForEvents", invalid_operation},
          {"clCreateSubDevices", invalid_operation},
          {"clCreateProgramWithBuiltInKernels", invalid_operation},
          {"clCreatePipe", invalid_operation},
          {"clSVMAlloc", invalid_operation},
          {"clGetDeviceAndHostTimer", invalid_operation},
          {"clGetHostTimer", invalid_operation},
          {"clCreateProgramWithIL", invalid_operation},
          {"clGetKernelSubGroupInfo", invalid_operation},
          {"clSetProgramSpecializationConstant", invalid_operation},
          {"clSetProgramReleaseCallback", invalid_operation}}},
        {"oclgrind", {{"clCreateSubDevices", invalid_value}, {"clCreateProgramWithBuiltInKernels", invalid_value}}},
        {"intel",
         {{"clSetCommandQueueProperty", invalid_operation},
          {"clCreateProgramWithBuiltInKernels", invalid_operation},
          {"clSetProgramReleaseCallback", invalid_operation}}}};
    return table;
}

std::map<std::string, std::string> const names{{"Portable Computing Language", "pocl"},
                                               {"rusticl", "rusticl"},
                                               {"Oclgrind", "oclgrind"},
                                               {"Intel(R) OpenCL", "intel"}};

} // namespace

std::int32_t expected_code(std::string const& platform, std::string const& entry_point) {
    auto const known = lacking().find(platform);
    if (known == lacking().end()) {
        return success;
    }
    auto const entry = known->second.find(entry_point);
    return entry != known->second.end() ? entry->second : success;
}

std::string short_name(std::string const& platform) {
    auto const known = names.find(platform);
    if (known != names.end()) {
        return known->second;
    }
    std::string made;
    std::ranges::copy_if(platform, std::back_inserter(made), [](unsigned char c) { return std::isalnum(c) != 0; });
    return made;
}

char const* text_of(nq::capability version) {
    constexpr std::array texts{"opencl_1_0", "opencl_1_1", "opencl_1_2", "opencl_2_0", "opencl_2_1", "opencl_2_2"};
    return texts.at(static_cast<std::size_t>(version) - 1);
}

bool is_mapped(std::uintptr_t address) {
    unsigned char resident = 0;
    auto const page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    return mincore(reinterpret_cast<void*>(address & ~(page - 1)), 1, &resident) == 0;
}

std::vector<nq::capability_node> list_nodes(nq::capability version) {
    std::uint64_t count = 0;
    EXPECT_EQ(nq_get_root_devices(0, nullptr, &count, nullptr), 0);
    std::vector<nq::device> devices(count);
    EXPECT_EQ(nq_get_root_devices(count, devices.data(), &count, nullptr), 0);
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

} // namespace contract
