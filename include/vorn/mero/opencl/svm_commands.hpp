// The commands on shared virtual memory.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>

#include <vorn/mero/opencl/forward.hpp>
#include <vorn/mero/opencl/types.hpp>

#include <vorn/mero/opencl/command.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

#if VORN_MERO_OPENCL >= 200
/// Frees shared virtual memory once the commands before it are complete. With a callback, that frees the pointers
/// instead; it runs on a thread of OpenCL's choice and must not throw. Since OpenCL 2.0.
class VORN_MERO_EXPORT svm_free : public command {
public:
    explicit svm_free(std::vector<void*> const& pointers);

    /// `callback` is given the queue, the number of pointers, the pointers, and `user_data`.
    svm_free(std::vector<void*> const& pointers, void (*callback)(_nq_cl_command_queue*, std::uint32_t, void**, void*),
             void* user_data);
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    std::vector<void*> pointers_;
    nq::svm_free_callback callback_;
    void* user_data_;
};

/// Copies within memory that host and device share. `blocking` is passed on as given. Since OpenCL 2.0.
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

/// Fills shared virtual memory with `count` repetitions of a pattern that the caller keeps. Since OpenCL 2.0.
class VORN_MERO_EXPORT fill_svm_base : public command {
public:
    /// `pattern_size` is 1 to 128 and a power of two, of which `destination` is a multiple. `count` counts patterns,
    /// not bytes.
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

/// Lets the host use a region of coarse-grained shared virtual memory. Since OpenCL 2.0.
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

/// Gives a mapped region back to the devices. Since OpenCL 2.0.
class VORN_MERO_EXPORT svm_unmap : public command {
public:
    /// `pointer` is that of the mapping.
    explicit svm_unmap(void* pointer);
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    void* pointer_;
};

/// Fills shared virtual memory with `count` repetitions of an element, which the command keeps. Since OpenCL 2.0.
template <class T>
class fill_svm : public mero::internal::kept_pattern<fill_svm_base, T, &fill_svm_base::update_pattern_pointer> {
public:
    fill_svm(void* destination, T const& pattern, std::size_t count)
        : fill_svm::kept_pattern(pattern, destination, nullptr, sizeof(T), count) {}
};
#endif

#if VORN_MERO_OPENCL >= 210
/// Moves ranges of shared virtual memory to the device of the queue, or to the host; a size of 0 stands for the whole
/// allocation. Since OpenCL 2.1.
class VORN_MERO_EXPORT svm_migrate_mem : public command {
public:
    /// Throws `std::logic_error` unless there are as many sizes as pointers.
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
