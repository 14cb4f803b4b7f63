// Commands on buffers, and on any memory object.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl.hpp>
#endif
#ifdef VORN_MERO_OPENCL

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// Copies from a buffer to the host.
///
///     std::vector<float> values(1024);
///     queue.enqueue_command_without_event(
///         cl::read_buffer(buffer, true, 0, values.size() * sizeof(float), values.data()));
class VORN_MERO_EXPORT read_buffer : public command {
public:
    /// Copies `size` bytes from `offset`. If `blocking`, enqueueing returns when the copy is complete. Otherwise
    /// `destination` must live, and the program must not use it, until the event is complete. Enqueueing throws
    /// `common::invalid_value` for a region outside the buffer or a null `destination`, `common::invalid_operation` if
    /// the buffer's flags forbid the host to read.
    read_buffer(buffer const& source VORN_MERO_LIFETIMEBOUND, bool blocking, std::size_t offset, std::size_t size,
                void* destination VORN_MERO_LIFETIMEBOUND)
        : source_(mero::internal::owner_access::raw(source)), blocking_(blocking), offset_(offset), size_(size),
          destination_(destination) {}
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
    /// Copies `size` bytes to `offset`. If `blocking`, the program may change `source` when enqueueing returns,
    /// although the event may complete a moment later; otherwise only when the event is complete. Throws as
    /// `read_buffer`.
    write_buffer(buffer& destination VORN_MERO_LIFETIMEBOUND, bool blocking, std::size_t offset, std::size_t size,
                 void const* source VORN_MERO_LIFETIMEBOUND)
        : destination_(mero::internal::owner_access::raw(destination)), blocking_(blocking), offset_(offset),
          size_(size), source_(source) {}
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
    /// Copies `size` bytes; some implementations refuse 0. Enqueueing throws `common::mem_copy_overlap` if the regions
    /// overlap in one buffer, `common::invalid_value` for a region outside its buffer.
    copy_buffer(buffer const& source VORN_MERO_LIFETIMEBOUND, buffer& destination VORN_MERO_LIFETIMEBOUND,
                std::size_t source_offset, std::size_t destination_offset, std::size_t size)
        : source_(mero::internal::owner_access::raw(source)),
          destination_(mero::internal::owner_access::raw(destination)), source_offset_(source_offset),
          destination_offset_(destination_offset), size_(size) {}
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_mem* source_;
    _nq_cl_mem* destination_;
    std::size_t source_offset_;
    std::size_t destination_offset_;
    std::size_t size_;
};

/// Maps a region of a buffer into host memory; without a copy where device and host share memory.
///
///     void* mapped = nullptr;
///     queue.enqueue_command_without_event(
///         cl::map_buffer(mapped, buffer, true, cl::map_flags::read | cl::map_flags::write, 0, bytes));
///     static_cast<float*>(mapped)[0] = 1.0F;
///     queue.enqueue_command_without_event(cl::unmap_mem_object(buffer, mapped));
///
/// Enqueueing stores the address in `mapped`, which must live until then; if it throws, `mapped` is unchanged. End each
/// mapping with an `unmap_mem_object`. Until then no kernel may write the region, nor read it if it is mapped for
/// writing.
class VORN_MERO_EXPORT map_buffer : public command {
public:
    /// Maps `size` bytes from `offset`. Unless `blocking`, the host may use them when the event is complete. Enqueueing
    /// throws `common::map_failure` if the region cannot be mapped, `common::invalid_value` for a region outside the
    /// buffer.
    map_buffer(void*& mapped VORN_MERO_LIFETIMEBOUND, buffer& source VORN_MERO_LIFETIMEBOUND, bool blocking,
               map_flags flags, std::size_t offset, std::size_t size)
        : mapped_(&mapped), source_(mero::internal::owner_access::raw(source)), blocking_(blocking), flags_(flags),
          offset_(offset), size_(size) {}
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

/// Ends a mapping by `map_buffer` or `map_image`. Later commands see what the host wrote through it.
class VORN_MERO_EXPORT unmap_mem_object : public command {
public:
    /// `mapped` is the address from the map command; the program must not use it once this is enqueued. Enqueueing
    /// throws `common::invalid_value` for another address.
    unmap_mem_object(memory_object const& object VORN_MERO_LIFETIMEBOUND, void* mapped VORN_MERO_LIFETIMEBOUND)
        : object_(mero::internal::owner_access::raw(object)), mapped_(mapped) {}
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_mem* object_;
    void* mapped_;
};

#if VORN_MERO_OPENCL >= 110
/// Copies a box from a buffer to the host: many rows, in one command.
///
///     // 16 rows of 64 bytes, out of rows of 1024 bytes, tightly packed into `tile`
///     queue.enqueue_command_without_event(
///         cl::read_buffer_rect(buffer, true, {128, 32, 0}, {0, 0, 0}, {64, 16, 1}, 1024, 0, 0, 0, tile));
///
/// Origins and regions are {bytes, rows, slices}; a region of fewer dimensions has 1 in the others. A pitch is the
/// bytes from row to row or from slice to slice; 0 means tightly packed. Another pitch must be at least as large as the
/// region's row or slice. Some implementations do not check the end of the memory. Since OpenCL 1.1.
class VORN_MERO_EXPORT read_buffer_rect : public command {
public:
    /// Copies to `host_origin` in the memory at `destination`. Otherwise as `read_buffer`.
    read_buffer_rect(buffer const& source VORN_MERO_LIFETIMEBOUND, bool blocking,
                     std::array<std::size_t, 3> buffer_origin, std::array<std::size_t, 3> host_origin,
                     std::array<std::size_t, 3> region, std::size_t buffer_row_pitch, std::size_t buffer_slice_pitch,
                     std::size_t host_row_pitch, std::size_t host_slice_pitch,
                     void* destination VORN_MERO_LIFETIMEBOUND)
        : source_(mero::internal::owner_access::raw(source)), blocking_(blocking), buffer_origin_(buffer_origin),
          host_origin_(host_origin), region_(region), buffer_row_pitch_(buffer_row_pitch),
          buffer_slice_pitch_(buffer_slice_pitch), host_row_pitch_(host_row_pitch), host_slice_pitch_(host_slice_pitch),
          destination_(destination) {}
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

/// Copies a box from the host to a buffer. Origins, region and pitches are as in `read_buffer_rect`. Since OpenCL 1.1.
class VORN_MERO_EXPORT write_buffer_rect : public command {
public:
    /// Copies from `host_origin` in the memory at `source`. Otherwise as `write_buffer`.
    write_buffer_rect(buffer& destination VORN_MERO_LIFETIMEBOUND, bool blocking,
                      std::array<std::size_t, 3> buffer_origin, std::array<std::size_t, 3> host_origin,
                      std::array<std::size_t, 3> region, std::size_t buffer_row_pitch, std::size_t buffer_slice_pitch,
                      std::size_t host_row_pitch, std::size_t host_slice_pitch,
                      void const* source VORN_MERO_LIFETIMEBOUND)
        : destination_(mero::internal::owner_access::raw(destination)), blocking_(blocking),
          buffer_origin_(buffer_origin), host_origin_(host_origin), region_(region),
          buffer_row_pitch_(buffer_row_pitch), buffer_slice_pitch_(buffer_slice_pitch), host_row_pitch_(host_row_pitch),
          host_slice_pitch_(host_slice_pitch), source_(source) {}
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

/// Copies a box between buffers, or within one. Origins, region and pitches are as in `read_buffer_rect`. Since
/// OpenCL 1.1.
class VORN_MERO_EXPORT copy_buffer_rect : public command {
public:
    /// Within one buffer, source and destination pitches must be equal. Enqueueing throws `common::mem_copy_overlap` if
    /// the boxes overlap in one buffer, `common::invalid_value` for a box outside its buffer.
    copy_buffer_rect(buffer const& source VORN_MERO_LIFETIMEBOUND, buffer& destination VORN_MERO_LIFETIMEBOUND,
                     std::array<std::size_t, 3> source_origin, std::array<std::size_t, 3> destination_origin,
                     std::array<std::size_t, 3> region, std::size_t source_row_pitch, std::size_t source_slice_pitch,
                     std::size_t destination_row_pitch, std::size_t destination_slice_pitch)
        : source_(mero::internal::owner_access::raw(source)),
          destination_(mero::internal::owner_access::raw(destination)), source_origin_(source_origin),
          destination_origin_(destination_origin), region_(region), source_row_pitch_(source_row_pitch),
          source_slice_pitch_(source_slice_pitch), destination_row_pitch_(destination_row_pitch),
          destination_slice_pitch_(destination_slice_pitch) {}
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
/// Fills a region of a buffer with a pattern that the caller owns: it must be there at each enqueueing. `fill_buffer`
/// and `fill_buffer_bytes` hold the pattern themselves. Since OpenCL 1.2.
class VORN_MERO_EXPORT fill_buffer_base : public command {
public:
    /// `pattern_size` is a power of two from 1 to 128 bytes; `offset`, in bytes, is a multiple of it. `count` is in
    /// patterns, not bytes. Otherwise enqueueing throws `common::invalid_value`.
    fill_buffer_base(buffer& destination VORN_MERO_LIFETIMEBOUND, void const* pattern VORN_MERO_LIFETIMEBOUND,
                     std::size_t pattern_size, std::size_t offset, std::size_t count)
        : destination_(mero::internal::owner_access::raw(destination)), pattern_(pattern), pattern_size_(pattern_size),
          offset_(offset), count_(count) {}

