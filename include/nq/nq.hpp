#pragma once

// The functions of libnq, which every libnq exports under these names. Each `int` is one of `nq::result` or a value of
// libnq's own; the last argument, where there is one, is always null. None of them throws. All may be called by any
// number of threads at once, but that a call handle must not be closed while it is used.
//
// The listings are asked twice: with a capacity of 0 and null for the number, then for the elements. Each answer writes
// the number of all elements, whatever the capacity; it may have changed in between.
//
//     std::uint64_t count = 0;
//     nq_get_root_devices(0, nullptr, &count, nullptr);
//     std::vector<nq::device> devices(count);
//     nq_get_root_devices(devices.size(), devices.data(), &count, nullptr);

#include <nq/types.hpp>

#include <cstdint>

extern "C" {

/// The version of the wire that this libnq speaks; anything but `nq::version` is not to be called further.
std::uint64_t nq_version();

/// Writes up to `capacity` root devices and the number of all of them. A machine without any is no failure.
int nq_get_root_devices(std::uint64_t capacity, nq::device* devices, std::uint64_t* count, void* reserved);

/// Writes up to `capacity` nodes of a root device that offer a capability, and the number of all of them, 0 for a
/// capability that the device or libnq does not know.
int nq_find_capability_nodes(nq::device device, nq::capability capability, std::uint64_t capacity,
                             nq::capability_node* nodes, std::uint64_t* count, void* reserved);

/// Opens a capability node and writes its call handle. Each opening must be closed with `nq_close_call_handle`.
/// Openings of one node may give the same call handle; it is closed when the last of them is closed.
int nq_create_call_handle(nq::capability_node node, nq_call_handle** handle, void* reserved);

/// Closes one opening of a call handle, after the last call made through that opening; `nq::call_handle` does so. Null
/// is allowed.
void nq_close_call_handle(nq_call_handle* handle);

/// Performs the entry point that a command id names in the numbering of the handle's OpenCL version (`nq::command_id`),
/// on the argument block that goes with it: reads its inputs and writes its results. Returns whether the call could be
/// made at all; what OpenCL said is in the block. Blocks as long as the entry point does.
int nq_call_capability(nq_call_handle* handle, std::uint32_t command_id, void* block, void* reserved);

} // extern "C"
