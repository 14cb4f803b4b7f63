#include "support.hpp"

#include <atomic>

namespace real {
namespace {

/// What a callback was told. Both hand-overs between threads are seen here, for a sanitizer that cannot see them in the
/// implementation.
struct report {
    report() { made = true; }

    static inline std::atomic<bool> made = false;
    std::atomic<int> calls = 0;
    int status = 99;
    _nq_cl_event* event = nullptr;

    static void note(_nq_cl_event* event, int status, void* user_data) {
        EXPECT_TRUE(made);
        auto* const self = static_cast<report*>(user_data);
        self->event = event;
        self->status = status;
        ++self->calls;
    }
};

// A user event holds a write back.
SCENARIO(completes_and_calls_back, "user events and callbacks", 110) {
    using status = typename Api::event_execution_status;
    using type = typename Api::commmand_exec_callback_type;
    auto const values = counting(64);
    auto target = b.store(numbers(64));
    auto promise = b.context.create_user_event();
    auto gate = promise.get_event();
    auto event = b.run_after(typename Api::write_buffer(target, false, 0, 64 * 4, values.data()), gate);
    EXPECT_FALSE(gate.has_associated_command_queue());
    EXPECT_EQ(gate.get_context(), b.context);
    EXPECT_EQ(gate.execution_status(), status::submitted);
    EXPECT_GT(event.execution_status(), status::complete);
    auto& reports = lasting<std::array<report, 3>>(); // in the order of the states' numbers
    for (type const each : {type::complete, type::running, type::submitted}) {
        event.set_callback(each, report::note, &reports[static_cast<std::size_t>(each)]);
    }
    EXPECT_EQ(reports[0].calls, 0);
    promise.set_status_success();
    EXPECT_EQ(gate.execution_status(), status::complete);
    b.wait_for(event, gate);
    EXPECT_EQ(event.execution_status(), status::complete);
    bool const says_complete = b.differs("oclgrind", "tells callbacks of every state that the command is complete");
    for (int state = 0; state < 3; ++state) {
        auto const& each = reports[static_cast<std::size_t>(state)];
        EXPECT_TRUE(comes_true([&each] { return each.calls == 1; })) << state;
        EXPECT_EQ(each.event, raw_of(event));
        EXPECT_EQ(each.status, says_complete ? 0 : state);
    }
    EXPECT_EQ(b.load(target), values);
    EXPECT_THROW(promise.set_status_success(), common::invalid_operation);
}

SCENARIO(fails_user_events, "failed user events", 110) {
    auto promise = b.context.create_user_event();
    auto gate = promise.get_event();
    promise.set_status_failure(common::error_code::out_of_resources);
    EXPECT_EQ(gate.error_code(), common::error_code::out_of_resources);
    EXPECT_THROW(b.wait_for(gate), common::exec_status_error_for_events_in_wait_list);
}

SCENARIO(profiles_commands, "profiling", 100) {
    auto const values = counting(64);
    auto target = b.store(numbers(64));
    auto profiled = Api::create_queue(b.context, b.device, false, true);
    auto const event = profiled.enqueue_command(typename Api::write_buffer(target, false, 0, 64 * 4, values.data()));
    b.wait_for(event);
    EXPECT_LE(event.profile_command_queued(), event.profile_command_submit());
    EXPECT_LE(event.profile_command_submit(), event.profile_command_start());
    EXPECT_LE(event.profile_command_start(), event.profile_command_end());
    EXPECT_GT(event.profile_command_end(), 0U);
    if constexpr (Api::number >= 200) {
        EXPECT_LE(event.profile_command_end(), event.profile_command_complete());
    }
}

} // namespace
} // namespace real
