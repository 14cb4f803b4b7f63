// Buffers, images and pipes.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl.hpp>
#endif
#ifdef VORN_MERO_OPENCL

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// Root of the memory objects: one OpenCL reference to memory that devices use. Made by a context. Memory objects have
/// no equality, order or hash; compare raw handles if needed.
///
///     cl::buffer a = context.create_buffer(cl::mem_flags::read_write, bytes, nullptr);
///     cl::buffer same = a; // another reference to the same memory, no copy of it
///
/// The memory lives until the last reference is gone and the commands that use it are complete. Copying an object
/// retains, destroying one releases. Queries make two calls; those that return an object make another to retain it.
/// Thread-safe. Only queues and events order commands: the result of two commands that write the same bytes at the same
/// time is undefined.
class VORN_MERO_EXPORT memory_object : public mero::internal::owner<internal::memory_object_kind> {
public:
    using owner::owner;
    memory_object(memory_object const&) = default;
    memory_object(memory_object&&) noexcept = default;
    memory_object& operator=(memory_object const&) = default;
    memory_object& operator=(memory_object&&) noexcept = default;
    virtual ~memory_object() = default;

    /// The flags that the object was made with; for a sub-buffer, including those inherited from its parent.
    [[nodiscard]] mem_flags flags() const;

    /// In bytes. An image may use more memory than its pixels.
    [[nodiscard]] std::size_t size() const;

    /// The host memory given with `mem_flags::use_host_ptr`, for a sub-buffer the start of its region there; otherwise
    /// null. Implementations of OpenCL 1.0 may return any pointer that the object was made with.
    [[nodiscard]] void* host_ptr() const;

    /// The context of the object, on the same call handle.
    [[nodiscard]] context get_context() const;
};

/// A buffer of bytes. Made by `context::create_buffer`. Commands read, write, copy, fill and map it at offsets in
/// bytes; a kernel takes it as a `__global` or `__constant` pointer.
class VORN_MERO_EXPORT buffer : public memory_object {
public:
    using memory_object::memory_object;
};

#if VORN_MERO_OPENCL >= 110
/// A region of a buffer, for kernels and `migrate_mem_objects`. Made by `context::create_sub_buffer`. It is not a
/// `buffer`: it has no sub-buffers, and commands on buffers take its parent and an offset. The result of writes through
/// two overlapping regions at the same time is undefined. Since OpenCL 1.1.
class VORN_MERO_EXPORT sub_buffer : public memory_object {
public:
    using memory_object::memory_object;

    /// Where the region starts in its buffer, in bytes.
    [[nodiscard]] std::size_t offset() const;

    /// The buffer that contains the region. Three calls.
    [[nodiscard]] buffer parent_buffer();
};
#endif

/// Root of the images. Dimensions are in pixels, pitches and element sizes in bytes. A query that does not apply to the
/// image's shape returns whatever OpenCL reports.
///
/// Commands take origins as column, row and slice, and regions as width, height and depth. A dimension that the image
/// lacks has origin 0 and region 1; in an array the image's number comes after the last dimension. Kernels read and
/// write pixels with the built-in functions. The layout on the device is unspecified; pitches describe host memory.
class VORN_MERO_EXPORT image : public memory_object {
public:
    using memory_object::memory_object;

    /// The order and the type of the channels.
    [[nodiscard]] image_format get_image_format() const;

    /// The size of one pixel, all its channels together, in bytes.
    [[nodiscard]] std::size_t element_size() const;

    /// From one row to the next, in bytes.
    [[nodiscard]] std::size_t row_pitch() const;

    /// From one slice, or one image of an array, to the next, in bytes. For other images it should be 0; rusticl
    /// returns the size of a two-dimensional image.
    [[nodiscard]] std::size_t slice_pitch() const;

    /// In pixels.
    [[nodiscard]] std::size_t width() const;

    /// In pixels; 0 for a one-dimensional image.
    [[nodiscard]] std::size_t height() const;

    /// In pixels; 0 unless the image has three dimensions.
    [[nodiscard]] std::size_t depth() const;

#if VORN_MERO_OPENCL >= 120
    /// The number of images in an array, 0 if the image is no array. Since OpenCL 1.2.
    [[nodiscard]] std::size_t array_size() const;

    /// 0 for images made by a `context`: it makes none with mip-maps. An image wrapped by `raw::create_image_2d` may
    /// have some. Since OpenCL 1.2.
    [[nodiscard]] std::uint32_t num_mip_levels() const;

    /// 0 for images made by a `context`: it makes none with several samples. An image wrapped by `raw::create_image_2d`
    /// may have some. Since OpenCL 1.2.
    [[nodiscard]] std::uint32_t num_samples() const;
#endif
};

/// A two-dimensional image. Made by `context::create_image_2d`; `image2d_t` in kernels.
class VORN_MERO_EXPORT image_2d : public image {
public:
    using image::image;
};

/// A three-dimensional image. Made by `context::create_image_3d`; `image3d_t` in kernels.
class VORN_MERO_EXPORT image_3d : public image {
public:
    using image::image;
};

#if VORN_MERO_OPENCL >= 120
/// A one-dimensional image. Made by `context::create_image_1d`; `image1d_t` in kernels. Since OpenCL 1.2.
class VORN_MERO_EXPORT image_1d : public image {
public:
    using image::image;
};

