#include "loader.hpp"

#include <cstdlib>
#include <dlfcn.h>

namespace nq::bridge {
namespace {

functions symbols{};
void* library = nullptr;

} // namespace

std::string loader_name() {
    char const* const name = std::getenv("NQ_BRIDGE_OPENCL");
    return name != nullptr && *name != '\0' ? name : "libOpenCL.so.1";
}

std::string load() {
    if (library != nullptr) {
        return {};
    }
    // If the loader's symbols are in the global scope, Oclgrind binds its own entry points to them and loops forever.
    void* const opened = dlopen(loader_name().c_str(), RTLD_NOW | RTLD_LOCAL);
    if (opened == nullptr) {
        return dlerror();
    }
    if (dlsym(opened, "clGetPlatformIDs") == nullptr) {
        dlclose(opened);
        return loader_name() + " is no OpenCL loader: it has no clGetPlatformIDs";
    }
    library = opened;
    for (entry_point const& entry : entry_points()) {
        slot(symbols, entry.slot) = dlsym(library, entry.name);
    }
    return {};
}

functions const& loaded() noexcept { return symbols; }

void* find_symbol(char const* name) noexcept { return library != nullptr ? dlsym(library, name) : nullptr; }

} // namespace nq::bridge
