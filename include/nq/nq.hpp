#pragma once

// The functions of libnq. Each `int` is one of `nq::result` or a value of libnq's own; the last argument, where there
// is one, is always null.

#include <nq/types.hpp>

#include <cstdint>

extern "C" {

/// The version of the wire that this libnq speaks.
std::uint64_t nq_version();

/// Writes up to `capacity` root devices and the number of all of them.
int nq_get_root_devices(std::uint64_t capacity, nq::device* devices, std::uint64_t* count, void* reserved);

/// Writes up to `capacity` nodes of a root device that offer a capability, and the number of all of them.
int nq_find_capability_nodes(nq::device device, nq::capability capability, std::uint64_t capacity,
                             nq::capability_node* nodes, std::uint64_t* count, void* reserved);

/// Opens a capability node; to be closed with `nq_close_call_handle`.
int nq_create_call_handle(nq::capability_node node, nq_call_handle** handle, void* reserved);

void nq_close_call_handle(nq_call_handle* handle);

/// Performs the entry point that a command id names in the numbering of the handle's OpenCL version.
int nq_call_capability(nq_call_handle* handle, std::uint32_t command_id, void* block, void* reserved);

} // extern "C"
