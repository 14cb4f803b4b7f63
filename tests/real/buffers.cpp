#include "support.hpp"

namespace real {
namespace {

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

/// Where a box of 5 x 3 x 2 bytes lies, in rows of `rows[0]` bytes and slices of `rows[1]` rows.
struct placement {
    box origin;
    box rows;

    region part() const { return {origin, {5, 3, 2}}; }
    std::size_t row_pitch() const { return rows[0]; }
    std::size_t slice_pitch() const { return rows[0] * rows[1]; }
};

// A box goes from the host to one buffer, to another and back, with pitches of its own at each place.
SCENARIO(copies_rectangles, "rectangle commands", 110) {
    placement const sent{{1, 2, 1}, {16, 5}}, first{{3, 1, 0}, {10, 5}}, second{{0, 2, 1}, {8, 6}},
        received{{2, 0, 0}, {7, 3}}, tight{{0, 0, 0}, {5, 3}};
    box const size = sent.part().size;
    auto const host = counting<unsigned char>(256);
    auto store = b.store(bytes(160)), other = b.store(bytes(160));
    bytes result(64), packed(30);
    b.run(typename Api::write_buffer_rect(store, false, first.origin, sent.origin, size, first.row_pitch(),
                                          first.slice_pitch(), sent.row_pitch(), sent.slice_pitch(), host.data()));
    b.run(typename Api::copy_buffer_rect(store, other, first.origin, second.origin, size, first.row_pitch(),
                                         first.slice_pitch(), second.row_pitch(), second.slice_pitch()));
    b.run(typename Api::read_buffer_rect(other, true, second.origin, received.origin, size, second.row_pitch(),
                                         second.slice_pitch(), received.row_pitch(), received.slice_pitch(),
                                         result.data()));
    b.run(typename Api::read_buffer_rect(other, true, second.origin, {0, 0, 0}, size, 8, 48, 0, 0, packed.data()));
    auto const expect = [&](bytes const& found, placement const& at) {
        bytes expected(found.size());
        put(taken(host, sent.part(), sent.rows), at.part(), expected, at.rows);
        EXPECT_EQ(found, expected);
    };
    expect(b.template load<unsigned char>(store), first);
    expect(b.template load<unsigned char>(other), second);
    expect(result, received);
    expect(packed, tight);
}

// Each of the three commands overwrites a part of what the one before has filled.
template <class Api, class Element>
void fills_with(bench<Api>& b, Element const& first, Element const& second) {
    constexpr std::size_t size = sizeof(Element);
    auto target = b.store(std::vector<Element>(6));
    b.run(typename Api::fill_buffer_bytes(target, bytes(first.begin(), first.end()), size, 4));
    b.run(typename Api::template fill_buffer<Element>(target, second, 2 * size, 2));
    typename Api::fill_buffer_base fill(target, second.data(), size, 3 * size, 1);
    fill.update_pattern_pointer(first.data());
    b.run(fill);
    EXPECT_EQ(b.template load<Element>(target), (std::vector<Element>{{}, first, second, first, first, {}})) << size;
}

SCENARIO(fills_buffers, "buffer fills", 120) {
    for_each_pattern([&](auto const& first, auto const& second) { fills_with(b, first, second); });
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
