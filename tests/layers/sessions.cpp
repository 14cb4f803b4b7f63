// Passes memory to and from the first device of a platform in every way that a recording has to follow.
//
//     sessions PLATFORM SCENE        77 as exit status if there is no such platform

#include <vorn/mero/opencl_1_2.hpp>
#include <vorn/mero/opencl_2_0.hpp>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace cl = vorn::mero::opencl_1_2;
namespace newer = vorn::mero::opencl_2_0;

namespace {

constexpr std::size_t count = 1024;
constexpr std::size_t bytes = count * sizeof(int);

constexpr char const* source = R"(
kernel void twice(global int* v) { v[get_global_id(0)] *= 2; }
kernel void add(global int* v, int n, local int* scratch) {
    scratch[get_local_id(0)] = n;
    v[get_global_id(0)] += scratch[get_local_id(0)];
}
kernel void invert(read_only image2d_t from, write_only image2d_t to, sampler_t how) {
    int2 at = (int2)(get_global_id(0), get_global_id(1));
    write_imageui(to, at, 255 - read_imageui(from, how, at));
}
kernel void version(global int* v) { v[get_global_id(0)] = get_global_id(0) == 4 ? __OPENCL_VERSION__ : 0; }
kernel void follow(global ulong* links) { links[2] = *(global ulong*)links[1] + 1; }
)";

int sum(void const* from) {
    int total = 0;
    for (std::size_t i = 0; i < count; ++i) {
        total += static_cast<int const*>(from)[i];
    }
    return total;
}

struct scene {
    cl::device device;
    cl::context context = cl::create_context({}, {device}, nullptr, nullptr);
    cl::command_queue queue = context.create_command_queue(device, false, false);
    cl::program program = context.create_program_from_source(source);
    std::vector<int> values = std::vector<int>(count, 1);
    std::vector<int> other = std::vector<int>(count, 7);

    void run(cl::command const& command) { queue.enqueue_command_without_event(command); }
    cl::kernel kernel(char const* name) {
        program.build({device}, "", nullptr, nullptr);
        return program.create_kernel(name);
    }
};

// Reads that do not block, whose end the program learns of by waiting, by asking, and by a callback.
void read(scene& here) {
    cl::buffer buffer = here.context.create_buffer(cl::mem_flags::copy_host_ptr, bytes, here.values.data());
    cl::kernel kernel = here.kernel("twice");
    kernel.set_argument(0, buffer);
    here.run(cl::nd_range_kernel(kernel, 1, {0, 0, 0}, {count, 1, 1}, {64, 1, 1}));
    cl::event first = here.queue.enqueue_command(cl::read_buffer(buffer, false, 0, bytes, here.values.data()));
    here.queue.flush();
    while (first.execution_status() != cl::event_execution_status::complete) {
        std::this_thread::yield();
    }
    here.run(cl::read_buffer(buffer, false, 16, 64, here.other.data()));
    here.queue.finish();
    std::printf("%d %d\n", sum(here.values.data()), sum(here.other.data()));
    here.values[5] = 77; // not what was read
    std::atomic<bool> is_called = false;
    auto const note = [](_nq_cl_event*, int, void* called) { *static_cast<std::atomic<bool>*>(called) = true; };
    cl::event last = here.queue.enqueue_command(
        cl::read_buffer_rect(buffer, false, {0, 0, 0}, {8, 2, 0}, {32, 4, 1}, 64, 0, 128, 0, here.other.data()));
    last.set_callback(cl::commmand_exec_callback_type::complete, note, &is_called);
    here.queue.flush();
    while (!is_called) {
        std::this_thread::yield();
    }
    std::printf("%d\n", sum(here.other.data()));
    std::fill(here.other.begin(), here.other.end(), 0);
    here.queue.finish();
}

