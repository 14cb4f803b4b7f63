#pragma once

// What programs do all the time, as single operations on shared objects, for any number of threads.

#include <vorn/mero/internal/logger.hpp>
#include <vorn/mero/opencl.hpp>

#include <array>
#include <atomic>
#include <numeric>
#include <stdexcept>
#include <string>
#include <vector>

namespace load {

using namespace vorn::mero;

inline constexpr std::size_t items = 64;
inline constexpr std::size_t bytes = items * sizeof(int);
inline constexpr char const* source = "kernel void f(global int* a, int b) { a[get_global_id(0)] += b; }";

/// Events whose callbacks were asked for, and those that were called.
inline std::atomic<long> callbacks_expected{0};
inline std::atomic<long> callbacks_called{0};

inline void require(bool condition, char const* otherwise) {
    if (!condition) {
        throw std::runtime_error(otherwise);
    }
}

template <class Api>
struct objects {
    using buffer = typename Api::buffer;

    /// Without a device that computes, results are not looked at.
    objects(typename Api::device on, bool is_real) : device(std::move(on)), computes(is_real) {}

    typename Api::program build(char const* text) {
        auto made = context.create_program_from_source(text);
        made.build({device}, "", nullptr, nullptr);
        return made;
    }

    buffer make_buffer() { return context.create_buffer(Api::mem_flags::read_write, bytes, nullptr); }

    void wait_for(typename Api::event const& done) {
        _nq_cl_event* const list[] = {internal::owner_access::raw(done)};
        context.wait_for_events(1, list);
    }

    typename Api::device device;
    bool computes;
    typename Api::context context = Api::create_context(device);
    typename Api::host_queue queue = Api::create_queue(context, device, false, false);
    typename Api::program program = build(source);
    buffer store = make_buffer();
};

template <class Api>
void discover(objects<Api>& on) {
    auto const found = Api::get_all_devices();
    require(!found.empty(), "no device is found");
    require(!on.computes || std::count(found.begin(), found.end(), on.device) == 1, "a device is not found again");
}

template <class Api>
void copy(objects<Api>& on) {
    objects<Api> first = on;
    objects<Api> second = std::move(first);
    first = second;
    second = std::move(first);
}

template <class Api>
void query(objects<Api>& on) {
    require(!on.device.name().empty(), "a device has no name");
    require(on.store.size() == bytes, "a buffer has another size");
    require(on.context.get_devices().size() == 1, "a context has other devices");
}

template <class Api>
void make_and_release(objects<Api>& on) {
    auto const copies = std::vector(3, on.make_buffer());
}

template <class Api>
void fail_unhandled(objects<Api>& on) {
    auto const none = on.context.create_buffer(Api::mem_flags::read_write, 0, nullptr);
}

template <class Api>
void fail(objects<Api>& on) {
    try {
        fail_unhandled(on);
    } catch (common::invalid_buffer_size const&) {
        return;
    }
    throw std::runtime_error("a buffer of no bytes is made");
}

template <class Api>
void log(objects<Api>& on) {
    static int no_event = 0;
    auto const refuses = on.computes ? nq::call_handle() : internal::owner_access::call_handle(on.context);
    typename Api::event(refuses, reinterpret_cast<_nq_cl_event*>(&no_event), typename Api::take_ownership{});
}

template <class Api>
void call_back(objects<Api>& on) {
    auto promise = on.context.create_user_event();
    auto event = promise.get_event();
    ++callbacks_expected;
    event.set_callback(
        Api::commmand_exec_callback_type::complete,
        [](_nq_cl_event*, int, void* called) { ++*static_cast<std::atomic<long>*>(called); }, &callbacks_called);
    promise.set_status_success();
    on.wait_for(event);
}

template <class Api>
void transfer(objects<Api>& on) {
    std::vector<int> values(items);
    std::iota(values.begin(), values.end(), 1);
    auto store = on.make_buffer();
    auto written = on.queue.enqueue_command(typename Api::write_buffer(store, false, 0, bytes, values.data()));
    on.wait_for(written);
    std::vector<int> seen(items);
    on.queue.enqueue_command_without_event(typename Api::read_buffer(store, true, 0, bytes, seen.data()));
    require(!on.computes || seen == values, "other bytes are read than were written");
}

template <class Api>
void launch(objects<Api>& on) {
    std::vector<int> values(items, 1);
    auto store =
        on.context.create_buffer(Api::mem_flags::read_write | Api::mem_flags::copy_host_ptr, bytes, values.data());
    auto kernel = on.program.create_kernel("f");
    int const more = 41;
    kernel.set_argument(0, store);
    kernel.set_argument_raw(1, sizeof more, &more);
    if constexpr (Api::number >= 210) { // a copy is a kernel of its own
        auto copied = kernel;
        kernel = std::move(copied);
    }
    auto const done = on.queue.enqueue_command(Api::launch(kernel, items, 1));
    on.wait_for(done);
    on.queue.enqueue_command_without_event(typename Api::read_buffer(store, true, 0, bytes, values.data()));
    require(!on.computes || values == std::vector<int>(items, 42), "a kernel computes something else");
}

template <class Api>
void build(objects<Api>& on) {
    auto const kernel = on.build(source).create_kernel("f");
    auto const failed = on.build("kernel void f(int a) { nothing_here(; }");
    require(!on.computes || failed.build_status(on.device) == decltype(failed.build_status(on.device))::error,
            "a wrong program builds");
    require(!on.computes || !failed.build_log(on.device).empty(), "a failed build has no log");
}

template <class Api>
struct operation {
    char const* name;
    void (*run)(objects<Api>&);
    int weight;      // of so many in a row
    bool uses_queue; // needs more than bookkeeping of the implementation
};

template <class Api>
inline constexpr std::array<operation<Api>, 10> operations{{
    {"discover", discover<Api>, 40, false},
    {"copy all handles", copy<Api>, 100, false},
    {"query", query<Api>, 100, false},
    {"buffer", make_and_release<Api>, 100, false},
    {"failure", fail<Api>, 50, false},
    {"logged failure", log<Api>, 10, false},
    {"callback", call_back<Api>, 50, false},
    {"transfer", transfer<Api>, 30, true},
    {"launch", launch<Api>, 30, true},
    {"build", build<Api>, 1, true},
}};

} // namespace load
