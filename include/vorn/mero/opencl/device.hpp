// OpenCL devices.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>

#include <vorn/mero/opencl/forward.hpp>
#include <vorn/mero/opencl/types.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// An OpenCL device.
///
///     for (cl::device const& each : cl::get_all_devices()) {
///         if (each.available() && each.is_type_gpu() && each.global_mem_size() >= needed_bytes) {
///             return each;
///         }
///     }
///
/// Each query asks OpenCL afresh, with two calls, and throws `common::bad_implementation` when the reply has not the
/// size that the query is defined with, and `common::invalid_value` when the device does not know the query. Sizes are
/// in bytes unless said otherwise. Any number of threads may ask at once. Devices are counted since OpenCL 1.2; before,
/// copying one makes no call.
class VORN_MERO_EXPORT device : public mero::internal::handle<internal::device_kind> {
public:
    using handle::handle;

    /// The name that a person knows the device by.
    std::string name() const;

    /// Who made the device.
    std::string vendor() const;

    /// The driver's own version, of any form.
    std::string driver_version() const;

    /// "OpenCL", the version of the device, and what the vendor adds, divided by blanks: "OpenCL 1.2 pocl". At least
    /// that of the namespace, often a later one.
    std::string device_version() const;

    /// The names of the extensions that the device supports, in OpenCL's order: "cl_khr_fp64" and the like.
    std::vector<std::string> extensions() const;

    /// The platform of the device, on the same call handle.
    platform get_platform() const;

    /// Whether the profile is "EMBEDDED_PROFILE"; any other is a full one.
    bool is_embedded_profile() const;

    /// Whether the profile is not "EMBEDDED_PROFILE"; `platform::is_full_profile` asks for more.
    bool is_full_profile() const;

    // Each is true when the device has this type and no other: a GPU that is the default device too is false in all of
    // them.
    bool is_type_default() const;
    bool is_type_cpu() const;
    bool is_type_gpu() const;
    bool is_type_accelerator() const;

    /// Unique among the vendors; the PCI number where there is one.
    std::uint32_t vendor_id() const;

    /// The parallel compute units, each of which runs whole work-groups.
    std::uint32_t max_compute_units() const;
    std::uint32_t max_clock_frequency() const; ///< In MHz.

    /// The width of the device's addresses, 32 or 64 bits.
    std::uint32_t address_bits() const;

    /// Whether the device can be used at the moment; a context of one that cannot throws
    /// `common::device_not_available`.
    bool available() const;

    /// Whether programs can be built from source; if not, `program::build` throws `common::compiler_not_available`.
    bool compiler_available() const;

    /// Whether the lowest byte of a number comes first.
    bool endian_little() const;

    /// Whether all of the device's memory corrects errors.
    bool error_correction_support() const;

    /// Whether the device runs kernels that OpenCL compiled.
    bool can_execute_kernels() const;

    /// Whether `native_kernel` may be enqueued; if not, it throws `common::invalid_operation`.
    bool can_execute_native_kernels() const;

    /// How many dimensions a launch may have, at least 3.
    std::uint32_t max_work_item_dimensions() const;

    /// The most work-items in a work-group; a kernel may allow fewer, see `kernel::max_work_group_size`.
    std::size_t max_work_group_size() const;

    /// The most work-items of a work-group in each dimension; throws `common::bad_implementation` for a device whose
    /// dimensions are not three.
    std::array<std::size_t, 3> max_work_item_sizes() const;

    // The elements of a vector of the type that suits the device best, 0 where it lacks the type. 1 on devices that
    // make vectors of work-items themselves.
    std::uint32_t preferred_vector_width_char() const;
    std::uint32_t preferred_vector_width_short() const;
    std::uint32_t preferred_vector_width_int() const;
    std::uint32_t preferred_vector_width_long() const;
    std::uint32_t preferred_vector_width_float() const;
    std::uint32_t preferred_vector_width_double() const;

    // What the device does with `float`: whether it supports denormal numbers, infinities and not-a-number, each
    // rounding mode, and the fused multiply-add.
    bool single_fp_denorms_supported() const;
    bool single_fp_inf_nan_supported() const;
    bool single_fp_round_to_nearest_supported() const;
    bool single_fp_round_to_zero_supported() const;
    bool single_fp_round_to_inf_supported() const;
    bool single_fp_fma_supported() const;

