#include "scenario.hpp"

#include <algorithm>
#include <chrono>
#include <thread>

namespace nq::block::contract {

namespace {

void sub_devices(session& s) {
    std::array<std::int64_t, 3> const properties{CL_DEVICE_PARTITION_EQUALLY, 1, 0};
    std::uint32_t count = 0;
    clCreateSubDevices request{.in_device = s.device, .properties = properties.data(), .num_devices_ret = &count};
    if (!s.feature(request)) {
        s.ok(clRetainDevice{s.device});
        s.ok(clReleaseDevice{s.device});
        return;
    }
    std::vector<_nq_cl_device_id*> parts(count);
    request.num_devices = count;
    request.out_devices = parts.data();
    s.ok(request);
    for (_nq_cl_device_id* const part : parts) {
        EXPECT_EQ(s.info<_nq_cl_device_id*>(clGetDeviceInfo{part}, CL_DEVICE_PARENT_DEVICE), s.device);
        s.references<clRetainDevice, clReleaseDevice, clGetDeviceInfo>(part, CL_DEVICE_REFERENCE_COUNT);
        s.ok(clReleaseDevice{part});
    }
}

void* look_up(session& s, char const* name) {
    if (s.has<clGetExtensionFunctionAddress>()) {
        return s.call(clGetExtensionFunctionAddress{name}).result;
    }
    EXPECT_EQ(s.call(clGetExtensionFunctionAddressForPlatform{nullptr, name}).result, nullptr);
    return s.call(clGetExtensionFunctionAddressForPlatform{s.platform, name}).result;
}

// The loader knows clCreateSubDevicesEXT, and no implementation here has it.
void lookups(session& s) {
    for (char const* const name : {"clCreateSubDevicesEXT", "clNoSuchFunction", static_cast<char const*>(nullptr)}) {
        EXPECT_EQ(look_up(s, name), nullptr);
    }
    void* const address = look_up(s, "clIcdGetPlatformIDsKHR");
    EXPECT_EQ(address == nullptr, s.name == "oclgrind");
    if (address != nullptr) {
        std::uint32_t count = 0;
        auto* const list = reinterpret_cast<std::int32_t (*)(std::uint32_t, void*, std::uint32_t*)>(address);
        EXPECT_EQ(list(0, nullptr, &count), CL_SUCCESS);
        EXPECT_EQ(count, 1U);
    }
}

void timers(session& s) {
    std::uint64_t device_time = 0;
    std::uint64_t host_time = 0;
    std::uint64_t later = 0;
    clGetDeviceAndHostTimer both{.device_timestamp = &device_time, .host_timestamp = &host_time};
    clGetHostTimer host{.host_timestamp = &later};
    bool const has_both = s.feature(both);
    bool const has_host = s.feature(host);
    EXPECT_EQ(has_both, device_time != 0 && host_time != 0);
    EXPECT_EQ(has_host, later != 0 && later >= host_time);
}

_nq_cl_command_queue* make_queue(session& s, std::uint64_t properties) {
    if (s.has<clCreateCommandQueue>()) {
        return s.make<clReleaseCommandQueue>(clCreateCommandQueue{.properties = properties});
    }
    std::array<std::uint64_t, 3> const list{CL_QUEUE_PROPERTIES, properties, 0};
    return s.make<clReleaseCommandQueue>(clCreateCommandQueueWithProperties{.properties = list.data()});
}

std::array<std::int64_t, 3> context_properties(session const& s) {
    return {CL_CONTEXT_PLATFORM, reinterpret_cast<std::int64_t>(s.platform), 0};
}

void context_of_a_type(session& s) {
    auto const properties = context_properties(s);
    clCreateContextFromType request{.properties = properties.data(), .device_type = CL_DEVICE_TYPE_ALL};
    auto* const made = s.make<clReleaseContext>(request);
    EXPECT_GE(s.info<std::uint32_t>(clGetContextInfo{made}, CL_CONTEXT_NUM_DEVICES), 1U);
    // PoCL hands out a context without devices beside its error
    request.device_type = CL_DEVICE_TYPE_CUSTOM;
    auto const none = s.call(request);
    EXPECT_NE(none.error_code, CL_SUCCESS);
    EXPECT_EQ(none.result, nullptr);
}

// A default queue on the device comes from a queue that can be made on the device.
void device_queue(session& s) {
    if (s.name != "intel") {
        s.refused(clSetDefaultDeviceCommandQueue{}, CL_INVALID_OPERATION);
        return;
    }
    auto* const made = make_queue(s, CL_QUEUE_ON_DEVICE | CL_QUEUE_OUT_OF_ORDER_EXEC_MODE_ENABLE);
    s.ok(clSetDefaultDeviceCommandQueue{.command_queue = made});
    EXPECT_EQ(s.info<_nq_cl_command_queue*>(clGetCommandQueueInfo{s.queue}, CL_QUEUE_DEVICE_DEFAULT), made);
}

std::int32_t status_of(session& s, _nq_cl_event* event) {
    return s.info<std::int32_t>(clGetEventInfo{event}, CL_EVENT_COMMAND_EXECUTION_STATUS);
}

void wait(session& s, _nq_cl_event* event) {
    s.ok(clWaitForEvents{.event_list = &event, .num_events = 1});
    EXPECT_EQ(status_of(s, event), CL_COMPLETE);
}

void markers_and_barriers(session& s, _nq_cl_event* before) {
    _nq_cl_event* marker = nullptr;
    if (s.has<clEnqueueMarker>()) {
        s.ok(clEnqueueBarrier{});
        clEnqueueWaitForEvents request{.event_list = &before, .num_events = 1};
        s.feature(request);
        s.ok(clEnqueueMarker{.event = &marker});
    } else {
        s.ok(clEnqueueBarrierWithWaitList{.event_wait_list = &before, .num_events_in_wait_list = 1});
        s.ok(clEnqueueMarkerWithWaitList{.event_wait_list = &before, .event = &marker, .num_events_in_wait_list = 1});
    }
    s.ok(clFinish{});
    EXPECT_EQ(status_of(s, marker), CL_COMPLETE);
    s.ok(clReleaseEvent{marker});
}

void note_status(_nq_cl_event*, int status, void* seen) {
    if (seen != nullptr) {
        *static_cast<std::atomic<int>*>(seen) = status;
    }
}

// What a user event holds back does not happen before it is set.
void user_event(session& s, clEnqueueCopyBuffer request) {
    auto* const gate = s.make<clReleaseEvent>(clCreateUserEvent{});
    _nq_cl_event* done = nullptr;
    request.event_wait_list = &gate;
    request.num_events_in_wait_list = 1;
    request.event = &done;
    s.ok(request);
    static std::atomic<int> seen; // ThreadSanitizer does not see how an implementation orders its callback's thread
    seen = 1;
    s.ok(clSetEventCallback{.event = done, .pfn_notify = note_status, .user_data = &seen});
    EXPECT_GT(status_of(s, done), CL_COMPLETE);
    EXPECT_EQ(seen, 1);
    s.ok(clSetUserEventStatus{.event = gate, .execution_status = CL_COMPLETE});
    wait(s, done);
    for (int i = 0; i < 1000 && seen != CL_COMPLETE; ++i) { // the callback may come a little later
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(seen, CL_COMPLETE);
    s.ok(clReleaseEvent{done});
}

} // namespace

void set_up(session& s) {
    constexpr auto ignore_report = [](char const*, void const*, std::size_t, void*) {};
    auto const properties = context_properties(s);
    s.context = s.make<clReleaseContext>(clCreateContext{
        .properties = properties.data(), .num_devices = 1, .devices = &s.device, .pfn_notify = ignore_report});
    s.queue = make_queue(s, CL_QUEUE_PROFILING_ENABLE);
}

void platform_and_device(session& s) {
    std::array<_nq_cl_device_id*, 16> devices{};
    s.ok(clGetDeviceIDs{s.platform, CL_DEVICE_TYPE_ALL, devices.size(), devices.data()});
    EXPECT_NE(std::ranges::find(devices, s.device), devices.end());
    lookups(s);
    if (s.has<clCreateSubDevices>()) {
        sub_devices(s);
    }
    if (s.has<clGetHostTimer>()) {
        timers(s);
    }
}

void context_and_queue(session& s) {
    EXPECT_EQ(s.info<_nq_cl_device_id*>(clGetContextInfo{s.context}, CL_CONTEXT_DEVICES), s.device);
    s.references<clRetainContext, clReleaseContext, clGetContextInfo>(s.context, CL_CONTEXT_REFERENCE_COUNT);
    context_of_a_type(s);
    EXPECT_EQ(s.info<_nq_cl_context*>(clGetCommandQueueInfo{s.queue}, CL_QUEUE_CONTEXT), s.context);
    s.references<clRetainCommandQueue, clReleaseCommandQueue, clGetCommandQueueInfo>(s.queue, CL_QUEUE_REFERENCE_COUNT);
    if (s.has<clSetCommandQueueProperty>()) { // Oclgrind says success and changes nothing, the others refuse
        std::uint64_t old = 0;
        clSetCommandQueueProperty request{make_queue(s, 0), CL_QUEUE_PROFILING_ENABLE, &old};
        s.feature(request);
    }
    if (s.has<clSetDefaultDeviceCommandQueue>()) {
        device_queue(s);
    }
}

void events(session& s) {
    clEnqueueCopyBuffer request{.src_buffer = make_buffer(s, counting_from(3)), .dst_buffer = make_buffer(s)};
    _nq_cl_event* event = nullptr;
    request.event = &event;
    s.ok(request);
    s.ok(clFlush{});
    wait(s, event);
    EXPECT_LE(s.info<std::uint64_t>(clGetEventProfilingInfo{event}, CL_PROFILING_COMMAND_START),
              s.info<std::uint64_t>(clGetEventProfilingInfo{event}, CL_PROFILING_COMMAND_END));
    s.references<clRetainEvent, clReleaseEvent, clGetEventInfo>(event, CL_EVENT_REFERENCE_COUNT);
    markers_and_barriers(s, event);
    s.ok(clReleaseEvent{event});
    if (s.has<clCreateUserEvent>()) {
        request.dst_buffer = make_buffer(s);
        user_event(s, request);
    }
    EXPECT_EQ(read(s, request.dst_buffer), counting_from(3));
}

} // namespace nq::block::contract
