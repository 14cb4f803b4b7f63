#include "operations.hpp"

#include <vorn/mero/common/error.hpp>
#include <vorn/mero/opencl_2_1.hpp>

#include <algorithm>
#include <optional>

namespace bench {
namespace {

namespace mero = vorn::mero::opencl_2_1;

mero::device same_device(cl_device_id device) {
    auto const devices = mero::get_all_devices();
    return *std::find_if(devices.begin(), devices.end(), [device](mero::device const& each) {
        return reinterpret_cast<cl_device_id>(mero::raw::get_raw_device_id(each)) == device;
    });
}

struct objects {
    explicit objects(cl_device_id on) : device(same_device(on)) {
        program.build({}, "", nullptr, nullptr);
        kernel.emplace(program.create_kernel("nothing"));
        add.emplace(program.create_kernel("add"));
        set_arguments();
        kernel->set_argument(0, a);
        for (int i = 0; i != 4; ++i) {
            events.push_back(queue.enqueue_marker(0, nullptr));
        }
    }

    void set_arguments() {
        add->set_argument(0, a);
        add->set_argument(1, b);
        add->set_argument(2, sum);
    }

    mero::buffer make_buffer() { return context.create_buffer(mero::mem_flags::read_write, buffer_size, nullptr); }
    mero::image_2d make_image() {
        return context.create_image_2d(mero::mem_flags::read_write,
                                       {mero::image_channel_order::rgba, mero::image_channel_type::unsigned_int8},
                                       image_side, image_side, 0, nullptr);
    }

