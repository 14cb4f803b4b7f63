#pragma once

// Makes the argument block of a call that is replayed.

#include "wire.hpp"

#include "../layers/recording.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <unordered_map>
#include <vector>

namespace nq::command {

/// Memory that a call writes, or that is mapped: where it is here, and how the recording lays it out.
struct place {
    std::byte* here = nullptr;
    memory_rows rows_here{};
    memory_rows rows_recorded{};

    bool is_same_shape() const {
        return rows_here.width == rows_recorded.width && rows_here.count[0] == rows_recorded.count[0] &&
               rows_here.count[1] == rows_recorded.count[1];
    }
};

/// What stands here for what the recording names: objects and addresses.
class translation {
public:
    std::uint64_t object(std::uint64_t recorded) const;
    void set_object(std::uint64_t recorded, std::uint64_t here);
    bool has_object(std::uint64_t recorded) const { return objects_.contains(recorded); }

    /// The address here for one in shared memory; nothing for any other.
    std::optional<std::uint64_t> address(std::uint64_t recorded) const;
    void set_shared(std::uint64_t recorded, std::uint64_t size, std::uint64_t here);
    bool has_shared() const { return !shared_.empty(); }
    /// The allocation that an address is in: where it is here, and how many bytes follow it.
    std::optional<recording::memory> shared_at(std::uint64_t recorded) const;

    /// A copy in which each word that is an address in shared memory is the one here.
    std::vector<std::byte> relocated(recording::memory bytes) const;

    void add_map(std::uint64_t recorded, place const& mapped) { maps_.emplace(recorded, mapped); }
    std::optional<place> find_map(std::uint64_t recorded) const;
    void remove_map(std::uint64_t recorded);

private:
    struct allocation {
        std::uint64_t size;
        std::uint64_t here;
    };
    std::unordered_map<std::uint64_t, std::uint64_t> objects_{};
    std::map<std::uint64_t, allocation> shared_{};
    std::unordered_multimap<std::uint64_t, place> maps_{};
};

/// The block of a call, with objects, addresses and memory of this process.
class replay_block {
public:
    /// Refers to the arguments. Throws `std::runtime_error` if a length in the recording does not fit another.
    replay_block(recording::session const& from, recording::read_call const& call, translation const& names);

    std::byte* data() { return block_.data(); }
    std::uint64_t field(std::size_t offset, std::size_t size = 8) const {
        return read_field(block_.data(), offset, size);
    }
    void put(std::size_t offset, std::uint64_t value);

    /// After the call: the places of what it wrote, or will write when its command is done, by the field's offset.
    std::map<std::size_t, place> written() const;

    /// What the call returned in a list or variable: the objects of the recording, and those here.
    std::vector<std::pair<std::uint64_t, std::uint64_t>> returned() const;

    /// Whether what the block refers to must outlive the call.
    bool keeps_memory() const;

private:
    void put_value(nq::field const& each);
    void put_pointer(nq::field const& each);
    void put_input(nq::field const& each, recording::segment const& of);
    void put_list(nq::field const& each, std::vector<std::byte>& list);
    void put_room(nq::field const& each);
    void check_shared(nq::field const& each);
    void check(nq::field const& each);
    std::optional<memory_rows> rows(nq::field const& each, void const* block) const;
    std::byte* own(std::vector<std::byte> bytes);
    void allow(recording::memory bytes) { readable_.push_back(bytes); }

    recording::session const& from_;
    recording::read_call const& call_;
    translation const& names_;
    alignas(8) std::array<std::byte, 256> block_{};
    std::vector<std::vector<std::byte>> owned_{};
    std::vector<recording::memory> readable_{};
};

} // namespace nq::command
