#include "measure.hpp"
#include "operations.hpp"

#include <vorn/mero/opencl_1_0.hpp>

#include <algorithm>
#include <memory>

namespace bench {
namespace {

namespace mero_1_0 = vorn::mero::opencl_1_0;

// The device of another version's fixture, with the objects of OpenCL 1.0 that a task needs.
struct task_fixture {
    explicit task_fixture(mero_1_0::device const& device)
        : context(mero_1_0::create_context({}, std::vector{device}, nullptr, nullptr)),
          queue(context.create_command_queue(device, false, false)),
          program(context.create_program_from_source("kernel void nothing() {}")), kernel(build()) {}

    mero_1_0::kernel build() {
        program.build({}, "", nullptr, nullptr);
        return program.create_kernel("nothing");
    }

    mero_1_0::context context;
    mero_1_0::command_queue queue;
    mero_1_0::program program;
    mero_1_0::kernel kernel;
};

} // namespace

void compare_tasks(fixture const& on) {
    auto const devices = mero_1_0::get_all_devices();
    auto const same = std::ranges::find(devices, mero::raw::get_raw_device_id(on.device),
                                        [](auto const& device) { return mero_1_0::raw::get_raw_device_id(device); });
    auto const tasks = std::make_shared<task_fixture>(*same);
    auto const queue = reinterpret_cast<cl_command_queue>(mero_1_0::raw::get_raw_command_queue(tasks->queue));
    auto const kernel = reinterpret_cast<cl_kernel>(mero_1_0::raw::get_raw_kernel(tasks->kernel));
    compare(
        "task_kernel", [=] { c_api().clEnqueueTask(queue, kernel, 0, nullptr, nullptr); },
        [=] { tasks->queue.enqueue_command_without_event(mero_1_0::task_kernel(tasks->kernel)); },
        [=] { tasks->queue.finish(); });
}

} // namespace bench
