// The commands on shared virtual memory (`context::svm_allocate`). They take plain addresses, which no class owns; the
// memory must live until the commands that use it are complete. A device without it answers
// `common::invalid_operation`.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>

#include <vorn/mero/opencl/forward.hpp>
#include <vorn/mero/opencl/types.hpp>

#include <vorn/mero/opencl/command.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

#if VORN_MERO_OPENCL >= 200
/// Frees shared virtual memory once the commands before it are complete; the program must not use it from the
/// enqueueing on. Since OpenCL 2.0.
///
///     float* values = static_cast<float*>(context.svm_allocate(cl::svm_mem_flags::read_write, bytes, 0));
///     kernel.set_svm_argument(0, values);
///     queue.enqueue_command_without_event(cl::nd_range_kernel(kernel, 1, {0, 0, 0}, {1024, 1, 1}, {64, 1, 1}));
///     queue.enqueue_command_without_event(cl::svm_free({values}));
///
/// With a callback, that frees the pointers instead, by `context::svm_free` or in its own way; it runs on a thread of
/// OpenCL's choice and must not throw.
class VORN_MERO_EXPORT svm_free : public command {
public:
    /// The list is copied; an empty one is passed on as null with a count of 0, which most implementations refuse.
    explicit svm_free(std::vector<void*> const& pointers);

    /// `callback` is given the queue, the number of pointers, the pointers, and `user_data`, which must be of use until
    /// then.
    svm_free(std::vector<void*> const& pointers, void (*callback)(_nq_cl_command_queue*, std::uint32_t, void**, void*),
             void* user_data);
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    std::vector<void*> pointers_;
    nq::svm_free_callback callback_;
    void* user_data_;
};

/// Copies within memory that host and device share; one of the two may be any memory of the host. `blocking` is passed
/// on as given, 1 or 0. Since OpenCL 2.0.
class VORN_MERO_EXPORT svm_memcpy : public command {
public:
    /// `size` bytes. Throws `common::mem_copy_overlap` when enqueued where the regions overlap.
    svm_memcpy(std::uint32_t blocking, void* destination, void const* source, std::size_t size);
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    std::uint32_t blocking_;
    void* destination_;
    void const* source_;
    std::size_t size_;
};

/// Fills shared virtual memory with `count` repetitions of a pattern that the caller keeps until each enqueueing
/// returns. Since OpenCL 2.0.
class VORN_MERO_EXPORT fill_svm_base : public command {
public:
    /// `pattern_size` is 1 to 128 and a power of two, of which the address `destination` is a multiple. `count` counts
    /// patterns, not bytes.
    fill_svm_base(void* destination, void const* pattern, std::size_t pattern_size, std::size_t count);

    /// Lets later enqueueings read the pattern elsewhere. Not while another thread enqueues this object.
    void update_pattern_pointer(void const* pattern) noexcept { pattern_ = pattern; }

    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    void* destination_;
    void const* pattern_;
    std::size_t pattern_size_;
    std::size_t count_;
};

/// Lets the host use a region of coarse-grained shared virtual memory, which it may not touch otherwise; fine-grained
/// memory needs no mapping. Since OpenCL 2.0.
///
///     queue.enqueue_command_without_event(cl::svm_map(true, cl::map_flags::write, values, bytes));
///     values[0] = 1.0F;
///     queue.enqueue_command_without_event(cl::svm_unmap(values));
class VORN_MERO_EXPORT svm_map : public command {
public:
    /// `size` bytes at `pointer`. Unless `blocking`, the memory may be used only once the event is complete.
    svm_map(bool blocking, map_flags flags, void* pointer, std::size_t size);
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    bool blocking_;
    map_flags flags_;
    void* pointer_;
    std::size_t size_;
};

/// Gives a mapped region back to the devices; the host may not touch it from the enqueueing on. Since OpenCL 2.0.
class VORN_MERO_EXPORT svm_unmap : public command {
public:
    /// `pointer` is that of the mapping.
    explicit svm_unmap(void* pointer);
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    void* pointer_;
};

/// Fills shared virtual memory with `count` repetitions of an element of the size of an OpenCL scalar or vector, which
/// the command keeps. Since OpenCL 2.0.
template <class T>
class fill_svm : public mero::internal::kept_pattern<fill_svm_base, T, &fill_svm_base::update_pattern_pointer> {
public:
    /// `destination` is aligned to `sizeof(T)` bytes, `count` is in elements.
    fill_svm(void* destination, T const& pattern, std::size_t count)
        : fill_svm::kept_pattern(pattern, destination, nullptr, sizeof(T), count) {}
};
#endif

#if VORN_MERO_OPENCL >= 210
/// Moves ranges of shared virtual memory to the device of the queue, or to the host, before the commands that need them
/// there; a size of 0 stands for the whole allocation. Since OpenCL 2.1.
class VORN_MERO_EXPORT svm_migrate_mem : public command {
public:
    /// Sizes are in bytes; both lists are copied. Throws `std::logic_error` unless there are as many sizes as pointers.
    /// Two empty lists are `common::invalid_value` when it is enqueued.
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
