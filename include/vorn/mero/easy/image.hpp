#pragma once

// Images; a program that uses them includes this header beside `vorn/mero/easy.hpp`.

#include <vorn/mero/easy/array.hpp>
#include <vorn/mero/easy/mapped_image.hpp>
#include <vorn/mero/easy/pixel.hpp>
#include <vorn/mero/easy/session.hpp>

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vorn::mero::easy {

namespace detail {

/// The class of the exact interface for a kind of image, its making, and the formats that there are of it.
template <image_kind Kind, int Version>
struct image_class;

template <int Version>
struct image_class<image_kind::two, Version> {
    using type = typename api<Version>::image_2d;
    template <class... Arguments>
    static type make(typename api<Version>::context& context, std::array<std::size_t, 3> const& size,
                     Arguments const&... how) {
        return context.create_image_2d(how..., size[0], size[1], 0, nullptr);
    }
    static auto formats(typename api<Version>::context& context, typename api<Version>::mem_flags flags) {
        return context.image_2d_supported_formats(flags);
    }
};

template <int Version>
struct image_class<image_kind::three, Version> {
    using type = typename api<Version>::image_3d;
    template <class... Arguments>
    static type make(typename api<Version>::context& context, std::array<std::size_t, 3> const& size,
                     Arguments const&... how) {
        return context.create_image_3d(how..., size[0], size[1], size[2], 0, 0, nullptr);
    }
    static auto formats(typename api<Version>::context& context, typename api<Version>::mem_flags flags) {
        return context.image_3d_supported_formats(flags);
    }
};

template <int Version>
struct image_class<image_kind::one, Version> {
    static_assert(Version >= 120, "OpenCL has one-dimensional images since 1.2: use one with a single row");
    using type = typename api<Version>::image_1d;
    template <class... Arguments>
    static type make(typename api<Version>::context& context, std::array<std::size_t, 3> const& size,
                     Arguments const&... how) {
        return context.create_image_1d(how..., size[0], 0, nullptr);
    }
    static auto formats(typename api<Version>::context& context, typename api<Version>::mem_flags flags) {
        return context.image_1d_supported_formats(flags);
    }
};

template <int Version>
struct image_class<image_kind::one_array, Version> {
    static_assert(Version >= 120, "OpenCL has arrays of images since 1.2");
    using type = typename api<Version>::image_1d_array;
    template <class... Arguments>
    static type make(typename api<Version>::context& context, std::array<std::size_t, 3> const& size,
                     Arguments const&... how) {
        return context.create_image_1d_array(how..., size[0], size[1], 0, 0, nullptr);
    }
    static auto formats(typename api<Version>::context& context, typename api<Version>::mem_flags flags) {
        return context.image_1d_array_supported_formats(flags);
    }
};

template <int Version>
struct image_class<image_kind::two_array, Version> {
    static_assert(Version >= 120, "OpenCL has arrays of images since 1.2");
    using type = typename api<Version>::image_2d_array;
    template <class... Arguments>
    static type make(typename api<Version>::context& context, std::array<std::size_t, 3> const& size,
                     Arguments const&... how) {
        return context.create_image_2d_array(how..., size[0], size[1], size[2], 0, 0, nullptr);
    }
    static auto formats(typename api<Version>::context& context, typename api<Version>::mem_flags flags) {
        return context.image_2d_array_supported_formats(flags);
    }
};

/// "rgba unorm_int8"; numbers where a name is not known.
inline std::string format_name(std::uint32_t order, std::uint32_t type) {
    constexpr std::array<char const*, 20> orders{
        "r",  "a",   "rg",   "ra",    "rgb",           "rgba", "bgra",  "argb",  "intensity", "luminance",
        "rx", "rgx", "rgbx", "depth", "depth_stencil", "srgb", "srgbx", "srgba", "sbgra",     "abgr"};
    constexpr std::array<char const*, 17> types{
        "snorm_int8",       "snorm_int16", "unorm_int8",   "unorm_int16",  "unorm_short_565",   "unorm_short_555",
        "unorm_int_101010", "signed_int8", "signed_int16", "signed_int32", "unsigned_int8",     "unsigned_int16",
        "unsigned_int32",   "half_float",  "float",        "unorm_int24",  "unorm_int_101010_2"};
    std::uint32_t const o = order - 0x10B0;
    std::uint32_t const t = type - 0x10D0;
    return joined({o < orders.size() ? orders[o] : std::to_string(order), " ",
                   t < types.size() ? types[t] : std::to_string(type)});
}

inline std::string size_text(std::array<std::size_t, 3> const& size) {
    return joined({std::to_string(size[0]), " x ", std::to_string(size[1]), " x ", std::to_string(size[2])});
}

inline void check_region(image_region const& region, std::array<std::size_t, 3> const& size) {
    for (std::size_t i = 0; i != size.size(); ++i) {
        if (region.size[i] == 0 || region.origin[i] > size[i] || region.size[i] > size[i] - region.origin[i]) {
            throw bounds_error(
                joined({"a region of ", size_text(region.size), " from ", size_text(region.origin),
                        " is empty or not within an image of ", size_text(size), ": ask for a part of it"}));
        }
    }
}

} // namespace detail

/// Pixels of a format, in one, two or three dimensions or as an array of images, made by a session. A copy names the
/// same image. On the host, pixels lie row by row without gaps; in a map, rows may have gaps.
///
///     auto picture = gpu.image<ez::rgba8>(640, 480);
///     picture.write(pixels);                                // std::vector<std::array<std::uint8_t, 4>>
///     invert(ez::range(640, 480), picture, result);
///     auto const mapped = result.map();
///     for (auto& pixel : mapped.row(0)) { pixel[3] = 255; }
///
/// `read`, `write` and the `map` functions block; the rest returns an event. All use the queue of the session. Each
/// takes a list of `after` as its last argument. Throws `bounds_error` for a region that leaves the image.
template <class Format, image_kind Kind, int Version>
class basic_image {
    using kind = detail::image_class<Kind, Version>;

public:
    /// A pixel in host memory, such as `std::array<std::uint8_t, 4>`.
    using pixel_type = typename Format::pixel;
    /// A colour that fills the image: red, green, blue and alpha, as `float` or integers of 32 bits.
    using color_type = typename Format::color;
    /// @{
    /// The image of the exact interface, and what the members take and return.
    using exact_type = typename kind::type;
    using event_type = basic_event<Version>;
    using waits_type = waits<Version>;
    /// @}
    /// Width, height and depth, or the number of images, in this order; 1 for what there is not.
    using size_type = std::array<std::size_t, 3>;

    /// Makes an image with undefined pixels; `session::image` calls it. Throws `unsupported`, with the formats that
    /// there are, if the device lacks the format or has no images, and `bounds_error` for a size that it lacks.
    basic_image(std::shared_ptr<detail::session_state<Version>> state, size_type const& size)
        : state_(std::move(state)), exact_(made(size)), size_(size) {}

    /// Of an image of the exact interface, which must have the format and this size.
    basic_image(std::shared_ptr<detail::session_state<Version>> state, exact_type exact, size_type const& size) noexcept
        : state_(std::move(state)), exact_(std::move(exact)), size_(size) {}

    /// The image of the exact interface.
    [[nodiscard]] exact_type& exact() noexcept { return exact_; }
    /// The same of an object that does not change.
    [[nodiscard]] exact_type const& exact() const noexcept { return exact_; }

    /// The size in pixels, 1 in directions that the image lacks; an array's number of images comes after its own
    /// directions.
    [[nodiscard]] size_type const& size() const noexcept { return size_; }
    /// The number of pixels.
    [[nodiscard]] std::size_t count() const noexcept { return size_[0] * size_[1] * size_[2]; }

    /// The raw handle of its context, which kernels must share; null if it was moved from.
    [[nodiscard]] _nq_cl_context* raw_context() const noexcept {
        return state_.get() != nullptr ? detail::raw_of(state_.get()->context) : nullptr;
    }
    /// All of the image.
    [[nodiscard]] image_region whole() const noexcept { return {{0, 0, 0}, size_}; }

    /// The same image, by way of another session's queue; of the same context, else throws `argument_error`.
    template <class Session>
    [[nodiscard]] basic_image on(Session const& other) const {
        detail::check_same_context(raw_context(), detail::raw_of(other.context()));
        basic_image same = *this;
        same.state_ = other.state();
        return same;
    }

    /// A copy of all pixels.
    [[nodiscard]] std::vector<pixel_type> read(waits_type const& earlier = {}) const { return read(whole(), earlier); }

    /// A copy of the pixels of a region.
    [[nodiscard]] std::vector<pixel_type> read(image_region const& region, waits_type const& earlier = {}) const {
        detail::check_region(region, size_);
        std::vector<pixel_type> pixels(region.size[0] * region.size[1] * region.size[2]);
        state_->enqueue_and_wait(typename api<Version>::read_image(exact_, earlier.size() == 0, region.origin,
                                                                   region.size, 0, 0, pixels.data()),
                                 earlier);
        return pixels;
    }

    /// Copies all pixels to the device. Throws `bounds_error` if they are not as many.
    void write(std::vector<pixel_type> const& pixels, waits_type const& earlier = {}) {
        write(pixels, whole(), earlier);
    }

    /// The same of the pixels of a region.
    void write(std::vector<pixel_type> const& pixels, image_region const& region, waits_type const& earlier = {}) {
        detail::check_region(region, size_);
        if (pixels.size() != region.size[0] * region.size[1] * region.size[2]) {
            throw bounds_error(detail::joined(
                {std::to_string(pixels.size()), " pixels do not make a region of ", detail::size_text(region.size)}));
        }
        state_->enqueue_and_wait(typename api<Version>::write_image(exact_, earlier.size() == 0, region.origin,
                                                                    region.size, 0, 0, pixels.data()),
                                 earlier);
    }

    /// Sets every pixel to a colour, as a kernel would write it. Does not block.
    event_type fill(color_type const& color, waits_type const& earlier = {}) { return fill(color, whole(), earlier); }

    /// The same of a region.
    event_type fill(color_type const& color, image_region const& region, waits_type const& earlier = {}) {
        static_assert(Version >= 120, "OpenCL fills since 1.2; write the pixels instead");
        detail::check_region(region, size_);
        using fill_image = typename api<Version>::template fill_image<typename color_type::value_type>;
        return state_->enqueue(fill_image(exact_, color, region.origin, region.size), earlier);
    }

    /// Copies all pixels to the front of another image of the format, on the device. Does not block.
    template <image_kind Other>
    event_type copy_to(basic_image<Format, Other, Version>& destination, waits_type const& earlier = {}) const {
        return copy_to(destination, whole(), {0, 0, 0}, earlier);
    }

    /// The same of a region, to another one there that begins at `origin`.
    template <image_kind Other>
    event_type copy_to(basic_image<Format, Other, Version>& destination, image_region const& region,
                       size_type const& origin, waits_type const& earlier = {}) const {
        detail::check_region(region, size_);
        detail::check_region({origin, region.size}, destination.size());
        detail::check_same_context(raw_context(), destination.raw_context());
        using copy_image = typename api<Version>::copy_image;
        return state_->enqueue(copy_image(exact_, destination.exact(), region.origin, origin, region.size), earlier);
    }

    /// Copies the pixels of a region to an array, there from element `offset` on, row by row. Does not block.
    event_type copy_to(basic_array<pixel_type, Version>& destination, image_region const& region,
                       std::size_t offset = 0, waits_type const& earlier = {}) const {
        check_both(region, destination, offset);
        using copy = typename api<Version>::copy_image_to_buffer;
        return state_->enqueue(
            copy(exact_, destination.exact(), region.origin, region.size, offset * sizeof(pixel_type)), earlier);
    }

    /// Copies elements of an array from `offset` on to a region, row by row. Does not block.
    event_type copy_from(basic_array<pixel_type, Version> const& source, image_region const& region,
                         std::size_t offset = 0, waits_type const& earlier = {}) {
        check_both(region, source, offset);
        using copy = typename api<Version>::copy_buffer_to_image;
        return state_->enqueue(copy(source.exact(), exact_, offset * sizeof(pixel_type), region.origin, region.size),
                               earlier);
    }

    /// Gives the host the pixels in place, for reading and writing, until the result is destroyed; kernels must not use
    /// the image meanwhile. Blocks until they are there.
    mapped_image<pixel_type, Version> map(waits_type const& earlier = {}) { return map(whole(), earlier); }
    /// The same of a region.
    mapped_image<pixel_type, Version> map(image_region const& region, waits_type const& earlier = {}) {
        return map_as<pixel_type>(flags::read | flags::write, region, earlier);
    }

    /// The same for reading only; kernels may read the image meanwhile.
    mapped_image<pixel_type const, Version> map_read(waits_type const& earlier = {}) const {
        return map_read(whole(), earlier);
    }
    /// The same of a region.
    mapped_image<pixel_type const, Version> map_read(image_region const& region, waits_type const& earlier = {}) const {
        return map_as<pixel_type const>(flags::read, region, earlier);
    }

    /// The same for writing all of the pixels: what was there may be gone.
    mapped_image<pixel_type, Version> map_write(waits_type const& earlier = {}) { return map_write(whole(), earlier); }
    /// The same of a region.
    mapped_image<pixel_type, Version> map_write(image_region const& region, waits_type const& earlier = {}) {
        if constexpr (Version >= 120) {
            return map_as<pixel_type>(flags::write_invalidate_region, region, earlier);
        } else {
            return map_as<pixel_type>(flags::write, region, earlier);
        }
    }

private:
    using flags = typename api<Version>::map_flags;
    using mem_flags = typename api<Version>::mem_flags;

    exact_type made(size_type const& size) const {
        try {
            return kind::make(state_->context, size, mem_flags::read_write,
                              typename api<Version>::image_format(Format::order, Format::type));
        } catch (common::error const&) { // each implementation has its own
            explain(size);
            throw;
        }
    }

    /// Called while OpenCL's exception is handled: throws what is wrong with format or size, if that can be told.
    [[gnu::cold, gnu::noinline]] void explain(size_type const& size) const {
        std::string const wanted = detail::format_name(Format::order, Format::type);
        std::string list;
        bool is_listed = false;
        if (state_->device.image_support()) {
            for (auto const& each : kind::formats(state_->context, mem_flags::read_write)) {
                auto const name = detail::format_name(static_cast<std::uint32_t>(each.channel_order),
                                                      static_cast<std::uint32_t>(each.channel_data_type));
                is_listed = is_listed || name == wanted;
                list += detail::joined({list.empty() ? " of this format; it has: " : ", ", name});
            }
        }
        if (!is_listed) {
            throw unsupported(detail::joined({state_->device.name(), " has no images",
                                              list.empty() ? ": use arrays, or choose a device that has images" : list,
                                              ". Wanted: ", wanted}));
        }
        auto const& device = state_->device;
        size_type const flat{device.image2d_max_width(), device.image2d_max_height(), 1};
        size_type const deep{device.image3d_max_width(), device.image3d_max_height(), device.image3d_max_depth()};
        size_type largest = Kind == image_kind::three ? deep : flat;
        if constexpr (Kind == image_kind::one_array || Kind == image_kind::two_array) {
            largest[Kind == image_kind::one_array ? 1 : 2] = device.image_max_array_size();
        }
        std::size_t const bytes = device.max_mem_alloc_size();
        std::size_t const row = size[0] * sizeof(pixel_type);
        bool const is_empty = size[0] == 0 || size[1] == 0 || size[2] == 0;
        bool const is_large = size[0] > largest[0] || size[1] > largest[1] || size[2] > largest[2] || row > bytes ||
                              (!is_empty && size[1] > bytes / row / size[2]);
        if (is_empty || is_large) {
            throw bounds_error(detail::joined({device.name(), " has no image of ", detail::size_text(size),
                                               " pixels: there is at least one in each direction, at most ",
                                               detail::size_text(largest), " and ", std::to_string(bytes), " bytes"}));
        }
    }

    void check_both(image_region const& region, basic_array<pixel_type, Version> const& other,
                    std::size_t offset) const {
        detail::check_region(region, size_);
        detail::check_same_context(raw_context(), other.raw_context());
        detail::check_bounds(offset, region.size[0] * region.size[1] * region.size[2], other.size());
    }

    template <class Pixel>
    mapped_image<Pixel, Version> map_as(flags how, image_region const& region, waits_type const& earlier) const {
        detail::check_region(region, size_);
        static_cast<void>(*state_);
        return {state_, exact_, how, region, Kind != image_kind::one_array, earlier};
    }

    detail::session_link<Version> state_;
    exact_type exact_;
    size_type size_;
};

/// An image is what the source calls `image2d_t` and so on.
template <class Format, image_kind Kind, int Version>
struct argument_traits<basic_image<Format, Kind, Version>, Version> {
    using image = basic_image<Format, Kind, Version>;
    using exact = argument_traits<typename image::exact_type, Version>;

    static void check(argument_place const& at, image const& given) { exact::check(at, given.exact()); }
    static void set(typename api<Version>::kernel& target, unsigned index, image const& given) {
        exact::set(target, index, given.exact());
    }
    static _nq_cl_context* context(image const& given) noexcept { return given.raw_context(); }
    static std::string text(image const& given) {
        return detail::joined(
            {"an image of ", detail::size_text(given.size()), ", ", detail::format_name(Format::order, Format::type)});
    }
};

/// `basic_image` of the default version: `image2d<rgba8>`.
template <class Format>
using image1d = basic_image<Format, image_kind::one, default_version>;
/// The same in two dimensions.
template <class Format>
using image2d = basic_image<Format, image_kind::two, default_version>;
/// The same in three dimensions.
template <class Format>
using image3d = basic_image<Format, image_kind::three, default_version>;
/// An array of one-dimensional images.
template <class Format>
using image1d_array = basic_image<Format, image_kind::one_array, default_version>;
/// An array of two-dimensional images.
template <class Format>
using image2d_array = basic_image<Format, image_kind::two_array, default_version>;

} // namespace vorn::mero::easy
