#include <nq/error.hpp>
#include <vorn/mero/common/error.hpp>
#include <vorn/mero/internal/check_error.hpp>

#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <typeinfo>

namespace {

namespace common = vorn::mero::common;
using common::error_code;
using vorn::mero::internal::check_error;

struct expected_error {
    int number;
    error_code code;
    char const* message;
    std::type_info const* type;
    std::function<bool(common::error const&)> has_base;
};

template <class Class, class Base>
expected_error row(int number, error_code code, char const* message) {
    using other_base =
        std::conditional_t<std::is_same_v<Base, common::logic_error>, common::runtime_error, common::logic_error>;
    static_assert(std::is_base_of_v<Base, Class> && !std::is_base_of_v<other_base, Class> &&
                  sizeof(Class) == sizeof(Base));
    static_assert(std::is_default_constructible_v<Class>);
    EXPECT_STREQ(Class().what(), message);
    return {number, code, message, &typeid(Class),
            [](common::error const& error) { return dynamic_cast<Base const*>(&error) != nullptr; }};
}

std::vector<expected_error> all_errors() {
    // clang-format off
    return {
        row<common::device_not_found, common::logic_error>(-1, error_code::device_not_found, "No matching device was found."),
        row<common::device_not_available, common::runtime_error>(-2, error_code::device_not_available, "Device is not available."),
        row<common::compiler_not_available, common::logic_error>(-3, error_code::compiler_not_available, "A compiler is not available."),
        row<common::mem_object_allocation_failure, common::runtime_error>(-4, error_code::mem_object_allocation_failure, "Failed to allocate memory."),
        row<common::out_of_resources, common::runtime_error>(-5, error_code::out_of_resources, "Failed to allocate resources on the device."),
        row<common::out_of_host_memory, common::runtime_error>(-6, error_code::out_of_host_memory, "Failed to allocate memory on the host."),
        row<common::profiling_info_not_available, common::logic_error>(-7, error_code::profiling_info_not_available, "Event could not be profiled, or command-queue does not support profiling."),
        row<common::mem_copy_overlap, common::logic_error>(-8, error_code::mem_copy_overlap, "Memory copy source and destination regions overlap."),
        row<common::image_format_mismatch, common::logic_error>(-9, error_code::image_format_mismatch, "Image formats do not match."),
        row<common::image_format_not_supported, common::logic_error>(-10, error_code::image_format_not_supported, "Image format is not supported by the device."),
        row<common::build_program_failure, common::runtime_error>(-11, error_code::build_program_failure, "Failed to build the program."),
        row<common::map_failure, common::runtime_error>(-12, error_code::map_failure, "Failed to map memory into host address space."),
        row<common::misaligned_sub_buffer_offset, common::runtime_error>(-13, error_code::misaligned_sub_buffer_offset, "Sub-buffer is misaligned."),
        row<common::exec_status_error_for_events_in_wait_list, common::runtime_error>(-14, error_code::exec_status_error_for_events_in_wait_list, "An operation that blocked depended upon a failed event."),
        row<common::compile_program_failure, common::logic_error>(-15, error_code::compile_program_failure, "Failed to compile the program."),
        row<common::linker_not_available, common::logic_error>(-16, error_code::linker_not_available, "Linker is not actually available."),
        row<common::link_program_failure, common::runtime_error>(-17, error_code::link_program_failure, "Failed to link compiled binaries, or libraries."),
        row<common::device_partition_failed, common::runtime_error>(-18, error_code::device_partition_failed, "Could not further partition the device."),
        row<common::kernel_arg_info_not_available, common::logic_error>(-19, error_code::kernel_arg_info_not_available, "Kernel argument information is not available for the kernel."),
        row<common::invalid_value, common::logic_error>(-30, error_code::invalid_value, "One of the values is not valid."),
        row<common::invalid_device_type, common::logic_error>(-31, error_code::invalid_device_type, "Invalid device type value provided."),
        row<common::invalid_platform, common::logic_error>(-32, error_code::invalid_platform, "Platform is invalid.  You should never get this error.  Please file a bug report."),
        row<common::invalid_device, common::logic_error>(-33, error_code::invalid_device, "Device argument is not valid."),
        row<common::invalid_context, common::logic_error>(-34, error_code::invalid_context, "Context provided was not the right one or invalid."),
        row<common::invalid_queue_properties, common::logic_error>(-35, error_code::invalid_queue_properties, "Queue properties are not supported by the device."),
        row<common::invalid_command_queue, common::logic_error>(-36, error_code::invalid_command_queue, "Command-queue provided is not a valid command-queue."),
        row<common::invalid_host_ptr, common::logic_error>(-37, error_code::invalid_host_ptr, "Host pointer is null, but a non-null pointer was expected."),
        row<common::invalid_mem_object, common::logic_error>(-38, error_code::invalid_mem_object, "Memory object argument (buffer?) is not valid."),
        row<common::invalid_image_format_descriptor, common::logic_error>(-39, error_code::invalid_image_format_descriptor, "Image format is invalid or missing."),
        row<common::invalid_image_size, common::logic_error>(-40, error_code::invalid_image_size, "Image dimensions specified exceed maximum supported by device."),
        row<common::invalid_sampler, common::logic_error>(-41, error_code::invalid_sampler, "Sampler object is not valid."),
        row<common::invalid_binary, common::runtime_error>(-42, error_code::invalid_binary, "Invalid program binary encountered, or incorrect binary for device."),
        row<common::invalid_build_options, common::logic_error>(-43, error_code::invalid_build_options, "Build options provided are not valid."),
        row<common::invalid_program, common::logic_error>(-44, error_code::invalid_program, "Program argument is not valid."),
        row<common::invalid_program_executable, common::logic_error>(-45, error_code::invalid_program_executable, "No successfully built executable for the program."),
        row<common::invalid_kernel_name, common::logic_error>(-46, error_code::invalid_kernel_name, "Kernel name not found in the program."),
        row<common::invalid_kernel_definition, common::logic_error>(-47, error_code::invalid_kernel_definition, "Kernel definition is not valid for all devices provided."),
        row<common::invalid_kernel, common::logic_error>(-48, error_code::invalid_kernel, "Provided argument is not a valid kernel."),
        row<common::invalid_arg_index, common::logic_error>(-49, error_code::invalid_arg_index, "Argument index is not valid."),
        row<common::invalid_arg_value, common::logic_error>(-50, error_code::invalid_arg_value, "Provided argument value is not valid."),
        row<common::invalid_arg_size, common::logic_error>(-51, error_code::invalid_arg_size, "Argument size provided does not match size for provided data type."),
        row<common::invalid_kernel_args, common::logic_error>(-52, error_code::invalid_kernel_args, "Kernel argument values are not specified, or memory region doesn't match."),
        row<common::invalid_work_dimension, common::logic_error>(-53, error_code::invalid_work_dimension, "Work dimension value is out-of-range."),
        row<common::invalid_work_group_size, common::logic_error>(-54, error_code::invalid_work_group_size, "Work-group size does not match expected size, or is invalid."),
        row<common::invalid_work_item_size, common::logic_error>(-55, error_code::invalid_work_item_size, "Work-item size exceeds device maximum in some dimension."),
        row<common::invalid_global_offset, common::logic_error>(-56, error_code::invalid_global_offset, "Global offset overflows size_t type."),
        row<common::invalid_event_wait_list, common::logic_error>(-57, error_code::invalid_event_wait_list, "Invalid event wait list provided."),
        row<common::invalid_event, common::logic_error>(-58, error_code::invalid_event, "Invalid event provided."),
        row<common::invalid_operation, common::logic_error>(-59, error_code::invalid_operation, "Operation is not supported, or violates permissions."),
        row<common::invalid_gl_object, common::logic_error>(-60, error_code::invalid_gl_object, "GL object does not exist, or is an incorrect type, or is not properly associated."),
        row<common::invalid_buffer_size, common::logic_error>(-61, error_code::invalid_buffer_size, "Buffer size is zero, or too large."),
        row<common::invalid_mip_level, common::logic_error>(-62, error_code::invalid_mip_level, "MIP level is out-of-range or not supported."),
        row<common::invalid_global_work_size, common::logic_error>(-63, error_code::invalid_global_work_size, "Global work size dimensions are out-of-range or not provided."),
        row<common::invalid_property, common::logic_error>(-64, error_code::invalid_property, "Context property is not supported."),
        row<common::invalid_image_descriptor, common::logic_error>(-65, error_code::invalid_image_descriptor, "Invalid or missing image descriptor."),
        row<common::invalid_compiler_options, common::logic_error>(-66, error_code::invalid_compiler_options, "Compiler options provided are not valid."),
        row<common::invalid_linker_options, common::logic_error>(-67, error_code::invalid_linker_options, "Linker options provided are not valid."),
        row<common::invalid_device_partition_count, common::logic_error>(-68, error_code::invalid_device_partition_count, "Invalid partitioning of devices."),
        row<common::invalid_pipe_size, common::logic_error>(-69, error_code::invalid_pipe_size, "Pipe packet size is out-of-range."),
        row<common::invalid_device_queue, common::logic_error>(-70, error_code::invalid_device_queue, "Invalid device queue argument provided."),
        row<common::invalid_spec_id, common::logic_error>(-71, error_code::invalid_spec_id, "Invalid device queue argument provided."),
        row<common::max_size_restriction_exceeded, common::logic_error>(-72, error_code::max_size_restriction_exceeded, "Size of memory object exceeds the maximum size restriction that was set."),
    };
    // clang-format on
}

TEST(errors, every_status_has_its_class_code_and_message) {
    for (expected_error const& expected : all_errors()) {
        SCOPED_TRACE(expected.number);
        EXPECT_EQ(static_cast<int>(expected.code), expected.number);
        EXPECT_EQ(common::get_error_string(expected.code), expected.message);
        try {
            check_error(expected.number);
            ADD_FAILURE() << "nothing thrown";
        } catch (common::opencl_error const& error) {
            EXPECT_EQ(typeid(error), *expected.type);
            EXPECT_TRUE(expected.has_base(error));
            EXPECT_EQ(error.code(), expected.code);
            EXPECT_STREQ(static_cast<std::exception const&>(error).what(), expected.message);
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

static_assert(std::is_same_v<std::underlying_type_t<error_code>, std::int32_t>);
static_assert(std::is_same_v<decltype(std::declval<common::opencl_error const&>().code()), error_code const&>);
static_assert(std::is_base_of_v<std::exception, common::error> &&
              std::is_base_of_v<common::error, common::opencl_error>);
static_assert(!std::is_base_of_v<common::opencl_error, common::unknown_opencl_error> &&
              !std::is_base_of_v<common::opencl_error, common::bad_implementation>);
static_assert(std::is_base_of_v<nq::recoverable_error, nq::invalid_command_id> &&
              std::is_base_of_v<nq::unrecoverable_error, nq::unknown_error>);
static_assert(!std::is_base_of_v<nq::unrecoverable_error, nq::recoverable_error> &&
              !std::is_base_of_v<nq::nq_error, common::error> && !std::is_base_of_v<common::error, nq::nq_error>);
static_assert(sizeof(nq::nq_error) == sizeof(nq::unknown_error) &&
              sizeof(nq::nq_error) == sizeof(std::exception) + sizeof(std::string) + 8);

} // namespace
