// Shared virtual memory in the convenient layer.

#include "support.hpp"

#include <vorn/mero/easy.hpp>
#include <vorn/mero/easy/shared.hpp>

namespace real {
namespace {

namespace ez = vorn::mero::easy;

struct link {
    link* next;
    std::int32_t value;
    std::int32_t unused;
};

char const source[] = R"(
    struct link { global struct link* next; int value; int unused; };
    kernel void sum(global struct link* first, global int* total) {
        *total = 0;
        for (global struct link* each = first; each != 0; each = each->next) {
            *total += each->value;
        }
    }
    kernel void add(global int* values, int n) { values[get_global_id(0)] += n; })";

SCENARIO(easy_shared_memory, "SVM", 200) {
    constexpr int version = Api::number;
    ez::basic_session<version> const gpu(b.device, b.context, Api::create_queue(b.context, b.device, false, true));
    if (!b.device.svm_coarse_grain_buffer_supported()) {
        EXPECT_THROW((ez::basic_shared<int, version>(gpu, 8)), ez::unsupported);
        skip("has no shared virtual memory");
    }
    auto const program = gpu.build(source);
    auto sum = program["sum"];
    auto add = program["add"];
    auto total = gpu.template array<std::int32_t>(1);
    {
        ez::basic_shared<link, version> links(gpu, 10);
        {
            auto const mapped = links.map_write();
            for (std::size_t i = 0; i < mapped.size(); ++i) {
                mapped[i] = {i + 1 < mapped.size() ? &mapped[i + 1] : nullptr, static_cast<std::int32_t>(i), 0};
            }
        }
        auto moved = std::move(links);
        EXPECT_THROW(links.map(), ez::moved_from); // NOLINT(bugprone-use-after-move): is told
        EXPECT_THROW(links.fill({}), ez::moved_from);
        EXPECT_THROW(links.read(), ez::moved_from);
        EXPECT_NE(refusal<ez::argument_error>([&] { sum(ez::range(1), links, total); }).find("that was moved from"),
                  std::string::npos);
        sum(ez::range(1), moved, total);
        ++moved.map()[0].value;
        sum(ez::range(1), moved, total); // still runs when the memory goes
    }
    EXPECT_EQ(total.read(), numbers{46});

    ez::basic_shared<std::int32_t, version> values(gpu, 4);
    auto const filled = values.fill(5);
    auto const added = add(ez::range(3), ez::after(filled), values, 2);
    EXPECT_EQ(values.read(ez::after(added)), (numbers{7, 7, 7, 5}));
    values.write({1, 2});
    EXPECT_EQ(values.map_read(ez::after(filled))[1], 2);
    EXPECT_THROW(values.write(numbers(5)), ez::bounds_error);
    EXPECT_THROW((ez::basic_shared<int, version>(gpu, (std::size_t{1} << 62) + 4)), ez::bounds_error);
    EXPECT_THROW(sum(ez::range(1), 1, total), ez::argument_error);
    EXPECT_TRUE((ez::basic_shared<int, version>(gpu, 0).read().empty()));

    if (!b.device.svm_fine_grain_buffer_supported()) {
        EXPECT_THROW((ez::basic_shared<int, version>(gpu, 8, ez::grain::fine)), ez::unsupported);
        skip("has no fine grain");
    }
    if (!b.device.svm_atomics_supported()) {
        EXPECT_THROW((ez::basic_shared<int, version>(gpu, 8, ez::grain::atomics)), ez::unsupported);
    } else {
        ez::basic_shared<std::int32_t, version> const counters(gpu, 1, ez::grain::atomics);
        counters.data()[0] = 1;
        add(ez::range(1), counters, 10).wait();
        EXPECT_EQ(counters.data()[0], 11);
    }
    EXPECT_THROW(add(ez::range(1), std::vector<std::int32_t, ez::basic_shared_allocator<std::int32_t, version>>(
                                       3, 7, ez::basic_shared_allocator<std::int32_t, version>(gpu))),
                 ez::argument_error);
    ez::basic_shared<std::int32_t, version> fine(gpu, 2, ez::grain::fine);
    fine.data()[0] = 1;
    add(ez::range(1), fine, 10).wait();
    EXPECT_EQ(fine.data()[0], 11);
    using allocator = ez::basic_shared_allocator<std::int32_t, version>;
    EXPECT_THROW((void)allocator(gpu).allocate(static_cast<std::size_t>(-1)), std::bad_alloc);
    ez::basic_session<version> const elsewhere(b.device);
    std::vector<std::int32_t, allocator> const foreign(3, 7, allocator(elsewhere));
    EXPECT_NE(refusal<ez::argument_error>([&] {
                  add(ez::range(1), foreign, 1);
              }).find("was given a shared list of 3 elements of 4 bytes of another context"),
              std::string::npos);
    std::vector<std::int32_t, allocator> list(3, 7, allocator(gpu));
    add(ez::range(3), list, 1).wait();
    auto taken = std::move(list);
    list.assign(3, 1); // NOLINT(bugprone-use-after-move): its allocator is still there
    EXPECT_EQ(list.back(), 1);
    list = std::move(taken);
    list.resize(1000, 0); // in other memory
    add(ez::range(4), list, 1).wait();
    EXPECT_EQ(numbers(list.begin(), list.begin() + 5), (numbers{9, 9, 9, 1, 0}));
    add(ez::range(4), list, 1); // still runs when the memory goes
}

} // namespace
} // namespace real
