// host PLUGIN: a program that has functions with OpenCL's names itself, which nobody is to call. Prints how many
// devices the plugin finds.

#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>

#pragma GCC visibility push(default)
extern "C" {
void clGetPlatformIDs() { std::abort(); }
void clGetPlatformInfo() { std::abort(); }
void clGetDeviceIDs() { std::abort(); }
void clGetDeviceInfo() { std::abort(); }
}
#pragma GCC visibility pop

int main(int, char** arguments) {
    void* const plugin = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
    void* const function = plugin != nullptr ? dlsym(plugin, "count_devices") : nullptr;
    if (function == nullptr) {
        std::puts(dlerror());
        return 1;
    }
    std::printf("devices=%d\n", reinterpret_cast<int (*)()>(function)());
}
