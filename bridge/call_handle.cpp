#include "call_handle.hpp"

namespace nq::bridge {
namespace {

constexpr std::uint64_t one_opening = std::uint64_t{1} << 32U;

} // namespace

std::unique_ptr<nq_call_handle[]> make_call_handles(platform const& owner, cl_device_id device) {
    auto made = std::make_unique<nq_call_handle[]>(version_count);
    for (std::size_t i = 0; i < version_count; ++i) {
        auto const commands = commands_of(nq::capability{i + 1});
        made[i].commands = commands.data();
        made[i].command_count = static_cast<std::uint32_t>(commands.size());
        made[i].owner = &owner;
        made[i].device = device;
    }
    return made;
}

void open(nq_call_handle& handle) noexcept {
    std::uint64_t state = handle.state;
    while (!handle.state.compare_exchange_weak(state,
                                               state != 0 ? state + one_opening : one_opening + handle.command_count)) {
    }
}

void close(nq_call_handle& handle) noexcept {
    std::uint64_t state = handle.state;
    while (state != 0 &&
           !handle.state.compare_exchange_weak(state, state >= 2 * one_opening ? state - one_opening : 0)) {
    }
}

} // namespace nq::bridge
