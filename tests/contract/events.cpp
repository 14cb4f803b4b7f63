#include "scenario.hpp"

#include <chrono>
#include <thread>

namespace contract {

using namespace nq::block;

namespace {

void note_status(_nq_cl_event*, int status, void* seen) {
    if (seen != nullptr) {
        *static_cast<std::atomic<int>*>(seen) = status;
    }
}

template <nq::capability Version>
void wait(session<Version>& s, _nq_cl_event* event) {
    s.ok(clWaitForEvents{.event_list = &event, .num_events = 1});
    EXPECT_EQ(s.template info<std::int32_t>(clGetEventInfo{event}, event_execution_status), success);
}

template <nq::capability Version>
void write(session<Version>& s, _nq_cl_mem* buffer, std::int32_t const& value, _nq_cl_event** event,
           _nq_cl_event* const* gate = nullptr) {
    s.ok(clEnqueueWriteBuffer{.command_queue = s.queue,
                              .buffer = buffer,
                              .size = sizeof value,
                              .ptr = &value,
                              .event_wait_list = gate,
                              .event = event,
                              .num_events_in_wait_list = gate != nullptr ? 1U : 0U});
}

template <nq::capability Version>
void markers_and_barriers(session<Version>& s, _nq_cl_event* before) {
    _nq_cl_event* marker = nullptr;
    if constexpr (nq::has_command<Version, clEnqueueMarker>) {
        s.ok(clEnqueueBarrier{s.queue});
        clEnqueueWaitForEvents request{.command_queue = s.queue, .event_list = &before, .num_events = 1};
        s.feature(request);
        s.ok(clEnqueueMarker{s.queue, &marker});
    } else {
        s.ok(clEnqueueBarrierWithWaitList{
            .command_queue = s.queue, .event_wait_list = &before, .num_events_in_wait_list = 1});
        s.ok(clEnqueueMarkerWithWaitList{
            .command_queue = s.queue, .event_wait_list = &before, .event = &marker, .num_events_in_wait_list = 1});
    }
    wait(s, marker);
    s.ok(clReleaseEvent{marker});
}

// What a user event holds back does not happen before it is set.
template <nq::capability Version>
void user_event(session<Version>& s, _nq_cl_mem* buffer) {
    auto* const gate = s.ok(clCreateUserEvent{s.context}).result;
    std::int32_t const value = 99;
    _nq_cl_event* written = nullptr;
    write(s, buffer, value, &written, &gate);
    static std::atomic<int> seen; // ThreadSanitizer does not see how an implementation orders its callback's thread
    seen = 1;
    s.ok(clSetEventCallback{
        .event = written, .pfn_notify = note_status, .user_data = &seen, .command_exec_callback_type = success});
    EXPECT_GT(s.template info<std::int32_t>(clGetEventInfo{written}, event_execution_status), success);
    EXPECT_EQ(seen, 1);
    s.ok(clSetUserEventStatus{.event = gate, .execution_status = success});
    wait(s, written);
    auto const deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (seen != success && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::yield();
    }
    EXPECT_EQ(seen, success);
    EXPECT_EQ(read(s, buffer)[0], value);
    s.ok(clReleaseEvent{written});
    s.ok(clReleaseEvent{gate});
}

} // namespace

template <nq::capability Version>
void events(session<Version>& s) {
    auto* const buffer = make_buffer(s, numbers{});
    std::int32_t const value = 3;
    _nq_cl_event* event = nullptr;
    write(s, buffer, value, &event);
    s.ok(clFlush{s.queue});
    wait(s, event);
    EXPECT_EQ(read(s, buffer)[0], value);
    EXPECT_LE(s.template info<std::uint64_t>(clGetEventProfilingInfo{event}, command_start),
              s.template info<std::uint64_t>(clGetEventProfilingInfo{event}, command_end));
    s.template references<clRetainEvent, clReleaseEvent, clGetEventInfo>(event, event_reference_count);
    markers_and_barriers(s, event);
    s.ok(clReleaseEvent{event});
    if constexpr (nq::has_command<Version, clCreateUserEvent>) {
        user_event(s, buffer);
    }
    s.ok(clReleaseMemObject{buffer});
}
CONTRACT_INSTANTIATE(events);

} // namespace contract
