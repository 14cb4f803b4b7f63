#pragma once

// The statuses of OpenCL and their messages.

#include <vorn/mero/common/export.hpp>

#include <cstdint>
#include <string>

namespace vorn::mero::common {

/// The OpenCL statuses. Each has the name of its exception class, which vorn/mero/common/error.hpp describes, and
/// OpenCL's value: `invalid_value` is `CL_INVALID_VALUE`, -30. Other statuses, such as those of extensions, throw
/// `unknown_opencl_error`; only `event::error_code` may return one.
enum class error_code : std::int32_t {
    success = 0,                        ///< No failure; `check_error` returns.
    device_not_found = -1,              ///< No device of this type.
    device_not_available = -2,          ///< The device cannot be used now.
    compiler_not_available = -3,        ///< The program is source, but the device has no compiler.
    mem_object_allocation_failure = -4, ///< No memory for a memory object.
    out_of_resources = -5, ///< The device lacks resources, or a kernel failed there, for instance outside of a buffer.
    out_of_host_memory = -6,                         ///< The OpenCL implementation cannot get host memory.
    profiling_info_not_available = -7,               ///< The queue does not profile, or the command is not complete.
    mem_copy_overlap = -8,                           ///< Source and destination of a copy overlap.
    image_format_mismatch = -9,                      ///< The images of a copy have different formats.
    image_format_not_supported = -10,                ///< The context supports no image of this format.
    build_program_failure = -11,                     ///< The program does not build.
    map_failure = -12,                               ///< The region cannot be mapped.
    misaligned_sub_buffer_offset = -13,              ///< The start of the sub-buffer is not aligned for the device.
    exec_status_error_for_events_in_wait_list = -14, ///< An event of the wait list failed.
    compile_program_failure = -15,                   ///< The program does not compile.
    linker_not_available = -16,                      ///< The device has no linker.
    link_program_failure = -17,                      ///< The programs do not link.
    device_partition_failed = -18,       ///< The device cannot be partitioned in this way, or not any further.
    kernel_arg_info_not_available = -19, ///< The program was built without `-cl-kernel-arg-info`.

    invalid_value = -30, ///< A value that OpenCL forbids, such as a region outside its object or contradicting flags.
    invalid_device_type = -31,             ///< Not a device type.
    invalid_platform = -32,                ///< Not a platform, in a property list.
    invalid_device = -33,                  ///< Not a device, or not one of the context or the program.
    invalid_context = -34,                 ///< Not a context, or objects of different contexts.
    invalid_queue_properties = -35,        ///< The device supports no queue with these properties.
    invalid_command_queue = -36,           ///< Not a command queue, or one of the wrong kind, host or on-device.
    invalid_host_ptr = -37,                ///< The host pointer contradicts the flags.
    invalid_mem_object = -38,              ///< Not a memory object, or of the wrong kind.
    invalid_image_format_descriptor = -39, ///< Not an image format.
    invalid_image_size = -40,              ///< The image is larger than the device supports.
    invalid_sampler = -41,                 ///< Not a sampler.
    invalid_binary = -42,                  ///< The binary is damaged, or for another device.
    invalid_build_options = -43,           ///< Unknown or contradicting build options.
    invalid_program = -44,                 ///< Not a program.
    invalid_program_executable = -45,      ///< The program has not been built for the device.
    invalid_kernel_name = -46,             ///< The program has no kernel of this name.
    invalid_kernel_definition = -47,       ///< The kernel differs between the devices of the program.
    invalid_kernel = -48,                  ///< Not a kernel.
    invalid_arg_index = -49,               ///< The kernel has no argument of this index.
    invalid_arg_value = -50,       ///< The value does not suit the kernel argument: null, or an object of another kind.
    invalid_arg_size = -51,        ///< The size is not that of the kernel argument.
    invalid_kernel_args = -52,     ///< An argument of the kernel has not been set.
    invalid_work_dimension = -53,  ///< The number of dimensions is not 1, 2 or 3.
    invalid_work_group_size = -54, ///< The local size does not divide the global size, or is not allowed.
    invalid_work_item_size = -55,  ///< The local size is too large in one dimension.
    invalid_global_offset = -56,   ///< Global offset plus global size exceed the device's `size_t`.
    invalid_event_wait_list = -57, ///< The list has an invalid event, or list and count do not match.
    invalid_event = -58,           ///< Not an event, or one of another context.
    invalid_operation = -59, ///< Not allowed in this state, or not supported, such as optional features of OpenCL 3.0.
    invalid_gl_object = -60, ///< Not an OpenGL object of the expected kind.
    invalid_buffer_size = -61,            ///< Zero, or larger than the device supports.
    invalid_mip_level = -62,              ///< The image has no such mip-map level.
    invalid_global_work_size = -63,       ///< The global size is missing, zero or too large.
    invalid_property = -64,               ///< A property is unknown, repeated or has an invalid value.
    invalid_image_descriptor = -65,       ///< The dimensions or pitches do not describe an image.
    invalid_compiler_options = -66,       ///< Unknown or contradicting compiler options.
    invalid_linker_options = -67,         ///< Unknown or contradicting linker options.
    invalid_device_partition_count = -68, ///< More sub-devices or compute units than there are.
    invalid_pipe_size = -69,              ///< The packet size is 0 or too large.
    invalid_device_queue = -70,           ///< The kernel argument is not an on-device queue.
    invalid_spec_id = -71,                ///< The program has no specialization constant of this id.
    max_size_restriction_exceeded = -72,  ///< More memory than the kernel argument permits.
};

/// The message of a status, the same text as `error::what`; "Unknown error." for any other number. Throws only
/// `std::bad_alloc`.
[[nodiscard]] VORN_MERO_EXPORT std::string get_error_string(error_code code);

} // namespace vorn::mero::common