    mero::device device;
    mero::context context = mero::create_context({}, {device}, nullptr, nullptr);
    mero::host_command_queue queue = context.create_host_command_queue(device, false, false);
    mero::buffer a = make_buffer();
    mero::buffer b = make_buffer();
    mero::buffer sum = make_buffer();
    mero::image_2d image = make_image();
    mero::image_2d second_image = make_image();
    void* memory = context.svm_allocate(mero::svm_mem_flags::read_write, 2 * bytes, 0);
    mero::program program = context.create_program_from_source(program_text);
    std::optional<mero::kernel> kernel;
    std::optional<mero::kernel> add;
    std::vector<mero::event> events;
    std::vector<mero::buffer> many;
};

void fail(objects& on, unsigned int index) {
    try {
        on.kernel->set_argument(index, on.a);
    } catch (vorn::mero::common::opencl_error const& failed) {
        keep(failed);
    }
}

void add_basics(rows<objects> add) {
    add("set argument", [](objects& on) { on.kernel->set_argument(0, on.a); });
    add("scalar query", [](objects& on) { keep(on.device.max_compute_units()); });
    add("string query", [](objects& on) { keep(on.device.name()); });
    add("object list", [](objects& on) { keep(on.context.get_devices()); });
    add("create and release buffer", [](objects& on) { keep(on.make_buffer()); });
    add("create and release user event", [](objects& on) { keep(on.context.create_user_event()); });
    add(
        "create and release buffer beside 100000", [](objects& on) { keep(on.make_buffer()); },
        [](objects& on) {
            while (on.many.size() != 100000) {
                on.many.push_back(on.make_buffer());
            }
        });
    add("copy and destroy buffer", [](objects& on) {
        mero::buffer const copy = on.a;
        keep(copy);
    });
    add("copy and destroy device", [](objects& on) {
        mero::device const copy = on.device;
        keep(copy);
    });
    add("move there and back", [](objects& on) {
        mero::buffer moved = std::move(on.a);
        keep(moved);
        on.a = std::move(moved);
    });
    add("throw and catch", [](objects& on) { fail(on, invalid_index); });
    add("throw and catch -1", [](objects& on) { fail(on, 1001); });
    add("throw and catch -72", [](objects& on) { fail(on, 1072); });
}

void add_usual_work(rows<objects> add) {
    add("set 3 arguments", [](objects& on) { on.set_arguments(); });
    add("set 3 arguments, launch, event", [](objects& on) {
        on.set_arguments();
        keep(on.queue.enqueue_command(
            mero::nd_range_kernel(*on.add, 1, {0, 0, 0}, {work_items, 1, 1}, {group_size, 1, 1})));
    });
    add("write_buffer, blocking", [](objects& on) {
        on.queue.enqueue_command_without_event(mero::write_buffer(on.a, true, 0, bytes, host.data()));
    });
    add("read_buffer, blocking", [](objects& on) {
        on.queue.enqueue_command_without_event(mero::read_buffer(on.a, true, 0, bytes, host.data()));
    });
}

void add_kernel_commands(rows<objects> add) {
    add("launch", [](objects& on) {
        on.queue.enqueue_command_without_event(
            mero::nd_range_kernel(*on.kernel, 1, {0, 0, 0}, {work_items, 1, 1}, {group_size, 1, 1}));
    });
    add("launch, event", [](objects& on) {
        keep(on.queue.enqueue_command(
            mero::nd_range_kernel(*on.kernel, 1, {0, 0, 0}, {work_items, 1, 1}, {group_size, 1, 1})));
    });
    add("native_kernel", [](objects& on) {
        on.queue.enqueue_command_without_event(mero::native_kernel([](void*) {}, nullptr, 0, 0, nullptr, nullptr));
    });
    add("marker", [](objects& on) { keep(on.queue.enqueue_marker(0, nullptr)); });
    add("marker with a list of 4", [](objects& on) {
        using mero::raw::get_raw_event;
        _nq_cl_event* const list[] = {get_raw_event(on.events[0]), get_raw_event(on.events[1]),
                                      get_raw_event(on.events[2]), get_raw_event(on.events[3])};
        keep(on.queue.enqueue_marker(4, list));
    });
}

void add_buffer_commands(rows<objects> add) {
    add("write_buffer", [](objects& on) {
        on.queue.enqueue_command_without_event(mero::write_buffer(on.a, false, 0, bytes, host.data()));
    });
    add("write_buffer, event",
        [](objects& on) { keep(on.queue.enqueue_command(mero::write_buffer(on.a, false, 0, bytes, host.data()))); });
    add("read_buffer", [](objects& on) {
        on.queue.enqueue_command_without_event(mero::read_buffer(on.a, false, 0, bytes, host.data()));
    });
    add("copy_buffer",
        [](objects& on) { on.queue.enqueue_command_without_event(mero::copy_buffer(on.a, on.b, 0, 0, bytes)); });
    add("map_buffer, unmap_mem_object", [](objects& on) {
        void* mapped = nullptr;
        on.queue.enqueue_command_without_event(mero::map_buffer(mapped, on.a, false, mero::map_flags::read, 0, bytes));
        on.queue.enqueue_command_without_event(mero::unmap_mem_object(on.a, mapped));
    });
    add("read_buffer_rect", [](objects& on) {
        on.queue.enqueue_command_without_event(
            mero::read_buffer_rect(on.a, false, origin, origin, box, 0, 0, 0, 0, host.data()));
    });
    add("write_buffer_rect", [](objects& on) {
        on.queue.enqueue_command_without_event(
            mero::write_buffer_rect(on.a, false, origin, origin, box, 0, 0, 0, 0, host.data()));
    });
    add("copy_buffer_rect", [](objects& on) {
        on.queue.enqueue_command_without_event(mero::copy_buffer_rect(on.a, on.b, origin, origin, box, 0, 0, 0, 0));
    });
    add("fill_buffer", [](objects& on) {
        on.queue.enqueue_command_without_event(
            mero::fill_buffer_base(on.a, &pattern, sizeof pattern, 0, bytes / sizeof pattern));
    });
    add("migrate_mem_objects", [](objects& on) {
        static mero::migrate_mem_objects const command({mero::raw::get_raw_memory_object(on.a)},
                                                       mero::migration_flags{});
        on.queue.enqueue_command_without_event(command);
    });
}

void add_image_commands(rows<objects> add) {
    add("read_image", [](objects& on) {
        on.queue.enqueue_command_without_event(mero::read_image(on.image, false, origin, box, 0, 0, host.data()));
    });
    add("write_image", [](objects& on) {
        on.queue.enqueue_command_without_event(mero::write_image(on.image, false, origin, box, 0, 0, host.data()));
    });
    add("map_image, unmap_mem_object", [](objects& on) {
        void* mapped = nullptr;
        std::size_t row = 0;
        std::size_t slice = 0;
        on.queue.enqueue_command_without_event(
            mero::map_image(mapped, on.image, false, mero::map_flags::read, origin, box, row, slice));
        on.queue.enqueue_command_without_event(mero::unmap_mem_object(on.image, mapped));
    });
    add("copy_image", [](objects& on) {
        on.queue.enqueue_command_without_event(mero::copy_image(on.image, on.second_image, origin, origin, box));
    });
    add("copy_image_to_buffer", [](objects& on) {
        on.queue.enqueue_command_without_event(mero::copy_image_to_buffer(on.image, on.a, origin, box, 0));
    });
    add("copy_buffer_to_image", [](objects& on) {
        on.queue.enqueue_command_without_event(mero::copy_buffer_to_image(on.a, on.image, 0, origin, box));
    });
    add("fill_image", [](objects& on) {
        constexpr std::array<cl_uint, 4> color{1, 2, 3, 4};
        on.queue.enqueue_command_without_event(mero::fill_image_base(on.image, color.data(), origin, box));
    });
}

void add_svm_commands(rows<objects> add) {
    add("svm_memcpy", [](objects& on) {
        on.queue.enqueue_command_without_event(mero::svm_memcpy(0, on.memory, host.data(), bytes));
    });
    add("fill_svm", [](objects& on) {
        on.queue.enqueue_command_without_event(
            mero::fill_svm_base(on.memory, &pattern, sizeof pattern, bytes / sizeof pattern));
    });
    add("svm_map, svm_unmap", [](objects& on) {
        on.queue.enqueue_command_without_event(mero::svm_map(false, mero::map_flags::read, on.memory, bytes));
        on.queue.enqueue_command_without_event(mero::svm_unmap(on.memory));
    });
    add("svm_migrate_mem", [](objects& on) {
        static mero::svm_migrate_mem const command({on.memory}, {0}, mero::migration_flags{});
        on.queue.enqueue_command_without_event(command);
    });
    add("svm_allocate, svm_free", [](objects& on) {
        void* const memory = on.context.svm_allocate(mero::svm_mem_flags::read_write, bytes, 0);
        on.queue.enqueue_command_without_event(mero::svm_free({memory}));
    });
}

} // namespace

contender library(cl_device_id device) {
    auto const on = std::make_shared<objects>(device);
    contender made{"library", {}, {}, [on] { on->queue.finish(); }};
    rows<objects> const add(made, on);
    add_basics(add);
    add_usual_work(add);
    add_kernel_commands(add);
    add_buffer_commands(add);
    add_image_commands(add);
    add_svm_commands(add);
    return made;
}

} // namespace bench
