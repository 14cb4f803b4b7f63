// Performs a call of OpenCL 1.2 with libnq alone, and writes it as text.
#include <nq/blocks.hpp>
#include <nq/commands.hpp>
#include <nq/describe.hpp>
#include <nq/nq.hpp>

#include <cstdio>
#include <string>
#include <vector>

int main() {
    std::uint64_t count = 0;
    if (nq_version() != nq::version || nq_get_root_devices(0, nullptr, &count, nullptr) != 0) {
        return 1;
    }
    std::vector<nq::device> devices(count);
    nq_get_root_devices(count, devices.data(), &count, nullptr);
    nq::capability_node node{};
    nq_call_handle* handle = nullptr;
    if (count == 0 ||
        nq_find_capability_nodes(devices[0], nq::capability::opencl_1_2, 1, &node, &count, nullptr) != 0 ||
        count == 0 || nq_create_call_handle(node, &handle, nullptr) != 0) {
        std::puts("there is no device of OpenCL 1.2");
        return 1;
    }
    nq::block::clFinish block{}; // without a queue: OpenCL refuses
    constexpr auto id = nq::command_id<nq::capability::opencl_1_2, nq::block::clFinish>;
    int const made = nq_call_capability(handle, id, &block, nullptr);
    std::string const text = nq::format_call(nq::capability::opencl_1_2, id, &block);
    std::puts(text.c_str());
    nq_close_call_handle(handle);
    return made == 0 && text.find("CL_INVALID_COMMAND_QUEUE") != std::string::npos ? 0 : 1;
}
