#pragma once

// One opened call handle and the calls that a test makes through it.

#include "names.hpp"

#include <nq/commands.hpp>
#include <nq/nq.hpp>

#include <CL/cl.h>
#include <gtest/gtest.h>

#include <array>
#include <bitset>
#include <cstring>
#include <functional>
#include <map>
#include <set>
#include <span>
#include <string>
#include <vector>

// Within the namespace of the blocks, whose names so come before those of OpenCL's functions.
namespace nq::block::contract {

/// What every buffer holds, and every image of 16 by 16 pixels.
using numbers = std::array<std::int32_t, 256>;
using triple = std::array<std::size_t, 3>;

inline constexpr cl_image_format rgba{CL_RGBA, CL_UNSIGNED_INT8};
inline constexpr triple corner{0, 0, 0}, whole{16, 16, 1};

inline constexpr std::array versions{capability::opencl_1_0, capability::opencl_1_1, capability::opencl_1_2,
                                     capability::opencl_2_0, capability::opencl_2_1, capability::opencl_2_2};

/// "opencl_1_2" and so on.
std::string text_of(capability version);
std::uint32_t command_count(capability version);

/// The id of a block in a version, 0 where the version lacks the entry point.
template <class Block>
std::uint32_t command_id(capability version) {
    using enum capability;
    static constexpr std::array ids{commands<opencl_1_0>::id_of<Block>(), commands<opencl_1_1>::id_of<Block>(),
                                    commands<opencl_1_2>::id_of<Block>(), commands<opencl_2_0>::id_of<Block>(),
                                    commands<opencl_2_1>::id_of<Block>(), commands<opencl_2_2>::id_of<Block>()};
    return ids.at(static_cast<std::size_t>(version) - 1);
}

using names::name_of;

/// The place of a block's status or error code, null in one that has neither.
template <class Block>
std::int32_t* code_in(Block& block) {
    if constexpr (requires { block.status; }) {
        return &block.status;
    } else if constexpr (requires { block.error_code; }) {
        return &block.error_code;
    } else {
        return nullptr;
    }
}

/// What a call came to: its code; for a call without one, whether it gave a result.
template <class Block>
std::int32_t code_of(Block block) {
    if (auto const* const code = code_in(block); code != nullptr) {
        return *code;
    }
    if constexpr (requires { block.result; }) {
        return block.result != nullptr ? CL_SUCCESS : CL_INVALID_OPERATION;
    }
    return CL_SUCCESS;
}

/// The code that a platform answers for an entry point that does not work there; CL_SUCCESS for one that does.
std::int32_t expected_code(std::string const& platform, std::string_view entry_point);

/// The nodes that offer a version, of all devices.
std::vector<capability_node> list_nodes(capability version);

nq_call_handle* open(capability_node node);

class session {
public:
    session(capability offered, capability_node node);
    session(session const&) = delete;
    session& operator=(session const&) = delete;
    ~session() { nq_close_call_handle(handle_); }

    template <class Block>
    bool has() const {
        return command_id<Block>(version) != 0;
    }

    /// Performs an entry point as the block says, whatever its outcome. All outputs are spoiled before.
    template <class Block>
    Block call(Block block) {
        std::uint32_t const id = command_id<Block>(version);
        if (nulling) {
            null_each_pointer(id, block);
        }
        spoil(block);
        EXPECT_EQ(nq_call_capability(handle_, id, &block, nullptr), 0) << name_of<Block>();
        performed.set(id);
        return block;
    }

    /// Performs an entry point, on what the session has where the block says nothing, that must answer a code.
    template <class Block>
    Block refused(Block block, std::int32_t code) {
        block = call(completed(block));
        EXPECT_EQ(code_of(block), code) << name_of<Block>();
        if constexpr (requires { block.result; }) {
            EXPECT_EQ(block.result == nullptr, code != CL_SUCCESS) << name_of<Block>();
        }
        return block;
    }

    template <class Block>
    Block ok(Block block) {
        return refused(block, CL_SUCCESS);
    }

    /// Performs an entry point that a platform may lack; whether it worked is known for every platform.
    template <class Block>
    bool feature(Block& block) {
        block = refused(block, expected_code(name, name_of<Block>()));
        return code_of(block) == CL_SUCCESS;
    }

    /// The object that an entry point makes. `tear_down` releases it.
    template <class Release, class Block>
    auto* make(Block block) {
        auto* const object = ok(block).result;
        releases_.emplace_back([this, object] { ok(Release{object}); });
        return object;
    }

