#pragma once

// The named values of enumerations, bit fields, statuses and properties of OpenCL 1.0 to 2.2.

#include <nq/describe/names.hpp>

namespace nq::values {

/// What OpenCL answers.
inline constexpr value_set status{detail::status_names};
/// What clGetPlatformInfo can be asked.
inline constexpr value_set platform_info{detail::platform_info_names};
/// What clGetDeviceInfo can be asked.
inline constexpr value_set device_info{detail::device_info_names};
/// What clGetContextInfo can be asked.
inline constexpr value_set context_info{detail::context_info_names};
/// What clGetCommandQueueInfo can be asked.
inline constexpr value_set command_queue_info{detail::command_queue_info_names};
/// What clGetMemObjectInfo can be asked.
inline constexpr value_set mem_info{detail::mem_info_names};
/// What clGetImageInfo can be asked.
inline constexpr value_set image_info{detail::image_info_names};
/// What clGetPipeInfo can be asked.
inline constexpr value_set pipe_info{detail::pipe_info_names};
/// What clGetSamplerInfo can be asked.
inline constexpr value_set sampler_info{detail::sampler_info_names};
/// What clGetProgramInfo can be asked.
inline constexpr value_set program_info{detail::program_info_names};
/// What clGetProgramBuildInfo can be asked.
inline constexpr value_set program_build_info{detail::program_build_info_names};
/// What clGetKernelInfo can be asked.
inline constexpr value_set kernel_info{detail::kernel_info_names};
/// What clGetKernelArgInfo can be asked.
inline constexpr value_set kernel_arg_info{detail::kernel_arg_info_names};
/// What clGetKernelWorkGroupInfo can be asked.
inline constexpr value_set kernel_work_group_info{detail::kernel_work_group_info_names};
/// What clGetKernelSubGroupInfo can be asked.
inline constexpr value_set kernel_sub_group_info{detail::kernel_sub_group_info_names};
/// What clSetKernelExecInfo sets.
inline constexpr value_set kernel_exec_info{detail::kernel_exec_info_names};
/// What clGetEventInfo can be asked.
inline constexpr value_set event_info{detail::event_info_names};
/// What clGetEventProfilingInfo can be asked.
inline constexpr value_set profiling_info{detail::profiling_info_names};
/// The states of a command.
inline constexpr value_set execution_status{detail::execution_status_names};
/// What a sampler does beyond the edges of an image.
inline constexpr value_set addressing_mode{detail::addressing_mode_names};
/// How a sampler reads between pixels.
inline constexpr value_set filter_mode{detail::filter_mode_names};
/// The kinds of memory objects.
inline constexpr value_set mem_object_type{detail::mem_object_type_names};
/// How a part of a buffer is named.
inline constexpr value_set buffer_create_type{detail::buffer_create_type_names};
/// The channels of a pixel.
inline constexpr value_set channel_order{detail::channel_order_names};
/// How a channel is stored.
inline constexpr value_set channel_type{detail::channel_type_names};
/// The names of properties of a context.
inline constexpr value_set context_properties{detail::context_properties_names};
/// The names of properties of a queue.
inline constexpr value_set queue_properties{detail::queue_properties_names};
/// The names of properties of a sampler.
inline constexpr value_set sampler_properties{detail::sampler_properties_names};
/// The ways to partition a device.
inline constexpr value_set partition_properties{detail::partition_properties_names};
/// The types of devices, bits.
inline constexpr value_set device_type{detail::device_type_names};
/// What a queue can be, bits.
inline constexpr value_set command_queue_properties{detail::command_queue_properties_names};
/// How memory is used and made, bits.
inline constexpr value_set mem_flags{detail::mem_flags_names};
/// Where and how memory is migrated, bits.
inline constexpr value_set migration_flags{detail::migration_flags_names};
/// What mapped memory is for, bits.
inline constexpr value_set map_flags{detail::map_flags_names};

} // namespace nq::values
