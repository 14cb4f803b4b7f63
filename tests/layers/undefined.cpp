// What OpenCL leaves undefined, on an implementation that survives it, and what is like it but right.

#include "mistakes.hpp"

#include <nq/describe.hpp>
#include <vorn/mero/internal/call_capability.hpp>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>

namespace {

using nq::capability;

// A call that the classes do not make.
template <class Block>
void send(session const& here, Block made) {
    vorn::mero::internal::call_capability(cl::raw::get_call_handle(here.device),
                                          nq::find_command<Block>(capability::opencl_1_2), &made);
}

_nq_cl_event* raw(cl::event const& of) { return cl::raw::get_raw_event(of); }

// A read of half of the values that runs when an event is complete, and the same from another queue.
struct two_reads {
    explicit two_reads(session& of) : here(of) {}

    cl::event first(std::size_t offset = 0) {
        auto* const waited = raw(gate);
        return here.queue.enqueue_command(cl::read_buffer(here.buffer, false, 0, 4096, &here.values[offset]), 1,
                                          &waited);
    }
    void second(std::vector<_nq_cl_event*> waited, std::size_t offset = 512) {
        other.enqueue_command_without_event(cl::read_buffer(here.buffer, false, 0, 4096, &here.values[offset]),
                                            static_cast<unsigned>(waited.size()), waited.data());
    }
    void open() {
        if (!std::exchange(opened, true)) {
            promise.set_status_success();
        }
    }
    ~two_reads() {
        open();
        here.queue.finish();
        other.finish();
    }

    session& here;
    cl::command_queue other = here.context.create_command_queue(here.device, false, false);
    cl::event_promise promise = here.context.create_user_event();
    cl::event gate = promise.get_event();
    bool opened = false;
};

void* map(session& here, std::size_t offset = 0) {
    void* mapped = nullptr;
    here.queue.enqueue_command_without_event(
        cl::map_buffer(mapped, here.buffer, true, cl::map_flags::read | cl::map_flags::write, offset, 64));
    return mapped;
}

void unmap(session& here, void* mapped) {
    here.queue.enqueue_command_without_event(cl::unmap_mem_object(here.buffer, mapped));
    here.queue.finish();
}

// Two threads that set an argument and launch, with a lock or without.
void share_kernel(session& here, bool locked) {
    cl::kernel kernel = here.kernel("scale");
    std::mutex mutex;
    std::atomic<int> ready{0};
    auto const work = [&] {
        for (++ready; ready != 2;) {
            std::this_thread::yield();
        }
        for (int i = 0; i < 5000; ++i) {
            std::unique_lock lock(mutex, std::defer_lock);
            if (locked) {
                lock.lock();
            }
            kernel.set_argument(0, here.buffer);
        }
    };
    std::thread other(work);
    work();
    other.join();
}

template <class Object>
void count(Object*, void* data) {
    ++*static_cast<std::atomic<int>*>(data);
}

} // namespace

