#include "support.hpp"

#include <atomic>
#include <chrono>

namespace real {
namespace {

using opencl_1_1::raw::retain, opencl_1_2::raw::retain, opencl_2_0::raw::retain, opencl_2_1::raw::retain,
    opencl_2_2::raw::retain;

template <class Condition>
bool comes_true(Condition condition) {
    auto const deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::yield();
    }
    return true;
}

struct stage {
    std::atomic<bool> started = false;
    std::atomic<bool> may_end = false;
};

void hold(void* place) {
    stage* const on = *static_cast<stage**>(place);
    on->started = true;
    comes_true([on] { return on->may_end.load(); });
}

// A function of the host is the only command that lasts until the test lets it end.
SCENARIO(tells_that_a_command_is_running, "native kernels", 100) {
    if (b.name == "oclgrind") {
        skip("runs commands on the thread that waits for them");
    }
    stage on;
    stage* argument = &on;
    auto event =
        b.queue.enqueue_command(typename Api::native_kernel(hold, &argument, sizeof argument, 0, nullptr, nullptr));
    b.queue.flush();
    EXPECT_TRUE(comes_true([&on] { return on.started.load(); }));
    EXPECT_EQ(event.execution_status(), Api::event_execution_status::running);
    EXPECT_EQ(event.error_code(), common::error_code::success);
    EXPECT_NO_THROW(event.check());
    on.may_end = true;
    b.wait_for(event);
    EXPECT_EQ(event.execution_status(), Api::event_execution_status::complete);
    b.queue.finish();
}

/// What a callback was told. Both hand-overs between threads are seen here, for a sanitizer that cannot see them in the
/// implementation.
struct report {
    report() { made = true; }

    static inline std::atomic<bool> made = false;
    std::atomic<int> calls = 0;
    int status = 99;
    _nq_cl_event* event = nullptr;
    std::thread::id thread;

    static void note(_nq_cl_event* event, int status, void* user_data) {
        EXPECT_TRUE(made);
        auto* const self = static_cast<report*>(user_data);
        self->event = event;
        self->status = status;
        self->thread = std::this_thread::get_id();
        ++self->calls;
    }

    bool comes() const {
        return comes_true([this] { return calls == 1; });
    }
};

/// A write to a buffer that a user event holds back.
template <class Api>
struct held_write {
    explicit held_write(bench<Api>& b)
        : target(b.store(numbers(64))), promise(b.context.create_user_event()),
          event(b.run_after(typename Api::write_buffer(target, false, 0, 64 * 4, values.data()), promise.get_event())) {
    }

