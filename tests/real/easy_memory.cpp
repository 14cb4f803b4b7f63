// Memory in the convenient layer: parts of arrays, maps, transfers that go on beside the program.

#include "interposer.hpp"
#include "support.hpp"

#include <vorn/mero/easy.hpp>

#include <memory>

namespace real {
namespace {

namespace ez = vorn::mero::easy;

template <class Api>
ez::basic_session<Api::number> session_of(bench<Api>& b) {
    return ez::basic_session<Api::number>(b.device, b.context, Api::create_queue(b.context, b.device, false, true));
}

SCENARIO(easy_parts, "easy layer", 110) {
    auto const gpu = session_of(b);
    std::size_t const step = b.device.mem_base_addr_align() / 8 / sizeof(std::int32_t);
    auto const add = [&, program = gpu.build("kernel void f(global int* a) { a[get_global_id(0)] += 100; }")](
                         auto& where, std::size_t count) { program["f"](ez::range(count), where).wait(); };
    auto expected = counting(4 * step);
    auto inner = [&] {
        auto whole = gpu.array(expected);
        return whole.part(step, 2 * step).part(step, 3); // the whole stays alive
    }();
    add(inner, 3);
    EXPECT_EQ(inner.read(), counting(3, static_cast<std::int32_t>(2 * step) + 101));
    auto whole = gpu.array(expected);
    auto part = whole.part(step, 2);
    add(part, 2);
    part.write({-1}, 1);
    expected[step] += 100;
    expected[step + 1] = -1;
    EXPECT_EQ(whole.read(), expected);
    EXPECT_EQ(whole.part(3, 0).size(), 0U);
    EXPECT_EQ(refusal<ez::bounds_error>([&] { part.part(1, 2); }),
              "elements 1 to 3 are not within an array of 2: ask for fewer, or make a larger array");
    std::string const refused = refusal<ez::bounds_error>([&] { whole.part(1, 2); });
    std::string const wanted = "multiples of " + std::to_string(step) + " elements of 4 bytes";
    std::size_t const huge = (std::size_t{1} << 62) + 4; // 16 bytes, where the size in bytes wraps around
    EXPECT_THROW(gpu.template array<std::int32_t>(huge), ez::bounds_error);
    auto beside = gpu.build("kernel void f(local int* a) { a[0] = 0; }")["f"];
    EXPECT_THROW(beside(ez::range(1), ez::local<std::int32_t>(huge)), ez::bounds_error);
    if (refused == "nothing") {
        skip("begins parts anywhere");
    }
    EXPECT_NE(refused.find(wanted), std::string::npos) << refused;
}

SCENARIO(easy_maps_and_copies, "easy layer", 120) {
    auto const gpu = session_of(b);
    auto host = counting(8);
    auto over = gpu.array_over(host);
    auto a = gpu.template array<std::int32_t>(8);
    auto const zeroed = a.fill(0);
    auto const filled = a.fill(7, 6, 2, ez::after(zeroed));
    auto const copied = over.copy_to(a, 2, 1, 4, ez::after(filled));
    EXPECT_EQ(a.read(ez::after(copied)), (numbers{0, 3, 4, 5, 6, 0, 7, 7}));
    {
        auto const both = a.map_read(1, 2);
        EXPECT_EQ(numbers(both.begin(), both.end()), (numbers{3, 4}));
    }
    std::ranges::fill(a.map_write(2, 3, ez::after(copied)), 9);
    ++over.map()[0];
    EXPECT_EQ(over.map_read()[0], 2);
    EXPECT_EQ(over.map_read().data(), host.data());
    EXPECT_EQ(a.read(), (numbers{0, 3, 9, 9, 9, 0, 7, 7}));

    auto none = gpu.template array<std::int32_t>(0);
    none.fill(1).wait();
    none.copy_to(a, ez::after(none.copy_to(none))).wait();
    EXPECT_EQ(none.map().size(), 0U);
    EXPECT_EQ(a.read()[0], 0);
    EXPECT_THROW(a.copy_to(none, 0, 0, 1), ez::bounds_error);
    EXPECT_THROW(a.map_read(8, 1), ez::bounds_error);
    EXPECT_THROW(a.fill(1, 3, 6), ez::bounds_error);
}

SCENARIO(easy_transfers_beside, "easy layer", 110) {
    std::size_t const n = 1000;
    std::array<std::int32_t, 4> last{};
    auto borrowed = counting(4);
    ez::basic_event<Api::number> written = [&] {
        auto const gpu = session_of(b);
        auto a = gpu.template array<std::int32_t>(n);
        auto const whole = a.write_async(counting(n));
        auto const piece = a.write_async(borrowed, n - 4, ez::after(whole));
        auto reading = a.read_async(ez::after(piece.event()));
        auto const tail = a.read_async(last, n - 4);
        auto expected = counting(n);
        std::ranges::copy(borrowed, expected.end() - 4);
        EXPECT_EQ(reading.get(), expected);
        tail.wait();
        EXPECT_TRUE(tail.done());
        EXPECT_EQ(last, (std::array<std::int32_t, 4>{1, 2, 3, 4}));
        last = {};
        static_cast<void>(a.read_async(last, 0)); // waits at once
        EXPECT_EQ(last, (std::array<std::int32_t, 4>{1, 2, 3, 4}));
        EXPECT_THROW(a.write_async(counting(2), n - 1), ez::bounds_error);
        EXPECT_THROW(a.read_async(last, n - 3), ez::bounds_error);
        return a.write_async(counting(n, 5)); // of a session that ends
    }();
    EXPECT_TRUE(written.done());

    auto const gpu = session_of(b);
    ez::basic_user_event<Api::number> gate(gpu);
    auto a = gpu.array(numbers{1});
    auto const moved = a.write_async(numbers{2}, 0, ez::after(gate.event()));
    auto const none = a.write_async(numbers{}, 0, ez::after(gate.event()));
    EXPECT_FALSE(moved.done());
    EXPECT_FALSE(none.done());
    gate.complete();
    EXPECT_EQ(a.read(), numbers{2});
    if (b.name == "pocl" && is_nulling()) {
        skip("aborts if an event fails that two commands without events wait for");
    }
    ez::basic_user_event<Api::number> closed(gpu);
    auto const nothing = a.write_async(borrowed.data(), 1, 0, ez::after(closed.event()));
    closed.fail(std::make_exception_ptr(std::runtime_error("closed")));
    EXPECT_THROW(nothing.wait(), common::opencl_error);
    EXPECT_EQ(refusal<std::runtime_error>([&] { a.read(ez::after(closed.event())); }), "closed");
    auto const leave = [&] {
        ez::basic_user_event<Api::number> never(gpu);
        auto const reading = a.read_async(last.data(), 1, 0, ez::after(never.event()));
        ez::basic_user_event<Api::number> const fails_first(std::move(never));
        throw std::runtime_error("left");
    };
    EXPECT_EQ(refusal<std::runtime_error>(leave), "left");
    EXPECT_EQ(a.read(), numbers{2});
}

} // namespace
} // namespace real
