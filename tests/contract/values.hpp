#pragma once

// The OpenCL constants that the tests pass and expect.

#include <cstdint>

namespace contract {

inline constexpr std::int32_t success = 0, invalid_value = -30, invalid_platform = -32, invalid_device = -33,
                              invalid_queue_properties = -35, invalid_command_queue = -36, invalid_mem_object = -38,
                              invalid_sampler = -41, invalid_program = -44, invalid_kernel = -48,
                              invalid_arg_value = -50, invalid_work_group_size = -54, invalid_event_wait_list = -57,
                              invalid_event = -58, invalid_operation = -59, invalid_image_descriptor = -65;

inline constexpr std::uint32_t platform_name = 0x0902;
inline constexpr std::uint64_t device_type_custom = 16, device_type_all = 0xFFFFFFFF;
inline constexpr std::uint32_t device_platform = 0x1031, device_version = 0x102F, device_built_in_kernels = 0x103F,
                               device_parent = 0x1042, device_reference_count = 0x1047;
inline constexpr std::int64_t context_platform = 0x1084, partition_equally = 0x1086;
inline constexpr std::uint32_t context_reference_count = 0x1080, context_devices = 0x1081;
inline constexpr std::uint64_t out_of_order = 1, profiling = 2, on_device = 4;
inline constexpr std::uint32_t queue_context = 0x1090, queue_device = 0x1091, queue_reference_count = 0x1092,
                               queue_properties = 0x1093, queue_device_default = 0x1095;
inline constexpr std::uint64_t mem_read_write = 1, mem_copy_host_pointer = 32, map_read = 1, migrate_to_host = 1;
inline constexpr std::uint32_t buffer_create_region = 0x1220, mem_size = 0x1102, mem_reference_count = 0x1105,
                               mem_associated = 0x1107, image2d = 0x10F1, image_width = 0x1114, rgba = 0x10B5,
                               unsigned_int8 = 0x10DA, pipe_packet_size = 0x1120, pipe_max_packets = 0x1121;
inline constexpr std::uint32_t clamp_to_edge = 0x1131, nearest = 0x1140, sampler_reference_count = 0x1150,
                               sampler_normalized = 0x1152, sampler_addressing = 0x1153, sampler_filter = 0x1154;
inline constexpr std::uint32_t program_reference_count = 0x1160, program_devices = 0x1163, program_source = 0x1164,
                               program_binary_sizes = 0x1165, program_binaries = 0x1166, program_il = 0x1169,
                               build_status = 0x1181;
inline constexpr std::uint32_t kernel_function_name = 0x1190, kernel_reference_count = 0x1192,
                               kernel_argument_name = 0x119A, kernel_work_group_size = 0x11B0,
                               kernel_svm_pointers = 0x11B6, kernel_max_sub_group_size = 0x2033;
inline constexpr std::uint32_t event_reference_count = 0x11D2, event_execution_status = 0x11D3, command_start = 0x1282,
                               command_end = 0x1283;

} // namespace contract
