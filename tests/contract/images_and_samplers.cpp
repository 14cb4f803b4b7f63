#include "scenario.hpp"

#include <algorithm>

namespace contract {

using namespace nq::block;

namespace {

struct image_format {
    std::uint32_t order;
    std::uint32_t type;
    bool operator==(image_format const&) const = default;
};
constexpr image_format format{rgba, unsigned_int8};

constexpr std::size_t width = 8, height = 4;
using pixels = std::array<std::uint32_t, width * height>;
using triple = std::array<std::size_t, 3>;
constexpr triple corner{0, 0, 0}, whole{width, height, 1};

template <nq::capability Version>
_nq_cl_mem* make_image(session<Version>& s) {
    if constexpr (nq::has_command<Version, clCreateImage>) {
        nq::image_desc const description{.image_type = image2d, .image_width = width, .image_height = height};
        return s
            .ok(clCreateImage{
                .flags = mem_read_write, .context = s.context, .image_format = &format, .image_desc = &description})
            .result;
    } else {
        auto* const deep = s.ok(clCreateImage3D{.flags = mem_read_write,
                                                .context = s.context,
                                                .image_format = &format,
                                                .image_width = width,
                                                .image_height = height,
                                                .image_depth = 2})
                               .result;
        EXPECT_EQ(s.template info<std::size_t>(clGetImageInfo{deep}, image_width), width);
        s.ok(clReleaseMemObject{deep});
        return s
            .ok(clCreateImage2D{.flags = mem_read_write,
                                .context = s.context,
                                .image_format = &format,
                                .image_width = width,
                                .image_height = height})
            .result;
    }
}

template <nq::capability Version>
pixels read_image(session<Version>& s, _nq_cl_mem* image) {
    pixels values{};
    s.ok(clEnqueueReadImage{.command_queue = s.queue,
                            .image = image,
                            .origin = corner.data(),
                            .region = whole.data(),
                            .ptr = &values,
                            .blocking_read = 1});
    return values;
}

template <nq::capability Version>
void formats(session<Version>& s) {
    std::uint32_t count = 0;
    clGetSupportedImageFormats request{
        .flags = mem_read_write, .context = s.context, .num_image_formats = &count, .image_type = image2d};
    s.ok(request);
    std::vector<image_format> found(count);
    request.image_formats = found.data();
    request.num_entries = count;
    s.ok(request);
    EXPECT_NE(std::ranges::find(found, format), found.end());
}

template <nq::capability Version>
void copies(session<Version>& s, _nq_cl_mem* source, _nq_cl_mem* target, pixels const& values) {
    triple const one{1, 1, 1};
    triple const place{3, 2, 0};
    s.ok(clEnqueueCopyImage{.command_queue = s.queue,
                            .src_image = source,
                            .dst_image = target,
                            .src_origin = corner.data(),
                            .dst_origin = place.data(),
                            .region = one.data()});
    EXPECT_EQ(read_image(s, target)[place[0] + width * place[1]], values[0]);
    auto* const buffer = make_buffer(s, numbers{});
    s.ok(clEnqueueCopyImageToBuffer{.command_queue = s.queue,
                                    .src_image = source,
                                    .dst_buffer = buffer,
                                    .src_origin = corner.data(),
                                    .region = whole.data(),
                                    .dst_offset = 4});
    EXPECT_EQ(static_cast<std::uint32_t>(read(s, buffer)[1]), values[0]);
    s.ok(clEnqueueCopyBufferToImage{.command_queue = s.queue,
                                    .src_buffer = buffer,
                                    .dst_image = target,
                                    .src_offset = 4,
                                    .dst_origin = corner.data(),
                                    .region = whole.data()});
    EXPECT_EQ(read_image(s, target), values);
    s.ok(clReleaseMemObject{buffer});
}

template <nq::capability Version>
void map_and_fill(session<Version>& s, _nq_cl_mem* image, pixels const& values) {
    std::size_t row_pitch = 0;
    std::size_t slice_pitch = 0;
    auto const mapped = s.ok(clEnqueueMapImage{.map_flags = map_read,
                                               .command_queue = s.queue,
                                               .image = image,
                                               .origin = corner.data(),
                                               .region = whole.data(),
                                               .image_row_pitch = &row_pitch,
                                               .image_slice_pitch = &slice_pitch,
                                               .blocking_map = 1});
    EXPECT_GE(row_pitch, width * sizeof(std::uint32_t));
    EXPECT_EQ(std::memcmp(static_cast<char*>(mapped.result) + row_pitch, &values[width], width * 4), 0);
    s.ok(clEnqueueUnmapMemObject{.command_queue = s.queue, .memobj = image, .mapped_ptr = mapped.result});
    if constexpr (nq::has_command<Version, clEnqueueFillImage>) {
        std::array<std::uint32_t, 4> const color{1, 2, 3, 4};
        s.ok(clEnqueueFillImage{.command_queue = s.queue,
                                .image = image,
                                .fill_color = &color,
                                .origin = corner.data(),
                                .region = whole.data()});
        EXPECT_EQ(read_image(s, image)[5], 0x04030201U);
    }
}

template <nq::capability Version>
void samplers(session<Version>& s) {
    _nq_cl_sampler* sampler = nullptr;
    if constexpr (nq::has_command<Version, clCreateSampler>) {
        sampler = s.ok(clCreateSampler{s.context, 0, clamp_to_edge, nearest}).result;
    } else {
        std::array<std::uint64_t, 7> const properties{
            sampler_normalized, 0, sampler_addressing, clamp_to_edge, sampler_filter, nearest, 0};
        sampler = s.ok(clCreateSamplerWithProperties{s.context, properties.data()}).result;
    }
    EXPECT_EQ(s.template info<std::uint32_t>(clGetSamplerInfo{sampler}, sampler_normalized), 0U);
    EXPECT_EQ(s.template info<std::uint32_t>(clGetSamplerInfo{sampler}, sampler_addressing), clamp_to_edge);
    EXPECT_EQ(s.template info<std::uint32_t>(clGetSamplerInfo{sampler}, sampler_filter), nearest);
    s.template references<clRetainSampler, clReleaseSampler, clGetSamplerInfo>(sampler, sampler_reference_count);
    s.ok(clReleaseSampler{sampler});
}

} // namespace

template <nq::capability Version>
void images_and_samplers(session<Version>& s) {
    formats(s);
    auto* const source = make_image(s);
    auto* const target = make_image(s);
    EXPECT_EQ(s.template info<std::size_t>(clGetImageInfo{source}, image_width), width);
    pixels values{};
    std::ranges::generate(values, [next = 0x01020300U]() mutable { return next++; });
    s.ok(clEnqueueWriteImage{.command_queue = s.queue,
                             .image = source,
                             .origin = corner.data(),
                             .region = whole.data(),
                             .ptr = &values,
                             .blocking_write = 1});
    EXPECT_EQ(read_image(s, source), values);
    copies(s, source, target, values);
    map_and_fill(s, source, values);
    s.ok(clReleaseMemObject{source});
    s.ok(clReleaseMemObject{target});
    samplers(s);
}
CONTRACT_INSTANTIATE(images_and_samplers);

} // namespace contract
