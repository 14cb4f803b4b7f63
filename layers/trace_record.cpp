#include "trace_record.hpp"

#include "objects.hpp"

#include <algorithm>
#include <array>
#include <utility>

namespace nq::layer::trace {
namespace {

constexpr std::size_t most_of_a_list = 128; // bytes of what a field refers to
constexpr std::size_t most_of_memory = 16;  // of memory without a type; of more, nothing
constexpr std::size_t most_pieces = 8;

// A field whose memory is recorded. What is before a call is looked up once for each command.
struct followed {
    field const* is;
    std::uint8_t offset;
    std::uint8_t count_offset; // of the field with the number of elements
    std::uint8_t count_size;   // 0: the number is `elements`, or has to be found
    bool found;                // by what is in the memory
    bool written;              // by the call, so that it is there if the call succeeded
    std::size_t element_size;
    std::size_t elements;
    std::size_t most; // bytes; of longer memory so much, or nothing if it has no type
    bool whole;
};

struct plan {
    std::array<followed, most_pieces> fields;
    std::size_t count = 0;
};

followed follow(description const& about, field const& each) {
    followed made{&each, each.offset,    0,    0, false, each.direction == direction::out, each.element_size,
                  0,     most_of_a_list, false};
    if (each.kind == field_kind::handle && each.element_size == 0) {
        made.element_size = sizeof(void*);
    }
    if (each.kind == field_kind::bytes) {
        made.most = most_of_memory;
        made.whole = true;
    }
    if (each.length.rule == length_rule::constant) {
        made.elements = each.length.operands[0];
    } else if (each.length.rule == length_rule::counted) {
        made.count_offset = each.length.operands[0];
        auto const* const counts = std::find_if(about.begin(), about.end(),
                                                [&](field const& other) { return other.offset == made.count_offset; });
        made.count_size = counts->size;
    } else {
        made.found = true;
    }
    return made;
}

// What the program gives, and the objects that the call makes.
plan plan_of(description const& about) {
    plan made;
    for (field const& each : about) {
        bool const followed = each.length.rule != length_rule::none && each.length.rule != length_rule::opaque &&
                              each.length.rule < length_rule::rectangle && each.offset != about.result;
        bool const is_made =
            makes_objects(about) && (each.kind == field_kind::handle || each.kind == field_kind::count);
        if (followed && (each.direction == direction::in || is_made) && made.count < most_pieces) {
            made.fields.at(made.count++) = follow(about, each);
        }
    }
    return made;
}

struct piece {
    void const* address;
    std::size_t size;
};

bool can_read(void const* address, std::size_t size) {
    std::array<char, most_of_a_list> probe; // NOLINT(cppcoreguidelines-pro-type-member-init): filled
    return read_safely(probe.data(), address, size);
}

std::size_t size_of(followed const& each, call const& made, description const& about, bool failed) {
    std::size_t size = each.elements * each.element_size;
    if (each.count_size != 0) {
        size = read_field(made.block, each.count_offset, each.count_size) * each.element_size;
    } else if (each.found) {
        size = extent_of(about, *each.is, made.block, 0, failed ? read_safely : nq::detail::copy_memory).value_or(0);
    }
    return size <= each.most ? size : each.whole ? 0 : each.most;
}

// Of a failed call only what can be read.
std::size_t find_pieces(call const& made, description const& about, bool failed, piece* found) {
    auto const& known = value_of<plan, plan_of>(made);
    std::size_t count = 0;
    for (std::size_t i = 0; i < known.count; ++i) {
        followed const& each = known.fields[i];
        void const* const address = read_pointer(made.block, each.offset);
        if (address == nullptr || (failed && each.written)) {
            continue;
        }
        std::size_t const size = size_of(each, made, about, failed);
        if (size != 0 && (!failed || can_read(address, size))) {
            found[count++] = {address, size};
        }
    }
    return count;
}

} // namespace

void record(call const& made, description const& about, call_entry entry) {
    std::array<piece, most_pieces> pieces; // NOLINT(cppcoreguidelines-pro-type-member-init): filled
    bool const failed = entry.result != result::success ||
                        (about.status != absent && read_field(made.block, about.status, sizeof(std::int32_t)) != 0);
    std::size_t const count = find_pieces(made, about, failed, pieces.data());
    std::size_t size = sizeof entry + rounded(about.size);
    for (std::size_t i = 0; i < count; ++i) {
        size += sizeof(segment_head) + rounded(pieces[i].size);
    }
    std::byte* const place = begin_entry(size);
    if (place == nullptr) {
        return;
    }
    entry.head.size = static_cast<std::uint32_t>(size);
    entry.block_size = static_cast<std::uint32_t>(about.size);
    std::memcpy(place, &entry, sizeof entry);
    std::byte* at = place + sizeof entry;
    std::memcpy(at, made.block, about.size);
    at += rounded(about.size);
    for (std::size_t i = 0; i < count; ++i) {
        piece const& each = pieces[i];
        segment_head const head{reinterpret_cast<std::uintptr_t>(each.address), each.size};
        std::memcpy(at, &head, sizeof head);
        std::memcpy(at + sizeof head, each.address, each.size);
        at += sizeof head + rounded(each.size);
    }
    end_entry(place);
}

} // namespace nq::layer::trace
