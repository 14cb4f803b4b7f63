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
        received{{2, 0, 0}, {7, 3}};
    box const size = sent.part().size;
    auto const host = counting<unsigned char>(256);
    auto store = b.store(bytes(160)), other = b.store(bytes(160));
    bytes result(64);
    b.run(typename Api::write_buffer_rect(store, false, first.origin, sent.origin, size, first.row_pitch(),
                                          first.slice_pitch(), sent.row_pitch(), sent.slice_pitch(), host.data()));
    b.run(typename Api::copy_buffer_rect(store, other, first.origin, second.origin, size, first.row_pitch(),
                                         first.slice_pitch(), second.row_pitch(), second.slice_pitch()));
    b.run(typename Api::read_buffer_rect(other, true, second.origin, received.origin, size, second.row_pitch(),
                                         second.slice_pitch(), received.row_pitch(), received.slice_pitch(),
                                         result.data()));
    auto const expect = [&](bytes const& found, placement const& at) {
        bytes expected(found.size());
        put(taken(host, sent.part(), sent.rows), at.part(), expected, at.rows);
        EXPECT_EQ(found, expected);
    };
    expect(b.template load<unsigned char>(store), first);
    expect(b.template load<unsigned char>(other), second);
    expect(result, received);
}

// Each of the three commands overwrites a part of what the one before has filled.
SCENARIO(fills_buffers, "buffer fills", 120) {
    using element = std::array<std::int32_t, 2>;
    element const first{1, 2}, second{3, 4};
    auto target = b.store(std::vector<element>(6));
    b.run(typename Api::fill_buffer_bytes(target, {1, 0, 0, 0, 2, 0, 0, 0}, 8, 4));
    b.run(typename Api::template fill_buffer<element>(target, second, 16, 2));
    typename Api::fill_buffer_base fill(target, second.data(), 8, 24, 1);
    fill.update_pattern_pointer(first.data());
    b.run(fill);
    EXPECT_EQ(b.template load<element>(target), (std::vector<element>{{}, first, second, first, first, {}}));
}

SCENARIO(maps_buffers, "buffer maps", 100) {
    using flags = typename Api::map_flags;
    auto expected = counting(64);
    auto target = b.store(expected);
    void* mapped = nullptr;
    auto const ready = b.queue.enqueue_command(
        typename Api::map_buffer(mapped, target, false, flags::read | flags::write, 16, 32 * 4));
    b.wait_for(ready);
    auto* const region = static_cast<std::int32_t*>(mapped);
    EXPECT_TRUE(std::equal(region, region + 32, expected.begin() + 4));
    std::fill(region, region + 32, -7);
    b.wait_for(b.queue.enqueue_command(typename Api::unmap_mem_object(target, mapped)));
    std::fill_n(expected.begin() + 4, 32, -7);
    EXPECT_EQ(b.load(target), expected);

    void* untouched = &expected;
    EXPECT_THROW(b.run(typename Api::map_buffer(untouched, target, true, flags::read, 0, 65 * 4)),
                 common::invalid_value);
    EXPECT_EQ(untouched, &expected);
}

SCENARIO(migrates_memory_objects, "migration", 120) {
    auto first = b.store(counting(16)), second = b.store(counting(16, 100));
    std::vector<_nq_cl_mem*> const both{raw_of(first), raw_of(second)};
    b.run(typename Api::migrate_mem_objects(both, Api::migration_flags::host));
    b.run(typename Api::migrate_mem_objects(both, typename Api::migration_flags{}));
    EXPECT_EQ(b.load(first), counting(16));
    EXPECT_EQ(b.load(second), counting(16, 100));
}

} // namespace
} // namespace real
