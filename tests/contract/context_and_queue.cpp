#include "scenario.hpp"

#include <algorithm>

namespace contract {

using namespace nq::block;

namespace {

void ignore_report(char const*, void const*, std::size_t, void*) {}

template <nq::capability Version>
_nq_cl_command_queue* make_queue(session<Version>& s, std::uint64_t properties) {
    if constexpr (nq::has_command<Version, clCreateCommandQueue>) {
        return s.ok(clCreateCommandQueue{s.context, s.device, properties}).result;
    } else {
        std::array<std::uint64_t, 3> const list{queue_properties, properties, 0};
        return s.ok(clCreateCommandQueueWithProperties{s.device, s.context, list.data()}).result;
    }
}

template <nq::capability Version>
void context_of_a_type(session<Version>& s) {
    std::array<std::int64_t, 3> const properties{context_platform, reinterpret_cast<std::int64_t>(s.platform), 0};
    auto* const made = s.ok(clCreateContextFromType{properties.data(), device_type_all}).result;
    std::vector<_nq_cl_device_id*> devices(16);
    std::size_t size = 0;
    s.ok(clGetContextInfo{made, context_devices, devices.size() * sizeof(void*), devices.data(), &size});
    devices.resize(size / sizeof(void*));
    EXPECT_NE(std::ranges::find(devices, s.device), devices.end());
    s.ok(clReleaseContext{made});
    // PoCL hands out a context without devices beside its error
    auto const none = s.call(clCreateContextFromType{properties.data(), device_type_custom});
    EXPECT_NE(none.error_code, success);
    EXPECT_EQ(none.result, nullptr);
}

// No implementation here carries it out: Oclgrind says success and changes nothing, the others refuse.
template <nq::capability Version>
void queue_property(session<Version>& s) {
    auto* const plain = make_queue(s, 0);
    std::uint64_t old = 0;
    clSetCommandQueueProperty request{
        .command_queue = plain, .properties = profiling, .old_properties = &old, .enable = 1};
    s.feature(request);
    s.ok(clReleaseCommandQueue{plain});
}

// A default queue on the device comes from a queue that can be made on the device.
template <nq::capability Version>
void device_queue(session<Version>& s) {
    std::array<std::uint64_t, 3> const list{queue_properties, on_device | out_of_order, 0};
    auto const made = s.call(clCreateCommandQueueWithProperties{s.device, s.context, list.data()});
    if (s.name != "intel") {
        s.refused(clSetDefaultDeviceCommandQueue{s.context, s.device, s.queue}, invalid_operation);
        if (s.name == "pocl") { // it would end the process
            EXPECT_EQ(made.error_code, invalid_queue_properties);
        }
        return;
    }
    EXPECT_EQ(made.error_code, success);
    s.ok(clSetDefaultDeviceCommandQueue{s.context, s.device, made.result});
    EXPECT_EQ(s.template info<_nq_cl_command_queue*>(clGetCommandQueueInfo{s.queue}, queue_device_default),
              made.result);
    s.ok(clReleaseCommandQueue{made.result});
}

} // namespace

template <nq::capability Version>
void set_up(session<Version>& s) {
    std::array<std::int64_t, 3> const properties{context_platform, reinterpret_cast<std::int64_t>(s.platform), 0};
    s.context = s.ok(clCreateContext{.properties = properties.data(),
                                     .num_devices = 1,
                                     .devices = &s.device,
                                     .pfn_notify = ignore_report,
                                     .user_data = &s})
                    .result;
    s.queue = make_queue(s, profiling);
}
CONTRACT_INSTANTIATE(set_up);

template <nq::capability Version>
void context_and_queue(session<Version>& s) {
    EXPECT_EQ(s.template info<_nq_cl_device_id*>(clGetContextInfo{s.context}, context_devices), s.device);
    s.template references<clRetainContext, clReleaseContext, clGetContextInfo>(s.context, context_reference_count);
    context_of_a_type(s);
    EXPECT_EQ(s.template info<_nq_cl_context*>(clGetCommandQueueInfo{s.queue}, queue_context), s.context);
    EXPECT_EQ(s.template info<_nq_cl_device_id*>(clGetCommandQueueInfo{s.queue}, queue_device), s.device);
    s.template references<clRetainCommandQueue, clReleaseCommandQueue, clGetCommandQueueInfo>(s.queue,
                                                                                              queue_reference_count);
    if constexpr (nq::has_command<Version, clSetCommandQueueProperty>) {
        queue_property(s);
    }
    if constexpr (nq::has_command<Version, clSetDefaultDeviceCommandQueue>) {
        device_queue(s);
    }
}
CONTRACT_INSTANTIATE(context_and_queue);

template <nq::capability Version>
void tear_down(session<Version>& s) {
    s.ok(clFinish{s.queue});
    s.ok(clReleaseCommandQueue{s.queue});
    s.ok(clReleaseContext{s.context});
}
CONTRACT_INSTANTIATE(tear_down);

} // namespace contract