    // The same for `double`; all are false where the device lacks the type, which this is the way to find out.
    bool double_fp_denorms_supported() const;
    bool double_fp_inf_nan_supported() const;
    bool double_fp_round_to_nearest_supported() const;
    bool double_fp_round_to_zero_supported() const;
    bool double_fp_round_to_inf_supported() const;
    bool double_fp_fma_supported() const;

    /// The most bytes of one memory object, often a fraction of global memory; more is `common::invalid_buffer_size`.
    std::uint64_t max_mem_alloc_size() const;

    /// The most bytes of all arguments of a kernel.
    std::size_t max_parameter_size() const;

    /// The bytes of global memory.
    std::uint64_t global_mem_size() const;

    /// The bytes of the cache of global memory.
    std::uint64_t global_mem_cache_size() const;

    /// The bytes of one line of that cache.
    std::uint32_t global_mem_cacheline_size() const;

    // What the cache of global memory serves: nothing, reading, or reading and writing.
    bool is_global_mem_cache_type_none() const;
    bool is_global_mem_cache_type_read_only() const;
    bool is_global_mem_cache_type_read_write() const;

    /// The bytes of local memory that a work-group can have; `kernel::local_mem_size` says what a kernel takes of them.
    std::uint64_t local_mem_size() const;

    /// Whether local memory is a storage of its own rather than a part of global memory.
    bool dedicated_local_memory() const;

    /// The most bytes of one argument in constant memory.
    std::uint64_t max_constant_buffer_size() const;

    /// How many arguments of a kernel may be in constant memory.
    std::uint32_t max_constant_args() const;

    /// In bits, not bytes: a sub-buffer begins at a multiple of this, `mem_base_addr_align() / 8` bytes.
    std::uint32_t mem_base_addr_align() const;

    /// The step of the times that `event::profile_command_start` and the like give, in nanoseconds.
    std::size_t profiling_timer_resolution() const;

    /// Whether there are images at all; the queries below say 0 or nothing of use where not.
    bool image_support() const;

    /// How many images a kernel can read.
    std::uint32_t max_read_image_args() const;

    /// How many samplers a kernel can use.
    std::uint32_t max_samplers() const;
    std::size_t image2d_max_width() const; ///< In pixels, as all image dimensions.
    std::size_t image2d_max_height() const;
    std::size_t image3d_max_width() const;
    std::size_t image3d_max_height() const;
    std::size_t image3d_max_depth() const;

#if VORN_MERO_OPENCL < 200
    /// Whether queues may run commands out of order; if not, making one throws `common::invalid_queue_properties`.
    /// Until OpenCL 1.2.
    bool out_of_order_command_queue_supported() const;

    /// Whether queues may time commands. Until OpenCL 1.2.
    bool profiling_command_queue_supported() const;

    /// How many images a kernel can write. Until OpenCL 1.2.
    std::uint32_t max_write_image_args() const;
#endif

#if VORN_MERO_OPENCL >= 110 && VORN_MERO_OPENCL < 120
    /// The alignment in bytes that suits every type. In OpenCL 1.1 only.
    std::uint32_t min_data_type_align_size() const;
#endif

#if VORN_MERO_OPENCL >= 110 && VORN_MERO_OPENCL < 200
    /// Whether device and host share one memory. In OpenCL 1.1 and 1.2 only.
    bool host_unified_memory() const;
#endif

#if VORN_MERO_OPENCL >= 110
    /// "OpenCL C", the highest version of the language, and what the vendor adds. Since OpenCL 1.1.
    std::string opencl_c_version() const;

    /// 0 where the device lacks the type. Since OpenCL 1.1.
    std::uint32_t preferred_vector_width_half() const;

    // The elements of a vector of the type in the device's instructions, 0 where it lacks the type. Since OpenCL 1.1.
    std::uint32_t native_vector_width_char() const;
    std::uint32_t native_vector_width_short() const;
    std::uint32_t native_vector_width_int() const;
    std::uint32_t native_vector_width_long() const;
    std::uint32_t native_vector_width_float() const;
    std::uint32_t native_vector_width_double() const;
    std::uint32_t native_vector_width_half() const;

