#pragma once

#include <vorn/mero/easy/session_state.hpp>

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

/// Pixels side by side, a range for loops.
template <class Pixel>
class pixel_row {
public:
    /// `count` pixels from `first` on.
    pixel_row(Pixel* first, std::size_t count) noexcept : first_(first), count_(count) {}

    /// The first pixel.
    [[nodiscard]] Pixel* begin() const noexcept { return first_; }
    /// Behind the last pixel.
    [[nodiscard]] Pixel* end() const noexcept { return first_ + count_; }
    /// The number of pixels.
    [[nodiscard]] std::size_t size() const noexcept { return count_; }
    /// The pixel; `x` must be less than `size()`.
    [[nodiscard]] Pixel& operator[](std::size_t x) const noexcept { return first_[x]; }

private:
    Pixel* first_;
    std::size_t count_;
};

/// A region of an image in the host's reach; `Pixel` is const for one that is only read. Rows and layers may be further
/// apart than their pixels need. The destructor gives the region back to the device; it drops a failure, which later
/// commands on the image then meet.
template <class Pixel, int Version>
class [[nodiscard]] mapped_image {
public:
    using flags_type = typename api<Version>::map_flags;
    using image_type = typename api<Version>::image;

    /// Blocks until the pixels are there; the `map` functions of an image call it. `has_rows` is false for arrays of
    /// one-dimensional images, whose second direction counts images.
    mapped_image(std::shared_ptr<detail::session_state<Version>> state, image_type image, flags_type how,
                 image_region const& region, bool has_rows, waits<Version> const& earlier)
        : state_(std::move(state)), image_(std::move(image)), size_(region.size),
          row_pitch_(size_[0] * sizeof(Pixel)), // implementations leave out pitches that the image does not need
          slice_pitch_(row_pitch_ * (has_rows ? size_[1] : 1)) {
        void* mapped = nullptr;
        bool const blocking = earlier.size() == 0; // some block for ever on an event that fails
        typename api<Version>::map_image const map(mapped, image_, blocking, how, region.origin, size_, row_pitch_,
                                                   slice_pitch_);
        if (blocking) {
            state_->queue.enqueue_command_without_event(map);
        } else {
            state_->enqueue(map, earlier).wait();
        }
        if (!has_rows) {
            row_pitch_ = slice_pitch_;
        }
        bytes_ = static_cast<byte*>(mapped);
    }

    mapped_image(mapped_image&& other) noexcept
        : state_(std::move(other.state_)), image_(std::move(other.image_)), size_(other.size_),
          row_pitch_(other.row_pitch_), slice_pitch_(other.slice_pitch_), bytes_(std::exchange(other.bytes_, nullptr)) {
    }

    mapped_image(mapped_image const&) = delete;
    mapped_image& operator=(mapped_image const&) = delete;
    mapped_image& operator=(mapped_image&&) = delete;

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
    [[nodiscard]] pixel_row<Pixel> row(std::size_t y = 0, std::size_t z = 0) const& noexcept {
        return {reinterpret_cast<Pixel*>(bytes_ + z * slice_pitch_ + y * row_pitch_), size_[0]};
    }
    pixel_row<Pixel> row(std::size_t y = 0, std::size_t z = 0) const&& = delete;

private:
    using byte = std::conditional_t<std::is_const<Pixel>::value, std::byte const, std::byte>;

    std::shared_ptr<detail::session_state<Version>> state_;
    image_type image_;
    std::array<std::size_t, 3> size_;
    std::size_t row_pitch_;
    std::size_t slice_pitch_;
    byte* bytes_ = nullptr;
};

} // namespace vorn::mero::easy
