// Several devices in the convenient layer.

#include "support.hpp"

#include <vorn/mero/easy.hpp>
#include <vorn/mero/easy/split.hpp>

#include <cmath>
#include <stdexcept>

namespace real {
namespace {

namespace ez = vorn::mero::easy;

/// Two sub-devices, or the device twice where it has none.
template <class Api>
std::vector<typename Api::device> two_of(bench<Api>& b) {
    if constexpr (Api::number >= 120) {
        try {
            auto parts = b.device.partition_equally(1);
            if (parts.size() > 1) {
                return {parts[0], parts[1]};
            }
        } catch (common::error const&) { // has no sub-devices
        }
    }
    return {b.device, b.device};
}

SCENARIO(easy_splits, "easy devices", 110) {
    constexpr int version = Api::number;
    ez::basic_devices<version> const both(two_of(b));
    ASSERT_EQ(both.size(), 2U);
    EXPECT_EQ(both[0].context(), both[1].context());
    auto kernels = both.kernels("f", R"(kernel void f(global int* a, int first) {
            a[get_global_id(0)] = a[get_global_id(0)] * 2 + first + get_global_id(0) / 3;
        })");
    std::size_t const items = 10, per_item = 3;
    auto const values = counting(items * per_item);
    numbers expected;
    for (std::size_t i = 0; i < values.size(); ++i) {
        expected.push_back(values[i] * 2 + static_cast<std::int32_t>(i / per_item));
    }
    ez::basic_split<version> job(both, items);
    for (std::vector<double> const& weights : {std::vector<double>{1, 1}, {3, 1}, {0, 1}, {1, 0}}) {
        job.weigh(weights);
        auto a = job.scatter(values, per_item);
        job.run([&](std::size_t k, ez::share const& part) {
            EXPECT_NE(weights[k], 0);
            return kernels[k](ez::range(part.count * per_item), a[k], static_cast<std::int32_t>(part.offset));
        });
        EXPECT_EQ(a.gather(), expected);
        EXPECT_EQ(a[0].size() + a[1].size(), a.size());
        EXPECT_THROW(a.scatter(numbers(1)), ez::bounds_error);
    }
    EXPECT_THROW(job.weigh({1}), ez::bounds_error);
    EXPECT_THROW(job.template array<std::int32_t>(~std::size_t{0} / items + 1), ez::bounds_error);

    std::array<int, 2> calls{};
    auto const seconds = job.measure({4, 2}, [&](std::size_t k, ez::share const& part) {
        ++calls[k];
        auto sample = both[k].template array<std::int32_t>(part.count * per_item);
        return kernels[k](ez::range(part.count * per_item), sample, static_cast<std::int32_t>(part.offset));
    });
    EXPECT_EQ(calls, (std::array<int, 2>{2, 2}));
    EXPECT_GT(std::min(seconds[0], seconds[1]), 0);
    EXPECT_EQ(job.shares()[1].offset, job.shares()[0].count);

    auto const run = [&] {
        ez::basic_split<version>(both, items).run([&](std::size_t k, ez::share const&) {
            if (k == 1) {
                throw std::runtime_error("device 1");
            }
            auto one = both[k].array(numbers{1});
            return kernels[k](ez::range(1), one, 0);
        });
    };
    EXPECT_THROW(run(), std::runtime_error);
    EXPECT_EQ(ez::basic_devices<version>([&](auto const& each) { return each == b.device; }).size(), 1U);
    EXPECT_THROW(ez::basic_devices<version>("no such thing"), ez::no_device);
}

TEST(wire, shares) {
    struct row {
        std::size_t count, step;
        std::vector<double> weights;
        std::vector<std::size_t> counts;
    };
    for (auto const& [count, step, weights, counts] : std::vector<row>{{10, 1, {1, 1}, {5, 5}},
                                                                       {10, 1, {1, 2}, {3, 7}},
                                                                       {10, 4, {1, 1}, {6, 4}},
                                                                       {3, 4, {1, 1, 1}, {3, 0, 0}},
                                                                       {0, 1, {1}, {0}},
                                                                       {7, 1, {0, 1, 0}, {0, 7, 0}},
                                                                       {8, 1, {1e308, 1e308}, {4, 4}}}) {
        auto const shares = ez::shares_of(count, weights, step);
        std::size_t next = 0;
        for (std::size_t i = 0; i < shares.size(); ++i) {
            EXPECT_EQ(shares[i].count, counts[i]) << count << " " << step;
            EXPECT_EQ(shares[i].offset, next);
            next += shares[i].count;
        }
    }
    for (auto const& wrong :
         std::vector<std::vector<double>>{{}, {0, 0}, {2, -1}, {std::nan("")}, {1, std::nan("")}, {1, HUGE_VAL}}) {
        EXPECT_THROW(ez::shares_of(1, wrong), ez::bounds_error);
    }
}

} // namespace
} // namespace real
