#include "dispatch.hpp"

#include "perform.hpp"

#include <nq/commands.hpp>

#include <array>

namespace nq::bridge {
namespace {

template <class Block>
int perform_command(nq_call_handle const& handle, void* memory) {
    auto& block = *static_cast<Block*>(memory);
    try {
        perform(handle, block);
    } catch (...) { // no OpenCL function documents one; Oclgrind throws std::bad_alloc
        refuse(block, CL_OUT_OF_HOST_MEMORY);
    }
    return nq::result::success;
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