std::map<std::string, std::function<void(session&)>> const undefined{
    {"released",
     [](session& here) {
         auto kernel = here.kernel("scale"); // keeps the program alive
         auto* const program = cl::raw::get_raw_program(here.program);
         here.program = here.context.create_program_from_source("");
         send(here, nq::block::clRetainProgram{program});
         send(here, nq::block::clReleaseProgram{program});
     }},
    {"late_retain", // for an implementation that refuses both
     [](session& here) {
         auto* const memory = cl::raw::get_raw_memory_object(here.buffer);
         send(here, nq::block::clRetainMemObject{memory});
         here.buffer = here.context.create_buffer(cl::mem_flags::read_write, 64, nullptr);
         send(here, nq::block::clRetainMemObject{memory});
     }},
    {"told", // of a released program by a query, whose answer lives
     [](session& here) {
         auto kernel = here.kernel("scale");
         here.program = here.context.create_program_from_source("");
         (void)kernel.get_program().num_kernels();
     }},
    {"wrong_kind",
     [](session& here) {
         auto* const event = reinterpret_cast<_nq_cl_event*>(cl::raw::get_raw_memory_object(here.buffer));
         send(here, nq::block::clRetainEvent{event});
     }},
    {"foreign", // not passed on by the layer behind
     [](session& here) {
         std::vector<std::uint64_t> words(64, 1);
         send(here, nq::block::clRetainMemObject{reinterpret_cast<_nq_cl_mem*>(words.data())});
         send(here, nq::block::clRetainKernel{reinterpret_cast<_nq_cl_kernel*>(std::uintptr_t{64})});
     }},
    {"late_argument", // the part keeps the buffer's memory
     [](session& here) {
         cl::kernel kernel = here.kernel("eights");
         kernel.set_argument(0, here.buffer);
         cl::sub_buffer const part = here.context.create_sub_buffer(here.buffer, cl::mem_flags::read_write, 0, 64);
         here.buffer = here.context.create_buffer(cl::mem_flags::read_write, 4096, nullptr);
         here.launch(kernel, 8, 8);
     }},
    {"overlap",
     [](session& here) {
         two_reads reads(here);
         (void)reads.first();
         reads.second({});
     }},
    {"apart",
     [](session& here) {
         two_reads reads(here);
         (void)reads.first();
         reads.second({}, 1024);
     }},
    {"ordered", // by an event, and by the queue
     [](session& here) {
         two_reads reads(here);
         cl::event const first = reads.first();
         here.queue.flush();
         reads.second({raw(first)});
         reads.second({});
     }},
    {"asked", // what a program learns of its events, of which the layer keeps one
     [](session& here) {
         two_reads reads(here);
         cl::event first = reads.first();
         std::uint32_t count = 0;
         send(here, nq::block::clGetEventInfo{.event = raw(first),
                                              .param_value_size = sizeof count,
                                              .param_value = &count,
                                              .param_name = 0x11D2 /* CL_EVENT_REFERENCE_COUNT */});
         reads.open();
         auto* const waited = raw(first);
         here.context.wait_for_events(1, &waited);
         std::printf("%u %d\n", count, static_cast<int>(first.execution_status()));
         reads.second({});
     }},
    {"many_reads", // that are not waited for
     [](session& here) {
         for (int i = 0; i < 300; ++i) {
             here.queue.enqueue_command_without_event(cl::read_buffer(here.buffer, false, 0, 4096, here.values.data()));
         }
         here.queue.finish();
     }},
    {"images", // a row of one picture in another; then one that nothing unmaps
     [](session& here) {
         cl::image_format const format{cl::image_channel_order::rgba, cl::image_channel_type::unsigned_int8};
         cl::image_2d image = here.context.create_image_2d(cl::mem_flags::read_write, format, 16, 8, 0, nullptr);
         auto const read = [&](std::size_t pitch, std::size_t at) {
             return cl::read_image(image, false, {0, 0, 0}, {16, 8, 1}, pitch, 0, &here.values[at]);
         };
         {
             two_reads reads(here);
             auto* const waited = raw(reads.gate);
             here.queue.enqueue_command_without_event(read(128, 0), 1, &waited);
             reads.other.enqueue_command_without_event(read(128, 16));
             reads.other.enqueue_command_without_event(read(0, 192));
         }
         void* mapped = nullptr;
         std::size_t pitches[2];
         here.queue.enqueue_command_without_event(
             cl::map_image(mapped, image, true, cl::map_flags::read, {0, 0, 0}, {16, 8, 1}, pitches[0], pitches[1]));
     }},
    {"refused", // for what cannot be read
     [](session& here) {
         auto* const queue = cl::raw::get_raw_command_queue(here.queue);
         auto* const memory = cl::raw::get_raw_memory_object(here.buffer);
         send(here,
              nq::block::clEnqueueReadBufferRect{.command_queue = queue, .buffer = memory, .ptr = here.values.data()});
         send(here, nq::block::clEnqueueReadImage{.command_queue = queue, .image = memory, .ptr = here.values.data()});
     }},
    {"nothing",
     [](session& here) { send(here, nq::block::clRetainEvent{reinterpret_cast<_nq_cl_event*>(std::uintptr_t{16})}); }},
    {"other_context",
     [](session& here) {
         cl::context other = cl::create_context({}, {here.device}, nullptr, nullptr);
         cl::buffer const buffer = other.create_buffer(cl::mem_flags::read_write, 4096, nullptr);
         here.queue.enqueue_command_without_event(cl::read_buffer(buffer, true, 0, 4096, here.values.data()));
     }},
    {"callbacks", // of all kinds, each with the data that the program gave
     [](session& here) {
         std::atomic<int> calls{0};
         cl::context own = cl::create_context(
             {}, {here.device}, [](char const*, void const*, std::size_t, void*) {}, &calls);
         cl::program program = own.create_program_from_source("kernel void one(global int* v) { v[0] = 1; }");
         program.build({here.device}, "", count<_nq_cl_program>, &calls);
         send(here, nq::block::clSetMemObjectDestructorCallback{
                        cl::raw::get_raw_memory_object(own.create_buffer(cl::mem_flags::read_write, 64, nullptr)),
                        count<_nq_cl_mem>, &calls});
         while (calls != 2) {
             std::this_thread::yield();
         }
     }},
    {"shared", // memory that is unmapped twice, and one that is freed when it is mapped
     [](session& here) {
         namespace newer = vorn::mero::opencl_2_1;
         newer::device device = newer_device(here);
         newer::context context = newer::create_context({}, {device}, nullptr, nullptr);
         newer::host_command_queue queue = context.create_host_command_queue(device, false, false);
         auto const map = [&](void* memory) {
             queue.enqueue_command_without_event(newer::svm_map(true, newer::map_flags::write, memory, 64));
         };
         void* const kept = context.svm_allocate(newer::svm_mem_flags::read_write, 64, 0);
         void* const freed = context.svm_allocate(newer::svm_mem_flags::read_write, 64, 0);
         map(freed);
         map(kept);
         for (int i = 0; i < 2; ++i) {
             queue.enqueue_command_without_event(newer::svm_unmap(kept));
         }
         queue.finish();
         context.svm_free(freed);
         std::atomic<int> seen{0};
         queue.enqueue_command_without_event(newer::svm_free(
             {kept},
             [](_nq_cl_command_queue*, std::uint32_t count, void**, void* data) {
                 *static_cast<std::atomic<int>*>(data) += static_cast<int>(count);
             },
             &seen));
         queue.finish();
         std::printf("%d\n", seen.load());
     }},
    {"unflushed", // the wait list of a command of another queue
     [](session& here) {
         cl::command_queue other = here.context.create_command_queue(here.device, false, false);
         cl::event const first = here.queue.enqueue_marker(0, nullptr);
         auto* const waited = raw(first);
         (void)other.enqueue_marker(1, &waited);
         other.finish();
     }},
    {"never_complete",
     [](session& here) {
         auto* const gate = new cl::event(here.context.create_user_event().get_event());
         auto* const waited = raw(*gate);
         new cl::event(here.queue.enqueue_marker(1, &waited));
         new cl::command_queue(here.queue);
     }},
    {"dropped", // by the program, when a command waits for it
     [](session& here) {
         new cl::command_queue(here.queue);
         cl::event const gate = here.context.create_user_event().get_event();
         auto* const waited = raw(gate);
         new cl::event(here.queue.enqueue_marker(1, &waited));
     }},
    {"unflushed_at_end",
     [](session& here) {
         cl::command_queue* queues[2]; // releases flush
         for (cl::command_queue*& each : queues) {
             each = new cl::command_queue(here.context.create_command_queue(here.device, false, false));
         }
         auto* const waited = raw(*new cl::event(queues[0]->enqueue_marker(0, nullptr)));
         (void)queues[1]->enqueue_marker(1, &waited);
     }},
    {"late", // the event is completed when the program seems to hang
     [](session& here) {
         cl::event_promise promise = here.context.create_user_event();
         cl::event const gate = promise.get_event();
         auto* const waited = raw(gate);
         (void)here.queue.enqueue_marker(1, &waited);
         std::thread helper([&] {
             std::this_thread::sleep_for(std::chrono::seconds(11));
             promise.set_status_success();
         });
         here.queue.finish();
         helper.join();
     }},
    {"unordered", // in one queue
     [](session& here) {
         here.queue = here.context.create_command_queue(here.device, true, false);
         two_reads reads(here);
         (void)reads.first();
         here.queue.enqueue_command_without_event(cl::read_buffer(here.buffer, false, 0, 4096, &here.values[512]));
     }},
    {"barrier",
     [](session& here) {
         here.queue = here.context.create_command_queue(here.device, true, false);
         two_reads reads(here);
         (void)reads.first();
         (void)here.queue.barrier(0, nullptr);
         here.queue.enqueue_command_without_event(cl::read_buffer(here.buffer, false, 0, 4096, &here.values[512]));
     }},
    {"tiles", // of one picture, side by side
     [](session& here) {
         two_reads reads(here);
         auto const tile = [&](std::size_t x) {
             return cl::read_buffer_rect(here.buffer, false, {0, 0, 0}, {x, 0, 0}, {16, 8, 1}, 0, 0, 64, 0,
                                         here.values.data());
         };
         auto* const waited = raw(reads.gate);
         here.queue.enqueue_command_without_event(tile(0), 1, &waited);
         reads.other.enqueue_command_without_event(tile(16));
     }},
    {"throws", // within the call that completes the event
     [](session& here) {
         cl::event_promise promise = here.context.create_user_event();
         promise.get_event().set_callback(
             cl::commmand_exec_callback_type::complete,
             [](_nq_cl_event*, int, void*) { throw std::runtime_error("too late"); }, nullptr);
         promise.set_status_success();
     }},
    {"released_argument",
     [](session& here) {
         cl::kernel kernel = here.kernel("eights");
         auto* const former = cl::raw::get_raw_memory_object(here.buffer);
         cl::sub_buffer const part = here.context.create_sub_buffer(here.buffer, cl::mem_flags::read_write, 0, 64);
         here.buffer = here.context.create_buffer(cl::mem_flags::read_write, 4096, nullptr);
         kernel.set_argument_raw(0, sizeof(void*), &former);
     }},
    {"threads", [](session& here) { share_kernel(here, false); }},
    {"locked", [](session& here) { share_kernel(here, true); }},
    {"unmapped_twice",
     [](session& here) {
         void* const mapped = map(here);
         unmap(here, mapped);
         unmap(here, mapped);
     }},
    {"never_unmapped", [](session& here) { (void)map(here); }},
    {"former_map",
     [](session& here) {
         void* const mapped = map(here);
         unmap(here, mapped);
         here.queue.enqueue_command_without_event(
             cl::write_buffer(here.buffer, true, 1024, 64, static_cast<float*>(mapped)));
     }},
    {"maps_apart",
     [](session& here) {
         unmap(here, map(here));
         void* const mapped = map(here, 1024);
         here.queue.enqueue_command_without_event(
             cl::write_buffer(here.buffer, true, 2048, 64, static_cast<float*>(mapped)));
         unmap(here, mapped);
     }},
    {"mapped_again",
     [](session& here) {
         cl::buffer own = here.context.create_buffer(cl::mem_flags::read_write | cl::mem_flags::use_host_ptr, 4096,
                                                     here.values.data());
         std::swap(own, here.buffer);
         for (int i = 0; i < 2; ++i) {
             void* const mapped = map(here, 64);
             here.queue.enqueue_command_without_event(cl::write_buffer(own, true, 0, 64, static_cast<float*>(mapped)));
             unmap(here, mapped);
         }
         here.queue.enqueue_command_without_event(cl::write_buffer(own, true, 0, 64, here.values.data() + 16));
     }},
};
