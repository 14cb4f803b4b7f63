#include "c_answers.hpp"

#include <numeric>

namespace real {
namespace {

SCENARIO(counts_references, "reference counts", 100) {
    auto const context = Api::create_context(b.device);
    expect_counted(context);
    expect_counted(b.queue);
    expect_counted(b.context.create_buffer(Api::mem_flags::read_write, 64, nullptr));
    auto program = b.build("__kernel void f(__global int* values) { values[0] = 1; }");
    EXPECT_EQ(refcount(program), 1U);
    expect_counted(program.create_kernel("f"));
    if constexpr (Api::number >= 110) {
        expect_counted(b.context.create_user_event());
    }
}

SCENARIO(buffers, "buffers", 100) {
    numbers sent{1, -2, 3, -4};
    auto plain = b.context.create_buffer(Api::mem_flags::read_write, 16, nullptr);
    b.run(typename Api::write_buffer(plain, true, 0, 16, sent.data()));
    EXPECT_EQ(b.load(plain), sent);
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

SCENARIO(sub_buffers, "sub-buffers", 110) {
    std::size_t const origin = b.device.mem_base_addr_align() / 8;
    std::size_t const count = origin / sizeof(std::int32_t);
    numbers values(3 * count);
    std::iota(values.begin(), values.end(), 0);
    auto parent = b.store(values);
    auto region = b.context.create_sub_buffer(parent, Api::mem_flags::read_write, origin, origin);
    EXPECT_EQ(region.offset(), origin);
    EXPECT_EQ(region.size(), origin);
    EXPECT_EQ(raw_of(region.parent_buffer()), raw_of(parent));
    auto const middle = values.begin() + static_cast<std::ptrdiff_t>(count);
    EXPECT_EQ(b.load(region), numbers(middle, middle + static_cast<std::ptrdiff_t>(count)));
    b.launch(b.function("__kernel void f(__global int* values) { values[get_global_id(0)] *= 2; }", region), count);
    for (std::size_t i = count; i < 2 * count; ++i) {
        values[i] *= 2;
    }
    EXPECT_EQ(b.load(parent), values);
    EXPECT_THROW(b.context.create_sub_buffer(parent, Api::mem_flags::read_write, 2 * origin, 2 * origin),
                 common::invalid_value);
}

template <class Api>
using addressing = decltype(std::declval<typename Api::sampler>().addressing_mode());
template <class Api>
using filter = decltype(std::declval<typename Api::sampler>().filter_mode());

/// What a nearest sampler reads at `x` of the pixels 10, 20, 30, 40.
struct sample {
    bool normalized;
    int mode;
    float x;
    int expected;
};

constexpr int clamp_to_edge = 0x1131, clamp = 0x1132, repeat = 0x1133, mirrored_repeat = 0x1134;

SCENARIO(sampled_reads, "samplers in kernels", 100) {
    numbers pixels{10, 20, 30, 40};
    auto image = b.context.create_image_2d(Api::mem_flags::read_only | Api::mem_flags::copy_host_ptr,
                                           {Api::image_channel_order::r, Api::image_channel_type::signed_int32}, 4, 1,
                                           0, pixels.data());
    auto result = b.store(numbers{0});
    auto program = b.build("__kernel void f(__global int* out, __read_only image2d_t image, sampler_t s, float x)"
                           "{ *out = read_imagei(image, s, (float2)(x, 0.0f)).x; }");
    auto kernel = program.create_kernel("f");
    for (sample const& each : {sample{false, clamp_to_edge, -3.0F, 10},
                               {false, clamp_to_edge, 9.0F, 40},
                               {false, clamp, 9.0F, 0},
                               {false, clamp, 2.5F, 30},
                               {true, clamp_to_edge, 0.3F, 20},
                               {true, repeat, 1.3F, 20},
                               {true, mirrored_repeat, 1.3F, 30}}) {
        if (each.mode == mirrored_repeat && Api::number < 110) {
            continue;
        }
        auto sampler = b.context.create_sampler(each.normalized, addressing<Api>(each.mode), filter<Api>::nearest);
        b.set_arguments(kernel, result, image, sampler, each.x);
        b.launch(kernel, 1);
        EXPECT_EQ(b.load(result), numbers{each.expected}) << each.mode << " at " << each.x;
    }
}

SCENARIO(sampler_modes, "samplers", 100) {
    for (bool const normalized : {false, true}) {
        for (int const mode : {0x1130, clamp_to_edge, clamp, repeat, mirrored_repeat}) {
            bool const repeats = mode == repeat || mode == mirrored_repeat;
            if ((repeats && !normalized) || (mode == mirrored_repeat && Api::number < 110)) {
                continue;
            }
            for (auto const kind : {filter<Api>::nearest, filter<Api>::linear}) {
                auto const sampler = b.context.create_sampler(normalized, addressing<Api>(mode), kind);
                EXPECT_EQ(sampler.normalized_coords(), normalized);
                EXPECT_EQ(sampler.addressing_mode(), addressing<Api>(mode));
                EXPECT_EQ(sampler.filter_mode(), kind);
                EXPECT_EQ(sampler.get_context(), b.context);
                expect_counted(sampler);
            }
        }
    }
}

} // namespace
} // namespace real
