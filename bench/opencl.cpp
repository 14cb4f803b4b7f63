#include "opencl.hpp"

#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>

namespace bench {
namespace {

mero::program build(mero::context& context) {
    auto program = context.create_program_from_source("kernel void nothing(global uchar* memory) {}");
    program.build({}, "", nullptr, nullptr);
    return program;
}

} // namespace

void* find(char const* name) {
    char const* const chosen = std::getenv("NQ_BRIDGE_OPENCL");
    static void* const loader = dlopen(chosen != nullptr ? chosen : "libOpenCL.so.1", RTLD_NOW | RTLD_LOCAL);
    void* const function = loader != nullptr ? dlsym(loader, name) : nullptr;
    if (function == nullptr) {
        std::fprintf(stderr, "The OpenCL loader has no %s.\n", name);
        std::exit(EXIT_FAILURE);
    }
    return function;
}

c_functions const& c_api() {
    static c_functions const functions;
    return functions;
}

fixture::fixture(mero::device const& on)
    : device(on), context(mero::create_context({}, {on}, nullptr, nullptr)),
      queue(context.create_host_command_queue(on, false, false)), program(build(context)),
      kernel(program.create_kernel("nothing")), a(context.create_buffer(mero::mem_flags::read_write, size, nullptr)),
      b(context.create_buffer(mero::mem_flags::read_write, size, nullptr)), host(size) {
    kernel.set_argument(0, a);
}

} // namespace bench
