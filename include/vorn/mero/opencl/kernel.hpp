// Kernels and their arguments.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>

#include <vorn/mero/opencl/forward.hpp>
#include <vorn/mero/opencl/types.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// A kernel of a built program and the arguments set on it; made by the program.
///
///     cl::kernel kernel = program.create_kernel("scale"); // (global float*, float, local float*)
///     float const factor = 2.0F;
///     kernel.set_argument(0, buffer);
///     kernel.set_argument_raw(1, sizeof factor, &factor);
///     kernel.set_argument(2, cl::local_memory(256 * sizeof(float)));
///     queue.enqueue_command(cl::nd_range_kernel(kernel, 1, {0, 0, 0}, {1024, 1, 1}, {256, 1, 1}));
///
/// Arguments count from 0, and stay set from launch to launch; one that is set later does not affect a launch that has
/// been enqueued. Setting one makes one call, and throws `common::invalid_arg_index` where the kernel has none of this
/// index, `common::invalid_arg_size` and `common::invalid_arg_value` where it is of another kind. One that was never
/// set is found out by the launch, `common::invalid_kernel_args`.
///
/// Because it carries arguments it is move-only before OpenCL 2.1. Since then copy construction makes an independent
/// kernel with the same arguments, while copy assignment shares the kernel of the source.
///
/// Sizes are in bytes. Arguments may not be set while another thread uses the same kernel: give each thread its own.
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

    /// Shares the kernel of the source: setting an argument on one sets it on both.
    kernel& operator=(kernel const&) = default;

    /// An independent kernel with the same arguments. Since OpenCL 2.1.
    kernel copy() const;
#endif

    /// A new kernel of the same function, without arguments. It asks for program and name first, and makes seven calls;
    /// to keep the program and call `create_kernel` makes one.
    kernel clone() const;

    /// A null memory object: the kernel gets a null pointer. Only arguments that are buffers take it. A literal 0 means
    /// this too: numbers are set by `set_argument_raw`.
    void set_argument(unsigned int index, std::nullptr_t);

    /// Local memory of a size, for a pointer in the `__local` address space. A size of 0 is `common::invalid_arg_size`.
    void set_argument(unsigned int index, local_memory const& size);

    /// A buffer, sub-buffer, image or pipe, which the kernel does not keep alive: it must live until the launch has
    /// been enqueued.
    void set_argument(unsigned int index, memory_object& object);

    /// A sampler, which the kernel does not keep alive.
    void set_argument(unsigned int index, sampler& object);

    /// `size` bytes at `value`, which OpenCL copies: a number, a vector or a structure of exactly the argument's size
    /// and layout. It is not looked what they mean.
    void set_argument_raw(unsigned int index, unsigned long size, void const* value);

    /// The name of the function in the source.
    std::string function_name() const;

    /// The number of arguments.
    unsigned int num_args() const;

    /// The context of the kernel, on the same call handle.
    context get_context() const;

    /// The program of the kernel, on the same call handle.
    program get_program() const;

    /// The most work-items of a work-group of this kernel on a device, which its registers and local memory can make
    /// fewer than `device::max_work_group_size`; a larger local size is `common::invalid_work_group_size`.
    std::size_t max_work_group_size(device const& target) const;

    /// The work-group size that the source requires with `reqd_work_group_size`, all 0 when it requires none; a launch
    /// must have it then.
    std::array<std::size_t, 3> compile_work_group_size(device const& target) const;

    /// The bytes of local memory that a work-group takes on a device, those of the arguments set so far included.
    std::uint64_t local_mem_size(device const& target) const;

#if VORN_MERO_OPENCL >= 110
    /// The number of work-items that a work-group's size should be a multiple of to suit the device best; other sizes
    /// work as well. Since OpenCL 1.1.
    std::size_t preferred_work_group_size_multiple(device const& target) const;

    /// The least bytes of private memory that each work-item takes on a device. Since OpenCL 1.1.
    std::uint64_t private_mem_per_work_item(device const& target) const;
#endif

#if VORN_MERO_OPENCL >= 120
    /// The `__attribute__` qualifiers of the source, as OpenCL writes them; none where the program was not made from
    /// source. Since OpenCL 1.2.
    std::vector<std::string> attributes() const;

    // How the source declares an argument, counted from 0. For a program built without the option `-cl-kernel-arg-info`
    // an implementation may throw `common::kernel_arg_info_not_available`. An index too large is
    // `common::invalid_arg_index`. Since OpenCL 1.2.
    kernel_argument_address_qualifier argument_address_qualifier(unsigned int index) const;
    kernel_argument_access_qualifier argument_access_qualifier(unsigned int index) const;
    kernel_argument_type_qualifier argument_type_qualifier(unsigned int index) const;
    std::string argument_type_name(unsigned int index) const;
    std::string argument_name(unsigned int index) const;

    /// For a custom device or a built-in kernel; OpenCL refuses it for any other with `common::invalid_value`. Since
    /// OpenCL 1.2.
    std::array<std::size_t, 3> max_global_work_size(device const& target) const;
#endif

#if VORN_MERO_OPENCL >= 200
    /// A queue on the device, which the kernel does not keep alive. Since OpenCL 2.0.
    void set_argument(unsigned int index, device_command_queue& queue);

    /// A pointer into shared virtual memory, also into the middle of it; OpenCL takes the address alone. The memory
    /// must live until the launch is complete. Since OpenCL 2.0.
    void set_svm_argument(std::uint32_t index, void const* pointer);

    /// The shared virtual memory that the kernel reaches through pointers other than its arguments, such as those in a
    /// list's nodes: any address within each allocation. Replaces what was given before; an empty list clears it or, in
    /// implementations before OpenCL 3.0, is `common::invalid_value`. Since OpenCL 2.0.
    void set_svm_pointers(std::vector<void*> const& pointers);

    /// Whether the kernel may reach any memory of the host, whatever `set_svm_pointers` names. Throws
    /// `common::invalid_operation` unless `device::svm_fine_grain_system_supported`. Since OpenCL 2.0.
    void set_fine_grain_system_flag(bool enabled);
#endif

#if VORN_MERO_OPENCL >= 210
    // What a launch with the given local size makes of sub-groups: the work-items of the largest, and their number in a
    // work-group. Throw `common::invalid_operation` where the device has no sub-groups. Since OpenCL 2.1.
    std::size_t get_max_sub_group_size_for_nd_range(device const& target, std::array<std::size_t, 1> const& size) const;
    std::size_t get_max_sub_group_size_for_nd_range(device const& target, std::array<std::size_t, 2> const& size) const;
    std::size_t get_max_sub_group_size_for_nd_range(device const& target, std::array<std::size_t, 3> const& size) const;
    std::size_t get_sub_group_count_for_nd_range(device const& target, std::array<std::size_t, 1> const& size) const;
    std::size_t get_sub_group_count_for_nd_range(device const& target, std::array<std::size_t, 2> const& size) const;
    std::size_t get_sub_group_count_for_nd_range(device const& target, std::array<std::size_t, 3> const& size) const;

    /// A one-dimensional local size that gives `count` sub-groups, 0 when there is none. Since OpenCL 2.1.
    std::size_t get_local_size_for_sub_group_count(device const& target, unsigned long count) const;

    /// The most sub-groups of a work-group of this kernel. Since OpenCL 2.1.
    std::size_t get_max_num_sub_groups(device const& target) const;

    /// The number of sub-groups that the source requires, 0 when it requires none. Since OpenCL 2.1.
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
