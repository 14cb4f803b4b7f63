// OpenCL devices.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>

#include <vorn/mero/opencl/forward.hpp>
#include <vorn/mero/opencl/types.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// An OpenCL device. Each query asks OpenCL afresh, and throws `common::bad_implementation` when the reply has not the
/// size that the query is defined with. Sizes are in bytes unless said otherwise. Devices are counted since OpenCL 1.2;
/// before, copying one makes no call.
class VORN_MERO_EXPORT device : public mero::internal::handle<internal::device_kind> {
public:
    using handle::handle;

    std::string name() const;
    std::string vendor() const;
    std::string driver_version() const;
    std::string device_version() const;
    std::vector<std::string> extensions() const;
    platform get_platform() const;

    /// Whether the profile is "EMBEDDED_PROFILE"; any other is a full one.
    bool is_embedded_profile() const;
    bool is_full_profile() const;

    // Each is true when the device has this type and no other.
    bool is_type_default() const;
    bool is_type_cpu() const;
    bool is_type_gpu() const;
    bool is_type_accelerator() const;

    std::uint32_t vendor_id() const;
    std::uint32_t max_compute_units() const;
    std::uint32_t max_clock_frequency() const; ///< In MHz.
    std::uint32_t address_bits() const;
    bool available() const;
    bool compiler_available() const;
    bool endian_little() const;
    bool error_correction_support() const;
    bool can_execute_kernels() const;
    bool can_execute_native_kernels() const;

    std::uint32_t max_work_item_dimensions() const;
    std::size_t max_work_group_size() const;

    /// In dimension order; throws `common::bad_implementation` for a device whose dimensions are not three.
    std::array<std::size_t, 3> max_work_item_sizes() const;

    std::uint32_t preferred_vector_width_char() const;
    std::uint32_t preferred_vector_width_short() const;
    std::uint32_t preferred_vector_width_int() const;
    std::uint32_t preferred_vector_width_long() const;
    std::uint32_t preferred_vector_width_float() const;
    std::uint32_t preferred_vector_width_double() const;

    bool single_fp_denorms_supported() const;
    bool single_fp_inf_nan_supported() const;
    bool single_fp_round_to_nearest_supported() const;
    bool single_fp_round_to_zero_supported() const;
    bool single_fp_round_to_inf_supported() const;
    bool single_fp_fma_supported() const;
    bool double_fp_denorms_supported() const;
    bool double_fp_inf_nan_supported() const;
    bool double_fp_round_to_nearest_supported() const;
    bool double_fp_round_to_zero_supported() const;
    bool double_fp_round_to_inf_supported() const;
    bool double_fp_fma_supported() const;

    std::uint64_t max_mem_alloc_size() const;
    std::size_t max_parameter_size() const;
    std::uint64_t global_mem_size() const;
    std::uint64_t global_mem_cache_size() const;
    std::uint32_t global_mem_cacheline_size() const;
    bool is_global_mem_cache_type_none() const;
    bool is_global_mem_cache_type_read_only() const;
    bool is_global_mem_cache_type_read_write() const;
    std::uint64_t local_mem_size() const;
    bool dedicated_local_memory() const;
    std::uint64_t max_constant_buffer_size() const;
    std::uint32_t max_constant_args() const;
    std::uint32_t mem_base_addr_align() const;      ///< In bits.
    std::size_t profiling_timer_resolution() const; ///< In nanoseconds.

    bool image_support() const;
    std::uint32_t max_read_image_args() const;
    std::uint32_t max_samplers() const;
    std::size_t image2d_max_width() const; ///< In pixels, as all image dimensions.
    std::size_t image2d_max_height() const;
    std::size_t image3d_max_width() const;
    std::size_t image3d_max_height() const;
    std::size_t image3d_max_depth() const;

#if VORN_MERO_OPENCL < 200
    bool out_of_order_command_queue_supported() const;
    bool profiling_command_queue_supported() const;
    std::uint32_t max_write_image_args() const;
#endif

#if VORN_MERO_OPENCL >= 110 && VORN_MERO_OPENCL < 120
    std::uint32_t min_data_type_align_size() const;
#endif

#if VORN_MERO_OPENCL >= 110 && VORN_MERO_OPENCL < 200
    bool host_unified_memory() const;
#endif

#if VORN_MERO_OPENCL >= 110
    std::string opencl_c_version() const;
    std::uint32_t preferred_vector_width_half() const;
    std::uint32_t native_vector_width_char() const;
    std::uint32_t native_vector_width_short() const;
    std::uint32_t native_vector_width_int() const;
    std::uint32_t native_vector_width_long() const;
    std::uint32_t native_vector_width_float() const;
    std::uint32_t native_vector_width_double() const;
    std::uint32_t native_vector_width_half() const;
    bool single_fp_software_emulated() const;
    bool double_fp_software_emulated() const;
#endif

#if VORN_MERO_OPENCL >= 120
    bool is_type_custom() const;
    bool linker_available() const;
    std::vector<std::string> built_in_kernels() const;
    std::size_t printf_buffer_size() const;
    bool preferred_interop_user_sync() const;
    bool single_fp_correctly_rounded_divide_sqrt() const;
    std::size_t image_max_buffer_size() const; ///< In pixels.
    std::size_t image_max_array_size() const;  ///< In images.

