#pragma once

#include "dispatch.hpp"
#include "platform.hpp"

#include <nq/types.hpp>

#include <atomic>
#include <cstdint>

namespace nq::bridge {

enum class handle_state : std::uint32_t { closed, open, lost_in_fork };

} // namespace nq::bridge

/// Its memory is never given back, so that a closed handle can be told from an open one for ever.
struct nq_call_handle {
    std::atomic<nq::bridge::handle_state> state;
    std::uint32_t command_count;
    nq::bridge::thunk const* commands; // by id - 1
    nq::bridge::platform const* owner;
    cl_device_id device;
    nq_call_handle* next;
};

namespace nq::bridge {

/// A new open handle.
nq_call_handle* open(platform const& owner, cl_device_id device, nq::capability version);

/// In a forked child: gives up the handles whose implementation does not work there.
void lose_handles() noexcept;

} // namespace nq::bridge