    // Whether software does the arithmetic. Since OpenCL 1.1.
    bool single_fp_software_emulated() const;
    bool double_fp_software_emulated() const;
#endif

#if VORN_MERO_OPENCL >= 120
    /// Whether the device runs built-in kernels only. Since OpenCL 1.2.
    bool is_type_custom() const;

    /// Whether programs can be linked. Since OpenCL 1.2.
    bool linker_available() const;

    /// The names for `context::create_program_from_builtin_kernels`, none for most devices. Since OpenCL 1.2.
    std::vector<std::string> built_in_kernels() const;

    /// The bytes that the `printf` calls of one launch may write. Since OpenCL 1.2.
    std::size_t printf_buffer_size() const;

    /// Whether the program should synchronise with other interfaces itself. Since OpenCL 1.2.
    bool preferred_interop_user_sync() const;

    /// Whether division and square root of `float` are rounded as IEEE 754 demands. Since OpenCL 1.2.
    bool single_fp_correctly_rounded_divide_sqrt() const;
    std::size_t image_max_buffer_size() const; ///< In pixels.
    std::size_t image_max_array_size() const;  ///< In images.

    /// Whether this device was not made by partitioning another. Since OpenCL 1.2.
    bool is_root_device() const;

    /// The device that this one was made from. Throws `std::logic_error` for a root device. Since OpenCL 1.2.
    device parent_device() const;

    /// The most sub-devices that a partition can make, 0 or 1 for a device that cannot be divided. Since OpenCL 1.2.
    std::uint32_t partition_max_sub_devices() const;

    /// Whether the scheme is the only one that the device lists. A device that lists more makes it throw, mostly
    /// `common::invalid_value`, else `common::bad_implementation`, which tells nothing of whether it has this one: try
    /// the partition then. Since OpenCL 1.2.
    bool partition_equally_supported() const;
    bool partition_by_counts_supported() const;

    /// Whether the device can be partitioned by any domain. Since OpenCL 1.2.
    bool partition_affinity_domain_supported() const;

    /// The domains to partition by, none or more. Since OpenCL 1.2.
    device_affinity_domain partition_supported_affinity_domains() const;

    /// How this device was made from its parent; empty for a root device. Since OpenCL 1.2.
    std::vector<device_partition_property> partition_type() const;

    /// As many sub-devices of `compute_units` each as there are, in OpenCL's order; units left over are not used. They
    /// are devices of their own, to make a context of, and the parent can still be used. Two calls. OpenCL refuses with
    /// `common::device_partition_failed`, `common::invalid_device_partition_count` or `common::invalid_value`, and
    /// nothing has been made then. Since OpenCL 1.2.
    std::vector<device> partition_equally(unsigned int compute_units);

    /// One sub-device for each count of compute units, in this order. Throws `std::logic_error` for a count of 0,
    /// before any call, and otherwise as `partition_equally`. Since OpenCL 1.2.
    std::vector<device> partition_by_counts(std::vector<unsigned int> const& counts);

    /// Sub-devices that share the given part of the memory hierarchy, one domain at a time; `common::invalid_value` for
    /// one that the device lacks. Otherwise as `partition_equally`. Since OpenCL 1.2.
    std::vector<device> partition_by_affinity(device_affinity_domain domain);

    /// Adopts every id, on this device's call handle: the caller hands over one reference for each. When that fails
    /// every id is released exactly once. Since OpenCL 1.2.
    std::vector<device> safe_create_devices_from_ids(std::vector<_nq_cl_device_id*> const& ids);
#endif

#if VORN_MERO_OPENCL >= 200
    // What queues of the host, and queues on the device, can be made with. Since OpenCL 2.0.
    bool host_out_of_order_command_queue_supported() const;
    bool host_profiling_command_queue_supported() const;
    bool device_out_of_order_command_queue_supported() const;
    bool device_profiling_command_queue_supported() const;

    /// In bytes, of a queue on the device: the size that it has when none is asked for, and the largest. Since
    /// OpenCL 2.0.
    std::uint32_t queue_on_device_preferred_size() const;
    std::uint32_t queue_on_device_max_size() const;

    /// How many queues on the device there may be in a context. Since OpenCL 2.0.
    std::uint32_t max_on_device_queues() const;

    /// How many events may be in use on the device. Since OpenCL 2.0.
    std::uint32_t max_on_device_events() const;

