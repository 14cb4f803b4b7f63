#include "support.hpp"

namespace real {
namespace {

/// How a box of bytes lies in memory.
struct placement {
    box origin;
    std::size_t row_pitch;
    std::size_t slice_pitch;

    std::size_t index(std::size_t x, std::size_t y, std::size_t z) const {
        return (origin[2] + z) * slice_pitch + (origin[1] + y) * row_pitch + origin[0] + x;
    }
};

void copy_box(bytes const& source, placement const& from, bytes& destination, placement const& to, box const& region) {
    for (std::size_t z = 0; z < region[2]; ++z) {
        for (std::size_t y = 0; y < region[1]; ++y) {
            for (std::size_t x = 0; x < region[0]; ++x) {
                destination.at(to.index(x, y, z)) = source.at(from.index(x, y, z));
            }
        }
    }
}

SCENARIO(reads_writes_and_copies_buffers, "buffer commands", 100) {
    auto const values = counting(64);
    auto source = b.store(numbers(64));
    auto destination = b.store(numbers(64));
    b.run(typename Api::write_buffer(source, false, 16, 32 * 4, values.data()));
    b.run(typename Api::copy_buffer(source, destination, 16, 8, 32 * 4));
    numbers part(30);
    b.run(typename Api::read_buffer(destination, false, 12, 30 * 4, part.data()));
    b.queue.finish();
    EXPECT_EQ(part, counting(30, 2));
    auto expected = numbers(64);
    std::copy_n(values.begin(), 32, expected.begin() + 2);
    EXPECT_EQ(b.load(destination), expected);
    EXPECT_THROW(b.run(typename Api::read_buffer(source, true, 0, 65 * 4, expected.data())), common::invalid_value);
}

// A box goes from the host to one buffer, to another and back, with pitches of its own at each place.
SCENARIO(copies_rectangles, "rectangle commands", 110) {
    box const region{5, 3, 2};
    placement const sent{{1, 2, 1}, 16, 80}, first{{3, 1, 0}, 10, 50}, second{{0, 2, 1}, 8, 48},
        received{{2, 0, 0}, 7, 21};
    auto const host = counting<unsigned char>(256);
    auto store = b.store(bytes(160));
    auto other = b.store(bytes(160));
    bytes result(64);
    b.run(typename Api::write_buffer_rect(store, false, first.origin, sent.origin, region, first.row_pitch,
                                          first.slice_pitch, sent.row_pitch, sent.slice_pitch, host.data()));
    b.run(typename Api::copy_buffer_rect(store, other, first.origin, second.origin, region, first.row_pitch,
                                         first.slice_pitch, second.row_pitch, second.slice_pitch));
    b.run(typename Api::read_buffer_rect(other, true, second.origin, received.origin, region, second.row_pitch,
                                         second.slice_pitch, received.row_pitch, received.slice_pitch, result.data()));
    bytes expected(160);
    copy_box(host, sent, expected, first, region);
    EXPECT_EQ(b.template load<unsigned char>(store), expected);
    expected.assign(160, 0);
    copy_box(host, sent, expected, second, region);
    EXPECT_EQ(b.template load<unsigned char>(other), expected);
    expected.assign(64, 0);
    copy_box(host, sent, expected, received, region);
    EXPECT_EQ(result, expected);
    b.run(typename Api::read_buffer_rect(other, true, second.origin, {0, 0, 0}, region, 8, 48, 0, 0, result.data()));
    copy_box(host, sent, expected, {{0, 0, 0}, 5, 15}, region);
    EXPECT_EQ(bytes(result.begin(), result.begin() + 30), bytes(expected.begin(), expected.begin() + 30));
}

bytes between_zeros(bytes const& pattern, std::size_t count) {
    bytes expected(pattern.size());
    for (std::size_t i = 0; i < count; ++i) {
        expected.insert(expected.end(), pattern.begin(), pattern.end());
    }
    expected.resize(expected.size() + pattern.size());
    return expected;
}

template <std::size_t Size, class Api>
void fills_with_pattern(bench<Api>& b) {
    auto const pattern = counting<unsigned char>(Size, 3);
    auto other = pattern;
    std::ranges::reverse(other);
    auto target = b.store(bytes(Size * 5));
    b.run(typename Api::fill_buffer_bytes(target, pattern, Size, 3));
    EXPECT_EQ(b.template load<unsigned char>(target), between_zeros(pattern, 3)) << Size;

    typename Api::fill_buffer_base fill(target, pattern.data(), Size, Size, 3);
    fill.update_pattern_pointer(other.data());
    b.run(fill);
    EXPECT_EQ(b.template load<unsigned char>(target), between_zeros(other, 3)) << Size;

    std::array<unsigned char, Size> element{};
    std::ranges::copy(pattern, element.begin());
    b.run(typename Api::template fill_buffer<std::array<unsigned char, Size>>(target, element, Size, 3));
    EXPECT_EQ(b.template load<unsigned char>(target), between_zeros(pattern, 3)) << Size;
}

SCENARIO(fills_buffers, "buffer fills", 120) {
    [&]<std::size_t... Power>(std::index_sequence<Power...>) { (fills_with_pattern<std::size_t{1} << Power>(b), ...); }
    (std::make_index_sequence<8>{});
    auto target = b.store(std::vector<float>(4));
    b.run(typename Api::template fill_buffer<float>(target, 1.5F, 4, 2));
    EXPECT_EQ(b.template load<float>(target), (std::vector<float>{0, 1.5F, 1.5F, 0}));
    EXPECT_THROW(b.run(typename Api::fill_buffer_bytes(target, {}, 0, 1)), common::invalid_value);
}

SCENARIO(maps_buffers, "buffer maps", 100) {
    using flags = typename Api::map_flags;
    auto expected = counting(64);
    auto target = b.store(expected);
    void* mapped = nullptr;
    typename Api::map_buffer const map(mapped, target, true, flags::read | flags::write, 16, 32 * 4);
    b.run(map);
    auto* const region = static_cast<std::int32_t*>(mapped);
    EXPECT_TRUE(std::equal(region, region + 32, expected.begin() + 4));
    std::fill(region, region + 32, -7);
    b.run(typename Api::unmap_mem_object(target, mapped));
    std::fill_n(expected.begin() + 4, 32, -7);
    EXPECT_EQ(b.load(target), expected);

    void* later = nullptr;
    auto const ready = b.queue.enqueue_command(typename Api::map_buffer(later, target, false, flags::read, 0, 64 * 4));
    b.wait_for(ready);
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), static_cast<std::int32_t*>(later)));
    b.wait_for(b.queue.enqueue_command(typename Api::unmap_mem_object(target, later)));

    void* untouched = &expected;
    EXPECT_THROW(b.run(typename Api::map_buffer(untouched, target, true, flags::read, 0, 65 * 4)),
                 common::invalid_value);
    EXPECT_EQ(untouched, &expected);
}

