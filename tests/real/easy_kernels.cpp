// What kernels take as arguments, and what the layer says of those that do not fit.

#include "support.hpp"

#include <vorn/mero/easy.hpp>

/// A type of the program's own that kernels take as an array of its numbers.
struct weights {
    std::array<float, 4> values;
    bool is_empty;
};

template <int Version>
struct vorn::mero::easy::argument_traits<weights, Version> {
    using value = argument_traits<std::array<float, 4>, Version>;
    static void check(argument_place const& at, weights const& w) { value::check(at, w.values); }
    static void set(typename api<Version>::kernel& kernel, unsigned index, weights const& w) {
        if (w.is_empty) { // as if OpenCL had answered with a status of a vendor's own
            throw common::unknown_opencl_error(-9999);
        }
        value::set(kernel, index, w.values);
    }
    static std::string text(weights const&) { return "weights"; }
};

namespace real {
namespace {

namespace ez = vorn::mero::easy;

char const source[] = R"(
    typedef global float* results;
    kernel void blend(read_only image2d_t picture, sampler_t how, results sums, float4 shift, float3 scale) {
        float4 const pixel = read_imagef(picture, how, (int2)(1, 0)) + shift;
        sums[get_global_id(0)] = pixel.x * scale.x + pixel.w * scale.z;
    })";

template <class Api>
struct pieces {
    using enum_order = typename Api::image_channel_order;
    using enum_type = typename Api::image_channel_type;

    explicit pieces(bench<Api>& b)
        : gpu(b.device, b.context), blend(gpu.build(source)["blend"]), sums(gpu.template array<float>(2)),
          picture(b.context.create_image_2d(
              Api::mem_flags::read_only | Api::mem_flags::copy_host_ptr,
              typename Api::image_format(static_cast<enum_order>(CL_RGBA), static_cast<enum_type>(CL_FLOAT)), 2, 1, 0,
              pixels.data())),
          how(b.context.create_sampler(false, static_cast<typename Api::sampler_addressing_mode>(CL_ADDRESS_CLAMP),
                                       static_cast<typename Api::sampler_filter_mode>(CL_FILTER_NEAREST))) {}

