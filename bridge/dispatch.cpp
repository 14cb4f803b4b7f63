#include "dispatch.hpp"

#include "perform.hpp"

#include <nq/commands.hpp>

#include <array>

namespace nq::bridge {
namespace {

template <class Block>
[[gnu::always_inline]] inline int perform_guarded(nq_call_handle const& handle, Block& block) noexcept {
    try {
        perform(handle, block);
    } catch (...) { // no OpenCL function documents one; Oclgrind throws std::bad_alloc
        refuse(block, CL_OUT_OF_HOST_MEMORY);
    }
    return nq::result::success;
}

// A call without a wait list, the usual one, saves no registers around the look at the list.
template <class Block>
[[gnu::noinline]] int perform_with_wait_list(nq_call_handle const& handle, Block& block) noexcept {
    return perform_guarded(handle, block);
}

template <class Block>
int perform_command(nq_call_handle const& handle, std::uint64_t, void* memory) {
    auto& block = *static_cast<Block*>(memory);
    if constexpr (requires { block.event_wait_list; }) {
        if (block.num_events_in_wait_list != 0) {
            return perform_with_wait_list(handle, block);
        }
    }
    return perform_guarded(handle, block);
}

template <class List>
struct table_of;
template <class... Blocks>
struct table_of<command_list<Blocks...>> {
    static constexpr std::array<thunk, sizeof...(Blocks)> thunks{perform_command<Blocks>...};
};

template <nq::capability Version>
constexpr std::span<thunk const> table = table_of<nq::commands<Version>>::thunks;

constexpr std::array<std::span<thunk const>, version_count> tables{
    table<capability::opencl_1_0>, table<capability::opencl_1_1>, table<capability::opencl_1_2>,
    table<capability::opencl_2_0>, table<capability::opencl_2_1>, table<capability::opencl_2_2>};

} // namespace

std::span<thunk const> commands_of(nq::capability version) noexcept {
    auto const index = static_cast<std::uint64_t>(version) - 1;
    return index < tables.size() ? tables[index] : std::span<thunk const>{};
}

} // namespace nq::bridge
