// The commands on images. An origin is column, row and slice, a region width, height and depth, all in pixels; a
// dimension that the image lacks has origin 0 and region 1, and in an array the number of the image takes its place:
// {column, image, 0} in one of one-dimensional images, {column, row, image} in one of two-dimensional ones.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>

#include <vorn/mero/opencl/forward.hpp>
#include <vorn/mero/opencl/types.hpp>

#include <vorn/mero/opencl/command.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// Copies a box from an image to the host.
///
///     std::vector<std::uint32_t> pixels(640 * 480); // of an image of four channels of 8 bits
///     queue.enqueue_command_without_event(
///         cl::read_image(image, true, {0, 0, 0}, {640, 480, 1}, 0, 0, pixels.data()));
///
/// The pitches are those of the host's memory, in bytes from row to row and from slice to slice; 0 means tightly
/// packed.
class VORN_MERO_EXPORT read_image : public command {
public:
    /// The box `region` at `origin`. A `blocking` command is complete when it has been enqueued; otherwise
    /// `destination` must live, and not be touched, until the event is complete. Throws `common::invalid_value` when
    /// the box leaves the image or a pitch is too small, `common::invalid_operation` when the image's flags keep the
    /// host from reading or the device has no images.
    read_image(image const& source, bool blocking, std::array<std::size_t, 3> origin, std::array<std::size_t, 3> region,
               std::size_t row_pitch, std::size_t slice_pitch, void* destination);
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

/// Copies a box from the host to an image; the pitches are as in `read_image`.
class VORN_MERO_EXPORT write_image : public command {
public:
    /// The box `region` at `origin`. A `blocking` command lets go of `source` when it has been enqueued; otherwise
    /// `source` must stay as it is until the event is complete. Throws as `read_image`.
    write_image(image& destination, bool blocking, std::array<std::size_t, 3> origin, std::array<std::size_t, 3> region,
                std::size_t input_row_pitch, std::size_t input_slice_pitch, void const* source);
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

/// Copies a box between images of the same format, which may be of different shapes: a slice of a three-dimensional
/// image into a two-dimensional one.
class VORN_MERO_EXPORT copy_image : public command {
public:
    /// The box `region`. Throws `common::image_format_mismatch` when enqueued with images of two formats,
    /// `common::mem_copy_overlap` where the boxes of one image overlap, `common::invalid_value` where they leave an
    /// image.
    copy_image(image const& source, image& destination, std::array<std::size_t, 3> source_origin,
               std::array<std::size_t, 3> destination_origin, std::array<std::size_t, 3> region);
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_mem* source_;
    _nq_cl_mem* destination_;
    std::array<std::size_t, 3> source_origin_;
    std::array<std::size_t, 3> destination_origin_;
    std::array<std::size_t, 3> region_;
};

/// Copies a box of an image into a buffer, tightly packed: the product of the region and `image::element_size` bytes.
class VORN_MERO_EXPORT copy_image_to_buffer : public command {
public:
    /// `destination_offset` is in bytes. Throws `common::invalid_value` when box or bytes leave their object.
    copy_image_to_buffer(image const& source, buffer& destination, std::array<std::size_t, 3> source_origin,
                         std::array<std::size_t, 3> region, std::size_t destination_offset);
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_mem* source_;
    _nq_cl_mem* destination_;
    std::array<std::size_t, 3> source_origin_;
    std::array<std::size_t, 3> region_;
    std::size_t destination_offset_;
};

/// Copies tightly packed elements of a buffer into a box of an image: the product of the region and
/// `image::element_size` bytes.
class VORN_MERO_EXPORT copy_buffer_to_image : public command {
public:
    /// `source_offset` is in bytes. Throws `common::invalid_value` when bytes or box leave their object.
    copy_buffer_to_image(buffer const& source, image& destination, std::size_t source_offset,
                         std::array<std::size_t, 3> destination_origin, std::array<std::size_t, 3> region);
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
/// Each enqueueing has OpenCL write the pitches of the mapping, in bytes, into `row_pitch` and `slice_pitch`, and when
/// it succeeds stores the address in `mapped`; one that fails leaves `mapped` alone. All three must live until then.
/// Not every implementation writes the slice pitch of an image without slices. `unmap_mem_object` ends the mapping.
class VORN_MERO_EXPORT map_image : public command {
public:
    /// The box `region` at `origin`. Unless `blocking`, the memory may be used only once the event is complete. Throws
    /// `common::map_failure` when the box cannot be mapped, `common::invalid_value` for one that leaves the image.
    map_image(void*& mapped, image& source, bool blocking, map_flags flags, std::array<std::size_t, 3> origin,
              std::array<std::size_t, 3> region, std::size_t& row_pitch, std::size_t& slice_pitch);
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
/// Fills a box of an image with a colour that the caller keeps until each enqueueing returns: four values of 32 bits,
/// floating-point, signed or unsigned as the format of the image demands. Since OpenCL 1.2.
class VORN_MERO_EXPORT fill_image_base : public command {
public:
    /// Fills the box `region` at `origin`. The colour is red, green, blue and alpha whatever the order of the channels;
    /// of a depth image it is one floating-point value.
    fill_image_base(image& destination, void const* fill_color, std::array<std::size_t, 3> origin,
                    std::array<std::size_t, 3> region);

    /// Lets later enqueueings read the colour elsewhere. Not while another thread enqueues this object.
    void update_fill_color_pointer(void const* fill_color) noexcept { fill_color_ = fill_color; }

    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_mem* destination_;
    void const* fill_color_;
    std::array<std::size_t, 3> origin_;
    std::array<std::size_t, 3> region_;
};

/// Fills a box of an image with a colour that the command keeps, of channels of type `float` (normalized and
/// floating-point formats), `std::int32_t` (signed) or `std::uint32_t` (unsigned). Since OpenCL 1.2.
///
///     std::array<float, 4> const orange{1.0F, 0.5F, 0.0F, 1.0F};
///     queue.enqueue_command_without_event(cl::fill_image<float>(image, orange, {0, 0, 0}, {640, 480, 1}));
template <class Channel>
class fill_image : public mero::internal::kept_pattern<fill_image_base, std::array<Channel, 4>,
                                                       &fill_image_base::update_fill_color_pointer> {
public:
    fill_image(image& destination, std::array<Channel, 4> color, std::array<std::size_t, 3> origin,
               std::array<std::size_t, 3> region)
        : fill_image::kept_pattern(color, destination, nullptr, origin, region) {}

private:
    static_assert(std::is_same_v<Channel, float> || std::is_same_v<Channel, std::int32_t> ||
                      std::is_same_v<Channel, std::uint32_t>,
                  "OpenCL's fill colours are four float, int or unsigned int values");
};
#endif

} // namespace vorn::mero::VORN_MERO_NAMESPACE
