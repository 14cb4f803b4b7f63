// Loads, uses and unloads a plugin: host PLUGIN TIMES early|late
// The last word says when the library loads spdlog: with itself or with the first thing logged.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <link.h>

static void require(bool condition, char const* otherwise) {
    if (!condition) {
        std::fprintf(stderr, "%s\n", otherwise);
        std::exit(1);
    }
}

static bool is_loaded(char const* library) {
    auto const compare = [](dl_phdr_info* info, std::size_t, void* name) {
        return std::strstr(info->dlpi_name, static_cast<char const*>(name)) != nullptr ? 1 : 0;
    };
    return dl_iterate_phdr(compare, const_cast<char*>(library)) != 0;
}

int main(int, char** arguments) {
    bool const early = std::strcmp(arguments[3], "early") == 0;
    int const times = std::atoi(arguments[2]);
    for (int time = 0; time < times; ++time) {
        void* const plugin = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
        require(plugin != nullptr, "the plugin cannot be loaded");
        require(time != 0 || is_loaded("spdlog") == early, "spdlog is loaded too early or too late");
        require(reinterpret_cast<bool (*)()>(dlsym(plugin, "use_library"))(),
                "a class of the library is not recognized");
        require(dlclose(plugin) == 0 && dlopen(arguments[1], RTLD_NOW | RTLD_NOLOAD) == nullptr,
                "the plugin stays loaded");
    }
}
