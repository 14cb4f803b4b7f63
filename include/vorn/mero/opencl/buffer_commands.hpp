// The commands on buffers, and on any memory object.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>

#include <vorn/mero/opencl/forward.hpp>
#include <vorn/mero/opencl/types.hpp>

#include <vorn/mero/opencl/command.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// Copies from a buffer to the host.
///
///     std::vector<float> values(1024);
///     queue.enqueue_command_without_event(
///         cl::read_buffer(buffer, true, 0, values.size() * sizeof(float), values.data()));
class VORN_MERO_EXPORT read_buffer : public command {
public:
    /// `size` bytes from `offset` on go to `destination`. A `blocking` command is complete when it has been enqueued;
    /// otherwise `destination` must live, and not be touched, until the event is complete. Throws
    /// `common::invalid_value` when the bytes leave the buffer or `destination` is null, `common::invalid_operation`
    /// when the buffer's flags keep the host from reading.
    read_buffer(buffer const& source, bool blocking, std::size_t offset, std::size_t size, void* destination);
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_mem* source_;
    bool blocking_;
    std::size_t offset_;
    std::size_t size_;
    void* destination_;
};

/// Copies from the host to a buffer.
class VORN_MERO_EXPORT write_buffer : public command {
public:
    /// `size` bytes at `source` go to `offset` and after. A `blocking` command lets go of `source` when it has been
    /// enqueued, though its event may be complete only a moment later; otherwise `source` must stay as it is until
    /// then. Throws as `read_buffer`.
    write_buffer(buffer& destination, bool blocking, std::size_t offset, std::size_t size, void const* source);
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_mem* destination_;
    bool blocking_;
    std::size_t offset_;
    std::size_t size_;
    void const* source_;
};

/// Copies between buffers, or within one, on the device.
class VORN_MERO_EXPORT copy_buffer : public command {
public:
    /// `size` bytes; some implementations refuse 0. Throws `common::mem_copy_overlap` when enqueued where the regions
    /// of one buffer overlap, `common::invalid_value` where they leave a buffer.
    copy_buffer(buffer const& source, buffer& destination, std::size_t source_offset, std::size_t destination_offset,
                std::size_t size);
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_mem* source_;
    _nq_cl_mem* destination_;
    std::size_t source_offset_;
    std::size_t destination_offset_;
    std::size_t size_;
};

/// Maps a region of a buffer into the host's memory, without a copy where the two are one.
///
///     void* mapped = nullptr;
///     queue.enqueue_command_without_event(
///         cl::map_buffer(mapped, buffer, true, cl::map_flags::read | cl::map_flags::write, 0, bytes));
///     static_cast<float*>(mapped)[0] = 1.0F;
///     queue.enqueue_command_without_event(cl::unmap_mem_object(buffer, mapped));
///
/// Each enqueueing that succeeds stores the address in `mapped`, which must live until then; one that fails leaves it
/// alone. Each mapping needs its own `unmap_mem_object`; until then no kernel may write the region, nor read it where
/// it is mapped for writing.
class VORN_MERO_EXPORT map_buffer : public command {
public:
    /// `size` bytes from `offset` on. Unless `blocking`, the memory may be used only once the event is complete. Throws
    /// `common::map_failure` when the region cannot be mapped, `common::invalid_value` for one that leaves the buffer.
    map_buffer(void*& mapped, buffer& source, bool blocking, map_flags flags, std::size_t offset, std::size_t size);
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    void** mapped_;
    _nq_cl_mem* source_;
    bool blocking_;
    map_flags flags_;
    std::size_t offset_;
    std::size_t size_;
};

/// Ends a mapping; what was written through it is then in the memory object, for the commands that come after this one.
class VORN_MERO_EXPORT unmap_mem_object : public command {
public:
    /// `mapped` is the address that mapping gave, of no further use from here on; another is `common::invalid_value`.
    unmap_mem_object(memory_object const& object, void* mapped);
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_mem* object_;
    void* mapped_;
};

#if VORN_MERO_OPENCL >= 110
/// Copies a box from a buffer to the host: rows that lie apart, in one command.
///
///     // 16 rows of 64 bytes, out of rows of 1024 bytes, tightly packed into `tile`
///     queue.enqueue_command_without_event(
///         cl::read_buffer_rect(buffer, true, {128, 32, 0}, {0, 0, 0}, {64, 16, 1}, 1024, 0, 0, 0, tile));
///
/// Origins and regions are bytes, rows and slices; a region of fewer dimensions has 1 in the rest. A pitch is the bytes
/// from row to row or from slice to slice, and 0 means tightly packed; others than 0 must be at least the region's row,
/// or that many rows. Some implementations do not check the end of the memory. Since OpenCL 1.1.
class VORN_MERO_EXPORT read_buffer_rect : public command {
public:
    /// The box `region` at `buffer_origin` goes to `host_origin` of the memory at `destination`. Otherwise as
    /// `read_buffer`.
    read_buffer_rect(buffer const& source, bool blocking, std::array<std::size_t, 3> buffer_origin,
                     std::array<std::size_t, 3> host_origin, std::array<std::size_t, 3> region,
                     std::size_t buffer_row_pitch, std::size_t buffer_slice_pitch, std::size_t host_row_pitch,
                     std::size_t host_slice_pitch, void* destination);
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_mem* source_;
    bool blocking_;
    std::array<std::size_t, 3> buffer_origin_;
    std::array<std::size_t, 3> host_origin_;
    std::array<std::size_t, 3> region_;
    std::size_t buffer_row_pitch_;
    std::size_t buffer_slice_pitch_;
    std::size_t host_row_pitch_;
    std::size_t host_slice_pitch_;
    void* destination_;
};

/// Copies a box from the host to a buffer; origins, region and pitches are as in `read_buffer_rect`. Since OpenCL 1.1.
class VORN_MERO_EXPORT write_buffer_rect : public command {
public:
    /// The box `region` at `host_origin` of the memory at `source` goes to `buffer_origin`. Otherwise as
    /// `write_buffer`.
    write_buffer_rect(buffer& destination, bool blocking, std::array<std::size_t, 3> buffer_origin,
                      std::array<std::size_t, 3> host_origin, std::array<std::size_t, 3> region,
                      std::size_t buffer_row_pitch, std::size_t buffer_slice_pitch, std::size_t host_row_pitch,
                      std::size_t host_slice_pitch, void const* source);
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_mem* destination_;
    bool blocking_;
    std::array<std::size_t, 3> buffer_origin_;
    std::array<std::size_t, 3> host_origin_;
    std::array<std::size_t, 3> region_;
    std::size_t buffer_row_pitch_;
    std::size_t buffer_slice_pitch_;
    std::size_t host_row_pitch_;
    std::size_t host_slice_pitch_;
    void const* source_;
};

/// Copies a box between buffers, or within one; origins, region and pitches are as in `read_buffer_rect`. Since
/// OpenCL 1.1.
class VORN_MERO_EXPORT copy_buffer_rect : public command {
public:
    /// The box `region` goes from `source_origin` to `destination_origin`. Throws `common::mem_copy_overlap` when
    /// enqueued where the boxes of one buffer overlap; within one the pitches of both must be equal.
    copy_buffer_rect(buffer const& source, buffer& destination, std::array<std::size_t, 3> source_origin,
                     std::array<std::size_t, 3> destination_origin, std::array<std::size_t, 3> region,
                     std::size_t source_row_pitch, std::size_t source_slice_pitch, std::size_t destination_row_pitch,
                     std::size_t destination_slice_pitch);
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_mem* source_;
    _nq_cl_mem* destination_;
    std::array<std::size_t, 3> source_origin_;
    std::array<std::size_t, 3> destination_origin_;
    std::array<std::size_t, 3> region_;
    std::size_t source_row_pitch_;
    std::size_t source_slice_pitch_;
    std::size_t destination_row_pitch_;
    std::size_t destination_slice_pitch_;
};
#endif

#if VORN_MERO_OPENCL >= 120
/// Fills a region of a buffer with `count` repetitions of a pattern that the caller keeps, which must live until each
/// enqueueing returns. `fill_buffer` and `fill_buffer_bytes` keep it themselves. Since OpenCL 1.2.
class VORN_MERO_EXPORT fill_buffer_base : public command {
public:
    /// `pattern_size` is 1 to 128 and a power of two; `offset`, in bytes, is a multiple of it. `count` counts patterns,
    /// not bytes. Anything else is `common::invalid_value` when it is enqueued.
    fill_buffer_base(buffer& destination, void const* pattern, std::size_t pattern_size, std::size_t offset,
                     std::size_t count);

    /// Lets later enqueueings read the pattern elsewhere. Not while another thread enqueues this object.
    void update_pattern_pointer(void const* pattern) noexcept { pattern_ = pattern; }

    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_mem* destination_;
    void const* pattern_;
    std::size_t pattern_size_;
    std::size_t offset_;
    std::size_t count_;
};

/// Fills a region of a buffer with `count` repetitions of a pattern that the command keeps. Copying the command copies
/// the pattern. Since OpenCL 1.2.
class VORN_MERO_EXPORT fill_buffer_bytes : public command {
public:
    /// The pattern has 1 to 128 bytes, a power of two; `offset`, in bytes, is a multiple of it. `count` counts
    /// patterns. An empty pattern is `common::invalid_value` when it is enqueued.
    fill_buffer_bytes(buffer& destination, std::vector<unsigned char> const& pattern, std::size_t offset,
                      std::size_t count);
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_mem* destination_;
    std::vector<unsigned char> pattern_;
    std::size_t offset_;
    std::size_t count_;
};

/// Moves memory objects to the device of the queue, or to the host, before the commands that need them there. It does
/// not change what they hold unless `migration_flags::content_undefined` allows it. Since OpenCL 1.2.
class VORN_MERO_EXPORT migrate_mem_objects : public command {
public:
    /// The objects are raw handles, as `raw::get_raw_memory_object` gives them; the list is copied, the objects must
    /// live until the command has been enqueued. An empty list is `common::invalid_value` then.
    migrate_mem_objects(std::vector<_nq_cl_mem*> const& objects, migration_flags flags);
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    std::vector<_nq_cl_mem*> objects_;
    migration_flags flags_;
};

/// Fills a region of a buffer with `count` repetitions of an element of the size of an OpenCL scalar or vector, which
/// the command keeps. Since OpenCL 1.2.
///
///     queue.enqueue_command_without_event(cl::fill_buffer<float>(buffer, 0.5F, 0, 1024)); // 4096 bytes
template <class T>
class fill_buffer
    : public mero::internal::kept_pattern<fill_buffer_base, T, &fill_buffer_base::update_pattern_pointer> {
public:
    /// `offset` is in bytes and a multiple of `sizeof(T)`, `count` is in elements.
    fill_buffer(buffer& destination, T const& pattern, std::size_t offset, std::size_t count)
        : fill_buffer::kept_pattern(pattern, destination, nullptr, sizeof(T), offset, count) {}
};
#endif

} // namespace vorn::mero::VORN_MERO_NAMESPACE
