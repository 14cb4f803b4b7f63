#include "unit/members.hpp"

#include <algorithm>
#include <map>

namespace unit {
namespace {

/// The support tests that look at the device's extensions, by the name that they look for.
std::map<std::string, bool (*)(device const&)> const support_tests = {
#if UNIT_OPENCL < 110
    {"cl_altera_device_temperature", extension::cl_altera_device_temperature::extension_available},
    {"cl_altera_live_object_tracking", extension::cl_altera_live_object_tracking::extension_available},
#endif
#if UNIT_OPENCL < 120
    {"cl_arm_printf", extension::cl_arm_printf::extension_available},
#endif
#if UNIT_OPENCL < 210
    {"cl_amd_device_topology", extension::cl_amd_device_topology::extension_available},
#endif
#if UNIT_OPENCL >= 120
    {"cl_khr_il_program", extension::cl_khr_il_program::extension_available},
    {"cl_khr_spir", extension::cl_khr_spir::extension_available},
#endif
#if UNIT_OPENCL >= 120 && UNIT_OPENCL < 210
    {"cl_intel_subgroups", extension::cl_intel_subgroups::extension_available},
#endif
#if UNIT_OPENCL == 200
    {"cl_khr_sub_groups", extension::cl_khr_sub_groups::extension_available},
    {"cl_khr_terminate_context", extension::cl_khr_terminate_context::extension_available},
    {"cl_khr_initialize_memory", extension::cl_khr_initialize_memory::extension_available},
#endif
};

/// What the extension functions of the tests' OpenCL are called with, and how they answer.
struct script {
    std::vector<words> calls{};
    std::string input{}; ///< What the last input pointer led to.
    std::int32_t status = 0;
    std::size_t reported = 8;  ///< To the size query.
    std::size_t delivered = 8; ///< To the read.
    _nq_cl_program* made = nullptr;
} script;

constexpr word answered = 0x5A5A5A5A5A5A5A5A;

std::int32_t answer_info(std::size_t size, void* result, std::size_t* size_ret) {
    *size_ret = result == nullptr ? script.reported : script.delivered;
    if (result != nullptr) {
        std::memset(result, 0x5A, size);
    }
    return script.status;
}

std::int32_t get_kernel_info(_nq_cl_kernel* kernel, _nq_cl_device_id* device, std::uint32_t name, std::size_t size,
                             void* result, std::size_t* size_ret) {
    script.calls.push_back({word_of(kernel), word_of(device), name, size, result != nullptr});
    return answer_info(size, result, size_ret);
}

#if UNIT_OPENCL < 120
using look_up = clGetExtensionFunctionAddress;
#else
using look_up = clGetExtensionFunctionAddressForPlatform;
#endif

class extensions : public members {
protected:
    extensions() {
        script = {};
        libnq.reply<clGetDeviceInfo>(0x1031, reply_of(w.platform));
        libnq.reply<clGetContextInfo>(0x1081, reply_of(w.ids[0]));
    }

    /// Has `use` look for an extension function: first in vain, then with OpenCL offering it. That is one look-up
    /// through an object's call handle, from 1.2 on for its platform.
    void looks_up(auto const& object, std::string const& name, auto* function, std::string const& lacking, auto use) {
        offer("", function);
        EXPECT_EQ(message_of<std::logic_error>(use), lacking);
        offer(name, function);
        libnq.forget_calls();
        use();
        auto const is_look_up = [](auto const& call) { return call.name == scripted::name_of<look_up>(); };
        ASSERT_EQ(std::count_if(libnq.calls().begin(), libnq.calls().end(), is_look_up), 1);
        auto const& call = *std::find_if(libnq.calls().begin(), libnq.calls().end(), is_look_up);
        EXPECT_EQ(call.handle, handle_of(object));
        look_up expected{};
        expected.func_name = name.c_str();
#if UNIT_OPENCL >= 120
        expected.platform = raw_of(w.platform);
#endif
        EXPECT_EQ(call.inputs, scripted::inputs_of(expected));
    }

    static std::string lacks(std::string const& function, std::string const& extension) {
        return "Failed to extract " + function + " function address, is the " + extension +
               " extension actually supported?";
    }

    /// From now on OpenCL has one extension function.
    void offer(std::string const& name, auto* function) {
        libnq.on<look_up>([=](look_up& block) {
            block.result = block.func_name == name ? reinterpret_cast<void*>(function) : nullptr;
        });
    }
};

TEST_F(extensions, are_supported_when_an_entry_begins_their_name) {
    for (auto const& [name, available] : support_tests) {
        SCOPED_TRACE(name);
        std::string upper(name);
        std::transform(upper.begin(), upper.end(), upper.begin(), [](unsigned char c) { return std::toupper(c); });
        std::pair<std::string, bool> const lists[] = {{name, true},
                                                      {"cl_other " + upper + " x", true},
                                                      {name.substr(0, name.size() - 1), true},
                                                      {name + "x", false},
                                                      {"cl_other l" + name, false},
                                                      {"cl_khr", name.starts_with("cl_khr")},
                                                      {" CL ", true},
                                                      {" ", false}};
        for (auto const& [list, expected] : lists) {
            reads(w.device, 0x1030, expected, available, scripted::text(list));
        }
    }
    libnq.reply<clGetDeviceInfo>(0x1030, scripted::text("a b"));
    EXPECT_FALSE(vorn::mero::internal::extension_supported(w.device, ""));
}

TEST_F(extensions, tell_of_kernels_by_thirteen_parameters) {
    namespace info = extension::cl_amd_kernel_info;
    std::vector<word (*)(device const&, kernel const&)> const all{
        info::scratch_regs,    info::wavefront_per_simd, info::wavefront_size, info::available_gprs,
        info::used_gprs,       info::available_lds_size, info::used_lds_size,  info::available_stack_size,
        info::used_stack_size, info::available_sgprs,    info::used_sgprs,     info::available_vgprs,
        info::used_vgprs};
    EXPECT_FALSE(info::extension_available(w.device));
    for (word parameter = 1; parameter <= 13; ++parameter) {
        looks_up(w.device, "clGetKernelInfoAMD", &get_kernel_info,
                 "clGetKernelInfoAMD call not supported.  Check support first.", [&] {
                     script.calls.clear();
                     EXPECT_EQ(all.at(parameter - 1)(w.device, w.kernel), answered);
                 });
        words const query{word_of(w.kernel), word_of(w.device), parameter, 0, 0};
        words const read{word_of(w.kernel), word_of(w.device), parameter, 8, 1};
        EXPECT_EQ(script.calls, (std::vector{query, read}));
    }
    EXPECT_TRUE(info::extension_available(w.device));
    script.reported = 0;
    EXPECT_EQ(all[0](w.device, w.kernel), answered);
    EXPECT_EQ(script.calls.back().at(3), 16U);
    script.delivered = 4;
    EXPECT_EQ(message_of<common::bad_implementation>([&] { all[0](w.device, w.kernel); }),
              "OpenCL implementation did not provide expected size of data.  Expected: 8 bytes, but implementation "
              "provided 4 bytes.");
    script.status = -48;
    EXPECT_THROW(all[0](w.device, w.kernel), common::invalid_kernel);
}

#if UNIT_OPENCL >= 120 && UNIT_OPENCL < 210
std::int32_t get_sub_group_info(_nq_cl_kernel* kernel, _nq_cl_device_id* device, std::uint32_t name,
                                std::size_t input_size, void const* input, std::size_t size, void* result,
                                std::size_t* size_ret) {
    script.calls.push_back({word_of(kernel), word_of(device), name, input_size, size, result != nullptr});
    script.input.assign(static_cast<char const*>(input), input_size);
    return answer_info(size, result, size_ret);
}

class sub_groups : public extensions {
protected:
    void reads(std::string const& extension, auto const& size, word parameter, auto read) {
        std::string const function = "clGetKernelSubGroupInfoKHR";
        looks_up(w.device, function, &get_sub_group_info, lacks(function, extension), [&] {
            script = {};
            EXPECT_EQ(read(w.kernel, w.device, size), answered);
        });
        words const query{word_of(w.kernel), word_of(w.device), parameter, sizeof size, 0, 0};
        words const reading{word_of(w.kernel), word_of(w.device), parameter, sizeof size, 8, 1};
        EXPECT_EQ(script.calls, (std::vector{query, reading}));
        EXPECT_EQ(script.input, reply_of(size));
        script.status = -30;
        EXPECT_THROW(read(w.kernel, w.device, size), common::invalid_value);
    }
};

// The functions of all ranges have one name.
#define UNIT_SUB_GROUPS(name, parameter, function)                                                                     \
    for_ranges([&](auto const& size) {                                                                                 \
        reads(#name, size, parameter, [](auto const&... all) { return extension::name::function(all...); });           \
    })

TEST_F(sub_groups, are_told_for_every_range) {
    auto const for_ranges = [](auto reads) {
        reads(std::array<std::size_t, 1>{7});
        reads(std::array<std::size_t, 2>{7, 8});
        reads(std::array<std::size_t, 3>{7, 8, 9});
    };
    UNIT_SUB_GROUPS(cl_intel_subgroups, 0x2033, get_max_sub_group_size_for_nd_range);
    UNIT_SUB_GROUPS(cl_intel_subgroups, 0x2034, get_sub_group_count_for_nd_range);
#if UNIT_OPENCL == 200
    UNIT_SUB_GROUPS(cl_khr_sub_groups, 0x2033, get_max_sub_group_size_for_nd_range);
    UNIT_SUB_GROUPS(cl_khr_sub_groups, 0x2034, get_sub_group_count_for_nd_range);
#endif
}
#endif

#if UNIT_OPENCL < 210
TEST_F(extensions, tell_the_topology) {
    auto const& topology = extension::cl_amd_device_topology::get_device_topology;
    reads(w.device, 0x4037, std::uint8_t{0x9C}, topology);
    libnq.reply<clGetDeviceInfo>(0x4037, std::string(24, '\1')); // the whole record
    EXPECT_THROW(topology(w.device), common::bad_implementation);
}
#endif

#if UNIT_OPENCL < 110
TEST_F(extensions, tell_the_temperature) {
    reads(w.device, 0x40F3, std::int32_t{-7}, extension::cl_altera_device_temperature::get_device_temperature);
}

void track(_nq_cl_platform_id* of) { script.calls.push_back({word_of(of)}); }

void report(_nq_cl_platform_id* of, void (*callback)(void*, void*, char const*, std::uint32_t), void* user_data) {
    script.calls.push_back({word_of(of), word_of(callback), word_of(user_data)});
}

void on_object(void*, void*, char const*, std::uint32_t) {}

TEST_F(extensions, track_objects) {
    namespace tracking = extension::cl_altera_live_object_tracking;
    std::string const extension = "cl_altera_live_object_tracking";
    looks_up(w.platform, "clTrackLiveObjectsAltera", &track, lacks("clTrackLiveObjectsAltera", extension),
             [&] { tracking::track_live_objects(w.platform); });
    looks_up(w.platform, "clReportLiveObjectsAltera", &report, lacks("clReportLiveObjectsAltera", extension),
             [&] { tracking::report_live_objects(w.platform, on_object, &w); });
    EXPECT_EQ(script.calls,
              (std::vector<words>{{word_of(w.platform)}, {word_of(w.platform), word_of(&on_object), word_of(&w)}}));
}
#endif

#if UNIT_OPENCL >= 120
_nq_cl_program* create_program(_nq_cl_context* context, void const* il, std::size_t size, std::int32_t* error) {
    script.calls.push_back({word_of(context), word_of(il), size});
    *error = script.status;
    return script.made = scripted::libnq::instance().make<_nq_cl_program>(script.status == 0 ? 1 : 0);
}

TEST_F(extensions, make_and_read_intermediate_language) {
    namespace il_program = extension::cl_khr_il_program;
    auto const create = [&] {
        auto const made = il_program::create_program_with_il(w.context, &w, 99);
        EXPECT_EQ(raw_of(made), script.made);
        EXPECT_EQ(handle_of(made), handle_of(w.context));
    };
    looks_up(w.context, "clCreateProgramWithILKHR", &create_program,
             lacks("clCreateProgramWithILKHR", "cl_khr_il_program"), create);
    EXPECT_EQ(script.calls, (std::vector<words>{{word_of(w.context), word_of(&w), 99}}));
    script.status = -42;
    EXPECT_THROW(create(), common::invalid_binary);

    reads(w.device, 0x105B, names{"a", "b"}, il_program::get_supported_il_versions, scripted::text("a  b"));
    std::string const il(100, '\7');
    members::reads(w.program, 0x1169, il.substr(1), il_program::get_program_il, il);
}

TEST_F(extensions, know_the_intermediate_binary_type) {
    namespace spir = extension::cl_khr_spir;
    reads(w.device, 0x40E0, names{"1.2", "2.0"}, spir::get_device_spir_versions, scripted::text("1.2 2.0"));
    for (word const type : {0U, 1U, 4U, 0x40E0U, 0x40E1U, 0x40E2U}) {
        EXPECT_EQ(spir::is_binary_type_intermediate(value{type}), type == 0x40E1);
    }
}
#endif

#if UNIT_OPENCL == 200
std::int32_t terminate(_nq_cl_context* context) {
    script.calls.push_back({word_of(context)});
    return script.status;
}

TEST_F(extensions, terminate_contexts) {
    namespace terminate_context = extension::cl_khr_terminate_context;
    looks_up(w.context, "clTerminateContextKHR", &terminate, lacks("clTerminateContextKHR", "cl_khr_terminate_context"),
             [&] { terminate_context::terminate(w.context); });
    EXPECT_EQ(script.calls, (std::vector<words>{{word_of(w.context)}}));
    script.status = -34;
    EXPECT_THROW(terminate_context::terminate(w.context), common::invalid_context);

    for (auto const& [capability, expected] :
         {std::pair<word, bool>{0x13A, true}, {0x2, true}, {0x100, true}, {0x1, false}, {~word{0x13A}, false}}) {
        reads(w.device, 0x2032, expected, terminate_context::is_terminate_supported, reply_of(capability));
    }
    EXPECT_TRUE(terminate_context::is_execution_status_terminated(value{314}));
    EXPECT_FALSE(terminate_context::is_execution_status_terminated(value{0}));
    auto* const on_terminated = +[](_nq_cl_event*, int, void*) {};
    performs(w.event, clSetEventCallback{raw_of(w.event), on_terminated, &w, 0, 314},
             [&] { terminate_context::set_event_terminated_callback(w.event, on_terminated, &w); });
}
#endif

} // namespace
} // namespace unit
