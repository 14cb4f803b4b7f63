// Buffers, images and pipes.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>

#include <vorn/mero/opencl/forward.hpp>
#include <vorn/mero/opencl/types.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// Root of the memory objects: one OpenCL reference to memory that devices use. They are made by a context, and have
/// neither equality nor order nor hash; compare raw handles where that is needed.
///
///     cl::buffer a = context.create_buffer(cl::mem_flags::read_write, bytes, nullptr);
///     cl::buffer same = a; // another reference to the same memory, no copy of it
///
/// The memory lives until the last reference is gone and the commands that use it are complete. Copying an object
/// retains, destroying one releases. Queries make two calls. OpenCL orders nothing between commands but by queues and
/// events: what two of them write at once is undefined.
class VORN_MERO_EXPORT memory_object : public mero::internal::owner<internal::memory_object_kind> {
public:
    using owner::owner;
    memory_object(memory_object const&) = default;
    memory_object(memory_object&&) noexcept = default;
    memory_object& operator=(memory_object const&) = default;
    memory_object& operator=(memory_object&&) noexcept = default;
    virtual ~memory_object();

    /// The flags that the object was made with, for a sub-buffer with what it has from its parent.
    mem_flags flags() const;

    /// In bytes; of an image the memory that it takes, which may be more than its pixels.
    std::size_t size() const;

    /// The host memory given with `mem_flags::use_host_ptr`, of a sub-buffer where its region begins in it; otherwise
    /// null, but that implementations of OpenCL 1.0 may give any pointer that the object was made with.
    void* host_ptr() const;

    /// The context of the object, on the same call handle.
    context get_context() const;
};

/// A buffer of bytes: `context::create_buffer`. Commands read, write, copy, fill and map it by offsets in bytes;
/// kernels take it as a pointer in the `__global` or `__constant` address space.
class VORN_MERO_EXPORT buffer : public memory_object {
public:
    using memory_object::memory_object;
};

#if VORN_MERO_OPENCL >= 110
/// A region of a buffer, for kernels and `migrate_mem_objects`: `context::create_sub_buffer`. Not a `buffer` itself: it
/// has no sub-buffers, and commands on buffers take its parent and an offset. What is written through two that overlap
/// at the same time is undefined. Since OpenCL 1.1.
class VORN_MERO_EXPORT sub_buffer : public memory_object {
public:
    using memory_object::memory_object;

    /// Where the region begins in its buffer, in bytes.
    std::size_t offset() const;

    /// The buffer that this is a region of; three calls.
    buffer parent_buffer();
};
#endif

/// Root of the images. Dimensions are in pixels, pitches and element sizes in bytes. A query that does not apply to the
/// image's shape gives whatever OpenCL reports.
///
/// Origins and regions of commands are three numbers, of unused dimensions 0 and 1: column, row, slice; in an array the
/// image's number takes the place after the last dimension. Kernels read and write pixels with the built-in functions;
/// how an image lies in memory is the device's secret, and a row pitch is that of the host's side.
class VORN_MERO_EXPORT image : public memory_object {
public:
    using memory_object::memory_object;

    /// The channels of an element, their order and their type.
    image_format get_image_format() const;

    /// Of one element, all its channels together.
    std::size_t element_size() const;

    /// From one row to the next.
    std::size_t row_pitch() const;

    /// From one slice, or one image of an array, to the next; 0 for an image without either.
    std::size_t slice_pitch() const;

    /// The pixels of a row.
    std::size_t width() const;

    /// 0 for a one-dimensional image.
    std::size_t height() const;

    /// 0 for any but a three-dimensional image.
    std::size_t depth() const;

#if VORN_MERO_OPENCL >= 120
    /// The images of an array, 0 for an image that is none. Since OpenCL 1.2.
    std::size_t array_size() const;

    // Both 0: this interface makes images without mip-maps and with one sample. Other values are those of images
    // adopted by `raw::create_image_2d` and the like. Since OpenCL 1.2.
    std::uint32_t num_mip_levels() const;
    std::uint32_t num_samples() const;
#endif
};

/// An image of rows of pixels: `context::create_image_2d`, `image2d_t` in kernels.
class VORN_MERO_EXPORT image_2d : public image {
public:
    using image::image;
};

