// Commands that launch kernels and call host functions.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl.hpp>
#endif
#ifdef VORN_MERO_OPENCL

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// Launches a kernel in `work_dim` dimensions, 1 to 3; further offsets and sizes are ignored. Move-only.
///
///     queue.enqueue_command_without_event(
///         cl::nd_range_kernel(kernel, 2, {0, 0, 0}, {640, 480, 1}, {8, 8, 1})); // 80 x 60 work-groups of 64
///
/// In OpenCL 1.0 there is no offset, the first of the three lists.
///
/// The local size must be given: OpenCL cannot choose one. `kernel::preferred_work_group_size_multiple` (since OpenCL
/// 1.1) is a good default; 0 is not allowed. The local size must divide the global size in each dimension, unless the
/// kernel was built with `-cl-std=CL2.0` or later.
///
/// Enqueueing throws `common::invalid_work_group_size` for a local size that does not divide the global size, has more
/// work-items than `kernel::max_work_group_size`, or is not the one that the source requires;
/// `common::invalid_work_item_size` for a dimension above `device::max_work_item_sizes`; `common::invalid_kernel_args`
/// if an argument was never set; `common::invalid_work_dimension` for another `work_dim`;
/// `common::invalid_program_executable` if the program was not built for the queue's device.
class VORN_MERO_EXPORT nd_range_kernel : public command {
public:
#if VORN_MERO_OPENCL < 110
    /// Sizes are in work-items. The kernel must live until the launch has been enqueued; arguments set on it afterwards
    /// do not affect the launch. In OpenCL 1.0 only.
    nd_range_kernel(kernel const& function VORN_MERO_LIFETIMEBOUND, unsigned int work_dim,
                    std::array<std::size_t, 3> global_size, std::array<std::size_t, 3> local_size)
        : function_(mero::internal::owner_access::raw(function)), work_dim_(work_dim), global_size_(global_size),
          local_size_(local_size) {}
#else
    /// Sizes and offset are in work-items; `get_global_id` counts from the offset. The kernel must live until the
    /// launch has been enqueued; arguments set on it afterwards do not affect the launch. Since OpenCL 1.1.
    nd_range_kernel(kernel const& function VORN_MERO_LIFETIMEBOUND, unsigned int work_dim,
                    std::array<std::size_t, 3> global_offset, std::array<std::size_t, 3> global_size,
                    std::array<std::size_t, 3> local_size)
        : function_(mero::internal::owner_access::raw(function)), work_dim_(work_dim), global_offset_(global_offset),
          global_size_(global_size), local_size_(local_size) {}
#endif
    nd_range_kernel(nd_range_kernel&&) noexcept = default;
    nd_range_kernel& operator=(nd_range_kernel&&) noexcept = default;
    nd_range_kernel(nd_range_kernel const&) = delete;
    nd_range_kernel& operator=(nd_range_kernel const&) = delete;
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_kernel* function_;
    unsigned int work_dim_;
#if VORN_MERO_OPENCL < 110
    static std::size_t const* offset() noexcept { return nullptr; }
#else
    std::size_t const* offset() const noexcept { return global_offset_.data(); }

    std::array<std::size_t, 3> global_offset_;
#endif
    std::array<std::size_t, 3> global_size_;
    std::array<std::size_t, 3> local_size_;
};

#if VORN_MERO_OPENCL < 110
/// Launches a kernel as a single work-item. Move-only. In OpenCL 1.0 only; later use `nd_range_kernel` with sizes of 1.
class VORN_MERO_EXPORT task_kernel : public command {
public:
    /// The kernel must live until the launch has been enqueued.
    explicit task_kernel(kernel const& function VORN_MERO_LIFETIMEBOUND)
        : function_(mero::internal::owner_access::raw(function)) {}
    task_kernel(task_kernel&&) noexcept = default;
    task_kernel& operator=(task_kernel&&) noexcept = default;
    task_kernel(task_kernel const&) = delete;
    task_kernel& operator=(task_kernel const&) = delete;
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_kernel* function_;
};
#endif

/// Calls a host function when its turn in the queue comes. On enqueueing OpenCL copies the `args_size` bytes at `args`.
/// It writes the address of each memory object's memory into the copy, at the places in `args` that `args_mem_loc`
/// lists.
///
///     struct arguments { float* store; std::size_t count; } values{nullptr, 1024};
///     _nq_cl_mem* const objects[] = {cl::raw::get_raw_memory_object(buffer)};
///     void const* places[] = {&values.store};
///     queue.enqueue_command_without_event(cl::native_kernel(work, &values, sizeof values, 1, objects, places));
///
/// The function gets the copy, which lives until it returns. It runs on any thread, perhaps one of the program's that
/// waits, and must neither throw nor wait for commands. Enqueueing throws `common::invalid_operation` unless
/// `device::can_execute_native_kernels`.
class VORN_MERO_EXPORT native_kernel : public command {
public:
    /// `mem_list` has `num_mem_objects` raw handles, and `args_mem_loc` as many places; both are null if there is none.
    /// `args` is null if there are no arguments. The arrays must live until the command has been enqueued.
    native_kernel(void (*user_func)(void*), void* args VORN_MERO_LIFETIMEBOUND, std::size_t args_size,
                  unsigned int num_mem_objects, _nq_cl_mem* const* mem_list VORN_MERO_LIFETIMEBOUND,
                  void const** args_mem_loc VORN_MERO_LIFETIMEBOUND)
        : user_func_(user_func), args_(args), args_size_(args_size), num_mem_objects_(num_mem_objects),
          mem_list_(mem_list), args_mem_loc_(args_mem_loc) {}
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    void (*user_func_)(void*);
    void* args_;
    std::size_t args_size_;
    unsigned int num_mem_objects_;
    _nq_cl_mem* const* mem_list_;
    void const** args_mem_loc_;
};

} // namespace vorn::mero::VORN_MERO_NAMESPACE

#endif
