#include "lookup.hpp"

#include "discovery.hpp"
#include "loader.hpp"

#include <algorithm>
#include <string_view>

namespace nq::bridge {
namespace {

// A loader returns its own functions even if the implementation's slot behind them is null.
bool forwards_to_nothing(platform const& where, char const* name, void const* address) noexcept {
    auto const entries = entry_points();
    auto const entry = std::find_if(entries.begin(), entries.end(),
                                    [name](entry_point const& each) { return std::string_view(each.name) == name; });
    return entry != entries.end() && address == slot(loaded(), entry->slot) && !reaches(where, *entry);
}

void* ask_platform(platform const& where, cl_platform_id id, char const* name) {
    functions const& library = loaded();
    if (where.version >= 102 && library.clGetExtensionFunctionAddressForPlatform != nullptr) {
        return library.clGetExtensionFunctionAddressForPlatform(id, name);
    }
    return library.clGetExtensionFunctionAddress != nullptr ? library.clGetExtensionFunctionAddress(name) : nullptr;
}

// A loader has functions of its own, such as the one that says who made it. What it finds by a vendor's suffix may be
// another platform's.
void* ask_library(char const* name) {
    auto* const ask = loaded().clGetExtensionFunctionAddress;
    void* const address = ask != nullptr ? ask(name) : nullptr;
    return address != nullptr && is_in_library(address) ? address : nullptr;
}

} // namespace

void* extension_function(platform const& where, char const* name) {
    if (name == nullptr) {
        return nullptr;
    }
    void* const found = ask_platform(where, where.id, name);
    void* const address = found != nullptr ? found : ask_library(name);
    return address != nullptr && forwards_to_nothing(where, name, address) ? nullptr : address;
}

void* extension_function_for_platform(platform const& caller, cl_platform_id id, char const* name) {
    if (id == nullptr || name == nullptr) {
        return nullptr;
    }
    machine const* const found = discover();
    platform const* const listed = found != nullptr ? found->find(id) : nullptr;
    platform const& where = listed != nullptr ? *listed : caller;
    void* const address = ask_platform(where, id, name);
    return address != nullptr && forwards_to_nothing(where, name, address) ? nullptr : address;
}

} // namespace nq::bridge
