#include "unit/members.hpp"

#include <algorithm>
#include <cctype>

namespace unit {
namespace {

using namespace nq::block; // NOLINT(google-build-using-namespace)
namespace extension_1_0 = vorn::mero::opencl_1_0::extension;
namespace extension_2_0 = vorn::mero::opencl_2_0::extension;

template <class Api>
struct extensions;

#define UNIT_BODY "unit/extension_body.inc"
#include "unit/every_version.inc"

/// The extension functions of a test's OpenCL, which remember what they are called with.
struct functions {
    using arguments = std::vector<word>;

    std::vector<arguments> calls;
    std::string input; ///< What the last input pointer led to.
    std::int32_t status = 0;
    _nq_cl_program* made = nullptr;
    std::size_t reported = 8;    ///< To the size query.
    std::size_t reported_at = 8; ///< To the read.

    static functions& now() {
        static functions current;
        return current;
    }

    static std::int32_t answer_info(std::size_t size, void* result, std::size_t* size_ret) {
        *size_ret = result == nullptr ? now().reported : now().reported_at;
        if (result != nullptr) {
            std::memset(result, 0x5A, size);
        }
        return now().status;
    }

    static std::int32_t get_kernel_info(_nq_cl_kernel* kernel, _nq_cl_device_id* device, std::uint32_t name,
                                        std::size_t size, void* result, std::size_t* size_ret) {
        now().calls.push_back({word_of(kernel), word_of(device), name, size, result != nullptr});
        return answer_info(size, result, size_ret);
    }

    static std::int32_t get_sub_group_info(_nq_cl_kernel* kernel, _nq_cl_device_id* device, std::uint32_t name,
                                           std::size_t input_size, void const* input, std::size_t size, void* result,
                                           std::size_t* size_ret) {
        now().calls.push_back({word_of(kernel), word_of(device), name, input_size, size, result != nullptr});
        now().input.assign(static_cast<char const*>(input), input_size);
        return answer_info(size, result, size_ret);
    }

    static _nq_cl_program* create_program(_nq_cl_context* context, void const* il, std::size_t size,
                                          std::int32_t* error) {
        now().calls.push_back({word_of(context), word_of(il), size});
        *error = now().status;
        return now().made;
    }

    static std::int32_t terminate(_nq_cl_context* context) {
        now().calls.push_back({word_of(context)});
        return now().status;
    }

    static void track(_nq_cl_platform_id* platform) { now().calls.push_back({word_of(platform)}); }

    static void report(_nq_cl_platform_id* platform, void (*callback)(void*, void*, char const*, std::uint32_t),
                       void* user_data) {
        now().calls.push_back({word_of(platform), word_of(callback), word_of(user_data)});
    }
};

using arguments = functions::arguments;
constexpr word answered = 0x5A5A5A5A5A5A5A5A;

template <class Api>
class extension_functions : public members<Api> {
protected:
    static constexpr bool by_platform = Api::number >= 120;

    extension_functions() {
        functions::now() = {};
        auto& w = this->objects;
        this->libnq.template reply<clGetDeviceInfo>(0x1031, scripted::bytes_of(word_of(w.platform)));
        this->libnq.template reply<clGetContextInfo>(0x1081, scripted::bytes_of(word_of(w.device)));
    }

    /// From now on OpenCL has one extension function.
    template <class Function>
    void offer(std::string const& name, Function* function) {
        this->libnq.template on<clGetExtensionFunctionAddress>(
            [=](clGetExtensionFunctionAddress& block) { look_up(block, name, function); });
        this->libnq.template on<clGetExtensionFunctionAddressForPlatform>(
            [=](clGetExtensionFunctionAddressForPlatform& block) { look_up(block, name, function); });
    }

