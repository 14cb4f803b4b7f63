#include "commands.hpp"

#include <memory>

namespace real {
namespace {

enum class shape { two, three, one, one_buffer, one_array, two_array };

struct kind {
    shape form;
    char const* name;
    box size; // in pixels; the layers of an array stand in the dimension after its own
};

constexpr kind two{shape::two, "2d", {8, 6, 1}}, three{shape::three, "3d", {8, 6, 4}}, one{shape::one, "1d", {8, 1, 1}},
    one_buffer{shape::one_buffer, "1d_buffer", {8, 1, 1}}, one_array{shape::one_array, "1d_array", {8, 6, 1}},
    two_array{shape::two_array, "2d_array", {8, 6, 4}};

using pixels = std::vector<std::uint32_t>; // four channels of 8 bits each

struct region {
    box origin;
    box size;
};

/// Calls `use(position in a tight copy of the box, position in a tight copy of an image of size `whole`)`.
template <class Use>
void for_each_pixel(region const& part, box const& whole, Use use) {
    std::size_t next = 0;
    for (std::size_t z = part.origin[2]; z < part.origin[2] + part.size[2]; ++z) {
        for (std::size_t y = part.origin[1]; y < part.origin[1] + part.size[1]; ++y) {
            for (std::size_t x = part.origin[0]; x < part.origin[0] + part.size[0]; ++x) {
                use(next++, (z * whole[1] + y) * whole[0] + x);
            }
        }
    }
}

/// Images of one kind and format, and what OpenCL wants to know of their use.
template <class Api>
class album {
public:
    using image = typename Api::image;

    album(bench<Api>& b, kind const& of,
          typename Api::image_format const& format = {Api::image_channel_order::rgba,
                                                      Api::image_channel_type::unsigned_int8},
          std::size_t pixel_size = 4)
        : bench_(b), kind_(of), format_(format), pixel_size_(pixel_size) {
        if (!b.device.image_support()) {
            skip("the device has no images");
        }
    }

    /// An image of zeros.
    image& add() {
        bytes zeros(count() * pixel_size_);
        images_.push_back(make(zeros));
        write(*images_.back(), whole(), zeros.data());
        return *images_.back();
    }

    image& add(pixels const& content) {
        image& made = add();
        write(made, whole(), content.data());
        return made;
    }

    void write(image& target, region const& part, void const* source) {
        bench_.run(typename Api::write_image(target, true, part.origin, part.size, 0, 0, source));
    }

    template <class Pixel = std::uint32_t>
    std::vector<Pixel> read(image const& source, region const& part) {
        bench_.queue.finish();
        std::vector<Pixel> content(part.size[0] * part.size[1] * part.size[2]);
        bench_.run(typename Api::read_image(source, true, part.origin, part.size, 0, 0, content.data()));
        return content;
    }

    pixels read(image const& source) { return read(source, whole()); }

    region whole() const { return {{0, 0, 0}, kind_.size}; }

    /// A box that begins at `origin` in each dimension that the kind has.
    region inner(std::size_t origin) const {
        region part{{0, 0, 0}, {1, 1, 1}};
        for (std::size_t i = 0; i < 3; ++i) {
            part.origin[i] = kind_.size[i] > 1 ? origin : 0;
            part.size[i] = std::min<std::size_t>(kind_.size[i], i == 0 ? 3 : 2);
        }
        return part;
    }

    std::size_t count() const { return kind_.size[0] * kind_.size[1] * kind_.size[2]; }
    box const& size() const { return kind_.size; }
    shape form() const { return kind_.form; }

    /// The buffer below the image that was added last, of a kind that has one.
    typename Api::buffer const& store() const { return stores_.back(); }

private:
    template <class Image>
    static std::unique_ptr<image> moved(Image made) {
        return std::make_unique<Image>(std::move(made));
    }

    std::unique_ptr<image> make(bytes const& zeros) {
        auto const flags = Api::mem_flags::read_write;
        auto const [width, height, depth] = kind_.size;
        auto& context = bench_.context;
        if constexpr (Api::number >= 120) {
            switch (kind_.form) {
            case shape::one:
                return moved(context.create_image_1d(flags, format_, width, 0, nullptr));
            case shape::one_buffer:
                stores_.push_back(bench_.store(zeros));
                return moved(context.create_image_1d_buffer(flags, format_, stores_.back(), width, 0, nullptr));
            case shape::one_array:
                return moved(context.create_image_1d_array(flags, format_, width, height, 0, 0, nullptr));
            case shape::two_array:
                return moved(context.create_image_2d_array(flags, format_, width, height, depth, 0, 0, nullptr));
            default:
                break;
            }
        }
        if (kind_.form == shape::three) {
            return moved(context.create_image_3d(flags, format_, width, height, depth, 0, 0, nullptr));
        }
        return moved(context.create_image_2d(flags, format_, width, height, 0, nullptr));
    }

    bench<Api>& bench_;
    kind kind_;
    typename Api::image_format format_;
    std::size_t pixel_size_;
    std::list<typename Api::buffer> stores_;
    std::vector<std::unique_ptr<image>> images_;
};

void put(pixels const& part, region const& to, pixels& content, box const& whole) {
    for_each_pixel(to, whole, [&](std::size_t from, std::size_t at) { content.at(at) = part.at(from); });
}

pixels taken(pixels const& content, region const& from, box const& whole) {
    pixels part(from.size[0] * from.size[1] * from.size[2]);
    for_each_pixel(from, whole, [&](std::size_t to, std::size_t at) { part.at(to) = content.at(at); });
    return part;
}

/// Reads and writes a box from and to rows, and slices where the kind has them, that are further apart than tight.
template <class Api>
void uses_pitches(bench<Api>& b, album<Api>& images, typename Api::image& target, pixels& expected) {
    if (images.size()[1] == 1 || images.form() == shape::one_array) {
        return;
    }
    auto const part = images.inner(2);
    std::size_t const row = 5, slice = images.size()[2] > 1 ? row * 3 : 0;
    auto const host = counting<std::uint32_t>(64, 5000);
    b.run(typename Api::write_image(target, true, part.origin, part.size, row * 4, slice * 4, host.data()));
    box const laid_out{row, slice != 0 ? slice / row : 1, 1};
    region const on_host{{0, 0, 0}, part.size};
    auto const sent = taken(host, on_host, laid_out);
    put(sent, part, expected, images.size());
    pixels received(64);
    b.run(typename Api::read_image(target, true, part.origin, part.size, row * 4, slice * 4, received.data()));
    EXPECT_EQ(taken(received, on_host, laid_out), sent);
}

auto const reads_and_writes = []<class Api>(bench<Api>& b, kind const& of) {
    album<Api> images(b, of);
    auto expected = counting<std::uint32_t>(images.count());
    auto& target = images.add(expected);
    EXPECT_EQ(images.read(target), expected);
    auto const part = images.inner(1);
    auto const replacement = counting<std::uint32_t>(12, 1000);
    images.write(target, part, replacement.data());
    put(replacement, part, expected, images.size());
    EXPECT_EQ(images.read(target), expected);
    EXPECT_EQ(images.read(target, part), taken(expected, part, images.size()));
    uses_pitches(b, images, target, expected);
    EXPECT_EQ(images.read(target), expected);
    if (of.form == shape::one_buffer) {
        EXPECT_EQ(b.template load<std::uint32_t>(images.store()), expected);
    }
};

auto const copies = []<class Api>(bench<Api>& b, kind const& of) {
    album<Api> images(b, of);
    auto const content = counting<std::uint32_t>(images.count());
    auto& source = images.add(content);
    auto& destination = images.add();
    auto const from = images.inner(1), to = images.inner(0);
    b.run(typename Api::copy_image(source, destination, from.origin, to.origin, from.size));
    pixels expected(images.count());
    put(taken(content, from, images.size()), to, expected, images.size());
    EXPECT_EQ(images.read(destination), expected);
};

auto const goes_through_buffers = []<class Api>(bench<Api>& b, kind const& of) {
    album<Api> images(b, of);
    auto const content = counting<std::uint32_t>(images.count());
    auto& source = images.add(content);
    auto& destination = images.add();
    auto between = b.store(pixels(20));
    auto const from = images.inner(1), to = images.inner(0);
    auto const part = taken(content, from, images.size());
    b.run(typename Api::copy_image_to_buffer(source, between, from.origin, from.size, 4));
    pixels expected(20);
    std::ranges::copy(part, expected.begin() + 1);
    EXPECT_EQ(b.template load<std::uint32_t>(between), expected);
    b.run(typename Api::copy_buffer_to_image(between, destination, 4, to.origin, to.size));
    expected.assign(images.count(), 0);
    put(part, to, expected, images.size());
    EXPECT_EQ(images.read(destination), expected);
};

auto const maps = []<class Api>(bench<Api>& b, kind const& of) {
    using flags = typename Api::map_flags;
    album<Api> images(b, of);
    auto expected = counting<std::uint32_t>(images.count());
    auto& target = images.add(expected);
    auto const part = images.inner(1);
    void* mapped = nullptr;
    std::size_t row = 0, slice = 0;
    b.run(
        typename Api::map_image(mapped, target, true, flags::read | flags::write, part.origin, part.size, row, slice));
    std::size_t const pitch = of.form == shape::one_array ? slice : row;
    auto const replacement = counting<std::uint32_t>(12, 2000);
    pixels found;
    for_each_pixel({{0, 0, 0}, part.size}, {1000, 1000, 1000}, [&](std::size_t next, std::size_t at) {
        auto* const place = static_cast<unsigned char*>(mapped) + at / 1000000 * slice + at / 1000 % 1000 * pitch;
        auto* const pixel = reinterpret_cast<std::uint32_t*>(place) + at % 1000;
        found.push_back(std::exchange(*pixel, replacement.at(next)));
    });
    EXPECT_EQ(found, taken(expected, part, images.size()));
    b.run(typename Api::unmap_mem_object(target, mapped));
    put(replacement, part, expected, images.size());
    EXPECT_EQ(images.read(target), expected);
};

auto const fills = []<class Api>(bench<Api>& b, kind const& of) {
    album<Api> images(b, of);
    auto expected = counting<std::uint32_t>(images.count());
    auto& target = images.add(expected);
    auto const part = images.inner(1);
    std::array<std::uint32_t, 4> const color{4, 3, 2, 1}, other{8, 7, 6, 5};
    b.run(typename Api::template fill_image<std::uint32_t>(target, color, part.origin, part.size));
    put(pixels(12, 0x01020304), part, expected, images.size());
    EXPECT_EQ(images.read(target), expected);
    typename Api::fill_image_base fill(target, color.data(), {0, 0, 0}, {1, 1, 1});
    fill.update_fill_color_pointer(other.data());
    b.run(fill);
    expected[0] = 0x05060708;
    EXPECT_EQ(images.read(target), expected);
};

template <class Channel, class Stored, class Api>
void fills_with(bench<Api>& b, typename Api::image_channel_type type, std::array<Channel, 4> const& color,
                std::array<Stored, 4> const& expected) {
    album<Api> images(b, two, {Api::image_channel_order::rgba, type}, sizeof expected);
    auto& target = images.add();
    auto const part = images.inner(1);
    b.run(typename Api::template fill_image<Channel>(target, color, part.origin, part.size));
    auto content = images.template read<std::array<Stored, 4>>(target, part);
    EXPECT_EQ(content, std::vector(content.size(), expected));
}

auto const fills_in_colors = []<class Api>(bench<Api>& b) {
    using type = typename Api::image_channel_type;
    std::array<float, 4> const real{0, 0.25F, -2, 1e6F}, unit{0, 1, 0, 1};
    std::array<std::int32_t, 4> const integers{0, -1, 1 << 30, -5};
    std::array<std::uint32_t, 4> const naturals{0, 1, 0xFFFFFFFF, 7};
    fills_with(b, type::float_, real, real);
    fills_with(b, type::signed_int32, integers, integers);
    fills_with(b, type::unsigned_int32, naturals, naturals);
    fills_with(b, type::unorm_int8, unit, std::array<unsigned char, 4>{0, 255, 0, 255});
};

template <int First>
void add_kind(kind const& of) {
    auto const add = [&of]<int From>(std::integral_constant<int, From>, char const* what, char const* feature,
                                     auto run) {
        add_scenario<From>(std::string(what) + "_image_" + of.name, std::string(feature) + of.name,
                           [run, of](auto& b) { run(b, of); });
    };
    std::integral_constant<int, First> const first;
    add(first, "reads_and_writes", "image commands, ", reads_and_writes);
    add(first, "copies", "image commands, ", copies);
    add(first, "copies_by_buffer", "image commands, ", goes_through_buffers);
    add(first, "maps", "image maps, ", maps);
    add(std::integral_constant<int, 120>{}, "fills", "image commands, ", fills);
}

} // namespace

void add_image_commands() {
    add_kind<100>(two);
    add_kind<100>(three);
    add_kind<120>(one);
    add_kind<120>(one_buffer);
    add_kind<120>(one_array);
    add_kind<120>(two_array);
    add_scenario<120>("fills_images_in_colors_of_each_type", "image commands, fill colors", fills_in_colors);
}

} // namespace real
