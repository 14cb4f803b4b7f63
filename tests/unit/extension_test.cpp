#include "unit/members.hpp"

#include <algorithm>

namespace unit {
namespace {

/// What the extension functions of the tests' OpenCL are called with, and how they answer.
struct script {
    std::vector<words> calls{};
    std::int32_t status = 0;
    std::size_t reported = 8;  ///< To the size query.
    std::size_t delivered = 8; ///< To the read.
    _nq_cl_program* made = nullptr;
} script;

constexpr word answered = 0x5A5A5A5A5A5A5A5A;

std::int32_t get_info(words asked, std::size_t size, void* result, std::size_t* size_ret) {
    *size_ret = result == nullptr ? script.reported : script.delivered;
    if (result != nullptr) {
        std::memset(result, 0x5A, size);
    }
    asked.insert(asked.end(), {size, result != nullptr});
    script.calls.push_back(asked);
    return script.status;
}

std::int32_t get_kernel_info(_nq_cl_kernel* kernel, _nq_cl_device_id* device, std::uint32_t name, std::size_t size,
                             void* result, std::size_t* size_ret) {
    return get_info({word_of(kernel), word_of(device), name}, size, result, size_ret);
}

#if UNIT_OPENCL < 120
using look_up = clGetExtensionFunctionAddress;
#else
using look_up = clGetExtensionFunctionAddressForPlatform;
#endif

struct extensions : members {
    extensions() {
        script = {};
        libnq.reply<clGetDeviceInfo>(0x1031, reply_of(w.platform));
        libnq.reply<clGetContextInfo>(0x1081, reply_of(w.ids[0]));
    }

    /// Has `use` look for an extension function: first in vain, then with OpenCL offering it. That is one look-up
    /// through an object's call handle, from 1.2 on for its platform.
    void looks_up(auto const& object, std::string const& name, auto* function, std::string const& lacking, auto use) {
        offer("", function);
        throws<std::logic_error>(lacking, use);
        offer(name, function);
        libnq.forget_calls();
        use();
        std::erase_if(libnq.calls, [](auto const& call) { return call.name != scripted::name_of<look_up>(); });
#if UNIT_OPENCL < 120
        expect_sent(object, look_up{.func_name = name.c_str()});
#else
        expect_sent(object, look_up{raw_of(w.platform), name.c_str()});
#endif
    }

    /// The same of a function that the extension `of` brings.
    void looks_up(auto const& object, std::string const& name, std::string const& of, auto* function, auto use) {
        looks_up(object, name, function,
                 "Failed to extract " + name + " function address, is the " + of + " extension actually supported?",
                 use);
    }

    /// Expects `get_info` to have been asked for the size of a number, then for the number.
    static void expect_asked(words const& what) {
        std::vector<words> expected(2, what);
        expected[0].insert(expected[0].end(), {0, 0});
        expected[1].insert(expected[1].end(), {8, 1});
        EXPECT_EQ(std::exchange(script.calls, {}), expected);
    }

