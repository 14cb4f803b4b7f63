// Makes one mistake, or none, on the first device of a platform, and prints what the program sees of it.
//
//     mistakes PLATFORM MISTAKE        77 as exit status if there is no such platform

#include "mistakes.hpp"

#include <vorn/mero/opencl_1_0.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <typeinfo>
#include <vector>

namespace {

void scale(session& here, std::size_t global, std::size_t local) {
    float const factor = 3;
    cl::kernel kernel = here.kernel("scale");
    here.queue.enqueue_command_without_event(cl::write_buffer(here.buffer, true, 0, 4096, here.values.data()));
    kernel.set_argument(0, here.buffer);
    kernel.set_argument_raw(1, sizeof factor, &factor);
    here.launch(kernel, global, local);
    here.queue.enqueue_command_without_event(cl::read_buffer(here.buffer, true, 0, 4096, here.values.data()));
    std::printf("%g\n", static_cast<double>(here.values[0]));
}

// What only newer versions have: queues by a list of properties, lists of objects, shared memory. Keeps some of it.
void use_newer(session& here, bool keep) {
    namespace newer = vorn::mero::opencl_2_1;
    newer::device device = newer_device(here);
    newer::context context = newer::create_context({}, {device}, nullptr, nullptr);
    newer::host_command_queue queue = context.create_host_command_queue(device, false, false);
    newer::program program =
        context.create_program_from_source("kernel void one(global int* v) { v[get_global_id(0)] += 1; }"
                                           "kernel void two(global int* v) { v[0] += 2; }");
    program.build({device}, "", nullptr, nullptr);
    std::vector<newer::kernel> kernels = program.create_all_kernels();
    auto* const shared = static_cast<int*>(context.svm_allocate(newer::svm_mem_flags::read_write, 64, 0));
    newer::kernel clone = kernels[0].copy();
    clone.set_svm_argument(0, shared);
    queue.enqueue_command_without_event(newer::fill_svm<int>(shared, 0, 16));
    queue.enqueue_command_without_event(newer::nd_range_kernel(clone, 1, {0, 0, 0}, {4, 1, 1}, {1, 1, 1}));
    queue.finish();
    newer::host_command_queue timed = context.create_host_command_queue(device, false, true);
    newer::event const fill = timed.enqueue_command(newer::fill_svm<int>(shared, 0, 16));
    timed.finish();
    std::printf("%d ", fill.profile_command_end() != 0);
    std::vector<newer::device> const parts = device.partition_equally(1);
    std::printf("profiling %d, %zu kernels\n", queue.profiling_enabled(), kernels.size());
    if (keep) {
        new auto(std::move(kernels));
        new auto(parts[0]);
    } else {
        queue.enqueue_command_without_event(newer::svm_free({shared}));
        queue.finish();
    }
}

// Gives each argument of a kernel a null object.
void set_nothing(session& here, char const* source, char const* options, unsigned count) {
    cl::program program = here.context.create_program_from_source(source);
    program.build({here.device}, options, nullptr, nullptr);
    cl::kernel kernel = program.create_kernel("pick");
    void* nothing = nullptr;
    for (unsigned i = 0; i < count; ++i) {
        kernel.set_argument_raw(i, sizeof nothing, &nothing);
    }
}

void set_null_image(session& here, char const* options) {
    set_nothing(here,
                "void pick_none(void) {} /* , */ kernel void pick(global float* to, // (\n"
                "read_only image2d_t from) { to[0] = 0; }",
                options, 2);
}

std::map<std::string, std::function<void(session&)>> const mistakes{
    {"none", [](session& here) { scale(here, 1024, 64); }},
    {"name", [](session& here) { (void)here.kernel("skale"); }},
    {"unbuilt", [](session& here) { (void)here.program.create_kernel("scale"); }},
    {"build",
     [](session& here) {
         cl::program broken = here.context.create_program_from_source("kernel void f() { int x = nothing_here; }");
         broken.build({here.device}, "", nullptr, nullptr);
         std::puts(broken.build_status(here.device) == cl::program_build_status::error ? "not built" : "built");
     }},
    {"read",
     [](session& here) {
         here.queue.enqueue_command_without_event(cl::read_buffer(here.buffer, true, 4000, 200, here.values.data()));
     }},
    {"copy",
     [](session& here) {
         cl::buffer small = here.context.create_buffer(cl::mem_flags::read_write, 64, nullptr);
         here.queue.enqueue_command_without_event(cl::copy_buffer(here.buffer, small, 0, 32, 64));
     }},
    {"rectangle",
     [](session& here) {
         here.queue.enqueue_command_without_event(cl::read_buffer_rect(here.buffer, true, {16, 60, 0}, {0, 0, 0},
                                                                       {16, 8, 1}, 64, 0, 0, 0, here.values.data()));
     }},
    {"part",
     [](session& here) { (void)here.context.create_sub_buffer(here.buffer, cl::mem_flags::read_write, 4096, 0); }},
    {"pitch",
     [](session& here) {
         here.queue.enqueue_command_without_event(
             cl::read_buffer_rect(here.buffer, true, {0, 0, 0}, {0, 0, 0}, {16, 8, 1}, 8, 0, 0, 0, here.values.data()));
     }},
    {"unset",
     [](session& here) {
         cl::kernel kernel = here.kernel("scale");
         kernel.set_argument(0, here.buffer);
         here.launch(kernel, 64, 64);
     }},
    {"index", [](session& here) { here.kernel("scale").set_argument(2, here.buffer); }},
    {"size", [](session& here) { here.kernel("scale").set_argument_raw(1, 2, here.values.data()); }},
    {"divide", [](session& here) { scale(here, 1000, 64); }},
    {"volume", // each side alone is none too many
     [](session& here) {
         cl::kernel kernel = here.kernel("scale");
         kernel.set_argument(0, here.buffer);
         kernel.set_argument_raw(1, sizeof(float), here.values.data());
         std::array<std::size_t, 3> const size{here.device.max_work_group_size(), 2, 1};
         here.queue.enqueue_command_without_event(cl::nd_range_kernel(kernel, 2, {0, 0, 0}, size, size));
     }},
    {"dimensions",
     [](session& here) {
         cl::kernel kernel = here.kernel("eights");
         kernel.set_argument(0, here.buffer);
         here.queue.enqueue_command_without_event(cl::nd_range_kernel(kernel, 4, {0, 0, 0}, {8, 1, 1}, {8, 1, 1}));
     }},
    {"required",
     [](session& here) {
         cl::kernel kernel = here.kernel("eights");
         kernel.set_argument(0, here.buffer);
         here.launch(kernel, 64, 4);
     }},
    {"empty", [](session& here) { (void)here.context.create_buffer(cl::mem_flags::read_write, 0, nullptr); }},
    {"too_large",
     [](session& here) {
         (void)here.context.create_buffer(cl::mem_flags::read_write, std::size_t{1} << 60U, nullptr);
     }},
    {"group", [](session& here) { scale(here, 1U << 20U, 1U << 20U); }},
    {"image",
     [](session& here) {
         cl::image_format const format{cl::image_channel_order::rgba, cl::image_channel_type::unsigned_int8};
         cl::image_2d const image = here.context.create_image_2d(cl::mem_flags::read_write, format, 16, 8, 0, nullptr);
         here.queue.enqueue_command_without_event(
             cl::read_image(image, true, {0, 6, 0}, {16, 4, 1}, 0, 0, here.values.data()));
     }},
    {"flat",
     [](session& here) {
         cl::image_format const format{cl::image_channel_order::rgba, cl::image_channel_type::unsigned_int8};
         cl::image_2d const image = here.context.create_image_2d(cl::mem_flags::read_write, format, 16, 8, 0, nullptr);
         here.queue.enqueue_command_without_event(
             cl::read_image(image, true, {0, 0, 0}, {16, 0, 1}, 0, 0, here.values.data()));
     }},
    {"newer", [](session& here) { use_newer(here, false); }},
    {"newer_leak", [](session& here) { use_newer(here, true); }},
    {"null_image", [](session& here) { set_null_image(here, ""); }}, // the source alone tells of it
    {"null_image_told", [](session& here) { set_null_image(here, "-cl-kernel-arg-info"); }},
    {"two_texts", // one of which is not compiled
     [](session& here) {
         set_nothing(here,
                     "#ifdef NONE\nkernel void pick(read_only image2d_t from) {}\n#endif\n"
                     "kernel void pick(global float* to) { if (to) to[0] = 0; }",
                     "", 1);
     }},
    {"profile", // what a queue without profiling says, and two launches, the second of which waits for the first
     [](session& here) {
         cl::kernel kernel = here.kernel("scale");
         float const factor = 3;
         kernel.set_argument(0, here.buffer);
         kernel.set_argument_raw(1, sizeof factor, &factor);
         here.queue.enqueue_command_without_event(cl::write_buffer(here.buffer, true, 0, 4096, here.values.data()));
         cl::nd_range_kernel const launch(kernel, 1, {0, 0, 0}, {1024, 1, 1}, {64, 1, 1});
         cl::event first = here.queue.enqueue_command(launch);
         auto* const waited = cl::raw::get_raw_event(first);
         here.queue.enqueue_command_without_event(launch, 1, &waited);
         here.queue.enqueue_command_without_event(cl::read_buffer(here.buffer, true, 0, 4096, here.values.data()));
         std::printf("%g, profiling %d\n", static_cast<double>(here.values[0]), here.queue.profiling_enabled());
         (void)first.profile_command_start();
     }},
    {"profile_first", // a queue of 1.0 changes
     [](session& here) {
         namespace first = vorn::mero::opencl_1_0;
         auto* const raw = cl::raw::get_raw_device_id(here.device);
         for (first::device const& device : first::get_all_devices()) {
             if (first::raw::get_raw_device_id(device) == raw) {
                 first::context context = first::create_context({}, {device}, nullptr, nullptr);
                 first::command_queue queue = context.create_command_queue(device, false, false);
                 std::printf("%d ", queue.profiling_enabled());
                 queue.enable_profiling();
                 std::printf("%d\n", queue.profiling_enabled());
             }
         }
     }},
    {"many",
     [](session& here) {
         for (int i = 0; i < 30000; ++i) {
             cl::buffer const copy = here.buffer;
         }
     }},
    {"abandon",
     [](session& here) {
         here.queue.finish();
         std::_Exit(7);
     }},
    {"leak",
     [](session& here) {
         auto* const kept = new std::vector<cl::buffer>(2, here.buffer); // both are copies
         kept->push_back(here.context.create_buffer(cl::mem_flags::read_write, 64, nullptr));
         new auto(here.context.create_sub_buffer(here.buffer, cl::mem_flags::read_write, 0, 64));
         for (int i = 0; i < 2; ++i) {
             new cl::event(here.queue.enqueue_marker(0, nullptr));
         }
     }},
    {"careless", // about three calls that may fail
     [](session& here) {
         auto const fails = [](auto make) {
             try {
                 make();
                 return false;
             } catch (std::exception const&) {
                 return true;
             }
         };
         if (fails([&] { (void)here.context.create_user_event(); })) {
             new cl::buffer(here.buffer);
         }
         if (fails([&] { here.queue.flush(); })) {
             std::abort();
         }
         while (fails([&] { here.queue.finish(); })) {
             std::this_thread::sleep_for(std::chrono::hours(1));
         }
     }},
    {"moved",
     [](session& here) {
         cl::command_queue const taken = std::move(here.queue);
         here.queue.finish();
     }},
};

} // namespace

vorn::mero::opencl_2_1::device newer_device(session& here) {
    namespace newer = vorn::mero::opencl_2_1;
    auto* const raw = cl::raw::get_raw_device_id(here.device);
    std::vector<newer::device> devices = newer::get_all_devices();
    auto const same = [raw](newer::device const& each) { return newer::raw::get_raw_device_id(each) == raw; };
    return *std::find_if(devices.begin(), devices.end(), same);
}

int main(int count, char** arguments) {
    if (count != 3 || mistakes.count(arguments[2]) + undefined.count(arguments[2]) == 0) {
        return 2;
    }
    try {
        for (cl::device const& device : cl::get_all_devices()) {
            if (device.get_platform().name().find(arguments[1]) != std::string::npos) {
                session here{device};
                (mistakes.count(arguments[2]) != 0 ? mistakes : undefined).at(arguments[2])(here);
                std::puts("done");
                return 0;
            }
        }
    } catch (std::exception const& failure) {
        std::printf("%s\n", typeid(failure).name());
        return 0;
    }
    std::printf("no platform %s\n", arguments[1]);
    return 77;
}
