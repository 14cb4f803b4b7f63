#include "support.hpp"

#include <atomic>

namespace real {
namespace {

SCENARIO(makes_buffers, "buffers", 100) {
    numbers sent{1, -2, 3, -4};
    auto const plain = b.context.create_buffer(Api::mem_flags::read_write, 16, nullptr);
    expect_counted(plain);
    EXPECT_EQ(plain.size(), 16U);
    EXPECT_EQ(plain.host_ptr(), nullptr);
    EXPECT_EQ(raw_of(plain.get_context()), raw_of(b.context));
    auto const own = Api::mem_flags::read_only | Api::mem_flags::use_host_ptr;
    auto const over_host = b.context.create_buffer(own, 16, sent.data());
    EXPECT_EQ(b.load(over_host), sent);
    EXPECT_EQ(over_host.host_ptr(), sent.data());
    EXPECT_EQ(over_host.flags(), own);
    auto const copied = b.store(sent);
    auto const same = copied; // NOLINT(performance-unnecessary-copy-initialization): retains
    sent[0] = 9;
    EXPECT_EQ(b.load(same), (numbers{1, -2, 3, -4}));
    EXPECT_THROW(b.context.create_buffer(Api::mem_flags::read_write, 0, nullptr), common::invalid_buffer_size);
}

SCENARIO(makes_sub_buffers, "sub-buffers", 110) {
    std::size_t const size = b.device.mem_base_addr_align() / 8;
    auto const count = size / sizeof(std::int32_t);
    auto parent = b.store(counting(3 * count));
    auto& destroyed = lasting<std::atomic<int>>();
    {
        auto part = b.context.create_sub_buffer(parent, Api::mem_flags::read_only, size, size);
        EXPECT_EQ(part.offset(), size);
        EXPECT_EQ(part.size(), size);
        EXPECT_EQ(part.flags() & Api::mem_flags::read_only, Api::mem_flags::read_only);
        EXPECT_EQ(raw_of(part.parent_buffer()), raw_of(parent));
        EXPECT_EQ(b.load(part), counting(count, static_cast<std::int32_t>(count) + 1));
        auto const count_call = [](_nq_cl_mem*, void* calls) { ++*static_cast<std::atomic<int>*>(calls); };
        b.expect(CL_SUCCESS, wire::clSetMemObjectDestructorCallback{raw_of(part), count_call, &destroyed});
    }
    EXPECT_TRUE(comes_true([&destroyed] { return destroyed == 1; }));
    EXPECT_THROW(b.context.create_sub_buffer(parent, Api::mem_flags::read_write, 2 * size, 2 * size),
                 common::invalid_value);
}

SCENARIO(makes_pipes, "pipes", 200) {
    auto const packets = b.context.create_pipe(Api::mem_flags::read_write | Api::mem_flags::host_no_access, 4, 16);
    EXPECT_EQ(packets.packet_size(), 4U);
    EXPECT_EQ(packets.max_packets(), 16U);
    EXPECT_GE(packets.size(), 64U);
    EXPECT_THROW(b.context.create_pipe(Api::mem_flags::read_write, 0, 16), common::invalid_pipe_size);
}

SCENARIO(refuses_what_is_no_pipe, "queries of what is no pipe", 200) {
    auto const buffer = b.store(numbers(4));
    auto const asked = b.perform(wire::clGetPipeInfo{.pipe = raw_of(buffer), .param_name = CL_PIPE_PACKET_SIZE});
    vorn::mero::internal::check_error(asked.status);
}

/// What a nearest sampler reads at `x` of the pixels 10, 20, 30, 40.
struct sample {
    bool normalized;
    int mode;
    float x;
    int expected;
};

SCENARIO(samples_images, "samplers", 100) {
    using addressing = typename Api::sampler_addressing_mode;
    using filter = typename Api::sampler_filter_mode;
    numbers pixels{10, 20, 30, 40};
    auto image = b.context.create_image_2d(Api::mem_flags::read_only | Api::mem_flags::copy_host_ptr,
                                           {Api::image_channel_order::r, Api::image_channel_type::signed_int32}, 4, 1,
                                           0, pixels.data());
    auto result = b.store(numbers{0});
    auto kernel = b.build("__kernel void f(__global int* out, __read_only image2d_t image, sampler_t s, float x)"
                          "{ *out = read_imagei(image, s, (float2)(x, 0.0f)).x; }")
                      .create_kernel("f");
    for (sample const& each : {sample{false, CL_ADDRESS_CLAMP_TO_EDGE, -3.0F, 10},
                               {false, CL_ADDRESS_CLAMP, 9.0F, 0},
                               {true, CL_ADDRESS_CLAMP_TO_EDGE, 0.3F, 20},
                               {true, CL_ADDRESS_REPEAT, 1.3F, 20}}) {
        auto sampler = b.context.create_sampler(each.normalized, addressing(each.mode), filter::nearest);
        b.set_arguments(kernel, result, image, sampler, each.x);
        b.launch(kernel, 1);
        EXPECT_EQ(b.load(result), numbers{each.expected}) << each.mode << " at " << each.x;
    }
    auto const linear = b.context.create_sampler(true, addressing::repeat, filter::linear);
    EXPECT_TRUE(linear.normalized_coords());
    EXPECT_EQ(linear.addressing_mode(), addressing::repeat);
    EXPECT_EQ(linear.filter_mode(), filter::linear);
    EXPECT_EQ(linear.get_context(), b.context);
    expect_counted(linear);
}

} // namespace
} // namespace real
