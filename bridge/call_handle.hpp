#pragma once

#include "dispatch.hpp"
#include "platform.hpp"

#include <nq/types.hpp>

#include <atomic>
#include <cstdint>
#include <memory>

/// One OpenCL version of one device. There is a single one of each, in memory that is never given back: whoever opens
/// it gets the same address, and a call on a closed one can always be told and refused.
struct nq_call_handle {
    // How often it is open in the upper half, the number of its commands in the lower half; 0 while it is closed.
    std::atomic<std::uint64_t> state;
    nq::bridge::thunk const* commands; // by id - 1
    nq::bridge::platform const* owner;
    cl_device_id device;
    std::uint32_t command_count;
};

namespace nq::bridge {

/// The call handles of a device, one for each version in the order of `nq::capability`, all of them closed.
std::unique_ptr<nq_call_handle[]> make_call_handles(platform const& owner, cl_device_id device);

// Opening and closing take no lock, so that a fork in between leaves nothing behind.

void open(nq_call_handle& handle) noexcept;

/// Takes one opening away; does nothing to a closed handle.
void close(nq_call_handle& handle) noexcept;

} // namespace nq::bridge
