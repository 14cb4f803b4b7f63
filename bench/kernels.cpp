#include "measure.hpp"
#include "operations.hpp"

#include <array>

namespace bench {
namespace {

constexpr std::array<std::size_t, 3> origin{0, 0, 0};
constexpr std::array<std::size_t, 3> one{1, 1, 1};

void do_nothing(void*) {}

void launch(cl_command_queue queue, cl_kernel kernel, cl_event* event) {
    c_api().clEnqueueNDRangeKernel(queue, kernel, 1, origin.data(), one.data(), one.data(), 0, nullptr, event);
}

} // namespace

void compare_kernel_commands(fixture& on) {
    std::function<void()> const finish = [&] { on.queue.finish(); };
    auto const queue = on.raw_queue();
    auto const kernel = on.raw_kernel();
    compare(
        "nd_range_kernel", [=] { launch(queue, kernel, nullptr); },
        [&] { on.queue.enqueue_command_without_event(mero::nd_range_kernel(on.kernel, 1, origin, one, one)); }, finish);
    compare(
        "nd_range_kernel/event",
        [=] {
            cl_event event = nullptr;
            launch(queue, kernel, &event);
            c_api().clReleaseEvent(event);
        },
        [&] { on.queue.enqueue_command(mero::nd_range_kernel(on.kernel, 1, origin, one, one)); }, finish);
    compare(
        "native_kernel",
        [=] { c_api().clEnqueueNativeKernel(queue, do_nothing, nullptr, 0, 0, nullptr, nullptr, 0, nullptr, nullptr); },
        [&] {
            on.queue.enqueue_command_without_event(mero::native_kernel(do_nothing, nullptr, 0, 0, nullptr, nullptr));
        },
        finish);
}

} // namespace bench
