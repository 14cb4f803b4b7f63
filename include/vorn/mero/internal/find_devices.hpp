#pragma once

// Discovery: the first objects of a program come from the capability nodes of libnq's root devices.

#include <nq/call_handle.hpp>
#include <vorn/mero/common/export.hpp>

#include <vector>

namespace vorn::mero::internal {

/// Throws `std::runtime_error` unless libnq has the version that the library needs, `nq::version`.
VORN_MERO_EXPORT void check_libnq_version();

/// The root devices of the machine, perhaps none. Opens nothing. Throws the `nq` exceptions.
[[nodiscard]] VORN_MERO_EXPORT std::vector<nq::device> root_devices();

/// The nodes of a root device that offer a capability, perhaps none. Throws the `nq` exceptions.
[[nodiscard]] VORN_MERO_EXPORT std::vector<nq::capability_node> capability_nodes(nq::device root,
                                                                                 nq::capability capability);

/// Opens a node. The last copy of the handle closes it; every object made through the handle holds a copy. Throws the
/// `nq` exceptions.
[[nodiscard]] VORN_MERO_EXPORT nq::call_handle open_call_handle(nq::capability_node node);

/// One `Device` for each node that offers the capability, in libnq's order. `factory(nq::call_handle const&)` makes it
/// from the node's call handle. Empty if there is no node.
///
///     auto const handles = vorn::mero::internal::find_devices<nq::call_handle>(
///         nq::capability::opencl_1_2, [](nq::call_handle const& handle) { return handle; });
///
/// Throws `std::runtime_error` if libnq has another version, the `nq` exceptions if it fails, and what the factory
/// throws; every call handle opened so far is then closed. Each call asks libnq again.
template <class Device, class Factory>
[[nodiscard]] std::vector<Device> find_devices(nq::capability capability, Factory factory) {
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
