#include "unit/members.hpp"

namespace unit {
namespace {

using namespace nq::block; // NOLINT(google-build-using-namespace)

template <class Api>
class queues : public members<Api> {
protected:
    /// What both kinds of queues tell.
    void reads_properties(auto const& object, std::initializer_list<std::pair<word, std::function<bool()>>> bits) {
        for (auto const& [bit, read] : bits) {
            for (word const properties : {bit, ~bit, word{0}}) {
                this->template reads<clGetCommandQueueInfo>(object, 0x1093, scripted::bytes_of(properties),
                                                            properties == bit, read);
            }
        }
    }

    std::array<_nq_cl_event*, 2> const events{owner_access::raw(this->objects.event), nullptr};
};
TYPED_TEST_SUITE(queues, versions);

TYPED_TEST(queues, is_flushed_and_finished) {
    auto& w = this->objects;
    this->template performs<clFlush>(w.queue, {.status = 8}, {u8(0, w.queue)}, [&] { w.queue.flush(); });
    this->template performs<clFinish>(w.queue, {.status = 8}, {u8(0, w.queue)}, [&] { w.queue.finish(); });
}

TYPED_TEST(queues, reads_what_it_is) {
    auto& w = this->objects;
    this->template reads<clGetCommandQueueInfo>(w.queue, 0x1090, scripted::bytes_of(word_of(w.context)), w.context,
                                                [&] { return w.queue.get_context(); });
    this->template reads<clGetCommandQueueInfo>(w.queue, 0x1091, scripted::bytes_of(word_of(w.device)), w.device,
                                                [&] { return w.queue.get_device(); });
    this->reads_properties(w.queue, {{1, [&] { return w.queue.out_of_order_execution_enabled(); }},
                                     {2, [&] { return w.queue.profiling_enabled(); }}});
}

TYPED_TEST(queues, reads_what_a_device_queue_is) {
    if constexpr (TypeParam::number >= 200) {
        auto& w = this->objects;
        this->template reads<clGetCommandQueueInfo>(w.device_queue, 0x1090, scripted::bytes_of(word_of(w.context)),
                                                    w.context, [&] { return w.device_queue.get_context(); });
        this->reads_properties(w.device_queue, {{2, [&] { return w.device_queue.profiling_enabled(); }},
                                                {8, [&] { return w.device_queue.is_default(); }}});
        this->template reads<clGetCommandQueueInfo>(w.device_queue, 0x1094, scripted::bytes_of(0x89ABCDEF), 0x89ABCDEF,
                                                    [&] { return w.device_queue.device_queue_size(); });
    }
    if constexpr (TypeParam::number >= 210) {
        auto& w = this->objects;
        auto const finds = [&](auto const& object) {
            this->template reads<clGetCommandQueueInfo>(object, 0x1095, scripted::bytes_of(word_of(w.device_queue)),
                                                        w.device_queue,
                                                        [&] { return object.get_default_device_command_queue(); });
        };
        finds(w.queue);
        finds(w.device_queue);
        // without a default the null handle is retained, which OpenCL refuses
        this->libnq.template reply<clGetCommandQueueInfo>(0x1095, scripted::bytes_of(word{0}));
        EXPECT_THROW(w.queue.get_default_device_command_queue(), common::invalid_command_queue);
    }
}

TYPED_TEST(queues, takes_markers_and_barriers) {
    auto& w = this->objects;
    if constexpr (TypeParam::number < 120) {
        this->template performs<clEnqueueMarker>(w.queue, {.status = 16, .through = 8}, {u8(0, w.queue)},
                                                 [&] { return w.queue.enqueue_marker(); });
        this->template performs<clEnqueueBarrier>(w.queue, {.status = 8}, {u8(0, w.queue)}, [&] { w.queue.barrier(); });
    } else {
        results const at{.status = 24, .through = 16};
        // the list goes as it is, also where it does not match its count
        for (auto const& [count, wait_list] : {std::pair<unsigned, _nq_cl_event* const*>{2, this->events.data()},
                                               {0, nullptr},
                                               {0, this->events.data()}}) {
            std::vector<field> const fields{u8(0, w.queue), u8(8, wait_list), u4(28, count)};
            this->template performs<clEnqueueMarkerWithWaitList>(
                w.queue, at, fields,
                [&w, count = count, list = wait_list] { return w.queue.enqueue_marker(count, list); });
            this->template performs<clEnqueueBarrierWithWaitList>(
                w.queue, at, fields, [&w, count = count, list = wait_list] { return w.queue.barrier(count, list); });
        }
    }
}

TYPED_TEST(queues, waits_and_switches_in_1_0) {
    if constexpr (TypeParam::number < 110) {
        auto& w = this->objects;
        this->template performs<clEnqueueWaitForEvents>(
            w.queue, {.status = 16}, {u8(0, w.queue), u8(8, this->events.data()), u4(20, 2)},
            [&] { w.queue.enqueue_wait_for_events(2, this->events.data()); });
        auto const switches = [&](word property, auto work) {
            this->template performs<clSetCommandQueueProperty>(
                w.queue, {.status = 24}, {u8(0, w.queue), u8(8, property), u8(16, nullptr), u4(28, 1)}, work);
        };
        switches(1, [&] { w.queue.enable_out_of_order_execution(); });
        switches(2, [&] { w.queue.enable_profiling(); });
    }
}

template <class Api>
class events : public queues<Api> {};
TYPED_TEST_SUITE(events, versions);

TYPED_TEST(events, folds_failures_into_one_status) {
    auto& w = this->objects;
    for (std::int32_t const status : {3, 2, 1, 0, -1, -5, -72}) {
        auto const reads = [&](auto expected, auto read) {
            this->template reads<clGetEventInfo>(w.event, 0x11D3, scripted::bytes_of(status), expected, read);
        };
        reads(std::max(status, -1), [&] { return w.event.execution_status(); });
        reads(std::min(status, 0), [&] { return w.event.error_code(); });
        if (status >= 0) {
            EXPECT_NO_THROW(w.event.check());
        }
    }
    this->libnq.template reply<clGetEventInfo>(0x11D3, scripted::bytes_of(-5));
    EXPECT_EQ(message_of<common::out_of_resources>([&] { w.event.check(); }),
              "Failed to allocate resources on the device.");
    this->libnq.template reply<clGetEventInfo>(0x11D3, scripted::bytes_of(-9999));
    EXPECT_EQ(message_of<common::unknown_opencl_error>([&] { w.event.check(); }), "Unknown OpenCL Error Code: -9999");
}

TYPED_TEST(events, reads_what_it_is) {
    auto& w = this->objects;
    this->template reads<clGetEventInfo>(w.event, 0x11D1, scripted::bytes_of(0x11F0), 0x11F0,
                                         [&] { return w.event.get_command_type(); });
    this->template reads<clGetEventInfo>(w.event, 0x11D0, scripted::bytes_of(word_of(w.queue)), w.queue,
                                         [&] { return w.event.get_command_queue(); });
    if constexpr (TypeParam::number >= 110) {
        this->template reads<clGetEventInfo>(w.event, 0x11D4, scripted::bytes_of(word_of(w.context)), w.context,
                                             [&] { return w.event.get_context(); });
        for (word const found : {word{0}, word{0x100000000}}) {
            this->template reads<clGetEventInfo>(w.event, 0x11D0, scripted::bytes_of(found), found != 0,
                                                 [&] { return w.event.has_associated_command_queue(); });
        }
    }
    this->libnq.template reply<clGetEventInfo>(0x11D0, scripted::bytes_of(word{0}));
    this->forget();
    EXPECT_EQ(message_of<std::logic_error>([&] { w.event.get_command_queue(); }),
              "Obtained a NULL command-queue. You must check that there is an associated command-queue before you call "
              "event::get_command_queue()");
    EXPECT_EQ(this->libnq.names(), calls(2, "clGetEventInfo"));
}

TYPED_TEST(events, reads_its_times) {
    auto& w = this->objects;
    auto const reads = [&](std::uint32_t name, auto read) {
        constexpr word time = 0x8123456789ABCDEF;
        this->template reads<clGetEventProfilingInfo>(w.event, name, scripted::bytes_of(time), time, read);
    };
    reads(0x1280, [&] { return w.event.profile_command_queued(); });
    reads(0x1281, [&] { return w.event.profile_command_submit(); });
    reads(0x1282, [&] { return w.event.profile_command_start(); });
    reads(0x1283, [&] { return w.event.profile_command_end(); });
    if constexpr (TypeParam::number >= 200) {
        reads(0x1284, [&] { return w.event.profile_command_complete(); });
    }
}

void on_event(_nq_cl_event*, int, void*) {}

TYPED_TEST(events, calls_back) {
    if constexpr (TypeParam::number >= 110) {
        auto& w = this->objects;
        for (std::int32_t const type : {0, 1, 2, 0x13A}) {
            this->template performs<clSetEventCallback>(
                w.event, {.status = 24}, {u8(0, w.event), u8(8, &on_event), u8(16, &w), u4(28, type)},
                [&] { w.event.set_callback(value{word_of(type)}, &on_event, &w); });
        }
    }
}

TYPED_TEST(events, is_promised) {
    if constexpr (TypeParam::number >= 110) {
        auto& w = this->objects;
        auto const sets = [&](std::int32_t status, auto work) {
            this->template performs<clSetUserEventStatus>(w.promise, {.status = 12}, {u8(0, w.promise), u4(8, status)},
                                                          work);
        };
        sets(0, [&] { w.promise.set_status_success(); });
        sets(-5, [&] { w.promise.set_status_failure(common::error_code::out_of_resources); });
        sets(7, [&] { w.promise.set_status_failure(common::error_code{7}); });

        this->forget();
        {
            auto const first = w.promise.get_event();
            auto const second = w.promise.get_event();
            EXPECT_TRUE(first == second);
            EXPECT_EQ(word_of(first), word_of(w.promise));
            EXPECT_EQ(handle_of(first), handle_of(w.promise));
        }
        EXPECT_EQ(this->libnq.names(), (calls{"clRetainEvent", "clRetainEvent", "clReleaseEvent", "clReleaseEvent"}));
        this->libnq.template fail<clRetainEvent>(scripted::status(-58));
        EXPECT_THROW(w.promise.get_event(), common::invalid_event);
        EXPECT_FALSE(std::is_copy_constructible_v<typename TypeParam::event_promise>);
        EXPECT_FALSE(std::is_copy_assignable_v<typename TypeParam::event_promise>);
    }
}

} // namespace
} // namespace unit
