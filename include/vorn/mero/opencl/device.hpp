// OpenCL devices.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl.hpp>
#endif
#ifdef VORN_MERO_OPENCL

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// An OpenCL device.
///
///     for (cl::device const& each : cl::get_all_devices()) {
///         if (each.available() && each.is_type_gpu() && each.global_mem_size() >= needed_bytes) {
///             return each;
///         }
///     }
///
/// Each query asks OpenCL afresh, with two calls. It throws `common::bad_implementation` when the reply has the wrong
/// size, and `common::invalid_value` when the device does not know the query. Sizes are in bytes unless stated
/// otherwise. All queries are thread-safe. Since OpenCL 1.2 OpenCL counts references to devices; before, copying a
/// device makes no call.
class VORN_MERO_EXPORT device : public mero::internal::handle<internal::device_kind> {
public:
    using handle::handle;

    /// The name of the device, for people to read.
    [[nodiscard]] std::string name() const;
    /// Who made the device.
    [[nodiscard]] std::string vendor() const;
    /// The driver's own version. OpenCL does not define its form.
    [[nodiscard]] std::string driver_version() const;

    /// "OpenCL", the version of the device, and what the vendor adds, separated by blanks: "OpenCL 1.2 pocl". The
    /// version is at least that of the namespace, often later.
    [[nodiscard]] std::string device_version() const;
    /// The names of the extensions that the device supports, such as "cl_khr_fp64", in OpenCL's order.
    [[nodiscard]] std::vector<std::string> extensions() const;

    /// The platform of the device, on the same call handle.
    [[nodiscard]] platform get_platform() const;

    /// Whether the profile is "EMBEDDED_PROFILE"; any other counts as full.
    [[nodiscard]] bool is_embedded_profile() const;
    /// Whether the profile is anything but "EMBEDDED_PROFILE". `platform::is_full_profile` is stricter.
    [[nodiscard]] bool is_full_profile() const;

    /// Whether the type is `device_type::default_` and nothing else: false for a GPU that is also the default device.
    [[nodiscard]] bool is_type_default() const;
    /// Whether the device is a CPU and nothing else: false for a CPU that is also the default device.
    [[nodiscard]] bool is_type_cpu() const;
    /// Whether the device is a GPU and nothing else: false for a GPU that is also the default device.
    [[nodiscard]] bool is_type_gpu() const;
    /// Whether the device is an accelerator and nothing else, not even the default device.
    [[nodiscard]] bool is_type_accelerator() const;

    /// Identifies the vendor: the PCI vendor id if it has one.
    [[nodiscard]] std::uint32_t vendor_id() const;

    /// The number of parallel compute units. A work-group runs on one of them.
    [[nodiscard]] std::uint32_t max_compute_units() const;
    /// In MHz.
    [[nodiscard]] std::uint32_t max_clock_frequency() const;
    /// The width of an address on the device, 32 or 64 bits.
    [[nodiscard]] std::uint32_t address_bits() const;

    /// Whether the device can be used now. If not, `create_context` throws `common::device_not_available`.
    [[nodiscard]] bool available() const;
    /// Whether the device can build programs from source. If not, `program::build` throws
    /// `common::compiler_not_available`.
    [[nodiscard]] bool compiler_available() const;

    /// Whether the device is little-endian.
    [[nodiscard]] bool endian_little() const;
    /// Whether all memory of the device corrects errors.
    [[nodiscard]] bool error_correction_support() const;
    /// Whether the device can run OpenCL kernels.
    [[nodiscard]] bool can_execute_kernels() const;
    /// Whether the device can run a `native_kernel`. If not, enqueueing one throws `common::invalid_operation`.
    [[nodiscard]] bool can_execute_native_kernels() const;

