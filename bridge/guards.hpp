#pragma once

// Calls that end or hang the process in some implementation because an argument is null or missing. The bridge does not
// make them but returns the error code of the implementations that check. Everything else goes through unchanged:
// OpenCL itself handles arguments that are there but wrong.
//
// Seen with PoCL 3.1, rusticl of Mesa 22.3, Oclgrind 21.10 and Intel's CPU runtime 2026.2. Each row names those that
// crash, unless it says something else. The guards below apply to every implementation, since those that survive give
// the same answer; guards for single implementations are in guards.cpp.

#include "entry_points.hpp"

#include <nq/blocks.hpp>

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace nq::bridge {

template <class Element>
[[gnu::noinline]] bool is_or_holds_null(Element const* list, std::uint64_t count) noexcept {
    return list == nullptr || std::find(list, list + count, nullptr) != list + count;
}

/// Whether a list with a count is null or has a null entry.
template <class Element>
bool incomplete(Element const* list, std::uint64_t count) noexcept {
    return count != 0 && is_or_holds_null(list, count);
}

/// Whether a list that is not null has a null entry.
template <class Element>
bool holds_null(Element const* list, std::uint64_t count) noexcept {
    return list != nullptr && incomplete(list, count);
}

template <class... Pointers>
bool any_null(Pointers... pointers) noexcept {
    return ((pointers == nullptr) || ...);
}

template <class Block>
cl_int missing_pointer(Block const&) noexcept {
    return CL_SUCCESS;
}

// A null list of events, or a null event: Oclgrind, also in the wait lists of commands.
inline cl_int missing_event(_nq_cl_event* const* list, std::uint32_t count) noexcept {
    if (count != 0 && list == nullptr) {
        return CL_INVALID_VALUE;
    }
    return incomplete(list, count) ? CL_INVALID_EVENT : CL_SUCCESS;
}
inline cl_int missing_pointer(block::clWaitForEvents const& b) noexcept {
    return missing_event(b.event_list, b.num_events);
}
inline cl_int missing_pointer(block::clEnqueueWaitForEvents const& b) noexcept {
    return missing_event(b.event_list, b.num_events);
}

// A null kernel. PoCL, Oclgrind.
inline cl_int missing_pointer(block::clEnqueueNDRangeKernel const& b) noexcept {
    return b.kernel == nullptr ? CL_INVALID_KERNEL : CL_SUCCESS;
}
inline cl_int missing_pointer(block::clEnqueueTask const& b) noexcept {
    return b.kernel == nullptr ? CL_INVALID_KERNEL : CL_SUCCESS;
}

// A null place for a memory object among the arguments. PoCL (aborts), Oclgrind, Intel.
inline cl_int missing_pointer(block::clEnqueueNativeKernel const& b) noexcept {
    return incomplete(b.args_mem_loc, b.num_mem_objects) ? CL_INVALID_VALUE : CL_SUCCESS;
}

// A null origin or region: Oclgrind; of images: Oclgrind and Intel. A null second memory object: PoCL.
template <class... Pointers>
cl_int missing_in_rectangle(bool memory_objects, Pointers... pointers) noexcept {
    return !memory_objects ? CL_INVALID_MEM_OBJECT : any_null(pointers...) ? CL_INVALID_VALUE : CL_SUCCESS;
}
inline cl_int missing_pointer(block::clEnqueueReadBufferRect const& b) noexcept {
    return missing_in_rectangle(b.buffer != nullptr, b.buffer_origin, b.host_origin, b.region);
}
inline cl_int missing_pointer(block::clEnqueueWriteBufferRect const& b) noexcept {
    return missing_in_rectangle(b.buffer != nullptr, b.buffer_origin, b.host_origin, b.region);
}
inline cl_int missing_pointer(block::clEnqueueCopyBufferRect const& b) noexcept {
    return missing_in_rectangle(!any_null(b.src_buffer, b.dst_buffer), b.src_origin, b.dst_origin, b.region);
}
inline cl_int missing_pointer(block::clEnqueueReadImage const& b) noexcept {
    return missing_in_rectangle(b.image != nullptr, b.origin, b.region);
}
inline cl_int missing_pointer(block::clEnqueueWriteImage const& b) noexcept {
    return missing_in_rectangle(b.image != nullptr, b.origin, b.region);
}
inline cl_int missing_pointer(block::clEnqueueFillImage const& b) noexcept {
    return missing_in_rectangle(b.image != nullptr, b.origin, b.region);
}
inline cl_int missing_pointer(block::clEnqueueMapImage const& b) noexcept {
    return missing_in_rectangle(b.image != nullptr, b.origin, b.region);
}
inline cl_int missing_pointer(block::clEnqueueCopyImage const& b) noexcept {
    return missing_in_rectangle(!any_null(b.src_image, b.dst_image), b.src_origin, b.dst_origin, b.region);
}
inline cl_int missing_pointer(block::clEnqueueCopyImageToBuffer const& b) noexcept {
    return missing_in_rectangle(!any_null(b.src_image, b.dst_buffer), b.src_origin, b.region);
}
inline cl_int missing_pointer(block::clEnqueueCopyBufferToImage const& b) noexcept {
    return missing_in_rectangle(!any_null(b.src_buffer, b.dst_image), b.dst_origin, b.region);
}

// A null pattern. PoCL.
inline cl_int missing_pointer(block::clEnqueueSVMMemFill const& b) noexcept {
    return b.pattern == nullptr ? CL_INVALID_VALUE : CL_SUCCESS;
}

// No strings: PoCL. A null string: Oclgrind.
inline cl_int missing_pointer(block::clCreateProgramWithSource const& b) noexcept {
    return incomplete(b.strings, b.count) ? CL_INVALID_VALUE : CL_SUCCESS;
}

// No binaries: PoCL. A null binary: Oclgrind.
inline cl_int missing_pointer(block::clCreateProgramWithBinary const& b) noexcept {
    return incomplete(b.binaries, b.num_devices) ? CL_INVALID_VALUE : CL_SUCCESS;
}

// A null device in a list. PoCL.
inline cl_int missing_pointer(block::clCreateProgramWithBuiltInKernels const& b) noexcept {
    return holds_null(b.device_list, b.num_devices) ? CL_INVALID_DEVICE : CL_SUCCESS;
}
inline cl_int missing_pointer(block::clBuildProgram const& b) noexcept {
    return holds_null(b.device_list, b.num_devices) ? CL_INVALID_DEVICE : CL_SUCCESS;
}

// No headers, a null header: PoCL, Oclgrind.
inline cl_int missing_pointer(block::clCompileProgram const& b) noexcept {
    if (holds_null(b.device_list, b.num_devices)) {
        return CL_INVALID_DEVICE;
    }
    if (b.num_input_headers == 0) {
        return CL_SUCCESS;
    }
    if (b.input_headers == nullptr || incomplete(b.header_include_names, b.num_input_headers)) {
        return CL_INVALID_VALUE;
    }
    return incomplete(b.input_headers, b.num_input_headers) ? CL_INVALID_PROGRAM : CL_SUCCESS;
}

// No programs: Oclgrind. A null program: PoCL, Oclgrind.
inline cl_int missing_pointer(block::clLinkProgram const& b) noexcept {
    if (holds_null(b.device_list, b.num_devices)) {
        return CL_INVALID_DEVICE;
    }
    if (b.num_input_programs != 0 && b.input_programs == nullptr) {
        return CL_INVALID_VALUE;
    }
    return incomplete(b.input_programs, b.num_input_programs) ? CL_INVALID_PROGRAM : CL_SUCCESS;
}

/// The error code if the block must not reach an implementation, else CL_SUCCESS.
template <class Block>
cl_int missing_argument(Block const& b) noexcept {
    if constexpr (requires { b.event_wait_list; }) {
        if (incomplete(b.event_wait_list, b.num_events_in_wait_list)) [[unlikely]] {
            return CL_INVALID_EVENT_WAIT_LIST;
        }
    }
    return missing_pointer(b);
}

/// The error code of ICD loaders for a null object of this type as the first argument; CL_SUCCESS if it may be null. A
/// null platform is a loader's default platform.
template <class First>
inline constexpr cl_int code_for_null = CL_SUCCESS;
template <>
inline constexpr cl_int code_for_null<_nq_cl_device_id*> = CL_INVALID_DEVICE;
template <>
inline constexpr cl_int code_for_null<_nq_cl_context*> = CL_INVALID_CONTEXT;
template <>
inline constexpr cl_int code_for_null<_nq_cl_command_queue*> = CL_INVALID_COMMAND_QUEUE;
template <>
inline constexpr cl_int code_for_null<_nq_cl_mem*> = CL_INVALID_MEM_OBJECT;
template <>
inline constexpr cl_int code_for_null<_nq_cl_sampler*> = CL_INVALID_SAMPLER;
template <>
inline constexpr cl_int code_for_null<_nq_cl_program*> = CL_INVALID_PROGRAM;
template <>
inline constexpr cl_int code_for_null<_nq_cl_kernel*> = CL_INVALID_KERNEL;
template <>
inline constexpr cl_int code_for_null<_nq_cl_event*> = CL_INVALID_EVENT;

/// Replaces the functions that need a guard or a better reply on one implementation, and removes those that only seem
/// to work.
void install_guards(std::string_view platform_name, functions& cl) noexcept;

/// Whether a device works in a child that was forked after its platform had listed it.
bool device_survives_fork(std::string_view platform_name, cl_device_id device);

} // namespace nq::bridge
