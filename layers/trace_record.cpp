#include "trace_record.hpp"

#include "objects.hpp"

#include <algorithm>
#include <array>
#include <new>
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
        size = each.element_size * (each.count_size == 4 ? read_field(made.block, each.count_offset, 4)
                                                         : read_field(made.block, each.count_offset, 8));
    } else if (each.found) {
        size = extent_of(about, *each.is, made.block, 0, failed ? read_safely : nq::detail::copy_memory).value_or(0);
    }
    return size <= each.most ? size : each.whole ? 0 : each.most;
}

struct pieces {
    std::array<piece, most_pieces> all;
    std::size_t count;
    std::size_t size; // of their segments
};

// Of a failed call only what can be read.
void find_pieces(pieces& found, call const& made, description const& about, bool failed) {
    auto const& known = value_of<plan, plan_of>(made);
    found.count = 0;
    found.size = 0;
    for (followed const *each = known.fields.data(), *end = each + known.count; each != end; ++each) {
        void const* const address = read_pointer(made.block, each->offset);
        if (address == nullptr || (failed && each->written)) {
            continue;
        }
        std::size_t const size = size_of(*each, made, about, failed);
        if (size != 0 && (!failed || can_read(address, size))) {
            found.all[found.count++] = {address, size};
            found.size += sizeof(segment_head) + rounded(size);
        }
    }
}

} // namespace

void record(call const& made, description const& about, call_entry const& entry) {
    bool const failed = entry.result != result::success ||
                        (about.status != absent && read_field(made.block, about.status, sizeof(std::int32_t)) != 0);
    pieces found; // NOLINT(cppcoreguidelines-pro-type-member-init): filled
    find_pieces(found, made, about, failed);
    std::size_t const size = sizeof entry + rounded(about.size) + found.size;
    std::byte* at = begin_entry(size);
    if (at == nullptr) {
        return;
    }
    auto* const written = new (at) call_entry(entry);
    written->head.size = static_cast<std::uint32_t>(size);
    written->block_size = static_cast<std::uint32_t>(about.size);
    at += sizeof entry;
    std::memcpy(at, made.block, about.size);
    at += rounded(about.size);
    for (piece const *next = found.all.data(), *end = next + found.count; next != end; ++next) {
        piece const& each = *next;
        segment_head const head{reinterpret_cast<std::uintptr_t>(each.address), each.size};
        std::memcpy(at, &head, sizeof head);
        at += sizeof head;
        if (each.size == sizeof(std::uint64_t)) { // a handle, a size: most are
            std::memcpy(at, each.address, sizeof(std::uint64_t));
        } else {
            std::memcpy(at, each.address, each.size);
        }
        at += rounded(each.size);
    }
    end_entry(size);
}

} // namespace nq::layer::trace
