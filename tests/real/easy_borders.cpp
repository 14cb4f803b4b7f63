// Objects that cross the border between the layer and libraries that know OpenCL's handles alone, on every device.

#include "support.hpp"

#include <vorn/mero/easy.hpp>
#include <vorn/mero/easy/borders.hpp>

namespace real {
namespace {

namespace ez = vorn::mero::easy;

char const source[] = "kernel void twice(global int* v) { v[get_global_id(0)] *= 2; }";

SCENARIO(easy_borders_sessions, "easy layer", 100) {
    using session = ez::basic_session<Api::number>;
    auto const theirs = ez::to_cl(b.context);
    auto const context_count = Api::refcount(b.context);
    {
        auto const own_queue = session::on_device_of(theirs, ez::to_cl(b.device));
        EXPECT_EQ(own_queue.device(), b.device);
        EXPECT_EQ(ez::find_device<Api::number>(ez::to_cl(b.device)), b.device);
        EXPECT_EQ(own_queue.context(), b.context);
        EXPECT_NE(own_queue.queue(), b.queue);
        auto const same_queue = ez::from_cl<session>(ez::to_cl(b.queue), ez::retain);
        EXPECT_EQ(same_queue.queue(), b.queue);
        EXPECT_EQ(same_queue.context(), b.context);
        auto values = session::on_device_of(theirs).array(numbers{1, 2, 3});
        using array = ez::basic_array<std::int32_t, Api::number>;
        EXPECT_EQ(ez::from_cl<array>(ez::to_cl(values), same_queue, ez::retain).read(), (numbers{1, 2, 3}));
    }
    EXPECT_TRUE(comes_true([&] { return Api::refcount(b.context) == context_count; })); // rusticl's queues end later
    EXPECT_NE(refusal<ez::argument_error>([] { session::on_device_of(cl_context(nullptr)); }), "nothing");
}

SCENARIO(easy_borders_objects, "easy layer", 110) {
    ez::basic_session<Api::number> const gpu(b.device, b.context, Api::create_queue(b.context, b.device, false, true));
    auto program = gpu.build(source);
    auto kernel = program["twice"];
    auto values = gpu.array(numbers{1, 2, 3, 4});
    auto const count = Api::refcount(values.exact());
    {
        auto pairs =
            ez::from_cl<ez::basic_array<std::array<std::int32_t, 2>, Api::number>>(ez::to_cl(values), gpu, ez::retain);
        EXPECT_EQ(pairs.size(), 2U);
        EXPECT_EQ(Api::refcount(values.exact()), count + 1);
        Api::retain(values.exact()); // what the next object takes over
        auto const exact = ez::from_cl<typename Api::buffer>(ez::to_cl(values), b.queue, ez::take_over);
        EXPECT_EQ(Api::refcount(exact), count + 2);
        auto same_kernel = ez::from_cl<ez::basic_kernel<Api::number>>(ez::to_cl(kernel), gpu, ez::retain);
        auto const done = same_kernel(ez::range(4), values);
        ez::from_cl<ez::basic_event<Api::number>>(ez::to_cl(done), gpu, ez::retain).wait();
        EXPECT_EQ(ez::from_cl<ez::basic_program<Api::number>>(ez::to_cl(program), gpu, ez::retain).exact(),
                  program.exact());
        _nq_cl_event* const list[] = {ez::from_cl(ez::to_cl(done))};
        b.context.wait_for_events(1, list);
    }
    kernel(ez::range(4), values);
    EXPECT_EQ(values.read(), (numbers{4, 8, 12, 16}));

    ez::basic_session<Api::number> const elsewhere(b.device);
    auto foreign = elsewhere.array(numbers{1});
    using array = ez::basic_array<std::int32_t, Api::number>;
    EXPECT_NE(refusal<ez::argument_error>([&] {
                  ez::from_cl<array>(ez::to_cl(foreign), gpu, ez::retain);
              }).find("another context"),
              std::string::npos);
    EXPECT_NE(refusal<ez::argument_error>([&] { ez::from_cl<array>(ez::to_cl(foreign), gpu, ez::take_over); }),
              "nothing");
    EXPECT_EQ(Api::refcount(foreign.exact()), 1U); // what is refused is not taken over
    EXPECT_NE(refusal<ez::argument_error>([&] { ez::from_cl<array>(cl_mem(nullptr), gpu, ez::retain); }), "nothing");
}

SCENARIO(easy_borders_parts, "easy layer", 110) {
    ez::basic_session<Api::number> const gpu(b.device, b.context, b.queue);
    std::size_t const step = b.device.mem_base_addr_align() / 8; // where parts may begin
    auto all = gpu.array(counting<std::uint8_t>(2 * step + 4));
    auto half = all.part(step, step + 4);
    Api::retain(half.exact()); // what the next object takes over
    auto const count = Api::refcount(half.exact());
    {
        auto same = ez::from_cl<ez::basic_array<std::uint8_t, Api::number>>(ez::to_cl(half), gpu, ez::take_over);
        EXPECT_EQ(Api::refcount(half.exact()), count);
        EXPECT_EQ(same.part(step, 4).read(), counting<std::uint8_t>(4, static_cast<std::uint8_t>(2 * step + 1)));
    }
    EXPECT_EQ(Api::refcount(half.exact()), count - 1);
}

SCENARIO(easy_borders_images, "images", 120) {
    ez::basic_session<Api::number> const gpu(b.device, b.context, b.queue);
    auto picture = gpu.template image<ez::rgba8>(3, 2);
    std::vector<std::array<std::uint8_t, 4>> const pixels(6, {1, 2, 3, 4});
    picture.write(pixels);
    using image = ez::basic_image<ez::rgba8, ez::image_kind::two, Api::number>;
    auto const same = ez::from_cl<image>(ez::to_cl(picture), gpu, ez::retain);
    EXPECT_EQ(same.size(), picture.size());
    EXPECT_EQ(same.read(), pixels);
    using other = ez::basic_image<ez::r32f, ez::image_kind::two, Api::number>;
    EXPECT_EQ(refusal<ez::argument_error>([&] { ez::from_cl<other>(ez::to_cl(picture), gpu, ez::retain); }),
              "The image from another library has the format rgba unorm_int8, and not r float");
    auto const rows = gpu.template image_array<ez::rgba8>(4, 3);
    using images = ez::basic_image<ez::rgba8, ez::image_kind::one_array, Api::number>;
    EXPECT_EQ(ez::from_cl<images>(ez::to_cl(rows), gpu, ez::retain).size(), rows.size());
}

SCENARIO(easy_borders_of_a_part, "sub-devices", 120) {
    auto const parts = b.device.partition_equally(1);
    auto const context = Api::create_context(parts.back()); // PoCL says that it is of the whole device
    auto const gpu = ez::basic_session<Api::number>::on_device_of(ez::to_cl(context), ez::to_cl(parts.back()));
    EXPECT_EQ(gpu.device(), parts.back());
    EXPECT_EQ(gpu.array(numbers{5}).read(), numbers{5});
}

} // namespace
} // namespace real