    void tear_down();

    /// Reads one value and checks its size.
    template <class Value, class Block>
    Value info(Block query, std::uint32_t parameter) {
        Value value{};
        std::size_t size = 0;
        query.param_name = parameter;
        query.param_value_size = sizeof value;
        query.param_value = &value;
        query.param_value_size_ret = &size;
        ok(query);
        EXPECT_EQ(size, sizeof value) << name_of<Block>() << " " << parameter;
        return value;
    }

    template <class Block>
    std::string text(Block query, std::uint32_t parameter) {
        std::string value(10'000, '\0');
        query.param_name = parameter;
        query.param_value_size = value.size();
        query.param_value = value.data();
        ok(query);
        return value.c_str();
    }

    /// Retain adds one to an object's reference count, release takes it away.
    template <class Retain, class Release, class Query, class Object>
    void references(Object* object, std::uint32_t parameter) {
        auto const before = info<std::uint32_t>(Query{object}, parameter);
        ok(Retain{object});
        EXPECT_EQ(info<std::uint32_t>(Query{object}, parameter), before + 1) << name_of<Retain>();
        ok(Release{object});
        EXPECT_EQ(info<std::uint32_t>(Query{object}, parameter), before) << name_of<Release>();
    }

    capability const version;
    _nq_cl_device_id* device = nullptr;
    _nq_cl_platform_id* platform = nullptr;
    std::string name; // a short one of the platform
    _nq_cl_context* context = nullptr;
    _nq_cl_command_queue* queue = nullptr;
    std::bitset<128> performed;
    bool nulling = false; // makes each call also with every pointer of its block nulled in turn
    /// By command id and offset: the codes of the calls with that pointer nulled.
    std::map<std::pair<std::uint32_t, std::size_t>, std::set<std::int32_t>> codes_when_null;

private:
    template <class Block>
    static void spoil(Block& block) {
        if (auto* const code = code_in(block); code != nullptr) {
            *code = 0x5A5A5A5A;
        }
        if constexpr (requires { block.result; }) {
            std::memset(&block.result, 0x5A, sizeof block.result);
        }
    }

#define FILL(field, value)                                                                                             \
    if constexpr (requires { block.field; }) {                                                                         \
        block.field = block.field ? block.field : value;                                                               \
    }
    template <class Block>
    Block completed(Block block) const {
        FILL(context, context)
        FILL(command_queue, queue)
        FILL(device, device)
        if constexpr (requires { block.device_list; }) {
            FILL(device_list, &device)
            block.num_devices = 1;
        }
        FILL(size, sizeof(numbers))
        FILL(pattern_size, sizeof(std::int32_t))
        FILL(image_format, &rgba)
        FILL(image_width, whole[0])
        FILL(image_height, whole[1])
        FILL(origin, corner.data())
        FILL(src_origin, corner.data())
        FILL(dst_origin, corner.data())
        FILL(buffer_origin, corner.data())
        FILL(host_origin, corner.data())
        FILL(region, whole.data())
        FILL(map_flags, CL_MAP_READ)
        FILL(blocking_read, 1)
        FILL(blocking_write, 1)
        FILL(blocking_map, 1)
        FILL(blocking_copy, 1)
        FILL(work_dim, 1)
        return block;
    }
#undef FILL

    template <class Block>
    void null_each_pointer(std::uint32_t id, Block const& block) {
        // The memory must not be freed twice, and PoCL aborts where a program made from a binary is built twice.
        bool const once = std::is_same_v<Block, clEnqueueSVMFree> || std::is_same_v<Block, clBuildProgram>;
        for (std::size_t offset = 0; !once && offset < sizeof block; offset += sizeof(void*)) {
            Block copy = block;
            auto const bytes = std::as_writable_bytes(std::span(&copy, 1)).subspan(offset, sizeof(void*));
            std::string const what =
                std::string(name_of<Block>()) + " without the pointer at " + std::to_string(offset);
            if (nulls_pointer(bytes, code_in(copy), what)) {
                EXPECT_EQ(nq_call_capability(handle_, id, &copy, nullptr), 0) << name_of<Block>();
                codes_when_null[{id, offset}].insert(code_of(copy));
            }
        }
    }

    /// Whether a field was a pointer to memory, so that the call is to be made without it; then that is said.
    bool nulls_pointer(std::span<std::byte> field, void const* code, std::string const& call) const;

    nq_call_handle* handle_;
    std::vector<std::function<void()>> releases_;
};

} // namespace nq::block::contract
