#include "support.hpp"

namespace real {
namespace {

SCENARIO(moves_packets_between_kernels, "pipes", 200) {
    auto packets = b.context.create_pipe(typename Api::mem_flags{}, 4, 16);
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

SCENARIO(starts_children_on_the_default_queue, "device queues", 200) {
    auto const made = b.context.create_default_device_command_queue(b.device, false);
    EXPECT_TRUE(made.is_default());
    EXPECT_FALSE(made.profiling_enabled());
    EXPECT_EQ(made.get_context(), b.context);
    if constexpr (Api::number >= 210) {
        EXPECT_EQ(b.queue.get_default_device_command_queue(), made);
        EXPECT_EQ(made.get_default_device_command_queue(), made);
    }
    auto values = b.store(numbers(32));
    auto kernel = b.build(starting_children("", "get_default_queue()"), "-cl-std=CL2.0").create_kernel("f");
    b.set_arguments(kernel, values);
    b.launch(kernel, 8);
    EXPECT_EQ(b.load(values), counting(32));
}

SCENARIO(starts_children_on_a_given_queue, "device queues", 200) {
    auto made = b.context.create_device_command_queue(b.device, true, 16384);
    EXPECT_FALSE(made.is_default());
    EXPECT_TRUE(made.profiling_enabled());
    EXPECT_EQ(made.device_queue_size(), 16384U);
    auto values = b.store(numbers(32));
    auto kernel = b.build(starting_children(", queue_t queue", "queue"), "-cl-std=CL2.0").create_kernel("f");
    b.set_arguments(kernel, values, made);
    b.launch(kernel, 8);
    EXPECT_EQ(b.load(values), counting(32));
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
