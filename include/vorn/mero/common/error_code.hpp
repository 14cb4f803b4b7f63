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
    success = 0,
    device_not_found = -1,
    device_not_available = -2,
    compiler_not_available = -3,
    mem_object_allocation_failure = -4,
    out_of_resources = -5,
    out_of_host_memory = -6,
    profiling_info_not_available = -7,
    mem_copy_overlap = -8,
    image_format_mismatch = -9,
    image_format_not_supported = -10,
    build_program_failure = -11,
    map_failure = -12,
    misaligned_sub_buffer_offset = -13,
    exec_status_error_for_events_in_wait_list = -14,
    compile_program_failure = -15,
    linker_not_available = -16,
    link_program_failure = -17,
    device_partition_failed = -18,
    kernel_arg_info_not_available = -19,

    invalid_value = -30,
    invalid_device_type = -31,
    invalid_platform = -32,
    invalid_device = -33,
    invalid_context = -34,
    invalid_queue_properties = -35,
    invalid_command_queue = -36,
    invalid_host_ptr = -37,
    invalid_mem_object = -38,
    invalid_image_format_descriptor = -39,
    invalid_image_size = -40,
    invalid_sampler = -41,
    invalid_binary = -42,
    invalid_build_options = -43,
    invalid_program = -44,
    invalid_program_executable = -45,
    invalid_kernel_name = -46,
    invalid_kernel_definition = -47,
    invalid_kernel = -48,
    invalid_arg_index = -49,
    invalid_arg_value = -50,
    invalid_arg_size = -51,
    invalid_kernel_args = -52,
    invalid_work_dimension = -53,
    invalid_work_group_size = -54,
    invalid_work_item_size = -55,
    invalid_global_offset = -56,
    invalid_event_wait_list = -57,
    invalid_event = -58,
    invalid_operation = -59,
    invalid_gl_object = -60,
    invalid_buffer_size = -61,
    invalid_mip_level = -62,
    invalid_global_work_size = -63,
    invalid_property = -64,
    invalid_image_descriptor = -65,
    invalid_compiler_options = -66,
    invalid_linker_options = -67,
    invalid_device_partition_count = -68,
    invalid_pipe_size = -69,
    invalid_device_queue = -70,
    invalid_spec_id = -71,
    max_size_restriction_exceeded = -72,
};

/// The message of a status, the same text as `error::what`; "Unknown error." for any other number. Throws only
/// `std::bad_alloc`.
[[nodiscard]] VORN_MERO_EXPORT std::string get_error_string(error_code code);

} // namespace vorn::mero::common
