#include "system.hpp"

#include <cstdlib>
#include <dlfcn.h>
#include <link.h>
#include <pthread.h>

namespace nq::bridge {

char const* trusted_environment(char const* name) noexcept { return secure_getenv(name); }

char const* const default_library = "libOpenCL.so.1";
char const* const loader_remedy = "on Debian: apt-get install ocl-icd-libopencl1";

// If a loader's symbols are in the global scope, Oclgrind binds its own entry points to them and loops forever.
void* load_library(char const* name, binding when) noexcept {
    return dlopen(name, RTLD_LOCAL | (when == binding::at_once ? RTLD_NOW : RTLD_LAZY));
}

std::string load_failure(char const* name) {
    char const* const reason = dlerror();
    return reason != nullptr ? reason : name;
}

void unload_library(void* library) noexcept { dlclose(library); }

void* exported(void* library, char const* name) noexcept { return dlsym(library, name); }

void* global_scope() noexcept { return dlopen(nullptr, RTLD_LAZY); }

void* object_of(void* function) noexcept {
    Dl_info info{};
    return dladdr(function, &info) != 0 ? info.dli_fbase : nullptr;
}

bool is_in_program(void* function) noexcept {
    Dl_info info{};
    void* map = nullptr;
    return dladdr1(function, &info, &map, RTLD_DL_LINKMAP) != 0 && static_cast<link_map*>(map)->l_prev == nullptr;
}

void watch_forks(void (*before)(), void (*after_in_parent)(), void (*after_in_child)()) noexcept {
    pthread_atfork(before, after_in_parent, after_in_child);
}

} // namespace nq::bridge
