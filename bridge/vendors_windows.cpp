#include "vendors.hpp"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace nq::bridge {
namespace {

constexpr char const* key_name = "SOFTWARE\\Khronos\\OpenCL\\Vendors";

} // namespace

char const* const vendor_entry = "value";
char const* const vendor_remedy = ": the driver of a graphics card brings it";

std::string vendor_setting() { return std::string("HKEY_LOCAL_MACHINE\\") + key_name; }

std::vector<vendor> list_vendors(std::string const& setting) {
    std::vector<vendor> vendors;
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, key_name, 0, KEY_READ, &key) != ERROR_SUCCESS) {
        return vendors;
    }
    std::string name(32767, '\0'); // the longest name of a value, in characters
    for (DWORD i = 0;; ++i) {
        auto length = static_cast<DWORD>(name.size());
        DWORD type = 0;
        DWORD is_off = 1;
        DWORD size = sizeof is_off;
        LSTATUS const status =
            RegEnumValueA(key, i, name.data(), &length, nullptr, &type, reinterpret_cast<BYTE*>(&is_off), &size);
        if (status == ERROR_NO_MORE_ITEMS) {
            break;
        }
        if (status == ERROR_SUCCESS && type == REG_DWORD && is_off == 0) {
            vendors.push_back({setting, name.substr(0, length)});
        } else if (status != ERROR_SUCCESS && status != ERROR_MORE_DATA) {
            break;
        }
    }
    RegCloseKey(key);
    return vendors;
}

} // namespace nq::bridge
