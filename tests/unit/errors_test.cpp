#include <nq/error.hpp>
#include <vorn/mero/common/error.hpp>
#include <vorn/mero/internal/check_error.hpp>

#include <gtest/gtest.h>

#include <climits>
#include <typeinfo>

namespace {

namespace common = vorn::mero::common;
using common::error_code;
using vorn::mero::internal::check_error;

struct expected_error {
    int number;
    error_code code;
    std::string_view message;
    std::type_info const& type;
    std::string of_its_own; // the message of a default constructed one
};

#define UNIT_ERROR(number, name, message)                                                                              \
    { number, error_code::name, message, typeid(common::name), common::name().what() }

// clang-format off
expected_error const all_errors[] = {
    UNIT_ERROR(-1, device_not_found, "No matching device was found."),
    UNIT_ERROR(-2, device_not_available, "Device is not available."),
    UNIT_ERROR(-3, compiler_not_available, "A compiler is not available."),
    UNIT_ERROR(-4, mem_object_allocation_failure, "Failed to allocate memory."),
    UNIT_ERROR(-5, out_of_resources, "Failed to allocate resources on the device."),
    UNIT_ERROR(-6, out_of_host_memory, "Failed to allocate memory on the host."),
    UNIT_ERROR(-7, profiling_info_not_available, "Event could not be profiled, or command-queue does not support profiling."),
    UNIT_ERROR(-8, mem_copy_overlap, "Memory copy source and destination regions overlap."),
    UNIT_ERROR(-9, image_format_mismatch, "Image formats do not match."),
    UNIT_ERROR(-10, image_format_not_supported, "Image format is not supported by the device."),
    UNIT_ERROR(-11, build_program_failure, "Failed to build the program."),
    UNIT_ERROR(-12, map_failure, "Failed to map memory into host address space."),
    UNIT_ERROR(-13, misaligned_sub_buffer_offset, "Sub-buffer is misaligned."),
    UNIT_ERROR(-14, exec_status_error_for_events_in_wait_list, "An operation that blocked depended upon a failed event."),
    UNIT_ERROR(-15, compile_program_failure, "Failed to compile the program."),
    UNIT_ERROR(-16, linker_not_available, "Linker is not actually available."),
    UNIT_ERROR(-17, link_program_failure, "Failed to link compiled binaries, or libraries."),
    UNIT_ERROR(-18, device_partition_failed, "Could not further partition the device."),
    UNIT_ERROR(-19, kernel_arg_info_not_available, "Kernel argument information is not available for the kernel."),
    UNIT_ERROR(-30, invalid_value, "One of the values is not valid."),
    UNIT_ERROR(-31, invalid_device_type, "Invalid device type value provided."),
    UNIT_ERROR(-32, invalid_platform, "Platform is invalid.  You should never get this error.  Please file a bug report."),
    UNIT_ERROR(-33, invalid_device, "Device argument is not valid."),
    UNIT_ERROR(-34, invalid_context, "Context provided was not the right one or invalid."),
    UNIT_ERROR(-35, invalid_queue_properties, "Queue properties are not supported by the device."),
    UNIT_ERROR(-36, invalid_command_queue, "Command-queue provided is not a valid command-queue."),
    UNIT_ERROR(-37, invalid_host_ptr, "Host pointer is null, but a non-null pointer was expected."),
    UNIT_ERROR(-38, invalid_mem_object, "Memory object argument (buffer?) is not valid."),
    UNIT_ERROR(-39, invalid_image_format_descriptor, "Image format is invalid or missing."),
    UNIT_ERROR(-40, invalid_image_size, "Image dimensions specified exceed maximum supported by device."),
    UNIT_ERROR(-41, invalid_sampler, "Sampler object is not valid."),
    UNIT_ERROR(-42, invalid_binary, "Invalid program binary encountered, or incorrect binary for device."),
    UNIT_ERROR(-43, invalid_build_options, "Build options provided are not valid."),
    UNIT_ERROR(-44, invalid_program, "Program argument is not valid."),
    UNIT_ERROR(-45, invalid_program_executable, "No successfully built executable for the program."),
    UNIT_ERROR(-46, invalid_kernel_name, "Kernel name not found in the program."),
    UNIT_ERROR(-47, invalid_kernel_definition, "Kernel definition is not valid for all devices provided."),
    UNIT_ERROR(-48, invalid_kernel, "Provided argument is not a valid kernel."),
    UNIT_ERROR(-49, invalid_arg_index, "Argument index is not valid."),
    UNIT_ERROR(-50, invalid_arg_value, "Provided argument value is not valid."),
    UNIT_ERROR(-51, invalid_arg_size, "Argument size provided does not match size for provided data type."),
    UNIT_ERROR(-52, invalid_kernel_args, "Kernel argument values are not specified, or memory region doesn't match."),
    UNIT_ERROR(-53, invalid_work_dimension, "Work dimension value is out-of-range."),
    UNIT_ERROR(-54, invalid_work_group_size, "Work-group size does not match expected size, or is invalid."),
    UNIT_ERROR(-55, invalid_work_item_size, "Work-item size exceeds device maximum in some dimension."),
    UNIT_ERROR(-56, invalid_global_offset, "Global offset overflows size_t type."),
    UNIT_ERROR(-57, invalid_event_wait_list, "Invalid event wait list provided."),
    UNIT_ERROR(-58, invalid_event, "Invalid event provided."),
    UNIT_ERROR(-59, invalid_operation, "Operation is not supported, or violates permissions."),
    UNIT_ERROR(-60, invalid_gl_object, "GL object does not exist, or is an incorrect type, or is not properly associated."),
    UNIT_ERROR(-61, invalid_buffer_size, "Buffer size is zero, or too large."),
    UNIT_ERROR(-62, invalid_mip_level, "MIP level is out-of-range or not supported."),
    UNIT_ERROR(-63, invalid_global_work_size, "Global work size dimensions are out-of-range or not provided."),
    UNIT_ERROR(-64, invalid_property, "Context property is not supported."),
    UNIT_ERROR(-65, invalid_image_descriptor, "Invalid or missing image descriptor."),
    UNIT_ERROR(-66, invalid_compiler_options, "Compiler options provided are not valid."),
    UNIT_ERROR(-67, invalid_linker_options, "Linker options provided are not valid."),
    UNIT_ERROR(-68, invalid_device_partition_count, "Invalid partitioning of devices."),
    UNIT_ERROR(-69, invalid_pipe_size, "Pipe packet size is out-of-range."),
    UNIT_ERROR(-70, invalid_device_queue, "Invalid device queue argument provided."),
    UNIT_ERROR(-71, invalid_spec_id, "Invalid device queue argument provided."),
    UNIT_ERROR(-72, max_size_restriction_exceeded, "Size of memory object exceeds the maximum size restriction that was set."),
};
// clang-format on

TEST(errors, every_status_has_its_class_code_and_message) {
    for (auto const& [number, code, message, type, of_its_own] : all_errors) {
        SCOPED_TRACE(number);
        EXPECT_EQ(static_cast<int>(code), number);
        EXPECT_EQ(common::get_error_string(code), message);
        EXPECT_EQ(of_its_own, message);
        try {
            check_error(number);
            ADD_FAILURE() << "nothing thrown";
        } catch (common::opencl_error const& error) {
            EXPECT_EQ(typeid(error), type);
            EXPECT_EQ(error.code(), code);
            EXPECT_EQ(static_cast<std::exception const&>(error).what(), message);
        }
    }
}

TEST(errors, success_is_no_error) {
    EXPECT_NO_THROW(check_error(0));
    EXPECT_EQ(common::get_error_string(error_code::success), "Success.");
}

TEST(errors, numbers_without_a_class_are_unknown) {
    std::vector<int> numbers{INT_MIN, -1000, -73, 1, 7, INT_MAX};
    for (int number = -29; number <= -20; ++number) {
        numbers.push_back(number);
    }
    for (int const number : numbers) {
        SCOPED_TRACE(number);
        EXPECT_EQ(common::get_error_string(error_code{number}), "Unknown error.");
        try {
            check_error(number);
            ADD_FAILURE() << "nothing thrown";
        } catch (common::error const& error) {
            ASSERT_EQ(typeid(error), typeid(common::unknown_opencl_error));
            EXPECT_EQ(dynamic_cast<common::unknown_opencl_error const&>(error).value(), number);
            EXPECT_EQ(error.what(), "Unknown OpenCL Error Code: " + std::to_string(number));
        }
    }
}

TEST(errors, copies_keep_what_they_say) {
    common::invalid_value const original;
    common::opencl_error copy = common::out_of_resources();
    copy = original;
    EXPECT_EQ(copy.code(), error_code::invalid_value);
    EXPECT_STREQ(copy.what(), original.what());
    nq::nq_error layer("one", 1);
    layer = nq::unknown_error(7);
    EXPECT_EQ(layer.code(), 7);
    EXPECT_STREQ(layer.what(), "Unknown error code returned by libnq.");
}

static_assert(sizeof(nq::nq_error) == sizeof(nq::unknown_error) &&
              sizeof(nq::nq_error) == sizeof(std::exception) + sizeof(std::string) + 8);

} // namespace