    /// Expects one look-up through an object's call handle, from 1.2 on for its platform.
    void expect_look_up(nq_call_handle* through, std::string const& name) {
        auto const made = this->libnq.calls();
        auto const is_look_up = [](scripted::call const& call) { return call.name.starts_with("clGetExtension"); };
        ASSERT_EQ(std::count_if(made.begin(), made.end(), is_look_up), 1);
        auto const& call = *std::find_if(made.begin(), made.end(), is_look_up);
        EXPECT_EQ(call.handle, through);
        EXPECT_EQ(call.bytes("func_name"), name);
        if (by_platform) {
            expect_fields(call, {u8(0, this->objects.platform)});
        }
        this->forget();
    }

private:
    template <class Block, class Function>
    static void look_up(Block& block, std::string const& name, Function* function) {
        if (block.func_name == name) {
            block.result = reinterpret_cast<void*>(function);
        }
    }
};
TYPED_TEST_SUITE(extension_functions, versions);

std::string upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::toupper(c); });
    return text;
}

TYPED_TEST(extension_functions, is_supported_when_an_entry_begins_its_name) {
    auto& w = this->objects;
    for (auto const& [name, available] : extensions<TypeParam>::support_tests()) {
        SCOPED_TRACE(name);
        bool const khronos = name.starts_with("cl_khr");
        std::pair<std::string, bool> const lists[] = {{name, true},
                                                      {"cl_other " + upper(name) + " x", true},
                                                      {name.substr(0, name.size() - 1), true},
                                                      {name + "x", false},
                                                      {"cl_other l" + name, false},
                                                      {"cl_khr", khronos},
                                                      {" CL ", true},
                                                      {" ", false}};
        for (auto const& [list, expected] : lists) {
            this->template reads<clGetDeviceInfo>(w.device, 0x1030, scripted::text(list), expected,
                                                  [&, available = available] { return available(w.device); });
        }
    }
    this->libnq.template reply<clGetDeviceInfo>(0x1030, scripted::text("a b"));
    EXPECT_FALSE(extensions<TypeParam>::supported(w.device, ""));
}

TYPED_TEST(extension_functions, tells_of_kernels_by_thirteen_parameters) {
    auto& w = this->objects;
    auto const all = extensions<TypeParam>::kernel_info();
    EXPECT_FALSE(extensions<TypeParam>::has_kernel_info(w.device));
    EXPECT_EQ(message_of<std::logic_error>([&] { all.front()(w.device, w.kernel); }),
              "clGetKernelInfoAMD call not supported.  Check support first.");
    this->offer("clGetKernelInfoAMD", &functions::get_kernel_info);
    this->forget();
    EXPECT_TRUE(extensions<TypeParam>::has_kernel_info(w.device));
    this->expect_look_up(handle_of(w.device), "clGetKernelInfoAMD");
    ASSERT_EQ(all.size(), 13U);
    for (word parameter = 1; parameter <= 13; ++parameter) {
        functions::now() = {};
        EXPECT_EQ(all[parameter - 1](w.device, w.kernel), answered);
        this->expect_look_up(handle_of(w.device), "clGetKernelInfoAMD");
        EXPECT_EQ(functions::now().calls,
                  (std::vector<arguments>{{word_of(w.kernel), word_of(w.device), parameter, 0, 0},
                                          {word_of(w.kernel), word_of(w.device), parameter, 8, 1}}));
    }
    functions::now() = {};
    functions::now().reported = 0;
    EXPECT_EQ(all.front()(w.device, w.kernel), answered);
    EXPECT_EQ(functions::now().calls.back().at(3), 16U);
    functions::now().reported_at = 4;
    EXPECT_EQ(message_of<common::bad_implementation>([&] { all.front()(w.device, w.kernel); }),
              "OpenCL implementation did not provide expected size of data.  Expected: 8 bytes, but implementation "
              "provided 4 bytes.");
    functions::now().status = -48;
    EXPECT_THROW(all.front()(w.device, w.kernel), common::invalid_kernel);
}