    /// The most dimensions that a launch may have, at least 3.
    [[nodiscard]] std::uint32_t max_work_item_dimensions() const;
    /// The most work-items in a work-group. A kernel may allow fewer, see `kernel::max_work_group_size`.
    [[nodiscard]] std::size_t max_work_group_size() const;
    /// The most work-items of a work-group in each dimension. Throws `common::bad_implementation` unless the device has
    /// exactly three dimensions.
    [[nodiscard]] std::array<std::size_t, 3> max_work_item_sizes() const;

    /// The best vector length for `char`: 1 on a device that gains nothing from vectors.
    [[nodiscard]] std::uint32_t preferred_vector_width_char() const;
    /// The best vector length for `short`.
    [[nodiscard]] std::uint32_t preferred_vector_width_short() const;
    /// The best vector length for `int`.
    [[nodiscard]] std::uint32_t preferred_vector_width_int() const;
    /// The best vector length for `long`.
    [[nodiscard]] std::uint32_t preferred_vector_width_long() const;
    /// The best vector length for `float`.
    [[nodiscard]] std::uint32_t preferred_vector_width_float() const;
    /// The best vector length for `double`, 0 if the device has no `double`.
    [[nodiscard]] std::uint32_t preferred_vector_width_double() const;

    /// Whether `float` has denormal numbers.
    [[nodiscard]] bool single_fp_denorms_supported() const;
    /// Whether `float` has infinities and quiet NaNs.
    [[nodiscard]] bool single_fp_inf_nan_supported() const;
    /// Whether `float` can be rounded to the nearest value, ties to even.
    [[nodiscard]] bool single_fp_round_to_nearest_supported() const;
    /// Whether `float` can be rounded towards zero.
    [[nodiscard]] bool single_fp_round_to_zero_supported() const;
    /// Whether `float` can be rounded towards positive and negative infinity.
    [[nodiscard]] bool single_fp_round_to_inf_supported() const;
    /// Whether `float` has the fused multiply-add of IEEE 754-2008.
    [[nodiscard]] bool single_fp_fma_supported() const;

    /// Whether `double` has denormal numbers. If all `double_fp_` queries are false, the device has no `double`.
    [[nodiscard]] bool double_fp_denorms_supported() const;
    /// Whether `double` has infinities and quiet NaNs.
    [[nodiscard]] bool double_fp_inf_nan_supported() const;
    /// Whether `double` can be rounded to the nearest value, ties to even.
    [[nodiscard]] bool double_fp_round_to_nearest_supported() const;
    /// Whether `double` can be rounded towards zero.
    [[nodiscard]] bool double_fp_round_to_zero_supported() const;
    /// Whether `double` can be rounded towards positive and negative infinity.
    [[nodiscard]] bool double_fp_round_to_inf_supported() const;
    /// Whether `double` has the fused multiply-add of IEEE 754-2008.
    [[nodiscard]] bool double_fp_fma_supported() const;

    /// The largest memory object, often a fraction of `global_mem_size`. A larger buffer throws
    /// `common::invalid_buffer_size`.
    [[nodiscard]] std::uint64_t max_mem_alloc_size() const;
    /// The most bytes that all arguments of a kernel may take.
    [[nodiscard]] std::size_t max_parameter_size() const;

    /// The size of global memory.
    [[nodiscard]] std::uint64_t global_mem_size() const;
    /// The size of the global memory cache.
    [[nodiscard]] std::uint64_t global_mem_cache_size() const;
    /// The size of one line of the global memory cache.
    [[nodiscard]] std::uint32_t global_mem_cacheline_size() const;
    /// Whether global memory has no cache.
    [[nodiscard]] bool is_global_mem_cache_type_none() const;
    /// Whether the global memory cache serves reads only.
    [[nodiscard]] bool is_global_mem_cache_type_read_only() const;
    /// Whether the global memory cache serves reads and writes.
    [[nodiscard]] bool is_global_mem_cache_type_read_write() const;
    /// The local memory that a work-group can have. `kernel::local_mem_size` tells what a kernel uses of it.
    [[nodiscard]] std::uint64_t local_mem_size() const;
    /// Whether local memory is separate storage. False if it is part of global memory, or absent.
    [[nodiscard]] bool dedicated_local_memory() const;
    /// The most bytes that one `__constant` argument may have.
    [[nodiscard]] std::uint64_t max_constant_buffer_size() const;
    /// The most `__constant` arguments that a kernel may have.
    [[nodiscard]] std::uint32_t max_constant_args() const;

