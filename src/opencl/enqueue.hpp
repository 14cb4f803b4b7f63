#pragma once

#include "opencl/perform.hpp"

namespace vorn::mero::VORN_MERO_NAMESPACE::detail {

/// The arguments of `command::call`, for the block of any command.
struct enqueueing {
    nq::call_handle const& handle;
    _nq_cl_command_queue* queue;
    unsigned int num_events;
    _nq_cl_event* const* wait_list;
    _nq_cl_event** event;

    template <class Block>
    void enqueue(Block& block) const {
        block.command_queue = queue;
        block.event_wait_list = wait_list;
        block.event = event;
        block.num_events_in_wait_list = num_events;
        detail::perform(handle, block);
    }
};

} // namespace vorn::mero::VORN_MERO_NAMESPACE::detail
