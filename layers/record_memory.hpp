#pragma once

// What the layer `record` knows of the program's memory: which of it is mapped, shared, or still written by commands.

#include "ask.hpp"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace nq::layer::record {

using bytes = std::vector<std::byte>;

/// A copy of memory; nothing if it cannot be read.
std::optional<bytes> copy(void const* from, std::size_t size);

/// A copy of a text up to its zero, which counts.
std::optional<bytes> copy_text(void const* from);

/// What the field of this name holds; 0 if there is none.
std::uint64_t value_of(call const& made, description const& about, char const* name) noexcept;

/// Bytes that a command writes. Owns a reference to the command's event.
struct written {
    call through; ///< whose handle is asked; its block is gone
    std::uint64_t order;
    std::uint8_t offset;
    void const* address;
    std::size_t size;
    _nq_cl_event* event;
};

/// Asks whether the command is done, and gives up the event if so. Nothing: it is still running.
std::optional<bool> is_done(written const& each) noexcept;

/// A part of a memory object that is mapped, or of shared memory.
struct mapped {
    std::size_t size;
    bool is_written;
};

/// An allocation of shared memory.
struct allocation {
    std::size_t size;
    bool is_fine;              ///< the host writes it without maps
    std::uint64_t content = 0; ///< the number of what was kept of it last
};

/// Not safe for several threads.
class host_memory {
public:
    /// Notes what a successful call has mapped, allocated or freed.
    void note(call const& made, description const& about, std::size_t pixel_size);

    /// What a call unmaps; it is forgotten.
    std::optional<mapped> take_map(void const* address);

    bool is_shared(void const* address) const;

    std::map<std::uintptr_t, allocation>& shared() { return shared_; }

private:
    std::unordered_multimap<void const*, mapped> maps_{};
    std::map<std::uintptr_t, allocation> shared_{};
};

} // namespace nq::layer::record
