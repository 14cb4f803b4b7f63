// The order of commands in the convenient layer: functions that follow, events of the program, lists, further queues.

#include "interposer.hpp"
#include "support.hpp"

#include <vorn/mero/easy.hpp>

#include <atomic>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <thread>

namespace real {
namespace {

namespace ez = vorn::mero::easy;

char const source[] = "kernel void f(global int* a, int n) { a[get_global_id(0)] = a[get_global_id(0)] * 10 + n; }";

template <class Api>
struct fixture {
    explicit fixture(bench<Api>& b)
        : gpu(b.device, b.context, Api::create_queue(b.context, b.device, false, true)), program(gpu.build(source)) {}

    template <class... Events>
    ez::basic_event<Api::number> enqueue(std::int32_t digit, Events const&... events) {
        return append(ez::range(1), ez::after(events...), digits, digit);
    }

    ez::basic_session<Api::number> gpu;
    ez::basic_program<Api::number> program;
    ez::basic_kernel<Api::number> append = program["f"];
    ez::basic_array<std::int32_t, Api::number> digits = gpu.array(numbers{0});
};

SCENARIO(easy_functions_follow, "easy layer", 110) {
    fixture<Api> on(b);
    using events = std::vector<ez::basic_event<Api::number>>;
    auto const first = on.append(ez::range(1), ez::after(events{}), on.digits, 1);
    auto owned = std::make_unique<int>(0);
    int* const calls = owned.get();
    auto kept = std::make_shared<int>(0);
    auto const called = first.then([calls, kept] { ++*calls; });
    auto const second = on.enqueue(2, called, first);
    auto const third = on.append(ez::range(1), ez::after(events{second, called}), on.digits, 3);
    auto const last = third.then([calls, owned = std::move(owned)] { *calls += 10; });
    last.wait();
    EXPECT_TRUE(last.done());
    EXPECT_TRUE(third.done());
    EXPECT_EQ(on.digits.read(), numbers{123});
    EXPECT_THROW((void)called.times(), ez::order_error);
    EXPECT_EQ(kept.use_count(), 1) << "a function is destroyed after its call";
    int late = 0;
    third.then([&late] { ++late; }).wait(); // some do not call back for what has ended
    EXPECT_EQ(late, 1);

    // What a function throws is rethrown by its event alone, and nothing runs after it.
    auto const failed = third.then([] { throw std::runtime_error("no more"); });
    auto const next = failed.then([&late] { ++late; });
    EXPECT_EQ(refusal<std::exception>([&] { next.wait(); }), "no more");
    EXPECT_EQ(refusal<std::exception>([&] { failed.wait(); }), "no more");
    EXPECT_EQ(refusal<std::exception>([&] { on.enqueue(4, failed); }), "no more");
    EXPECT_TRUE(failed.done() && next.done());
    EXPECT_EQ(late, 1);
    EXPECT_EQ(on.digits.read(), numbers{123});
}

SCENARIO(easy_failures_spread, "easy layer", 110) {
    if (b.name == "pocl" && is_nulling()) {
        skip("aborts if an event fails that two commands without events wait for");
    }
    fixture<Api> on(b);
    auto gate = std::make_unique<ez::basic_user_event<Api::number>>(on.gpu);
    auto const opened = gate->event();
    EXPECT_FALSE(opened.done());
    auto const gated = on.enqueue(1, opened);
    int calls = 0;
    auto const follow = [&] { return gated.then([&calls] { ++calls; }); };
    if (b.differs("oclgrind", "calls back only for what is complete when it registers")) {
        gate->fail(std::make_exception_ptr(std::runtime_error("no data")));
        auto const called = follow();
        EXPECT_NE(refusal<std::exception>([&] { on.enqueue(2, called).wait(); }), "nothing");
        EXPECT_THROW(called.wait(), common::exec_status_error_for_events_in_wait_list);
    } else {
        auto const called = follow();
        auto const after_call = on.enqueue(2, called);
        auto kept = std::make_shared<int>(0);
        gated.then([kept] {}); // some never call back for it
        gate->fail(std::make_exception_ptr(std::runtime_error("no data")));
        EXPECT_NE(refusal<std::exception>([&] { after_call.wait(); }), "nothing");
        EXPECT_TRUE(comes_true([&] { return called.done(); }));
        EXPECT_TRUE(comes_true([&] {
            for (int i = 0; i < 20; ++i) {
                gated.then([] {}); // has others look
            }
            return kept.use_count() == 1;
        })) << "what has failed is not kept";
        EXPECT_THROW(called.wait(), common::exec_status_error_for_events_in_wait_list);
    }
    EXPECT_EQ(refusal<std::exception>([&] { opened.wait(); }), "no data");
    EXPECT_THROW(gate->complete(), ez::order_error);
    on.gpu.finish();

    gate = std::make_unique<ez::basic_user_event<Api::number>>(on.gpu);
    auto const dropped = gate->event();
    auto const never = on.enqueue(3, dropped);
    gate.reset();
    EXPECT_THROW(never.wait(), common::opencl_error);
    EXPECT_THROW(dropped.wait(), ez::order_error);
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(on.digits.read(), numbers{0});
}

/// Whoever waits for the last of a chain sees to those before it, which have not ended then.
SCENARIO(easy_waits_for_functions, "easy layer", 120) {
    if (b.name == "pocl" && is_nulling()) {
        skip("aborts if an event fails that two commands without events wait for");
    }
    if (b.differs("oclgrind", "calls back only for what is complete when it registers")) {
        skip("no function follows what has yet to end");
    }
    fixture<Api> on(b);
    for (bool const succeeds : {true, false}) {
        ez::basic_user_event<Api::number> gate(on.gpu);
        std::atomic<int> calls{0};
        auto const last = on.enqueue(1, gate.event()).then([&calls] { ++calls; }).then([&calls] { calls += 10; });
        EXPECT_FALSE(last.done());
        std::thread other([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            succeeds ? gate.complete() : gate.fail(std::make_exception_ptr(std::runtime_error("no data")));
        });
        EXPECT_EQ(refusal<std::exception>([&] { last.wait(); }) == "nothing", succeeds);
        other.join();
        EXPECT_EQ(calls, succeeds ? 11 : 0);
    }
}

SCENARIO(easy_queues, "easy layer", 120) {
    fixture<Api> on(b);
    auto const other = on.gpu.another_queue();
    ez::basic_user_event<Api::number> gate(on.gpu);
    auto const opened = gate.event();
    auto append = on.program.on(other)["f"];
    auto const first = append(ez::range(1), ez::after(opened), on.digits, 1);
    auto const both = ez::when_all(opened, first);
    auto const second = on.enqueue(2, both);
    gate.complete();
    other.flush();
    second.wait();
    EXPECT_TRUE(first.done());
    EXPECT_EQ(on.digits.on(other).read(), numbers{12});
    EXPECT_THROW(ez::when_all(opened), ez::order_error);
    std::array<std::int32_t, 1> values{};
    {
        ez::finish_guard const guard(other);
        other.queue().enqueue_command_without_event(
            typename Api::read_buffer(on.digits.exact(), false, 0, 4, values.data()));
    }
    EXPECT_EQ(values[0], 12);
    try {
        auto const free = on.gpu.out_of_order();
        EXPECT_TRUE(free.queue().out_of_order_execution_enabled());
        on.program.on(free)["f"](ez::range(1), ez::after(second), on.digits, 3).wait();
        EXPECT_EQ(on.digits.read(), numbers{123});
    } catch (ez::unsupported const& lacks) {
        skip(lacks.what());
    }
}

} // namespace
} // namespace real