// Mapped memory: read, written, over memory of the program, in a part of a buffer, and of an image.
void map(scene& here) {
    auto const read_write = cl::map_flags::read | cl::map_flags::write;
    cl::buffer buffer = here.context.create_buffer(cl::mem_flags::use_host_ptr, bytes, here.values.data());
    cl::sub_buffer part = here.context.create_sub_buffer(buffer, cl::mem_flags::read_write, 2048, 1024);
    void* mapped = nullptr;
    here.run(cl::map_buffer(mapped, buffer, true, cl::map_flags::write_invalidate_region, 0, bytes));
    std::memcpy(mapped, here.other.data(), bytes);
    here.run(cl::unmap_mem_object(buffer, mapped));
    cl::kernel kernel = here.kernel("add");
    kernel.set_argument(0, part);
    int const three = 3;
    kernel.set_argument_raw(1, sizeof three, &three);
    kernel.set_argument_raw(2, 64 * sizeof three, nullptr);
    cl::event_promise gate = here.context.create_user_event();
    cl::event const open = gate.get_event();
    _nq_cl_event* const list[] = {cl::raw::get_raw_event(open)};
    here.queue.enqueue_command_without_event(cl::nd_range_kernel(kernel, 1, {0, 0, 0}, {256, 1, 1}, {64, 1, 1}), 1,
                                             list);
    cl::event const done = here.queue.enqueue_command(cl::map_buffer(mapped, buffer, false, read_write, 0, bytes));
    gate.set_status_success();
    here.queue.finish();
    std::printf("%d\n", sum(mapped));
    static_cast<int*>(mapped)[0] = 1000;
    here.run(cl::unmap_mem_object(buffer, mapped));
    here.run(cl::read_buffer(buffer, true, 0, bytes, here.values.data()));
    std::printf("%d\n", sum(here.values.data()));
}

void image(scene& here) {
    cl::image_format const format{cl::image_channel_order::rgba, cl::image_channel_type::unsigned_int8};
    auto const copy = cl::mem_flags::read_only | cl::mem_flags::copy_host_ptr;
    std::array<std::size_t, 3> const region{15, 9, 1};
    cl::image_2d from = here.context.create_image_2d(copy, format, 15, 9, 64, here.other.data());
    cl::image_2d to = here.context.create_image_2d(cl::mem_flags::write_only, format, 15, 9, 0, nullptr);
    cl::sampler how = here.context.create_sampler(false, cl::sampler_addressing_mode::clamp_to_edge,
                                                  cl::sampler_filter_mode::nearest);
    cl::kernel kernel = here.kernel("invert");
    kernel.set_argument(0, from);
    kernel.set_argument(1, to);
    kernel.set_argument(2, how);
    here.run(cl::nd_range_kernel(kernel, 2, {0, 0, 0}, region, {1, 1, 1}));
    here.run(cl::read_image(to, true, {1, 1, 0}, {4, 4, 1}, 80, 0, here.values.data()));
    void* mapped = nullptr;
    std::size_t row = 0;
    std::size_t slice = 0;
    here.run(
        cl::map_image(mapped, to, true, cl::map_flags::read | cl::map_flags::write, {0, 0, 0}, region, row, slice));
    static_cast<unsigned char*>(mapped)[row * 8] = 99;
    here.run(cl::unmap_mem_object(to, mapped));
    here.run(cl::read_image(to, true, {0, 0, 0}, region, 0, 0, here.other.data()));
    std::printf("%d %d\n", sum(here.values.data()), sum(here.other.data()));
}

// What differs between devices.
void version(scene& here) {
    cl::buffer buffer = here.context.create_buffer(cl::mem_flags::read_write, bytes, nullptr);
    cl::kernel kernel = here.kernel("version");
    kernel.set_argument(0, buffer);
    here.run(cl::nd_range_kernel(kernel, 1, {0, 0, 0}, {count, 1, 1}, {1, 1, 1}));
    here.run(cl::read_buffer(buffer, true, 0, bytes, here.values.data()));
}

newer::device as_newer(cl::device const& device) {
    std::vector<newer::device> devices = newer::get_all_devices();
    auto* const raw = cl::raw::get_raw_device_id(device);
    auto const same = [raw](newer::device const& each) { return newer::raw::get_raw_device_id(each) == raw; };
    return *std::find_if(devices.begin(), devices.end(), same);
}

