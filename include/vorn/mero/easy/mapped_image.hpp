#pragma once

#include <vorn/mero/easy/transfer.hpp>

#include <array>
#include <cstddef>
#include <exception>
#include <memory>
#include <type_traits>
#include <utility>

namespace vorn::mero::easy {

/// A box of pixels: from `origin` on, `size` pixels in each direction; 0 and 1 in directions that the image lacks. The
/// images of an array are counted in the direction after their own.
struct image_region {
    std::array<std::size_t, 3> origin; ///< {column, row, layer}
    std::array<std::size_t, 3> size;   ///< {width, height, depth}
};

/// A region of an image in the host's reach; `Pixel` is const for one that is only read. Rows and layers may be further
/// apart than their pixels need. The destructor gives the region back to the device; it drops a failure, which later
/// commands on the image then meet.
template <class Pixel, int Version>
class [[nodiscard]] mapped_image {
public:
    /// @{
    /// The types of the version.
    using flags_type = typename api<Version>::map_flags;
    using image_type = typename api<Version>::image;
    /// @}

    /// Blocks until the pixels are there; the `map` functions of an image call it. `has_rows` is false for arrays of
    /// one-dimensional images, whose second direction counts images.
    mapped_image(std::shared_ptr<detail::session_state<Version>> state, image_type image, flags_type how,
                 image_region const& region, bool has_rows, waits<Version> const& earlier)
        : state_(std::move(state)), image_(std::move(image)), size_(region.size),
          row_pitch_(size_[0] * sizeof(Pixel)), // implementations leave out pitches that the image does not need
          slice_pitch_(row_pitch_ * (has_rows ? size_[1] : 1)) {
        void* mapped = nullptr;
        state_->enqueue_and_wait(typename api<Version>::map_image(mapped, image_, earlier.size() == 0, how,
                                                                  region.origin, size_, row_pitch_, slice_pitch_),
                                 earlier);
        if (!has_rows) {
            row_pitch_ = slice_pitch_;
        }
        bytes_ = static_cast<byte*>(mapped);
    }

    /// `other` is empty afterwards.
    mapped_image(mapped_image&& other) noexcept
        : state_(std::move(other.state_)), image_(std::move(other.image_)), size_(std::exchange(other.size_, {})),
          row_pitch_(other.row_pitch_), slice_pitch_(other.slice_pitch_), bytes_(std::exchange(other.bytes_, nullptr)) {
    }

    mapped_image(mapped_image const&) = delete;
    mapped_image& operator=(mapped_image const&) = delete;
    mapped_image& operator=(mapped_image&&) = delete;

    /// Gives the region back, without blocking.
    ~mapped_image() {
        if (bytes_ != nullptr) {
            try {
                state_->queue.enqueue_command_without_event(
                    typename api<Version>::unmap_mem_object(image_, const_cast<std::byte*>(bytes_)));
            } catch (std::exception const&) { // nothing can be done about it here
            }
        }
    }

    /// The size of the region, in pixels.
    [[nodiscard]] std::array<std::size_t, 3> const& size() const noexcept { return size_; }
    /// The bytes from a row to the next; of arrays of one-dimensional images, from an image to the next.
    [[nodiscard]] std::size_t row_pitch() const noexcept { return row_pitch_; }
    /// The bytes from a layer to the next.
    [[nodiscard]] std::size_t slice_pitch() const noexcept { return slice_pitch_; }

    /// The pixels of a row; `y` and `z` count from the region's origin and must be less than its size. Not
    /// of a temporary, which would end before a loop over the row begins.
    [[nodiscard]] element_range<Pixel> row(std::size_t y = 0, std::size_t z = 0) const& noexcept {
        return {reinterpret_cast<Pixel*>(bytes_ + z * slice_pitch_ + y * row_pitch_), size_[0]};
    }
    element_range<Pixel> row(std::size_t y = 0, std::size_t z = 0) const&& = delete;

private:
    using byte = std::conditional_t<std::is_const<Pixel>::value, std::byte const, std::byte>;

    detail::session_link<Version> state_;
    image_type image_;
    std::array<std::size_t, 3> size_;
    std::size_t row_pitch_;
    std::size_t slice_pitch_;
    byte* bytes_ = nullptr;
};

} // namespace vorn::mero::easy