SCENARIO(maps_buffers_without_reading, "buffer maps", 120) {
    auto target = b.store(counting(8));
    void* mapped = nullptr;
    b.run(typename Api::map_buffer(mapped, target, true, Api::map_flags::write_invalidate_region, 8, 8));
    std::fill_n(static_cast<std::int32_t*>(mapped), 2, 99);
    b.run(typename Api::unmap_mem_object(target, mapped));
    EXPECT_EQ(b.load(target), (numbers{1, 2, 99, 99, 5, 6, 7, 8}));
}

SCENARIO(migrates_memory_objects, "migration", 120) {
    auto first = b.store(counting(16));
    auto second = b.store(counting(16, 100));
    std::vector<_nq_cl_mem*> const both{raw_of(first), raw_of(second)};
    b.run(typename Api::migrate_mem_objects(both, Api::migration_flags::host));
    b.run(typename Api::migrate_mem_objects(both, typename Api::migration_flags{}));
    EXPECT_EQ(b.load(first), counting(16));
    EXPECT_EQ(b.load(second), counting(16, 100));
    auto const moved =
        b.queue.enqueue_command(typename Api::migrate_mem_objects({both[0]}, Api::migration_flags::content_undefined));
    auto const values = counting(16, 50);
    b.run(typename Api::write_buffer(first, true, 0, 64, values.data()));
    b.wait_for(moved);
    EXPECT_EQ(b.load(first), values);
}

} // namespace
} // namespace real
