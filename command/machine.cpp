#include "machine.hpp"

namespace nq::command {
namespace {

constexpr std::uint32_t platform_name = 0x0902;
constexpr std::uint32_t device_name = 0x102B;
constexpr std::uint32_t device_platform = 0x1031;

template <class Element, class List>
std::vector<Element> list(List function) {
    std::uint64_t count = 0;
    if (function(0, nullptr, &count) != result::success) {
        return {};
    }
    std::vector<Element> all(count);
    return function(all.size(), all.data(), &count) == result::success ? all : std::vector<Element>{};
}

} // namespace

machine::machine() {
    if (nq_version() != nq::version) {
        return;
    }
    auto const roots = list<nq::device>([](std::uint64_t capacity, nq::device* devices, std::uint64_t* count) {
        return nq_get_root_devices(capacity, devices, count, nullptr);
    });
    for (nq::device const root : roots) {
        opened through;
        for (auto version = capability::opencl_1_0; through.handle == nullptr && version <= capability::opencl_2_2;
             version = capability{static_cast<std::uint64_t>(version) + 1}) {
            through = open(root, version);
        }
        block::call_handle_device own{};
        if (through.handle == nullptr || !perform(through, own)) {
            continue;
        }
        block::clGetDeviceInfo const device{.device = own.result};
        auto* const platform = ask<_nq_cl_platform_id*>(through, device, device_platform);
        devices_.push_back({root, ask_text(through, block::clGetPlatformInfo{.platform = platform}, platform_name),
                            ask_text(through, device, device_name), reinterpret_cast<std::uintptr_t>(platform),
                            reinterpret_cast<std::uintptr_t>(own.result)});
    }
}

machine::~machine() {
    for (auto const& [node, handle] : handles_) {
        nq_close_call_handle(handle);
    }
}

opened machine::open(nq::device root, capability version) {
    if (auto const found = handles_.find({root, version}); found != handles_.end()) {
        return {found->second, version};
    }
    auto const nodes = list<capability_node>([=](std::uint64_t capacity, capability_node* found, std::uint64_t* count) {
        return nq_find_capability_nodes(root, version, capacity, found, count, nullptr);
    });
    nq_call_handle* handle = nullptr;
    if (nodes.empty() || nq_create_call_handle(nodes.front(), &handle, nullptr) != result::success) {
        return {};
    }
    handles_[{root, version}] = handle;
    return {handle, version};
}

} // namespace nq::command
