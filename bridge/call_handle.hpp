#pragma once

#include "dispatch.hpp"
#include "platform.hpp"

#include <nq/types.hpp>

#include <atomic>
#include <cstdint>
#include <memory>

/// One OpenCL version of one device. There is one of each, in memory that is never freed: every opening gets the same
/// address, and calls on a closed one are recognized and refused.
struct nq_call_handle {
    // Upper half: the number of openings; lower half: the number of commands. 0 while closed.
    std::atomic<std::uint64_t> state;
    nq::bridge::thunk const* commands; // by id - 1
    nq::bridge::platform const* owner;
    cl_device_id device;
    std::uint32_t command_count;
};

namespace nq::bridge {

/// The call handles of a device, one for each version in the order of `nq::capability`, all of them closed.
std::unique_ptr<nq_call_handle[]> make_call_handles(platform const& owner, cl_device_id device);

// Opening and closing take no lock, so that a fork meanwhile leaves none locked.

void open(nq_call_handle& handle) noexcept;

/// Removes one opening. Does nothing to a closed handle.
void close(nq_call_handle& handle) noexcept;

} // namespace nq::bridge
