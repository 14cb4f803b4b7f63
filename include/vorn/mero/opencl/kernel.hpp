// Kernels and their arguments.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl.hpp>
#endif
#ifdef VORN_MERO_OPENCL

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// A kernel of a built program and the arguments set on it; made by the program.
///
///     cl::kernel kernel = program.create_kernel("scale"); // (global float*, float, local float*)
///     float const factor = 2.0F;
///     kernel.set_argument(0, buffer);
///     kernel.set_argument_raw(1, sizeof factor, &factor);
///     kernel.set_argument(2, cl::local_memory(256 * sizeof(float)));
///     queue.enqueue_command_without_event(cl::nd_range_kernel(kernel, 1, {0, 0, 0}, {1024, 1, 1}, {256, 1, 1}));
///
/// Arguments count from 0 and stay set from launch to launch. Setting one does not affect launches already enqueued. It
/// makes one call, and throws `common::invalid_arg_index` if the kernel has no such argument,
/// `common::invalid_arg_size` or `common::invalid_arg_value` if the argument is of another kind. A launch with an
/// argument that was never set throws `common::invalid_kernel_args`.
///
/// A kernel is move-only before OpenCL 2.1. Since then copy construction makes an independent kernel with the same
/// arguments, while copy assignment shares the kernel of the source.
///
/// Sizes are in bytes. Queries make two calls; those that return an object make another to retain it. No thread may set
/// an argument while another uses the same kernel: give each thread its own.
class VORN_MERO_EXPORT kernel : public mero::internal::handle<internal::kernel_kind> {
public:
    /// Adopts a reference that the caller holds. Makes no call.
    kernel(nq::call_handle const& call_handle, _nq_cl_kernel* raw, internal::take_ownership tag) noexcept
        : handle(call_handle, raw, tag) {}
    kernel(kernel&&) noexcept = default;
    kernel& operator=(kernel&&) noexcept = default;

#if VORN_MERO_OPENCL < 210
    kernel(kernel const&) = delete;
    kernel& operator=(kernel const&) = delete;
#else
    /// An independent kernel with the same arguments, as `copy`.
    kernel(kernel const& other);

    /// Shares the kernel of the source: setting an argument on one sets it on both.
    kernel& operator=(kernel const&) = default;

    /// An independent kernel with the same arguments: setting one here does not affect the other. One call. Since
    /// OpenCL 2.1.
    [[nodiscard]] kernel copy() const;
#endif

    /// A new kernel of the same function, without arguments set. Makes seven calls, since it asks for program and name;
    /// `program::create_kernel` makes one.
    [[nodiscard]] kernel clone() const;

    /// Gives a buffer argument the null pointer. Other kinds of arguments refuse it. A literal 0 calls this too: set
    /// numbers with `set_argument_raw`.
    void set_argument(unsigned int index, std::nullptr_t);

    /// Sets the size of a `__local` argument. A size of 0 throws `common::invalid_arg_size`.
    void set_argument(unsigned int index, local_memory const& size);

    /// Sets a buffer, sub-buffer, image or pipe. The kernel does not keep it alive: it must live until the launch has
    /// been enqueued.
    void set_argument(unsigned int index, memory_object& object);

    /// Sets a sampler. The kernel does not keep it alive: it must live until the launch has been enqueued.
    void set_argument(unsigned int index, sampler& object);

    /// Sets a number, a vector or a structure: OpenCL copies the `size` bytes at `value`, which must have exactly the
    /// argument's size and layout. The bytes are not interpreted.
    void set_argument_raw(unsigned int index, unsigned long size, void const* value);

    /// The name of the function in the source.
    [[nodiscard]] std::string function_name() const;

    /// The number of arguments.
    [[nodiscard]] unsigned int num_args() const;

    /// The context of the kernel, on the same call handle.
    [[nodiscard]] context get_context() const;

    /// The program of the kernel, on the same call handle.
    [[nodiscard]] program get_program() const;

    /// The most work-items in a work-group of this kernel on a device. It may be less than
    /// `device::max_work_group_size`; a larger local size throws `common::invalid_work_group_size`.
    [[nodiscard]] std::size_t max_work_group_size(device const& target) const;

    /// The work-group size that the source requires with `reqd_work_group_size`, or three 0. A launch must have the
    /// required size.
    [[nodiscard]] std::array<std::size_t, 3> compile_work_group_size(device const& target) const;

    /// The local memory that a work-group uses on a device, including that of the arguments set so far.
    [[nodiscard]] std::uint64_t local_mem_size(device const& target) const;

#if VORN_MERO_OPENCL >= 110
    /// For best speed the size of a work-group is a multiple of this number of work-items. Since OpenCL 1.1.
    [[nodiscard]] std::size_t preferred_work_group_size_multiple(device const& target) const;

    /// The private memory that each work-item uses at least, on a device. Since OpenCL 1.1.
    [[nodiscard]] std::uint64_t private_mem_per_work_item(device const& target) const;
#endif

#if VORN_MERO_OPENCL >= 120
    /// The `__attribute__` qualifiers of the source, in the implementation's spelling. Empty if the program was not
    /// made from source. Since OpenCL 1.2.
    [[nodiscard]] std::vector<std::string> attributes() const;

    /// The address space of an argument. Throws `common::invalid_arg_index` for an index too large, and may throw
    /// `common::kernel_arg_info_not_available` if the program was built without `-cl-kernel-arg-info`. Since
    /// OpenCL 1.2.
    [[nodiscard]] kernel_argument_address_qualifier argument_address_qualifier(unsigned int index) const;

