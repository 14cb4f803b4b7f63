// Finds the edges in a picture on a device, and checks the result on the host.
//
//     image_filter IN.png OUT.png [--platform TEXT]
//
// Exits 1 if a colour of a pixel differs from the host's by more than 1 of 255.

#include "support.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <png.h>

namespace cl = vorn::mero::opencl_1_2;
namespace easy = vorn::mero::easy;

namespace {

struct picture {
    std::size_t width;
    std::size_t height;
    std::vector<unsigned char> pixels; // four bytes each, red first
};

constexpr char const* source = R"(
constant sampler_t nearest = CLK_NORMALIZED_COORDS_FALSE | CLK_ADDRESS_CLAMP_TO_EDGE | CLK_FILTER_NEAREST;

float3 at(read_only image2d_t picture, int x, int y) {
    return convert_float3(read_imageui(picture, nearest, (int2)(x, y)).xyz);
}

// The length of the gradient in each colour, with the Sobel operator.
kernel void edges(read_only image2d_t from, write_only image2d_t to) {
    int x = get_global_id(0);
    int y = get_global_id(1);
    float3 right = at(from, x + 1, y - 1) + 2.0f * at(from, x + 1, y) + at(from, x + 1, y + 1);
    float3 left = at(from, x - 1, y - 1) + 2.0f * at(from, x - 1, y) + at(from, x - 1, y + 1);
    float3 below = at(from, x - 1, y + 1) + 2.0f * at(from, x, y + 1) + at(from, x + 1, y + 1);
    float3 above = at(from, x - 1, y - 1) + 2.0f * at(from, x, y - 1) + at(from, x + 1, y - 1);
    float3 length = min(sqrt((right - left) * (right - left) + (below - above) * (below - above)), 255.0f);
    write_imageui(to, (int2)(x, y), (uint4)(convert_uint3_rte(length), 255));
}
)";

png_image open_png() {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    return image;
}

picture read_png(char const* path) {
    png_image image = open_png();
    if (png_image_begin_read_from_file(&image, path) == 0) {
        throw std::runtime_error(std::string(path) + ": " + image.message);
    }
    image.format = PNG_FORMAT_RGBA;
    picture read{image.width, image.height, std::vector<unsigned char>(PNG_IMAGE_SIZE(image))};
    if (png_image_finish_read(&image, nullptr, read.pixels.data(), 0, nullptr) == 0) {
        throw std::runtime_error(std::string(path) + ": " + image.message);
    }
    return read;
}

void write_png(char const* path, picture const& written) {
    png_image image = open_png();
    image.width = static_cast<png_uint_32>(written.width);
    image.height = static_cast<png_uint_32>(written.height);
    image.format = PNG_FORMAT_RGBA;
    if (png_image_write_to_file(&image, path, 0, written.pixels.data(), 0, nullptr) == 0) {
        throw std::runtime_error(std::string(path) + ": " + image.message);
    }
}

picture find_edges(cl::device const& device, picture const& in) {
    cl::context context = cl::create_context({}, {device}, nullptr, nullptr);
    cl::command_queue queue = context.create_command_queue(device, false, false);
    cl::program program = easy::build<120>(context, device, source);
    cl::kernel kernel = program.create_kernel("edges");

    cl::image_format const format{cl::image_channel_order::rgba, cl::image_channel_type::unsigned_int8};
    cl::image_2d from = context.create_image_2d(cl::mem_flags::read_only, format, in.width, in.height, 0, nullptr);
    cl::image_2d to = context.create_image_2d(cl::mem_flags::write_only, format, in.width, in.height, 0, nullptr);
    kernel.set_argument(0, from);
    kernel.set_argument(1, to);

    picture out{in.width, in.height, std::vector<unsigned char>(in.pixels.size())};
    std::array<std::size_t, 3> const origin{0, 0, 0};
    std::array<std::size_t, 3> const region{in.width, in.height, 1};
    easy::finish_guard const guard(queue); // the commands use the pictures also where one of the calls fails
    queue.enqueue_command_without_event(cl::write_image(from, false, origin, region, 0, 0, in.pixels.data()));
    queue.enqueue_command_without_event(cl::nd_range_kernel(kernel, 2, origin, region, {1, 1, 1}));
    queue.enqueue_command_without_event(cl::read_image(to, true, origin, region, 0, 0, out.pixels.data()));
    return out;
}

// The same for one colour of one pixel, on the host.
int edge_at(picture const& in, std::ptrdiff_t x, std::ptrdiff_t y, std::size_t colour) {
    auto const at = [&](std::ptrdiff_t dx, std::ptrdiff_t dy) {
        auto const column = std::clamp<std::ptrdiff_t>(x + dx, 0, static_cast<std::ptrdiff_t>(in.width) - 1);
        auto const line = std::clamp<std::ptrdiff_t>(y + dy, 0, static_cast<std::ptrdiff_t>(in.height) - 1);
        auto const pixel = static_cast<std::size_t>(line) * in.width + static_cast<std::size_t>(column);
        return static_cast<float>(in.pixels[pixel * 4 + colour]);
    };
    float const across = at(1, -1) + 2 * at(1, 0) + at(1, 1) - at(-1, -1) - 2 * at(-1, 0) - at(-1, 1);
    float const down = at(-1, 1) + 2 * at(0, 1) + at(1, 1) - at(-1, -1) - 2 * at(0, -1) - at(1, -1);
    return static_cast<int>(std::lrint(std::min(std::sqrt(across * across + down * down), 255.0F)));
}

int largest_difference(picture const& in, picture const& out) {
    int largest = 0;
    for (std::size_t i = 0; i != out.pixels.size(); ++i) {
        std::size_t const pixel = i / 4;
        int const expected = i % 4 == 3 ? 255
                                        : edge_at(in, static_cast<std::ptrdiff_t>(pixel % in.width),
                                                  static_cast<std::ptrdiff_t>(pixel / in.width), i % 4);
        largest = std::max(largest, std::abs(out.pixels[i] - expected));
    }
    return largest;
}

} // namespace

int main(int count, char** arguments) {
    if (count < 3) {
        std::fprintf(stderr, "usage: image_filter IN.png OUT.png [--platform TEXT]\n");
        return EXIT_FAILURE;
    }
    try {
        auto const device = easy::find_device<120>(example::option(count, arguments, "--platform", ""),
                                                   [](cl::device const& d) { return d.image_support(); });
        picture const in = read_png(arguments[1]);
        picture const out = find_edges(device, in);
        write_png(arguments[2], out);
        int const difference = largest_difference(in, out);
        std::printf("%s: %zu x %zu pixels, largest difference to the host %d of 255\n", device.name().c_str(), in.width,
                    in.height, difference);
        return difference <= 1 ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "image_filter: %s\n", failure.what());
        return EXIT_FAILURE;
    }
}
