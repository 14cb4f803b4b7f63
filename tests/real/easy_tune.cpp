// The choice of work-group sizes by measurement.

#include "support.hpp"

#include <vorn/mero/easy.hpp>
#include <vorn/mero/easy/tune.hpp>

namespace real {
namespace {

namespace ez = vorn::mero::easy;

char const source[] = R"(
    kernel void slow_alone(global int* v, int rounds) { // in work-groups of one work-item
        for (int i = 0; get_local_size(0) == 1 && i < rounds; ++i) {
            v[get_global_id(0)] = v[get_global_id(0)] * 3 + i;
        }
    }
    kernel __attribute__((reqd_work_group_size(2, 1, 1))) void in_pairs(global int* v) { v[get_global_id(0)] = 2; }
    kernel void first_of_group(global int* v, local int* scratch) {
        scratch[get_local_id(0)] = get_global_id(0);
        barrier(CLK_LOCAL_MEM_FENCE);
        v[get_global_id(0)] = scratch[0];
    })";

std::size_t group_size(ez::range const& over) {
    auto const* const sizes = over.local_size();
    return sizes == nullptr ? 0 : (*sizes)[0] * (*sizes)[1] * (*sizes)[2];
}

SCENARIO(easy_tunes, "easy tuning", 100) {
    auto const gpu = ez::basic_session<Api::number>(b.device, b.context);
    auto const program = gpu.build(source);
    auto v = gpu.array(numbers(64));

    auto slow_alone = program["slow_alone"];
    auto const found = ez::tune(slow_alone, {ez::range(64).local(1), ez::range(64).local(16), ez::range(64)}, v,
                                b.name == "oclgrind" ? 100 : 20000);
    ASSERT_EQ(found.measurements.size(), 3U);
    EXPECT_NE(group_size(found.best), 1U) << found.text();
    EXPECT_EQ(found.time,
              std::min({found.measurements[0].time, found.measurements[1].time, found.measurements[2].time}));
    EXPECT_EQ(found.text().find("64 work-items in groups of 1: "), 0U) << found.text();

    auto in_pairs = program["in_pairs"];
    auto const pairs = ez::tune(in_pairs, {ez::range(8).local(4), ez::range(8).local(2)}, v);
    EXPECT_NE(pairs.measurements[0].refusal.find("the source requires groups of 2 x 1 x 1"), std::string::npos);
    EXPECT_EQ(group_size(pairs.best), 2U);
    EXPECT_EQ(v.read()[0], 2);
    EXPECT_EQ(group_size(ez::candidates(in_pairs, ez::range(8)).at(0)), 2U);
    std::string const refused = refusal<ez::launch_error>([&] { ez::tune(in_pairs, {ez::range(8).local(4)}, v); });
    EXPECT_EQ(
        refused.find("kernel 'in_pairs': OpenCL refuses all 1 ranges. The first: kernel 'in_pairs' over 8 work-items"),
        0U)
        << refused;
    EXPECT_NE(refusal<ez::launch_error>([&] { ez::tune(in_pairs, std::vector<ez::range>{}, v); }), "nothing");
    EXPECT_NE(refusal<ez::argument_error>([&] { ez::tune(in_pairs, {ez::range(8)}, v, 1); }), "nothing");

    auto first_of_group = program["first_of_group"];
    auto const scratch = [](ez::range const& over) { return ez::local<int>(group_size(over)); };
    auto const grouped = ez::tune(first_of_group, ez::range(64), v, scratch);
    EXPECT_EQ(group_size(grouped.measurements.back().over), static_cast<std::size_t>(64 - v.read().back()));
    auto const made = ez::tune(
        first_of_group,
        [](std::size_t most) { return std::vector<ez::range>{ez::range(64).local(std::min<std::size_t>(most, 32))}; },
        v, scratch);
    EXPECT_EQ(group_size(made.best), 32U);
}

SCENARIO(easy_lists_candidates, "easy tuning", 100) {
    auto const gpu = ez::basic_session<Api::number>(b.device, b.context);
    auto const kernel = gpu.build(source)["slow_alone"];
    std::size_t const most = kernel.exact().max_work_group_size(b.device);
    for (auto const& over : {ez::range(1U << 14U), ez::range(48, 20), ez::range(8, 8, 8), ez::range(7)}) {
        auto const all = ez::candidates(kernel, over);
        EXPECT_EQ(all.front().local_size(), nullptr);
        for (std::size_t i = 1; i < all.size(); ++i) {
            EXPECT_LE(group_size(all[i]), most);
            for (std::size_t d = 0; d != 3; ++d) {
                EXPECT_EQ(over.size()[d] % (*all[i].local_size())[d], 0U) << all[i].text();
            }
            for (std::size_t j = 1; j != i; ++j) {
                EXPECT_NE(*all[i].local_size(), *all[j].local_size());
            }
        }
    }
    EXPECT_GT(ez::candidates(kernel, ez::range(1U << 14U)).size(), 3U);
}

} // namespace
} // namespace real
