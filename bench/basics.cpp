#include "measure.hpp"
#include "operations.hpp"

#include <benchmark/benchmark.h>

namespace bench {

void compare_basics(fixture& on) {
    auto const nothing = [] {};
    compare(
        "device_info/cl_uint",
        [&, device = on.raw_device()] {
            std::size_t size = 0;
            cl_uint units = 0;
            c_api().clGetDeviceInfo(device, CL_DEVICE_MAX_COMPUTE_UNITS, 0, nullptr, &size);
            c_api().clGetDeviceInfo(device, CL_DEVICE_MAX_COMPUTE_UNITS, sizeof units, &units, &size);
            benchmark::DoNotOptimize(units);
        },
        [&] { benchmark::DoNotOptimize(on.device.max_compute_units()); }, nothing);
    compare(
        "set_argument/buffer",
        [&, kernel = on.raw_kernel(), memory = on.raw(on.a)] {
            c_api().clSetKernelArg(kernel, 0, sizeof memory, &memory);
        },
        [&] { on.kernel.set_argument(0, on.a); }, nothing);
    compare(
        "handle/copy_and_destroy",
        [&, context = on.raw_context()] {
            c_api().clRetainContext(context);
            c_api().clReleaseContext(context);
        },
        [&] {
            mero::context const copy = on.context;
            benchmark::DoNotOptimize(&copy);
        },
        nothing);
    compare(
        "marker/event",
        [&, queue = on.raw_queue()] {
            cl_event event = nullptr;
            c_api().clEnqueueMarkerWithWaitList(queue, 0, nullptr, &event);
            c_api().clReleaseEvent(event);
        },
        [&] { on.queue.enqueue_marker(0, nullptr); }, [&] { on.queue.finish(); });
}

} // namespace bench
