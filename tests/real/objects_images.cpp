#include "c_answers.hpp"
#include "objects.hpp"

#include <numeric>

namespace real {
namespace {

using bytes = std::vector<unsigned char>;
using box = std::array<std::size_t, 3>;

bytes counting(std::size_t count) {
    bytes values(count);
    std::iota(values.begin(), values.end(), static_cast<unsigned char>(1));
    return values;
}

template <class Api>
typename Api::image_format const rgba{Api::image_channel_order::rgba, Api::image_channel_type::unsigned_int8};

constexpr std::size_t pixel_size = 4;

template <class Api>
bytes load_image(bench<Api>& b, typename Api::image const& image, box const& region) {
    bytes found(pixel_size * region[0] * region[1] * region[2]);
    b.run(typename Api::read_image(image, true, {0, 0, 0}, region, 0, 0, found.data()));
    return found;
}

template <class Member>
void expect_image_info(cl_mem image, char const* member, cl_image_info name, Member call) {
    expect_same<decltype(call())>(member, ask(REAL_C_API(clGetImageInfo), image, name), call,
                                  [](auto value) { return value; });
}

#define EXPECT_IMAGE(member, name) expect_image_info(raw, #member, name, [&] { return image.member(); })

template <class Api>
void query_image(bench<Api>& b, typename Api::image const& image, std::size_t width) {
    auto const raw = reinterpret_cast<cl_mem>(raw_of(image));
    EXPECT_EQ(image.width(), width);
    EXPECT_EQ(image.element_size(), pixel_size);
    EXPECT_EQ(image.get_image_format(), rgba<Api>);
    EXPECT_EQ(raw_of(image.get_context()), raw_of(b.context));
    EXPECT_IMAGE(row_pitch, CL_IMAGE_ROW_PITCH);
    EXPECT_IMAGE(slice_pitch, CL_IMAGE_SLICE_PITCH);
    EXPECT_IMAGE(height, CL_IMAGE_HEIGHT);
    EXPECT_IMAGE(depth, CL_IMAGE_DEPTH);
    if constexpr (Api::number >= 120) {
        EXPECT_IMAGE(array_size, CL_IMAGE_ARRAY_SIZE);
        EXPECT_IMAGE(num_mip_levels, CL_IMAGE_NUM_MIP_LEVELS);
        EXPECT_IMAGE(num_samples, CL_IMAGE_NUM_SAMPLES);
    }
}

/// Writes the whole image by command, reads it back and asks for its properties.
template <class Api>
void use_image(bench<Api>& b, typename Api::image image, box const& region) {
    expect_counted(image);
    auto const sent = counting(pixel_size * region[0] * region[1] * region[2]);
    b.run(typename Api::write_image(image, true, {0, 0, 0}, region, 0, 0, sent.data()));
    EXPECT_EQ(load_image(b, image, region), sent);
    query_image(b, image, region[0]);
}

/// The content of a 7 x 3 x 2 image with rows of 40 and slices of 200 bytes, where the unused bytes are 0.
bytes padded(box const& region, std::size_t row_pitch, std::size_t slice_pitch) {
    auto const pixels = counting(pixel_size * region[0] * region[1] * region[2]);
    bytes store(slice_pitch * region[2]);
    std::size_t const row = pixel_size * region[0];
    for (std::size_t z = 0; z < region[2]; ++z) {
        for (std::size_t y = 0; y < region[1]; ++y) {
            std::memcpy(&store[z * slice_pitch + y * row_pitch], &pixels[(z * region[1] + y) * row], row);
        }
    }
    return store;
}

template <class Api>
void images(bench<Api>& b) {
    auto const flags = Api::mem_flags::read_write;
    auto& c = b.context;
    use_image(b, c.create_image_2d(flags, rgba<Api>, 7, 3, 0, nullptr), {7, 3, 1});
    use_image(b, c.create_image_3d(flags, rgba<Api>, 7, 3, 2, 0, 0, nullptr), {7, 3, 2});
    if constexpr (Api::number >= 120) {
        use_image(b, c.create_image_1d(flags, rgba<Api>, 7, 0, nullptr), {7, 1, 1});
        use_image(b, c.create_image_1d_array(flags, rgba<Api>, 7, 3, 0, 0, nullptr), {7, 3, 1});
        use_image(b, c.create_image_2d_array(flags, rgba<Api>, 7, 3, 2, 0, 0, nullptr), {7, 3, 2});
    }
    EXPECT_THROW(c.create_image_2d(flags, rgba<Api>, 0, 3, 0, nullptr), common::opencl_error);
}

template <class Api>
void image_over_buffer(bench<Api>& b) {
    auto const pixels = counting(pixel_size * 16);
    auto store = b.store(pixels);
    auto const image = b.context.create_image_1d_buffer(Api::mem_flags::read_write, rgba<Api>, store, 16, 0, nullptr);
    EXPECT_EQ(load_image<Api>(b, image, {16, 1, 1}), pixels);
    query_image<Api>(b, image, 16);
}

/// Pitches of the host's memory: rows of 40 bytes, slices of 200.
template <class Api>
void pitches(bench<Api>& b) {
    auto const flags = Api::mem_flags::read_only | Api::mem_flags::copy_host_ptr;
    auto const expect_pixels = [&](typename Api::image const& image, box const& region) {
        EXPECT_EQ(load_image(b, image, region), counting(pixel_size * region[0] * region[1] * region[2]));
    };
    auto& c = b.context;
    auto flat = padded({7, 3, 1}, 40, 120);
    auto deep = padded({7, 3, 2}, 40, 200);
    expect_pixels(c.create_image_2d(flags, rgba<Api>, 7, 3, 40, flat.data()), {7, 3, 1});
    expect_pixels(c.create_image_3d(flags, rgba<Api>, 7, 3, 2, 40, 200, deep.data()), {7, 3, 2});
    if constexpr (Api::number >= 120) {
        expect_pixels(c.create_image_2d_array(flags, rgba<Api>, 7, 3, 2, 200, 40, deep.data()), {7, 3, 2});
        expect_pixels(c.create_image_1d_array(flags, rgba<Api>, 7, 3, 40, 40, flat.data()), {7, 3, 1});
    }
}

template <class Api>
void expect_formats(bench<Api>& b, cl_mem_object_type type, std::vector<typename Api::image_format> const& found) {
    auto const list = REAL_C_API(clGetSupportedImageFormats);
    auto const context = reinterpret_cast<cl_context>(raw_of(b.context));
    cl_uint count = 0;
    ASSERT_EQ(list(context, CL_MEM_READ_WRITE, type, 0, nullptr, &count), CL_SUCCESS);
    std::vector<typename Api::image_format> expected(count);
    ASSERT_EQ(
        list(context, CL_MEM_READ_WRITE, type, count, reinterpret_cast<cl_image_format*>(expected.data()), nullptr),
        CL_SUCCESS);
    EXPECT_EQ(found, expected);
    EXPECT_GT(count, 0U);
}

template <class Api>
void formats(bench<Api>& b) {
    auto const flags = Api::mem_flags::read_write;
    auto& c = b.context;
    expect_formats(b, CL_MEM_OBJECT_IMAGE2D, c.image_2d_supported_formats(flags));
    expect_formats(b, CL_MEM_OBJECT_IMAGE3D, c.image_3d_supported_formats(flags));
    if constexpr (Api::number >= 120) {
        expect_formats(b, CL_MEM_OBJECT_IMAGE1D, c.image_1d_supported_formats(flags));
        expect_formats(b, CL_MEM_OBJECT_IMAGE1D_BUFFER, c.image_1d_buffer_supported_formats(flags));
        expect_formats(b, CL_MEM_OBJECT_IMAGE1D_ARRAY, c.image_1d_array_supported_formats(flags));
        expect_formats(b, CL_MEM_OBJECT_IMAGE2D_ARRAY, c.image_2d_array_supported_formats(flags));
    }
}

template <class Scenario>
auto with_images(Scenario scenario) {
    return [scenario](auto& b) {
        if (!b.device.image_support()) {
            skip("the device has no images");
        }
        scenario(b);
    };
}

} // namespace

void add_images() {
    add_scenario<100>("images", "images", with_images([](auto& b) { images(b); }));
    add_scenario<100>("image_pitches", "image pitches of the host", with_images([](auto& b) { pitches(b); }));
    add_scenario<100>("image_formats", "image formats", with_images([](auto& b) { formats(b); }));
    add_scenario<120>("image_over_buffer", "1D images over buffers",
                      with_images([](auto& b) { image_over_buffer(b); }));
}

} // namespace real
