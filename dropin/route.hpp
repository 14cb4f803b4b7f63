#pragma once

// Which call handle a call goes through.

#include "../bridge/entry_points.hpp"

#include <nq/commands.hpp>

#include <array>
#include <cstddef>
#include <cstdint>

namespace nq::dropin {

inline constexpr std::size_t version_count = 6;

/// The call handles of an implementation. All its objects begin with the address of its table of functions.
struct route {
    void const* table;
    std::array<nq_call_handle*, version_count> handles; ///< by version; null if its devices do not offer it
    bool is_3_0;                                        ///< or newer
};

/// The route of an OpenCL object, the first one for null. Null if the object's implementation has no device that libnq
/// knows.
route const* find_route(void const* object) noexcept;

/// Whether this is a child that the process forked after it has found its devices.
bool is_forked() noexcept;

/// The ids of a block's command by version, 0 if the version lacks it.
template <class Block>
inline constexpr std::array<std::uint32_t, version_count> command_ids{
    commands<capability::opencl_1_0>::id_of<Block>(), commands<capability::opencl_1_1>::id_of<Block>(),
    commands<capability::opencl_1_2>::id_of<Block>(), commands<capability::opencl_2_0>::id_of<Block>(),
    commands<capability::opencl_2_1>::id_of<Block>(), commands<capability::opencl_2_2>::id_of<Block>()};

template <class Parameter>
inline constexpr bool is_object = false;
template <>
inline constexpr bool is_object<cl_platform_id> = true;
template <>
inline constexpr bool is_object<cl_device_id> = true;
template <>
inline constexpr bool is_object<cl_context> = true;
template <>
inline constexpr bool is_object<cl_command_queue> = true;
template <>
inline constexpr bool is_object<cl_mem> = true;
template <>
inline constexpr bool is_object<cl_sampler> = true;
template <>
inline constexpr bool is_object<cl_program> = true;
template <>
inline constexpr bool is_object<cl_kernel> = true;
template <>
inline constexpr bool is_object<cl_event> = true;

inline void const* platform_in(cl_context_properties const* properties) noexcept {
    for (auto const* each = properties; each != nullptr && *each != 0; each += 2) {
        if (*each == CL_CONTEXT_PLATFORM) {
            return reinterpret_cast<void const*>(each[1]);
        }
    }
    return nullptr;
}

/// The object among the arguments by which a loader finds the implementation.
template <class Object, class... Others>
requires is_object<Object>
void const* deciding_object(Object first, Others...) noexcept { return first; }

// clCreateContext
template <class... Others>
void const* deciding_object(cl_context_properties const* properties, cl_uint count, cl_device_id const* devices,
                            Others...) noexcept {
    return count != 0 && devices != nullptr ? static_cast<void const*>(devices[0]) : platform_in(properties);
}

// clCreateContextFromType
template <class... Others>
void const* deciding_object(cl_context_properties const* properties, cl_device_type, Others...) noexcept {
    return platform_in(properties);
}

// clWaitForEvents
inline void const* deciding_object(cl_uint count, cl_event const* events) noexcept {
    return count != 0 && events != nullptr ? events[0] : nullptr;
}

} // namespace nq::dropin
