#include "support.hpp"

#include <fstream>
#include <iterator>

namespace real {
namespace {

// Each extension's functions as one overload set over the versions that have it.
#define FROM_1_2(name)                                                                                                 \
    using opencl_1_2::extension::name, opencl_2_0::extension::name, opencl_2_1::extension::name,                       \
        opencl_2_2::extension::name
#define FROM_1_0_TO_2_0(name)                                                                                          \
    using opencl_1_0::extension::name, opencl_1_1::extension::name, opencl_1_2::extension::name,                       \
        opencl_2_0::extension::name
namespace il {
FROM_1_2(cl_khr_il_program::extension_available);
FROM_1_2(cl_khr_il_program::create_program_with_il);
FROM_1_2(cl_khr_il_program::get_supported_il_versions);
FROM_1_2(cl_khr_il_program::get_program_il);
} // namespace il
namespace spir {
FROM_1_2(cl_khr_spir::extension_available);
FROM_1_2(cl_khr_spir::get_device_spir_versions);
FROM_1_2(cl_khr_spir::is_binary_type_intermediate);
} // namespace spir
namespace amd {
FROM_1_2(cl_amd_kernel_info::extension_available);
FROM_1_2(cl_amd_kernel_info::used_vgprs);
using opencl_1_0::extension::cl_amd_kernel_info::extension_available,
    opencl_1_1::extension::cl_amd_kernel_info::extension_available;
using opencl_1_0::extension::cl_amd_kernel_info::used_vgprs, opencl_1_1::extension::cl_amd_kernel_info::used_vgprs;
} // namespace amd
namespace topology {
FROM_1_0_TO_2_0(cl_amd_device_topology::extension_available);
FROM_1_0_TO_2_0(cl_amd_device_topology::get_device_topology);
} // namespace topology
namespace intel {
using opencl_1_2::extension::cl_intel_subgroups::extension_available,
    opencl_2_0::extension::cl_intel_subgroups::extension_available;
using opencl_1_2::extension::cl_intel_subgroups::get_max_sub_group_size_for_nd_range,
    opencl_2_0::extension::cl_intel_subgroups::get_max_sub_group_size_for_nd_range;
using opencl_1_2::extension::cl_intel_subgroups::get_sub_group_count_for_nd_range,
    opencl_2_0::extension::cl_intel_subgroups::get_sub_group_count_for_nd_range;
} // namespace intel
#undef FROM_1_2
#undef FROM_1_0_TO_2_0

namespace khr = opencl_2_0::extension::cl_khr_sub_groups;
namespace termination = opencl_2_0::extension::cl_khr_terminate_context;
namespace temperature = opencl_1_0::extension::cl_altera_device_temperature;
namespace tracking = opencl_1_0::extension::cl_altera_live_object_tracking;

template <class Api>
bool lists(bench<Api>& b, std::string const& name) {
    auto const all = b.device.extensions();
    return std::ranges::find(all, name) != all.end();
}

SCENARIO(tells_which_extensions_are_listed, "extension lists", 100) {
    if constexpr (Api::number >= 120) {
        EXPECT_EQ(il::extension_available(b.device), lists(b, "cl_khr_il_program"));
        EXPECT_EQ(spir::extension_available(b.device), lists(b, "cl_khr_spir"));
    }
    if constexpr (Api::number == 120 || Api::number == 200) {
        EXPECT_EQ(intel::extension_available(b.device), lists(b, "cl_intel_subgroups"));
    }
    if constexpr (Api::number <= 200) {
        EXPECT_EQ(topology::extension_available(b.device), lists(b, "cl_amd_device_topology"));
    }
    if constexpr (Api::number == 200) {
        EXPECT_EQ(khr::extension_available(b.device), lists(b, "cl_khr_sub_groups"));
        EXPECT_EQ(termination::extension_available(b.device), lists(b, "cl_khr_terminate_context"));
    }
    EXPECT_TRUE(b.name != "intel" || lists(b, "cl_khr_il_program"));
    EXPECT_TRUE(b.name != "oclgrind" || lists(b, "cl_khr_spir"));
}

// None of the implementations that the tests know has a function of AMD's or Altera's.
SCENARIO(reports_missing_extension_functions, "missing extension functions", 100) {
    if (amd::extension_available(b.device)) {
        skip("has the functions that are to be missing");
    }
    auto const kernel = b.build("kernel void f() {}").create_kernel("f");
    EXPECT_THROW(amd::used_vgprs(b.device, kernel), std::logic_error);
    if constexpr (Api::number <= 200) {
        EXPECT_THROW(topology::get_device_topology(b.device), common::invalid_value);
    }
    if constexpr (Api::number == 100) {
        EXPECT_THROW(temperature::get_device_temperature(b.device), common::invalid_value);
        EXPECT_THROW(tracking::track_live_objects(b.device.get_platform()), std::logic_error);
        EXPECT_THROW(tracking::report_live_objects(b.device.get_platform(), nullptr, nullptr), std::logic_error);
    }
    if constexpr (Api::number == 200) {
        EXPECT_THROW(termination::terminate(b.context), std::logic_error);
    }
}

bytes module() {
    std::ifstream file(REAL_IL, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

SCENARIO(builds_intermediate_language, "cl_khr_il_program", 120) {
    auto const code = module();
    ASSERT_FALSE(code.empty());
    if (!il::extension_available(b.device)) {
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

SCENARIO(tells_spir_versions, "cl_khr_spir", 120) {
    using type = opencl_1_2::program_binary_type;
    EXPECT_TRUE(opencl_1_2::extension::cl_khr_spir::is_binary_type_intermediate(type{0x40E1}));
    EXPECT_FALSE(opencl_1_2::extension::cl_khr_spir::is_binary_type_intermediate(type::executable));
    auto const found = spir::get_device_spir_versions(b.device);
    if (b.name != "pocl") { // lists the extension and no version of it
        EXPECT_NE(std::ranges::find(found, "1.2"), found.end());
    }
}

constexpr char const* sub_group_source = R"(
kernel void f(global int* sizes) {
    if (get_local_id(0) == 0) { sizes[0] = get_max_sub_group_size(); sizes[1] = get_num_sub_groups(); }
})";

// The queries tell what a kernel sees that is launched so.
SCENARIO(counts_sub_groups, "cl_intel_subgroups", 120, 200) {
    if (!intel::extension_available(b.device)) {
        skip("the device does not list cl_intel_subgroups");
    }
    auto sizes = b.store(numbers(2));
    auto const kernel = b.function(sub_group_source, sizes);
    b.launch(kernel, 40, 40);
    auto const seen = b.load(sizes);
    auto const size = intel::get_max_sub_group_size_for_nd_range(kernel, b.device, std::array<std::size_t, 1>{40});
    auto const count = intel::get_sub_group_count_for_nd_range(kernel, b.device, std::array<std::size_t, 1>{40});
    EXPECT_EQ(seen, (numbers{static_cast<std::int32_t>(size), static_cast<std::int32_t>(count)}));
    EXPECT_GT(size * count, 39U);
    EXPECT_EQ(intel::get_max_sub_group_size_for_nd_range(kernel, b.device, std::array<std::size_t, 2>{40, 1}), size);
    EXPECT_EQ(intel::get_sub_group_count_for_nd_range(kernel, b.device, std::array<std::size_t, 2>{40, 1}), count);
    EXPECT_EQ(intel::get_max_sub_group_size_for_nd_range(kernel, b.device, std::array<std::size_t, 3>{40, 1, 1}), size);
    EXPECT_EQ(intel::get_sub_group_count_for_nd_range(kernel, b.device, std::array<std::size_t, 3>{40, 1, 1}), count);
    if constexpr (Api::number == 200) { // the same function under the name of its Khronos extension
        EXPECT_EQ(khr::get_max_sub_group_size_for_nd_range(kernel, b.device, std::array<std::size_t, 1>{40}), size);
        EXPECT_EQ(khr::get_sub_group_count_for_nd_range(kernel, b.device, std::array<std::size_t, 1>{40}), count);
    }
}

} // namespace
} // namespace real
