// Khronos and vendor extensions. Their functions are asked for at every call and called in process; nothing is cached.
// A function that OpenCL does not know is a `std::logic_error`.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>

#include <vorn/mero/opencl/forward.hpp>
#include <vorn/mero/opencl/types.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE::extension {

/// What a kernel takes of a device's resources.
namespace cl_amd_kernel_info {

/// Whether the platform of the device knows the extension's function; does not look at the device's extensions.
VORN_MERO_EXPORT bool extension_available(device const& target);

VORN_MERO_EXPORT std::uint64_t scratch_regs(device const& target, kernel const& function);
VORN_MERO_EXPORT std::uint64_t wavefront_per_simd(device const& target, kernel const& function);
VORN_MERO_EXPORT std::uint64_t wavefront_size(device const& target, kernel const& function);
VORN_MERO_EXPORT std::uint64_t available_gprs(device const& target, kernel const& function);
VORN_MERO_EXPORT std::uint64_t used_gprs(device const& target, kernel const& function);
VORN_MERO_EXPORT std::uint64_t available_lds_size(device const& target, kernel const& function);
VORN_MERO_EXPORT std::uint64_t used_lds_size(device const& target, kernel const& function);
VORN_MERO_EXPORT std::uint64_t available_stack_size(device const& target, kernel const& function);
VORN_MERO_EXPORT std::uint64_t used_stack_size(device const& target, kernel const& function);
VORN_MERO_EXPORT std::uint64_t available_sgprs(device const& target, kernel const& function);
VORN_MERO_EXPORT std::uint64_t used_sgprs(device const& target, kernel const& function);
VORN_MERO_EXPORT std::uint64_t available_vgprs(device const& target, kernel const& function);
VORN_MERO_EXPORT std::uint64_t used_vgprs(device const& target, kernel const& function);

} // namespace cl_amd_kernel_info

#if VORN_MERO_OPENCL < 110
namespace cl_altera_device_temperature {

VORN_MERO_EXPORT bool extension_available(device const& target);

/// In degrees Celsius.
VORN_MERO_EXPORT std::int32_t get_device_temperature(device const& target);

} // namespace cl_altera_device_temperature

namespace cl_altera_live_object_tracking {

VORN_MERO_EXPORT bool extension_available(device const& target);

/// To be called before the first object of the platform is made.
VORN_MERO_EXPORT void track_live_objects(platform const& owner);

/// Calls `callback` with every live object, the name of its type and its reference count. It must not throw.
VORN_MERO_EXPORT void report_live_objects(platform const& owner,
                                          void (*callback)(void* user_data, void* object, char const* type_name,
                                                           std::uint32_t reference_count),
                                          void* user_data);

} // namespace cl_altera_live_object_tracking
#endif

#if VORN_MERO_OPENCL < 120
namespace cl_arm_printf {

VORN_MERO_EXPORT bool extension_available(device const& target);

} // namespace cl_arm_printf
#endif

#if VORN_MERO_OPENCL < 210
namespace cl_amd_device_topology {

VORN_MERO_EXPORT bool extension_available(device const& target);

/// One byte; throws `common::bad_implementation` for a device that reports more.
VORN_MERO_EXPORT std::uint8_t get_device_topology(device const& target);

} // namespace cl_amd_device_topology
#endif

#if VORN_MERO_OPENCL >= 120
/// Intermediate language before OpenCL 2.1.
namespace cl_khr_il_program {

VORN_MERO_EXPORT bool extension_available(device const& target);
VORN_MERO_EXPORT program create_program_with_il(context const& owner, void const* il, std::size_t length);
VORN_MERO_EXPORT std::vector<std::string> get_supported_il_versions(device const& target);

/// The program's intermediate language without its last byte.
VORN_MERO_EXPORT std::string get_program_il(program const& source);

} // namespace cl_khr_il_program

namespace cl_khr_spir {

VORN_MERO_EXPORT bool extension_available(device const& target);
VORN_MERO_EXPORT std::vector<std::string> get_device_spir_versions(device const& target);
VORN_MERO_EXPORT bool is_binary_type_intermediate(program_binary_type type);

} // namespace cl_khr_spir
#endif

