#pragma once

// What every field of every argument block means, as data: for tools between the library and libnq, such as tracers.
//
//     nq::description const* const call = nq::describe(nq::capability::opencl_1_2, id);
//     for (nq::field const& each : *call) {
//         std::printf("%s at %u\n", each.name, unsigned{each.offset});
//     }
//
// The tables are made at compile time. They do not compile if a block or a field is missing from them.

#include <nq/describe/enqueues.hpp>
#include <nq/describe/field.hpp>
#include <nq/describe/format.hpp>
#include <nq/describe/memory.hpp>
#include <nq/describe/objects.hpp>
#include <nq/describe/queries.hpp>

#undef NQ_BLOCK
#undef NQ_FIELD
#undef NQ_FIELD_
#undef NQ_AT
#undef NQ_STATUS
#undef NQ_ERROR_CODE
#undef NQ_RESULT
#undef NQ_LIST

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace nq {
namespace detail {

struct table {
    description const* const* blocks;
    std::uint32_t size;
};

template <class List>
struct table_of;
template <class... Blocks>
struct table_of<command_list<Blocks...>> {
    static constexpr description const* blocks[] = {&description_of<Blocks>...};
};

template <capability Version>
inline constexpr table version_table{table_of<nq::commands<Version>>::blocks, nq::commands<Version>::size};

inline constexpr table version_tables[] = {
    version_table<capability::opencl_1_0>, version_table<capability::opencl_1_1>, version_table<capability::opencl_1_2>,
    version_table<capability::opencl_2_0>, version_table<capability::opencl_2_1>, version_table<capability::opencl_2_2>,
};

} // namespace detail

/// The description of a command of an OpenCL version; null if there is no such command.
[[nodiscard]] constexpr description const* describe(capability opencl, std::uint32_t id) noexcept {
    auto const index = static_cast<std::uint64_t>(opencl) - 1;
    if (index >= std::size(detail::version_tables) || id == 0 || id > detail::version_tables[index].size) {
        return nullptr;
    }
    return detail::version_tables[index].blocks[id - 1];
}

/// The command id of a block in an OpenCL version; 0 if the version lacks it.
template <class Block>
[[nodiscard]] constexpr std::uint32_t find_command(capability opencl) noexcept {
    for (std::uint32_t id = 1; describe(opencl, id) != nullptr; ++id) {
        if (describe(opencl, id) == &description_of<Block>) {
            return id;
        }
    }
    return 0;
}

/// Whether any OpenCL version has a command of this name.
[[nodiscard]] constexpr bool is_command(std::string_view name) noexcept {
    for (detail::table const& table : detail::version_tables) {
        for (std::uint32_t i = 0; i < table.size; ++i) {
            if (table.blocks[i]->name == name) {
                return true;
            }
        }
    }
    return false;
}

/// One call as text, with each argument and the result decoded: names of values, texts in quotes, lists in brackets.
/// Long texts and lists are cut. Reads the program's memory through `read`, see `nq::memory_reader`.
[[nodiscard]] inline std::string format_call(capability opencl, std::uint32_t id, void const* block,
                                             memory_reader read = detail::copy_memory) {
    description const* const call = describe(opencl, id);
    return call == nullptr ? "command " + std::to_string(id) : detail::formatter{*call, block, read}.text();
}

/// The arguments, the status and the result of one call, each decoded as in `nq::format_call`: calls `visit(field,
/// text)`, in the order of the fields. Does nothing if there is no such command.
template <class Visit>
void for_each_argument(capability opencl, std::uint32_t id, void const* block, Visit visit,
                       memory_reader read = detail::copy_memory) {
    if (description const* const call = describe(opencl, id); call != nullptr) {
        detail::formatter{*call, block, read}.for_each_argument(visit);
    }
}

/// A call that is not made yet as text: as `format_call` writes it, without status and result.
[[nodiscard]] inline std::string format_request(capability opencl, std::uint32_t id, void const* block,
                                                memory_reader read = detail::copy_memory) {
    description const* const call = describe(opencl, id);
    return call == nullptr ? "command " + std::to_string(id) : detail::formatter{*call, block, read}.request();
}

} // namespace nq
