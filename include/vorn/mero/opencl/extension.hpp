// Khronos and vendor extensions, each a namespace of its name. Their functions are asked for at every use (through the
// object's platform, three calls or more) and called in process; nothing is cached. A function that OpenCL does not
// know is a `std::logic_error`, a status that it returns the exception of that status. Ask `extension_available` first:
//
//     namespace ending = cl::extension::cl_khr_terminate_context;
//     if (ending::extension_available(device) && ending::is_terminate_supported(device)) {
//         ending::terminate(context);
//     }
//
// Each `extension_available` reads the device's extension list, without regard to case, see
// `internal::extension_supported` at the end; it throws only what that query throws.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>

#include <vorn/mero/opencl/forward.hpp>
#include <vorn/mero/opencl/types.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE::extension {

/// What a kernel, built for the device, takes of the device's resources and what there is: registers (general, scalar,
/// vector), wavefronts and their work-items, local memory (LDS) and stack. One number each, by two calls of the
/// extension's function; `common::bad_implementation` when it has not 8 bytes.
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
/// The temperature of a board. In OpenCL 1.0 only.
namespace cl_altera_device_temperature {

VORN_MERO_EXPORT bool extension_available(device const& target);

/// In degrees Celsius.
VORN_MERO_EXPORT std::int32_t get_device_temperature(device const& target);

} // namespace cl_altera_device_temperature

/// Finding objects that were never released. In OpenCL 1.0 only.
namespace cl_altera_live_object_tracking {

VORN_MERO_EXPORT bool extension_available(device const& target);

/// Starts the tracking; to be called before the first object of the platform is made.
VORN_MERO_EXPORT void track_live_objects(platform const& owner);

/// Calls `callback` with `user_data`, every live object, the name of its type and its reference count, on this thread
/// before it returns. It must not throw.
VORN_MERO_EXPORT void report_live_objects(platform const& owner,
                                          void (*callback)(void* user_data, void* object, char const* type_name,
                                                           std::uint32_t reference_count),
                                          void* user_data);

} // namespace cl_altera_live_object_tracking
#endif

#if VORN_MERO_OPENCL < 120
/// `printf` in kernels before OpenCL 1.2, through a callback in the context's property list.
namespace cl_arm_printf {

VORN_MERO_EXPORT bool extension_available(device const& target);

} // namespace cl_arm_printf
#endif

#if VORN_MERO_OPENCL < 210
/// Where a device is on the bus. Until OpenCL 2.0.
namespace cl_amd_device_topology {

VORN_MERO_EXPORT bool extension_available(device const& target);

/// One byte; throws `common::bad_implementation` for a device that reports more.
VORN_MERO_EXPORT std::uint8_t get_device_topology(device const& target);

} // namespace cl_amd_device_topology
#endif

#if VORN_MERO_OPENCL >= 120
/// Intermediate language before OpenCL 2.1; since then `context::create_program_from_il`. Since OpenCL 1.2.
namespace cl_khr_il_program {

VORN_MERO_EXPORT bool extension_available(device const& target);

/// A program from `length` bytes of intermediate language at `il`, which OpenCL copies; it must be built before it has
/// kernels. Throws as `context::create_program_from_il`.
VORN_MERO_EXPORT program create_program_with_il(context const& owner, void const* il, std::size_t length);

/// "SPIR-V_1.2" and the like; none where the device takes no intermediate language.
VORN_MERO_EXPORT std::vector<std::string> get_supported_il_versions(device const& target);

/// The program's intermediate language without its last byte; since OpenCL 2.1 `program::il` gives it whole. Empty for
/// a program that was not made from any.
VORN_MERO_EXPORT std::string get_program_il(program const& source);

} // namespace cl_khr_il_program

/// Programs from LLVM's SPIR, given as binaries and built with `-x spir`. Since OpenCL 1.2.
namespace cl_khr_spir {

VORN_MERO_EXPORT bool extension_available(device const& target);

/// "1.2" and the like.
VORN_MERO_EXPORT std::vector<std::string> get_device_spir_versions(device const& target);

/// Whether a type that `program::binary_type` gave is SPIR, to be compiled for the device yet. Makes no call.
VORN_MERO_EXPORT bool is_binary_type_intermediate(program_binary_type type);

} // namespace cl_khr_spir
#endif

#if VORN_MERO_OPENCL >= 120 && VORN_MERO_OPENCL < 210
/// Sub-groups before OpenCL 2.1; since then members of `kernel`. In OpenCL 1.2 and 2.0.
namespace cl_intel_subgroups {

VORN_MERO_EXPORT bool extension_available(device const& target);

// What a launch with the given local size makes of sub-groups: the work-items of the largest, and their number in a
// work-group.
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
/// Sub-groups before OpenCL 2.1; since then members of `kernel`. In OpenCL 2.0 only.
namespace cl_khr_sub_groups {

VORN_MERO_EXPORT bool extension_available(device const& target);

// What a launch with the given local size makes of sub-groups: the work-items of the largest, and their number in a
// work-group.
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

/// Ending all commands of a context at once. In OpenCL 2.0 only.
namespace cl_khr_terminate_context {

VORN_MERO_EXPORT bool extension_available(device const& target);

/// Ends every command of the context that is not complete; nothing can be enqueued in it any more. Throws
/// `common::invalid_operation` when the context was ended before or a device of it cannot do so.
VORN_MERO_EXPORT void terminate(context const& owner);

/// Whether contexts of the device can be ended.
VORN_MERO_EXPORT bool is_terminate_supported(device const& target);

/// Whether a status that a callback was given, or `event::execution_status` gave, is that of a command ended so. Makes
/// no call.
VORN_MERO_EXPORT bool is_execution_status_terminated(event_execution_status status);

/// As `event::set_callback`, for the end by `terminate`.
VORN_MERO_EXPORT void set_event_terminated_callback(event& target, void (*callback)(_nq_cl_event*, int, void*),
                                                    void* user_data);

} // namespace cl_khr_terminate_context

/// Local and private memory that is zero when a kernel starts, by a property of the context. In OpenCL 2.0 only.
namespace cl_khr_initialize_memory {

VORN_MERO_EXPORT bool extension_available(device const& target);

} // namespace cl_khr_initialize_memory
#endif

} // namespace vorn::mero::VORN_MERO_NAMESPACE::extension

namespace vorn::mero::internal {

/// Whether a device lists an extension, without regard to case. An entry that is a prefix of the name counts as the
/// name; the empty name matches nothing. Two calls.
VORN_MERO_EXPORT bool extension_supported(VORN_MERO_NAMESPACE::device const& target, std::string const& name);

} // namespace vorn::mero::internal