    /// Whether this device was not made by partitioning another.
    bool is_root_device() const;

    /// The device that this one was made from. Throws `std::logic_error` for a root device.
    device parent_device() const;

    std::uint32_t partition_max_sub_devices() const;

    /// Whether the scheme is the only one that the device lists; throws `common::bad_implementation` when it lists
    /// more.
    bool partition_equally_supported() const;
    bool partition_by_counts_supported() const;

    bool partition_affinity_domain_supported() const;
    device_affinity_domain partition_supported_affinity_domains() const;

    /// How this device was made from its parent; empty for a root device. Since OpenCL 1.2.
    std::vector<device_partition_property> partition_type() const;

    /// As many sub-devices of `compute_units` each as there are. Throws `common::device_partition_failed`,
    /// `common::invalid_device_partition_count` and the like when OpenCL refuses. Since OpenCL 1.2.
    std::vector<device> partition_equally(unsigned int compute_units);

    /// One sub-device for each count of compute units. Throws `std::logic_error` for a count of 0. Since OpenCL 1.2.
    std::vector<device> partition_by_counts(std::vector<unsigned int> const& counts);

    /// Sub-devices that share the given part of the memory hierarchy. Since OpenCL 1.2.
    std::vector<device> partition_by_affinity(device_affinity_domain domain);

    /// Adopts every id, on this device's call handle. When that fails every id is released exactly once.
    std::vector<device> safe_create_devices_from_ids(std::vector<_nq_cl_device_id*> const& ids);
#endif

#if VORN_MERO_OPENCL >= 200
    bool host_out_of_order_command_queue_supported() const;
    bool host_profiling_command_queue_supported() const;
    bool device_out_of_order_command_queue_supported() const;
    bool device_profiling_command_queue_supported() const;
    std::uint32_t queue_on_device_preferred_size() const;
    std::uint32_t queue_on_device_max_size() const;
    std::uint32_t max_on_device_queues() const;
    std::uint32_t max_on_device_events() const;
    bool svm_coarse_grain_buffer_supported() const;
    bool svm_fine_grain_buffer_supported() const;
    bool svm_fine_grain_system_supported() const;
    bool svm_atomics_supported() const;
    std::uint32_t max_pipe_args() const;
    std::uint32_t pipe_max_active_reservations() const;
    std::uint32_t pipe_max_packet_size() const;
    std::uint32_t max_read_write_image_args() const;
    std::uint32_t image_pitch_alignment() const;        ///< In pixels.
    std::uint32_t image_base_address_alignment() const; ///< In pixels.
    std::size_t max_global_variable_size() const;
    std::size_t global_variable_preferred_total_size() const;
    std::uint32_t preferred_platform_atomic_alignment() const;
    std::uint32_t preferred_global_atomic_alignment() const;
    std::uint32_t preferred_local_atomic_alignment() const;
#endif

#if VORN_MERO_OPENCL >= 210
    /// The intermediate languages that programs can be made from, divided by blanks. Since OpenCL 2.1.
    std::string il_version() const;
    std::uint32_t max_num_sub_groups() const;
    bool sub_group_independent_forward_progress() const;

    /// The host's timestamp and the device's of the same moment, in this order, in nanoseconds. Since OpenCL 2.1.
    std::pair<std::uint64_t, std::uint64_t> get_device_and_host_timer() const;

    /// In nanoseconds. Since OpenCL 2.1.
    std::uint64_t get_host_timer() const;
#endif
};

/// Every device that offers this OpenCL version. Each call asks libnq again and opens new call handles. Throws
/// `std::runtime_error` for a libnq of another version, and the `nq` exceptions.
VORN_MERO_EXPORT std::vector<device> get_all_devices();

/// The device that a call handle belongs to.
VORN_MERO_EXPORT device get_call_handle_device(nq::call_handle const& call_handle);

namespace raw {

VORN_MERO_EXPORT _nq_cl_device_id* get_raw_device_id(device const& object) noexcept;
VORN_MERO_EXPORT nq::call_handle const& get_call_handle(device const& object) noexcept;

/// Does nothing before OpenCL 1.2.
VORN_MERO_EXPORT void retain(device const& object);

/// Does nothing before OpenCL 1.2. A status other than success is thrown as `common::bad_implementation`.
VORN_MERO_EXPORT void release(device const& object);

/// 1, without a call, before OpenCL 1.2.
VORN_MERO_EXPORT std::uint32_t refcount(device const& object);

VORN_MERO_EXPORT device create_device(nq::call_handle const& call_handle, _nq_cl_device_id* handle);

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE
