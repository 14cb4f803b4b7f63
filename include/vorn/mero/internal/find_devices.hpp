#pragma once

// How a program gets its first objects: from the capability nodes of every root device of libnq.

#include <nq/call_handle.hpp>
#include <vorn/mero/common/export.hpp>

#include <vector>

namespace vorn::mero::internal {

/// Throws `std::runtime_error` unless libnq has the one version that the library works with (`nq::version`).
VORN_MERO_EXPORT void check_libnq_version();

/// The root devices of the machine, maybe none; throws the `nq` exceptions. Opens nothing.
VORN_MERO_EXPORT std::vector<nq::device> root_devices();

/// The nodes of a root device that offer a capability, maybe none; throws the `nq` exceptions.
VORN_MERO_EXPORT std::vector<nq::capability_node> capability_nodes(nq::device root, nq::capability capability);

/// Opens a node; throws the `nq` exceptions. The last copy of the handle, which every object made through it holds one
/// of, closes the node.
VORN_MERO_EXPORT nq::call_handle open_call_handle(nq::capability_node node);

/// One `Device` for each node of each root device that offers the capability, in libnq's order, made by
/// `factory(nq::call_handle const&)` from a call handle of its own. Empty when there is none.
///
///     auto const handles = vorn::mero::internal::find_devices<nq::call_handle>(
///         nq::capability::opencl_1_2, [](nq::call_handle const& handle) { return handle; });
///
/// Throws `std::runtime_error` when libnq is of another version, the `nq` exceptions when it fails, and what the
/// factory throws; every call handle opened so far is then closed. Keeps no state: each call asks libnq again.
template <class Device, class Factory>
std::vector<Device> find_devices(nq::capability capability, Factory factory) {
    check_libnq_version();
    std::vector<Device> devices;
    for (nq::device const root : root_devices()) {
        for (nq::capability_node const node : capability_nodes(root, capability)) {
            nq::call_handle const handle = open_call_handle(node);
            devices.push_back(factory(handle));
        }
    }
    return devices;
}

} // namespace vorn::mero::internal
