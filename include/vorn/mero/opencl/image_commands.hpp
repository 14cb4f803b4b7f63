// Commands on images. An origin is {column, row, slice}, a region {width, height, depth}, all in pixels. A dimension
// that the image lacks has origin 0 and region 1. In an array the image's number comes after the last dimension:
// {column, image, 0} for one-dimensional images, {column, row, image} for two-dimensional ones.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl.hpp>
#endif
#ifdef VORN_MERO_OPENCL

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// Copies a box from an image to the host. A box is given by its origin and region, see `image`.
///
///     std::vector<std::uint32_t> pixels(640 * 480); // of an image of four channels of 8 bits
///     queue.enqueue_command_without_event(
///         cl::read_image(image, true, {0, 0, 0}, {640, 480, 1}, 0, 0, pixels.data()));
///
/// Pitches are those of the host's memory, in bytes from row to row and from slice to slice; 0 means tightly packed.
class VORN_MERO_EXPORT read_image : public command {
public:
    /// If `blocking`, enqueueing returns when the copy is complete. Otherwise `destination` must live, and the program
    /// must not use it, until the event is complete. Enqueueing throws `common::invalid_value` for a box outside the
    /// image or a pitch too small, `common::invalid_operation` if the image's flags forbid the host to read or the
    /// device has no images.
    read_image(image const& source VORN_MERO_LIFETIMEBOUND, bool blocking, std::array<std::size_t, 3> origin,
               std::array<std::size_t, 3> region, std::size_t row_pitch, std::size_t slice_pitch,
               void* destination VORN_MERO_LIFETIMEBOUND)
        : source_(mero::internal::owner_access::raw(source)), blocking_(blocking), origin_(origin), region_(region),
          row_pitch_(row_pitch), slice_pitch_(slice_pitch), destination_(destination) {}
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_mem* source_;
    bool blocking_;
    std::array<std::size_t, 3> origin_;
    std::array<std::size_t, 3> region_;
    std::size_t row_pitch_;
    std::size_t slice_pitch_;
    void* destination_;
};

/// Copies a box from the host to an image. Pitches are as in `read_image`.
class VORN_MERO_EXPORT write_image : public command {
public:
    /// If `blocking`, the program may change `source` when enqueueing returns; otherwise only when the event is
    /// complete. Throws as `read_image`.
    write_image(image& destination VORN_MERO_LIFETIMEBOUND, bool blocking, std::array<std::size_t, 3> origin,
                std::array<std::size_t, 3> region, std::size_t input_row_pitch, std::size_t input_slice_pitch,
                void const* source VORN_MERO_LIFETIMEBOUND)
        : destination_(mero::internal::owner_access::raw(destination)), blocking_(blocking), origin_(origin),
          region_(region), input_row_pitch_(input_row_pitch), input_slice_pitch_(input_slice_pitch), source_(source) {}
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_mem* destination_;
    bool blocking_;
    std::array<std::size_t, 3> origin_;
    std::array<std::size_t, 3> region_;
    std::size_t input_row_pitch_;
    std::size_t input_slice_pitch_;
    void const* source_;
};

/// Copies a box between images of the same format. Their shapes may differ, for instance to copy a slice of a
/// three-dimensional image to a two-dimensional one.
class VORN_MERO_EXPORT copy_image : public command {
public:
    /// Enqueueing throws `common::image_format_mismatch` if the formats differ, `common::mem_copy_overlap` if the boxes
    /// overlap in one image, `common::invalid_value` for a box outside its image.
    copy_image(image const& source VORN_MERO_LIFETIMEBOUND, image& destination VORN_MERO_LIFETIMEBOUND,
               std::array<std::size_t, 3> source_origin, std::array<std::size_t, 3> destination_origin,
               std::array<std::size_t, 3> region)
        : source_(mero::internal::owner_access::raw(source)),
          destination_(mero::internal::owner_access::raw(destination)), source_origin_(source_origin),
          destination_origin_(destination_origin), region_(region) {}
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_mem* source_;
    _nq_cl_mem* destination_;
    std::array<std::size_t, 3> source_origin_;
    std::array<std::size_t, 3> destination_origin_;
    std::array<std::size_t, 3> region_;
};

/// Copies a box of an image to a buffer, tightly packed: the pixels of the region times `image::element_size` bytes.
class VORN_MERO_EXPORT copy_image_to_buffer : public command {
public:
    /// `destination_offset` is in bytes. Enqueueing throws `common::invalid_value` for a region outside its object.
    copy_image_to_buffer(image const& source VORN_MERO_LIFETIMEBOUND, buffer& destination VORN_MERO_LIFETIMEBOUND,
                         std::array<std::size_t, 3> source_origin, std::array<std::size_t, 3> region,
                         std::size_t destination_offset)
        : source_(mero::internal::owner_access::raw(source)),
          destination_(mero::internal::owner_access::raw(destination)), source_origin_(source_origin), region_(region),
          destination_offset_(destination_offset) {}
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_mem* source_;
    _nq_cl_mem* destination_;
    std::array<std::size_t, 3> source_origin_;
    std::array<std::size_t, 3> region_;
    std::size_t destination_offset_;
};

