#include "system.hpp"

#include <cstdlib>
#include <system_error>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace nq::bridge {

char const* trusted_environment(char const* name) noexcept { return std::getenv(name); }

char const* const default_library = "OpenCL.dll";
char const* const loader_remedy = "the driver of a graphics card brings it";

void* load_library(char const* name, binding) noexcept { return LoadLibraryA(name); }

std::string load_failure(char const* name) {
    return std::string(name) + ": " + std::system_category().message(static_cast<int>(GetLastError()));
}

void unload_library(void* library) noexcept { FreeLibrary(static_cast<HMODULE>(library)); }

void* exported(void* library, char const* name) noexcept {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void* global_scope() noexcept { return nullptr; } // each library is looked into by its name

void* object_of(void* function) noexcept {
    HMODULE object = nullptr;
    DWORD const flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    return GetModuleHandleExA(flags, static_cast<LPCSTR>(function), &object) != 0 ? object : nullptr;
}

bool is_in_program(void* function) noexcept { return object_of(function) == GetModuleHandleA(nullptr); }

void watch_forks(void (*)(), void (*)(), void (*)()) noexcept {} // there are none

} // namespace nq::bridge
