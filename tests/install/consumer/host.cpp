// Loads, uses and unloads a plugin: host PLUGIN TIMES
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>

int main(int, char** arguments) {
    for (int left = std::atoi(arguments[2]); left != 0; --left) {
        void* const plugin = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
        void* const use = plugin != nullptr ? dlsym(plugin, "use_library") : nullptr;
        if (use == nullptr) {
            std::fprintf(stderr, "%s\n", dlerror());
            return 1;
        }
        reinterpret_cast<void (*)()>(use)();
        if (dlclose(plugin) != 0 || dlopen(arguments[1], RTLD_NOW | RTLD_NOLOAD) != nullptr) {
            std::fprintf(stderr, "the plugin stays loaded\n");
            return 1;
        }
    }
}
