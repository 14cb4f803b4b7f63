#include "support.hpp"

namespace real {
namespace {

constexpr char const* combine_source = R"(
kernel void f(global int const* a, global int const* b, global int* out, int product) {
    size_t const i = get_global_id(0);
    out[i] = product ? a[i] * b[i] : a[i] + b[i];
})";

// Two commands wait for the first and the last for both; nothing starts before all are enqueued.
SCENARIO(runs_a_diamond_in_order, "wait lists", 110) {
    auto const values = counting(64);
    auto first = b.store(numbers(64)), threes = b.store(numbers(64, 3));
    auto left = b.store(numbers(64)), right = b.store(numbers(64)), last = b.store(numbers(64));
    auto program = b.build(combine_source);
    auto add = program.create_kernel("f"), multiply = program.create_kernel("f"), join = program.create_kernel("f");
    b.set_arguments(add, first, threes, left, 0);
    b.set_arguments(multiply, first, threes, right, 1);
    b.set_arguments(join, left, right, last, 1);

    auto gate = b.context.create_user_event();
    auto const top = b.run_after(typename Api::write_buffer(first, false, 0, 64 * 4, values.data()), gate.get_event());
    auto const one_side = b.run_after(Api::launch(add, 64, 8), top);
    auto const other_side = b.run_after(Api::launch(multiply, 64, 8), top);
    auto bottom = b.run_after(Api::launch(join, 64, 8), one_side, other_side);
    numbers result(64);
    auto const read = b.run_after(typename Api::read_buffer(last, false, 0, 64 * 4, result.data()), bottom);
    EXPECT_GT(bottom.execution_status(), Api::event_execution_status::complete);
    gate.set_status_success();
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

SCENARIO(runs_a_diamond_out_of_order, "out-of-order queues", 110) {
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

SCENARIO(marks_and_bars_in_order, "markers and barriers", 110) {
    auto const values = counting(64);
    auto first = b.store(numbers(64)), second = b.store(numbers(64));
    auto gate = b.context.create_user_event();
    b.run_after(typename Api::write_buffer(first, false, 0, 64 * 4, values.data()), gate.get_event());
    auto marker = mark(b.queue, Api{});
    b.run(typename Api::copy_buffer(first, second, 0, 0, 64 * 4));
    EXPECT_GT(marker.execution_status(), Api::event_execution_status::complete);
    gate.set_status_success();
    b.wait_for(marker);
    EXPECT_EQ(marker.execution_status(), Api::event_execution_status::complete);
    EXPECT_EQ(b.load(second), values);
}

SCENARIO(keeps_order_by_barriers, "out-of-order queues", 110) {
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

SCENARIO(moves_packets_between_kernels, "pipes", 200) {
    auto packets = b.context.create_pipe(Api::mem_flags::read_write | Api::mem_flags::host_no_access, 4, 16);
    EXPECT_EQ(packets.packet_size(), 4U);
    EXPECT_EQ(packets.max_packets(), 16U);
    EXPECT_GE(packets.size(), 64U);
    EXPECT_EQ(raw_of(packets.get_context()), raw_of(b.context));
    EXPECT_THROW(b.context.create_pipe(Api::mem_flags::read_write, 0, 16), common::invalid_pipe_size);
    auto program = b.build(R"(
kernel void send(global int const* values, write_only pipe int packets) {
    write_pipe(packets, &values[get_global_id(0)]);
}
kernel void receive(read_only pipe int packets, global int* values) {
    read_pipe(packets, &values[get_global_id(0)]);
})",
                           "-cl-std=CL2.0");
    auto send = program.create_kernel("send"), receive = program.create_kernel("receive");
    auto source = b.store(counting(16, 40)), destination = b.store(numbers(16));
    b.set_arguments(send, source, packets);
    b.set_arguments(receive, packets, destination);
    auto const sent = b.queue.enqueue_command(Api::launch(send, 16, 4));
    b.queue.flush();
    auto const list = raw_of(sent);
    auto second = Api::create_queue(b.context, b.device, false, false);
    second.enqueue_command_without_event(Api::launch(receive, 16, 4), 1, &list);
    second.finish();
    auto received = b.load(destination);
    std::ranges::sort(received); // packets have no order between work-items
    EXPECT_EQ(received, counting(16, 40));
}

// Each work-item starts a child of four work-items, on the queue that `Queue` stands for.
std::string starting_children(std::string const& parameters, std::string const& queue) {
    return "kernel void f(global int* values" + parameters + R"() {
    int const parent = (int)get_global_id(0);
    enqueue_kernel()" +
           queue + R"(, CLK_ENQUEUE_FLAGS_NO_WAIT, ndrange_1D(4), ^{
        int const at = 4 * parent + (int)get_global_id(0);
        values[at] += at + 1;
    });
})";
}

/// Eight parents, with further arguments, make the elements count from 1.
template <class Api, class... Arguments>
void start_children(bench<Api>& b, std::string const& source, Arguments&&... arguments) {
    auto values = b.store(numbers(32));
    auto kernel = b.build(source, "-cl-std=CL2.0").create_kernel("f");
    b.set_arguments(kernel, values, arguments...);
    b.launch(kernel, 8);
    EXPECT_EQ(b.load(values), counting(32));
}

SCENARIO(starts_children_on_the_default_queue, "device queues", 200) {
    auto const made = b.context.create_default_device_command_queue(b.device, false);
    EXPECT_TRUE(made.is_default());
    EXPECT_FALSE(made.profiling_enabled());
    EXPECT_EQ(made.get_context(), b.context);
    if constexpr (Api::number >= 210) {
        EXPECT_EQ(b.queue.get_default_device_command_queue(), made);
        EXPECT_EQ(made.get_default_device_command_queue(), made);
    }
    start_children(b, starting_children("", "get_default_queue()"));
}

SCENARIO(starts_children_on_a_given_queue, "device queues", 200) {
    auto made = b.context.create_device_command_queue(b.device, true, 16384);
    EXPECT_FALSE(made.is_default());
    EXPECT_TRUE(made.profiling_enabled());
    EXPECT_EQ(made.device_queue_size(), 16384U);
    start_children(b, starting_children(", queue_t queue", "queue"), made);
}

SCENARIO(changes_the_default_queue, "device queues", 210) {
    auto const first = b.context.create_device_command_queue(b.device, false);
    auto const second = b.context.create_device_command_queue(b.device, false);
    EXPECT_THROW(b.queue.get_default_device_command_queue(), common::logic_error); // which one differs
    for (auto const& each : {first, second}) {
        b.context.set_default_device_command_queue(b.device, each);
        EXPECT_EQ(b.queue.get_default_device_command_queue(), each);
    }
}

} // namespace
} // namespace real
