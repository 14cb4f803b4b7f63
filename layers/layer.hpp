#pragma once

// What all layers share. A layer is a libnq that stands before another one: it exports the six functions, passes each
// on to the next libnq in the order of loading, and gives each call to `perform` of its own.

#include <nq/describe.hpp>
#include <nq/nq.hpp>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace nq::layer {

/// One call, as the program made it.
struct call {
    nq_call_handle* handle;
    nq::capability version; ///< of the handle; 0 if it was not opened through the layer
    std::uint32_t id;
    void* block;
    void* reserved;

    /// Null if there is no such command.
    description const* about() const noexcept { return block != nullptr ? describe(version, id) : nullptr; }
};

/// The block of a call if it is of this type, else null.
template <class Block>
Block* as(call const& made, description const* about) {
    return about == &description_of<Block> ? static_cast<Block*>(made.block) : nullptr;
}

/// Whether libnq made a call and OpenCL did what it asks for.
inline bool succeeded(call const& made, description const& about, int result) noexcept {
    return result == result::success &&
           (about.status == absent || read_field(made.block, about.status, sizeof(std::int32_t)) == 0);
}

/// The value of a name of OpenCL, as in `"CL_DEVICE_NAME"_cl`. Does not compile if there is no such name.
consteval std::uint32_t operator""_cl(char const* name, std::size_t) {
    using namespace values;
    for (value_set const& set :
         {platform_info, device_info, context_info, command_queue_info, mem_info, image_info, program_info,
          program_build_info, kernel_info, kernel_arg_info, kernel_work_group_info, event_info, profiling_info,
          queue_properties, command_queue_properties, mem_flags, map_flags, status}) {
        for (value_name const& each : set) {
            if (std::string_view(each.name) == name) {
                return static_cast<std::uint32_t>(each.value);
            }
        }
    }
    throw "no such name";
}

/// What `Make` tells of the command of a call that has a description. Made once for each command.
template <class Value, Value (*Make)(description const&)>
Value const& value_of(call const& made) {
    static auto const& tables = *[] {
        auto* const table = new std::array<std::vector<Value>, 7>; // by version and command
        for (std::uint64_t version = 1; version < table->size(); ++version) {
            std::vector<Value>& of = (*table)[version];
            of.emplace_back(); // there is no command 0
            for (std::uint32_t id = 1; describe(capability{version}, id) != nullptr; ++id) {
                of.push_back(Make(*describe(capability{version}, id)));
            }
        }
        return table;
    }();
    return tables[static_cast<std::size_t>(made.version)][made.id];
}

/// Each layer defines it: makes the call, or answers in its place. It must not throw.
int perform(call const& made) noexcept;

/// Makes a call through the next libnq.
int forward(call const& made) noexcept;

/// Whether this is a child that the process forked after its first call. A layer that collects leaves children alone.
bool is_forked() noexcept;

/// Reads memory that may not be there, as wrong arguments refer to.
bool read_safely(void* to, void const* from, std::size_t size) noexcept;

/// Writes one line to standard error in one piece, after the name of the layer. Keeps `errno`.
void print(char const* layer, std::string const& line) noexcept;

/// Runs a function of the layer's own. What it throws is dropped: a layer that is out of memory still passes calls on.
template <class Function>
void attempt(Function function) noexcept {
    try {
        function();
    } catch (...) { // NOLINT(bugprone-empty-catch)
    }
}

/// Performs a command with a block of the layer's own through the next libnq. False if there is no such command, the
/// call failed, or OpenCL refused it.
template <class Block>
bool ask(call const& made, Block& block) noexcept {
    std::uint32_t const id = find_command<Block>(made.version);
    return id != 0 && forward({made.handle, made.version, id, &block, nullptr}) == result::success && block.status == 0;
}

} // namespace nq::layer
