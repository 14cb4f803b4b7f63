#include "call_handle.hpp"
#include "diagnosis.hpp"
#include "discovery.hpp"

#include <nq/export.hpp>
#include <nq/nq.hpp>

#include <algorithm>
#include <array>

namespace nq::bridge {
namespace {

version_number required_version(nq::capability version) noexcept {
    constexpr std::array<version_number, version_count> versions{100, 101, 102, 200, 201, 202};
    auto const index = static_cast<std::uint64_t>(version) - 1;
    return index < versions.size() ? versions[index] : 0;
}

// An OpenCL 3.0 device answers the features of 2.x that it lacks with error codes, so it can offer every version.
bool offers(root_device const& device, nq::capability version) noexcept {
    version_number const required = required_version(version);
    return required != 0 && (device.version >= required || device.version >= 300);
}

// Devices are numbered from 1 in the order of discovery.
root_device const* find_device(nq::device number) {
    machine const* const found = discover();
    return found != nullptr && number - 1 < found->devices.size() ? &found->devices[number - 1] : nullptr;
}

template <class Element>
int answer(std::uint64_t capacity, Element* elements, std::uint64_t* count, std::uint64_t total, auto element_at) {
    if (count != nullptr) {
        *count = total;
    }
    for (std::uint64_t i = 0; elements != nullptr && i < std::min(capacity, total); ++i) {
        elements[i] = element_at(i);
    }
    return nq::result::success;
}

int list_root_devices(std::uint64_t capacity, nq::device* devices, std::uint64_t* count) {
    machine const* const found = discover();
    std::uint64_t const total = found != nullptr ? found->devices.size() : 0;
    return answer(capacity, devices, count, total, [](std::uint64_t index) { return index + 1; });
}

int list_nodes(nq::device number, nq::capability version, std::uint64_t capacity, nq::capability_node* nodes,
               std::uint64_t* count) {
    root_device const* const device = find_device(number);
    std::uint64_t const total = device != nullptr && offers(*device, version) ? 1 : 0;
    nq::capability_node const node{number, static_cast<std::uint64_t>(version)};
    int const result = answer(capacity, nodes, count, total, [node](std::uint64_t) { return node; });
    return device != nullptr ? result : nq::result::unrecoverable;
}

// The platform does not work in this process, which was forked from the one that discovered it.
bool lost_in_fork(platform const& owner) noexcept { return forked_after_discovery() && !owner.survives_fork; }

int open_node(nq::capability_node node, nq_call_handle** handle) {
    root_device const* const device = find_device(node.first);
    nq::capability const version{node.second};
    if (handle == nullptr || device == nullptr || !offers(*device, version)) {
        return nq::result::unrecoverable;
    }
    if (lost_in_fork(*device->owner)) {
        explain_fork(*device->owner);
        return nq::result::unrecoverable;
    }
    *handle = &device->handles[node.second - 1];
    open(**handle);
    return nq::result::success;
}

[[gnu::cold, gnu::noinline]] int refuse_call(nq_call_handle const* handle, void const* block) noexcept {
    if (handle == nullptr || block == nullptr) {
        return nq::result::unrecoverable;
    }
    if (handle->state != 0) {
        return nq::result::invalid_command_id;
    }
    if (lost_in_fork(*handle->owner)) {
        explain_fork(*handle->owner);
    }
    return nq::result::unrecoverable;
}

// No exception may leave libnq.
template <class Function, class... Arguments>
int guarded(Function function, Arguments... arguments) noexcept {
    try {
        return function(arguments...);
    } catch (...) {
        return nq::result::unrecoverable;
    }
}

} // namespace
} // namespace nq::bridge

using namespace nq::bridge;

extern "C" {

NQ_EXPORT std::uint64_t nq_version() { return nq::version; }

NQ_EXPORT int nq_get_root_devices(std::uint64_t capacity, nq::device* devices, std::uint64_t* count, void*) {
    return guarded(list_root_devices, capacity, devices, count);
}

NQ_EXPORT int nq_find_capability_nodes(nq::device device, nq::capability capability, std::uint64_t capacity,
                                       nq::capability_node* nodes, std::uint64_t* count, void*) {
    return guarded(list_nodes, device, capability, capacity, nodes, count);
}

NQ_EXPORT int nq_create_call_handle(nq::capability_node node, nq_call_handle** handle, void*) {
    return guarded(open_node, node, handle);
}

NQ_EXPORT void nq_close_call_handle(nq_call_handle* handle) {
    if (handle != nullptr) {
        nq::bridge::close(*handle);
    }
}

NQ_EXPORT int nq_call_capability(nq_call_handle* handle, std::uint32_t command_id, void* block, void*) {
    if (handle == nullptr || block == nullptr) [[unlikely]] {
        return refuse_call(handle, block);
    }
    std::uint32_t const index = command_id - 1;
    auto const count = static_cast<std::uint32_t>(handle->state.load(std::memory_order_relaxed));
    if (index >= count) [[unlikely]] {
        return refuse_call(handle, block);
    }
    return handle->commands[index](*handle, index, block);
}

} // extern "C"