#if VORN_MERO_OPENCL >= 120 && VORN_MERO_OPENCL < 210
namespace cl_intel_subgroups {

VORN_MERO_EXPORT bool extension_available(device const& target);

// What a launch with the given local size makes of sub-groups.
VORN_MERO_EXPORT std::uint64_t get_max_sub_group_size_for_nd_range(kernel const& function, device const& target,
                                                                   std::array<std::size_t, 1> const& local_size);
VORN_MERO_EXPORT std::uint64_t get_max_sub_group_size_for_nd_range(kernel const& function, device const& target,
                                                                   std::array<std::size_t, 2> const& local_size);
VORN_MERO_EXPORT std::uint64_t get_max_sub_group_size_for_nd_range(kernel const& function, device const& target,
                                                                   std::array<std::size_t, 3> const& local_size);
VORN_MERO_EXPORT std::uint64_t get_sub_group_count_for_nd_range(kernel const& function, device const& target,
                                                                std::array<std::size_t, 1> const& local_size);
VORN_MERO_EXPORT std::uint64_t get_sub_group_count_for_nd_range(kernel const& function, device const& target,
                                                                std::array<std::size_t, 2> const& local_size);
VORN_MERO_EXPORT std::uint64_t get_sub_group_count_for_nd_range(kernel const& function, device const& target,
                                                                std::array<std::size_t, 3> const& local_size);

} // namespace cl_intel_subgroups
#endif

#if VORN_MERO_OPENCL >= 200 && VORN_MERO_OPENCL < 210
namespace cl_khr_sub_groups {

VORN_MERO_EXPORT bool extension_available(device const& target);

// What a launch with the given local size makes of sub-groups.
VORN_MERO_EXPORT std::uint64_t get_max_sub_group_size_for_nd_range(kernel const& function, device const& target,
                                                                   std::array<std::size_t, 1> const& local_size);
VORN_MERO_EXPORT std::uint64_t get_max_sub_group_size_for_nd_range(kernel const& function, device const& target,
                                                                   std::array<std::size_t, 2> const& local_size);
VORN_MERO_EXPORT std::uint64_t get_max_sub_group_size_for_nd_range(kernel const& function, device const& target,
                                                                   std::array<std::size_t, 3> const& local_size);
VORN_MERO_EXPORT std::uint64_t get_sub_group_count_for_nd_range(kernel const& function, device const& target,
                                                                std::array<std::size_t, 1> const& local_size);
VORN_MERO_EXPORT std::uint64_t get_sub_group_count_for_nd_range(kernel const& function, device const& target,
                                                                std::array<std::size_t, 2> const& local_size);
VORN_MERO_EXPORT std::uint64_t get_sub_group_count_for_nd_range(kernel const& function, device const& target,
                                                                std::array<std::size_t, 3> const& local_size);

} // namespace cl_khr_sub_groups

namespace cl_khr_terminate_context {

VORN_MERO_EXPORT bool extension_available(device const& target);

/// Ends every command of the context that is not complete.
VORN_MERO_EXPORT void terminate(context const& owner);
VORN_MERO_EXPORT bool is_terminate_supported(device const& target);
VORN_MERO_EXPORT bool is_execution_status_terminated(event_execution_status status);

/// As `event::set_callback`, for the end by `terminate`.
VORN_MERO_EXPORT void set_event_terminated_callback(event& target, void (*callback)(_nq_cl_event*, int, void*),
                                                    void* user_data);

} // namespace cl_khr_terminate_context

namespace cl_khr_initialize_memory {

VORN_MERO_EXPORT bool extension_available(device const& target);

} // namespace cl_khr_initialize_memory
#endif

} // namespace vorn::mero::VORN_MERO_NAMESPACE::extension

namespace vorn::mero::internal {

/// Whether a device lists an extension, without regard to case. An entry that is a prefix of the name counts as the
/// name; the empty name matches nothing.
VORN_MERO_EXPORT bool extension_supported(VORN_MERO_NAMESPACE::device const& target, std::string const& name);

} // namespace vorn::mero::internal