    /// From now on OpenCL has one extension function.
    void offer(std::string const& name, auto* function) {
        libnq.on<look_up>([=](look_up& block) {
            block.result = block.func_name == name ? reinterpret_cast<void*>(function) : nullptr;
            return true;
        });
    }
};

/// The support tests that look at the device's extensions, by the name that they look for.
#define SUPPORTS(name)                                                                                                 \
    { #name, extension::name::extension_available }
std::vector<std::pair<std::string, bool (*)(device const&)>> const support_tests = {
#if UNIT_OPENCL < 110
    SUPPORTS(cl_altera_device_temperature),
    SUPPORTS(cl_altera_live_object_tracking),
#endif
#if UNIT_OPENCL < 120
    SUPPORTS(cl_arm_printf),
#else
    SUPPORTS(cl_khr_il_program),
    SUPPORTS(cl_khr_spir),
#endif
#if UNIT_OPENCL < 210
    SUPPORTS(cl_amd_device_topology),
#endif
#if UNIT_OPENCL >= 120 && UNIT_OPENCL < 210
    SUPPORTS(cl_intel_subgroups),
#endif
#if UNIT_OPENCL == 200
    SUPPORTS(cl_khr_sub_groups),
    SUPPORTS(cl_khr_terminate_context),
    SUPPORTS(cl_khr_initialize_memory),
#endif
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
            reads(w.device, 0x1030, expected, available, reply_of(list));
        }
    }
    libnq.reply<clGetDeviceInfo>(0x1030, reply_of("a b"));
    EXPECT_FALSE(vorn::mero::internal::extension_supported(w.device, ""));
}

TEST_F(extensions, tell_of_kernels_by_thirteen_parameters) {
    namespace info = extension::cl_amd_kernel_info;
    EXPECT_FALSE(info::extension_available(w.device));
    word parameter = 0;
    for (auto* const read :
         {info::scratch_regs, info::wavefront_per_simd, info::wavefront_size, info::available_gprs, info::used_gprs,
          info::available_lds_size, info::used_lds_size, info::available_stack_size, info::used_stack_size,
          info::available_sgprs, info::used_sgprs, info::available_vgprs, info::used_vgprs}) {
        looks_up(w.device, "clGetKernelInfoAMD", &get_kernel_info,
                 "clGetKernelInfoAMD call not supported.  Check support first.",
                 [&] { EXPECT_EQ(read(w.device, w.kernel), answered); });
        expect_asked({word_of(w.kernel), word_of(w.device), ++parameter});
    }
    EXPECT_TRUE(info::extension_available(w.device));
    auto const read = [&] { return info::scratch_regs(w.device, w.kernel); };
    script.reported = 0;
    EXPECT_EQ(read(), answered);
    EXPECT_EQ(script.calls.back().at(3), 16U);
    script.delivered = 4;
    throws<common::bad_implementation>("OpenCL implementation did not provide expected size of data.  Expected: 8 "
                                       "bytes, but implementation provided 4 bytes.",
                                       read);
    script.status = -48;
    EXPECT_THROW(read(), common::invalid_kernel);
}

#if UNIT_OPENCL >= 120 && UNIT_OPENCL < 210
std::int32_t get_sub_group_info(_nq_cl_kernel* kernel, _nq_cl_device_id* device, std::uint32_t name,
                                std::size_t input_size, void const* input, std::size_t size, void* result,
                                std::size_t* size_ret) {
    words asked{word_of(kernel), word_of(device), name};
    auto const* const sizes = static_cast<word const*>(input);
    asked.insert(asked.end(), sizes, sizes + input_size / sizeof(word));
    return get_info(asked, size, result, size_ret);
}

// The functions of all ranges have one name.
#define SUB_GROUPS(name, parameter, function)                                                                          \
    {                                                                                                                  \
        auto const read = [](auto const&... all) { return extension::name::function(all...); };                        \
        tells(#name, parameter, std::array<std::size_t, 1>{7}, read);                                                  \
        tells(#name, parameter, std::array<std::size_t, 2>{7, 8}, read);                                               \
        tells(#name, parameter, std::array<std::size_t, 3>{7, 8, 9}, read);                                            \
    }

TEST_F(extensions, tell_sub_groups_for_every_range) {
    auto const tells = [&](std::string const& name, word parameter, auto const& range, auto read) {
        script = {};
        looks_up(w.device, "clGetKernelSubGroupInfoKHR", name, &get_sub_group_info,
                 [&] { EXPECT_EQ(read(w.kernel, w.device, range), answered); });
        words asked{word_of(w.kernel), word_of(w.device), parameter};
        asked.insert(asked.end(), range.begin(), range.end());
        expect_asked(asked);
        script.status = -30;
        EXPECT_THROW(read(w.kernel, w.device, range), common::invalid_value);
    };
    SUB_GROUPS(cl_intel_subgroups, 0x2033, get_max_sub_group_size_for_nd_range);
    SUB_GROUPS(cl_intel_subgroups, 0x2034, get_sub_group_count_for_nd_range);
#if UNIT_OPENCL == 200
    SUB_GROUPS(cl_khr_sub_groups, 0x2033, get_max_sub_group_size_for_nd_range);
    SUB_GROUPS(cl_khr_sub_groups, 0x2034, get_sub_group_count_for_nd_range);
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

/// An extension function that only notes its arguments.
template <class Result, class... Arguments>
Result note(Arguments... arguments) {
    script.calls.push_back({word_of(arguments)...});
    return static_cast<Result>(script.status);
}

#if UNIT_OPENCL < 110
void on_object(void*, void*, char const*, std::uint32_t) {}

TEST_F(extensions, tell_the_temperature_and_track_objects) {
    reads(w.device, 0x40F3, std::int32_t{-7}, extension::cl_altera_device_temperature::get_device_temperature);
    namespace tracking = extension::cl_altera_live_object_tracking;
    std::string const name = "cl_altera_live_object_tracking";
    looks_up(w.platform, "clTrackLiveObjectsAltera", name, &note<void, _nq_cl_platform_id*>,
             [&] { tracking::track_live_objects(w.platform); });
    looks_up(w.platform, "clReportLiveObjectsAltera", name,
             &note<void, _nq_cl_platform_id*, decltype(&on_object), void*>,
             [&] { tracking::report_live_objects(w.platform, on_object, &w); });
    EXPECT_EQ(script.calls,
              (std::vector<words>{{word_of(w.platform)}, {word_of(w.platform), word_of(&on_object), word_of(&w)}}));
}
#endif

#if UNIT_OPENCL >= 120
_nq_cl_program* create_program(_nq_cl_context* context, void const* il, std::size_t size, std::int32_t* error) {
    note<void>(context, il, size);
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
    looks_up(w.context, "clCreateProgramWithILKHR", "cl_khr_il_program", &create_program, create);
    EXPECT_EQ(script.calls, (std::vector<words>{{word_of(w.context), word_of(&w), 99}}));
    script.status = -42;
    EXPECT_THROW(create(), common::invalid_binary);

    reads(w.device, 0x105B, names{"a", "b"}, il_program::get_supported_il_versions, reply_of("a  b"));
    std::string const il(100, '\7');
    members::reads(w.program, 0x1169, il.substr(1), il_program::get_program_il, il);
}

TEST_F(extensions, know_the_intermediate_binary_type) {
    namespace spir = extension::cl_khr_spir;
    reads(w.device, 0x40E0, names{"1.2", "2.0"}, spir::get_device_spir_versions, reply_of("1.2 2.0"));
    for (word const type : {0U, 1U, 4U, 0x40E0U, 0x40E1U, 0x40E2U}) {
        EXPECT_EQ(spir::is_binary_type_intermediate(value{type}), type == 0x40E1);
    }
}
#endif

#if UNIT_OPENCL == 200
TEST_F(extensions, terminate_contexts) {
    namespace terminate_context = extension::cl_khr_terminate_context;
    looks_up(w.context, "clTerminateContextKHR", "cl_khr_terminate_context", &note<std::int32_t, _nq_cl_context*>,
             [&] { terminate_context::terminate(w.context); });
    EXPECT_EQ(script.calls, (std::vector<words>{{word_of(w.context)}}));
    script.status = -34;
    EXPECT_THROW(terminate_context::terminate(w.context), common::invalid_context);

    for (word const capability : {word{0x13A}, word{0x2}, word{0x100}, word{0x1}, ~word{0x13A}}) {
        bool const is_supported = (capability & 0x13A) != 0;
        reads(w.device, 0x2032, is_supported, terminate_context::is_terminate_supported, reply_of(capability));
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
