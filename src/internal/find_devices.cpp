#include <vorn/mero/internal/find_devices.hpp>

#include "internal/call.hpp"

#include <stdexcept>

namespace vorn::mero::internal {
namespace {

// Calls `list(capacity, array, &count)` twice, for the number and for the elements. If the second number is larger, the
// rest is not read; elements that the second call does not write stay zero.
template <class Element, class List>
std::vector<Element> read_listing(List list) {
    std::uint64_t count = 0;
    check_result(list(0, nullptr, &count));
    std::vector<Element> elements(count);
    if (count != 0) {
        check_result(list(elements.size(), elements.data(), &count));
        if (count < elements.size()) {
            elements.resize(count);
        }
    }
    return elements;
}

} // namespace

void check_libnq_version() {
    if (nq_version() != nq::version) {
        throw std::runtime_error("The libnq version detected is incompatible with this version of MERO.");
    }
}

std::vector<nq::device> root_devices() {
    return read_listing<nq::device>([](std::uint64_t capacity, nq::device* devices, std::uint64_t* count) {
        return nq_get_root_devices(capacity, devices, count, nullptr);
    });
}

std::vector<nq::capability_node> capability_nodes(nq::device root, nq::capability capability) {
    return read_listing<nq::capability_node>(
        [=](std::uint64_t capacity, nq::capability_node* nodes, std::uint64_t* count) {
            return nq_find_capability_nodes(root, capability, capacity, nodes, count, nullptr);
        });
}

nq::call_handle open_call_handle(nq::capability_node node) {
    nq_call_handle* handle = nullptr;
    check_result(nq_create_call_handle(node, &handle, nullptr));
    return {handle, nq_close_call_handle}; // closes the handle even if this throws std::bad_alloc
}

} // namespace vorn::mero::internal
