#include "opencl/extension_function.hpp"

namespace vorn::mero::VORN_MERO_NAMESPACE::extension {

using namespace detail;

namespace cl_amd_kernel_info {

namespace {

constexpr char const* function_name = "clGetKernelInfoAMD";

using get_kernel_info = std::int32_t(_nq_cl_kernel*, _nq_cl_device_id*, std::uint32_t, std::size_t, void*,
                                     std::size_t*);

std::uint64_t read_kernel(device const& target, kernel const& function, std::uint32_t parameter) {
    auto* const get = require_function<get_kernel_info>(target, function_name,
                                                        "clGetKernelInfoAMD call not supported.  Check support first.");
    return read_number([&](std::size_t size, void* value, std::size_t* size_ret) {
        return get(raw_of(function), raw_of(target), parameter, size, value, size_ret);
    });
}

} // namespace

bool extension_available(device const& target) { return find_function(target, function_name) != nullptr; }

std::uint64_t scratch_regs(device const& target, kernel const& function) { return read_kernel(target, function, 1); }
std::uint64_t wavefront_per_simd(device const& target, kernel const& function) {
    return read_kernel(target, function, 2);
}
std::uint64_t wavefront_size(device const& target, kernel const& function) { return read_kernel(target, function, 3); }
std::uint64_t available_gprs(device const& target, kernel const& function) { return read_kernel(target, function, 4); }
std::uint64_t used_gprs(device const& target, kernel const& function) { return read_kernel(target, function, 5); }
std::uint64_t available_lds_size(device const& target, kernel const& function) {
    return read_kernel(target, function, 6);
}
std::uint64_t used_lds_size(device const& target, kernel const& function) { return read_kernel(target, function, 7); }
std::uint64_t available_stack_size(device const& target, kernel const& function) {
    return read_kernel(target, function, 8);
}
std::uint64_t used_stack_size(device const& target, kernel const& function) { return read_kernel(target, function, 9); }
std::uint64_t available_sgprs(device const& target, kernel const& function) {
    return read_kernel(target, function, 10);
}
std::uint64_t used_sgprs(device const& target, kernel const& function) { return read_kernel(target, function, 11); }
std::uint64_t available_vgprs(device const& target, kernel const& function) {
    return read_kernel(target, function, 12);
}
std::uint64_t used_vgprs(device const& target, kernel const& function) { return read_kernel(target, function, 13); }

} // namespace cl_amd_kernel_info

#if VORN_MERO_OPENCL < 110
namespace cl_altera_device_temperature {

bool extension_available(device const& target) {
    return mero::internal::extension_supported(target, "cl_altera_device_temperature");
}

std::int32_t get_device_temperature(device const& target) {
    return read_scalar<std::int32_t>(ask(target, cl::device_core_temperature_altera));
}

} // namespace cl_altera_device_temperature

namespace cl_altera_live_object_tracking {

namespace {

using object_callback = void (*)(void*, void*, char const*, std::uint32_t);

} // namespace

bool extension_available(device const& target) {
    return mero::internal::extension_supported(target, "cl_altera_live_object_tracking");
}

void track_live_objects(platform const& owner) {
    auto* const track = require_function<void(_nq_cl_platform_id*)>(
        owner, "clTrackLiveObjectsAltera",
        "Failed to extract clTrackLiveObjectsAltera function address, is the cl_altera_live_object_tracking extension "
        "actually supported?");
    track(raw_of(owner));
}

void report_live_objects(platform const& owner, object_callback callback, void* user_data) {
    auto* const report = require_function<void(_nq_cl_platform_id*, object_callback, void*)>(
        owner, "clReportLiveObjectsAltera",
        "Failed to extract clReportLiveObjectsAltera function address, is the cl_altera_live_object_tracking extension "
        "actually supported?");
    report(raw_of(owner), callback, user_data);
}

} // namespace cl_altera_live_object_tracking
#endif

#if VORN_MERO_OPENCL < 120
namespace cl_arm_printf {

bool extension_available(device const& target) { return mero::internal::extension_supported(target, "cl_arm_printf"); }

} // namespace cl_arm_printf
#endif

#if VORN_MERO_OPENCL < 210
namespace cl_amd_device_topology {

bool extension_available(device const& target) {
    return mero::internal::extension_supported(target, "cl_amd_device_topology");
}

std::uint8_t get_device_topology(device const& target) {
    return read_scalar<std::uint8_t>(ask(target, cl::device_topology_amd));
}

} // namespace cl_amd_device_topology
#endif

#if VORN_MERO_OPENCL >= 120
namespace cl_khr_il_program {

bool extension_available(device const& target) {
    return mero::internal::extension_supported(target, "cl_khr_il_program");
}

program create_program_with_il(context const& owner, void const* il, std::size_t length) {
    auto* const create = require_function<_nq_cl_program*(_nq_cl_context*, void const*, std::size_t, std::int32_t*)>(
        owner, "clCreateProgramWithILKHR",
        "Failed to extract clCreateProgramWithILKHR function address, is the cl_khr_il_program extension actually "
        "supported?");
    std::int32_t status = 0;
    _nq_cl_program* const made = create(raw_of(owner), il, length, &status);
    mero::internal::check_error(status);
    return {call_handle_of(owner), made, internal::take_ownership{}};
}

std::vector<std::string> get_supported_il_versions(device const& target) {
    return mero::internal::split_space(read_text(ask(target, cl::device_il_version)));
}

std::string get_program_il(program const& source) {
    return read_text(query<&block::clGetProgramInfo::program>(call_handle_of(source), cl::program_il, raw_of(source)));
}

} // namespace cl_khr_il_program

namespace cl_khr_spir {

bool extension_available(device const& target) { return mero::internal::extension_supported(target, "cl_khr_spir"); }

std::vector<std::string> get_device_spir_versions(device const& target) {
    return mero::internal::split_space(read_text(ask(target, cl::device_spir_versions)));
}

bool is_binary_type_intermediate(program_binary_type type) {
    return static_cast<std::uint32_t>(type) == cl::program_binary_type_intermediate;
}

} // namespace cl_khr_spir
#endif

} // namespace vorn::mero::VORN_MERO_NAMESPACE::extension
