#include "support.hpp"

namespace real {
namespace {

/// A user event that holds back what waits for it, where the version has one.
template <class Api>
auto make_gate(bench<Api>& b) {
    if constexpr (Api::number >= 110) {
        return b.context.create_user_event();
    } else {
        return nullptr;
    }
}

template <class Api, class Gate>
typename Api::event run_held(bench<Api>& b, Gate const& gate, typename Api::command const& command) {
    if constexpr (Api::number >= 110) {
        return b.run_after(command, gate.get_event());
    } else {
        return b.queue.enqueue_command(command);
    }
}

template <class Gate, class Event>
void open(Gate& gate, Event& held) {
    if constexpr (requires { gate.set_status_success(); }) {
        EXPECT_GT(static_cast<int>(held.execution_status()), 0);
        gate.set_status_success();
    }
}

constexpr char const* combine_source = R"(
kernel void f(global int const* a, global int const* b, global int* out, int product) {
    size_t const i = get_global_id(0);
    out[i] = product ? a[i] * b[i] : a[i] + b[i];
})";

// Two commands wait for the first and the last for both; nothing starts before all are enqueued.
SCENARIO(runs_a_diamond_in_order, "wait lists", 100) {
    auto const values = counting(64);
    auto first = b.store(numbers(64)), threes = b.store(numbers(64, 3));
    auto left = b.store(numbers(64)), right = b.store(numbers(64)), last = b.store(numbers(64));
    auto program = b.build(combine_source);
    auto add = program.create_kernel("f"), multiply = program.create_kernel("f"), join = program.create_kernel("f");
    b.set_arguments(add, first, threes, left, 0);
    b.set_arguments(multiply, first, threes, right, 1);
    b.set_arguments(join, left, right, last, 1);

    auto gate = make_gate(b);
    auto const top = run_held(b, gate, typename Api::write_buffer(first, false, 0, 64 * 4, values.data()));
    auto const one_side = b.run_after(Api::launch(add, 64, 8), top);
    auto const other_side = b.run_after(Api::launch(multiply, 64, 8), top);
    auto bottom = b.run_after(Api::launch(join, 64, 8), one_side, other_side);
    numbers result(64);
    auto const read = b.run_after(typename Api::read_buffer(last, false, 0, 64 * 4, result.data()), bottom);
    open(gate, bottom);
    b.wait_for(read);
    b.queue.finish(); // Intel's runtime keeps a context for ever whose queue is released too soon after a wait
    numbers expected;
    std::ranges::transform(values, std::back_inserter(expected), [](auto value) { return (value + 3) * value * 3; });
    EXPECT_EQ(result, expected);
}

template <class Api>
void make_out_of_order(bench<Api>& b) {
    b.queue = Api::create_queue(b.context, b.device, true, false);
    if constexpr (Api::number < 200) {
        EXPECT_TRUE(b.device.out_of_order_command_queue_supported());
    } else { // rusticl makes one of which it says no
        EXPECT_TRUE(b.device.host_out_of_order_command_queue_supported() || b.name == "rusticl");
    }
    EXPECT_TRUE(b.queue.out_of_order_execution_enabled());
}

SCENARIO(runs_a_diamond_out_of_order, "out-of-order queues", 100) {
    make_out_of_order(b);
    runs_a_diamond_in_order(b);
}

template <class Api>
typename Api::event mark(typename Api::host_queue& queue, Api) {
    if constexpr (Api::number < 120) {
        queue.barrier();
        return queue.enqueue_marker();
    } else {
        auto const barrier = queue.barrier(0, nullptr);
        auto const list = raw_of(barrier);
        return queue.enqueue_marker(1, &list);
    }
}

SCENARIO(marks_and_bars_in_order, "markers and barriers", 100) {
    auto const values = counting(64);
    auto first = b.store(numbers(64)), second = b.store(numbers(64));
    auto gate = make_gate(b);
    run_held(b, gate, typename Api::write_buffer(first, false, 0, 64 * 4, values.data()));
    auto marker = mark(b.queue, Api{});
    b.run(typename Api::copy_buffer(first, second, 0, 0, 64 * 4));
    open(gate, marker);
    b.wait_for(marker);
    EXPECT_EQ(marker.execution_status(), Api::event_execution_status::complete);
    EXPECT_EQ(b.load(second), values);
}

SCENARIO(keeps_order_by_barriers, "out-of-order queues", 100) {
    make_out_of_order(b);
    marks_and_bars_in_order(b);
}

SCENARIO(waits_for_listed_events, "out-of-order queues", 120) {
    make_out_of_order(b);
    auto const values = counting(64);
    auto first = b.store(numbers(64)), second = b.store(numbers(64));
    auto promise = b.context.create_user_event();
    auto const held =
        b.run_after(typename Api::write_buffer(first, false, 0, 64 * 4, values.data()), promise.get_event());
    auto const list = raw_of(held);
    auto marker = b.queue.enqueue_marker(1, &list);
    auto barrier = b.queue.barrier(1, &list);
    b.run(typename Api::copy_buffer(first, second, 0, 0, 64 * 4));
    EXPECT_GT(marker.execution_status(), Api::event_execution_status::complete);
    EXPECT_GT(barrier.execution_status(), Api::event_execution_status::complete);
    promise.set_status_success();
    b.wait_for(marker, barrier);
    EXPECT_EQ(b.load(second), values);
}

SCENARIO(enqueues_wait_for_events, "waits for events in a queue", 100, 100) {
    auto first = b.store(counting(64)), second = b.store(numbers(64)), third = b.store(numbers(64));
    auto const copied = b.queue.enqueue_command(typename Api::copy_buffer(first, second, 0, 0, 64 * 4));
    auto const list = raw_of(copied);
    b.queue.enqueue_wait_for_events(1, &list);
    b.run(typename Api::copy_buffer(second, third, 0, 0, 64 * 4));
    EXPECT_EQ(b.load(third), counting(64));
}

SCENARIO(switches_properties_on, "queue properties switched on", 100, 100) {
    b.queue.enable_profiling();
    b.queue.enable_out_of_order_execution();
    if (b.name == "oclgrind") {
        skip("answers success and changes nothing");
    }
    EXPECT_TRUE(b.queue.profiling_enabled());
    EXPECT_TRUE(b.queue.out_of_order_execution_enabled());
}

SCENARIO(answers_queries_of_queues, "queue queries", 100) {
    auto profiled = Api::create_queue(b.context, b.device, false, true);
    EXPECT_TRUE(profiled.profiling_enabled());
    EXPECT_FALSE(profiled.out_of_order_execution_enabled());
    EXPECT_FALSE(b.queue.profiling_enabled());
    EXPECT_EQ(b.queue.get_context(), b.context);
    EXPECT_EQ(b.queue.get_device(), b.device);
    auto values = counting(4);
    auto target = b.store(values);
    auto const written = profiled.enqueue_command(typename Api::write_buffer(target, false, 0, 16, values.data()));
    profiled.flush();
    b.wait_for(written);
    EXPECT_EQ(written.get_command_queue(), profiled);
    constexpr std::uint32_t write_buffer_type = 0x11F4;
    EXPECT_EQ(written.get_command_type(), write_buffer_type);
    if constexpr (Api::number >= 110) {
        EXPECT_TRUE(written.has_associated_command_queue());
        EXPECT_EQ(written.get_context(), b.context);
    }
}

} // namespace
} // namespace real
