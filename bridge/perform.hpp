#pragma once

// `perform` for every argument block: calls the entry point of the block's name.

#include "call.hpp"
#include "call_handle.hpp"
#include "lookup.hpp"

#include <nq/blocks.hpp>

namespace nq::bridge {

#define STATUS(entry, ...)                                                                                             \
    inline void perform(nq_call_handle const& handle, block::entry& b) {                                               \
        invoke(b, handle.owner->cl.entry, __VA_ARGS__);                                                                \
    }
#define CREATE(entry, ...)                                                                                             \
    inline void perform(nq_call_handle const& handle, block::entry& b) {                                               \
        create(b, handle.owner->cl.entry, __VA_ARGS__);                                                                \
    }
#include "rows.inc"

inline void perform(nq_call_handle const& handle, block::clSVMAlloc& b) {
    auto* const allocate = handle.owner->cl.clSVMAlloc;
    bool const possible = allocate != nullptr && b.context != nullptr;
    b.result = possible ? allocate(argument{b.context}, b.flags, b.size, b.alignment) : nullptr;
}

inline void perform(nq_call_handle const& handle, block::clSVMFree& b) {
    if (auto* const release = handle.owner->cl.clSVMFree; release != nullptr && b.context != nullptr) {
        release(argument{b.context}, b.svm_pointer);
    }
}

// A failed link may return a program with the log, as rusticl and Intel's runtime do.
inline void perform(nq_call_handle const& handle, block::clLinkProgram& b) {
    functions const& cl = handle.owner->cl;
    auto* const left = create(b, cl.clLinkProgram, b.context, b.num_devices, b.device_list, b.options,
                              b.num_input_programs, b.input_programs, b.pfn_notify, b.user_data);
    if (left != nullptr) {
        cl.clReleaseProgram(left);
    }
}

// The loader's own clUnloadCompiler calls no implementation.
inline void perform(nq_call_handle const& handle, block::clUnloadCompiler& b) {
    auto* const unload = handle.owner->cl.clUnloadPlatformCompiler;
    b.status = unload != nullptr ? unload(handle.owner->id) : CL_SUCCESS;
}

inline void perform(nq_call_handle const& handle, block::call_handle_device& b) { b.result = argument{handle.device}; }

inline void perform(nq_call_handle const& handle, block::clGetExtensionFunctionAddress& b) {
    b.result = extension_function(*handle.owner, b.func_name);
}

inline void perform(nq_call_handle const& handle, block::clGetExtensionFunctionAddressForPlatform& b) {
    b.result = extension_function_for_platform(*handle.owner, argument{b.platform}, b.func_name);
}

} // namespace nq::bridge
