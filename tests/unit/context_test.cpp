#include "unit/members.hpp"

namespace unit {
namespace {

class contexts : public members {
protected:
    char memory[16]{};
    void* const host = memory;
    _nq_cl_context* const raw = raw_of(w.context);
};

constexpr word flags = 0x8000000000000021;
constexpr value any{flags};

void on_error(char const*, void const*, std::size_t, void*) {}

TEST_F(contexts, is_made_of_devices) {
    std::vector<context_property> const properties{0x1084, 0x1234, 0};
    std::vector<context_property> const none;
    std::int64_t const list[]{0x1084, 0x1234, 0};
    // the devices are of two call handles: the first one's is taken
    performs(w.device, clCreateContext{list, 2, w.ids.data(), &on_error, &w},
             [&] { return create_context(properties, w.devices, &on_error, &w); });
    performs(w.device, clCreateContext{nullptr, 2, w.ids.data(), nullptr, nullptr},
             [&] { return create_context(none, w.devices, nullptr, nullptr); });
    auto const& other = owner_access::call_handle(w.queue);
    performs(other, clCreateContextFromType{list, flags, &on_error, &w},
             [&] { return create_context_from_type(other, properties, any, &on_error, &w); });
    performs(other, clCreateContextFromType{nullptr, 4, nullptr, nullptr},
             [&] { return create_context_from_type(other, none, value{4}, nullptr, nullptr); });
    libnq.forget_calls();
    EXPECT_EQ(message_of<std::logic_error>([&] { create_context(none, {}, nullptr, nullptr); }),
              "Cannot create a context without supplying any devices!");
    EXPECT_EQ(libnq.names(), names{});
}

TEST_F(contexts, creates_memory_objects) {
    performs(w.context, clCreateBuffer{flags, raw, large, host},
             [&] { return w.context.create_buffer(any, large, host); });
#if UNIT_OPENCL >= 110
    nq::buffer_region const region{0x111111111, 0x222222222};
    clCreateSubBuffer const sent{
        .flags = flags, .buffer = raw_of(w.buffer), .buffer_create_info = &region, .buffer_create_type = 0x1220};
    performs(w.context, sent, [&] { return w.context.create_sub_buffer(w.buffer, any, region.origin, region.size); });
#endif
#if UNIT_OPENCL >= 200
    performs(w.context, clCreatePipe{flags, raw, nullptr, nullptr, 0xFFFFFFFE, 7},
             [&] { return w.context.create_pipe(any, 0xFFFFFFFE, 7); });
#endif
}

// The sizes and pitches are all different, so that an exchange is seen.
#if UNIT_OPENCL < 120
TEST_F(contexts, creates_images) {
    image_format const format{0x10B5, 0x10D2};
    performs(w.context, clCreateImage2D{flags, raw, &format, 11, 12, 13, host},
             [&] { return w.context.create_image_2d(any, format, 11, 12, 13, host); });
    performs(w.context, clCreateImage3D{flags, raw, &format, 11, 12, 13, 14, 15, host},
             [&] { return w.context.create_image_3d(any, format, 11, 12, 13, 14, 15, host); });
}
#else
TEST_F(contexts, creates_images) {
    image_format const format{0x10B5, 0x10D2};
    // A descriptor is the type, width, height, depth, array size, row pitch, slice pitch, two counts and a buffer.
    auto const creates = [&](nq::image_desc const& descriptor, auto create) {
        performs(w.context, clCreateImage{flags, raw, &format, &descriptor, host}, create);
    };
    auto& c = w.context;
    creates({0x10F4, 11, 0, 0, 0, 12, 0, 0, 0, nullptr}, [&] { return c.create_image_1d(any, format, 11, 12, host); });
    creates({0x10F6, 11, 0, 0, 0, 12, 0, 0, 0, raw_of(w.buffer)},
            [&] { return c.create_image_1d_buffer(any, format, w.buffer, 11, 12, host); });
    creates({0x10F5, 11, 0, 0, 12, 14, 13, 0, 0, nullptr},
            [&] { return c.create_image_1d_array(any, format, 11, 12, 13, 14, host); });
    creates({0x10F1, 11, 12, 0, 0, 13, 0, 0, 0, nullptr},
            [&] { return c.create_image_2d(any, format, 11, 12, 13, host); });
    creates({0x10F3, 64, 65, 0, 4, 256, 4096, 0, 0, nullptr},
            [&] { return c.create_image_2d_array(any, format, 64, 65, 4, 4096, 256, host); });
    creates({0x10F2, 11, 12, 13, 0, 14, 15, 0, 0, nullptr},
            [&] { return c.create_image_3d(any, format, 11, 12, 13, 14, 15, host); });
}
#endif

TEST_F(contexts, lists_image_formats_in_two_calls) {
    auto const lists = [&](std::uint32_t type, std::vector<image_format> (context::*read)(mem_flags)) {
        for (std::uint32_t const count : {0U, 2U}) {
            std::vector<image_format> const formats(count, {0x10B0, 0x10DE});
            libnq.reply<clGetSupportedImageFormats>(type, scripted::bytes_of_list(formats));
            clGetSupportedImageFormats const counting{flags, raw, nullptr, somewhere, 0, type, 0};
            members::lists(w.context, counting, {flags, raw, somewhere, nullptr, 0, type, count}, count,
                           [&] { return (w.context.*read)(any); });
            EXPECT_EQ((w.context.*read)(any), formats);
        }
    };
    lists(0x10F1, &context::image_2d_supported_formats);
    lists(0x10F2, &context::image_3d_supported_formats);
#if UNIT_OPENCL >= 120
    lists(0x10F4, &context::image_1d_supported_formats);
    lists(0x10F6, &context::image_1d_buffer_supported_formats);
    lists(0x10F5, &context::image_1d_array_supported_formats);
    lists(0x10F3, &context::image_2d_array_supported_formats);
#endif
    // what the second call leaves unwritten stays zero, and the vector is not shrunk
    libnq.on<clGetSupportedImageFormats>([](clGetSupportedImageFormats& block) {
        if (block.num_image_formats != nullptr) {
            *block.num_image_formats = 3;
        }
    });
    EXPECT_EQ(scripted::bytes_of_list(w.context.image_2d_supported_formats(any)), std::string(24, '\0'));
}

TEST_F(contexts, creates_samplers) {
    for (bool const normalized : {false, true}) {
#if UNIT_OPENCL < 200
        clCreateSampler const sent{raw, normalized, 0x1133, 0x1141};
#else
        words const properties{0x1152, normalized, 0x1153, 0x1133, 0x1154, 0x1141, 0};
        clCreateSamplerWithProperties const sent{raw, properties.data()};
#endif
        performs(w.context, sent, [&] { return w.context.create_sampler(normalized, value{0x1133}, value{0x1141}); });
    }
}

TEST_F(contexts, creates_host_queues) {
    for (word const bits : {0U, 1U, 2U, 3U}) {
#if UNIT_OPENCL < 200
        clCreateCommandQueue const sent{raw, raw_of(w.device), bits};
#else
        words const properties{0x1093, bits, 0};
        clCreateCommandQueueWithProperties const sent{raw_of(w.device), raw, properties.data()};
#endif
        performs(w.context, sent,
                 [&] { return api::create_queue(w.context, w.device, (bits & 1) != 0, (bits & 2) != 0); });
    }
}

#if UNIT_OPENCL >= 200
TEST_F(contexts, creates_device_queues) {
    auto const creates = [&](words const& properties, auto make) {
        performs(w.context, clCreateCommandQueueWithProperties{raw_of(w.device), raw, properties.data()}, make);
    };
    auto& c = w.context;
    for (bool const profiling : {false, true}) {
        word const bits = profiling ? 7 : 5;
        creates({0x1093, bits, 0}, [&] { return c.create_device_command_queue(w.device, profiling); });
        creates({0x1093, bits, 0x1094, 65536, 0},
                [&] { return c.create_device_command_queue(w.device, profiling, 65536); });
        creates({0x1093, bits + 8, 0}, [&] { return c.create_default_device_command_queue(w.device, profiling); });
        creates({0x1093, bits + 8, 0x1094, 0, 0},
                [&] { return c.create_default_device_command_queue(w.device, profiling, 0); });
    }
}

TEST_F(contexts, allocates_shared_memory) {
    performs(w.context, clSVMAlloc{flags, raw, large, nullptr, 64}, // the alignment has 32 bits
             [&] { return w.context.svm_allocate(any, large, 0x100000040); });
    performs(w.context, clSVMFree{raw, host}, [&] { w.context.svm_free(host); });
    libnq.on<clSVMAlloc>([](clSVMAlloc& block) { block.result = nullptr; });
    EXPECT_EQ(w.context.svm_allocate(any, 1, 0), nullptr);
}
#endif

#if UNIT_OPENCL >= 210
TEST_F(contexts, sets_the_default_device_queue) {
    performs(w.context, clSetDefaultDeviceCommandQueue{raw, raw_of(w.device), raw_of(w.device_queue)},
             [&] { w.context.set_default_device_command_queue(w.device, w.device_queue); });
}
#endif

TEST_F(contexts, creates_user_events_and_waits) {
    _nq_cl_event* const events[]{raw_of(w.event), nullptr};
    performs(w.context, clWaitForEvents{events, 0, 2}, [&] { w.context.wait_for_events(2, events); });
    performs(w.context, clWaitForEvents{nullptr, 0, 0}, [&] { w.context.wait_for_events(0, nullptr); });
#if UNIT_OPENCL >= 110
    performs(w.context, clCreateUserEvent{raw}, [&] { return w.context.create_user_event(); });
#endif
}

class queues : public members {
protected:
    std::array<_nq_cl_event*, 2> const events{raw_of(w.event), nullptr};
};

TEST_F(queues, is_flushed_and_finished) {
    performs(w.queue, clFlush{raw_of(w.queue)}, [&] { w.queue.flush(); });
    performs(w.queue, clFinish{raw_of(w.queue)}, [&] { w.queue.finish(); });
}

#if UNIT_OPENCL < 120
TEST_F(queues, takes_markers_and_barriers) {
    performs(w.queue, clEnqueueMarker{raw_of(w.queue), somewhere}, [&] { return w.queue.enqueue_marker(); });
    performs(w.queue, clEnqueueBarrier{raw_of(w.queue)}, [&] { w.queue.barrier(); });
}
#else
TEST_F(queues, takes_markers_and_barriers) {
    for (auto* const list : {events.data(), static_cast<decltype(events.data())>(nullptr)}) {
        for (std::uint32_t const count : {0U, 2U}) { // goes as it is, also where it does not match the list
            clEnqueueMarkerWithWaitList marker{raw_of(w.queue), list, somewhere};
            clEnqueueBarrierWithWaitList barrier{raw_of(w.queue), list, somewhere};
            marker.num_events_in_wait_list = barrier.num_events_in_wait_list = count;
            performs(w.queue, marker, [&] { return w.queue.enqueue_marker(count, list); });
            performs(w.queue, barrier, [&] { return w.queue.barrier(count, list); });
        }
    }
}
#endif

#if UNIT_OPENCL < 110
TEST_F(queues, waits_and_switches_in_1_0) {
    performs(w.queue, clEnqueueWaitForEvents{raw_of(w.queue), events.data(), 0, 2},
             [&] { w.queue.enqueue_wait_for_events(2, events.data()); });
    performs(w.queue, clSetCommandQueueProperty{raw_of(w.queue), 1, nullptr, 0, 1},
             [&] { w.queue.enable_out_of_order_execution(); });
    performs(w.queue, clSetCommandQueueProperty{raw_of(w.queue), 2, nullptr, 0, 1},
             [&] { w.queue.enable_profiling(); });
}
#endif

#if UNIT_OPENCL >= 110
TEST_F(queues, gives_events_that_call_back) {
    auto* const on_event = +[](_nq_cl_event*, int, void*) {};
    for (std::int32_t const type : {0, 1, 2, 0x13A}) {
        performs(w.event, clSetEventCallback{raw_of(w.event), on_event, &w, 0, type},
                 [&] { w.event.set_callback(value{word_of(type)}, on_event, &w); });
    }
}

TEST_F(queues, waits_for_promised_events) {
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

} // namespace
} // namespace unit
