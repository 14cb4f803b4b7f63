#include "internal/system.hpp"

#include <cstdlib>
#include <dlfcn.h>
#include <memory>
#include <pthread.h>
#include <stdexcept>

namespace spdlog {
class logger;
[[gnu::weak]] std::shared_ptr<logger> get(std::string const& name); // null unless the program itself uses spdlog
} // namespace spdlog

namespace vorn::mero::internal {
namespace {

/// The folder of the library with a slash, or nothing.
std::string own_folder() {
    static char const somewhere = 0;
    Dl_info here{};
    if (::dladdr(&somewhere, &here) == 0 || here.dli_fname == nullptr || here.dli_fname[0] != '/') {
        return {};
    }
    std::string const path = here.dli_fname;
    return path.substr(0, path.rfind('/') + 1);
}

} // namespace

char const* trusted_environment(char const* name) noexcept { return ::secure_getenv(name); }

void* load_symbol(std::string const& library, char const* symbol) {
    // beside the library first: a tool that intercepts dlopen hides who calls it, and with that the run path
    int const flags = RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE;
    void* const beside = ::dlopen((own_folder() + library).c_str(), flags);
    void* const loaded = beside != nullptr ? beside : ::dlopen(library.c_str(), flags);
    void* const found = loaded != nullptr ? ::dlsym(loaded, symbol) : nullptr;
    if (found == nullptr) {
        throw std::runtime_error(::dlerror());
    }
    return found;
}

bool program_uses_spdlog() noexcept { return &spdlog::get != nullptr; }

void watch_forks(void (*before)(), void (*after_in_parent)(), void (*after_in_child)()) noexcept {
    ::pthread_atfork(before, after_in_parent, after_in_child);
}

} // namespace vorn::mero::internal
