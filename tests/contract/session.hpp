#pragma once

// One opened call handle and the calls that a test makes through it.

#include "values.hpp"

#include <nq/commands.hpp>
#include <nq/nq.hpp>

#include <gtest/gtest.h>

#include <bitset>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

namespace contract {

template <class Block>
std::string name_of() {
    std::string const text = __PRETTY_FUNCTION__;
    std::size_t const begin = text.rfind("::", text.find_first_of("];", text.find("Block = "))) + 2;
    return text.substr(begin, text.find_first_of("];", begin) - begin);
}

/// What a call came to: its status or error code; for a call without one, whether it gave a result.
template <class Block>
std::int32_t code_of(Block const& block) {
    if constexpr (requires { block.status; }) {
        return block.status;
    } else if constexpr (requires { block.error_code; }) {
        return block.error_code;
    } else if constexpr (requires { block.result; }) {
        return block.result != nullptr ? success : invalid_operation;
    } else {
        return success;
    }
}

/// The code that a platform answers for an entry point that does not work there; `success` for one that does.
std::int32_t expected_code(std::string const& platform, std::string const& entry_point);

/// The nodes that offer a version, of all devices.
std::vector<nq::capability_node> list_nodes(nq::capability version);

nq_call_handle* open(nq::capability_node node);

/// "opencl_1_2" and so on.
char const* text_of(nq::capability version);

template <class Action>
void for_each_version(Action action) {
    using enum nq::capability;
    action.template operator()<opencl_1_0>();
    action.template operator()<opencl_1_1>();
    action.template operator()<opencl_1_2>();
    action.template operator()<opencl_2_0>();
    action.template operator()<opencl_2_1>();
    action.template operator()<opencl_2_2>();
}

/// Whether there is memory at an address.
bool is_mapped(std::uintptr_t address);

/// What the tests of a platform are named: the short name of one that they know, else its own in lower case.
std::string short_name(std::string const& platform);

template <nq::capability Version>
class session {
public:
    static constexpr nq::capability version = Version;

    explicit session(nq::capability_node node) : handle_(open(node)) {
        device = call(nq::block::call_handle_device{}).result;
        get(nq::block::clGetDeviceInfo{device}, device_platform, platform);
        name = short_name(text(nq::block::clGetPlatformInfo{platform}, platform_name));
    }
    session(session const&) = delete;
    session& operator=(session const&) = delete;
    ~session() { nq_close_call_handle(handle_); }

    /// Performs an entry point, whatever its outcome. All outputs are spoiled before.
    template <class Block>
    Block call(Block block) {
        constexpr std::uint32_t id = nq::command_id<Version, Block>;
        if (nulling) {
            null_each_pointer(block);
        }
        spoil(block);
        EXPECT_EQ(nq_call_capability(handle_, id, &block, nullptr), 0) << name_of<Block>();
        performed.set(id);
        return block;
    }

    /// Performs an entry point that must succeed.
    template <class Block>
    Block ok(Block block) {
        block = call(block);
        EXPECT_EQ(code_of(block), success) << name_of<Block>();
        return block;
    }

    template <class Block>
    void refused(Block block, std::int32_t code) {
        block = call(block);
        EXPECT_EQ(code_of(block), code) << name_of<Block>();
        if constexpr (requires { block.result; }) {
            EXPECT_EQ(block.result, nullptr) << name_of<Block>();
        }
    }

    /// Performs an entry point that a platform may lack; whether it worked is known for every platform.
    template <class Block>
    bool feature(Block& block) {
        block = call(block);
        std::int32_t const expected = expected_code(name, name_of<Block>());
        EXPECT_EQ(code_of(block), expected) << name_of<Block>();
        return code_of(block) == success;
    }

    /// Reads one value and checks its size.
    template <class Block, class Value>
    void get(Block query, std::uint32_t parameter, Value& value) {
        std::size_t size = 0;
        query.param_name = parameter;
        query.param_value_size = sizeof value;
        query.param_value = &value;
        query.param_value_size_ret = &size;
        ok(query);
        EXPECT_EQ(size, sizeof value) << name_of<Block>() << " " << parameter;
    }

    template <class Value, class Block>
    Value info(Block query, std::uint32_t parameter) {
        Value value{};
        get(query, parameter, value);
        return value;
    }

    template <class Block>
    std::string text(Block query, std::uint32_t parameter) {
        std::size_t size = 0;
        query.param_name = parameter;
        query.param_value_size_ret = &size;
        ok(query);
        std::string value(size, '\0');
        query.param_value_size = size;
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

    _nq_cl_device_id* device = nullptr;
    _nq_cl_platform_id* platform = nullptr;
    std::string name;
    _nq_cl_context* context = nullptr;
    _nq_cl_command_queue* queue = nullptr;
    std::bitset<128> performed;
    bool nulling = false; // makes each call also with every pointer of its block nulled in turn

private:
    template <class Block>
    static void spoil(Block& block) {
        if constexpr (requires { block.status; }) {
            block.status = 0x5A5A5A5A;
        }
        if constexpr (requires { block.error_code; }) {
            block.error_code = 0x5A5A5A5A;
        }
        if constexpr (requires { block.result; }) {
            std::memset(&block.result, 0x5A, sizeof block.result);
        }
    }

    template <class Block>
    static std::size_t offset_of_code(Block const& block) {
        auto const* const begin = reinterpret_cast<char const*>(&block);
        if constexpr (requires { block.status; }) {
            return static_cast<std::size_t>(reinterpret_cast<char const*>(&block.status) - begin);
        } else if constexpr (requires { block.error_code; }) {
            return static_cast<std::size_t>(reinterpret_cast<char const*>(&block.error_code) - begin);
        } else {
            return sizeof block;
        }
    }

    template <class Block>
    void null_each_pointer(Block const& block) {
        constexpr std::uint32_t id = nq::command_id<Version, Block>;
        // The memory must not be freed twice, and PoCL aborts where a program made from a binary is built twice.
        if (std::is_same_v<Block, nq::block::clEnqueueSVMFree> || std::is_same_v<Block, nq::block::clBuildProgram>) {
            return;
        }
        std::size_t const code = offset_of_code(block) / sizeof(void*) * sizeof(void*);
        for (std::size_t offset = 0; offset < sizeof block; offset += sizeof(void*)) {
            Block copy = block;
            std::uintptr_t word = 0;
            auto* const place = reinterpret_cast<unsigned char*>(&copy) + offset;
            std::memcpy(&word, place, sizeof word);
            if (offset == code || !is_mapped(word)) {
                continue; // no pointer, but numbers, flags or padding
            }
            std::memset(place, 0, sizeof word);
            std::printf("%s %s %s without the pointer at %zu\n", name.c_str(), text_of(Version),
                        name_of<Block>().c_str(), offset);
            std::fflush(stdout);
            if (nq_call_capability(handle_, id, &copy, nullptr) != 0) {
                std::abort();
            }
        }
    }

    nq_call_handle* handle_;
};

/// Where a function template over `session<Version>` is instantiated for the six versions.
#define CONTRACT_INSTANTIATE(function)                                                                                 \
    template void function(session<nq::capability::opencl_1_0>&);                                                      \
    template void function(session<nq::capability::opencl_1_1>&);                                                      \
    template void function(session<nq::capability::opencl_1_2>&);                                                      \
    template void function(session<nq::capability::opencl_2_0>&);                                                      \
    template void function(session<nq::capability::opencl_2_1>&);                                                      \
    template void function(session<nq::capability::opencl_2_2>&)

} // namespace contract