/// An image of slices of rows of pixels: `context::create_image_3d`, `image3d_t` in kernels.
class VORN_MERO_EXPORT image_3d : public image {
public:
    using image::image;
};

#if VORN_MERO_OPENCL >= 120
/// An image of one row: `context::create_image_1d`, `image1d_t` in kernels. Since OpenCL 1.2.
class VORN_MERO_EXPORT image_1d : public image {
public:
    using image::image;
};

/// An image of one row over the store of a buffer, which is seen through both: `context::create_image_1d_buffer`,
/// `image1d_buffer_t` in kernels, read without a sampler. Since OpenCL 1.2.
class VORN_MERO_EXPORT image_1d_buffer : public image {
public:
    using image::image;
};

/// Many images of one row: `context::create_image_1d_array`, `image1d_array_t` in kernels. Since OpenCL 1.2.
class VORN_MERO_EXPORT image_1d_array : public image {
public:
    using image::image;
};

/// Many images of rows of pixels: `context::create_image_2d_array`, `image2d_array_t` in kernels. Since OpenCL 1.2.
class VORN_MERO_EXPORT image_2d_array : public image {
public:
    using image::image;
};
#endif

#if VORN_MERO_OPENCL >= 200
/// A queue of packets between kernels: `context::create_pipe`, `pipe` in kernels, which write it in one launch and read
/// it in another. The host can neither read nor write it. Since OpenCL 2.0.
class VORN_MERO_EXPORT pipe : public memory_object {
public:
    using memory_object::memory_object;

    /// In bytes.
    std::uint32_t packet_size() const;

    /// The most packets that the pipe can hold.
    std::uint32_t max_packets() const;
};
#endif

namespace internal {

/// The image formats that a context supports for a kind of image and a use of it, maybe none.
VORN_MERO_EXPORT std::vector<image_format>
get_image_formats(nq::call_handle const& call_handle, _nq_cl_context* context, mem_flags flags, mem_object_type type);

} // namespace internal

namespace raw {

/// Null for an object that was moved from.
VORN_MERO_EXPORT _nq_cl_mem* get_raw_memory_object(memory_object const& object) noexcept;
VORN_MERO_EXPORT nq::call_handle const& get_call_handle(memory_object const& object) noexcept;

/// Adds a reference that the caller has to release.
VORN_MERO_EXPORT void retain(memory_object const& object);

/// A status other than success is thrown as `common::bad_implementation`.
VORN_MERO_EXPORT void release(memory_object const& object);

/// OpenCL's count, which may have changed by the time that it is read.
VORN_MERO_EXPORT std::uint32_t refcount(memory_object const& object);

// Each retains: the caller keeps its own reference. That the handle is of this kind is not looked at; a wrong one is
// refused where it is used.
VORN_MERO_EXPORT buffer create_buffer(nq::call_handle const& call_handle, _nq_cl_mem* handle);
VORN_MERO_EXPORT image_2d create_image_2d(nq::call_handle const& call_handle, _nq_cl_mem* handle);
VORN_MERO_EXPORT image_3d create_image3d(nq::call_handle const& call_handle, _nq_cl_mem* handle);

#if VORN_MERO_OPENCL >= 110
VORN_MERO_EXPORT sub_buffer create_sub_buffer(nq::call_handle const& call_handle, _nq_cl_mem* handle);
#endif

#if VORN_MERO_OPENCL >= 120
VORN_MERO_EXPORT image_1d create_image_1d(nq::call_handle const& call_handle, _nq_cl_mem* handle);
VORN_MERO_EXPORT image_1d_buffer create_image_1d_buffer(nq::call_handle const& call_handle, _nq_cl_mem* handle);
VORN_MERO_EXPORT image_1d_array create_image_1d_array(nq::call_handle const& call_handle, _nq_cl_mem* handle);
VORN_MERO_EXPORT image_2d_array create_image_2d_array(nq::call_handle const& call_handle, _nq_cl_mem* handle);
#endif

#if VORN_MERO_OPENCL >= 200
VORN_MERO_EXPORT pipe create_pipe(nq::call_handle const& call_handle, _nq_cl_mem* handle);
#endif

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE
