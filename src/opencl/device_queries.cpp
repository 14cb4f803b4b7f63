#include "opencl/perform.hpp"

// Device queries of one read and one test. Everything else of a device is in device.cpp.

namespace vorn::mero::VORN_MERO_NAMESPACE {

using namespace detail;

namespace {

bool has_bit(device const& object, std::uint32_t name, unsigned int bit) {
    return (read_scalar<std::uint64_t>(detail::ask(object, name)) >> bit & 1) != 0;
}

} // namespace

std::uint32_t device::vendor_id() const { return read_scalar<std::uint32_t>(ask(*this, cl::device_vendor_id)); }
std::uint32_t device::max_compute_units() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_max_compute_units));
}
std::uint32_t device::max_clock_frequency() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_max_clock_frequency));
}
std::uint32_t device::address_bits() const { return read_scalar<std::uint32_t>(ask(*this, cl::device_address_bits)); }
std::uint32_t device::max_work_item_dimensions() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_max_work_item_dimensions));
}
std::size_t device::max_work_group_size() const {
    return read_scalar<std::size_t>(ask(*this, cl::device_max_work_group_size));
}
std::uint32_t device::preferred_vector_width_char() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_preferred_vector_width_char));
}
std::uint32_t device::preferred_vector_width_short() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_preferred_vector_width_short));
}
std::uint32_t device::preferred_vector_width_int() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_preferred_vector_width_int));
}
std::uint32_t device::preferred_vector_width_long() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_preferred_vector_width_long));
}
std::uint32_t device::preferred_vector_width_float() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_preferred_vector_width_float));
}
std::uint32_t device::preferred_vector_width_double() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_preferred_vector_width_double));
}
std::uint64_t device::max_mem_alloc_size() const {
    return read_scalar<std::uint64_t>(ask(*this, cl::device_max_mem_alloc_size));
}
std::size_t device::max_parameter_size() const {
    return read_scalar<std::size_t>(ask(*this, cl::device_max_parameter_size));
}
std::uint64_t device::global_mem_size() const {
    return read_scalar<std::uint64_t>(ask(*this, cl::device_global_mem_size));
}
std::uint64_t device::global_mem_cache_size() const {
    return read_scalar<std::uint64_t>(ask(*this, cl::device_global_mem_cache_size));
}
std::uint32_t device::global_mem_cacheline_size() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_global_mem_cacheline_size));
}
std::uint64_t device::local_mem_size() const {
    return read_scalar<std::uint64_t>(ask(*this, cl::device_local_mem_size));
}
std::uint64_t device::max_constant_buffer_size() const {
    return read_scalar<std::uint64_t>(ask(*this, cl::device_max_constant_buffer_size));
}
std::uint32_t device::max_constant_args() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_max_constant_args));
}
std::uint32_t device::mem_base_addr_align() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_mem_base_addr_align));
}
std::size_t device::profiling_timer_resolution() const {
    return read_scalar<std::size_t>(ask(*this, cl::device_profiling_timer_resolution));
}
bool device::available() const { return read_bool(ask(*this, cl::device_available)); }
bool device::compiler_available() const { return read_bool(ask(*this, cl::device_compiler_available)); }
bool device::endian_little() const { return read_bool(ask(*this, cl::device_endian_little)); }
bool device::error_correction_support() const { return read_bool(ask(*this, cl::device_error_correction_support)); }
bool device::image_support() const { return read_bool(ask(*this, cl::device_image_support)); }
std::uint32_t device::max_read_image_args() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_max_read_image_args));
}
std::uint32_t device::max_samplers() const { return read_scalar<std::uint32_t>(ask(*this, cl::device_max_samplers)); }
std::size_t device::image2d_max_width() const {
    return read_scalar<std::size_t>(ask(*this, cl::device_image2d_max_width));
}
std::size_t device::image2d_max_height() const {
    return read_scalar<std::size_t>(ask(*this, cl::device_image2d_max_height));
}
std::size_t device::image3d_max_width() const {
    return read_scalar<std::size_t>(ask(*this, cl::device_image3d_max_width));
}
std::size_t device::image3d_max_height() const {
    return read_scalar<std::size_t>(ask(*this, cl::device_image3d_max_height));
}
std::size_t device::image3d_max_depth() const {
    return read_scalar<std::size_t>(ask(*this, cl::device_image3d_max_depth));
}
bool device::single_fp_denorms_supported() const { return has_bit(*this, cl::device_single_fp_config, 0); }
bool device::single_fp_inf_nan_supported() const { return has_bit(*this, cl::device_single_fp_config, 1); }
bool device::single_fp_round_to_nearest_supported() const { return has_bit(*this, cl::device_single_fp_config, 2); }
bool device::single_fp_round_to_zero_supported() const { return has_bit(*this, cl::device_single_fp_config, 3); }
bool device::single_fp_round_to_inf_supported() const { return has_bit(*this, cl::device_single_fp_config, 4); }
bool device::single_fp_fma_supported() const { return has_bit(*this, cl::device_single_fp_config, 5); }
bool device::double_fp_denorms_supported() const { return has_bit(*this, cl::device_double_fp_config, 0); }
bool device::double_fp_inf_nan_supported() const { return has_bit(*this, cl::device_double_fp_config, 1); }
bool device::double_fp_round_to_nearest_supported() const { return has_bit(*this, cl::device_double_fp_config, 2); }
bool device::double_fp_round_to_zero_supported() const { return has_bit(*this, cl::device_double_fp_config, 3); }
bool device::double_fp_round_to_inf_supported() const { return has_bit(*this, cl::device_double_fp_config, 4); }
bool device::double_fp_fma_supported() const { return has_bit(*this, cl::device_double_fp_config, 5); }
bool device::is_global_mem_cache_type_none() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_global_mem_cache_type)) == 0;
}
bool device::is_global_mem_cache_type_read_only() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_global_mem_cache_type)) == 1;
}
bool device::is_global_mem_cache_type_read_write() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_global_mem_cache_type)) == 2;
}
bool device::dedicated_local_memory() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_local_mem_type)) == 1;
}
bool device::can_execute_kernels() const { return has_bit(*this, cl::device_execution_capabilities, 0); }
bool device::can_execute_native_kernels() const { return has_bit(*this, cl::device_execution_capabilities, 1); }
bool device::is_type_default() const { return read_scalar<std::uint64_t>(ask(*this, cl::device_type)) == 1; }
bool device::is_type_cpu() const { return read_scalar<std::uint64_t>(ask(*this, cl::device_type)) == 2; }
bool device::is_type_gpu() const { return read_scalar<std::uint64_t>(ask(*this, cl::device_type)) == 4; }
bool device::is_type_accelerator() const { return read_scalar<std::uint64_t>(ask(*this, cl::device_type)) == 8; }

#if VORN_MERO_OPENCL < 200
bool device::out_of_order_command_queue_supported() const { return has_bit(*this, cl::device_queue_properties, 0); }
bool device::profiling_command_queue_supported() const { return has_bit(*this, cl::device_queue_properties, 1); }
std::uint32_t device::max_write_image_args() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_max_write_image_args));
}
#endif

#if VORN_MERO_OPENCL >= 110 && VORN_MERO_OPENCL < 120
std::uint32_t device::min_data_type_align_size() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_min_data_type_align_size));
}
#endif

#if VORN_MERO_OPENCL >= 110 && VORN_MERO_OPENCL < 200
bool device::host_unified_memory() const { return read_bool(ask(*this, cl::device_host_unified_memory)); }
#endif

#if VORN_MERO_OPENCL >= 110
std::uint32_t device::preferred_vector_width_half() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_preferred_vector_width_half));
}
std::uint32_t device::native_vector_width_char() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_native_vector_width_char));
}
std::uint32_t device::native_vector_width_short() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_native_vector_width_short));
}
std::uint32_t device::native_vector_width_int() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_native_vector_width_int));
}
std::uint32_t device::native_vector_width_long() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_native_vector_width_long));
}
std::uint32_t device::native_vector_width_float() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_native_vector_width_float));
}
std::uint32_t device::native_vector_width_double() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_native_vector_width_double));
}
std::uint32_t device::native_vector_width_half() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_native_vector_width_half));
}
bool device::single_fp_software_emulated() const { return has_bit(*this, cl::device_single_fp_config, 6); }
bool device::double_fp_software_emulated() const { return has_bit(*this, cl::device_double_fp_config, 6); }
std::string device::opencl_c_version() const { return read_text(ask(*this, cl::device_opencl_c_version)); }
#endif

#if VORN_MERO_OPENCL >= 120
bool device::is_type_custom() const { return read_scalar<std::uint64_t>(ask(*this, cl::device_type)) == 16; }
bool device::linker_available() const { return read_bool(ask(*this, cl::device_linker_available)); }
bool device::preferred_interop_user_sync() const {
    return read_bool(ask(*this, cl::device_preferred_interop_user_sync));
}
std::size_t device::printf_buffer_size() const {
    return read_scalar<std::size_t>(ask(*this, cl::device_printf_buffer_size));
}
std::size_t device::image_max_buffer_size() const {
    return read_scalar<std::size_t>(ask(*this, cl::device_image_max_buffer_size));
}
std::size_t device::image_max_array_size() const {
    return read_scalar<std::size_t>(ask(*this, cl::device_image_max_array_size));
}
std::uint32_t device::partition_max_sub_devices() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_partition_max_sub_devices));
}
bool device::single_fp_correctly_rounded_divide_sqrt() const { return has_bit(*this, cl::device_single_fp_config, 7); }
#endif

#if VORN_MERO_OPENCL >= 200
bool device::host_out_of_order_command_queue_supported() const {
    return has_bit(*this, cl::device_queue_on_host_properties, 0);
}
bool device::host_profiling_command_queue_supported() const {
    return has_bit(*this, cl::device_queue_on_host_properties, 1);
}
bool device::device_out_of_order_command_queue_supported() const {
    return has_bit(*this, cl::device_queue_on_device_properties, 0);
}
bool device::device_profiling_command_queue_supported() const {
    return has_bit(*this, cl::device_queue_on_device_properties, 1);
}
std::uint32_t device::queue_on_device_preferred_size() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_queue_on_device_preferred_size));
}
std::uint32_t device::queue_on_device_max_size() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_queue_on_device_max_size));
}
std::uint32_t device::max_on_device_queues() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_max_on_device_queues));
}
std::uint32_t device::max_on_device_events() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_max_on_device_events));
}
std::uint32_t device::max_pipe_args() const { return read_scalar<std::uint32_t>(ask(*this, cl::device_max_pipe_args)); }
std::uint32_t device::pipe_max_active_reservations() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_pipe_max_active_reservations));
}
std::uint32_t device::pipe_max_packet_size() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_pipe_max_packet_size));
}
std::uint32_t device::max_read_write_image_args() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_max_read_write_image_args));
}
std::uint32_t device::image_pitch_alignment() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_image_pitch_alignment));
}
std::uint32_t device::image_base_address_alignment() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_image_base_address_alignment));
}
std::uint32_t device::preferred_platform_atomic_alignment() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_preferred_platform_atomic_alignment));
}
std::uint32_t device::preferred_global_atomic_alignment() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_preferred_global_atomic_alignment));
}
std::uint32_t device::preferred_local_atomic_alignment() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_preferred_local_atomic_alignment));
}
std::size_t device::max_global_variable_size() const {
    return read_scalar<std::size_t>(ask(*this, cl::device_max_global_variable_size));
}
std::size_t device::global_variable_preferred_total_size() const {
    return read_scalar<std::size_t>(ask(*this, cl::device_global_variable_preferred_total_size));
}
bool device::svm_coarse_grain_buffer_supported() const { return has_bit(*this, cl::device_svm_capabilities, 0); }
bool device::svm_fine_grain_buffer_supported() const { return has_bit(*this, cl::device_svm_capabilities, 1); }
bool device::svm_fine_grain_system_supported() const { return has_bit(*this, cl::device_svm_capabilities, 2); }
bool device::svm_atomics_supported() const { return has_bit(*this, cl::device_svm_capabilities, 3); }
#endif

#if VORN_MERO_OPENCL >= 210
std::string device::il_version() const { return read_text(ask(*this, cl::device_il_version)); }
std::uint32_t device::max_num_sub_groups() const {
    return read_scalar<std::uint32_t>(ask(*this, cl::device_max_num_sub_groups));
}
bool device::sub_group_independent_forward_progress() const {
    return read_bool(ask(*this, cl::device_sub_group_independent_forward_progress));
}
#endif

} // namespace vorn::mero::VORN_MERO_NAMESPACE
