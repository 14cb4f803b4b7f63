#include "lookup.hpp"

#include "discovery.hpp"
#include "loader.hpp"

#include <algorithm>
#include <string_view>

namespace nq::bridge {
namespace {

// The loader returns its own functions even if the implementation's slot behind them is null.
bool leads_nowhere(platform const& where, char const* name, void const* address) noexcept {
    auto const entries = entry_points();
    auto const entry =
        std::ranges::find_if(entries, [name](entry_point const& each) { return std::string_view(each.name) == name; });
    return entry != entries.end() && address == slot(loaded(), entry->slot) && !reaches(where, *entry);
}

} // namespace

void* extension_function(platform const& caller, cl_platform_id id, char const* name) {
    if (id == nullptr || name == nullptr) {
        return nullptr;
    }
    machine const* const found = discover();
    platform const* const listed = found != nullptr ? found->find(id) : nullptr;
    platform const& where = listed != nullptr ? *listed : caller;
    functions const& loader = loaded();
    void* address = nullptr;
    if (where.version >= 102 && loader.clGetExtensionFunctionAddressForPlatform != nullptr) {
        address = loader.clGetExtensionFunctionAddressForPlatform(id, name);
    } else if (loader.clGetExtensionFunctionAddress != nullptr) {
        address = loader.clGetExtensionFunctionAddress(name);
    }
    return address != nullptr && leads_nowhere(where, name, address) ? nullptr : address;
}

} // namespace nq::bridge
