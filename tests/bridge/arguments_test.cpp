// Each command calls its function, with each field of the block as the argument of its name, and keeps what it returns.

#include "bridge/call_handle.hpp"
#include "bridge/functions.hpp"

#include <nq/describe.hpp>

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <string>
#include <tuple>
#include <vector>

namespace {

using word = std::uint64_t;

struct call {
    std::string function;
    std::vector<word> arguments{}; // zero-extended
    bool operator==(call const&) const = default;
};
std::vector<call> calls;
cl_int answer = CL_SUCCESS;
int answered = 0;

template <class Argument>
word word_of(Argument argument) {
    if constexpr (std::is_pointer_v<Argument>) {
        return reinterpret_cast<std::uintptr_t>(argument);
    } else {
        return std::make_unsigned_t<Argument>(argument);
    }
}

} // namespace

/// Notes its arguments.
template <class Result, class... Parameters>
Result opencl_function(char const* name, Parameters... arguments) {
    calls.push_back({name, {word_of(arguments)...}});
    if constexpr (std::is_pointer_v<Result>) {
        auto const last = std::get<sizeof...(arguments) - 1>(std::tuple(arguments...));
        if constexpr (std::is_same_v<decltype(last), cl_int* const>) {
            calls.back().arguments.pop_back();
            *last = answer;
        }
        return reinterpret_cast<Result>(&answered);
    } else {
        return static_cast<Result>(answer);
    }
}

namespace {

/// The names of the parameters of each function, as OpenCL's header has them.
std::map<std::string, std::vector<std::string>> read_header() {
    std::ifstream stream(CL_HEADER);
    std::string text{std::istreambuf_iterator<char>(stream), {}};
    text = std::regex_replace(text, std::regex(R"(\(CL_CALLBACK \*\s*(\w+)\)\s*\([^)]*\))"), " $1");
    std::map<std::string, std::vector<std::string>> functions;
    std::regex const function(R"(CL_API_CALL\s+(\w+)\(([^)]*)\))");
    std::regex const name(R"((\w+)(\[\])?\s*(,|$))");
    for (std::sregex_iterator found(text.begin(), text.end(), function), end; found != end; ++found) {
        std::string const list = (*found)[2];
        for (std::sregex_iterator each(list.begin(), list.end(), name); each != end; ++each) {
            functions[(*found)[1]].push_back((*each)[1]);
        }
    }
    return functions;
}

/// Pointers to lists without a null, and small numbers for what counts them.
word value_of(std::size_t nth, std::size_t size) {
    static std::vector<word> const memory(1024, 1);
    return size == sizeof(word) ? reinterpret_cast<std::uintptr_t>(&memory.at(nth * 32)) : nth + 1;
}

/// Fields whose parameters have another name in one place of OpenCL's header.
std::map<std::string, std::string> const other_names{{"arg_index", "arg_indx"}, {"map_flags", "flags"}};

struct command {
    nq::capability version;
    std::uint32_t id;
    nq::description const& block;
};

/// Performs a command, all of whose fields differ, and compares what is called and what is returned.
void perform(command const& which, nq_call_handle const& handle, std::vector<std::string> const& parameters,
             std::string const& function) {
    alignas(8) std::array<char, 256> memory{};
    std::map<std::string, word> fields{{"platform", reinterpret_cast<std::uintptr_t>(handle.owner->id)}};
    for (nq::field const& each : which.block) {
        if (each.offset != which.block.status && each.offset != which.block.result) {
            word const value = fields[each.name] = value_of(fields.size(), each.size);
            if (other_names.contains(each.name)) {
                fields[other_names.at(each.name)] = value;
            }
            std::memcpy(memory.data() + each.offset, &value, each.size);
        }
    }
    std::vector<call> expected{{function}};
    for (std::string const& name : parameters) {
        if (name != "errcode_ret") {
            ASSERT_TRUE(fields.contains(name)) << name;
            expected[0].arguments.push_back(fields[name]);
        }
    }
    word result = reinterpret_cast<std::uintptr_t>(&answered);
    if (function == "clLinkProgram" && answer != CL_SUCCESS) {
        expected.push_back({"clReleaseProgram", {result}});
    }
    calls.clear();
    EXPECT_EQ(nq::bridge::commands_of(which.version)[which.id - 1](handle, which.id - 1, memory.data()),
              nq::result::success);
    EXPECT_EQ(calls, expected);
    if (which.block.status != nq::absent) {
        EXPECT_EQ(static_cast<cl_int>(nq::read_field(memory.data(), which.block.status, 4)), answer);
        result = answer == CL_SUCCESS ? result : 0;
    }
    if (which.block.result != nq::absent) {
        EXPECT_EQ(nq::read_field(memory.data(), which.block.result), result);
    }
}

TEST(arguments, reach_the_function_of_their_block) {
    auto const parameters = read_header();
    nq::bridge::platform owner{};
    owner.cl = make_functions();
    owner.id = reinterpret_cast<cl_platform_id>(&owner);
    nq_call_handle const handle{1, nullptr, &owner, nullptr, 0};
    std::map<std::string, std::string> const others{
        {"clUnloadCompiler", "clUnloadPlatformCompiler"}, // which loaders pass on
        {"call_handle_device", ""},
        {"clGetExtensionFunctionAddress", ""},
        {"clGetExtensionFunctionAddressForPlatform", ""}};
    for (std::uint64_t version = 1; version <= nq::bridge::version_count; ++version) {
        for (std::uint32_t id = 1; nq::describe(nq::capability{version}, id) != nullptr; ++id) {
            nq::description const& block = *nq::describe(nq::capability{version}, id);
            std::string const function = others.contains(block.name) ? others.at(block.name) : block.name;
            for (cl_int const next : {CL_SUCCESS, CL_OUT_OF_RESOURCES}) {
                SCOPED_TRACE(std::string(block.name) + " of version " + std::to_string(version));
                answer = next;
                if (!function.empty()) {
                    perform({nq::capability{version}, id, block}, handle, parameters.at(function), function);
                }
            }
        }
    }
}

} // namespace
