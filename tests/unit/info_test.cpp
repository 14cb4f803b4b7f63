#include "unit/allocations.hpp"
#include "unit/members.hpp"

// What objects tell by their info entry points; devices have a file of their own.

namespace unit {
namespace {

class info : public members {
protected:
    /// A member that tests a property of a queue.
    void reads_property(auto& queue, word bit, auto read) {
        for (word const properties : {bit, ~word{0}, ~bit, word{0}}) {
            reads(queue, 0x1093, (properties & bit) != 0, read, reply_of(properties));
        }
    }
};

TEST_F(info, platforms) {
    reads_each(w.platform, 0x901, "a text", &platform::version, &platform::name, &platform::vendor);
    reads(w.platform, 0x904, names{"a", "b"}, &platform::extensions, scripted::text("a  b"));
    for (std::string const profile : {"FULL_PROFILE", "EMBEDDED_PROFILE", "FULL", ""}) {
        auto const reply = scripted::text(profile);
        reads(w.platform, 0x900, profile == "FULL_PROFILE", &platform::is_full_profile, reply);
        reads(w.platform, 0x900, profile == "EMBEDDED_PROFILE", &platform::is_embedded_profile, reply);
    }
#if UNIT_OPENCL >= 210
    reads(w.platform, 0x905, large, &platform::host_timer_resolution);
#endif
}

TEST_F(info, raw_devices_of_a_platform) {
    clGetDeviceIDs const counting{raw_of(w.platform), 0xFFFFFFFF, 0, nullptr, somewhere};
    lists(w.platform, counting, {raw_of(w.platform), 0xFFFFFFFF, 3, somewhere, nullptr}, 3,
          [&] { return w.platform.get_raw_devices(); });
}

TEST_F(info, contexts) {
    words const properties{0x1084, 5, 0};
    reads(w.context, 0x1081, w.devices, &context::get_devices);
    auto const read = [](context& of) { return scripted::bytes_of_list(of.get_properties()); };
    reads(w.context, 0x1082, reply_of(properties), read, reply_of(properties));
    until_no_allocation_fails([&] { return [&] { w.context.get_devices(); }; });
    EXPECT_EQ(allocations_of([&] { w.context.get_devices(); }), 1U);
    EXPECT_EQ(allocations_of([&] { w.context.get_properties(); }), 1U);
}

TEST_F(info, platform_of_a_context_is_that_of_its_first_device) {
    libnq.reply<clGetContextInfo>(0x1081, reply_of(w.ids));
    libnq.on<clGetDeviceInfo>([&](clGetDeviceInfo& block) {
        EXPECT_EQ(block.device, w.ids[0]);
        return false;
    });
    libnq.reply<clGetDeviceInfo>(0x1031, reply_of(w.platform));
    EXPECT_EQ(raw_of(w.context.get_platform()), raw_of(w.platform));
    libnq.reply<clGetContextInfo>(0x1081, "");
    EXPECT_EQ(message_of<common::bad_implementation>([&] { w.context.get_platform(); }),
              "Context has no associated devices, this is impossible.");
}

TEST_F(info, memory_objects) {
    reads_each(w.buffer, 0x1101, large, &buffer::flags, &buffer::size, &buffer::host_ptr);
    reads(w.buffer, 0x1106, w.context, &buffer::get_context);
#if UNIT_OPENCL >= 110
    reads(w.sub_buffer, 0x1108, large, &sub_buffer::offset);
    reads(w.sub_buffer, 0x1107, w.buffer, &sub_buffer::parent_buffer);
#endif
#if UNIT_OPENCL >= 200
    reads_each(w.pipe, 0x1120, number, &pipe::packet_size, &pipe::max_packets);
#endif
}

TEST_F(info, images_and_samplers) {
    reads(w.image, 0x1110, image_format{0x10B5, 0x10D2}, &image::get_image_format);
    reads_each(w.image, 0x1111, large, &image::element_size, &image::row_pitch, &image::slice_pitch, &image::width,
               &image::height, &image::depth);
#if UNIT_OPENCL >= 120
    reads(w.image, 0x1117, large, &image::array_size);
    reads_each(w.image, 0x1119, number, &image::num_mip_levels, &image::num_samples);
#endif
    reads(w.sampler, 0x1151, w.context, &sampler::get_context);
    reads_bool(w.sampler, 0x1152, &sampler::normalized_coords);
    reads_each(w.sampler, 0x1153, number, &sampler::addressing_mode, &sampler::filter_mode);
}

TEST_F(info, queues) {
    using queue = api::host_queue;
    reads(w.queue, 0x1090, w.context, &queue::get_context);
    reads(w.queue, 0x1091, w.device, &queue::get_device);
    reads_property(w.queue, 1, &queue::out_of_order_execution_enabled);
    reads_property(w.queue, 2, &queue::profiling_enabled);
#if UNIT_OPENCL >= 200
    reads(w.device_queue, 0x1090, w.context, &device_command_queue::get_context);
    reads(w.device_queue, 0x1094, number, &device_command_queue::device_queue_size);
    reads_property(w.device_queue, 2, &device_command_queue::profiling_enabled);
    reads_property(w.device_queue, 8, &device_command_queue::is_default);
#endif
#if UNIT_OPENCL >= 210
    reads(w.queue, 0x1095, w.device_queue, &queue::get_default_device_command_queue);
    reads(w.device_queue, 0x1095, w.device_queue, &device_command_queue::get_default_device_command_queue);
    // without a default the null handle is retained, which OpenCL refuses
    libnq.reply<clGetCommandQueueInfo>(0x1095, reply_of(word{0}));
    EXPECT_THROW(w.queue.get_default_device_command_queue(), common::invalid_value);
#endif
}

TEST_F(info, events) {
    reads(w.event, 0x11D1, number, &event::get_command_type);
    reads(w.event, 0x11D0, w.queue, &event::get_command_queue);
#if UNIT_OPENCL >= 110
    reads(w.event, 0x11D4, w.context, &event::get_context);
    for (word const found : {word{0}, word{0x100000000}}) {
        reads(w.event, 0x11D0, found != 0, &event::has_associated_command_queue, reply_of(found));
    }
#endif
    libnq.reply<clGetEventInfo>(0x11D0, reply_of(word{0}));
    EXPECT_EQ(message_of<std::logic_error>([&] { w.event.get_command_queue(); }),
              "Obtained a NULL command-queue. You must check that there is an associated command-queue before you call "
              "event::get_command_queue()");
}

TEST_F(info, event_failures_are_folded_into_one_status) {
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
    EXPECT_EQ(message_of<common::unknown_opencl_error>([&] { w.event.check(); }), "Unknown OpenCL Error Code: -9999");
}

TEST_F(info, times_of_events) {
    auto const reads = [&](std::uint32_t name, auto read) {
        clGetEventProfilingInfo const query{.event = raw_of(w.event), .param_name = name};
        members::reads(w.event, query, large, read);
    };
    reads(0x1280, &event::profile_command_queued);
    reads(0x1281, &event::profile_command_submit);
    reads(0x1282, &event::profile_command_start);
    reads(0x1283, &event::profile_command_end);
#if UNIT_OPENCL >= 200
    reads(0x1284, &event::profile_command_complete);
#endif
}

TEST_F(info, programs) {
    reads(w.program, 0x1161, w.context, &program::get_context);
    reads(w.program, 0x1163, w.devices, &program::get_devices);
    reads(w.program, 0x1164, "text", &program::source_code);
#if UNIT_OPENCL >= 120
    reads(w.program, 0x1167, large, &program::num_kernels);
    reads(w.program, 0x1168, names{"a", "b"}, &program::kernel_names, scripted::text("a;b"));
#endif
#if UNIT_OPENCL >= 210
    reads(w.program, 0x1169, std::vector<unsigned char>{3, 2, 35, 7, 1}, &program::il);
#endif
#if UNIT_OPENCL >= 220
    reads_bool(w.program, 0x116A, &program::global_constructors_present, &program::global_destructors_present);
#endif
}

TEST_F(info, builds) {
    auto const reads = [&](std::uint32_t name, auto const& expected, auto member) {
        clGetProgramBuildInfo const query{.program = raw_of(w.program), .device = raw_of(w.device), .param_name = name};
        members::reads(w.program, query, expected, [&](program& of) { return (of.*member)(w.device); });
    };
    for (std::int32_t const status : {0, -1, -2, -3}) {
        reads(0x1181, status, &program::build_status);
    }
    reads(0x1182, "-D X", &program::build_options);
    reads(0x1183, "a log", &program::build_log);
#if UNIT_OPENCL >= 120
    reads(0x1184, number, &program::binary_type);
#endif
#if UNIT_OPENCL >= 200
    reads(0x1185, large, &program::build_global_variable_total_size);
#endif
}

TEST_F(info, binaries_go_straight_into_their_vectors) {
    libnq.reply<clGetProgramInfo>(0x1163, reply_of(w.ids));
    libnq.reply<clGetProgramInfo>(0x1165, reply_of(words{3, 0}));
    std::array<unsigned char*, 2> places{};
    libnq.on<clGetProgramInfo>([&](clGetProgramInfo& block) {
        if (block.param_name != 0x1166) {
            return false;
        }
        clGetProgramInfo const expected{raw_of(w.program), 16, somewhere, somewhere, 0, 0x1166};
        EXPECT_EQ(scripted::inputs_of(block), scripted::inputs_of(expected));
        std::memcpy(places.data(), block.param_value, sizeof places);
        std::memcpy(places[0], "\1\2\3", 3);
        *block.param_value_size_ret = 1; // nobody reads it
        return true;
    });
    {
        auto const binaries = w.program.binaries();
        ASSERT_EQ(binaries.size(), 2U);
        EXPECT_EQ(binaries[0].binary, (std::vector<unsigned char>{1, 2, 3}));
        EXPECT_EQ(binaries[0].binary.data(), places[0]);
        EXPECT_EQ(binaries[1].binary.size(), 0U);
        EXPECT_EQ(raw_of(binaries[1].device), w.ids[1]);
        std::size_t const retained = counted<device> ? 2 : 0;
        EXPECT_EQ(libnq.calls().size(), 5 + retained) << "two lists of two calls, and the binaries";
    }
    until_no_allocation_fails([&] { return [&] { w.program.binaries(); }; });
    libnq.reply<clGetProgramInfo>(0x1165, reply_of(words{3}));
    EXPECT_EQ(message_of<common::bad_implementation>([&] { w.program.binaries(); }),
              "The number of binary sizes returned should be equal to the number of devices.");
}

TEST_F(info, kernels) {
    reads(w.kernel, 0x1190, "f", &kernel::function_name);
    reads(w.kernel, 0x1191, number, &kernel::num_args);
    reads(w.kernel, 0x1193, w.context, &kernel::get_context);
    reads(w.kernel, 0x1194, w.program, &kernel::get_program);
#if UNIT_OPENCL >= 120
    reads(w.kernel, 0x1195, names{"a", "b"}, &kernel::attributes, scripted::text("a  b "));
#endif
}

#if UNIT_OPENCL >= 120
TEST_F(info, kernel_arguments) {
    auto const reads = [&](std::uint32_t name, auto const& expected, auto member) {
        clGetKernelArgInfo const query{.kernel = raw_of(w.kernel), .arg_index = 5, .param_name = name};
        members::reads(w.kernel, query, expected, [&](kernel& of) { return (of.*member)(5); });
    };
    reads(0x1196, number, &kernel::argument_address_qualifier);
    reads(0x1197, number, &kernel::argument_access_qualifier);
    reads(0x1198, "int*", &kernel::argument_type_name);
    reads(0x1199, large, &kernel::argument_type_qualifier);
    reads(0x119A, "x", &kernel::argument_name);
}
#endif

TEST_F(info, work_groups) {
    auto const reads = [&](std::uint32_t name, auto const& expected, auto member) {
        clGetKernelWorkGroupInfo const query{
            .kernel = raw_of(w.kernel), .device = raw_of(w.device), .param_name = name};
        members::reads(w.kernel, query, expected, [&](kernel& of) { return (of.*member)(w.device); });
    };
    std::array<std::size_t, 3> const sizes{1, 2, large};
    reads(0x11B0, large, &kernel::max_work_group_size);
    reads(0x11B1, sizes, &kernel::compile_work_group_size);
    reads(0x11B2, large, &kernel::local_mem_size);
#if UNIT_OPENCL >= 110
    reads(0x11B3, large, &kernel::preferred_work_group_size_multiple);
    reads(0x11B4, large, &kernel::private_mem_per_work_item);
#endif
#if UNIT_OPENCL >= 120
    reads(0x11B5, sizes, &kernel::max_global_work_size);
#endif
}

#if UNIT_OPENCL >= 210
TEST_F(info, sub_groups) {
    auto const reads = [&](std::uint32_t name, words const& input, auto read) {
        clGetKernelSubGroupInfo query{.kernel = raw_of(w.kernel), .device = raw_of(w.device), .param_name = name};
        query.input_value_size = input.size() * 8;
        query.input_value = input.empty() ? nullptr : input.data();
        members::reads(w.kernel, query, large, read);
    };
    auto const of_ranges = [&](auto const& size) {
        words const input(size.begin(), size.end());
        reads(0x2033, input, [&](kernel& of) { return of.get_max_sub_group_size_for_nd_range(w.device, size); });
        reads(0x2034, input, [&](kernel& of) { return of.get_sub_group_count_for_nd_range(w.device, size); });
    };
    of_ranges(std::array<std::size_t, 1>{4});
    of_ranges(std::array<std::size_t, 2>{4, 5});
    of_ranges(std::array<std::size_t, 3>{4, 5, 6});
    reads(0x11B8, {77}, [&](kernel& of) { return of.get_local_size_for_sub_group_count(w.device, 77); });
    reads(0x11B9, {}, [&](kernel& of) { return of.get_max_num_sub_groups(w.device); });
    reads(0x11BA, {}, [&](kernel& of) { return of.compile_num_sub_groups(w.device); });
}
#endif

} // namespace
} // namespace unit
