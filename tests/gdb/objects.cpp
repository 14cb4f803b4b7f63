// Stops where a debugger looks at objects.

#include <vorn/mero/opencl.hpp>

#include <cstdio>
#include <utility>

namespace {

template <class... Objects>
[[gnu::noinline]] void look(Objects const&...) {
    asm volatile("");
}

} // namespace

int main() {
    namespace cl = vorn::mero::opencl_1_2;
    namespace cl2 = vorn::mero::opencl_2_0;
    if (cl2::get_all_devices().empty()) {
        std::puts("there is no device");
        return 1;
    }
    cl::device device = cl::get_all_devices().at(0);
    cl::platform platform = device.get_platform();
    cl::context context = cl::create_context({}, {device}, nullptr, nullptr);
    cl::command_queue queue = context.create_command_queue(device, false, false);
    cl::buffer moved = context.create_buffer(cl::mem_flags::read_write, 64, nullptr);
    cl::buffer buffer = std::move(moved);
    cl::memory_object& base = buffer;
    cl::buffer same = buffer;
    cl2::device newer = cl2::get_all_devices().at(0);
    look(device, platform, context, queue, moved, buffer, base, same, newer); // NOLINT(bugprone-use-after-move)
}