TYPED_TEST(extension_functions, tells_of_sub_groups) {
    auto& w = this->objects;
    extensions<TypeParam>::visit_sub_groups([&](std::string const& name, auto max, auto count) {
        std::string const function = "clGetKernelSubGroupInfoKHR";
        auto const reads = [&](auto const& size) {
            std::string const input = scripted::bytes_of(size);
            for (word const parameter : {0x2033U, 0x2034U}) {
                functions::now() = {};
                this->offer(function, &functions::get_sub_group_info);
                this->forget();
                EXPECT_EQ(parameter == 0x2033 ? max(w.kernel, w.device, size) : count(w.kernel, w.device, size),
                          answered);
                this->expect_look_up(handle_of(w.device), function);
                arguments const query{word_of(w.kernel), word_of(w.device), parameter, input.size(), 0, 0};
                arguments const read{word_of(w.kernel), word_of(w.device), parameter, input.size(), 8, 1};
                EXPECT_EQ(functions::now().calls, (std::vector{query, read}));
                EXPECT_EQ(functions::now().input, input);
            }
            functions::now().status = -30;
            EXPECT_THROW(max(w.kernel, w.device, size), common::invalid_value);
            this->offer("", &functions::get_sub_group_info);
            EXPECT_EQ(message_of<std::logic_error>([&] { count(w.kernel, w.device, size); }),
                      "Failed to extract clGetKernelSubGroupInfoKHR function address, is the " + name +
                          " extension actually supported?");
        };
        reads(std::array<std::size_t, 1>{7});
        reads(std::array<std::size_t, 2>{7, 8});
        reads(std::array<std::size_t, 3>{7, 8, 9});
    });
}

/// The tests of what exists in few versions.
class extension_1_0_only : public extension_functions<vorn::mero::opencl_1_0::api> {};
class extension_2_0_only : public extension_functions<vorn::mero::opencl_2_0::api> {};

TEST_F(extension_1_0_only, tells_the_temperature_and_the_topology) {
    auto& w = objects;
    auto const reads = [&](std::uint32_t name, std::string const& reply, auto const& expected, auto read) {
        this->reads<clGetDeviceInfo>(w.device, name, reply, expected, [&] { return read(w.device); });
    };
    reads(0x40F3, scripted::bytes_of(std::int32_t{-7}), -7,
          extension_1_0::cl_altera_device_temperature::get_device_temperature);
    auto const& topology = extension_1_0::cl_amd_device_topology::get_device_topology;
    reads(0x4037, "\x9C", 0x9C, topology);
    libnq.reply<clGetDeviceInfo>(0x4037, scripted::reply{"\x9D", 0, 1});
    EXPECT_EQ(topology(w.device), 0x9D);
    expect_fields(libnq.last_call<clGetDeviceInfo>(), {u8(32, 2)});
    libnq.reply<clGetDeviceInfo>(0x4037, std::string(24, '\1')); // the whole record
    EXPECT_THROW(topology(w.device), common::bad_implementation);
}

void on_object(void*, void*, char const*, std::uint32_t) {}

TEST_F(extension_1_0_only, tracks_objects) {
    namespace tracking = extension_1_0::cl_altera_live_object_tracking;
    auto& w = objects;
    auto const lacks = [](std::string const& function) {
        return "Failed to extract " + function +
               " function address, is the cl_altera_live_object_tracking extension actually supported?";
    };
    EXPECT_EQ(message_of<std::logic_error>([&] { tracking::track_live_objects(w.platform); }),
              lacks("clTrackLiveObjectsAltera"));
    EXPECT_EQ(message_of<std::logic_error>([&] { tracking::report_live_objects(w.platform, on_object, &w); }),
              lacks("clReportLiveObjectsAltera"));
    offer("clTrackLiveObjectsAltera", &functions::track);
    forget();
    tracking::track_live_objects(w.platform);
    expect_look_up(handle_of(w.platform), "clTrackLiveObjectsAltera");
    offer("clReportLiveObjectsAltera", &functions::report);
    tracking::report_live_objects(w.platform, on_object, &w);
    expect_look_up(handle_of(w.platform), "clReportLiveObjectsAltera");
    EXPECT_EQ(functions::now().calls,
              (std::vector<arguments>{{word_of(w.platform)}, {word_of(w.platform), word_of(&on_object), word_of(&w)}}));
}

