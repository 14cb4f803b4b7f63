#include "unit/members.hpp"

namespace unit {

struct queues : members {
    api::host_queue& q = w.queue;
    _nq_cl_command_queue* const raw = raw_of(q);
    std::array<_nq_cl_event*, 2> const events{raw_of(w.event), nullptr};
};

TEST_F(queues, are_flushed_and_finished) {
    performs(q, clFlush{raw}, [&] { q.flush(); });
    performs(q, clFinish{raw}, [&] { q.finish(); });
}

TEST_F(queues, take_markers_and_barriers) {
#if UNIT_OPENCL < 120
    performs(q, clEnqueueMarker{raw, somewhere}, [&] { return q.enqueue_marker(); });
    performs(q, clEnqueueBarrier{raw}, [&] { q.barrier(); });
#else
    for (auto* const list : {events.data(), static_cast<decltype(events.data())>(nullptr)}) {
        for (std::uint32_t const count : {0U, 2U}) { // goes as it is, also where it does not match the list
            performs(q, clEnqueueMarkerWithWaitList{raw, list, somewhere, 0, count},
                     [&] { return q.enqueue_marker(count, list); });
            performs(q, clEnqueueBarrierWithWaitList{raw, list, somewhere, 0, count},
                     [&] { return q.barrier(count, list); });
        }
    }
#endif
}

#if UNIT_OPENCL < 110
TEST_F(queues, wait_and_switch_in_1_0) {
    performs(q, clEnqueueWaitForEvents{raw, events.data(), 0, 2}, [&] { q.enqueue_wait_for_events(2, events.data()); });
    performs(q, clSetCommandQueueProperty{raw, 1, nullptr, 0, 1}, [&] { q.enable_out_of_order_execution(); });
    performs(q, clSetCommandQueueProperty{raw, 2, nullptr, 0, 1}, [&] { q.enable_profiling(); });
}
#endif

TEST_F(queues, tell) {
    using queue = api::host_queue;
    reads(q, 0x1090, w.context, &queue::get_context);
    reads(q, 0x1091, w.device, &queue::get_device);
    reads_bit(q, 0x1093, 1, &queue::out_of_order_execution_enabled);
    reads_bit(q, 0x1093, 2, &queue::profiling_enabled);
#if UNIT_OPENCL >= 200
    reads(w.device_queue, 0x1090, w.context, &device_command_queue::get_context);
    reads(w.device_queue, 0x1094, number, &device_command_queue::device_queue_size);
    reads_bit(w.device_queue, 0x1093, 2, &device_command_queue::profiling_enabled);
    reads_bit(w.device_queue, 0x1093, 8, &device_command_queue::is_default);
#endif
#if UNIT_OPENCL >= 210
    reads(q, 0x1095, w.device_queue, &queue::get_default_device_command_queue);
    reads(w.device_queue, 0x1095, w.device_queue, &device_command_queue::get_default_device_command_queue);
    // without a default the null handle is retained, which OpenCL refuses
    libnq.reply<clGetCommandQueueInfo>(0x1095, reply_of(word{0}));
    EXPECT_THROW(q.get_default_device_command_queue(), common::invalid_value);
#endif
}

} // namespace unit
