#include "scripted/state.hpp"

#include <algorithm>

// The functions of libnq.

namespace {

using scripted::answering_scope;
using scripted::discovery_call;
using scripted::libnq;

struct locked {
    answering_scope scope;
    libnq& self = libnq::instance();
    libnq::state& state = self.internals();
    std::lock_guard<std::recursive_mutex> lock{state.mutex};
};

void remember(locked& nq, discovery_call const& made, void const* reserved) {
    nq.state.discovery_calls.push_back(made);
    if (reserved != nullptr) {
        nq.state.fault(made.function + " with a last argument other than null");
    }
}

template <class Element>
int answer(scripted::listing<Element> const& listing, std::uint64_t capacity, Element* array, std::uint64_t* count) {
    std::size_t const phase = array == nullptr ? 0 : 1;
    std::copy_n(listing.elements.begin(), array == nullptr ? 0 : std::min(capacity, listing.elements.size()), array);
    *count = listing.counts[phase].value_or(listing.elements.size());
    return listing.results[phase];
}

} // namespace

extern "C" {

SCRIPTED_EXPORT std::uint64_t nq_version() {
    locked nq;
    remember(nq, {.function = "nq_version"}, nullptr);
    return nq.self.version;
}

SCRIPTED_EXPORT int nq_get_root_devices(std::uint64_t capacity, nq::device* devices, std::uint64_t* count,
                                        void* reserved) {
    locked nq;
    remember(nq, {.function = "nq_get_root_devices", .capacity = capacity, .has_array = devices != nullptr}, reserved);
    return answer(nq.self.roots, capacity, devices, count);
}

SCRIPTED_EXPORT int nq_find_capability_nodes(nq::device device, nq::capability capability, std::uint64_t capacity,
                                             nq::capability_node* nodes, std::uint64_t* count, void* reserved) {
    locked nq;
    remember(nq,
             {.function = "nq_find_capability_nodes",
              .device = device,
              .capability = capability,
              .capacity = capacity,
              .has_array = nodes != nullptr},
             reserved);
    auto const found = nq.self.nodes.find({device, capability});
    return answer(found != nq.self.nodes.end() ? found->second : scripted::listing<nq::capability_node>(), capacity,
                  nodes, count);
}

SCRIPTED_EXPORT int nq_create_call_handle(nq::capability_node node, nq_call_handle** handle, void* reserved) {
    locked nq;
    remember(nq, {.function = "nq_create_call_handle", .node = node}, reserved);
    if (auto& failing = nq.state.failing_open; failing && --failing->second == 0) {
        int const result = failing->first;
        failing.reset();
        return result;
    }
    *handle = nq.state.open(node);
    return nq::result::success;
}

SCRIPTED_EXPORT void nq_close_call_handle(nq_call_handle* handle) {
    locked nq;
    if (!std::exchange(handle->open, false)) {
        nq.state.fault("a call handle closed twice");
    }
    nq.state.open_handles.erase(handle);
}

SCRIPTED_EXPORT int nq_call_capability(nq_call_handle* handle, std::uint32_t command_id, void* block, void* reserved) {
    locked nq;
    if (reserved != nullptr) {
        nq.state.fault("nq_call_capability with a last argument other than null");
    }
    return perform(nq.self, nq.state, handle, command_id, block);
}

} // extern "C"
