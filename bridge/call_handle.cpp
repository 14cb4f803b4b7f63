#include "call_handle.hpp"

namespace nq::bridge {
namespace {

std::atomic<nq_call_handle*> newest = nullptr;

} // namespace

nq_call_handle* open(platform const& owner, cl_device_id device, nq::capability version) {
    auto const commands = commands_of(version);
    auto* const handle = new nq_call_handle{
        handle_state::open, static_cast<std::uint32_t>(commands.size()), commands.data(), &owner, device, newest};
    while (!newest.compare_exchange_weak(handle->next, handle)) {
    }
    return handle;
}

void lose_handles() noexcept {
    for (nq_call_handle* handle = newest; handle != nullptr; handle = handle->next) {
        auto expected = handle_state::open;
        if (!handle->owner->survives_fork) {
            handle->state.compare_exchange_strong(expected, handle_state::lost_in_fork);
        }
    }
}

} // namespace nq::bridge