    /// In bits, not bytes: a sub-buffer must start at a multiple of `mem_base_addr_align() / 8` bytes.
    [[nodiscard]] std::uint32_t mem_base_addr_align() const;

    /// The step of `event::profile_command_start` and its siblings, in nanoseconds.
    [[nodiscard]] std::size_t profiling_timer_resolution() const;

    /// Whether the device has images. If not, the other image queries mean nothing.
    [[nodiscard]] bool image_support() const;
    /// The most images that a kernel can read.
    [[nodiscard]] std::uint32_t max_read_image_args() const;
    /// The most samplers that a kernel can use.
    [[nodiscard]] std::uint32_t max_samplers() const;
    /// In pixels.
    [[nodiscard]] std::size_t image2d_max_width() const;
    /// In pixels.
    [[nodiscard]] std::size_t image2d_max_height() const;
    /// In pixels.
    [[nodiscard]] std::size_t image3d_max_width() const;
    /// In pixels.
    [[nodiscard]] std::size_t image3d_max_height() const;
    /// In pixels.
    [[nodiscard]] std::size_t image3d_max_depth() const;

#if VORN_MERO_OPENCL < 200
    /// Whether a queue can run commands out of order. If not, creating such a queue throws
    /// `common::invalid_queue_properties`. Until OpenCL 1.2.
    [[nodiscard]] bool out_of_order_command_queue_supported() const;
    /// Whether a queue can profile its commands. Until OpenCL 1.2.
    [[nodiscard]] bool profiling_command_queue_supported() const;
    /// The most images that a kernel can write. Until OpenCL 1.2.
    [[nodiscard]] std::uint32_t max_write_image_args() const;
#endif

#if VORN_MERO_OPENCL >= 110 && VORN_MERO_OPENCL < 120
    /// The smallest alignment, in bytes, that suits every type. In OpenCL 1.1 only.
    [[nodiscard]] std::uint32_t min_data_type_align_size() const;
#endif

#if VORN_MERO_OPENCL >= 110 && VORN_MERO_OPENCL < 200
    /// Whether device and host share one memory. In OpenCL 1.1 and 1.2 only.
    [[nodiscard]] bool host_unified_memory() const;
#endif

#if VORN_MERO_OPENCL >= 110
    /// "OpenCL C", the highest version of the language, and what the vendor adds. Since OpenCL 1.1.
    [[nodiscard]] std::string opencl_c_version() const;
    /// The best vector length for `half`, 0 if the device has no `half`. Since OpenCL 1.1.
    [[nodiscard]] std::uint32_t preferred_vector_width_half() const;
    /// The vector length of the device's own instructions for `char`. Since OpenCL 1.1.
    [[nodiscard]] std::uint32_t native_vector_width_char() const;
    /// The vector length of the device's own instructions for `short`. Since OpenCL 1.1.
    [[nodiscard]] std::uint32_t native_vector_width_short() const;
    /// The vector length of the device's own instructions for `int`. Since OpenCL 1.1.
    [[nodiscard]] std::uint32_t native_vector_width_int() const;
    /// The vector length of the device's own instructions for `long`. Since OpenCL 1.1.
    [[nodiscard]] std::uint32_t native_vector_width_long() const;
    /// The vector length of the device's own instructions for `float`. Since OpenCL 1.1.
    [[nodiscard]] std::uint32_t native_vector_width_float() const;
    /// The vector length of the device's own instructions for `double`, 0 if the device has no `double`. Since
    /// OpenCL 1.1.
    [[nodiscard]] std::uint32_t native_vector_width_double() const;
    /// The vector length of the device's own instructions for `half`, 0 if the device has no `half`. Since OpenCL 1.1.
    [[nodiscard]] std::uint32_t native_vector_width_half() const;
    /// Whether software does the arithmetic of `float`. Since OpenCL 1.1.
    [[nodiscard]] bool single_fp_software_emulated() const;
    /// Whether software does the arithmetic of `double`. Since OpenCL 1.1.
    [[nodiscard]] bool double_fp_software_emulated() const;
#endif

#if VORN_MERO_OPENCL >= 120
    /// Whether the device is a custom device, which runs built-in kernels only. Since OpenCL 1.2.
    [[nodiscard]] bool is_type_custom() const;
    /// Whether the device can link programs. Since OpenCL 1.2.
    [[nodiscard]] bool linker_available() const;
    /// The names for `context::create_program_from_builtin_kernels`; most devices have none. Since OpenCL 1.2.
    [[nodiscard]] std::vector<std::string> built_in_kernels() const;
    /// The size of the buffer that holds the `printf` output of a launch. Since OpenCL 1.2.
    [[nodiscard]] std::size_t printf_buffer_size() const;
    /// Whether the device prefers that the program itself synchronizes with other APIs such as OpenGL. Since
    /// OpenCL 1.2.
    [[nodiscard]] bool preferred_interop_user_sync() const;
    /// Whether division and square root of `float` are rounded as IEEE 754 requires. Since OpenCL 1.2.
    [[nodiscard]] bool single_fp_correctly_rounded_divide_sqrt() const;
    /// The largest width of an `image_1d_buffer`, in pixels. Since OpenCL 1.2.
    [[nodiscard]] std::size_t image_max_buffer_size() const;
    /// The most images in an image array. Since OpenCL 1.2.
    [[nodiscard]] std::size_t image_max_array_size() const;

