// Khronos and vendor extensions, each in a namespace of its name. Every use looks up the extension's function through
// the object's platform, with three calls or more, and then calls it directly. If OpenCL does not know the function,
// `std::logic_error` is thrown; if the function fails, the exception of its status. Check `extension_available` first:
//
//     namespace ending = cl::extension::khr_terminate_context;
//     if (ending::extension_available(device) && ending::is_terminate_supported(device)) {
//         ending::terminate(context);
//     }
//
// Each has two names, `cl_khr_terminate_context` and `khr_terminate_context`. Programs that include OpenCL's own
// headers use the second: those headers define some of the first as macros.
//
// Each `extension_available` but that of `cl_amd_kernel_info` reads `device::extensions`, see
// `internal::extension_supported` below, and throws only what that query throws. All functions are thread-safe as far
// as those of the extension are.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl.hpp>
#endif
#ifdef VORN_MERO_OPENCL

namespace vorn::mero::VORN_MERO_NAMESPACE::extension {

// A macro that bears the name of a namespace is set aside while the namespaces are declared.
#pragma push_macro("cl_altera_device_temperature")
#undef cl_altera_device_temperature
#pragma push_macro("cl_altera_live_object_tracking")
#undef cl_altera_live_object_tracking
#pragma push_macro("cl_amd_device_topology")
#undef cl_amd_device_topology
#pragma push_macro("cl_amd_kernel_info")
#undef cl_amd_kernel_info
#pragma push_macro("cl_arm_printf")
#undef cl_arm_printf
#pragma push_macro("cl_intel_subgroups")
#undef cl_intel_subgroups
#pragma push_macro("cl_khr_il_program")
#undef cl_khr_il_program
#pragma push_macro("cl_khr_initialize_memory")
#undef cl_khr_initialize_memory
#pragma push_macro("cl_khr_spir")
#undef cl_khr_spir
#pragma push_macro("cl_khr_sub_groups")
#undef cl_khr_sub_groups
#pragma push_macro("cl_khr_terminate_context")
#undef cl_khr_terminate_context

/// What a kernel, built for the device, uses of the device's resources, and what the device has: registers, wavefronts,
/// local memory (LDS) and stack. Each query calls the extension's function twice, and throws
/// `common::bad_implementation` if the reply does not have 8 bytes.
namespace cl_amd_kernel_info {

/// Whether the platform of the device knows the extension's function. Does not read the device's extensions.
[[nodiscard]] VORN_MERO_EXPORT bool extension_available(device const& target);

/// The scratch registers that the kernel uses.
[[nodiscard]] VORN_MERO_EXPORT std::uint64_t scratch_regs(device const& target, kernel const& function);
/// The wavefronts of the kernel on each SIMD unit.
[[nodiscard]] VORN_MERO_EXPORT std::uint64_t wavefront_per_simd(device const& target, kernel const& function);
/// The work-items in a wavefront.
[[nodiscard]] VORN_MERO_EXPORT std::uint64_t wavefront_size(device const& target, kernel const& function);
/// The general-purpose registers that the device has.
[[nodiscard]] VORN_MERO_EXPORT std::uint64_t available_gprs(device const& target, kernel const& function);
/// The general-purpose registers that the kernel uses.
[[nodiscard]] VORN_MERO_EXPORT std::uint64_t used_gprs(device const& target, kernel const& function);
/// The local memory that the device has.
[[nodiscard]] VORN_MERO_EXPORT std::uint64_t available_lds_size(device const& target, kernel const& function);
/// The local memory that the kernel uses.
[[nodiscard]] VORN_MERO_EXPORT std::uint64_t used_lds_size(device const& target, kernel const& function);
/// The stack that the device has.
[[nodiscard]] VORN_MERO_EXPORT std::uint64_t available_stack_size(device const& target, kernel const& function);
/// The stack that the kernel uses.
[[nodiscard]] VORN_MERO_EXPORT std::uint64_t used_stack_size(device const& target, kernel const& function);
/// The scalar registers that the device has.
[[nodiscard]] VORN_MERO_EXPORT std::uint64_t available_sgprs(device const& target, kernel const& function);
/// The scalar registers that the kernel uses.
[[nodiscard]] VORN_MERO_EXPORT std::uint64_t used_sgprs(device const& target, kernel const& function);
/// The vector registers that the device has.
[[nodiscard]] VORN_MERO_EXPORT std::uint64_t available_vgprs(device const& target, kernel const& function);
/// The vector registers that the kernel uses.
[[nodiscard]] VORN_MERO_EXPORT std::uint64_t used_vgprs(device const& target, kernel const& function);

} // namespace cl_amd_kernel_info
namespace amd_kernel_info = cl_amd_kernel_info;

#if VORN_MERO_OPENCL < 110
/// The temperature of a board. In OpenCL 1.0 only.
namespace cl_altera_device_temperature {

/// Whether the device lists the extension. In OpenCL 1.0 only.
[[nodiscard]] VORN_MERO_EXPORT bool extension_available(device const& target);

/// The temperature of the board's core in degrees Celsius. In OpenCL 1.0 only.
[[nodiscard]] VORN_MERO_EXPORT std::int32_t get_device_temperature(device const& target);

} // namespace cl_altera_device_temperature
namespace altera_device_temperature = cl_altera_device_temperature;

/// Finding objects that were never released. In OpenCL 1.0 only.
namespace cl_altera_live_object_tracking {

/// Whether the device lists the extension. In OpenCL 1.0 only.
[[nodiscard]] VORN_MERO_EXPORT bool extension_available(device const& target);

/// Starts the tracking. Call it before the first object of the platform is made. In OpenCL 1.0 only.
VORN_MERO_EXPORT void track_live_objects(platform const& owner);

/// Calls `callback` once for each live object with `user_data`, the object, the name of its type and its reference
/// count, on this thread before it returns. `callback` must not throw. In OpenCL 1.0 only.
VORN_MERO_EXPORT void report_live_objects(platform const& owner,
                                          void (*callback)(void* user_data, void* object, char const* type_name,
                                                           std::uint32_t reference_count),
                                          void* user_data);

} // namespace cl_altera_live_object_tracking
namespace altera_live_object_tracking = cl_altera_live_object_tracking;
#endif

#if VORN_MERO_OPENCL < 120
/// `printf` in kernels before OpenCL 1.2, through a callback in the context's property list. Until OpenCL 1.1.
namespace cl_arm_printf {

/// Whether the device lists the extension. Until OpenCL 1.1.
[[nodiscard]] VORN_MERO_EXPORT bool extension_available(device const& target);

} // namespace cl_arm_printf
namespace arm_printf = cl_arm_printf;
#endif

#if VORN_MERO_OPENCL < 210
/// The place of a device on the bus. Until OpenCL 2.0.
namespace cl_amd_device_topology {

/// Whether the device lists the extension. Until OpenCL 2.0.
[[nodiscard]] VORN_MERO_EXPORT bool extension_available(device const& target);

/// One byte. Throws if the device reports more: usually `common::invalid_value`, else `common::bad_implementation`.
/// Until OpenCL 2.0.
[[nodiscard]] VORN_MERO_EXPORT std::uint8_t get_device_topology(device const& target);

} // namespace cl_amd_device_topology
namespace amd_device_topology = cl_amd_device_topology;
#endif

#if VORN_MERO_OPENCL >= 120
/// Programs from intermediate language before OpenCL 2.1; since then use `context::create_program_from_il`. Since
/// OpenCL 1.2.
namespace cl_khr_il_program {

/// Whether the device lists the extension. Since OpenCL 1.2.
[[nodiscard]] VORN_MERO_EXPORT bool extension_available(device const& target);

/// A program from `length` bytes of intermediate language at `il`. OpenCL copies them. The program must be built before
/// it has kernels. Throws `common::invalid_operation` if no device accepts intermediate language,
/// `common::invalid_value` for bytes that are none. Since OpenCL 1.2.
[[nodiscard]] VORN_MERO_EXPORT program create_program_with_il(context const& owner, void const* il, std::size_t length);

/// The accepted intermediate languages, such as "SPIR-V_1.2"; empty if the device accepts none. Since OpenCL 1.2.
[[nodiscard]] VORN_MERO_EXPORT std::vector<std::string> get_supported_il_versions(device const& target);

/// The program's intermediate language without its last byte; since OpenCL 2.1 `program::il` returns all of it. Empty
/// for a program from anything else. Since OpenCL 1.2.
[[nodiscard]] VORN_MERO_EXPORT std::string get_program_il(program const& source);

} // namespace cl_khr_il_program
namespace khr_il_program = cl_khr_il_program;

/// Programs from SPIR, LLVM's bitcode: create them from binaries and build them with `-x spir`. Since OpenCL 1.2.
namespace cl_khr_spir {

/// Whether the device lists the extension. Since OpenCL 1.2.
[[nodiscard]] VORN_MERO_EXPORT bool extension_available(device const& target);

/// The accepted versions of SPIR, such as "1.2". Since OpenCL 1.2.
[[nodiscard]] VORN_MERO_EXPORT std::vector<std::string> get_device_spir_versions(device const& target);

/// Whether a result of `program::binary_type` means SPIR, not yet compiled for the device. Makes no call. Since
/// OpenCL 1.2.
[[nodiscard]] VORN_MERO_EXPORT bool is_binary_type_intermediate(program_binary_type type);

} // namespace cl_khr_spir
namespace khr_spir = cl_khr_spir;
#endif

#if VORN_MERO_OPENCL >= 120 && VORN_MERO_OPENCL < 210
/// Sub-groups before OpenCL 2.1; since then use the members of `kernel`. In OpenCL 1.2 and 2.0 only.
namespace cl_intel_subgroups {

/// Whether the device lists the extension. In OpenCL 1.2 and 2.0 only.
[[nodiscard]] VORN_MERO_EXPORT bool extension_available(device const& target);

/// The work-items in the largest sub-group of a launch with this local size, in one dimension. In OpenCL 1.2 and 2.0
/// only.
[[nodiscard]] VORN_MERO_EXPORT std::uint64_t
get_max_sub_group_size_for_nd_range(kernel const& function, device const& target,
                                    std::array<std::size_t, 1> const& local_size);
/// The same in two dimensions. In OpenCL 1.2 and 2.0 only.
[[nodiscard]] VORN_MERO_EXPORT std::uint64_t
get_max_sub_group_size_for_nd_range(kernel const& function, device const& target,
                                    std::array<std::size_t, 2> const& local_size);
/// The same in three dimensions. In OpenCL 1.2 and 2.0 only.
[[nodiscard]] VORN_MERO_EXPORT std::uint64_t
get_max_sub_group_size_for_nd_range(kernel const& function, device const& target,
                                    std::array<std::size_t, 3> const& local_size);

/// The sub-groups in each work-group of a launch with this local size, in one dimension. In OpenCL 1.2 and 2.0 only.
[[nodiscard]] VORN_MERO_EXPORT std::uint64_t
get_sub_group_count_for_nd_range(kernel const& function, device const& target,
                                 std::array<std::size_t, 1> const& local_size);
/// The same in two dimensions. In OpenCL 1.2 and 2.0 only.
[[nodiscard]] VORN_MERO_EXPORT std::uint64_t
get_sub_group_count_for_nd_range(kernel const& function, device const& target,
                                 std::array<std::size_t, 2> const& local_size);
/// The same in three dimensions. In OpenCL 1.2 and 2.0 only.
[[nodiscard]] VORN_MERO_EXPORT std::uint64_t
get_sub_group_count_for_nd_range(kernel const& function, device const& target,
                                 std::array<std::size_t, 3> const& local_size);

} // namespace cl_intel_subgroups
namespace intel_subgroups = cl_intel_subgroups;
#endif

#if VORN_MERO_OPENCL >= 200 && VORN_MERO_OPENCL < 210
/// Sub-groups before OpenCL 2.1; since then use the members of `kernel`. In OpenCL 2.0 only.
namespace cl_khr_sub_groups {

/// Whether the device lists the extension. In OpenCL 2.0 only.
[[nodiscard]] VORN_MERO_EXPORT bool extension_available(device const& target);

/// The work-items in the largest sub-group of a launch with this local size, in one dimension. In OpenCL 2.0 only.
[[nodiscard]] VORN_MERO_EXPORT std::uint64_t
get_max_sub_group_size_for_nd_range(kernel const& function, device const& target,
                                    std::array<std::size_t, 1> const& local_size);
/// The same in two dimensions. In OpenCL 2.0 only.
[[nodiscard]] VORN_MERO_EXPORT std::uint64_t
get_max_sub_group_size_for_nd_range(kernel const& function, device const& target,
                                    std::array<std::size_t, 2> const& local_size);
/// The same in three dimensions. In OpenCL 2.0 only.
[[nodiscard]] VORN_MERO_EXPORT std::uint64_t
get_max_sub_group_size_for_nd_range(kernel const& function, device const& target,
                                    std::array<std::size_t, 3> const& local_size);

/// The sub-groups in each work-group of a launch with this local size, in one dimension. In OpenCL 2.0 only.
[[nodiscard]] VORN_MERO_EXPORT std::uint64_t
get_sub_group_count_for_nd_range(kernel const& function, device const& target,
                                 std::array<std::size_t, 1> const& local_size);
/// The same in two dimensions. In OpenCL 2.0 only.
[[nodiscard]] VORN_MERO_EXPORT std::uint64_t
get_sub_group_count_for_nd_range(kernel const& function, device const& target,
                                 std::array<std::size_t, 2> const& local_size);
/// The same in three dimensions. In OpenCL 2.0 only.
[[nodiscard]] VORN_MERO_EXPORT std::uint64_t
get_sub_group_count_for_nd_range(kernel const& function, device const& target,
                                 std::array<std::size_t, 3> const& local_size);

} // namespace cl_khr_sub_groups
namespace khr_sub_groups = cl_khr_sub_groups;

/// Terminates all commands of a context at once. In OpenCL 2.0 only.
namespace cl_khr_terminate_context {

/// Whether the device lists the extension. In OpenCL 2.0 only.
[[nodiscard]] VORN_MERO_EXPORT bool extension_available(device const& target);

/// Terminates every command of the context that is not complete. Nothing can be enqueued in it any more. Throws
/// `common::invalid_operation` if the context was terminated before or one of its devices does not support it. In
/// OpenCL 2.0 only.
VORN_MERO_EXPORT void terminate(context const& owner);

/// Whether contexts of the device can be terminated. In OpenCL 2.0 only.
[[nodiscard]] VORN_MERO_EXPORT bool is_terminate_supported(device const& target);

/// Whether the status in a callback, or of `event::execution_status`, is that of a terminated command. Makes no call.
/// In OpenCL 2.0 only.
[[nodiscard]] VORN_MERO_EXPORT bool is_execution_status_terminated(event_execution_status status);

/// As `event::set_callback`, for a command that `terminate` terminates. In OpenCL 2.0 only.
VORN_MERO_EXPORT void set_event_terminated_callback(event& target, void (*callback)(_nq_cl_event*, int, void*),
                                                    void* user_data);

} // namespace cl_khr_terminate_context
namespace khr_terminate_context = cl_khr_terminate_context;

/// Local and private memory that is zero when a kernel starts, through a property of the context. In OpenCL 2.0 only.
namespace cl_khr_initialize_memory {

/// Whether the device lists the extension. In OpenCL 2.0 only.
[[nodiscard]] VORN_MERO_EXPORT bool extension_available(device const& target);

} // namespace cl_khr_initialize_memory
namespace khr_initialize_memory = cl_khr_initialize_memory;
#endif

#pragma pop_macro("cl_altera_device_temperature")
#pragma pop_macro("cl_altera_live_object_tracking")
#pragma pop_macro("cl_amd_device_topology")
#pragma pop_macro("cl_amd_kernel_info")
#pragma pop_macro("cl_arm_printf")
#pragma pop_macro("cl_intel_subgroups")
#pragma pop_macro("cl_khr_il_program")
#pragma pop_macro("cl_khr_initialize_memory")
#pragma pop_macro("cl_khr_spir")
#pragma pop_macro("cl_khr_sub_groups")
#pragma pop_macro("cl_khr_terminate_context")

} // namespace vorn::mero::VORN_MERO_NAMESPACE::extension

namespace vorn::mero::internal {

/// Whether a device lists an extension. Ignores case. An entry that is a prefix of the name also matches; the empty
/// name matches nothing. Two calls.
[[nodiscard]] VORN_MERO_EXPORT bool extension_supported(VORN_MERO_NAMESPACE::device const& target,
                                                        std::string const& name);

} // namespace vorn::mero::internal

#endif
