#include "operations.hpp"

#if __has_include(<boost/compute/core.hpp>)

#include <boost/compute/core.hpp>

namespace bench {
namespace {

namespace compute = boost::compute;

struct objects {
    explicit objects(cl_device_id on) : device(on) {
        kernel.set_arg(0, a);
        add.set_args(a, b, sum);
        for (compute::event& event : events) {
            event = queue.enqueue_marker();
        }
    }

    compute::buffer make_buffer() const { return {context, buffer_size}; }

    compute::device device;
    compute::context context{device};
    compute::command_queue queue{context, device};
    compute::buffer a = make_buffer();
    compute::buffer b = make_buffer();
    compute::buffer sum = make_buffer();
    compute::program program = compute::program::build_with_source(program_text, context);
    compute::kernel kernel{program, "nothing"};
    compute::kernel add{program, "add"};
    std::array<compute::event, 4> events;
};

void add_basics(rows<objects> add) {
    add("set argument", [](objects& on) { on.kernel.set_arg(0, on.a); });
    add("scalar query", [](objects& on) { keep(on.device.get_info<CL_DEVICE_MAX_COMPUTE_UNITS>()); });
    add("string query", [](objects& on) { keep(on.device.name()); });
    add("object list", [](objects& on) { keep(on.context.get_devices()); });
    add("create and release buffer", [](objects& on) { keep(on.make_buffer()); });
    add("create and release user event", [](objects& on) { keep(compute::user_event(on.context)); });
    add("copy and destroy buffer", [](objects& on) {
        compute::buffer const copy = on.a;
        keep(copy);
    });
    add("copy and destroy device", [](objects& on) {
        compute::device const copy = on.device;
        keep(copy);
    });
    add("move there and back", [](objects& on) {
        compute::buffer moved = std::move(on.a);
        keep(moved);
        on.a = std::move(moved);
    });
    add("throw and catch", [](objects& on) {
        try {
            on.kernel.set_arg(invalid_index, on.a);
        } catch (compute::opencl_error const& failed) {
            keep(failed);
        }
    });
}

void add_usual_work(rows<objects> add) {
    add("set 3 arguments", [](objects& on) { on.add.set_args(on.a, on.b, on.sum); });
    add("set 3 arguments, launch, event", [](objects& on) {
        on.add.set_args(on.a, on.b, on.sum);
        keep(on.queue.enqueue_1d_range_kernel(on.add, 0, work_items, group_size));
    });
    add("write_buffer, blocking", [](objects& on) { on.queue.enqueue_write_buffer(on.a, 0, bytes, host.data()); });
    add("read_buffer, blocking", [](objects& on) { on.queue.enqueue_read_buffer(on.a, 0, bytes, host.data()); });
}

void add_commands(rows<objects> add) {
    add("launch, event", [](objects& on) { // there is no launch without one
        keep(on.queue.enqueue_1d_range_kernel(on.kernel, 0, work_items, group_size));
    });
    add("marker", [](objects& on) { keep(on.queue.enqueue_marker()); });
    add("marker with a list of 4", [](objects& on) {
        compute::wait_list const list{on.events[0], on.events[1], on.events[2], on.events[3]};
        keep(on.queue.enqueue_marker(list));
    });
    add("write_buffer, event",
        [](objects& on) { keep(on.queue.enqueue_write_buffer_async(on.a, 0, bytes, host.data())); });
    add("read_buffer, event",
        [](objects& on) { keep(on.queue.enqueue_read_buffer_async(on.a, 0, bytes, host.data())); });
}

} // namespace

contender boost_compute(cl_device_id device) {
    auto const on = std::make_shared<objects>(device);
    contender made{"Boost.Compute", {}, {}, [on] { on->queue.finish(); }};
    add_basics({made, on});
    add_usual_work({made, on});
    add_commands({made, on});
    return made;
}

} // namespace bench

#else

bench::contender bench::boost_compute(cl_device_id) {
    return {"Boost.Compute", "boost/compute/core.hpp was not there at compile time (libboost-dev)", {}, {}};
}

#endif
