#include "operations.hpp"

#if __has_include(<CL/opencl.hpp>)

#define CL_HPP_TARGET_OPENCL_VERSION 200
#define CL_HPP_MINIMUM_OPENCL_VERSION 200
#define CL_HPP_ENABLE_EXCEPTIONS
#include <CL/opencl.hpp>

namespace bench {
namespace {

struct objects {
    explicit objects(cl_device_id on) : device(on, true) {
        program.build("");
        kernel = cl::Kernel(program, "nothing");
        add = cl::Kernel(program, "add");
        set_arguments();
        kernel.setArg(0, a);
        for (cl::Event& event : events) {
            queue.enqueueMarkerWithWaitList(nullptr, &event);
        }
    }

    void set_arguments() {
        add.setArg(0, a);
        add.setArg(1, b);
        add.setArg(2, sum);
    }

    cl::Buffer make_buffer() const { return {context, CL_MEM_READ_WRITE, buffer_size}; }

    cl::Device device;
    cl::Context context{device};
    cl::CommandQueue queue{context, device};
    cl::Buffer a = make_buffer();
    cl::Buffer b = make_buffer();
    cl::Buffer sum = make_buffer();
    cl::Program program{context, program_text};
    cl::Kernel kernel;
    cl::Kernel add;
    std::array<cl::Event, 4> events;
};

void add_basics(rows<objects> add) {
    add("set argument", [](objects& on) { on.kernel.setArg(0, on.a); });
    add("scalar query", [](objects& on) { keep(on.device.getInfo<CL_DEVICE_MAX_COMPUTE_UNITS>()); });
    add("string query", [](objects& on) { keep(on.device.getInfo<CL_DEVICE_NAME>()); });
    add("object list", [](objects& on) { keep(on.context.getInfo<CL_CONTEXT_DEVICES>()); });
    add("create and release buffer", [](objects& on) { keep(on.make_buffer()); });
    add("create and release user event", [](objects& on) { keep(cl::UserEvent(on.context)); });
    add("copy and destroy buffer", [](objects& on) {
        cl::Buffer const copy = on.a;
        keep(copy);
    });
    add("copy and destroy device", [](objects& on) {
        cl::Device const copy = on.device;
        keep(copy);
    });
    add("move there and back", [](objects& on) {
        cl::Buffer moved = std::move(on.a);
        keep(moved);
        on.a = std::move(moved);
    });
    add("throw and catch", [](objects& on) {
        try {
            on.kernel.setArg(invalid_index, on.a);
        } catch (cl::Error const& failed) {
            keep(failed);
        }
    });
}

void add_usual_work(rows<objects> add) {
    add("set 3 arguments", [](objects& on) { on.set_arguments(); });
    add("set 3 arguments, launch, event", [](objects& on) {
        on.set_arguments();
        cl::Event event;
        on.queue.enqueueNDRangeKernel(on.add, cl::NullRange, work_items, group_size, nullptr, &event);
        keep(event);
    });
    add("write_buffer, blocking",
        [](objects& on) { on.queue.enqueueWriteBuffer(on.a, CL_TRUE, 0, bytes, host.data()); });
    add("read_buffer, blocking", [](objects& on) { on.queue.enqueueReadBuffer(on.a, CL_TRUE, 0, bytes, host.data()); });
}

void add_commands(rows<objects> add) {
    add("launch", [](objects& on) { on.queue.enqueueNDRangeKernel(on.kernel, cl::NullRange, work_items, group_size); });
    add("launch, event", [](objects& on) {
        cl::Event event;
        on.queue.enqueueNDRangeKernel(on.kernel, cl::NullRange, work_items, group_size, nullptr, &event);
        keep(event);
    });
    add("marker", [](objects& on) {
        cl::Event event;
        on.queue.enqueueMarkerWithWaitList(nullptr, &event);
        keep(event);
    });
    add("marker with a list of 4", [](objects& on) {
        std::vector<cl::Event> const list{on.events[0], on.events[1], on.events[2], on.events[3]};
        cl::Event event;
        on.queue.enqueueMarkerWithWaitList(&list, &event);
        keep(event);
    });
    add("write_buffer", [](objects& on) { on.queue.enqueueWriteBuffer(on.a, CL_FALSE, 0, bytes, host.data()); });
    add("write_buffer, event", [](objects& on) {
        cl::Event event;
        on.queue.enqueueWriteBuffer(on.a, CL_FALSE, 0, bytes, host.data(), nullptr, &event);
        keep(event);
    });
    add("read_buffer", [](objects& on) { on.queue.enqueueReadBuffer(on.a, CL_FALSE, 0, bytes, host.data()); });
    add("copy_buffer", [](objects& on) { on.queue.enqueueCopyBuffer(on.a, on.b, 0, 0, bytes); });
    add("map_buffer, unmap_mem_object", [](objects& on) {
        void* const mapped = on.queue.enqueueMapBuffer(on.a, CL_FALSE, CL_MAP_READ, 0, bytes);
        on.queue.enqueueUnmapMemObject(on.a, mapped);
    });
    add("fill_buffer", [](objects& on) { on.queue.enqueueFillBuffer(on.a, pattern, 0, bytes); });
}

} // namespace

contender khronos_bindings(cl_device_id device) {
    auto const on = std::make_shared<objects>(device);
    contender made{"Khronos C++ bindings", {}, {}, [on] { on->queue.finish(); }};
    add_basics({made, on});
    add_usual_work({made, on});
    add_commands({made, on});
    return made;
}

} // namespace bench

#else

bench::contender bench::khronos_bindings(cl_device_id) {
    return {"Khronos C++ bindings", "CL/opencl.hpp was not there at compile time (opencl-clhpp-headers)", {}, {}};
}

#endif