    /// Whether the device is no sub-device. Since OpenCL 1.2.
    [[nodiscard]] bool is_root_device() const;
    /// The device that this sub-device was made from. Three calls. Throws `std::logic_error` for a root device. Since
    /// OpenCL 1.2.
    [[nodiscard]] device parent_device() const;

    /// The most sub-devices that a partition can make. Since OpenCL 1.2.
    [[nodiscard]] std::uint32_t partition_max_sub_devices() const;

    /// Whether `partition_equally` is the only scheme that the device lists. Throws (usually `common::invalid_value`,
    /// else `common::bad_implementation`) on devices that list several schemes; then just try the partition. Since
    /// OpenCL 1.2.
    [[nodiscard]] bool partition_equally_supported() const;

    /// Whether `partition_by_counts` is the only scheme that the device lists. Throws as
    /// `partition_equally_supported`. Since OpenCL 1.2.
    [[nodiscard]] bool partition_by_counts_supported() const;

    /// Whether `partition_by_affinity` works for any domain. Since OpenCL 1.2.
    [[nodiscard]] bool partition_affinity_domain_supported() const;
    /// The domains for `partition_by_affinity`. Since OpenCL 1.2.
    [[nodiscard]] device_affinity_domain partition_supported_affinity_domains() const;

    /// How this device was made from its parent, see `device_partition_property`. Empty for a root device. Since
    /// OpenCL 1.2.
    [[nodiscard]] std::vector<device_partition_property> partition_type() const;

    /// Makes as many sub-devices of `compute_units` compute units as fit, in OpenCL's order. Units left over are not
    /// used. Contexts can use sub-devices like any device, and the parent stays usable. Two calls. Throws
    /// `common::device_partition_failed`, `common::invalid_device_partition_count` or `common::invalid_value` when
    /// OpenCL refuses; no sub-device exists then. Since OpenCL 1.2.
    [[nodiscard]] std::vector<device> partition_equally(unsigned int compute_units);

    /// Makes one sub-device for each number of compute units, in the same order. Throws `std::logic_error` for a 0,
    /// before any call; otherwise throws as `partition_equally`. Since OpenCL 1.2.
    [[nodiscard]] std::vector<device> partition_by_counts(std::vector<unsigned int> const& counts);

