#include "internal/system.hpp"

#include <cstdlib>
#include <stdexcept>
#include <system_error>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace vorn::mero::internal {
namespace {

/// The folder of the library with a separator, or nothing.
std::wstring own_folder() {
    static char const somewhere = 0;
    HMODULE here = nullptr;
    wchar_t path[MAX_PATH];
    DWORD const flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (GetModuleHandleExW(flags, reinterpret_cast<LPCWSTR>(&somewhere), &here) == 0) {
        return {};
    }
    DWORD const length = GetModuleFileNameW(here, path, MAX_PATH);
    std::wstring const whole(path, length < MAX_PATH ? length : 0);
    return whole.substr(0, whole.find_last_of(L"\\/") + 1);
}

} // namespace

char const* trusted_environment(char const* name) noexcept { return std::getenv(name); }

void* load_symbol(std::string const& library, char const* symbol) {
    std::wstring const name(library.begin(), library.end()); // ASCII
    HMODULE const beside = LoadLibraryW((own_folder() + name).c_str());
    HMODULE const loaded = beside != nullptr ? beside : LoadLibraryW(name.c_str());
    FARPROC const found = loaded != nullptr ? GetProcAddress(loaded, symbol) : nullptr;
    if (found == nullptr) {
        throw std::runtime_error(library + ": " + std::system_category().message(static_cast<int>(GetLastError())));
    }
    return reinterpret_cast<void*>(found);
}

bool program_uses_spdlog() noexcept { return false; } // the logger's library has a registry of its own

void watch_forks(void (*)(), void (*)(), void (*)()) noexcept {}

} // namespace vorn::mero::internal
