// Buffers, images and pipes.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>

#include <vorn/mero/opencl/forward.hpp>
#include <vorn/mero/opencl/types.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// Root of the memory objects. They are made by a context, and have neither equality nor order nor hash.
class VORN_MERO_EXPORT memory_object : public mero::internal::owner<internal::memory_object_kind> {
public:
    using owner::owner;
    memory_object(memory_object const&) = default;
    memory_object(memory_object&&) noexcept = default;
    memory_object& operator=(memory_object const&) = default;
    memory_object& operator=(memory_object&&) noexcept = default;
    virtual ~memory_object();

    /// The flags that the object was made with.
    mem_flags flags() const;

    /// In bytes.
    std::size_t size() const;

    /// The host memory that the object was made with, null when there was none.
    void* host_ptr() const;

    /// The context of the object, on the same call handle.
    context get_context() const;
};

/// A buffer of bytes.
class VORN_MERO_EXPORT buffer : public memory_object {
public:
    using memory_object::memory_object;
};

#if VORN_MERO_OPENCL >= 110
/// A region of a buffer. Not a `buffer` itself: it has no sub-buffers. Since OpenCL 1.1.
class VORN_MERO_EXPORT sub_buffer : public memory_object {
public:
    using memory_object::memory_object;

    /// Where the region begins in its buffer, in bytes.
    std::size_t offset() const;

    /// The buffer that this is a region of.
    buffer parent_buffer();
};
#endif

/// Root of the images. Dimensions are in pixels, pitches and element sizes in bytes. A query that does not apply to the
/// image's shape gives whatever OpenCL reports.
class VORN_MERO_EXPORT image : public memory_object {
public:
    using memory_object::memory_object;

    /// The channels of an element, their order and their type.
    image_format get_image_format() const;

    /// Of one element, all its channels together.
    std::size_t element_size() const;

    /// From one row to the next.
    std::size_t row_pitch() const;

    /// From one slice, or one image of an array, to the next.
    std::size_t slice_pitch() const;
    std::size_t width() const;

    /// 0 for a one-dimensional image.
    std::size_t height() const;

    /// 0 for any but a three-dimensional image.
    std::size_t depth() const;

#if VORN_MERO_OPENCL >= 120
    /// In images. Since OpenCL 1.2.
    std::size_t array_size() const;
    std::uint32_t num_mip_levels() const;
    std::uint32_t num_samples() const;
#endif
};

/// An image of rows of pixels.
class VORN_MERO_EXPORT image_2d : public image {
public:
    using image::image;
};

/// An image of slices of rows of pixels.
class VORN_MERO_EXPORT image_3d : public image {
public:
    using image::image;
};

#if VORN_MERO_OPENCL >= 120
/// Since OpenCL 1.2.
class VORN_MERO_EXPORT image_1d : public image {
public:
    using image::image;
};

/// A one-dimensional image over the store of a buffer. Since OpenCL 1.2.
class VORN_MERO_EXPORT image_1d_buffer : public image {
public:
    using image::image;
};

/// Since OpenCL 1.2.
class VORN_MERO_EXPORT image_1d_array : public image {
public:
    using image::image;
};

/// Since OpenCL 1.2.
class VORN_MERO_EXPORT image_2d_array : public image {
public:
    using image::image;
};
#endif

#if VORN_MERO_OPENCL >= 200
/// A queue of packets between kernels. Since OpenCL 2.0.
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

// Each retains: the caller keeps its own reference.
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
