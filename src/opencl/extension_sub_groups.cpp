#include "opencl/extension_function.hpp"

// Extensions of OpenCL 1.2 and 2.0 that became part of later versions.

#if VORN_MERO_OPENCL >= 120 && VORN_MERO_OPENCL < 210
namespace vorn::mero::VORN_MERO_NAMESPACE::extension {

using namespace detail;

namespace {

using get_sub_group_info = std::int32_t(_nq_cl_kernel*, _nq_cl_device_id*, std::uint32_t, std::size_t, void const*,
                                        std::size_t, void*, std::size_t*);

// Reads one number about the sub-groups of a launch; `otherwise` is the message if the function is missing.
template <std::size_t N>
std::uint64_t read_sub_group(kernel const& function, device const& target, std::uint32_t name,
                             std::array<std::size_t, N> const& local_size, char const* otherwise) {
    auto* const get = require_function<get_sub_group_info>(target, "clGetKernelSubGroupInfoKHR", otherwise);
    return read_number([&](std::size_t size, void* value, std::size_t* size_ret) {
        return get(raw_of(function), raw_of(target), name, sizeof local_size, local_size.data(), size, value, size_ret);
    });
}

} // namespace

#define SUB_GROUP_QUERIES(N)                                                                                           \
    std::uint64_t get_max_sub_group_size_for_nd_range(kernel const& function, device const& target,                    \
                                                      std::array<std::size_t, N> const& local_size) {                  \
        return read_sub_group(function, target, cl::kernel_max_sub_group_size_for_ndrange, local_size, no_function);   \
    }                                                                                                                  \
    std::uint64_t get_sub_group_count_for_nd_range(kernel const& function, device const& target,                       \
                                                   std::array<std::size_t, N> const& local_size) {                     \
        return read_sub_group(function, target, cl::kernel_sub_group_count_for_ndrange, local_size, no_function);      \
    }

namespace cl_intel_subgroups {

namespace {

constexpr char const* no_function = "Failed to extract clGetKernelSubGroupInfoKHR function address, is the "
                                    "cl_intel_subgroups extension actually supported?";

} // namespace

bool extension_available(device const& target) {
    return mero::internal::extension_supported(target, "cl_intel_subgroups");
}

SUB_GROUP_QUERIES(1)
SUB_GROUP_QUERIES(2)
SUB_GROUP_QUERIES(3)

} // namespace cl_intel_subgroups

#if VORN_MERO_OPENCL >= 200
namespace cl_khr_sub_groups {

namespace {

constexpr char const* no_function = "Failed to extract clGetKernelSubGroupInfoKHR function address, is the "
                                    "cl_khr_sub_groups extension actually supported?";

} // namespace

bool extension_available(device const& target) {
    return mero::internal::extension_supported(target, "cl_khr_sub_groups");
}

SUB_GROUP_QUERIES(1)
SUB_GROUP_QUERIES(2)
SUB_GROUP_QUERIES(3)

} // namespace cl_khr_sub_groups

namespace cl_khr_terminate_context {

namespace {

// The extension's number for both the status of a terminated command and the callback for it.
constexpr std::int32_t terminated = 0x13A;
constexpr std::uint64_t terminate_capability_mask = 0x13A;

} // namespace

bool extension_available(device const& target) {
    return mero::internal::extension_supported(target, "cl_khr_terminate_context");
}

void terminate(context const& owner) {
    auto* const terminate_context = require_function<std::int32_t(_nq_cl_context*)>(
        owner, "clTerminateContextKHR",
        "Failed to extract clTerminateContextKHR function address, is the cl_khr_terminate_context extension actually "
        "supported?");
    mero::internal::check_error(terminate_context(raw_of(owner)));
}

bool is_terminate_supported(device const& target) {
    return (read_scalar<std::uint64_t>(ask(target, cl::device_terminate_capability)) & terminate_capability_mask) != 0;
}

bool is_execution_status_terminated(event_execution_status status) {
    return static_cast<std::int32_t>(status) == terminated;
}

void set_event_terminated_callback(event& target, void (*callback)(_nq_cl_event*, int, void*), void* user_data) {
    target.set_callback(commmand_exec_callback_type{terminated}, callback, user_data);
}

} // namespace cl_khr_terminate_context

namespace cl_khr_initialize_memory {

bool extension_available(device const& target) {
    return mero::internal::extension_supported(target, "cl_khr_initialize_memory");
}

} // namespace cl_khr_initialize_memory
#endif

} // namespace vorn::mero::VORN_MERO_NAMESPACE::extension
#endif
