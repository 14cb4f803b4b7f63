#include <vorn/mero/common/error.hpp>
#include <vorn/mero/internal/check_error.hpp>

#include "internal/throw_status.hpp"

#include <array>
#include <string_view>
#include <utility>

namespace vorn::mero::common {
namespace {

// Every status except success, in order of number: its class, the class's base, its message. `invalid_spec_id` has the
// message of `invalid_device_queue`.
// clang-format off
#define EACH_ERROR(X) \
    X(device_not_found, logic_error, "No matching device was found.") \
    X(device_not_available, runtime_error, "Device is not available.") \
    X(compiler_not_available, logic_error, "A compiler is not available.") \
    X(mem_object_allocation_failure, runtime_error, "Failed to allocate memory.") \
    X(out_of_resources, runtime_error, "Failed to allocate resources on the device.") \
    X(out_of_host_memory, runtime_error, "Failed to allocate memory on the host.") \
    X(profiling_info_not_available, logic_error, "Event could not be profiled, or command-queue does not support profiling.") \
    X(mem_copy_overlap, logic_error, "Memory copy source and destination regions overlap.") \
    X(image_format_mismatch, logic_error, "Image formats do not match.") \
    X(image_format_not_supported, logic_error, "Image format is not supported by the device.") \
    X(build_program_failure, runtime_error, "Failed to build the program.") \
    X(map_failure, runtime_error, "Failed to map memory into host address space.") \
    X(misaligned_sub_buffer_offset, runtime_error, "Sub-buffer is misaligned.") \
    X(exec_status_error_for_events_in_wait_list, runtime_error, "An operation that blocked depended upon a failed event.") \
    X(compile_program_failure, logic_error, "Failed to compile the program.") \
    X(linker_not_available, logic_error, "Linker is not actually available.") \
    X(link_program_failure, runtime_error, "Failed to link compiled binaries, or libraries.") \
    X(device_partition_failed, runtime_error, "Could not further partition the device.") \
    X(kernel_arg_info_not_available, logic_error, "Kernel argument information is not available for the kernel.") \
    X(invalid_value, logic_error, "One of the values is not valid.") \
    X(invalid_device_type, logic_error, "Invalid device type value provided.") \
    X(invalid_platform, logic_error, "Platform is invalid.  You should never get this error.  Please file a bug report.") \
    X(invalid_device, logic_error, "Device argument is not valid.") \
    X(invalid_context, logic_error, "Context provided was not the right one or invalid.") \
    X(invalid_queue_properties, logic_error, "Queue properties are not supported by the device.") \
    X(invalid_command_queue, logic_error, "Command-queue provided is not a valid command-queue.") \
    X(invalid_host_ptr, logic_error, "Host pointer is null, but a non-null pointer was expected.") \
    X(invalid_mem_object, logic_error, "Memory object argument (buffer?) is not valid.") \
    X(invalid_image_format_descriptor, logic_error, "Image format is invalid or missing.") \
    X(invalid_image_size, logic_error, "Image dimensions specified exceed maximum supported by device.") \
    X(invalid_sampler, logic_error, "Sampler object is not valid.") \
    X(invalid_binary, runtime_error, "Invalid program binary encountered, or incorrect binary for device.") \
    X(invalid_build_options, logic_error, "Build options provided are not valid.") \
    X(invalid_program, logic_error, "Program argument is not valid.") \
    X(invalid_program_executable, logic_error, "No successfully built executable for the program.") \
    X(invalid_kernel_name, logic_error, "Kernel name not found in the program.") \
    X(invalid_kernel_definition, logic_error, "Kernel definition is not valid for all devices provided.") \
    X(invalid_kernel, logic_error, "Provided argument is not a valid kernel.") \
    X(invalid_arg_index, logic_error, "Argument index is not valid.") \
    X(invalid_arg_value, logic_error, "Provided argument value is not valid.") \
    X(invalid_arg_size, logic_error, "Argument size provided does not match size for provided data type.") \
    X(invalid_kernel_args, logic_error, "Kernel argument values are not specified, or memory region doesn't match.") \
    X(invalid_work_dimension, logic_error, "Work dimension value is out-of-range.") \
    X(invalid_work_group_size, logic_error, "Work-group size does not match expected size, or is invalid.") \
    X(invalid_work_item_size, logic_error, "Work-item size exceeds device maximum in some dimension.") \
    X(invalid_global_offset, logic_error, "Global offset overflows size_t type.") \
    X(invalid_event_wait_list, logic_error, "Invalid event wait list provided.") \
    X(invalid_event, logic_error, "Invalid event provided.") \
    X(invalid_operation, logic_error, "Operation is not supported, or violates permissions.") \
    X(invalid_gl_object, logic_error, "GL object does not exist, or is an incorrect type, or is not properly associated.") \
    X(invalid_buffer_size, logic_error, "Buffer size is zero, or too large.") \
    X(invalid_mip_level, logic_error, "MIP level is out-of-range or not supported.") \
    X(invalid_global_work_size, logic_error, "Global work size dimensions are out-of-range or not provided.") \
    X(invalid_property, logic_error, "Context property is not supported.") \
    X(invalid_image_descriptor, logic_error, "Invalid or missing image descriptor.") \
    X(invalid_compiler_options, logic_error, "Compiler options provided are not valid.") \
    X(invalid_linker_options, logic_error, "Linker options provided are not valid.") \
    X(invalid_device_partition_count, logic_error, "Invalid partitioning of devices.") \
    X(invalid_pipe_size, logic_error, "Pipe packet size is out-of-range.") \
    X(invalid_device_queue, logic_error, "Invalid device queue argument provided.") \
    X(invalid_spec_id, logic_error, "Invalid device queue argument provided.") \
    X(max_size_restriction_exceeded, logic_error, "Size of memory object exceeds the maximum size restriction that was set.")
// clang-format on

template <class Error>
void construct(void* place) {
    ::new (place) Error;
}

struct status {
    std::string_view message;
    void (*construct)(void* place);
};

// By the number of the status, negated; without a message where there is no status.
constexpr auto statuses = [] {
    std::array<status, 1 - static_cast<int>(error_code::max_size_restriction_exceeded)> made{};
    made[0].message = "Success.";
#define STATUS(name, base, text) made[-static_cast<int>(error_code::name)] = {text, construct<name>};
    EACH_ERROR(STATUS)
#undef STATUS
    return made;
}();

status const* find_status(error_code code) noexcept {
    std::size_t const index = 0U - static_cast<unsigned>(code);
    return index < statuses.size() && !statuses[index].message.empty() ? &statuses[index] : nullptr;
}

std::string_view message_of(error_code code) noexcept {
    status const* const found = find_status(code);
    return found != nullptr ? found->message : "Unknown error.";
}

} // namespace

std::string get_error_string(error_code code) { return std::string(message_of(code)); }

error::error(std::string const& message) : message_(message) {}
error::error(error_code code) : message_(message_of(code)) {}
error::error(error const&) = default;
error& error::operator=(error const&) = default;
error::~error() = default;
char const* error::what() const noexcept { return message_.c_str(); }

opencl_error::opencl_error(std::string const& message, error_code code) : error(message), code_(code) {}
opencl_error::opencl_error(error_code code) : error(code), code_(code) {}
logic_error::logic_error(std::string const& message, error_code code) : opencl_error(message, code) {}
logic_error::logic_error(error_code code) : opencl_error(code) {}
runtime_error::runtime_error(std::string const& message, error_code code) : opencl_error(message, code) {}
runtime_error::runtime_error(error_code code) : opencl_error(code) {}

unknown_opencl_error::unknown_opencl_error(int value)
    : error("Unknown OpenCL Error Code: " + std::to_string(value)), value_(value) {}

bad_implementation::bad_implementation(std::string const& message) : error(message) {}

#define CONSTRUCTOR(name, base, text)                                                                                  \
    name::name() : base(error_code::name) {}
EACH_ERROR(CONSTRUCTOR)
#undef CONSTRUCTOR

} // namespace vorn::mero::common

namespace vorn::mero::internal {
namespace {

// Memory of an exception that is not constructed yet.
struct exception_memory {
    explicit exception_memory(std::size_t size) : place(abi::__cxa_allocate_exception(size)) {}
    exception_memory(exception_memory const&) = delete;
    exception_memory& operator=(exception_memory const&) = delete;
    ~exception_memory() {
        if (place != nullptr) {
            abi::__cxa_free_exception(place);
        }
    }

    void* place;
};

} // namespace

common::error* make_exception(int status) {
    static_assert(sizeof(common::invalid_value) == sizeof(common::opencl_error) &&
                  sizeof(common::unknown_opencl_error) <= sizeof(common::opencl_error));
    exception_memory memory(sizeof(common::opencl_error));
    if (auto const* const known = common::find_status(static_cast<common::error_code>(status))) {
        known->construct(memory.place);
    } else {
        ::new (memory.place) common::unknown_opencl_error(status);
    }
    return static_cast<common::error*>(std::exchange(memory.place, nullptr));
}

void destroy_exception(void* exception) { static_cast<common::error*>(exception)->~error(); }

void check_error(int status) {
    if (status != 0) {
        throw_status(status);
    }
}

} // namespace vorn::mero::internal