    // The kinds of shared virtual memory: memory of `context::svm_allocate` that the host must map, such memory that
    // host and device use at once, any memory of the host, and atomic operations between them. All are false on a
    // device of OpenCL 3.0 without shared virtual memory. Since OpenCL 2.0.
    bool svm_coarse_grain_buffer_supported() const;
    bool svm_fine_grain_buffer_supported() const;
    bool svm_fine_grain_system_supported() const;
    bool svm_atomics_supported() const;

    /// How many pipes a kernel can take. Since OpenCL 2.0.
    std::uint32_t max_pipe_args() const;

    /// How many reservations of a pipe a work-item can hold. Since OpenCL 2.0.
    std::uint32_t pipe_max_active_reservations() const;

    /// In bytes. Since OpenCL 2.0.
    std::uint32_t pipe_max_packet_size() const;

    /// How many images a kernel can write, or both read and write. Since OpenCL 2.0.
    std::uint32_t max_read_write_image_args() const;

    // For an image made over a buffer, in pixels: its row pitch, and where its memory begins. Since OpenCL 2.0.
    std::uint32_t image_pitch_alignment() const;
    std::uint32_t image_base_address_alignment() const;

    /// In bytes, of one variable of a program. Since OpenCL 2.0.
    std::size_t max_global_variable_size() const;

    /// In bytes, of all variables of a program. Since OpenCL 2.0.
    std::size_t global_variable_preferred_total_size() const;

    // In bytes, of atomic types in memory shared with the host, in global and in local memory; 0 stands for the
    // natural alignment. Since OpenCL 2.0.
    std::uint32_t preferred_platform_atomic_alignment() const;
    std::uint32_t preferred_global_atomic_alignment() const;
    std::uint32_t preferred_local_atomic_alignment() const;
#endif

#if VORN_MERO_OPENCL >= 210
    /// The intermediate languages that programs can be made from, divided by blanks: "SPIR-V_1.0 SPIR-V_1.2". Empty
    /// where there is none. Since OpenCL 2.1.
    std::string il_version() const;

    /// The most sub-groups of a work-group. Since OpenCL 2.1.
    std::uint32_t max_num_sub_groups() const;

    /// Whether sub-groups advance when others of their work-group wait. Since OpenCL 2.1.
    bool sub_group_independent_forward_progress() const;

    /// The host's timestamp and the device's of the same moment, in this order, in nanoseconds; of any origin. The
    /// device's is on the clock of `event::profile_command_start`. One call; `common::invalid_operation` where the
    /// platform has no timers. Since OpenCL 2.1.
    std::pair<std::uint64_t, std::uint64_t> get_device_and_host_timer() const;

    /// The host's timestamp alone, in nanoseconds, cheaper than both. One call. Since OpenCL 2.1.
    std::uint64_t get_host_timer() const;
#endif
};

/// Every device that offers this OpenCL version, of all implementations, in libnq's order; empty when there is none.
/// Each call asks libnq again and opens new call handles, so that devices of two calls are unequal: call it once and
/// keep what it gives. Throws `std::runtime_error` for a libnq of another version, and the `nq` exceptions.
VORN_MERO_EXPORT std::vector<device> get_all_devices();

/// The device that a call handle belongs to; it keeps a copy of the handle, and retains. One call, and one to retain
/// since OpenCL 1.2. Throws the `nq` exceptions.
VORN_MERO_EXPORT device get_call_handle_device(nq::call_handle const& call_handle);

namespace raw {

/// Null for an object that was moved from.
VORN_MERO_EXPORT _nq_cl_device_id* get_raw_device_id(device const& object) noexcept;

/// The call handle that the object was made through.
VORN_MERO_EXPORT nq::call_handle const& get_call_handle(device const& object) noexcept;

/// Adds a reference that the caller has to release. Does nothing before OpenCL 1.2.
VORN_MERO_EXPORT void retain(device const& object);

/// Does nothing before OpenCL 1.2. A status other than success is thrown as `common::bad_implementation`.
VORN_MERO_EXPORT void release(device const& object);

/// OpenCL's count; 1, without a call, before OpenCL 1.2. Root devices often say 1 whatever is retained.
VORN_MERO_EXPORT std::uint32_t refcount(device const& object);

/// Retains: the caller keeps its own reference.
VORN_MERO_EXPORT device create_device(nq::call_handle const& call_handle, _nq_cl_device_id* handle);

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE
