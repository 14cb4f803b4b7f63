#pragma once

// The OpenCL constants that the library itself uses, with OpenCL's names in lower case without `CL_`. Some numbers of
// extensions differ from those in the public headers; these are the library's own.

#include <cstdint>

namespace vorn::mero::internal::cl {

inline constexpr std::uint32_t platform_profile = 0x900;
inline constexpr std::uint32_t platform_version = 0x901;
inline constexpr std::uint32_t platform_name = 0x902;
inline constexpr std::uint32_t platform_vendor = 0x903;
inline constexpr std::uint32_t platform_extensions = 0x904;
inline constexpr std::uint32_t platform_host_timer_resolution = 0x905;

inline constexpr std::int64_t device_partition_by_counts_list_end = 0x0;
inline constexpr std::uint32_t device_type = 0x1000;
inline constexpr std::uint32_t device_vendor_id = 0x1001;
inline constexpr std::uint32_t device_max_compute_units = 0x1002;
inline constexpr std::uint32_t device_max_work_item_dimensions = 0x1003;
inline constexpr std::uint32_t device_max_work_group_size = 0x1004;
inline constexpr std::uint32_t device_max_work_item_sizes = 0x1005;
inline constexpr std::uint32_t device_preferred_vector_width_char = 0x1006;
inline constexpr std::uint32_t device_preferred_vector_width_short = 0x1007;
inline constexpr std::uint32_t device_preferred_vector_width_int = 0x1008;
inline constexpr std::uint32_t device_preferred_vector_width_long = 0x1009;
inline constexpr std::uint32_t device_preferred_vector_width_float = 0x100A;
inline constexpr std::uint32_t device_preferred_vector_width_double = 0x100B;
inline constexpr std::uint32_t device_max_clock_frequency = 0x100C;
inline constexpr std::uint32_t device_address_bits = 0x100D;
inline constexpr std::uint32_t device_max_read_image_args = 0x100E;
inline constexpr std::uint32_t device_max_write_image_args = 0x100F;
inline constexpr std::uint32_t device_max_mem_alloc_size = 0x1010;
inline constexpr std::uint32_t device_image2d_max_width = 0x1011;
inline constexpr std::uint32_t device_image2d_max_height = 0x1012;
inline constexpr std::uint32_t device_image3d_max_width = 0x1013;
inline constexpr std::uint32_t device_image3d_max_height = 0x1014;
inline constexpr std::uint32_t device_image3d_max_depth = 0x1015;
inline constexpr std::uint32_t device_image_support = 0x1016;
inline constexpr std::uint32_t device_max_parameter_size = 0x1017;
inline constexpr std::uint32_t device_max_samplers = 0x1018;
inline constexpr std::uint32_t device_mem_base_addr_align = 0x1019;
inline constexpr std::uint32_t device_min_data_type_align_size = 0x101A;
inline constexpr std::uint32_t device_single_fp_config = 0x101B;
inline constexpr std::uint32_t device_global_mem_cache_type = 0x101C;
inline constexpr std::uint32_t device_global_mem_cacheline_size = 0x101D;
inline constexpr std::uint32_t device_global_mem_cache_size = 0x101E;
inline constexpr std::uint32_t device_global_mem_size = 0x101F;
inline constexpr std::uint32_t device_max_constant_buffer_size = 0x1020;
inline constexpr std::uint32_t device_max_constant_args = 0x1021;
inline constexpr std::uint32_t device_local_mem_type = 0x1022;
inline constexpr std::uint32_t device_local_mem_size = 0x1023;
inline constexpr std::uint32_t device_error_correction_support = 0x1024;
inline constexpr std::uint32_t device_profiling_timer_resolution = 0x1025;
inline constexpr std::uint32_t device_endian_little = 0x1026;
inline constexpr std::uint32_t device_available = 0x1027;
inline constexpr std::uint32_t device_compiler_available = 0x1028;
inline constexpr std::uint32_t device_execution_capabilities = 0x1029;
inline constexpr std::uint32_t device_queue_on_host_properties = 0x102A;
inline constexpr std::uint32_t device_queue_properties = 0x102A;
inline constexpr std::uint32_t device_name = 0x102B;
inline constexpr std::uint32_t device_vendor = 0x102C;
inline constexpr std::uint32_t device_profile = 0x102E;
inline constexpr std::uint32_t device_version = 0x102F;
inline constexpr std::uint32_t device_extensions = 0x1030;
inline constexpr std::uint32_t device_platform = 0x1031;
inline constexpr std::uint32_t device_double_fp_config = 0x1032;
inline constexpr std::uint32_t device_preferred_vector_width_half = 0x1034;
inline constexpr std::uint32_t device_host_unified_memory = 0x1035;
inline constexpr std::uint32_t device_native_vector_width_char = 0x1036;
inline constexpr std::uint32_t device_native_vector_width_short = 0x1037;
inline constexpr std::uint32_t device_native_vector_width_int = 0x1038;
inline constexpr std::uint32_t device_native_vector_width_long = 0x1039;
inline constexpr std::uint32_t device_native_vector_width_float = 0x103A;
inline constexpr std::uint32_t device_native_vector_width_double = 0x103B;
inline constexpr std::uint32_t device_native_vector_width_half = 0x103C;
inline constexpr std::uint32_t device_opencl_c_version = 0x103D;
inline constexpr std::uint32_t device_linker_available = 0x103E;
inline constexpr std::uint32_t device_built_in_kernels = 0x103F;
inline constexpr std::uint32_t device_image_max_buffer_size = 0x1040;
inline constexpr std::uint32_t device_image_max_array_size = 0x1041;
inline constexpr std::uint32_t device_parent_device = 0x1042;
inline constexpr std::uint32_t device_partition_max_sub_devices = 0x1043;
inline constexpr std::uint32_t device_partition_properties = 0x1044;
inline constexpr std::uint32_t device_partition_affinity_domain = 0x1045;
inline constexpr std::uint32_t device_partition_type = 0x1046;
inline constexpr std::uint32_t device_reference_count = 0x1047;
inline constexpr std::uint32_t device_preferred_interop_user_sync = 0x1048;
inline constexpr std::uint32_t device_printf_buffer_size = 0x1049;
inline constexpr std::uint32_t device_image_pitch_alignment = 0x104A;
inline constexpr std::uint32_t device_image_base_address_alignment = 0x104B;
inline constexpr std::uint32_t device_max_read_write_image_args = 0x104C;
inline constexpr std::uint32_t device_max_global_variable_size = 0x104D;
inline constexpr std::uint32_t device_queue_on_device_properties = 0x104E;
inline constexpr std::uint32_t device_queue_on_device_preferred_size = 0x104F;
inline constexpr std::uint32_t device_queue_on_device_max_size = 0x1050;
inline constexpr std::uint32_t device_max_on_device_queues = 0x1051;
inline constexpr std::uint32_t device_max_on_device_events = 0x1052;
inline constexpr std::uint32_t device_svm_capabilities = 0x1053;
inline constexpr std::uint32_t device_global_variable_preferred_total_size = 0x1054;
inline constexpr std::uint32_t device_max_pipe_args = 0x1055;
inline constexpr std::uint32_t device_pipe_max_active_reservations = 0x1056;
inline constexpr std::uint32_t device_pipe_max_packet_size = 0x1057;
inline constexpr std::uint32_t device_preferred_platform_atomic_alignment = 0x1058;
inline constexpr std::uint32_t device_preferred_global_atomic_alignment = 0x1059;
inline constexpr std::uint32_t device_preferred_local_atomic_alignment = 0x105A;
inline constexpr std::uint32_t device_il_version = 0x105B;
inline constexpr std::uint32_t device_max_num_sub_groups = 0x105C;
inline constexpr std::uint32_t device_sub_group_independent_forward_progress = 0x105D;
inline constexpr std::int64_t device_partition_equally = 0x1086;
inline constexpr std::int64_t device_partition_by_counts = 0x1087;
inline constexpr std::int64_t device_partition_by_affinity_domain = 0x1088;
inline constexpr std::uint32_t device_terminate_capability = 0x2032;
inline constexpr std::uint32_t device_topology_amd = 0x4037;
inline constexpr std::uint32_t device_spir_versions = 0x40E0;
inline constexpr std::uint32_t device_core_temperature_altera = 0x40F3;
inline constexpr std::uint64_t device_type_all = 0xFFFFFFFF;

inline constexpr std::uint32_t context_reference_count = 0x1080;
inline constexpr std::uint32_t context_devices = 0x1081;
inline constexpr std::uint32_t context_properties = 0x1082;

inline constexpr std::uint64_t queue_out_of_order_exec_mode_enable = 0x1;
inline constexpr std::uint64_t queue_profiling_enable = 0x2;
inline constexpr std::uint64_t queue_on_device = 0x4;
inline constexpr std::uint64_t queue_on_device_default = 0x8;
inline constexpr std::uint32_t queue_context = 0x1090;
inline constexpr std::uint32_t queue_device = 0x1091;
inline constexpr std::uint32_t queue_reference_count = 0x1092;
inline constexpr std::uint32_t queue_properties = 0x1093;
inline constexpr std::uint32_t queue_size = 0x1094;
inline constexpr std::uint32_t queue_device_default = 0x1095;

inline constexpr std::uint32_t mem_flags = 0x1101;
inline constexpr std::uint32_t mem_size = 0x1102;
inline constexpr std::uint32_t mem_host_ptr = 0x1103;
inline constexpr std::uint32_t mem_reference_count = 0x1105;
inline constexpr std::uint32_t mem_context = 0x1106;
inline constexpr std::uint32_t mem_associated_memobject = 0x1107;
inline constexpr std::uint32_t mem_offset = 0x1108;

inline constexpr std::uint32_t image_format = 0x1110;
inline constexpr std::uint32_t image_element_size = 0x1111;
inline constexpr std::uint32_t image_row_pitch = 0x1112;
inline constexpr std::uint32_t image_slice_pitch = 0x1113;
inline constexpr std::uint32_t image_width = 0x1114;
inline constexpr std::uint32_t image_height = 0x1115;
inline constexpr std::uint32_t image_depth = 0x1116;
inline constexpr std::uint32_t image_array_size = 0x1117;
inline constexpr std::uint32_t image_num_mip_levels = 0x1119;
inline constexpr std::uint32_t image_num_samples = 0x111A;

inline constexpr std::uint32_t pipe_packet_size = 0x1120;
inline constexpr std::uint32_t pipe_max_packets = 0x1121;

inline constexpr std::uint32_t sampler_reference_count = 0x1150;
inline constexpr std::uint32_t sampler_context = 0x1151;
inline constexpr std::uint32_t sampler_normalized_coords = 0x1152;
inline constexpr std::uint32_t sampler_addressing_mode = 0x1153;
inline constexpr std::uint32_t sampler_filter_mode = 0x1154;

inline constexpr std::uint32_t program_reference_count = 0x1160;
inline constexpr std::uint32_t program_context = 0x1161;
inline constexpr std::uint32_t program_devices = 0x1163;
inline constexpr std::uint32_t program_source = 0x1164;
inline constexpr std::uint32_t program_binary_sizes = 0x1165;
inline constexpr std::uint32_t program_binaries = 0x1166;
inline constexpr std::uint32_t program_num_kernels = 0x1167;
inline constexpr std::uint32_t program_kernel_names = 0x1168;
inline constexpr std::uint32_t program_il = 0x1169;
inline constexpr std::uint32_t program_scope_global_ctors_present = 0x116A;
inline constexpr std::uint32_t program_scope_global_dtors_present = 0x116B;
inline constexpr std::uint32_t program_build_status = 0x1181;
inline constexpr std::uint32_t program_build_options = 0x1182;
inline constexpr std::uint32_t program_build_log = 0x1183;
inline constexpr std::uint32_t program_binary_type = 0x1184;
inline constexpr std::uint32_t program_build_global_variable_total_size = 0x1185;
inline constexpr std::uint32_t program_binary_type_intermediate = 0x40E1;

inline constexpr std::uint32_t kernel_function_name = 0x1190;
inline constexpr std::uint32_t kernel_num_args = 0x1191;
inline constexpr std::uint32_t kernel_reference_count = 0x1192;
inline constexpr std::uint32_t kernel_context = 0x1193;
inline constexpr std::uint32_t kernel_program = 0x1194;
inline constexpr std::uint32_t kernel_attributes = 0x1195;
inline constexpr std::uint32_t kernel_arg_address_qualifier = 0x1196;
inline constexpr std::uint32_t kernel_arg_access_qualifier = 0x1197;
inline constexpr std::uint32_t kernel_arg_type_name = 0x1198;
inline constexpr std::uint32_t kernel_arg_type_qualifier = 0x1199;
inline constexpr std::uint32_t kernel_arg_name = 0x119A;
inline constexpr std::uint32_t kernel_work_group_size = 0x11B0;
inline constexpr std::uint32_t kernel_compile_work_group_size = 0x11B1;
inline constexpr std::uint32_t kernel_local_mem_size = 0x11B2;
inline constexpr std::uint32_t kernel_preferred_work_group_size_multiple = 0x11B3;
inline constexpr std::uint32_t kernel_private_mem_size = 0x11B4;
inline constexpr std::uint32_t kernel_global_work_size = 0x11B5;
inline constexpr std::uint32_t kernel_exec_info_svm_ptrs = 0x11B6;
inline constexpr std::uint32_t kernel_exec_info_svm_fine_grain_system = 0x11B7;
inline constexpr std::uint32_t kernel_local_size_for_sub_group_count = 0x11B8;
inline constexpr std::uint32_t kernel_max_num_sub_groups = 0x11B9;
inline constexpr std::uint32_t kernel_compile_num_sub_groups = 0x11BA;
inline constexpr std::uint32_t kernel_max_sub_group_size_for_ndrange = 0x2033;
inline constexpr std::uint32_t kernel_sub_group_count_for_ndrange = 0x2034;

inline constexpr std::uint32_t event_command_queue = 0x11D0;
inline constexpr std::uint32_t event_command_type = 0x11D1;
inline constexpr std::uint32_t event_reference_count = 0x11D2;
inline constexpr std::uint32_t event_command_execution_status = 0x11D3;
inline constexpr std::uint32_t event_context = 0x11D4;

inline constexpr std::uint32_t profiling_command_queued = 0x1280;
inline constexpr std::uint32_t profiling_command_submit = 0x1281;
inline constexpr std::uint32_t profiling_command_start = 0x1282;
inline constexpr std::uint32_t profiling_command_end = 0x1283;
inline constexpr std::uint32_t profiling_command_complete = 0x1284;

inline constexpr std::uint32_t buffer_create_type_region = 0x1220;

inline constexpr std::uint32_t driver_version = 0x102D;

} // namespace vorn::mero::internal::cl
