#include "discovery.hpp"

#include "diagnosis.hpp"
#include "guards.hpp"
#include "loader.hpp"
#include "system.hpp"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <new>

namespace nq::bridge {
namespace {

std::atomic<machine const*> known = nullptr;
std::atomic<bool> forked = false;

// Recursive: an implementation may fork during discovery, and the fork handler locks it in the same thread. Never
// destroyed: programs may list devices until the process ends.
std::recursive_mutex& asking() {
    static auto* const mutex = new std::recursive_mutex;
    return *mutex;
}

void before_fork() { asking().lock(); }
void after_fork_in_parent() { asking().unlock(); }
void after_fork_in_child() {
    if (machine const* const found = known; found != nullptr) {
        forked = true;
        for (root_device const& device : found->devices) {
            for (std::size_t i = 0; i < version_count && !device.owner->survives_fork; ++i) {
                device.handles[i].state = 0;
            }
        }
    }
    new (&asking()) std::recursive_mutex; // its owner, this thread, has another number in the child
}

std::vector<cl_platform_id> list_platforms() {
    functions const& cl = loaded();
    cl_uint count = 0;
    if (cl.clGetPlatformIDs == nullptr || cl.clGetPlatformIDs(0, nullptr, &count) != CL_SUCCESS) {
        return {};
    }
    std::vector<cl_platform_id> platforms(count);
    return cl.clGetPlatformIDs(count, platforms.data(), nullptr) == CL_SUCCESS ? platforms
                                                                               : std::vector<cl_platform_id>{};
}

std::vector<cl_device_id> list_devices(platform const& owner, cl_device_type type) {
    functions const& cl = loaded();
    cl_uint count = 0; // implementations without devices do not write it
    if (cl.clGetDeviceIDs(owner.id, type, 0, nullptr, &count) != CL_SUCCESS) {
        return {};
    }
    std::vector<cl_device_id> devices(count);
    return cl.clGetDeviceIDs(owner.id, type, count, devices.data(), nullptr) == CL_SUCCESS
               ? devices
               : std::vector<cl_device_id>{};
}

// CL_DEVICE_TYPE_ALL does not include custom devices.
std::vector<cl_device_id> list_devices(platform const& owner) {
    auto devices = list_devices(owner, CL_DEVICE_TYPE_ALL);
    if (owner.version >= 102) {
        for (cl_device_id const custom : list_devices(owner, CL_DEVICE_TYPE_CUSTOM)) {
            if (std::find(devices.begin(), devices.end(), custom) == devices.end()) {
                devices.push_back(custom);
            }
        }
    }
    return devices;
}

void add_platform(machine& made, cl_platform_id id) {
    platform& owner = made.platforms.emplace_back(describe(id));
    for (cl_device_id const device : list_devices(owner)) {
        auto const version = parse_version(info_text(loaded().clGetDeviceInfo, device, CL_DEVICE_VERSION));
        made.devices.push_back({device, &owner, version, make_call_handles(owner, device)});
        owner.survives_fork = owner.survives_fork && device_survives_fork(owner.name, device);
    }
}

std::unique_ptr<machine const> ask() {
    auto made = std::make_unique<machine>();
    std::string const failure = load();
    if (failure.empty()) {
        for (cl_platform_id const id : list_platforms()) {
            add_platform(*made, id);
        }
    }
    explain_discovery(*made, failure);
    return made;
}

} // namespace

platform const* machine::find(cl_platform_id id) const noexcept {
    auto const found =
        std::find_if(platforms.begin(), platforms.end(), [id](platform const& each) { return each.id == id; });
    return found != platforms.end() ? &*found : nullptr;
}

machine const* discover() {
    if (machine const* const found = known.load(std::memory_order_acquire); found != nullptr) {
        return found;
    }
    static std::once_flag forks_are_watched;
    std::call_once(forks_are_watched, watch_forks, before_fork, after_fork_in_parent, after_fork_in_child);
    std::lock_guard const lock(asking());
    if (known == nullptr) {
        auto made = ask();
        if (!made->devices.empty()) {
            known = made.release();
        }
    }
    return known;
}

bool forked_after_discovery() noexcept { return forked; }

} // namespace nq::bridge
