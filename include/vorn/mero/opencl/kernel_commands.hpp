// Kernel launches and functions of the host on a queue.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>

#include <vorn/mero/opencl/forward.hpp>
#include <vorn/mero/opencl/types.hpp>

#include <vorn/mero/opencl/command.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

#if VORN_MERO_OPENCL < 110
/// Launches a kernel over a range of `work_dim` dimensions; only the first `work_dim` sizes count. Move-only.
class VORN_MERO_EXPORT nd_range_kernel : public command {
public:
    /// Arguments set on the kernel later do not affect a launch that has been enqueued.
    nd_range_kernel(kernel const& function, unsigned int work_dim, std::array<std::size_t, 3> const& global_size,
                    std::array<std::size_t, 3> const& local_size);
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

/// Launches a kernel as a single work-item. Move-only.
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
/// Launches a kernel over a range of `work_dim` dimensions; only the first `work_dim` offsets and sizes count. The
/// local size is always passed on: it must divide the global size where the OpenCL version or the kernel demands it.
/// Move-only.
class VORN_MERO_EXPORT nd_range_kernel : public command {
public:
    /// Arguments set on the kernel later do not affect a launch that has been enqueued.
    nd_range_kernel(kernel const& function, unsigned int work_dim, std::array<std::size_t, 3> const& global_offset,
                    std::array<std::size_t, 3> const& global_size, std::array<std::size_t, 3> const& local_size);
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

/// Calls a function of the host. OpenCL copies the `args_size` bytes at `args` when the command is enqueued, and writes
/// the address of each memory object's store into the copy, at the places in `args` that `args_mem_loc` lists. The
/// function runs on a thread of OpenCL's choice and must not throw.
class VORN_MERO_EXPORT native_kernel : public command {
public:
    /// `mem_list` holds `num_mem_objects` raw handles, `args_mem_loc` as many places; both null where there is none.
    /// The arrays must live until the command has been enqueued.
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
