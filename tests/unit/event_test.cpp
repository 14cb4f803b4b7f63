#include "unit/members.hpp"

namespace unit {

using events = members;

TEST_F(events, tell) {
    reads(w.event, 0x11D1, number, &event::get_command_type);
    reads(w.event, 0x11D0, w.queue, &event::get_command_queue);
#if UNIT_OPENCL >= 110
    reads(w.event, 0x11D4, w.context, &event::get_context);
    for (word const found : {word{0}, word{0x100000000}}) {
        reads(w.event, 0x11D0, found != 0, &event::has_associated_command_queue, reply_of(found));
    }
#endif
    libnq.reply<clGetEventInfo>(0x11D0, reply_of(word{0}));
    throws<std::logic_error>("Obtained a NULL command-queue. You must check that there is an associated command-queue "
                             "before you call event::get_command_queue()",
                             [&] { w.event.get_command_queue(); });
}

TEST_F(events, fold_failures_into_one_status) {
    for (std::int32_t const status : {3, 2, 1, 0, -1, -5, -72}) {
        reads(w.event, 0x11D3, std::max(status, -1), &event::execution_status, reply_of(status));
        reads(w.event, 0x11D3, std::min(status, 0), &event::error_code, reply_of(status));
        if (status >= 0) {
            EXPECT_NO_THROW(w.event.check());
        }
    }
    libnq.reply<clGetEventInfo>(0x11D3, reply_of(-5));
    EXPECT_THROW(w.event.check(), common::out_of_resources);
    libnq.reply<clGetEventInfo>(0x11D3, reply_of(-9999));
    throws<common::unknown_opencl_error>("Unknown OpenCL Error Code: -9999", [&] { w.event.check(); });
}

TEST_F(events, tell_their_times) {
    auto reads = reader(w.event, clGetEventProfilingInfo{.event = raw_of(w.event)});
    reads(0x1280, large, &event::profile_command_queued);
    reads(0x1281, large, &event::profile_command_submit);
    reads(0x1282, large, &event::profile_command_start);
    reads(0x1283, large, &event::profile_command_end);
#if UNIT_OPENCL >= 200
    reads(0x1284, large, &event::profile_command_complete);
#endif
}

#if UNIT_OPENCL >= 110
TEST_F(events, call_back) {
    auto* const on_event = +[](_nq_cl_event*, int, void*) {};
    for (std::int32_t const type : {0, 1, 2, 0x13A}) {
        performs(w.event, clSetEventCallback{raw_of(w.event), on_event, &w, 0, type},
                 [&] { w.event.set_callback(value{word_of(type)}, on_event, &w); });
    }
}

TEST_F(events, are_promised) {
    auto const sets = [&](std::int32_t status, auto set) {
        performs(w.promise, clSetUserEventStatus{raw_of(w.promise), status}, set);
    };
    sets(0, [&] { w.promise.set_status_success(); });
    sets(-5, [&] { w.promise.set_status_failure(common::error_code::out_of_resources); });
    sets(7, [&] { w.promise.set_status_failure(common::error_code{7}); });
    libnq.forget_calls();
    {
        auto const promised = w.promise.get_event();
        EXPECT_EQ(raw_of(promised), raw_of(w.promise));
        EXPECT_EQ(libnq.names(), names{"clRetainEvent"});
        EXPECT_EQ(handle_of(promised), handle_of(w.promise));
    }
    libnq.fail<clRetainEvent>(scripted::status(-58));
    EXPECT_THROW(w.promise.get_event(), common::invalid_event);
}
#endif

} // namespace unit