    /// How the kernel accesses an image or pipe argument. Throws as `argument_address_qualifier`. Since OpenCL 1.2.
    [[nodiscard]] kernel_argument_access_qualifier argument_access_qualifier(unsigned int index) const;

    /// The type qualifiers of an argument. Throws as `argument_address_qualifier`. Since OpenCL 1.2.
    [[nodiscard]] kernel_argument_type_qualifier argument_type_qualifier(unsigned int index) const;

    /// The type of an argument as the source writes it, without qualifiers: "float*". Throws as
    /// `argument_address_qualifier`. Since OpenCL 1.2.
    [[nodiscard]] std::string argument_type_name(unsigned int index) const;

    /// The name of an argument in the source. Throws as `argument_address_qualifier`. Since OpenCL 1.2.
    [[nodiscard]] std::string argument_name(unsigned int index) const;

    /// The largest global size of a launch. For built-in kernels and custom devices only: throws
    /// `common::invalid_value` for others. Since OpenCL 1.2.
    [[nodiscard]] std::array<std::size_t, 3> max_global_work_size(device const& target) const;
#endif

#if VORN_MERO_OPENCL >= 200
    /// Sets a `queue_t` argument. The kernel does not keep the queue alive. Since OpenCL 2.0.
    void set_argument(unsigned int index, device_command_queue& queue);

    /// Sets a pointer to shared virtual memory, to any address within an allocation. The memory must live until the
    /// launch is complete. Since OpenCL 2.0.
    void set_svm_argument(std::uint32_t index, void const* pointer);

    /// Names the shared virtual memory that the kernel reaches through pointers other than its arguments, such as those
    /// in a list's nodes: any address within each allocation. Replaces the previous list. An empty list clears it;
    /// implementations before OpenCL 3.0 throw `common::invalid_value`. Since OpenCL 2.0.
    void set_svm_pointers(std::vector<void*> const& pointers);

    /// Sets whether the kernel uses host memory that no argument and no `set_svm_pointers` names. Throws
    /// `common::invalid_operation` unless `device::svm_fine_grain_system_supported`. Since OpenCL 2.0.
    void set_fine_grain_system_flag(bool enabled);
#endif

#if VORN_MERO_OPENCL >= 210
    /// The work-items in the largest sub-group of a launch with this local size, in one dimension. Throws
    /// `common::invalid_operation` if the device has no sub-groups. Since OpenCL 2.1.
    [[nodiscard]] std::size_t get_max_sub_group_size_for_nd_range(device const& target,
                                                                  std::array<std::size_t, 1> const& size) const;
    /// The same in two dimensions. Since OpenCL 2.1.
    [[nodiscard]] std::size_t get_max_sub_group_size_for_nd_range(device const& target,
                                                                  std::array<std::size_t, 2> const& size) const;
    /// The same in three dimensions. Since OpenCL 2.1.
    [[nodiscard]] std::size_t get_max_sub_group_size_for_nd_range(device const& target,
                                                                  std::array<std::size_t, 3> const& size) const;

    /// The sub-groups in each work-group of a launch with this local size, in one dimension. Throws
    /// `common::invalid_operation` if the device has no sub-groups. Since OpenCL 2.1.
    [[nodiscard]] std::size_t get_sub_group_count_for_nd_range(device const& target,
                                                               std::array<std::size_t, 1> const& size) const;
    /// The same in two dimensions. Since OpenCL 2.1.
    [[nodiscard]] std::size_t get_sub_group_count_for_nd_range(device const& target,
                                                               std::array<std::size_t, 2> const& size) const;
    /// The same in three dimensions. Since OpenCL 2.1.
    [[nodiscard]] std::size_t get_sub_group_count_for_nd_range(device const& target,
                                                               std::array<std::size_t, 3> const& size) const;

    /// A one-dimensional local size that makes `count` sub-groups, 0 if there is none. Since OpenCL 2.1.
    [[nodiscard]] std::size_t get_local_size_for_sub_group_count(device const& target, unsigned long count) const;

    /// The most sub-groups in a work-group of this kernel. Since OpenCL 2.1.
    [[nodiscard]] std::size_t get_max_num_sub_groups(device const& target) const;

    /// The number of sub-groups that the source requires, 0 if it requires none. Since OpenCL 2.1.
    [[nodiscard]] std::size_t compile_num_sub_groups(device const& target) const;
#endif
};

namespace raw {

/// The raw handle, null if the object was moved from.
[[nodiscard]] VORN_MERO_EXPORT _nq_cl_kernel* get_raw_kernel(kernel const& object VORN_MERO_LIFETIMEBOUND) noexcept;

/// The call handle of the object.
[[nodiscard]] VORN_MERO_EXPORT nq::call_handle const&
get_call_handle(kernel const& object VORN_MERO_LIFETIMEBOUND) noexcept;

/// Adds a reference that the caller must release.
VORN_MERO_EXPORT void retain(kernel const& object);

/// Drops a reference that the caller holds. Throws `common::bad_implementation` when OpenCL refuses.
VORN_MERO_EXPORT void release(kernel const& object);

/// OpenCL's reference count, which may be outdated at once.
[[nodiscard]] VORN_MERO_EXPORT std::uint32_t refcount(kernel const& object);

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE

#endif