    /// Sets the address of the pattern for later enqueueings. Must not run while another thread enqueues this object.
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

/// Fills a region of a buffer with a pattern that the command holds. Copying the command copies the pattern. Since
/// OpenCL 1.2.
class VORN_MERO_EXPORT fill_buffer_bytes : public command {
public:
    /// The size of the pattern is a power of two from 1 to 128 bytes; `offset`, in bytes, is a multiple of it. `count`
    /// is in patterns. Otherwise, and for an empty pattern, enqueueing throws `common::invalid_value`.
    fill_buffer_bytes(buffer& destination VORN_MERO_LIFETIMEBOUND, std::vector<unsigned char> const& pattern,
                      std::size_t offset, std::size_t count);
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_mem* destination_;
    std::vector<unsigned char> pattern_;
    std::size_t offset_;
    std::size_t count_;
};

/// Moves memory objects to the device of the queue, or to the host, ahead of the commands that use them. Their content
/// stays, unless `migration_flags::content_undefined` is given. Since OpenCL 1.2.
class VORN_MERO_EXPORT migrate_mem_objects : public command {
public:
    /// Copies the list of raw handles, see `raw::get_raw_memory_object`; the objects must live until the command has
    /// been enqueued. For an empty list enqueueing throws `common::invalid_value`.
    migrate_mem_objects(std::vector<_nq_cl_mem*> const& objects, migration_flags flags);
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    std::vector<_nq_cl_mem*> objects_;
    migration_flags flags_;
};

/// Fills a region of a buffer with copies of an element that the command holds. `T` has the size of an OpenCL scalar or
/// vector. Since OpenCL 1.2.
///
///     queue.enqueue_command_without_event(cl::fill_buffer<float>(buffer, 0.5F, 0, 1024)); // 4096 bytes
template <class T>
class fill_buffer
    : public mero::internal::kept_pattern<fill_buffer_base, T, &fill_buffer_base::update_pattern_pointer> {
public:
    /// `offset` is in bytes and a multiple of `sizeof(T)`; `count` is in elements.
    fill_buffer(buffer& destination VORN_MERO_LIFETIMEBOUND, T const& pattern, std::size_t offset, std::size_t count)
        : fill_buffer::kept_pattern(pattern, destination, nullptr, sizeof(T), offset, count) {}
};
#endif

} // namespace vorn::mero::VORN_MERO_NAMESPACE

#endif
