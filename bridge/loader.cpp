#include "loader.hpp"

#include "platform.hpp"
#include "system.hpp"

#include <algorithm>
#include <array>

namespace nq::bridge {

functions library_functions{};

namespace {

bool exports_opencl(void* library) noexcept {
    constexpr std::array needed{"clGetPlatformIDs", "clGetPlatformInfo", "clGetDeviceIDs", "clGetDeviceInfo"};
    return std::all_of(needed.begin(), needed.end(),
                       [library](char const* name) { return exported(library, name) != nullptr; });
}

// A libOpenCL.so.1 that stands before libnq would lead back here; it knows the one behind it. One that stands behind a
// tool does not lead back.
void* behind(void* library) noexcept {
    void* const ask = exported(library, "nq_opencl_behind");
    bool const leads_back = ask != nullptr && object_of(ask) == object_of(exported(library, "clGetPlatformIDs"));
    return leads_back ? reinterpret_cast<void* (*)()>(ask)() : library;
}

// A tool that watches OpenCL is preloaded: its functions have OpenCL's names in the global scope. Part of a second
// library's own calls would be bound to them, and crash. Functions of the program itself do not count, nor do those of
// a plugin's private libraries.
void* find_in_global_scope() noexcept {
    void* const scope = global_scope();
    bool const has_opencl =
        scope != nullptr && exports_opencl(scope) && !is_in_program(exported(scope, "clGetPlatformIDs"));
    return has_opencl ? behind(scope) : nullptr;
}

void take_exports(void* library) noexcept {
    for (entry_point const& entry : entry_points()) {
        slot(library_functions, entry.slot) = exported(library, entry.name);
    }
}

using list_function = decltype(functions::clGetPlatformIDs);

// An implementation made for ICD loaders alone may export nothing but a function that returns this one.
list_function find_list_function(void* library) noexcept {
    auto const address_of = reinterpret_cast<decltype(functions::clGetExtensionFunctionAddress)>(
        exported(library, "clGetExtensionFunctionAddress"));
    return address_of != nullptr ? reinterpret_cast<list_function>(address_of("clIcdGetPlatformIDsKHR")) : nullptr;
}

// The other functions are in the dispatch table of its first platform.
void take_dispatch_table(list_function list) {
    cl_platform_id first = nullptr;
    if (list(1, &first, nullptr) != CL_SUCCESS || first == nullptr || dispatch_table(first) == nullptr) {
        return; // there may be a platform next time
    }
    functions const& table = *dispatch_table(first);
    version_number const version = parse_version(info_text(table.clGetPlatformInfo, first, CL_PLATFORM_VERSION));
    for (entry_point const& entry : entry_points()) {
        slot(library_functions, entry.slot) = entry.since <= version ? slot(table, entry.slot) : nullptr;
    }
    library_functions.clGetPlatformIDs = list;
}

std::string load_named(char const* name) {
    void* const loaded_first = load_library(name, binding::at_once);
    if (loaded_first == nullptr) {
        return load_failure(name);
    }
    void* const library = behind(loaded_first);
    if (library == nullptr) {
        return std::string(name) + " leads back to libnq, and there is no other";
    }
    if (exports_opencl(library)) {
        take_exports(library);
    } else if (auto* const list = find_list_function(library); list != nullptr) {
        take_dispatch_table(list);
    } else {
        unload_library(library);
        return name + std::string(" is no OpenCL loader or implementation: it has neither clGetPlatformIDs nor "
                                  "clIcdGetPlatformIDsKHR");
    }
    return {};
}

} // namespace

std::string load() {
    if (library_functions.clGetPlatformIDs != nullptr) {
        return {};
    }
    if (char const* const name = trusted_environment("NQ_BRIDGE_OPENCL"); name != nullptr && *name != '\0') {
        return load_named(name);
    }
    if (void* const found = find_in_global_scope(); found != nullptr) {
        take_exports(found);
        return {};
    }
    return load_named(default_library);
}

bool is_in_library(void* function) noexcept {
    return object_of(function) == object_of(reinterpret_cast<void*>(library_functions.clGetPlatformInfo));
}

functions const* dispatch_table(cl_platform_id object) noexcept {
    return *reinterpret_cast<functions const* const*>(object);
}

} // namespace nq::bridge
