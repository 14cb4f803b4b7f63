// The convenient layer on every device: what it computes, and what it says of mistakes.

#include "support.hpp"

#include <vorn/mero/easy.hpp>

namespace real {
namespace {

namespace ez = vorn::mero::easy;

static_assert(ez::kernel_argument<float> && ez::kernel_argument<ez::local<int>> && ez::kernel_argument<ez::array<int>>);
static_assert(!ez::kernel_argument<float*> && !ez::kernel_argument<std::string> && !ez::kernel_argument<ez::session>);
static_assert(ez::kernel_argument<ez::basic_array<int, 200>, 200> && !ez::kernel_argument<ez::basic_array<int, 200>>);
static_assert(ez::element<int> && !ez::element<std::string> && !ez::element_list<std::vector<bool>>);

char const source[] = R"(
    kernel void add(global float const* a, global float const* b, global float* sum, uint n) {
        size_t const i = get_global_id(0);
        if (i < n) {
            sum[i] = a[i] + b[i];
        }
    }
    kernel void mean(global float* values, local float* scratch, float4 weights) {
        size_t const i = get_local_id(0);
        scratch[i] = values[get_global_id(0)];
        barrier(CLK_LOCAL_MEM_FENCE);
        values[get_global_id(0)] = weights.x * scratch[i] + weights.w * scratch[get_local_size(0) - 1 - i];
    })";

/// The session of a bench's device.
template <class Api>
ez::basic_session<Api::number> session_of(bench<Api>& b) {
    return ez::basic_session<Api::number>(b.device, b.context, Api::create_queue(b.context, b.device, false, true));
}

SCENARIO(easy_arrays_and_kernels, "easy layer", 100) {
    auto gpu = session_of(b);
    std::size_t const n = 100;
    auto const program = gpu.build(source);
    auto x = gpu.array(counting<float>(n));
    auto y = gpu.array(std::vector<float>(n, 2.0F));
    auto sum = gpu.template array<float>(n);
    auto add = program["add"];
    auto const first = add(ez::range(n), x, y, sum, std::uint32_t{50});
    EXPECT_GE(add(ez::range(ez::round_up(n, 8)), ez::after(first), x, y, sum, std::uint32_t(n)).time().count(), 0);
    EXPECT_EQ(sum.read(), counting<float>(n, 3.0F));

    auto mean = program["mean"];
    mean(ez::range(n).local(2), x, ez::local<float>(2), std::array<float, 4>{1.0F, 0.0F, 0.0F, 10.0F}).wait();
    EXPECT_EQ(x.read()[0], 21.0F);
    EXPECT_EQ(x.read()[1], 12.0F);
    mean.set_arguments(y, ez::local<float>(1), std::array<float, 4>{4.0F, 0.0F, 0.0F, 0.0F});
    gpu.queue().enqueue_command_without_event(Api::launch(mean.exact(), n, 1));
    EXPECT_EQ(y.read(), std::vector<float>(n, 8.0F));
}

SCENARIO(easy_transfers, "easy layer", 120) {
    auto gpu = session_of(b);
    auto original = gpu.array(numbers{1, 2, 3, 4});
    original.write({0}, 1); // a list, not a null pointer
    original.write({7, 8}, 1);
    EXPECT_EQ(gpu.template array<std::int32_t>({5}).size(), 1U);
    auto copy = gpu.template array<std::int32_t>(4);
    original.copy_to(copy).wait();
    for (std::int32_t& each : copy.map()) {
        each *= 2;
    }
    EXPECT_EQ(copy.read(), (numbers{2, 14, 16, 8}));
    std::array<std::int32_t, 2> middle{};
    copy.read(middle, 1);
    EXPECT_EQ(middle, (std::array<std::int32_t, 2>{14, 16}));
    EXPECT_EQ(gpu.array(middle).read(), (numbers{14, 16}));
    EXPECT_EQ(gpu.array(std::span<std::int32_t const>(middle).subspan(1)).read(), numbers{16});
    EXPECT_EQ((gpu.template array<std::array<std::int32_t, 2>>({{1, 2}}).size()), 1U); // a list of one pair
    EXPECT_EQ(gpu.array_over(std::span(middle)).map_read().data(), middle.data());
    copy.fill(5).wait();
    EXPECT_EQ(copy.read(), numbers(4, 5));
    EXPECT_TRUE(gpu.template array<std::int32_t>(0).read().empty());
}

SCENARIO(easy_mistakes, "easy layer", 120) {
    auto gpu = session_of(b);
    auto const program = gpu.build(source);
    auto add = program["add"];
    auto x = gpu.template array<float>(8);
    auto whole = gpu.template array<std::int32_t>(8);
    std::uint32_t const n = 8;
    ez::range const over(8);
    auto const refused = [&](auto&&... arguments) {
        return refusal<ez::argument_error>([&] { add(over, arguments...); });
    };
    bool const told = refused(x, x, x, 1.0F) != "nothing"; // a program may keep its declarations to itself
    if (!told) {
        skip("the implementation does not tell how arguments are declared");
    }
    EXPECT_EQ(refused(x, x, x),
              "kernel 'add' takes 4 arguments (float* a, float* b, float* sum, uint n), but was given 3");
    EXPECT_EQ(refused(x, x, x, 1.5F), "kernel 'add', argument 3 'n' (uint) takes an integer, but was given the "
                                      "floating-point number 1.5: convert the value first");
    EXPECT_EQ(refused(x, x, x, std::int64_t{-8}),
              "kernel 'add', argument 3 'n' (uint) takes an integer of 4 bytes, but was given the integer -8 of 8: "
              "pass a value of the right type");
    EXPECT_EQ(refused(x, x, 1, n), "kernel 'add', argument 2 'sum' (float*) takes a pointer, but was given the "
                                   "integer 1: pass an array");
    EXPECT_EQ(refused(x, ez::local<float>(8), x, n),
              "kernel 'add', argument 1 'b' (float*) takes a pointer, but was given local memory: pass an array");
    EXPECT_EQ(refused(whole, x, x, n),
              "kernel 'add', argument 0 'a' (float*) takes elements of 4 bytes, each a floating-point number, but was "
              "given elements of 4, each an integer: pass an array of the right type");
    EXPECT_EQ(
        refusal<ez::argument_error>([&] { program["mean"](over, x, x, std::array<float, 4>{}); }),
        "kernel 'mean', argument 1 'scratch' (float*) takes local memory, but was given a pointer: pass ez::local");
    EXPECT_EQ(refusal<ez::no_kernel>([&] {
                  static_cast<void>(program["ad"]);
              }).find("The program has no kernel 'ad'; it has: "),
              0U);
    EXPECT_EQ(refusal<ez::bounds_error>([&] { x.read(nullptr, 3, 6); }),
              "elements 6 to 9 are not within an array of 8: ask for fewer, or make a larger array");
    EXPECT_NE(
        refusal<ez::build_failure>([&] { static_cast<void>(gpu.build("kernel void f( {", "-DX")); }).find("with '-DX"),
        std::string::npos);
    EXPECT_EQ(
        refusal<ez::no_device>([] { ez::session("no such thing"); }).find("No OpenCL device fits 'no such thing'"), 0U);
}

} // namespace
} // namespace real
