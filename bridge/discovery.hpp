#pragma once

// The devices of the machine. They are discovered once and live as long as the process.

#include "call_handle.hpp"

#include <deque>
#include <memory>
#include <vector>

namespace nq::bridge {

struct root_device {
    cl_device_id id;
    platform const* owner;
    version_number version;
    std::unique_ptr<nq_call_handle[]> handles; // by version
};

struct machine {
    std::deque<platform> platforms;
    std::vector<root_device> devices;

    /// The record of a platform's handle, or null.
    platform const* find(cl_platform_id id) const noexcept;
};

/// Asks OpenCL, unless an earlier call found a device. Null if there is none. Thread-safe.
machine const* discover();

/// Whether this process was forked from one that had discovered devices.
bool forked_after_discovery() noexcept;

} // namespace nq::bridge