TEST_F(extension_2_0_only, makes_and_reads_intermediate_language) {
    namespace il_program = extension_2_0::cl_khr_il_program;
    auto& w = objects;
    auto const create = [&] { return il_program::create_program_with_il(w.context, &w, 99); };
    EXPECT_EQ(message_of<std::logic_error>(create),
              "Failed to extract clCreateProgramWithILKHR function address, is the cl_khr_il_program extension "
              "actually supported?");
    offer("clCreateProgramWithILKHR", &functions::create_program);
    functions::now().made = libnq.make<_nq_cl_program>(1);
    forget();
    {
        auto const made = create();
        EXPECT_EQ(word_of(made), word_of(functions::now().made));
        EXPECT_EQ(handle_of(made), handle_of(w.context));
        EXPECT_EQ(functions::now().calls, (std::vector<arguments>{{word_of(w.context), word_of(&w), 99}}));
        expect_look_up(handle_of(w.context), "clCreateProgramWithILKHR");
    }
    EXPECT_EQ(libnq.names(), calls{"clReleaseProgram"});
    functions::now().status = -42;
    functions::now().made = reinterpret_cast<_nq_cl_program*>(0xBAD);
    EXPECT_THROW(create(), common::invalid_binary);

    reads<clGetDeviceInfo>(w.device, 0x105B, scripted::text("a  b"), calls{"a", "b"},
                           [&] { return il_program::get_supported_il_versions(w.device); });
    std::string const il(100, '\7');
    reads<clGetProgramInfo>(w.program, 0x1169, il, il.substr(1), [&] { return il_program::get_program_il(w.program); });
}

TEST_F(extension_2_0_only, knows_the_intermediate_binary_type) {
    namespace spir = extension_2_0::cl_khr_spir;
    auto& w = objects;
    reads<clGetDeviceInfo>(w.device, 0x40E0, scripted::text("1.2 2.0"), calls{"1.2", "2.0"},
                           [&] { return spir::get_device_spir_versions(w.device); });
    for (word const type : {0U, 1U, 4U, 0x40E0U, 0x40E1U, 0x40E2U}) {
        EXPECT_EQ(spir::is_binary_type_intermediate(value{type}), type == 0x40E1);
    }
}

void on_terminated(_nq_cl_event*, int, void*) {}

TEST_F(extension_2_0_only, terminates_contexts) {
    namespace terminate_context = extension_2_0::cl_khr_terminate_context;
    auto& w = objects;
    EXPECT_EQ(message_of<std::logic_error>([&] { terminate_context::terminate(w.context); }),
              "Failed to extract clTerminateContextKHR function address, is the cl_khr_terminate_context extension "
              "actually supported?");
    offer("clTerminateContextKHR", &functions::terminate);
    forget();
    terminate_context::terminate(w.context);
    expect_look_up(handle_of(w.context), "clTerminateContextKHR");
    EXPECT_EQ(functions::now().calls, (std::vector<arguments>{{word_of(w.context)}}));
    functions::now().status = -34;
    EXPECT_THROW(terminate_context::terminate(w.context), common::invalid_context);

    for (auto const& [capability, expected] :
         {std::pair<word, word>{0x13A, 1}, {0x2, 1}, {0x100, 1}, {0x1, 0}, {0xFFFFFFFFFFFFFEC5, 0}, {0, 0}}) {
        reads<clGetDeviceInfo>(w.device, 0x2032, scripted::bytes_of(capability), expected,
                               [&] { return terminate_context::is_terminate_supported(w.device); });
    }
    EXPECT_TRUE(terminate_context::is_execution_status_terminated(value{314}));
    EXPECT_FALSE(terminate_context::is_execution_status_terminated(value{0}));
    performs<clSetEventCallback>(
        w.event, {.status = 24}, {u8(0, w.event), u8(8, &on_terminated), u8(16, &w), u4(28, 314)},
        [&] { terminate_context::set_event_terminated_callback(w.event, &on_terminated, &w); });
}

} // namespace
} // namespace unit
