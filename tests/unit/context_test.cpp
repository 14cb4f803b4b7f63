#include "unit/allocations.hpp"
#include "unit/members.hpp"

namespace unit {
namespace {

using namespace nq::block; // NOLINT(google-build-using-namespace)

template <class Api>
class contexts : public members<Api> {
protected:
    std::array<char, 16> memory{};
};
TYPED_TEST_SUITE(contexts, versions);

constexpr word flags = 0x8000000000000021;

template <class Api>
using properties_type = std::vector<typename Api::context_property>;

void on_error(char const*, void const*, std::size_t, void*) {}
void on_program(_nq_cl_program*, void*) {}

TYPED_TEST(contexts, is_made_of_devices) {
    auto& w = this->objects;
    properties_type<TypeParam> const properties{0x1084, 0x1234, 0};
    auto const ids = scripted::bytes_of(word_of(w.device), word_of(w.device_2));
    // the devices are of two call handles: the first one's is taken
    this->template performs<clCreateContext>(
        w.device, {.status = 48, .object = 40}, {u8(0, properties.data()), u4(8, 2), u8(24, &on_error), u8(32, &w)},
        [&] { return w.create_context(properties, w.devices, &on_error, &w); }, {{"devices", ids}});
    properties_type<TypeParam> const none;
    this->template performs<clCreateContext>(w.device, {.status = 48, .object = 40},
                                             {u8(0, nullptr), u4(8, 2), u8(24, nullptr), u8(32, nullptr)},
                                             [&] { return w.create_context(none, w.devices, nullptr, nullptr); });
    this->forget();
    EXPECT_EQ(message_of<std::logic_error>(
                  [&] { w.create_context(none, std::vector<typename TypeParam::device>{}, nullptr, nullptr); }),
              "Cannot create a context without supplying any devices!");
    EXPECT_EQ(this->libnq.names(), calls{});
}

TYPED_TEST(contexts, is_made_of_a_device_type) {
    auto& w = this->objects;
    properties_type<TypeParam> const properties{0x1084, 0x1234, 0};
    properties_type<TypeParam> const none;
    auto const& other = owner_access::call_handle(w.queue);
    auto const makes = [&](auto const& list, void const* passed) {
        this->template performs<clCreateContextFromType>(
            other, {.status = 40, .object = 32}, {u8(0, passed), u8(8, flags), u8(16, &on_error), u8(24, &w)}, [&] {
                typename TypeParam::device_type const type = value{flags};
                return w.create_context_from_type(other, list, type, &on_error, &w);
            });
    };
    makes(properties, properties.data());
    makes(none, nullptr);
}

TYPED_TEST(contexts, creates_memory_objects) {
    auto& w = this->objects;
    this->template performs<clCreateBuffer>(
        w.context, {.status = 40, .object = 32},
        {u8(0, flags), u8(8, w.context), u8(16, 0x123456789A), u8(24, this->memory.data())},
        [&] { return w.context.create_buffer(value{flags}, 0x123456789A, this->memory.data()); });
    if constexpr (TypeParam::number >= 110) {
        this->template performs<clCreateSubBuffer>(
            w.context, {.status = 32, .object = 24}, {u8(0, flags), u8(8, w.buffer), u4(36, 0x1220)},
            [&] { return w.context.create_sub_buffer(w.buffer, value{flags}, 0x111111111, 0x222222222); },
            {list("buffer_create_info", {0x111111111, 0x222222222})});
    }
    if constexpr (TypeParam::number >= 200) {
        this->template performs<clCreatePipe>(
            w.context, {.status = 40, .object = 24},
            {u8(0, flags), u8(8, w.context), u8(16, nullptr), u4(32, 0xFFFFFFFE), u4(36, 7)},
            [&] { return w.context.create_pipe(value{flags}, 0xFFFFFFFE, 7); });
    }
}

// The sizes and pitches are all different, so that an exchange is seen.
TYPED_TEST(contexts, creates_images_from_sizes) {
    if constexpr (TypeParam::number < 120) {
        auto& w = this->objects;
        typename TypeParam::image_format const format{value{0x10B5}, value{0x10D2}};
        std::vector<pointee> const formats{list<std::uint32_t>("image_format", {0x10B5, 0x10D2})};
        void* const host = this->memory.data();
        this->template performs<clCreateImage2D>(
            w.context, {.status = 64, .object = 56},
            {u8(0, flags), u8(8, w.context), u8(24, 11), u8(32, 12), u8(40, 13), u8(48, host)},
            [&] { return w.context.create_image_2d(value{flags}, format, 11, 12, 13, host); }, formats);
        this->template performs<clCreateImage3D>(
            w.context, {.status = 80, .object = 72},
            {u8(0, flags), u8(8, w.context), u8(24, 11), u8(32, 12), u8(40, 13), u8(48, 14), u8(56, 15), u8(64, host)},
            [&] { return w.context.create_image_3d(value{flags}, format, 11, 12, 13, 14, 15, host); }, formats);
    }
}

TYPED_TEST(contexts, creates_images_from_a_descriptor) {
    if constexpr (TypeParam::number >= 120) {
        auto& w = this->objects;
        typename TypeParam::image_format const format{value{0x10B5}, value{0x10D2}};
        void* const host = this->memory.data();
        // A descriptor is the type, width, height, depth, array size, row pitch, slice pitch, two counts and a buffer.
        auto const creates = [&](std::vector<word> const& descriptor, auto create) {
            this->template performs<clCreateImage>(
                w.context, {.status = 48, .object = 40}, {u8(0, flags), u8(8, w.context), u8(32, host)},
                [&] { return create(value{flags}, format); },
                {list<std::uint32_t>("image_format", {0x10B5, 0x10D2}), list("image_desc", descriptor)});
        };
        creates({0x10F4, 11, 0, 0, 0, 12, 0, 0, 0},
                [&](auto... head) { return w.context.create_image_1d(head..., 11, 12, host); });
        creates({0x10F6, 11, 0, 0, 0, 12, 0, 0, word_of(w.buffer)},
                [&](auto... head) { return w.context.create_image_1d_buffer(head..., w.buffer, 11, 12, host); });
        creates({0x10F5, 11, 0, 0, 12, 14, 13, 0, 0},
                [&](auto... head) { return w.context.create_image_1d_array(head..., 11, 12, 13, 14, host); });
        creates({0x10F1, 11, 12, 0, 0, 13, 0, 0, 0},
                [&](auto... head) { return w.context.create_image_2d(head..., 11, 12, 13, host); });
        creates({0x10F3, 64, 65, 0, 4, 256, 4096, 0, 0},
                [&](auto... head) { return w.context.create_image_2d_array(head..., 64, 65, 4, 4096, 256, host); });
        creates({0x10F2, 11, 12, 13, 0, 14, 15, 0, 0},
                [&](auto... head) { return w.context.create_image_3d(head..., 11, 12, 13, 14, 15, host); });
    }
}

TYPED_TEST(contexts, lists_image_formats_in_two_calls) {
    auto& w = this->objects;
    auto const lists = [&](std::uint32_t type, auto read) {
        for (std::vector<std::uint32_t> const& words :
             {std::vector<std::uint32_t>{}, {0x10B0, 0x10DE, 0x10B5, 0x10D2}}) {
            this->libnq.template reply<clGetSupportedImageFormats>(type, scripted::bytes_of_list(words));
            this->forget();
            auto const formats = read();
            EXPECT_EQ(scripted::bytes_of_list(formats), scripted::bytes_of_list(words));
            this->expect_listing("clGetSupportedImageFormats", handle_of(w.context),
                                 {u8(0, flags), u8(8, w.context), u4(36, type)}, {40, 16, 24}, words.size() / 2);
        }
        for (unsigned const n : {1U, 2U}) {
            this->libnq.template fail<clGetSupportedImageFormats>(scripted::status(-30), n);
            EXPECT_THROW(read(), common::invalid_value);
        }
    };
    constexpr value any{flags};
    lists(0x10F1, [&] { return w.context.image_2d_supported_formats(any); });
    lists(0x10F2, [&] { return w.context.image_3d_supported_formats(any); });
    if constexpr (TypeParam::number >= 120) {
        lists(0x10F4, [&] { return w.context.image_1d_supported_formats(any); });
        lists(0x10F6, [&] { return w.context.image_1d_buffer_supported_formats(any); });
        lists(0x10F5, [&] { return w.context.image_1d_array_supported_formats(any); });
        lists(0x10F3, [&] { return w.context.image_2d_array_supported_formats(any); });
    }
    // what the second call leaves unwritten stays zero, and the vector is not shrunk
    this->libnq.template on<clGetSupportedImageFormats>([](clGetSupportedImageFormats& block) {
        if (block.num_image_formats != nullptr) {
            *block.num_image_formats = 3;
        }
    });
    EXPECT_EQ(scripted::bytes_of_list(w.context.image_2d_supported_formats(any)), std::string(24, '\0'));
}

TYPED_TEST(contexts, creates_samplers) {
    auto& w = this->objects;
    for (bool const normalized : {false, true}) {
        auto const make = [&] { return w.context.create_sampler(normalized, value{0x1133}, value{0x1141}); };
        if constexpr (TypeParam::number < 200) {
            this->template performs<clCreateSampler>(
                w.context, {.status = 20, .object = 24},
                {u8(0, w.context), u4(8, normalized), u4(12, 0x1133), u4(16, 0x1141)}, make);
        } else {
            this->template performs<clCreateSamplerWithProperties>(
                w.context, {.status = 24, .object = 16}, {u8(0, w.context)}, make,
                {list("sampler_properties", {0x1152, normalized, 0x1153, 0x1133, 0x1154, 0x1141, 0})});
        }
    }
}

TYPED_TEST(contexts, creates_host_queues) {
    auto& w = this->objects;
    for (word const bits : {0U, 1U, 2U, 3U}) {
        auto const make = [&] {
            return TypeParam::create_queue(w.context, w.device, (bits & 1) != 0, (bits & 2) != 0);
        };
        if constexpr (TypeParam::number < 200) {
            this->template performs<clCreateCommandQueue>(w.context, {.status = 24, .object = 32},
                                                          {u8(0, w.context), u8(8, w.device), u8(16, bits)}, make);
        } else {
            this->template performs<clCreateCommandQueueWithProperties>(w.context, {.status = 32, .object = 24},
                                                                        {u8(0, w.device), u8(8, w.context)}, make,
                                                                        {list("properties", {0x1093, bits, 0})});
        }
    }
}

TYPED_TEST(contexts, creates_device_queues) {
    if constexpr (TypeParam::number >= 200) {
        auto& w = this->objects;
        auto const creates = [&](std::vector<word> const& properties, auto make) {
            this->template performs<clCreateCommandQueueWithProperties>(
                w.context, {.status = 32, .object = 24}, {u8(0, w.device), u8(8, w.context)}, [&] { return make(); },
                {list("properties", properties)});
        };
        for (bool const profiling : {false, true}) {
            word const bits = profiling ? 7 : 5;
            creates({0x1093, bits, 0}, [&] { return w.context.create_device_command_queue(w.device, profiling); });
            creates({0x1093, bits, 0x1094, 65536, 0},
                    [&] { return w.context.create_device_command_queue(w.device, profiling, 65536); });
            creates({0x1093, bits + 8, 0},
                    [&] { return w.context.create_default_device_command_queue(w.device, profiling); });
            creates({0x1093, bits + 8, 0x1094, 0, 0},
                    [&] { return w.context.create_default_device_command_queue(w.device, profiling, 0); });
        }
    }
    if constexpr (TypeParam::number >= 210) {
        auto& w = this->objects;
        this->template performs<clSetDefaultDeviceCommandQueue>(
            w.context, {.status = 24}, {u8(0, w.context), u8(8, w.device), u8(16, w.device_queue)},
            [&] { w.context.set_default_device_command_queue(w.device, w.device_queue); });
    }
}

TYPED_TEST(contexts, creates_programs) {
    auto& w = this->objects;
    std::string const source{"kernel void f() {}"};
    auto const creates = [&](auto const& given, std::string const& sent) {
        this->template performs<clCreateProgramWithSource>(
            w.context, {.status = 32, .object = 24}, {u8(0, w.context), u8(16, nullptr), u4(36, 1)},
            [&] { return w.context.create_program_from_source(given); }, {{"strings", sent}});
    };
    creates(source, source);
    creates(source.c_str(), source);
    creates(static_cast<char const*>(nullptr), ""); // is OpenCL's to judge
    std::vector<typename TypeParam::device_binary> const binaries{{w.device, {1, 2, 3}}, {w.device_2, {4}}};
    this->template performs<clCreateProgramWithBinary>(
        w.context, {.status = 48, .object = 40}, {u8(0, w.context), u8(32, nullptr), u4(52, 2)},
        [&] {
            auto made = w.context.create_program_from_binary(binaries);
            EXPECT_EQ(this->libnq.calls().back().parts("binaries"), (calls{"\1\2\3", "\4"}));
            return made;
        },
        {list("device_list", {word_of(w.device), word_of(w.device_2)}), list("lengths", {3, 1})});
    this->forget();
    EXPECT_EQ(message_of<std::logic_error>([&] { w.context.create_program_from_binary({}); }),
              "Cannot create a device binary from an empty collection of binaries.");
    EXPECT_EQ(this->libnq.names(), calls{});
    if constexpr (TypeParam::number >= 210) {
        std::vector<unsigned char> const il{3, 2, 35, 7};
        this->template performs<clCreateProgramWithIL>(
            w.context, {.status = 32, .object = 24}, {u8(0, w.context), u8(8, il.data()), u8(16, 4)},
            [&] { return w.context.create_program_from_il(il); }, {{"il", {3, 2, 35, 7}}});
    }
}

TYPED_TEST(contexts, creates_programs_of_builtin_kernels_and_by_linking) {
    if constexpr (TypeParam::number >= 120) {
        auto& w = this->objects;
        auto const devices = list("device_list", {word_of(w.device), word_of(w.device_2)});
        auto const programs = list("input_programs", {word_of(w.program), word_of(w.program_2)});
        results const at{.status = 32, .object = 24};
        this->template performs<clCreateProgramWithBuiltInKernels>(
            w.context, at, {u8(0, w.context), u4(36, 2)},
            [&] {
                return w.context.create_program_from_builtin_kernels(w.devices, {"a", "b"});
            },
            {devices, {"kernel_names", "a;b"}});
        this->template performs<clCreateProgramWithBuiltInKernels>(
            w.context, at, {u8(0, w.context), u8(8, nullptr), u4(36, 0)},
            [&] { return w.context.create_program_from_builtin_kernels({}, {}); }, {{"kernel_names", ""}});
        results const linked{.status = 56, .object = 40};
        this->template performs<clLinkProgram>(
            w.context, linked, {u8(0, w.context), u8(32, &on_program), u8(48, &w), u4(60, 2), u4(64, 2)},
            [&] { return w.context.link_programs(w.devices, w.programs, "-x", &on_program, &w); },
            {devices, programs, {"options", "-x"}});
        this->template performs<clLinkProgram>(
            w.context, linked,
            {u8(0, w.context), u8(8, nullptr), u8(24, nullptr), u8(32, nullptr), u8(48, nullptr), u4(60, 0), u4(64, 0)},
            [&] { return w.context.link_programs({}, {}, "", nullptr, nullptr); }, {{"options", ""}});
        this->libnq.template fail<clLinkProgram>(scripted::status(-11));
        EXPECT_THROW(w.context.link_programs({}, {}, "", nullptr, nullptr), common::build_program_failure);
    }
}

TYPED_TEST(contexts, creates_user_events_and_waits) {
    auto& w = this->objects;
    std::array<_nq_cl_event*, 2> const events{owner_access::raw(w.event), nullptr};
    this->template performs<clWaitForEvents>(w.context, {.status = 8}, {u8(0, events.data()), u4(12, 2)},
                                             [&] { w.context.wait_for_events(2, events.data()); });
    this->template performs<clWaitForEvents>(w.context, {.status = 8}, {u8(0, nullptr), u4(12, 0)},
                                             [&] { w.context.wait_for_events(0, nullptr); });
    if constexpr (TypeParam::number >= 110) {
        this->template performs<clCreateUserEvent>(w.context, {.status = 16, .object = 8}, {u8(0, w.context)},
                                                   [&] { return w.context.create_user_event(); });
    }
}

TYPED_TEST(contexts, allocates_shared_memory) {
    if constexpr (TypeParam::number >= 200) {
        auto& w = this->objects;
        this->template performs<clSVMAlloc>(
            w.context, {.object = 24},
            {u8(0, flags), u8(8, w.context), u8(16, 0x123456789A), u4(32, 64)}, // the alignment has 32 bits
            [&] { return w.context.svm_allocate(value{flags}, 0x123456789A, 0x100000040); });
        this->template performs<clSVMFree>(w.context, {}, {u8(0, w.context), u8(8, this->memory.data())},
                                           [&] { w.context.svm_free(this->memory.data()); });
        this->libnq.template on<clSVMAlloc>([](clSVMAlloc& block) { block.result = nullptr; });
        EXPECT_EQ(w.context.svm_allocate(value{flags}, 1, 0), nullptr);
    }
}

TYPED_TEST(contexts, lists_its_devices_and_properties) {
    auto& w = this->objects;
    this->template lists_devices<clGetContextInfo>(w.context, 0x1081, [&] { return w.context.get_devices(); });
    std::vector<word> const properties{0x1084, 5, 0};
    this->template reads<clGetContextInfo>(w.context, 0x1082, scripted::bytes_of_list(properties),
                                           scripted::bytes_of_list(properties),
                                           [&] { return scripted::bytes_of_list(w.context.get_properties()); });
    until_no_allocation_fails([&] { return [&] { w.context.get_devices(); }; });
    allocation_watch const watch;
    w.context.get_devices();
    w.context.get_properties();
    EXPECT_EQ(watch.count(), 2U) << "one for each result";
}

} // namespace
} // namespace unit
