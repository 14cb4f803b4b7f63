#include "interposer.hpp"

#include "names.hpp"

#include <nq/commands.hpp>
#include <nq/export.hpp>
#include <nq/nq.hpp>

#include <CL/cl.h>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <map>
#include <mutex>
#include <set>
#include <vector>

namespace real {
namespace {

using place = std::size_t; // of a field in a block

constexpr place none = 0xFFFF;

struct command {
    std::string_view name;
    std::size_t size;
    place code = none; // the status or the error code
    place result = none;
    std::set<place> kept{};                   // pointers that functions of the program and kernels rely on
    std::map<place, std::int32_t> refusals{}; // what is answered when the pointer there is null
};

template <class Block>
command describe() {
    command made{names::name_of<Block>(), sizeof(Block)};
#define PLACE(found, field)                                                                                            \
    if constexpr (requires(Block b) { b.field; }) {                                                                    \
        found = offsetof(Block, field);                                                                                \
    }
#define KEPT(field)                                                                                                    \
    if constexpr (requires(Block b) { b.field; }) {                                                                    \
        made.kept.insert(offsetof(Block, field));                                                                      \
    }
#define REFUSED(field, answer)                                                                                         \
    if constexpr (requires(Block b) { b.field; }) {                                                                    \
        made.refusals[offsetof(Block, field)] = CL_INVALID_##answer;                                                   \
    }
    PLACE(made.code, status)
    PLACE(made.code, error_code)
    PLACE(made.result, result)
    KEPT(user_data)
    KEPT(args)
    KEPT(local_work_size)
    REFUSED(command_queue, COMMAND_QUEUE)
    REFUSED(context, CONTEXT)
    REFUSED(program, PROGRAM)
    REFUSED(kernel, KERNEL)
    REFUSED(source_kernel, KERNEL)
    REFUSED(sampler, SAMPLER)
    REFUSED(memobj, MEM_OBJECT)
    REFUSED(buffer, MEM_OBJECT)
    REFUSED(image, MEM_OBJECT)
    REFUSED(src_buffer, MEM_OBJECT)
    REFUSED(dst_buffer, MEM_OBJECT)
    REFUSED(src_image, MEM_OBJECT)
    REFUSED(dst_image, MEM_OBJECT)
    REFUSED(event_wait_list, EVENT_WAIT_LIST)
    REFUSED(event_list, VALUE)
    REFUSED(origin, VALUE)
    REFUSED(region, VALUE)
    REFUSED(src_origin, VALUE)
    REFUSED(dst_origin, VALUE)
    REFUSED(buffer_origin, VALUE)
    REFUSED(host_origin, VALUE)
    REFUSED(pattern, VALUE)
    REFUSED(args_mem_loc, VALUE)
    REFUSED(strings, VALUE)
    REFUSED(binaries, VALUE)
    REFUSED(input_headers, VALUE)
    REFUSED(header_include_names, VALUE)
    REFUSED(input_programs, VALUE)
#undef PLACE
#undef KEPT
#undef REFUSED
    return made;
}

template <class... Blocks>
std::vector<command> describe(nq::command_list<Blocks...>) {
    return {describe<Blocks>()...};
}

/// The commands of a version and those of them that were called.
struct version {
    std::vector<command> commands;
    std::set<std::uint32_t> called{};
};

std::mutex noting;
std::map<nq_call_handle*, nq::capability> opened;
std::map<nq::capability, version> versions{
    {nq::capability::opencl_1_0, {describe(nq::opencl_1_0_commands{})}},
    {nq::capability::opencl_1_1, {describe(nq::opencl_1_1_commands{})}},
    {nq::capability::opencl_1_2, {describe(nq::opencl_1_2_commands{})}},
    {nq::capability::opencl_2_0, {describe(nq::opencl_2_0_commands{})}},
    {nq::capability::opencl_2_1, {describe(nq::opencl_2_1_commands{})}},
    {nq::capability::opencl_2_2, {describe(nq::opencl_2_2_commands{})}},
};
bool nulling = false;
std::set<std::string> wrong;

template <class Function>
Function* behind(char const* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

template <class Word>
Word word_at(void const* block, place where) {
    Word word{};
    std::memcpy(&word, static_cast<char const*>(block) + where, sizeof word);
    return word;
}

/// Makes a call with its results spoiled before, and demands that they are written.
int call(command const& entry, nq_call_handle* handle, std::uint32_t id, void* block) {
    static auto* const next = behind<decltype(nq_call_capability)>("nq_call_capability");
    auto* const field = static_cast<char*>(block);
    if (entry.code != none) {
        std::memset(field + entry.code, 0x5A, sizeof(std::int32_t));
    }
    if (entry.result != none) {
        std::memset(field + entry.result, 0x5A, sizeof(void*));
    }
    int const made = next(handle, id, block, nullptr);
    if (made == nq::result::success) {
        auto const code = entry.code != none ? word_at<std::int32_t>(block, entry.code) : CL_SUCCESS;
        auto const result = entry.result != none ? word_at<std::uintptr_t>(block, entry.result) : 0;
        EXPECT_LE(code, 0) << entry.name;
        EXPECT_NE(result, 0x5A5A5A5A5A5A5A5A) << entry.name;
        EXPECT_TRUE(code == CL_SUCCESS || result == 0) << entry.name << " gives an object beside an error";
    }
    return made;
}

bool is_address(std::uintptr_t word) {
    static auto const page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    unsigned char resident = 0;
    return mincore(reinterpret_cast<void*>(word / page * page), 1, &resident) == 0;
}

void call_without_each_pointer(command const& entry, nq_call_handle* handle, std::uint32_t id, void const* block) {
    // memory must not be freed twice, and PoCL aborts where a program made from a binary is built twice
    bool const once = entry.name == "clEnqueueSVMFree" || entry.name == "clBuildProgram";
    for (place each = 0; !once && each + sizeof(void*) <= entry.size; each += sizeof(void*)) {
        bool const holds_code = each == entry.code / sizeof(void*) * sizeof(void*);
        if (holds_code || entry.kept.contains(each) || !is_address(word_at<std::uintptr_t>(block, each))) {
            continue;
        }
        alignas(8) std::array<char, 256> copy{};
        std::memcpy(copy.data(), block, entry.size);
        std::memset(&copy.at(each), 0, sizeof(void*));
        std::string const what = std::string(entry.name) + " without the pointer at " + std::to_string(each);
        std::puts(what.c_str());
        std::fflush(stdout);
        call(entry, handle, id, copy.data());
        auto const refusal = entry.refusals.find(each);
        auto const code = entry.code != none ? word_at<std::int32_t>(copy.data(), entry.code) : CL_SUCCESS;
        if (entry.code != none && refusal != entry.refusals.end() && code != refusal->second) {
            wrong.insert(what + " answers " + std::to_string(code));
        }
    }
}

} // namespace

void start_nulling() { nulling = true; }
bool is_nulling() { return nulling; }
std::set<std::string> const& wrong_answers() { return wrong; }

std::string never_called(nq::capability which) {
    auto const& [commands, called] = versions.at(which);
    std::string names;
    for (std::uint32_t id = 1; id <= commands.size(); ++id) {
        names += called.contains(id) ? "" : std::string(commands[id - 1].name) + " ";
    }
    return names;
}

} // namespace real

using namespace real;

// The library and the scenarios call these two instead of libnq's own.
extern "C" {

NQ_EXPORT int nq_create_call_handle(nq::capability_node node, nq_call_handle** handle, void* reserved) {
    static auto* const next = behind<decltype(nq_create_call_handle)>("nq_create_call_handle");
    int const made = next(node, handle, reserved);
    if (made == nq::result::success) {
        std::lock_guard const lock(noting);
        opened[*handle] = nq::capability{node.second};
    }
    return made;
}

NQ_EXPORT int nq_call_capability(nq_call_handle* handle, std::uint32_t command_id, void* block, void*) {
    static command const unknown{};
    command const* entry = &unknown;
    if (std::lock_guard const lock(noting); block != nullptr && opened.contains(handle)) {
        auto& [commands, called] = versions.at(opened.at(handle));
        if (command_id - 1 < commands.size()) {
            called.insert(command_id);
            entry = &commands[command_id - 1];
        }
    }
    if (nulling) {
        call_without_each_pointer(*entry, handle, command_id, block);
    }
    return call(*entry, handle, command_id, block);
}

} // extern "C"