/// A one-dimensional image that shares the memory of a buffer. Made by `context::create_image_1d_buffer`;
/// `image1d_buffer_t` in kernels, read without a sampler. Since OpenCL 1.2.
class VORN_MERO_EXPORT image_1d_buffer : public image {
public:
    using image::image;
};

/// An array of one-dimensional images. Made by `context::create_image_1d_array`; `image1d_array_t` in kernels. Since
/// OpenCL 1.2.
class VORN_MERO_EXPORT image_1d_array : public image {
public:
    using image::image;
};

/// An array of two-dimensional images. Made by `context::create_image_2d_array`; `image2d_array_t` in kernels. Since
/// OpenCL 1.2.
class VORN_MERO_EXPORT image_2d_array : public image {
public:
    using image::image;
};
#endif

#if VORN_MERO_OPENCL >= 200
/// A queue of packets between kernels. Made by `context::create_pipe`; `pipe` in kernels, which write it in one launch
/// and read it in another. The host can neither read nor write it. Since OpenCL 2.0.
class VORN_MERO_EXPORT pipe : public memory_object {
public:
    using memory_object::memory_object;

    /// The size of a packet in bytes.
    [[nodiscard]] std::uint32_t packet_size() const;

    /// The most packets that the pipe can hold.
    [[nodiscard]] std::uint32_t max_packets() const;
};
#endif

namespace internal {

/// The image formats that a context supports for a kind of image and its flags, perhaps none. Two calls, or one if
/// there is none.
[[nodiscard]] VORN_MERO_EXPORT std::vector<image_format>
get_image_formats(nq::call_handle const& call_handle, _nq_cl_context* context, mem_flags flags, mem_object_type type);

} // namespace internal

namespace raw {

/// The raw handle, null if the object was moved from.
[[nodiscard]] VORN_MERO_EXPORT _nq_cl_mem*
get_raw_memory_object(memory_object const& object VORN_MERO_LIFETIMEBOUND) noexcept;

/// The call handle of the object.
[[nodiscard]] VORN_MERO_EXPORT nq::call_handle const&
get_call_handle(memory_object const& object VORN_MERO_LIFETIMEBOUND) noexcept;

/// Adds a reference that the caller must release.
VORN_MERO_EXPORT void retain(memory_object const& object);

/// Drops a reference that the caller holds. Throws `common::bad_implementation` when OpenCL refuses.
VORN_MERO_EXPORT void release(memory_object const& object);

/// OpenCL's reference count, which may be outdated at once.
[[nodiscard]] VORN_MERO_EXPORT std::uint32_t refcount(memory_object const& object);

/// Wraps a raw handle of a buffer and retains it: the caller keeps its own reference. The kind of the handle is not
/// checked here; OpenCL may refuse a wrong one where it is used.
[[nodiscard]] VORN_MERO_EXPORT buffer create_buffer(nq::call_handle const& call_handle, _nq_cl_mem* handle);

/// Wraps a raw handle of a two-dimensional image; otherwise as `create_buffer`.
[[nodiscard]] VORN_MERO_EXPORT image_2d create_image_2d(nq::call_handle const& call_handle, _nq_cl_mem* handle);

/// Wraps a raw handle of a three-dimensional image; otherwise as `create_buffer`. Mind the spelling.
[[nodiscard]] VORN_MERO_EXPORT image_3d create_image3d(nq::call_handle const& call_handle, _nq_cl_mem* handle);

#if VORN_MERO_OPENCL >= 110
/// Wraps a raw handle of a sub-buffer; otherwise as `create_buffer`. Since OpenCL 1.1.
[[nodiscard]] VORN_MERO_EXPORT sub_buffer create_sub_buffer(nq::call_handle const& call_handle, _nq_cl_mem* handle);
#endif

#if VORN_MERO_OPENCL >= 120
/// Wraps a raw handle of a one-dimensional image; otherwise as `create_buffer`. Since OpenCL 1.2.
[[nodiscard]] VORN_MERO_EXPORT image_1d create_image_1d(nq::call_handle const& call_handle, _nq_cl_mem* handle);

/// Wraps a raw handle of a one-dimensional image over a buffer; otherwise as `create_buffer`. Since OpenCL 1.2.
[[nodiscard]] VORN_MERO_EXPORT image_1d_buffer create_image_1d_buffer(nq::call_handle const& call_handle,
                                                                      _nq_cl_mem* handle);

/// Wraps a raw handle of an array of one-dimensional images; otherwise as `create_buffer`. Since OpenCL 1.2.
[[nodiscard]] VORN_MERO_EXPORT image_1d_array create_image_1d_array(nq::call_handle const& call_handle,
                                                                    _nq_cl_mem* handle);

/// Wraps a raw handle of an array of two-dimensional images; otherwise as `create_buffer`. Since OpenCL 1.2.
[[nodiscard]] VORN_MERO_EXPORT image_2d_array create_image_2d_array(nq::call_handle const& call_handle,
                                                                    _nq_cl_mem* handle);
#endif

#if VORN_MERO_OPENCL >= 200
/// Wraps a raw handle of a pipe; otherwise as `create_buffer`. Since OpenCL 2.0.
[[nodiscard]] VORN_MERO_EXPORT pipe create_pipe(nq::call_handle const& call_handle, _nq_cl_mem* handle);
#endif

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE

#endif
