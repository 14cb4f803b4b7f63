#pragma once

// The exceptions of OpenCL operations. All derive from `error`. Each status has a class of its own, so that a program
// can catch a single condition, all misuse (`logic_error`), all conditions of the device or the moment
// (`runtime_error`), or everything. An exception has exactly the class named, never one derived from it.
//
//     try {
//         queue.enqueue_command_without_event(launch);
//     } catch (vorn::mero::common::invalid_work_group_size const&) { // one status
//         fall_back_to_smaller_groups();
//     } catch (vorn::mero::common::opencl_error const& failed) { // any status
//         report(static_cast<int>(failed.code()), failed.what());
//     }

#include <vorn/mero/common/error_base.hpp>
#include <vorn/mero/common/export.hpp>

namespace vorn::mero::common {

/// `CL_DEVICE_NOT_FOUND`: no device of this type. `get_all_devices` returns an empty list instead.
class VORN_MERO_EXPORT device_not_found : public logic_error {
public:
    /// With `error_code::device_not_found` and its message.
    device_not_found();
};
/// `CL_DEVICE_NOT_AVAILABLE`: the device cannot be used now.
class VORN_MERO_EXPORT device_not_available : public runtime_error {
public:
    /// With `error_code::device_not_available` and its message.
    device_not_available();
};
/// `CL_COMPILER_NOT_AVAILABLE`: the program is source, but the device has no compiler.
class VORN_MERO_EXPORT compiler_not_available : public logic_error {
public:
    /// With `error_code::compiler_not_available` and its message.
    compiler_not_available();
};
/// `CL_MEM_OBJECT_ALLOCATION_FAILURE`: no memory for a memory object; perhaps as late as its first use.
class VORN_MERO_EXPORT mem_object_allocation_failure : public runtime_error {
public:
    /// With `error_code::mem_object_allocation_failure` and its message.
    mem_object_allocation_failure();
};
/// `CL_OUT_OF_RESOURCES`: the device lacks resources, or a kernel failed there, for instance outside of a buffer.
class VORN_MERO_EXPORT out_of_resources : public runtime_error {
public:
    /// With `error_code::out_of_resources` and its message.
    out_of_resources();
};
/// `CL_OUT_OF_HOST_MEMORY`: the OpenCL implementation cannot get host memory.
class VORN_MERO_EXPORT out_of_host_memory : public runtime_error {
public:
    /// With `error_code::out_of_host_memory` and its message.
    out_of_host_memory();
};
/// `CL_PROFILING_INFO_NOT_AVAILABLE`: the queue does not profile, or the command is not complete.
class VORN_MERO_EXPORT profiling_info_not_available : public logic_error {
public:
    /// With `error_code::profiling_info_not_available` and its message.
    profiling_info_not_available();
};
/// `CL_MEM_COPY_OVERLAP`: source and destination of a copy overlap.
class VORN_MERO_EXPORT mem_copy_overlap : public logic_error {
public:
    /// With `error_code::mem_copy_overlap` and its message.
    mem_copy_overlap();
};
/// `CL_IMAGE_FORMAT_MISMATCH`: the images of a copy have different formats.
class VORN_MERO_EXPORT image_format_mismatch : public logic_error {
public:
    /// With `error_code::image_format_mismatch` and its message.
    image_format_mismatch();
};
/// `CL_IMAGE_FORMAT_NOT_SUPPORTED`: the context supports no image of this format.
class VORN_MERO_EXPORT image_format_not_supported : public logic_error {
public:
    /// With `error_code::image_format_not_supported` and its message.
    image_format_not_supported();
};
/// `CL_BUILD_PROGRAM_FAILURE`: the program does not build. `program::build` does not throw it.
class VORN_MERO_EXPORT build_program_failure : public runtime_error {
public:
    /// With `error_code::build_program_failure` and its message.
    build_program_failure();
};
/// `CL_MAP_FAILURE`: the region cannot be mapped.
class VORN_MERO_EXPORT map_failure : public runtime_error {
public:
    /// With `error_code::map_failure` and its message.
    map_failure();
};
/// `CL_MISALIGNED_SUB_BUFFER_OFFSET`: the start of the sub-buffer is not aligned for the device.
class VORN_MERO_EXPORT misaligned_sub_buffer_offset : public runtime_error {
public:
    /// With `error_code::misaligned_sub_buffer_offset` and its message.
    misaligned_sub_buffer_offset();
};
/// `CL_EXEC_STATUS_ERROR_FOR_EVENTS_IN_WAIT_LIST`: an event of the wait list failed.
class VORN_MERO_EXPORT exec_status_error_for_events_in_wait_list : public runtime_error {
public:
    /// With `error_code::exec_status_error_for_events_in_wait_list` and its message.
    exec_status_error_for_events_in_wait_list();
};
/// `CL_COMPILE_PROGRAM_FAILURE`: the program does not compile.
class VORN_MERO_EXPORT compile_program_failure : public logic_error {
public:
    /// With `error_code::compile_program_failure` and its message.
    compile_program_failure();
};
/// `CL_LINKER_NOT_AVAILABLE`: the device has no linker.
class VORN_MERO_EXPORT linker_not_available : public logic_error {
public:
    /// With `error_code::linker_not_available` and its message.
    linker_not_available();
};
/// `CL_LINK_PROGRAM_FAILURE`: the programs do not link. There is no log.
class VORN_MERO_EXPORT link_program_failure : public runtime_error {
public:
    /// With `error_code::link_program_failure` and its message.
    link_program_failure();
};
/// `CL_DEVICE_PARTITION_FAILED`: the device cannot be partitioned in this way, or not any further.
class VORN_MERO_EXPORT device_partition_failed : public runtime_error {
public:
    /// With `error_code::device_partition_failed` and its message.
    device_partition_failed();
};
/// `CL_KERNEL_ARG_INFO_NOT_AVAILABLE`: the program was built without `-cl-kernel-arg-info`.
class VORN_MERO_EXPORT kernel_arg_info_not_available : public logic_error {
public:
    /// With `error_code::kernel_arg_info_not_available` and its message.
    kernel_arg_info_not_available();
};
/// `CL_INVALID_VALUE`: a value that OpenCL forbids, such as a region outside its object or contradicting flags.
class VORN_MERO_EXPORT invalid_value : public logic_error {
public:
    /// With `error_code::invalid_value` and its message.
    invalid_value();
};
/// `CL_INVALID_DEVICE_TYPE`: not a device type.
class VORN_MERO_EXPORT invalid_device_type : public logic_error {
public:
    /// With `error_code::invalid_device_type` and its message.
    invalid_device_type();
};
/// `CL_INVALID_PLATFORM`: not a platform, in a property list.
class VORN_MERO_EXPORT invalid_platform : public logic_error {
public:
    /// With `error_code::invalid_platform` and its message.
    invalid_platform();
};
/// `CL_INVALID_DEVICE`: not a device, or not one of the context or the program.
class VORN_MERO_EXPORT invalid_device : public logic_error {
public:
    /// With `error_code::invalid_device` and its message.
    invalid_device();
};
/// `CL_INVALID_CONTEXT`: not a context, or objects of different contexts.
class VORN_MERO_EXPORT invalid_context : public logic_error {
public:
    /// With `error_code::invalid_context` and its message.
    invalid_context();
};
/// `CL_INVALID_QUEUE_PROPERTIES`: the device supports no queue with these properties.
class VORN_MERO_EXPORT invalid_queue_properties : public logic_error {
public:
    /// With `error_code::invalid_queue_properties` and its message.
    invalid_queue_properties();
};
/// `CL_INVALID_COMMAND_QUEUE`: not a command queue, or one of the wrong kind, host or on-device.
class VORN_MERO_EXPORT invalid_command_queue : public logic_error {
public:
    /// With `error_code::invalid_command_queue` and its message.
    invalid_command_queue();
};
/// `CL_INVALID_HOST_PTR`: the host pointer contradicts the flags.
class VORN_MERO_EXPORT invalid_host_ptr : public logic_error {
public:
    /// With `error_code::invalid_host_ptr` and its message.
    invalid_host_ptr();
};
/// `CL_INVALID_MEM_OBJECT`: not a memory object, or of the wrong kind.
class VORN_MERO_EXPORT invalid_mem_object : public logic_error {
public:
    /// With `error_code::invalid_mem_object` and its message.
    invalid_mem_object();
};
/// `CL_INVALID_IMAGE_FORMAT_DESCRIPTOR`: not an image format.
class VORN_MERO_EXPORT invalid_image_format_descriptor : public logic_error {
public:
    /// With `error_code::invalid_image_format_descriptor` and its message.
    invalid_image_format_descriptor();
};
/// `CL_INVALID_IMAGE_SIZE`: the image is larger than the device supports.
class VORN_MERO_EXPORT invalid_image_size : public logic_error {
public:
    /// With `error_code::invalid_image_size` and its message.
    invalid_image_size();
};
/// `CL_INVALID_SAMPLER`: not a sampler.
class VORN_MERO_EXPORT invalid_sampler : public logic_error {
public:
    /// With `error_code::invalid_sampler` and its message.
    invalid_sampler();
};
/// `CL_INVALID_BINARY`: the binary is damaged, or for another device.
class VORN_MERO_EXPORT invalid_binary : public runtime_error {
public:
    /// With `error_code::invalid_binary` and its message.
    invalid_binary();
};
/// `CL_INVALID_BUILD_OPTIONS`: unknown or contradicting build options.
class VORN_MERO_EXPORT invalid_build_options : public logic_error {
public:
    /// With `error_code::invalid_build_options` and its message.
    invalid_build_options();
};
/// `CL_INVALID_PROGRAM`: not a program.
class VORN_MERO_EXPORT invalid_program : public logic_error {
public:
    /// With `error_code::invalid_program` and its message.
    invalid_program();
};
/// `CL_INVALID_PROGRAM_EXECUTABLE`: the program has not been built for the device.
class VORN_MERO_EXPORT invalid_program_executable : public logic_error {
public:
    /// With `error_code::invalid_program_executable` and its message.
    invalid_program_executable();
};
/// `CL_INVALID_KERNEL_NAME`: the program has no kernel of this name.
class VORN_MERO_EXPORT invalid_kernel_name : public logic_error {
public:
    /// With `error_code::invalid_kernel_name` and its message.
    invalid_kernel_name();
};
/// `CL_INVALID_KERNEL_DEFINITION`: the kernel differs between the devices of the program.
class VORN_MERO_EXPORT invalid_kernel_definition : public logic_error {
public:
    /// With `error_code::invalid_kernel_definition` and its message.
    invalid_kernel_definition();
};
/// `CL_INVALID_KERNEL`: not a kernel.
class VORN_MERO_EXPORT invalid_kernel : public logic_error {
public:
    /// With `error_code::invalid_kernel` and its message.
    invalid_kernel();
};
/// `CL_INVALID_ARG_INDEX`: the kernel has no argument of this index.
class VORN_MERO_EXPORT invalid_arg_index : public logic_error {
public:
    /// With `error_code::invalid_arg_index` and its message.
    invalid_arg_index();
};
/// `CL_INVALID_ARG_VALUE`: the value does not suit the kernel argument: null, or an object of another kind.
class VORN_MERO_EXPORT invalid_arg_value : public logic_error {
public:
    /// With `error_code::invalid_arg_value` and its message.
    invalid_arg_value();
};
/// `CL_INVALID_ARG_SIZE`: the size is not that of the kernel argument.
class VORN_MERO_EXPORT invalid_arg_size : public logic_error {
public:
    /// With `error_code::invalid_arg_size` and its message.
    invalid_arg_size();
};
/// `CL_INVALID_KERNEL_ARGS`: an argument of the kernel has not been set.
class VORN_MERO_EXPORT invalid_kernel_args : public logic_error {
public:
    /// With `error_code::invalid_kernel_args` and its message.
    invalid_kernel_args();
};
/// `CL_INVALID_WORK_DIMENSION`: the number of dimensions is not 1, 2 or 3.
class VORN_MERO_EXPORT invalid_work_dimension : public logic_error {
public:
    /// With `error_code::invalid_work_dimension` and its message.
    invalid_work_dimension();
};
/// `CL_INVALID_WORK_GROUP_SIZE`: the local size does not divide the global size, or kernel or device do not allow it.
class VORN_MERO_EXPORT invalid_work_group_size : public logic_error {
public:
    /// With `error_code::invalid_work_group_size` and its message.
    invalid_work_group_size();
};
/// `CL_INVALID_WORK_ITEM_SIZE`: the local size is too large in one dimension.
class VORN_MERO_EXPORT invalid_work_item_size : public logic_error {
public:
    /// With `error_code::invalid_work_item_size` and its message.
    invalid_work_item_size();
};
/// `CL_INVALID_GLOBAL_OFFSET`: global offset plus global size exceed the device's `size_t`.
class VORN_MERO_EXPORT invalid_global_offset : public logic_error {
public:
    /// With `error_code::invalid_global_offset` and its message.
    invalid_global_offset();
};
/// `CL_INVALID_EVENT_WAIT_LIST`: the list has an invalid event, or list and count do not match.
class VORN_MERO_EXPORT invalid_event_wait_list : public logic_error {
public:
    /// With `error_code::invalid_event_wait_list` and its message.
    invalid_event_wait_list();
};
/// `CL_INVALID_EVENT`: not an event, or one of another context.
class VORN_MERO_EXPORT invalid_event : public logic_error {
public:
    /// With `error_code::invalid_event` and its message.
    invalid_event();
};
/// `CL_INVALID_OPERATION`: not allowed in this state, or not supported, such as optional features of OpenCL 3.0.
class VORN_MERO_EXPORT invalid_operation : public logic_error {
public:
    /// With `error_code::invalid_operation` and its message.
    invalid_operation();
};
/// `CL_INVALID_GL_OBJECT`: not an OpenGL object of the expected kind.
class VORN_MERO_EXPORT invalid_gl_object : public logic_error {
public:
    /// With `error_code::invalid_gl_object` and its message.
    invalid_gl_object();
};
/// `CL_INVALID_BUFFER_SIZE`: zero, or larger than the device supports.
class VORN_MERO_EXPORT invalid_buffer_size : public logic_error {
public:
    /// With `error_code::invalid_buffer_size` and its message.
    invalid_buffer_size();
};
/// `CL_INVALID_MIP_LEVEL`: the image has no such mip-map level.
class VORN_MERO_EXPORT invalid_mip_level : public logic_error {
public:
    /// With `error_code::invalid_mip_level` and its message.
    invalid_mip_level();
};
/// `CL_INVALID_GLOBAL_WORK_SIZE`: the global size is missing, zero or too large.
class VORN_MERO_EXPORT invalid_global_work_size : public logic_error {
public:
    /// With `error_code::invalid_global_work_size` and its message.
    invalid_global_work_size();
};
/// `CL_INVALID_PROPERTY`: a property is unknown, repeated or has an invalid value.
class VORN_MERO_EXPORT invalid_property : public logic_error {
public:
    /// With `error_code::invalid_property` and its message.
    invalid_property();
};
/// `CL_INVALID_IMAGE_DESCRIPTOR`: the dimensions or pitches do not describe an image.
class VORN_MERO_EXPORT invalid_image_descriptor : public logic_error {
public:
    /// With `error_code::invalid_image_descriptor` and its message.
    invalid_image_descriptor();
};
/// `CL_INVALID_COMPILER_OPTIONS`: unknown or contradicting compiler options.
class VORN_MERO_EXPORT invalid_compiler_options : public logic_error {
public:
    /// With `error_code::invalid_compiler_options` and its message.
    invalid_compiler_options();
};
/// `CL_INVALID_LINKER_OPTIONS`: unknown or contradicting linker options.
class VORN_MERO_EXPORT invalid_linker_options : public logic_error {
public:
    /// With `error_code::invalid_linker_options` and its message.
    invalid_linker_options();
};
/// `CL_INVALID_DEVICE_PARTITION_COUNT`: more sub-devices or compute units than there are.
class VORN_MERO_EXPORT invalid_device_partition_count : public logic_error {
public:
    /// With `error_code::invalid_device_partition_count` and its message.
    invalid_device_partition_count();
};
/// `CL_INVALID_PIPE_SIZE`: the packet size is 0 or too large.
class VORN_MERO_EXPORT invalid_pipe_size : public logic_error {
public:
    /// With `error_code::invalid_pipe_size` and its message.
    invalid_pipe_size();
};
/// `CL_INVALID_DEVICE_QUEUE`: the kernel argument is not an on-device queue.
class VORN_MERO_EXPORT invalid_device_queue : public logic_error {
public:
    /// With `error_code::invalid_device_queue` and its message.
    invalid_device_queue();
};
/// `CL_INVALID_SPEC_ID`: the program has no specialization constant of this id.
class VORN_MERO_EXPORT invalid_spec_id : public logic_error {
public:
    /// With `error_code::invalid_spec_id` and its message.
    invalid_spec_id();
};
/// `CL_MAX_SIZE_RESTRICTION_EXCEEDED`: more memory than the kernel argument permits.
class VORN_MERO_EXPORT max_size_restriction_exceeded : public logic_error {
public:
    /// With `error_code::max_size_restriction_exceeded` and its message.
    max_size_restriction_exceeded();
};

} // namespace vorn::mero::common
