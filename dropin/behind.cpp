#include "behind.hpp"

#include "../bridge/system.hpp"

#include <nq/export.hpp>

#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace nq::dropin {
namespace {

constexpr char const* library_name = "libOpenCL.so.1";

// Null for what cannot be loaded, and for a drop-in. The dynamic linker knows a loaded library by its name, but not by
// a path to another file.
void* open(std::string const& file) {
    void* const library = bridge::load_library(file.c_str(), bridge::binding::at_once);
    if (library != nullptr && bridge::exported(library, "nq_opencl_behind") != nullptr) {
        bridge::unload_library(library);
        return nullptr;
    }
    return library;
}

bool exports_opencl(char const* file) {
    void* const library = dlopen(file, RTLD_LAZY | RTLD_LOCAL | RTLD_NOLOAD);
    bool const found = library != nullptr && bridge::exported(library, "clGetPlatformIDs") != nullptr;
    if (library != nullptr) {
        bridge::unload_library(library);
    }
    return found;
}

void* open_in(std::vector<std::string> const& files) {
    for (std::string const& each : files) {
        if (void* const library = open(each); library != nullptr) {
            return library;
        }
    }
    return nullptr;
}

// Some programs bring a loader of their own, under another name.
std::vector<std::string> loaded() {
    std::vector<std::string> files;
    auto const note = [](dl_phdr_info* each, std::size_t, void* list) {
        std::string_view const file = each->dlpi_name;
        if (file.substr(file.rfind('/') + 1).starts_with("libOpenCL")) {
            static_cast<std::vector<std::string>*>(list)->emplace_back(file);
        }
        return 0;
    };
    dl_iterate_phdr(note, &files);
    files.erase(std::remove_if(files.begin(), files.end(), [](auto& each) { return !exports_opencl(each.c_str()); }),
                files.end());
    return files;
}

std::vector<std::string> in_library_path() {
    char const* const path = bridge::trusted_environment("LD_LIBRARY_PATH");
    std::string folders = path != nullptr ? path : "";
    std::replace(folders.begin(), folders.end(), ';', ':'); // both are allowed
    std::istringstream stream(folders);
    std::vector<std::string> files;
    for (std::string folder; std::getline(stream, folder, ':');) {
        files.push_back((folder.empty() ? "." : folder) + "/" + library_name);
    }
    return files;
}

// The dynamic linker's list of the system's libraries, in the order in which it takes them. Whatever does not fit the
// format ends the list.
std::vector<std::string> in_cache() {
    struct entry {
        std::int32_t flags;
        std::uint32_t name; // from the head on
        std::uint32_t file;
        std::uint32_t unused[3];
    };
    constexpr std::string_view mark = "glibc-ld.so.cache1.1";
    constexpr std::size_t head_size = 48;
    std::ostringstream read;
    read << std::ifstream("/etc/ld.so.cache", std::ios::binary).rdbuf();
    std::string const text = read.str();
    std::size_t const at = text.find(mark);
    if (at == std::string::npos || text.size() - at < head_size) {
        return {};
    }
    std::string_view const cache = std::string_view(text).substr(at);
    auto const text_at = [&](std::uint32_t offset) {
        return offset < cache.size() ? std::string(cache.data() + offset) : std::string();
    };
    std::uint32_t count = 0;
    std::memcpy(&count, cache.data() + mark.size(), sizeof count);
    std::vector<std::string> files;
    for (std::size_t i = 0; i < count && head_size + (i + 1) * sizeof(entry) <= cache.size(); ++i) {
        entry each{};
        std::memcpy(&each, cache.data() + head_size + i * sizeof each, sizeof each);
        if (text_at(each.name) == library_name) {
            files.push_back(text_at(each.file));
        }
    }
    return files;
}

std::vector<std::string> in_default_folders() {
    Dl_info about{};
    void* self = nullptr;
    Dl_serinfo size{};
    if (dladdr1(reinterpret_cast<void*>(nq_opencl_behind), &about, &self, RTLD_DL_LINKMAP) == 0 ||
        dlinfo(self, RTLD_DI_SERINFOSIZE, &size) != 0) {
        return {};
    }
    std::vector<Dl_serinfo> memory(size.dls_size / sizeof size + 1);
    memory.front() = size;
    std::vector<std::string> files;
    if (dlinfo(self, RTLD_DI_SERINFO, memory.data()) == 0) {
        for (unsigned i = 0; i < memory.front().dls_cnt; ++i) {
            files.push_back(std::string(memory.front().dls_serpath[i].dls_name) + "/" + library_name);
        }
    }
    return files;
}

// As the dynamic linker looks for it, and as libnq does.
void* find() {
    char const* const name = bridge::trusted_environment("NQ_BRIDGE_OPENCL");
    if (name != nullptr && *name != '\0') {
        if (void* const library = open(name); library != nullptr) {
            return library;
        }
    }
    for (auto const& files : {loaded(), in_library_path(), in_cache(), in_default_folders()}) {
        if (void* const library = open_in(files); library != nullptr) {
            return library;
        }
    }
    return nullptr;
}

} // namespace

void* function_behind(char const* name) noexcept {
    void* const library = nq_opencl_behind();
    return library != nullptr ? bridge::exported(library, name) : nullptr;
}

} // namespace nq::dropin

// Two threads may look for it at once: both find the same.
NQ_EXPORT void* nq_opencl_behind() noexcept {
    static std::atomic<void*> known = nullptr;
    if (known == nullptr) {
        try {
            known = nq::dropin::find();
        } catch (...) { // out of memory; perhaps not the next time
            return nullptr;
        }
    }
    return known;
}