    /// Makes one sub-device for each group of compute units that share the given part of the memory hierarchy. `domain`
    /// is one flag. Throws `common::invalid_value` for a domain that the device lacks; otherwise throws as
    /// `partition_equally`. Since OpenCL 1.2.
    [[nodiscard]] std::vector<device> partition_by_affinity(device_affinity_domain domain);

    /// Adopts every id, on this device's call handle: the caller hands over one reference for each. If it throws, every
    /// id has been released exactly once. Since OpenCL 1.2.
    [[nodiscard]] std::vector<device> safe_create_devices_from_ids(std::vector<_nq_cl_device_id*> const& ids);
#endif

#if VORN_MERO_OPENCL >= 200
    /// Whether a `host_command_queue` can run commands out of order. Since OpenCL 2.0.
    [[nodiscard]] bool host_out_of_order_command_queue_supported() const;
    /// Whether a `host_command_queue` can profile its commands. Since OpenCL 2.0.
    [[nodiscard]] bool host_profiling_command_queue_supported() const;
    /// Whether the device has on-device queues, which are always out of order. Since OpenCL 2.0.
    [[nodiscard]] bool device_out_of_order_command_queue_supported() const;
    /// Whether a `device_command_queue` can profile its commands. Since OpenCL 2.0.
    [[nodiscard]] bool device_profiling_command_queue_supported() const;

    /// The size of a `device_command_queue` that is created without one. Since OpenCL 2.0.
    [[nodiscard]] std::uint32_t queue_on_device_preferred_size() const;
    /// The largest size of a `device_command_queue`. Since OpenCL 2.0.
    [[nodiscard]] std::uint32_t queue_on_device_max_size() const;
    /// The most on-device queues in a context, 0 if the device has none. Since OpenCL 2.0.
    [[nodiscard]] std::uint32_t max_on_device_queues() const;
    /// The most events in use by one on-device queue. Since OpenCL 2.0.
    [[nodiscard]] std::uint32_t max_on_device_events() const;

    /// Whether the device has coarse-grained SVM: `context::svm_allocate` works, and the host must map the memory.
    /// A device of OpenCL 3.0 may have no SVM at all. Since OpenCL 2.0.
    [[nodiscard]] bool svm_coarse_grain_buffer_supported() const;
    /// Whether host and device can share memory of `context::svm_allocate` without mapping. Since OpenCL 2.0.
    [[nodiscard]] bool svm_fine_grain_buffer_supported() const;
    /// Whether kernels can use any host memory, such as that of `malloc`. Since OpenCL 2.0.
    [[nodiscard]] bool svm_fine_grain_system_supported() const;
    /// Whether atomic operations work across host and devices in fine-grained SVM. Since OpenCL 2.0.
    [[nodiscard]] bool svm_atomics_supported() const;

    /// The most pipes that a kernel can have as arguments. Since OpenCL 2.0.
    [[nodiscard]] std::uint32_t max_pipe_args() const;
    /// The most reservations of a pipe that one work-item can hold. Since OpenCL 2.0.
    [[nodiscard]] std::uint32_t pipe_max_active_reservations() const;
    /// The largest packet of a pipe. Since OpenCL 2.0.
    [[nodiscard]] std::uint32_t pipe_max_packet_size() const;
    /// The most images that a kernel can write, or both read and write. Since OpenCL 2.0.
    [[nodiscard]] std::uint32_t max_read_write_image_args() const;

    /// For a two-dimensional image made from a buffer, in pixels: its row pitch must be a multiple of this. Since
    /// OpenCL 2.0.
    [[nodiscard]] std::uint32_t image_pitch_alignment() const;
    /// For a two-dimensional image made from a buffer, in pixels: the alignment of the buffer's `host_ptr`. Since
    /// OpenCL 2.0.
    [[nodiscard]] std::uint32_t image_base_address_alignment() const;
    /// The largest variable in the scope of a program. Since OpenCL 2.0.
    [[nodiscard]] std::size_t max_global_variable_size() const;
    /// The total size that all variables in the scope of a program should not exceed; a hint. Since OpenCL 2.0.
    [[nodiscard]] std::size_t global_variable_preferred_total_size() const;

