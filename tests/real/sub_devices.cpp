#include "c_answers.hpp"

namespace real {
namespace {

template <class Api>
using devices = std::vector<typename Api::device>;

template <class Api>
void expect_part(typename Api::device const& part, typename Api::device const& whole, std::intptr_t scheme) {
    EXPECT_FALSE(part.is_root_device());
    EXPECT_EQ(part.parent_device(), whole);
    EXPECT_EQ(part.max_compute_units(), 1U);
    auto const type = part.partition_type();
    ASSERT_GE(type.size(), 2U);
    EXPECT_EQ(type[0], scheme);
    EXPECT_EQ(type[1], 1);
    expect_counted(part);
}

/// Runs a kernel on two devices that share a context and a buffer.
template <class Api>
void run_together(bench<Api>& b, devices<Api> const& parts) {
    auto context = create_context({}, devices<Api>{parts[0], parts[1]}, nullptr, nullptr);
    watch(b.name, raw_of(context));
    auto program = context.create_program_from_source("__kernel void f(__global int* v) { v[get_global_id(0)] += 1; }");
    program.build({}, "", nullptr, nullptr);
    numbers values{1, 2, 3};
    auto buffer = context.create_buffer(Api::mem_flags::read_write | Api::mem_flags::copy_host_ptr, 12, values.data());
    auto kernel = program.create_kernel("f");
    kernel.set_argument(0, buffer);
    for (std::size_t i : {0U, 1U}) {
        auto queue = Api::create_queue(context, parts[i], false, false);
        EXPECT_EQ(queue.get_device(), parts[i]);
        queue.enqueue_command_without_event(Api::launch(kernel, 3, 1));
        queue.enqueue_command_without_event(typename Api::read_buffer(buffer, true, 0, 12, values.data()));
        EXPECT_EQ(values, (i == 0 ? numbers{2, 3, 4} : numbers{3, 4, 5}));
    }
}

template <class Api, class Partition>
void partition(bench<Api>& b, std::intptr_t scheme, Partition create) {
    if (b.device.max_compute_units() < 2) {
        skip("the device has but one compute unit");
    }
    auto const before = refcount(b.device);
    {
        devices<Api> parts = create(b.device);
        ASSERT_GE(parts.size(), 2U);
        for (auto const& part : parts) {
            expect_part<Api>(part, b.device, scheme);
        }
        run_together(b, parts);
    }
    EXPECT_EQ(refcount(b.device), before);
}

SCENARIO(partition_equally, "sub-devices equally", 120) {
    partition(b, CL_DEVICE_PARTITION_EQUALLY, [](auto device) { return device.partition_equally(1); });
}

SCENARIO(partition_by_counts, "sub-devices by counts", 120) {
    partition(b, CL_DEVICE_PARTITION_BY_COUNTS, [](auto device) { return device.partition_by_counts({1, 1}); });
}

SCENARIO(partition_by_affinity, "sub-devices by affinity", 120) {
    auto const domains = b.device.partition_supported_affinity_domains();
    using domain = std::remove_const_t<decltype(domains)>;
    if (domains == domain{}) {
        EXPECT_THROW(b.device.partition_by_affinity(domain::numa), common::opencl_error);
        skip("the device lists no affinity domain");
    }
    EXPECT_FALSE(b.device.partition_by_affinity(domains).empty());
}

SCENARIO(refused_partition, "refused sub-devices", 120) {
    auto const units = b.device.max_compute_units();
    EXPECT_THROW(b.device.partition_by_counts({units, units}), common::opencl_error);
    EXPECT_THROW(b.device.partition_by_counts({1, 0}), std::logic_error);
}

} // namespace
} // namespace real
