#include "unit/members.hpp"

namespace unit {

constexpr word flags = 0x8000000000000021;
constexpr value any{flags};

struct contexts : members {
    static void on_error(char const*, void const*, std::size_t, void*) {}

    api::context& c = w.context;
    _nq_cl_context* const raw = raw_of(c);
    char memory[16]{};
    void* const host = memory;
};

TEST_F(contexts, is_made_of_devices) {
    std::vector<context_property> const properties{0x1084, 0x1234, 0};
    std::vector<context_property> const none;
    std::int64_t const list[]{0x1084, 0x1234, 0};
    // the devices are of two call handles: the first one's is taken
    performs(w.device, clCreateContext{list, 2, w.ids.data(), &on_error, &w},
             [&] { return create_context(properties, w.devices, &on_error, &w); });
    performs(w.device, clCreateContext{nullptr, 2, w.ids.data(), nullptr, nullptr},
             [&] { return create_context(none, w.devices, nullptr, nullptr); });
    performs(handle, clCreateContextFromType{list, flags, &on_error, &w},
             [&] { return create_context_from_type(handle, properties, any, &on_error, &w); });
    performs(handle, clCreateContextFromType{nullptr, 4, nullptr, nullptr},
             [&] { return create_context_from_type(handle, none, value{4}, nullptr, nullptr); });
    refuses<std::logic_error>("Cannot create a context without supplying any devices!",
                              [&] { create_context(none, {}, nullptr, nullptr); });
}

TEST_F(contexts, tells_what_it_is_made_of) {
    reads(c, 0x1081, w.devices, &context::get_devices);
    reads(c, 0x1082, words{0x1084, 5, 0}, &context::get_properties);
    EXPECT_EQ(allocations_of([&] { c.get_devices(); }), 1U);
    EXPECT_EQ(allocations_of([&] { c.get_properties(); }), 1U);
}

TEST_F(contexts, has_the_platform_of_its_first_device) {
    libnq.reply<clGetContextInfo>(0x1081, reply_of(w.ids));
    libnq.on<clGetDeviceInfo>([&](clGetDeviceInfo& block) {
        EXPECT_EQ(block.device, w.ids[0]);
        return false;
    });
    libnq.reply<clGetDeviceInfo>(0x1031, reply_of(w.platform));
    EXPECT_EQ(raw_of(c.get_platform()), raw_of(w.platform));
    libnq.reply<clGetContextInfo>(0x1081, "");
    throws<common::bad_implementation>("Context has no associated devices, this is impossible.",
                                       [&] { c.get_platform(); });
}

TEST_F(contexts, creates_memory_objects) {
    performs(c, clCreateBuffer{flags, raw, large, host}, [&] { return c.create_buffer(any, large, host); });
#if UNIT_OPENCL >= 110
    nq::buffer_region const region{0x111111111, 0x222222222};
    clCreateSubBuffer const sent{flags, raw_of(w.buffer), &region, nullptr, 0, 0x1220};
    performs(c, sent, [&] { return c.create_sub_buffer(w.buffer, any, region.origin, region.size); });
#endif
#if UNIT_OPENCL >= 200
    performs(c, clCreatePipe{flags, raw, nullptr, nullptr, 0xFFFFFFFE, 7},
             [&] { return c.create_pipe(any, 0xFFFFFFFE, 7); });
    performs(c, clSVMAlloc{flags, raw, large, nullptr, 64}, // the alignment has 32 bits
             [&] { return c.svm_allocate(any, large, 0x100000040); });
    performs(c, clSVMFree{raw, host}, [&] { c.svm_free(host); });
    libnq.on<clSVMAlloc>([](clSVMAlloc& block) { return (block.result = nullptr) == nullptr; });
    EXPECT_EQ(c.svm_allocate(any, 1, 0), nullptr);
#endif
}

// The sizes and pitches are all different, so that an exchange is seen.
TEST_F(contexts, creates_images) {
    image_format const format{0x10B5, 0x10D2};
#if UNIT_OPENCL < 120
    performs(c, clCreateImage2D{flags, raw, &format, 11, 12, 13, host},
             [&] { return c.create_image_2d(any, format, 11, 12, 13, host); });
    performs(c, clCreateImage3D{flags, raw, &format, 11, 12, 13, 14, 15, host},
             [&] { return c.create_image_3d(any, format, 11, 12, 13, 14, 15, host); });
#else
    // A descriptor is the type, width, height, depth, array size, row pitch, slice pitch, two counts and a buffer.
    auto const creates = [&](nq::image_desc const& descriptor, auto create) {
        performs(c, clCreateImage{flags, raw, &format, &descriptor, host}, create);
    };
    creates({0x10F4, 11, 0, 0, 0, 12}, [&] { return c.create_image_1d(any, format, 11, 12, host); });
    creates({0x10F6, 11, 0, 0, 0, 12, 0, 0, 0, raw_of(w.buffer)},
            [&] { return c.create_image_1d_buffer(any, format, w.buffer, 11, 12, host); });
    creates({0x10F5, 11, 0, 0, 12, 14, 13}, [&] { return c.create_image_1d_array(any, format, 11, 12, 13, 14, host); });
    creates({0x10F1, 11, 12, 0, 0, 13}, [&] { return c.create_image_2d(any, format, 11, 12, 13, host); });
    creates({0x10F3, 64, 65, 0, 4, 256, 4096},
            [&] { return c.create_image_2d_array(any, format, 64, 65, 4, 4096, 256, host); });
    creates({0x10F2, 11, 12, 13, 0, 14, 15}, [&] { return c.create_image_3d(any, format, 11, 12, 13, 14, 15, host); });
#endif
}

template <class Fixture, class List>
void expect_formats(Fixture& test, std::uint32_t type, List list) {
    context& asked = test.c;
    for (std::uint32_t const count : {0U, 2U}) {
        std::vector<image_format> const formats(count, {0x10B0, 0x10DE});
        test.libnq.template reply<clGetSupportedImageFormats>(type, reply_of(formats));
        clGetSupportedImageFormats const counting{flags, test.raw, nullptr, somewhere, 0, type, 0};
        clGetSupportedImageFormats const listing{flags, test.raw, somewhere, nullptr, 0, type, count};
        test.members::lists(asked, counting, listing, count, [&asked, list] { return (asked.*list)(any); });
        EXPECT_EQ((asked.*list)(any), formats);
    }
}

TEST_F(contexts, lists_image_formats_in_two_calls) {
    expect_formats(*this, 0x10F1, &context::image_2d_supported_formats);
    expect_formats(*this, 0x10F2, &context::image_3d_supported_formats);
#if UNIT_OPENCL >= 120
    expect_formats(*this, 0x10F4, &context::image_1d_supported_formats);
    expect_formats(*this, 0x10F6, &context::image_1d_buffer_supported_formats);
    expect_formats(*this, 0x10F5, &context::image_1d_array_supported_formats);
    expect_formats(*this, 0x10F3, &context::image_2d_array_supported_formats);
#endif
    // what the second call leaves unwritten stays zero, and the vector is not shrunk
    libnq.on<clGetSupportedImageFormats>([](clGetSupportedImageFormats& block) {
        return block.num_image_formats == nullptr || (*block.num_image_formats = 3) != 0;
    });
    EXPECT_EQ(reply_of(c.image_2d_supported_formats(any)), std::string(24, '\0'));
}

TEST_F(contexts, creates_samplers) {
    for (bool const normalized : {false, true}) {
#if UNIT_OPENCL < 200
        clCreateSampler const sent{raw, normalized, 0x1133, 0x1141};
#else
        words const properties{0x1152, normalized, 0x1153, 0x1133, 0x1154, 0x1141, 0};
        clCreateSamplerWithProperties const sent{raw, properties.data()};
#endif
        performs(c, sent, [&] { return c.create_sampler(normalized, value{0x1133}, value{0x1141}); });
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
        performs(c, sent, [&] { return api::create_queue(c, w.device, (bits & 1) != 0, (bits & 2) != 0); });
    }
}

#if UNIT_OPENCL >= 200
TEST_F(contexts, creates_device_queues) {
    auto const creates = [&](words const& properties, auto make) {
        performs(c, clCreateCommandQueueWithProperties{raw_of(w.device), raw, properties.data()}, make);
    };
    for (bool const profiling : {false, true}) {
        word const bits = profiling ? 7 : 5;
        creates({0x1093, bits, 0}, [&] { return c.create_device_command_queue(w.device, profiling); });
        creates({0x1093, bits, 0x1094, 65536, 0},
                [&] { return c.create_device_command_queue(w.device, profiling, 65536); });
        creates({0x1093, bits + 8, 0}, [&] { return c.create_default_device_command_queue(w.device, profiling); });
        creates({0x1093, bits + 8, 0x1094, 0, 0},
                [&] { return c.create_default_device_command_queue(w.device, profiling, 0); });
    }
#if UNIT_OPENCL >= 210
    performs(c, clSetDefaultDeviceCommandQueue{raw, raw_of(w.device), raw_of(w.device_queue)},
             [&] { c.set_default_device_command_queue(w.device, w.device_queue); });
#endif
}
#endif

TEST_F(contexts, creates_programs) {
    char const* source = "kernel void f() {}";
    clCreateProgramWithSource sent{.context = raw, .strings = &source, .count = 1};
    performs(c, sent, [&] { return c.create_program_from_source(std::string(source)); });
    performs(c, sent, [&] { return c.create_program_from_source(source); });
    source = nullptr; // is OpenCL's to judge
    performs(c, sent, [&] { return c.create_program_from_source(source); });
#if UNIT_OPENCL >= 120
    performs(c, clCreateProgramWithBuiltInKernels{raw, w.ids.data(), "a;b", nullptr, 0, 2}, [&] {
        return c.create_program_from_builtin_kernels(w.devices, names{"a", "b"});
    });
    performs(c, clCreateProgramWithBuiltInKernels{.context = raw, .kernel_names = ""},
             [&] { return c.create_program_from_builtin_kernels({}, {}); });
#endif
#if UNIT_OPENCL >= 210
    std::vector<unsigned char> const il{3, 2, 35, 7};
    performs(c, clCreateProgramWithIL{raw, il.data(), 4}, [&] { return c.create_program_from_il(il); });
#endif
}

TEST_F(contexts, creates_programs_from_binaries) {
    std::vector<device_binary> const binaries{{w.device, {1, 2, 3}}, {w.device_2, {4}}};
    unsigned char const* const bytes[]{binaries[0].binary.data(), binaries[1].binary.data()};
    std::size_t const lengths[]{3, 1};
    clCreateProgramWithBinary const sent{
        .context = raw, .device_list = w.ids.data(), .lengths = lengths, .binaries = bytes, .num_devices = 2};
    performs(c, sent, [&] { return c.create_program_from_binary(binaries); });
    refuses<std::logic_error>("Cannot create a device binary from an empty collection of binaries.",
                              [&] { c.create_program_from_binary({}); });
}

#if UNIT_OPENCL >= 120
TEST_F(contexts, links_programs) {
    std::vector<program> const linked{w.program, w.program_2, w.program};
    _nq_cl_program* const inputs[]{raw_of(w.program), raw_of(w.program_2), raw_of(w.program)};
    auto* const on_program = +[](_nq_cl_program*, void*) {};
    performs(c, clLinkProgram{raw, w.ids.data(), "-x", inputs, on_program, nullptr, &w, 0, 2, 3},
             [&] { return c.link_programs(w.devices, linked, "-x", on_program, &w); });
    auto const link_nothing = [&] { return c.link_programs({}, {}, "", nullptr, nullptr); };
    performs(c, clLinkProgram{.context = raw, .options = ""}, link_nothing);
    libnq.fail(scripted::status(-11));
    EXPECT_THROW(link_nothing(), common::build_program_failure);
}
#endif

TEST_F(contexts, creates_user_events_and_waits) {
    _nq_cl_event* const events[]{raw_of(w.event), nullptr};
    performs(c, clWaitForEvents{events, 0, 2}, [&] { c.wait_for_events(2, events); });
    performs(c, clWaitForEvents{nullptr, 0, 0}, [&] { c.wait_for_events(0, nullptr); });
#if UNIT_OPENCL >= 110
    performs(c, clCreateUserEvent{raw}, [&] { return c.create_user_event(); });
#endif
}

} // namespace unit