// A context of a type, a sampler of properties, a function of the program, shared memory that a callback frees.
void others(scene& here) {
    newer::device device = as_newer(here.device);
    auto const platform = reinterpret_cast<std::intptr_t>(newer::raw::get_raw_platform_id(device.get_platform()));
    newer::context context = newer::create_context_from_type(newer::raw::get_call_handle(device),
                                                             {newer::context_property::platform, platform, 0},
                                                             newer::device_type::all, nullptr, nullptr);
    newer::host_command_queue queue = context.create_host_command_queue(device, false, false);
    auto const run = [&](newer::command const& command) { queue.enqueue_command_without_event(command); };
    newer::image_format const format{newer::image_channel_order::rgba, newer::image_channel_type::unsigned_int8};
    auto const copy = newer::mem_flags::read_only | newer::mem_flags::copy_host_ptr;
    std::array<std::size_t, 3> const region{15, 9, 1};
    newer::image_2d from = context.create_image_2d(copy, format, 15, 9, 64, here.other.data());
    newer::image_2d to = context.create_image_2d(newer::mem_flags::write_only, format, 15, 9, 0, nullptr);
    newer::sampler how = context.create_sampler(false, newer::sampler_addressing_mode::clamp_to_edge,
                                                newer::sampler_filter_mode::nearest);
    newer::program program = context.create_program_from_source(source);
    program.build({device}, "-DUNUSED='?'", nullptr, nullptr);
    newer::kernel kernel = program.create_kernel("invert");
    kernel.set_argument(0, from);
    kernel.set_argument(1, to);
    kernel.set_argument(2, how);
    static std::atomic<int> called = 0;
    run(newer::native_kernel([](void*) { ++called; }, nullptr, 0, 0, nullptr, nullptr));
    run(newer::nd_range_kernel(kernel, 2, {0, 0, 0}, region, {1, 1, 1}));
    run(newer::read_image(to, true, {0, 0, 0}, region, 0, 0, here.values.data()));
    auto const free = [](_nq_cl_command_queue*, std::uint32_t, void** list, void* by) {
        static_cast<newer::context*>(by)->svm_free(list[0]);
        ++called;
    };
    run(newer::svm_free({context.svm_allocate(newer::svm_mem_flags::read_write, 64, 0)}, free, &context));
    queue.finish();
    std::printf("%d %d\n", sum(here.values.data()), called.load());
}

// Shared memory with an address in it, with maps and, where the device has it, without.
void shared(scene& here) {
    newer::device device = as_newer(here.device);
    newer::context context = newer::create_context({}, {device}, nullptr, nullptr);
    newer::host_command_queue queue = context.create_host_command_queue(device, false, false);
    newer::program program = context.create_program_from_source(source);
    program.build({device}, "", nullptr, nullptr);
    std::map<std::string, newer::kernel> kernels;
    for (newer::kernel& each : program.create_all_kernels()) {
        std::string name = each.function_name();
        kernels.emplace(std::move(name), std::move(each));
    }
    newer::kernel& kernel = kernels.at("follow");
    bool const is_fine = device.svm_fine_grain_buffer_supported();
    for (auto const flags : {newer::svm_mem_flags::read_write,
                             newer::svm_mem_flags::read_write | newer::svm_mem_flags::fine_grain_buffer}) {
        bool const maps = flags == newer::svm_mem_flags::read_write;
        if (!maps && !is_fine) {
            continue;
        }
        auto* const links = static_cast<std::uint64_t*>(context.svm_allocate(flags, 64, 0));
        auto const map = [&](newer::map_flags how) {
            if (maps) {
                queue.enqueue_command_without_event(newer::svm_map(true, how, links, 64));
            }
        };
        map(newer::map_flags::write);
        std::memset(links, 0, 64);
        links[1] = reinterpret_cast<std::uintptr_t>(links + 5);
        links[5] = 41;
        if (maps) {
            queue.enqueue_command_without_event(newer::svm_unmap(links));
        }
        kernel.set_svm_argument(0, links);
        kernel.set_svm_pointers({links});
        queue.enqueue_command_without_event(newer::nd_range_kernel(kernel, 1, {0, 0, 0}, {1, 1, 1}, {1, 1, 1}));
        queue.finish();
        map(newer::map_flags::read);
        std::printf("%d\n", static_cast<int>(links[2]));
        if (maps) {
            queue.enqueue_command_without_event(newer::svm_unmap(links));
        }
        std::uint64_t copied = 0;
        queue.enqueue_command_without_event(newer::svm_memcpy(1, &copied, links + 2, sizeof copied));
        queue.finish();
        std::printf("%d\n", static_cast<int>(copied));
        context.svm_free(links);
    }
}

std::map<std::string, void (*)(scene&)> const scenes{{"read", read},       {"map", map},       {"image", image},
                                                     {"version", version}, {"shared", shared}, {"others", others}};

} // namespace

int main(int argument_count, char** arguments) {
    if (argument_count != 3 || scenes.count(arguments[2]) == 0) {
        return 2;
    }
    for (cl::device const& device : cl::get_all_devices()) {
        if (device.get_platform().name().find(arguments[1]) != std::string::npos) {
            scene here{device};
            scenes.at(arguments[2])(here);
            return 0;
        }
    }
    std::printf("no platform %s\n", arguments[1]);
    return 77;
}
