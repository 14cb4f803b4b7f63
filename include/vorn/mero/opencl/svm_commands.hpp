// Commands on shared virtual memory (`context::svm_allocate`). They take plain addresses; the memory must live until
// they are complete. For a device without shared virtual memory enqueueing throws `common::invalid_operation`.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl.hpp>
#endif
#ifdef VORN_MERO_OPENCL

namespace vorn::mero::VORN_MERO_NAMESPACE {

#if VORN_MERO_OPENCL >= 200
/// Frees shared virtual memory when the commands before it are complete. The host must not use the memory any more once
/// this is enqueued. Since OpenCL 2.0.
///
///     float* values = static_cast<float*>(context.svm_allocate(cl::svm_mem_flags::read_write, bytes, 0));
///     kernel.set_svm_argument(0, values);
///     queue.enqueue_command_without_event(cl::nd_range_kernel(kernel, 1, {0, 0, 0}, {1024, 1, 1}, {64, 1, 1}));
///     queue.enqueue_command_without_event(cl::svm_free({values}));
///
/// With a callback, the callback frees the pointers instead, by `context::svm_free` or in its own way. It runs on any
/// thread and must not throw.
class VORN_MERO_EXPORT svm_free : public command {
public:
    /// Copies the list. Most implementations refuse an empty one.
    explicit svm_free(std::vector<void*> const& pointers);

    /// `callback` gets the queue, the number of pointers, the pointers, and `user_data`, which must stay valid until
    /// then.
    svm_free(std::vector<void*> const& pointers, void (*callback)(_nq_cl_command_queue*, std::uint32_t, void**, void*),
             void* user_data VORN_MERO_LIFETIMEBOUND);
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    std::vector<void*> pointers_;
    nq::svm_free_callback callback_;
    void* user_data_;
};

/// Copies to or from shared virtual memory; source or destination may be any host memory. Since OpenCL 2.0.
class VORN_MERO_EXPORT svm_memcpy : public command {
public:
    /// `size` is in bytes. `blocking` is 1 or 0, passed on unchanged. Enqueueing throws `common::mem_copy_overlap` if
    /// the regions overlap.
    svm_memcpy(std::uint32_t blocking, void* destination VORN_MERO_LIFETIMEBOUND,
               void const* source VORN_MERO_LIFETIMEBOUND, std::size_t size)
        : blocking_(blocking), destination_(destination), source_(source), size_(size) {}
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    std::uint32_t blocking_;
    void* destination_;
    void const* source_;
    std::size_t size_;
};

/// Fills shared virtual memory with a pattern that the caller owns: it must be there at each enqueueing. Since
/// OpenCL 2.0.
class VORN_MERO_EXPORT fill_svm_base : public command {
public:
    /// `pattern_size` is a power of two from 1 to 128 bytes; the address `destination` is a multiple of it. `count` is
    /// in patterns, not bytes.
    fill_svm_base(void* destination VORN_MERO_LIFETIMEBOUND, void const* pattern VORN_MERO_LIFETIMEBOUND,
                  std::size_t pattern_size, std::size_t count)
        : destination_(destination), pattern_(pattern), pattern_size_(pattern_size), count_(count) {}

    /// Sets the address of the pattern for later enqueueings. Must not run while another thread enqueues this object.
    void update_pattern_pointer(void const* pattern) noexcept { pattern_ = pattern; }

    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    void* destination_;
    void const* pattern_;
    std::size_t pattern_size_;
    std::size_t count_;
};

/// Maps a region of coarse-grained shared virtual memory, so that the host may use it. Fine-grained memory needs no
/// mapping. Since OpenCL 2.0.
///
///     queue.enqueue_command_without_event(cl::svm_map(true, cl::map_flags::write, values, bytes));
///     values[0] = 1.0F;
///     queue.enqueue_command_without_event(cl::svm_unmap(values));
class VORN_MERO_EXPORT svm_map : public command {
public:
    /// Maps `size` bytes at `pointer`. Unless `blocking`, the host may use them when the event is complete.
    svm_map(bool blocking, map_flags flags, void* pointer VORN_MERO_LIFETIMEBOUND, std::size_t size)
        : blocking_(blocking), flags_(flags), pointer_(pointer), size_(size) {}
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    bool blocking_;
    map_flags flags_;
    void* pointer_;
    std::size_t size_;
};

/// Ends a mapping by `svm_map`. Once this is enqueued, the host must not use the region. Since OpenCL 2.0.
class VORN_MERO_EXPORT svm_unmap : public command {
public:
    /// `pointer` is that given to `svm_map`.
    explicit svm_unmap(void* pointer VORN_MERO_LIFETIMEBOUND) : pointer_(pointer) {}
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    void* pointer_;
};

/// Fills shared virtual memory with copies of an element that the command holds. `T` has the size of an OpenCL scalar
/// or vector. Since OpenCL 2.0.
template <class T>
class fill_svm : public mero::internal::kept_pattern<fill_svm_base, T, &fill_svm_base::update_pattern_pointer> {
public:
    /// `destination` is aligned to `sizeof(T)` bytes; `count` is in elements.
    fill_svm(void* destination VORN_MERO_LIFETIMEBOUND, T const& pattern, std::size_t count)
        : fill_svm::kept_pattern(pattern, destination, nullptr, sizeof(T), count) {}
};
#endif

#if VORN_MERO_OPENCL >= 210
/// Moves ranges of shared virtual memory to the device of the queue, or to the host, ahead of the commands that use
/// them. Since OpenCL 2.1.
class VORN_MERO_EXPORT svm_migrate_mem : public command {
public:
    /// Copies both lists. Sizes are in bytes; 0 means the whole allocation. Throws `std::logic_error` unless there are
    /// as many sizes as pointers. If both lists are empty, enqueueing throws `common::invalid_value`.
    svm_migrate_mem(std::vector<void const*> const& pointers, std::vector<std::size_t> const& sizes,
                    migration_flags flags);
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    std::vector<void const*> pointers_;
    std::vector<std::size_t> sizes_;
    migration_flags flags_;
};
#endif

} // namespace vorn::mero::VORN_MERO_NAMESPACE

#endif
