#include "support.hpp"

namespace real {
namespace {

/// What a marker and a barrier before it wait for.
template <class Api>
typename Api::event mark(bench<Api>& b) {
    if constexpr (Api::number < 120) {
        b.queue.barrier();
        return b.queue.enqueue_marker();
    } else {
        auto const barrier = b.queue.barrier(0, nullptr);
        auto const list = raw_of(barrier);
        return b.queue.enqueue_marker(1, &list);
    }
}

// Nothing starts before all is enqueued.
SCENARIO(keeps_order, "wait lists, markers and barriers", 110) {
    auto const values = counting(64);
    auto first = b.store(numbers(64)), second = b.store(numbers(64)), third = b.store(numbers(64));
    auto gate = b.context.create_user_event();
    auto const top = b.run_after(typename Api::write_buffer(first, false, 0, 64 * 4, values.data()), gate.get_event());
    auto const left = b.run_after(typename Api::copy_buffer(first, second, 0, 0, 32 * 4), top);
    auto const right = b.run_after(typename Api::copy_buffer(first, second, 32 * 4, 32 * 4, 32 * 4), top, left);
    auto marker = mark(b);
    b.run(typename Api::copy_buffer(second, third, 0, 0, 64 * 4));
    EXPECT_GT(marker.execution_status(), Api::event_execution_status::complete);
    gate.set_status_success();
    b.wait_for(left, right, marker);
    EXPECT_EQ(marker.execution_status(), Api::event_execution_status::complete);
    EXPECT_EQ(b.load(third), values);
}

SCENARIO(keeps_order_out_of_order, "out-of-order queues", 110) {
    b.queue = Api::create_queue(b.context, b.device, true, false);
    EXPECT_TRUE(b.queue.out_of_order_execution_enabled());
    keeps_order(b);
}

SCENARIO(waits_for_listed_events, "out-of-order queues", 120) {
    b.queue = Api::create_queue(b.context, b.device, true, false);
    auto gate = b.context.create_user_event();
    auto const event = gate.get_event();
    auto const list = raw_of(event);
    auto marker = b.queue.enqueue_marker(1, &list), barrier = b.queue.barrier(1, &list);
    EXPECT_GT(marker.execution_status(), Api::event_execution_status::complete);
    EXPECT_GT(barrier.execution_status(), Api::event_execution_status::complete);
    gate.set_status_success();
    b.wait_for(marker, barrier);
}

SCENARIO(enqueues_wait_for_events, "waits for events in a queue", 100, 110) {
    auto first = b.store(counting(64)), second = b.store(numbers(64)), third = b.store(numbers(64));
    auto const copied = b.queue.enqueue_command(typename Api::copy_buffer(first, second, 0, 0, 64 * 4));
    auto const list = raw_of(copied);
    if constexpr (Api::number < 110) {
        b.queue.enqueue_wait_for_events(1, &list);
    } else {
        auto const block = b.perform(wire::clEnqueueWaitForEvents{raw_of(b.queue), &list, 0, 1});
        vorn::mero::internal::check_error(block.status);
    }
    b.run(typename Api::copy_buffer(second, third, 0, 0, 64 * 4));
    EXPECT_EQ(b.load(third), counting(64));
}

SCENARIO(switches_properties_on, "queue properties switched on", 100, 100) {
    b.queue.enable_profiling();
    b.queue.enable_out_of_order_execution();
    b.leave_out("oclgrind", "answers success and changes nothing");
    EXPECT_TRUE(b.queue.profiling_enabled());
    EXPECT_TRUE(b.queue.out_of_order_execution_enabled());
}

SCENARIO(answers_queries_of_queues, "queues", 100) {
    auto profiled = Api::create_queue(b.context, b.device, false, true);
    expect_counted(profiled);
    EXPECT_TRUE(profiled.profiling_enabled());
    EXPECT_FALSE(profiled.out_of_order_execution_enabled());
    EXPECT_FALSE(b.queue.profiling_enabled());
    EXPECT_EQ(b.queue.get_context(), b.context);
    EXPECT_EQ(b.queue.get_device(), b.device);
    auto const values = counting(4);
    auto target = b.store(numbers(4));
    auto const written = profiled.enqueue_command(typename Api::write_buffer(target, false, 0, 16, values.data()));
    mark(b);
    profiled.flush();
    b.wait_for(written);
    expect_counted(written);
    EXPECT_EQ(written.get_command_queue(), profiled);
    EXPECT_EQ(written.get_command_type(), std::uint32_t{CL_COMMAND_WRITE_BUFFER});
}

SCENARIO(makes_device_queues, "device queues", 200) {
    auto const made = b.context.create_default_device_command_queue(b.device, false);
    EXPECT_TRUE(made.is_default());
    EXPECT_FALSE(made.profiling_enabled());
    EXPECT_EQ(made.get_context(), b.context);
    auto other = b.context.create_device_command_queue(b.device, true, 16384);
    EXPECT_FALSE(other.is_default());
    EXPECT_TRUE(other.profiling_enabled());
    EXPECT_EQ(other.device_queue_size(), 16384U);
    if constexpr (Api::number >= 210) {
        EXPECT_EQ(b.queue.get_default_device_command_queue(), made);
        b.context.set_default_device_command_queue(b.device, other);
        EXPECT_EQ(b.queue.get_default_device_command_queue(), other);
    }
    // each work-item starts a child of four work-items
    auto values = b.store(numbers(32));
    auto kernel = b.build(R"(
kernel void f(global int* values, queue_t queue) {
    int const parent = (int)get_global_id(0);
    enqueue_kernel(queue, CLK_ENQUEUE_FLAGS_NO_WAIT, ndrange_1D(4), ^{
        int const at = 4 * parent + (int)get_global_id(0);
        values[at] += at + 1;
    });
})",
                          "-cl-std=CL2.0")
                      .create_kernel("f");
    b.set_arguments(kernel, values, other);
    b.launch(kernel, 8);
    EXPECT_EQ(b.load(values), counting(32));
    b.expect(CL_INVALID_ARG_VALUE, wire::clSetKernelArg{.kernel = raw_of(kernel), .arg_size = 8, .arg_index = 1});
}

} // namespace
} // namespace real