    /// The best alignment of atomic types in fine-grained SVM; 0 means their natural alignment. Since OpenCL 2.0.
    [[nodiscard]] std::uint32_t preferred_platform_atomic_alignment() const;
    /// The best alignment of atomic types in global memory; 0 means their natural alignment. Since OpenCL 2.0.
    [[nodiscard]] std::uint32_t preferred_global_atomic_alignment() const;
    /// The best alignment of atomic types in local memory; 0 means their natural alignment. Since OpenCL 2.0.
    [[nodiscard]] std::uint32_t preferred_local_atomic_alignment() const;
#endif

#if VORN_MERO_OPENCL >= 210
    /// The intermediate languages that the device accepts, separated by blanks: "SPIR-V_1.0 SPIR-V_1.2". Empty if it
    /// accepts none. Since OpenCL 2.1.
    [[nodiscard]] std::string il_version() const;
    /// The most sub-groups in a work-group. Since OpenCL 2.1.
    [[nodiscard]] std::uint32_t max_num_sub_groups() const;
    /// Whether a sub-group can make progress while others of its work-group wait. Since OpenCL 2.1.
    [[nodiscard]] bool sub_group_independent_forward_progress() const;

    /// The host's time (first) and the device's (second) at the same moment, in nanoseconds since an unspecified start.
    /// The device's time compares with `event::profile_command_start`. One call. Throws `common::invalid_operation`
    /// where the platform has no timers. Since OpenCL 2.1.
    [[nodiscard]] std::pair<std::uint64_t, std::uint64_t> get_device_and_host_timer() const;
    /// The host's time of `get_device_and_host_timer` alone, in nanoseconds; cheaper. One call. Since OpenCL 2.1.
    [[nodiscard]] std::uint64_t get_host_timer() const;
#endif
};

/// Every device of every implementation that offers this OpenCL version, in libnq's order; empty if there is none. Each
/// call asks libnq again; devices of two calls compare equal if libnq gives them the same call handle, as the bridge
/// does. Throws `std::runtime_error` for a libnq of another version, and the `nq` exceptions.
[[nodiscard]] VORN_MERO_EXPORT std::vector<device> get_all_devices();

/// The device of a call handle. It keeps a copy of the handle. One call, and since OpenCL 1.2 another to retain. Throws
/// the `nq` exceptions.
[[nodiscard]] VORN_MERO_EXPORT device get_call_handle_device(nq::call_handle const& call_handle);

namespace raw {

/// The raw handle, null if the object was moved from.
[[nodiscard]] VORN_MERO_EXPORT _nq_cl_device_id* get_raw_device_id(device const& object) noexcept;

/// The call handle of the object.
[[nodiscard]] VORN_MERO_EXPORT nq::call_handle const&
get_call_handle(device const& object VORN_MERO_LIFETIMEBOUND) noexcept;

/// Adds a reference that the caller must release. Does nothing before OpenCL 1.2.
VORN_MERO_EXPORT void retain(device const& object);

/// Drops a reference that the caller holds. Throws `common::bad_implementation` when OpenCL refuses. Does nothing
/// before OpenCL 1.2.
VORN_MERO_EXPORT void release(device const& object);

/// OpenCL's reference count. Root devices often say 1 whatever was retained. Before OpenCL 1.2 always 1, without a
/// call.
[[nodiscard]] VORN_MERO_EXPORT std::uint32_t refcount(device const& object);

/// Wraps a raw handle and retains it: the caller keeps its own reference.
[[nodiscard]] VORN_MERO_EXPORT device create_device(nq::call_handle const& call_handle, _nq_cl_device_id* handle);

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE

#endif