    std::array<float, 8> pixels{0, 0, 0, 0, 1, 2, 3, 4};
    ez::basic_session<Api::number> gpu;
    ez::basic_kernel<Api::number> blend;
    ez::basic_array<float, Api::number> sums;
    typename Api::image_2d picture;
    typename Api::sampler how;
};

SCENARIO(easy_takes_images_and_vectors, "easy arguments", 100) {
    pieces<Api> with(b);
    cl_float4 const shift{{10, 0, 0, 20}};
    cl_float3 const scale{{1, 0, 2}};
    with.blend(ez::range(1), with.picture, with.how, with.sums, shift, scale);
    EXPECT_EQ(with.sums.read()[0], 59.0F);
    with.blend(ez::range(1), with.picture, with.how, with.sums, weights{{0, 0, 0, 0}, false}, scale);
    EXPECT_EQ(with.sums.read()[0], 9.0F);
    EXPECT_NE(refusal<ez::argument_error>([&] {
                  with.blend.set_arguments(with.picture, with.how, with.sums, weights{{}, true}, scale);
              }).find("was given weights, which OpenCL refuses: "),
              std::string::npos);
}

SCENARIO(easy_takes_structures_named_like_images, "easy arguments", 100) {
    ez::basic_session<Api::number> const gpu(b.device, b.context);
    auto area = gpu.build("typedef struct { int w, h; } image_size_t;"
                          "kernel void f(image_size_t size, global int* v) { *v = size.w * size.h; }")["f"];
    auto result = gpu.template array<int>(1);
    struct {
        std::int32_t w = 3, h = 4;
    } const size;
    area(ez::range(1), size, result);
    EXPECT_EQ(result.read()[0], 12);
}

SCENARIO(easy_refuses_arrays_of_other_contexts, "easy arguments", 100) {
    pieces<Api> with(b);
    ez::basic_session<Api::number> const other(b.device);
    auto far = other.template array<float>(2);
    cl_float4 const v{{1, 2, 3, 4}};
    auto const refused = [&] {
        return refusal<ez::argument_error>([&] { with.blend(ez::range(1), with.picture, with.how, far, v, v); });
    };
    EXPECT_NE(refused().find("was given an array of 2 elements of 4 bytes of another context: make it by"),
              std::string::npos)
        << refused();
    auto const near = std::move(far);
    EXPECT_NE(refused().find("that was moved from"), std::string::npos) << refused();
}

SCENARIO(easy_tells_arguments_apart, "easy arguments", 120) {
    pieces<Api> with(b);
    cl_float4 const v{{1, 2, 3, 4}};
    auto const refused = [&](auto&&... arguments) {
        return refusal<ez::argument_error>([&] { with.blend.set_arguments(arguments...); });
    };
    if (refused(with.picture, with.how, with.sums, v, 1) == "nothing") {
        skip("the implementation does not tell how arguments are declared");
    }
    auto buffer = b.store(numbers{1});
    auto cube =
        b.context.create_image_3d(Api::mem_flags::read_only, with.picture.get_image_format(), 1, 1, 1, 0, 0, nullptr);
    cl_int4 const integers{{1, 2, 3, 4}};
    EXPECT_EQ(
        refused(with.sums, with.how, with.sums, v, v),
        "kernel 'blend', argument 0 'picture' (image2d_t) takes an image, but was given a pointer: pass one made by "
        "gpu.image");
    EXPECT_EQ(refused(cube, with.how, with.sums, v, v),
              "kernel 'blend', argument 0 'picture' (image2d_t) takes another kind of image, but was given one for "
              "image3d_t: pass an image of as many dimensions as declared");
    EXPECT_EQ(
        refused(with.picture, 7U, with.sums, v, v),
        "kernel 'blend', argument 1 'how' (sampler_t) takes a sampler, but was given the integer 7: pass one made by "
        "gpu.sampler");
    EXPECT_NE(refused(with.picture, with.how, with.picture, v, v)
                  .find("takes a pointer, but was given an image: pass an array"),
              std::string::npos);
    EXPECT_EQ(
        refused(with.picture, with.how, buffer, with.how, v),
        "kernel 'blend', argument 3 'shift' (float4) takes a floating-point number, but was given a sampler: pass a "
        "value of that type");
    EXPECT_EQ(
        refused(with.picture, with.how, nullptr, integers, v),
        "kernel 'blend', argument 3 'shift' (float4) takes a floating-point number, but was given the vector {1, 2, "
        "3, 4}: convert the value first");
    EXPECT_EQ(
        refused(with.picture, with.how, with.sums, v, std::array<float, 3>{1, 2, 3}),
        "kernel 'blend', argument 4 'scale' (float3) takes a floating-point number of 16 bytes, but was given the "
        "vector {1, 2, 3} of 12: pass a value of the right type");
}

SCENARIO(easy_names_refused_calls, "easy arguments", 120) {
    auto const gpu = ez::basic_session<Api::number>(b.device, b.context);
    auto f =
        gpu.build("kernel __attribute__((reqd_work_group_size(2, 1, 1))) void f(global int* v, local int* s) {}")["f"];
    auto v = gpu.template array<int>(1);
    std::string const empty = refusal<ez::argument_error>([&] { f(ez::range(2).local(2), v, ez::local<int>(0)); });
    bool const takes_nothing =
        b.differs("intel", "takes local memory of no bytes") || b.differs("oclgrind", "takes local memory of no bytes");
    EXPECT_EQ(empty.find(takes_nothing ? "nothing"
                                       : "kernel 'f', argument 1 's' (int*) was given local memory for 0 "
                                         "elements of 4 bytes, which OpenCL refuses: "),
              0U)
        << empty;
    std::string const refused = refusal<ez::launch_error>([&] { f(ez::range(9).local(3), v, ez::local<int>(1)); });
    EXPECT_EQ(refused.find("kernel 'f' over 9 work-items in groups of 3: "), 0U) << refused;
    EXPECT_NE(refused.find("; the source requires groups of 2 x 1 x 1"), std::string::npos) << refused;
}

} // namespace
} // namespace real