/// Copies tightly packed pixels from a buffer to a box of an image: the pixels of the region times
/// `image::element_size` bytes.
class VORN_MERO_EXPORT copy_buffer_to_image : public command {
public:
    /// `source_offset` is in bytes. Enqueueing throws `common::invalid_value` for a region outside its object.
    copy_buffer_to_image(buffer const& source VORN_MERO_LIFETIMEBOUND, image& destination VORN_MERO_LIFETIMEBOUND,
                         std::size_t source_offset, std::array<std::size_t, 3> destination_origin,
                         std::array<std::size_t, 3> region)
        : source_(mero::internal::owner_access::raw(source)),
          destination_(mero::internal::owner_access::raw(destination)), source_offset_(source_offset),
          destination_origin_(destination_origin), region_(region) {}
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_mem* source_;
    _nq_cl_mem* destination_;
    std::size_t source_offset_;
    std::array<std::size_t, 3> destination_origin_;
    std::array<std::size_t, 3> region_;
};

/// Maps a box of an image into the host's memory.
///
///     void* mapped = nullptr;
///     std::size_t row_pitch = 0, slice_pitch = 0;
///     queue.enqueue_command_without_event(cl::map_image(mapped, image, true, cl::map_flags::read, {0, 0, 0},
///                                                       {640, 480, 1}, row_pitch, slice_pitch));
///     auto const* third_row = static_cast<unsigned char const*>(mapped) + 2 * row_pitch;
///
/// Enqueueing stores the address in `mapped`, and the pitches in bytes in `row_pitch` and `slice_pitch`; all three must
/// live until then. If it throws, `mapped` is unchanged. Some implementations do not write a pitch that the image does
/// not need. End each mapping with an `unmap_mem_object`.
class VORN_MERO_EXPORT map_image : public command {
public:
    /// Unless `blocking`, the host may use the memory when the event is complete. Enqueueing throws
    /// `common::map_failure` if the box cannot be mapped, `common::invalid_value` for a box outside the image.
    map_image(void*& mapped VORN_MERO_LIFETIMEBOUND, image& source VORN_MERO_LIFETIMEBOUND, bool blocking,
              map_flags flags, std::array<std::size_t, 3> origin, std::array<std::size_t, 3> region,
              std::size_t& row_pitch VORN_MERO_LIFETIMEBOUND, std::size_t& slice_pitch VORN_MERO_LIFETIMEBOUND)
        : mapped_(&mapped), source_(mero::internal::owner_access::raw(source)), blocking_(blocking), flags_(flags),
          origin_(origin), region_(region), row_pitch_(&row_pitch), slice_pitch_(&slice_pitch) {}
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    void** mapped_;
    _nq_cl_mem* source_;
    bool blocking_;
    map_flags flags_;
    std::array<std::size_t, 3> origin_;
    std::array<std::size_t, 3> region_;
    std::size_t* row_pitch_;
    std::size_t* slice_pitch_;
};

#if VORN_MERO_OPENCL >= 120
/// Fills a box of an image with a colour that the caller owns: it must be there at each enqueueing. The colour is four
/// values of 32 bits: floating-point, signed or unsigned, as the image's format requires. Since OpenCL 1.2.
class VORN_MERO_EXPORT fill_image_base : public command {
public:
    /// The colour is red, green, blue and alpha in this order, whatever the order of the channels. For a depth image it
    /// is one floating-point value.
    fill_image_base(image& destination VORN_MERO_LIFETIMEBOUND, void const* fill_color VORN_MERO_LIFETIMEBOUND,
                    std::array<std::size_t, 3> origin, std::array<std::size_t, 3> region)
        : destination_(mero::internal::owner_access::raw(destination)), fill_color_(fill_color), origin_(origin),
          region_(region) {}

    /// Sets the address of the colour for later enqueueings. Must not run while another thread enqueues this object.
    void update_fill_color_pointer(void const* fill_color) noexcept { fill_color_ = fill_color; }

    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_mem* destination_;
    void const* fill_color_;
    std::array<std::size_t, 3> origin_;
    std::array<std::size_t, 3> region_;
};

/// Fills a box of an image with a colour that the command holds. `Channel` is `float` for normalized and floating-point
/// formats, `std::int32_t` for signed and `std::uint32_t` for unsigned ones. Since OpenCL 1.2.
///
///     std::array<float, 4> const orange{1.0F, 0.5F, 0.0F, 1.0F};
///     queue.enqueue_command_without_event(cl::fill_image<float>(image, orange, {0, 0, 0}, {640, 480, 1}));
template <class Channel>
class fill_image : public mero::internal::kept_pattern<fill_image_base, std::array<Channel, 4>,
                                                       &fill_image_base::update_fill_color_pointer> {
public:
    /// The colour is red, green, blue and alpha, in this order.
    fill_image(image& destination VORN_MERO_LIFETIMEBOUND, std::array<Channel, 4> color,
               std::array<std::size_t, 3> origin, std::array<std::size_t, 3> region)
        : fill_image::kept_pattern(color, destination, nullptr, origin, region) {}

private:
    static_assert(std::is_same_v<Channel, float> || std::is_same_v<Channel, std::int32_t> ||
                      std::is_same_v<Channel, std::uint32_t>,
                  "OpenCL's fill colours are four float, int or unsigned int values");
};
#endif

} // namespace vorn::mero::VORN_MERO_NAMESPACE

#endif
