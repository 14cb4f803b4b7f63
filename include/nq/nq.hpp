#pragma once

// The functions that every libnq exports. Each `int` is one of `nq::result` or libnq's own value. `reserved` is always
// null. None of them throws. All functions are thread-safe; do not close a call handle while another thread uses it.
//
// Call a listing twice: first with capacity 0 and null for the number of elements, then for the elements. Each call
// writes the number of all elements, whatever the capacity. It may change between the calls.
//
//     std::uint64_t count = 0;
//     nq_get_root_devices(0, nullptr, &count, nullptr);
//     std::vector<nq::device> devices(count);
//     nq_get_root_devices(devices.size(), devices.data(), &count, nullptr);

#include <nq/types.hpp>

#include <cstdint>

extern "C" {

/// The version of libnq. Unless it is `nq::version`, call nothing else.
std::uint64_t nq_version();

/// Writes at most `capacity` root devices, and the number of all. Having none is no failure.
int nq_get_root_devices(std::uint64_t capacity, nq::device* devices, std::uint64_t* count, void* reserved);

/// Writes at most `capacity` nodes of a root device that offer a capability, and the number of all. The number is 0 if
/// the device or libnq does not know the capability.
int nq_find_capability_nodes(nq::device device, nq::capability capability, std::uint64_t capacity,
                             nq::capability_node* nodes, std::uint64_t* count, void* reserved);

/// Opens a capability node and writes its call handle. The caller closes each opening with `nq_close_call_handle`. The
/// openings of a node may share one call handle, which is closed when the last of them is closed.
int nq_create_call_handle(nq::capability_node node, nq_call_handle** handle, void* reserved);

/// Closes one opening of a call handle, after the last call through that opening, as `nq::call_handle` does. Null is
/// allowed.
void nq_close_call_handle(nq_call_handle* handle);

/// Performs an OpenCL entry point: `command_id` names it in the handle's OpenCL version (`nq::command_id`), and `block`
/// is its argument block, with inputs and results. The return value only tells whether the call was made; OpenCL's
/// status is in the block. Blocks as long as the entry point does.
int nq_call_capability(nq_call_handle* handle, std::uint32_t command_id, void* block, void* reserved);

} // extern "C"
