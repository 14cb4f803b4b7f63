// Kernels and their arguments.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>

#include <vorn/mero/opencl/forward.hpp>
#include <vorn/mero/opencl/types.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// A kernel of a built program and the arguments set on it; made by the program.
///
/// Because it carries arguments it is move-only before OpenCL 2.1. Since then copy construction makes an independent
/// kernel with the same arguments, while copy assignment shares the kernel of the source.
///
/// Sizes are in bytes. Arguments may not be set while another thread uses the same kernel.
class VORN_MERO_EXPORT kernel : public mero::internal::handle<internal::kernel_kind> {
public:
    /// Adopts a reference that the caller holds; makes no call.
    kernel(nq::call_handle const& call_handle, _nq_cl_kernel* raw, internal::take_ownership tag) noexcept
        : handle(call_handle, raw, tag) {}
    kernel(kernel&&) noexcept = default;
    kernel& operator=(kernel&&) noexcept = default;

#if VORN_MERO_OPENCL < 210
    kernel(kernel const&) = delete;
    kernel& operator=(kernel const&) = delete;
#endif

#if VORN_MERO_OPENCL >= 210
    /// Clones: later changes to the arguments of one do not affect the other.
    kernel(kernel const& other);

    /// Shares the kernel of the source.
    kernel& operator=(kernel const&) = default;

    /// An independent kernel with the same arguments. Since OpenCL 2.1.
    kernel copy() const;
#endif

    /// A new kernel of the same function, without arguments.
    kernel clone() const;

    /// A null memory object.
    void set_argument(unsigned int index, std::nullptr_t);

    /// Local memory of a size, for a pointer in the `__local` address space.
    void set_argument(unsigned int index, local_memory const& size);

    /// A memory object, which the kernel does not keep alive.
    void set_argument(unsigned int index, memory_object& object);

    /// A sampler, which the kernel does not keep alive.
    void set_argument(unsigned int index, sampler& object);

    /// `size` bytes at `value`, which OpenCL copies.
    void set_argument_raw(unsigned int index, unsigned long size, void const* value);

    /// The name of the function in the source.
    std::string function_name() const;

    /// The number of arguments.
    unsigned int num_args() const;

    /// The context of the kernel, on the same call handle.
    context get_context() const;

    /// The program of the kernel, on the same call handle.
    program get_program() const;

    /// The most work-items of a work-group of this kernel on a device.
    std::size_t max_work_group_size(device const& target) const;

    /// The work-group size that the source requires, all 0 when it requires none.
    std::array<std::size_t, 3> compile_work_group_size(device const& target) const;

    /// The local memory that the kernel takes on a device, that of its arguments included.
    std::uint64_t local_mem_size(device const& target) const;

#if VORN_MERO_OPENCL >= 110
    /// A multiple that suits the device best; other sizes work as well. Since OpenCL 1.1.
    std::size_t preferred_work_group_size_multiple(device const& target) const;

    /// The least memory that each work-item takes. Since OpenCL 1.1.
    std::uint64_t private_mem_per_work_item(device const& target) const;
#endif

#if VORN_MERO_OPENCL >= 120
    /// The `__attribute__` qualifiers of the source, as OpenCL writes them.
    std::vector<std::string> attributes() const;

    // Each throws `common::kernel_arg_info_not_available` for a program built without the argument information. Since
    // OpenCL 1.2.
    kernel_argument_address_qualifier argument_address_qualifier(unsigned int index) const;
    kernel_argument_access_qualifier argument_access_qualifier(unsigned int index) const;
    kernel_argument_type_qualifier argument_type_qualifier(unsigned int index) const;
    std::string argument_type_name(unsigned int index) const;
    std::string argument_name(unsigned int index) const;

    /// For a custom device or a built-in kernel; OpenCL refuses it for any other. Since OpenCL 1.2.
    std::array<std::size_t, 3> max_global_work_size(device const& target) const;
#endif

#if VORN_MERO_OPENCL >= 200
    /// A queue on the device, which the kernel does not keep alive. Since OpenCL 2.0.
    void set_argument(unsigned int index, device_command_queue& queue);

    /// A pointer into shared virtual memory. Since OpenCL 2.0.
    void set_svm_argument(std::uint32_t index, void const* pointer);

    /// The shared virtual memory that the kernel reaches through pointers other than its arguments. Since OpenCL 2.0.
    void set_svm_pointers(std::vector<void*> const& pointers);

    /// Whether the kernel may reach any memory of the host. Since OpenCL 2.0.
    void set_fine_grain_system_flag(bool enabled);
#endif

#if VORN_MERO_OPENCL >= 210
    // What a launch with the given local size makes of sub-groups. Since OpenCL 2.1.
    std::size_t get_max_sub_group_size_for_nd_range(device const& target, std::array<std::size_t, 1> const& size) const;
    std::size_t get_max_sub_group_size_for_nd_range(device const& target, std::array<std::size_t, 2> const& size) const;
    std::size_t get_max_sub_group_size_for_nd_range(device const& target, std::array<std::size_t, 3> const& size) const;
    std::size_t get_sub_group_count_for_nd_range(device const& target, std::array<std::size_t, 1> const& size) const;
    std::size_t get_sub_group_count_for_nd_range(device const& target, std::array<std::size_t, 2> const& size) const;
    std::size_t get_sub_group_count_for_nd_range(device const& target, std::array<std::size_t, 3> const& size) const;

    /// A one-dimensional local size that gives `count` sub-groups, 0 when there is none.
    std::size_t get_local_size_for_sub_group_count(device const& target, unsigned long count) const;

    /// The most sub-groups of a work-group of this kernel. Since OpenCL 2.1.
    std::size_t get_max_num_sub_groups(device const& target) const;

    /// The number of sub-groups that the source requires, 0 when it requires none.
    std::size_t compile_num_sub_groups(device const& target) const;
#endif
};

namespace raw {

/// Null for an object that was moved from.
VORN_MERO_EXPORT _nq_cl_kernel* get_raw_kernel(kernel const& object) noexcept;

/// The call handle that the object was made through.
VORN_MERO_EXPORT nq::call_handle const& get_call_handle(kernel const& object) noexcept;

/// Adds a reference that the caller has to release.
VORN_MERO_EXPORT void retain(kernel const& object);

/// A status other than success is thrown as `common::bad_implementation`.
VORN_MERO_EXPORT void release(kernel const& object);

/// OpenCL's count, which may have changed by the time that it is read.
VORN_MERO_EXPORT std::uint32_t refcount(kernel const& object);

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE
