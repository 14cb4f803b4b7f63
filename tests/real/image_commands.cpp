#include "support.hpp"

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

template <class Api>
typename Api::image_format const rgba{Api::image_channel_order::rgba, Api::image_channel_type::unsigned_int8};

template <class Api>
pixels read(bench<Api>& b, typename Api::image const& image, region const& part) {
    pixels content(part.count());
    b.queue.finish();
    b.run(typename Api::read_image(image, true, part.origin, part.size, 0, 0, content.data()));
    return content;
}

template <class Api>
void demand_images(bench<Api>& b) {
    if (!b.device.image_support()) {
        skip("the device has no images");
    }
}

/// An image of a kind, and what it must hold.
template <class Api>
struct canvas {
    canvas(bench<Api>& b, kind const& of, pixels held = {}) : bench_(b), size(of.size), expected(std::move(held)) {
        demand_images(b);
        expected.resize(whole().count());
        image = make(of.form);
        expect_counted(*image);
        if (of.form != shape::one_buffer) {
            b.run(typename Api::write_image(*image, true, {0, 0, 0}, size, 0, 0, expected.data()));
        }
    }

    region whole() const { return {{0, 0, 0}, size}; }

    /// A box that begins at `origin` in each dimension that the kind has.
    region inner(std::size_t origin) const {
        region part{{0, 0, 0}, {1, 1, 1}};
        for (std::size_t i = 0; i < 3; ++i) {
            part.origin[i] = size[i] > 1 ? origin : 0;
            part.size[i] = std::min<std::size_t>(size[i], i == 0 ? 3 : 2);
        }
        return part;
    }

    void expect(pixels const& part, region const& to) { put(part, to, expected, size); }
    void check() { EXPECT_EQ(read(bench_, *image, whole()), expected); }

    bench<Api>& bench_;
    box size;
    pixels expected;
    std::unique_ptr<typename Api::buffer> store; // below an image of a kind that has one
    std::unique_ptr<typename Api::image> image;

private:
    template <class Image>
    static std::unique_ptr<typename Api::image> moved(Image made) {
        return std::make_unique<Image>(std::move(made));
    }

    std::unique_ptr<typename Api::image> make(shape form) {
        auto const flags = Api::mem_flags::read_write;
        auto const [width, height, depth] = size;
        auto& context = bench_.context;
        if constexpr (Api::number >= 120) {
            switch (form) {
            case shape::one:
                return moved(context.create_image_1d(flags, rgba<Api>, width, 0, nullptr));
            case shape::one_buffer:
                store = std::make_unique<typename Api::buffer>(bench_.store(expected));
                return moved(context.create_image_1d_buffer(flags, rgba<Api>, *store, width, 0, nullptr));
            case shape::one_array:
                return moved(context.create_image_1d_array(flags, rgba<Api>, width, height, 0, 0, nullptr));
            case shape::two_array:
                return moved(context.create_image_2d_array(flags, rgba<Api>, width, height, depth, 0, 0, nullptr));
            default:
                break;
            }
        }
        return form == shape::three
                   ? moved(context.create_image_3d(flags, rgba<Api>, width, height, depth, 0, 0, nullptr))
                   : moved(context.create_image_2d(flags, rgba<Api>, width, height, 0, nullptr));
    }
};

/// Writes and reads a box from and to rows, and slices where the kind has them, that are further apart than tight.
template <class Api>
void use_pitches(bench<Api>& b, canvas<Api>& target) {
    auto const part = target.inner(2);
    std::size_t const row = 5, rows = target.size[2] > 1 ? 3 : 0;
    auto const host = counting<std::uint32_t>(64, 5000);
    b.run(typename Api::write_image(*target.image, true, part.origin, part.size, row * 4, rows * row * 4, host.data()));
    auto const sent = taken(host, {{0, 0, 0}, part.size}, {row, rows, 1});
    target.expect(sent, part);
    pixels received(64);
    b.run(typename Api::read_image(*target.image, true, part.origin, part.size, row * 4, rows * row * 4,
                                   received.data()));
    EXPECT_EQ(taken(received, {{0, 0, 0}, part.size}, {row, rows, 1}), sent);
}

// A box goes from one image to another, to a buffer and back to the first.
auto const moves = []<class Api>(bench<Api>& b, kind const& of) {
    canvas<Api> source(b, of, counting<std::uint32_t>(200)), destination(b, of);
    EXPECT_EQ(source.image->width(), of.size[0]);
    EXPECT_EQ(source.image->get_image_format(), rgba<Api>);
    auto const from = source.inner(1), to = source.inner(0);
    auto const part = taken(source.expected, from, of.size);
    b.run(typename Api::copy_image(*source.image, *destination.image, from.origin, to.origin, from.size));
    destination.expect(part, to);
    destination.check();
    auto between = b.store(pixels(20));
    b.run(typename Api::copy_image_to_buffer(*destination.image, between, to.origin, to.size, 4));
    pixels expected(20);
    std::ranges::copy(part, expected.begin() + 1);
    EXPECT_EQ(b.template load<std::uint32_t>(between), expected);
    b.run(typename Api::copy_buffer_to_image(between, *source.image, 4, to.origin, to.size));
    source.expect(part, to);
    if (of.size[1] > 1 && of.form != shape::one_array) {
        use_pitches(b, source);
    }
    source.check();
    if (source.store != nullptr) {
        EXPECT_EQ(b.template load<std::uint32_t>(*source.store), source.expected);
    }
};

auto const maps = []<class Api>(bench<Api>& b, kind const& of) {
    canvas<Api> target(b, of, counting<std::uint32_t>(200));
    auto const part = target.inner(1);
    void* mapped = nullptr;
    std::size_t row = 0, slice = 0;
    auto const how = Api::map_flags::read | Api::map_flags::write;
    b.wait_for(b.queue.enqueue_command(
        typename Api::map_image(mapped, *target.image, false, how, part.origin, part.size, row, slice)));
    auto* const first = static_cast<std::uint32_t*>(mapped);
    box const laid_out{(of.form == shape::one_array ? slice : row) / 4, of.size[2] > 1 ? slice / row : 1, 1};
    auto const replacement = counting<std::uint32_t>(part.count(), 2000);
    pixels found;
    for_each_in({{0, 0, 0}, part.size}, laid_out, [&](std::size_t next, std::size_t at) {
        found.push_back(std::exchange(first[at], replacement.at(next)));
    });
    EXPECT_EQ(found, taken(target.expected, part, of.size));
    b.run(typename Api::unmap_mem_object(*target.image, mapped));
    target.expect(replacement, part);
    target.check();
};

auto const fills = []<class Api>(bench<Api>& b, kind const& of) {
    canvas<Api> target(b, of, counting<std::uint32_t>(200));
    auto const part = target.inner(1);
    std::array<std::uint32_t, 4> const color{4, 3, 2, 1}, other{8, 7, 6, 5};
    b.run(typename Api::template fill_image<std::uint32_t>(*target.image, color, part.origin, part.size));
    target.expect(pixels(part.count(), 0x01020304), part);
    typename Api::fill_image_base fill(*target.image, color.data(), {0, 0, 0}, {1, 1, 1});
    fill.update_fill_color_pointer(other.data());
    b.run(fill);
    target.expected[0] = 0x05060708;
    target.check();
};

template <int First>
struct kind_scenarios {
    explicit kind_scenarios(kind const& of) {
        add<First>("moves", "images, ", of, moves);
        add<First>("maps", "image maps, ", of, maps);
        add<120>("fills", "images, ", of, fills);
    }

    template <int From, class Run>
    static void add(std::string const& what, std::string const& feature, kind const& of, Run run) {
        scenario<From>(what + "_image_" + of.name, feature + of.name, [run, of](auto& b) { run(b, of); });
    }
};

kind_scenarios<100> const flat(two), deep(three);
kind_scenarios<120> const line(one), over_buffer(one_buffer), lines(one_array), layers(two_array);

SCENARIO(takes_pitches_of_the_host, "image pitches of the host", 100) {
    demand_images(b);
    region const whole{{0, 0, 0}, {7, 3, 2}}, first{{0, 0, 0}, {7, 3, 1}};
    pixels laid_out(100); // rows of 40 and slices of 200 bytes
    put(counting<std::uint32_t>(whole.count()), whole, laid_out, {10, 5, 1});
    auto const flags = Api::mem_flags::read_only | Api::mem_flags::copy_host_ptr;
    auto const expect = [&b](typename Api::image const& image, region const& part) {
        EXPECT_EQ(read(b, image, part), counting<std::uint32_t>(part.count()));
    };
    auto& c = b.context;
    void* const data = laid_out.data();
    expect(c.create_image_2d(flags, rgba<Api>, 7, 3, 40, data), first);
    expect(c.create_image_3d(flags, rgba<Api>, 7, 3, 2, 40, 200, data), whole);
    if constexpr (Api::number >= 120) {
        expect(c.create_image_2d_array(flags, rgba<Api>, 7, 3, 2, 200, 40, data), whole);
        expect(c.create_image_1d_array(flags, rgba<Api>, 7, 3, 40, 40, data), first);
    }
    EXPECT_THROW(c.create_image_2d(flags, rgba<Api>, 0, 3, 0, nullptr), common::opencl_error);
}

SCENARIO(lists_formats, "image formats", 100) {
    demand_images(b);
    for (auto const& found : {b.context.image_2d_supported_formats(Api::mem_flags::read_write),
                              b.context.image_3d_supported_formats(Api::mem_flags::read_only)}) {
        EXPECT_NE(std::ranges::find(found, rgba<Api>), found.end());
    }
}

} // namespace
} // namespace real
