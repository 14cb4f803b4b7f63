#include "support.hpp"

// Extensions in one version each, in which the implementations have them; none of them depends on the version.

namespace real {
namespace {

namespace il = opencl_1_2::extension::cl_khr_il_program;
namespace spir = opencl_1_2::extension::cl_khr_spir;
namespace amd = opencl_1_2::extension::cl_amd_kernel_info;
namespace intel = opencl_1_2::extension::cl_intel_subgroups;
namespace khr = opencl_2_0::extension::cl_khr_sub_groups;
namespace termination = opencl_2_0::extension::cl_khr_terminate_context;
namespace temperature = opencl_1_0::extension::cl_altera_device_temperature;
namespace tracking = opencl_1_0::extension::cl_altera_live_object_tracking;

// None of the implementations that the tests know has a function of AMD's or Altera's.
SCENARIO(reports_missing_extension_functions, "missing extension functions", 100, 200) {
    if constexpr (Api::number == 100) {
        EXPECT_THROW(temperature::get_device_temperature(b.device), common::invalid_value);
        EXPECT_THROW(tracking::track_live_objects(b.device.get_platform()), std::logic_error);
    } else if constexpr (Api::number == 120) {
        EXPECT_FALSE(amd::extension_available(b.device));
        EXPECT_THROW(amd::used_vgprs(b.device, b.build("kernel void f() {}").create_kernel("f")), std::logic_error);
    } else if constexpr (Api::number == 200) {
        EXPECT_FALSE(termination::extension_available(b.device));
        EXPECT_THROW(termination::terminate(b.context), std::logic_error);
    }
}

SCENARIO(builds_intermediate_language_of_extension, "cl_khr_il_program", 120, 120) {
    auto const code = intermediate_language();
    if (!il::extension_available(b.device)) {
        EXPECT_NE(b.name, "intel");
        EXPECT_ANY_THROW(il::create_program_with_il(b.context, code.data(), code.size()));
        skip("the device does not list cl_khr_il_program");
    }
    auto const versions_of_it = il::get_supported_il_versions(b.device);
    EXPECT_NE(std::ranges::find(versions_of_it, "SPIR-V_1.0"), versions_of_it.end());
    auto program = il::create_program_with_il(b.context, code.data(), code.size());
    EXPECT_EQ(il::get_program_il(program), std::string(code.begin(), code.end() - 1));
    b.build(program);
    auto values = b.store(counting(16));
    auto kernel = program.create_kernel("f");
    b.set_arguments(kernel, values);
    b.launch(kernel, 16);
    EXPECT_EQ(b.load(values), counting(16, 101));
}

SCENARIO(tells_spir_versions, "cl_khr_spir", 120, 120) {
    auto const found = spir::get_device_spir_versions(b.device);
    if (!b.differs("pocl", "lists the extension and no version of it")) {
        EXPECT_NE(std::ranges::find(found, "1.2"), found.end());
    }
}

// The queries tell what a kernel sees that is launched so.
SCENARIO(counts_sub_groups_of_extension, "cl_intel_subgroups", 120, 200) {
    auto const all = b.device.extensions();
    if (std::ranges::find(all, "cl_intel_subgroups") == all.end()) {
        skip("the device does not list cl_intel_subgroups");
    }
    auto sizes = b.store(numbers(2));
    auto const kernel = b.function("kernel void f(global int* sizes) { if (get_local_id(0) == 0) {"
                                   "sizes[0] = get_max_sub_group_size(); sizes[1] = get_num_sub_groups(); } }",
                                   sizes);
    b.launch(kernel, 40, 40);
    std::array<std::size_t, 1> const local{40};
    auto const expect = [&](std::size_t size, std::size_t count) {
        EXPECT_EQ(b.load(sizes), (numbers{static_cast<std::int32_t>(size), static_cast<std::int32_t>(count)}));
    };
    if constexpr (Api::number == 120) {
        expect(intel::get_max_sub_group_size_for_nd_range(kernel, b.device, local),
               intel::get_sub_group_count_for_nd_range(kernel, b.device, local));
    } else if constexpr (Api::number == 200) { // the same function under the name of its Khronos extension
        expect(khr::get_max_sub_group_size_for_nd_range(kernel, b.device, local),
               khr::get_sub_group_count_for_nd_range(kernel, b.device, local));
    }
}

} // namespace
} // namespace real
