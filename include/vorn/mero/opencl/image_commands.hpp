// The commands on images.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>

#include <vorn/mero/opencl/forward.hpp>
#include <vorn/mero/opencl/types.hpp>

#include <vorn/mero/opencl/command.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// Copies a box from an image to the host; a pitch of 0 means tightly packed.
class VORN_MERO_EXPORT read_image : public command {
public:
    /// The box `region` at `origin`. A `blocking` command is complete when it has been enqueued.
    read_image(image const& source, bool blocking, std::array<std::size_t, 3> const& origin,
               std::array<std::size_t, 3> const& region, std::size_t row_pitch, std::size_t slice_pitch,
               void* destination);
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

/// Copies a box from the host to an image; a pitch of 0 means tightly packed.
class VORN_MERO_EXPORT write_image : public command {
public:
    /// The box `region` at `origin`. A `blocking` command lets go of `source` when it has been enqueued.
    write_image(image& destination, bool blocking, std::array<std::size_t, 3> const& origin,
                std::array<std::size_t, 3> const& region, std::size_t input_row_pitch, std::size_t input_slice_pitch,
                void const* source);
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

/// Copies a box between images of the same format.
class VORN_MERO_EXPORT copy_image : public command {
public:
    /// The box `region`. Throws `common::image_format_mismatch` when enqueued with images of two formats.
    copy_image(image const& source, image& destination, std::array<std::size_t, 3> const& source_origin,
               std::array<std::size_t, 3> const& destination_origin, std::array<std::size_t, 3> const& region);
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_mem* source_;
    _nq_cl_mem* destination_;
    std::array<std::size_t, 3> source_origin_;
    std::array<std::size_t, 3> destination_origin_;
    std::array<std::size_t, 3> region_;
};

/// Copies a box of an image into a buffer, tightly packed.
class VORN_MERO_EXPORT copy_image_to_buffer : public command {
public:
    /// `destination_offset` is in bytes.
    copy_image_to_buffer(image const& source, buffer& destination, std::array<std::size_t, 3> const& source_origin,
                         std::array<std::size_t, 3> const& region, std::size_t destination_offset);
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_mem* source_;
    _nq_cl_mem* destination_;
    std::array<std::size_t, 3> source_origin_;
    std::array<std::size_t, 3> region_;
    std::size_t destination_offset_;
};

/// Copies tightly packed elements of a buffer into a box of an image.
class VORN_MERO_EXPORT copy_buffer_to_image : public command {
public:
    /// `source_offset` is in bytes.
    copy_buffer_to_image(buffer const& source, image& destination, std::size_t source_offset,
                         std::array<std::size_t, 3> const& destination_origin,
                         std::array<std::size_t, 3> const& region);
    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override;

private:
    _nq_cl_mem* source_;
    _nq_cl_mem* destination_;
    std::size_t source_offset_;
    std::array<std::size_t, 3> destination_origin_;
    std::array<std::size_t, 3> region_;
};

/// Maps a box of an image into the host's memory. Each enqueueing has OpenCL write the pitches of the mapping into
/// `row_pitch` and `slice_pitch`, and when it succeeds stores the address in `mapped`; one that fails leaves `mapped`
/// alone. All three must live until then.
class VORN_MERO_EXPORT map_image : public command {
public:
    /// The box `region` at `origin`. Unless `blocking`, the memory may be used only once the event is complete.
    map_image(void*& mapped, image& source, bool blocking, map_flags flags, std::array<std::size_t, 3> const& origin,
              std::array<std::size_t, 3> const& region, std::size_t& row_pitch, std::size_t& slice_pitch);
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
/// Fills a box of an image with a colour that the caller keeps: four values of 32 bits, floating-point, signed or
/// unsigned as the format of the image demands. Since OpenCL 1.2.
class VORN_MERO_EXPORT fill_image_base : public command {
public:
    /// Fills the box `region` at `origin`.
    fill_image_base(image& destination, void const* fill_color, std::array<std::size_t, 3> const& origin,
                    std::array<std::size_t, 3> const& region);

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

/// Fills a box of an image with a colour that the command keeps, of channels of type `float`, `std::int32_t` or
/// `std::uint32_t` as the format of the image demands. Since OpenCL 1.2.
template <class Channel>
class fill_image : public mero::internal::kept_pattern<fill_image_base, std::array<Channel, 4>,
                                                       &fill_image_base::update_fill_color_pointer> {
public:
    fill_image(image& destination, std::array<Channel, 4> const& color, std::array<std::size_t, 3> const& origin,
               std::array<std::size_t, 3> const& region)
        : fill_image::kept_pattern(color, destination, nullptr, origin, region) {}

private:
    static_assert(std::is_same_v<Channel, float> || std::is_same_v<Channel, std::int32_t> ||
                      std::is_same_v<Channel, std::uint32_t>,
                  "OpenCL's fill colours are four float, int or unsigned int values");
};
#endif

} // namespace vorn::mero::VORN_MERO_NAMESPACE