    numbers values = counting(64);
    typename Api::buffer target;
    typename Api::event_promise promise;
    typename Api::event event;
};

SCENARIO(completes_user_events, "user events", 110) {
    using status = typename Api::event_execution_status;
    held_write<Api> write(b);
    auto gate = write.promise.get_event();
    EXPECT_EQ(gate, write.promise.get_event());
    EXPECT_FALSE(gate.has_associated_command_queue());
    EXPECT_THROW(gate.get_command_queue(), std::logic_error);
    EXPECT_EQ(gate.get_context(), b.context);
    EXPECT_EQ(gate.execution_status(), status::submitted);
    auto const before = write.event.execution_status();
    EXPECT_TRUE(before == status::queued || before == status::submitted) << static_cast<int>(before);
    EXPECT_EQ(write.event.error_code(), common::error_code::success);
    EXPECT_NO_THROW(write.event.check());
    write.promise.set_status_success();
    EXPECT_EQ(gate.execution_status(), status::complete);
    b.wait_for(write.event, gate);
    EXPECT_EQ(write.event.execution_status(), status::complete);
    EXPECT_EQ(b.load(write.target), write.values);
    EXPECT_THROW(write.promise.set_status_success(), common::invalid_operation);
}

SCENARIO(completes_user_events_from_another_thread, "user events", 110) {
    if (b.name == "oclgrind") {
        skip("may be used by one thread only");
    }
    held_write<Api> write(b);
    std::jthread other([&write] { write.promise.set_status_success(); });
    b.wait_for(write.event);
    EXPECT_EQ(b.load(write.target), write.values);
}

SCENARIO(calls_back, "event callbacks", 110) {
    using type = typename Api::commmand_exec_callback_type;
    held_write<Api> write(b);
    std::array<report, 3> reports; // in the order of the states' numbers
    for (type const each : {type::complete, type::running, type::submitted}) {
        write.event.set_callback(each, report::note, &reports[static_cast<std::size_t>(each)]);
    }
    EXPECT_EQ(reports[0].calls, 0);
    write.promise.set_status_success();
    b.wait_for(write.event);
    for (int state = 0; state < 3; ++state) {
        auto const& each = reports[static_cast<std::size_t>(state)];
        EXPECT_TRUE(each.comes()) << state;
        EXPECT_EQ(each.event, raw_of(write.event));
        EXPECT_EQ(each.status, b.name == "oclgrind" ? 0 : state);
    }
    tell_thread("the callback of a completed command", reports[0].thread);

    if (b.name != "oclgrind") { // forgets callbacks of commands that are complete
        report late;
        write.event.set_callback(type::complete, report::note, &late);
        EXPECT_TRUE(late.comes());
        EXPECT_EQ(late.status, 0);
    }
    b.queue.finish();
}

/// What becomes of a command whose wait list failed with `out_of_resources`.
common::error_code failure_seen(std::string const& implementation) {
    return implementation == "pocl"    ? common::error_code::device_not_found
           : implementation == "intel" ? common::error_code::success
                                       : common::error_code::out_of_resources;
}

SCENARIO(fails_user_events, "failed events", 110) {
    using status = typename Api::event_execution_status;
    held_write<Api> write(b);
    report seen;
    write.event.set_callback(Api::commmand_exec_callback_type::complete, report::note, &seen);
    auto gate = write.promise.get_event();
    write.promise.set_status_failure(common::error_code::out_of_resources);
    EXPECT_EQ(gate.execution_status(), status::failed);
    EXPECT_EQ(gate.error_code(), common::error_code::out_of_resources);
    EXPECT_THROW(gate.check(), common::out_of_resources);
    EXPECT_THROW(b.wait_for(write.event), common::exec_status_error_for_events_in_wait_list);

    EXPECT_EQ(write.event.error_code(), failure_seen(b.name));
    if (b.name != "intel") { // says that the command, which it did not run, is complete
        EXPECT_EQ(write.event.execution_status(), status::failed);
        EXPECT_THROW(write.event.check(), common::opencl_error);
    }
    if (b.name != "pocl" && b.name != "rusticl") { // never call back for a failure
        EXPECT_TRUE(seen.comes());
        EXPECT_LT(seen.status, 0);
        tell_thread("the callback of a failed command", seen.thread);
    }
    b.queue = Api::create_queue(b.context, b.device, false, false);
    EXPECT_EQ(b.load(write.target), numbers(64));
}

SCENARIO(outlives_its_promise, "user events", 110) {
    held_write<Api> write(b);
    auto gate = write.promise.get_event();
    { auto const destroyed = std::move(write.promise); }
    EXPECT_EQ(gate.execution_status(), Api::event_execution_status::submitted);
    EXPECT_GT(write.event.execution_status(), Api::event_execution_status::complete);
    EXPECT_EQ(write.event.error_code(), common::error_code::success);
    retain(gate);
    typename Api::event_promise adopted(vorn::mero::internal::owner_access::call_handle(gate), raw_of(gate),
                                        typename Api::take_ownership{});
    adopted.set_status_success();
    b.wait_for(write.event);
    EXPECT_EQ(b.load(write.target), write.values);
}

SCENARIO(profiles_commands, "profiling", 100) {
    auto const values = counting(64);
    auto target = b.store(numbers(64));
    typename Api::write_buffer const write(target, false, 0, 64 * 4, values.data());
    auto profiled = Api::create_queue(b.context, b.device, false, true);
    auto const event = profiled.enqueue_command(write);
    b.wait_for(event);
    EXPECT_LE(event.profile_command_queued(), event.profile_command_submit());
    EXPECT_LE(event.profile_command_submit(), event.profile_command_start());
    EXPECT_LE(event.profile_command_start(), event.profile_command_end());
    EXPECT_GT(event.profile_command_end(), 0U);
    if constexpr (Api::number >= 200) {
        EXPECT_LE(event.profile_command_end(), event.profile_command_complete());
    }
    auto const plain = b.queue.enqueue_command(write);
    b.wait_for(plain);
    if (b.name != "rusticl" && b.name != "oclgrind") { // answer for every command
        EXPECT_THROW(plain.profile_command_end(), common::profiling_info_not_available);
    }
}

} // namespace
} // namespace real
