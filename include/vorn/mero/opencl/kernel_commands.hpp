// Kernel launches and functions of the host on a queue.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>

#include <vorn/mero/opencl/forward.hpp>
#include <vorn/mero/opencl/types.hpp>

#include <vorn/mero/opencl/command.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

#if VORN_MERO_OPENCL < 110
/// Launches a kernel over a range of `work_dim` dimensions, 1 to 3; only the first `work_dim` sizes count. Move-only.
///
///     queue.enqueue_command_without_event(cl::nd_range_kernel(kernel, 2, {640, 480, 1}, {8, 8, 1}));
///
/// The local size is always passed on, OpenCL cannot be asked to choose one; a start is
/// `kernel::max_work_group_size`. It must divide the global size in each dimension, or
/// `common::invalid_work_group_size` is thrown; so it is for more work-items than `kernel::max_work_group_size`. An
/// argument that was never set is `common::invalid_kernel_args`, another `work_dim` `common::invalid_work_dimension`.
class VORN_MERO_EXPORT nd_range_kernel : public command {
public:
    /// Sizes are in work-items. Arguments set on the kernel later do not affect a launch that has been enqueued; the
    /// kernel must live until then.
    nd_range_kernel(kernel const& function, unsigned int work_dim, std::array<std::size_t, 3> global_size,
                    std::array<std::size_t, 3> local_size);
    nd_range_kernel(nd_range_kernel&&) noexcept = default;
    nd_range_kernel& operator=(nd_range_kernel&&) noexcept = default;
    nd_range_kernel(nd_range_kernel const&) = delete;
    nd_range_kernel& operator=(nd_range_kernel const&) = delete;
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_kernel* function_;
    unsigned int work_dim_;
    std::array<std::size_t, 3> global_size_;
    std::array<std::size_t, 3> local_size_;
};

/// Launches a kernel as a single work-item. Move-only. In OpenCL 1.0 only; later it is a range of 1 with a local size
/// of 1.
class VORN_MERO_EXPORT task_kernel : public command {
public:
    explicit task_kernel(kernel const& function);
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

#if VORN_MERO_OPENCL >= 110
/// Launches a kernel over a range of `work_dim` dimensions, 1 to 3; only the first `work_dim` offsets and sizes count.
/// Move-only.
///
///     queue.enqueue_command_without_event(
///         cl::nd_range_kernel(kernel, 2, {0, 0, 0}, {640, 480, 1}, {8, 8, 1})); // 80 x 60 work-groups of 64
///
/// The local size is always passed on, and OpenCL cannot be asked to choose one; a start is
/// `kernel::preferred_work_group_size_multiple`, 0 is not. It must divide the global size in each dimension, unless the
/// kernel was built with `-cl-std=CL2.0` or later, or `common::invalid_work_group_size` is thrown; so it is for more
/// work-items than `kernel::max_work_group_size`, and for another size than the source requires.
/// `common::invalid_work_item_size` is a dimension above `device::max_work_item_sizes`, `common::invalid_kernel_args`
/// an argument that was never set, `common::invalid_program_executable` a program that was not built for the queue's
/// device.
class VORN_MERO_EXPORT nd_range_kernel : public command {
public:
    /// Sizes and offset are in work-items; `get_global_id` counts from the offset. Arguments set on the kernel later do
    /// not affect a launch that has been enqueued; the kernel must live until then.
    nd_range_kernel(kernel const& function, unsigned int work_dim, std::array<std::size_t, 3> global_offset,
                    std::array<std::size_t, 3> global_size, std::array<std::size_t, 3> local_size);
    nd_range_kernel(nd_range_kernel&&) noexcept = default;
    nd_range_kernel& operator=(nd_range_kernel&&) noexcept = default;
    nd_range_kernel(nd_range_kernel const&) = delete;
    nd_range_kernel& operator=(nd_range_kernel const&) = delete;
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_kernel* function_;
    unsigned int work_dim_;
    std::array<std::size_t, 3> global_offset_;
    std::array<std::size_t, 3> global_size_;
    std::array<std::size_t, 3> local_size_;
};
#endif

/// Calls a function of the host, in its turn in the queue. OpenCL copies the `args_size` bytes at `args` when the
/// command is enqueued, and writes the address of each memory object's store into the copy, at the places in `args`
/// that `args_mem_loc` lists.
///
///     struct arguments { float* store; std::size_t count; } values{nullptr, 1024};
///     _nq_cl_mem* const objects[] = {cl::raw::get_raw_memory_object(buffer)};
///     void const* places[] = {&values.store};
///     queue.enqueue_command_without_event(cl::native_kernel(work, &values, sizeof values, 1, objects, places));
///
/// The function is given the copy, which is gone when it returns. It runs on a thread of OpenCL's choice, one of its
/// own or one of the program that waits, and must neither throw nor wait for commands. Throws
/// `common::invalid_operation` unless `device::can_execute_native_kernels`.
class VORN_MERO_EXPORT native_kernel : public command {
public:
    /// `mem_list` holds `num_mem_objects` raw handles, `args_mem_loc` as many places; both null where there is none,
    /// and `args` null where there are no arguments. The arrays must live until the command has been enqueued.
    native_kernel(void (*user_func)(void*), void* args, std::size_t args_size, unsigned int num_mem_objects,
                  _nq_cl_mem* const* mem_list, void const** args_mem_loc);
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
