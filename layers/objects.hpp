#pragma once

// Which objects and which shared memory a call makes, retains and releases, by the description of the wire.

#include <nq/describe.hpp>

#include <cstdint>
#include <limits>
#include <vector>

namespace nq::layer {

/// A change of the references to an object.
struct object_change {
    void* address;
    object_kind kind;        ///< none: shared memory
    std::int64_t references; ///< how many more; less than 0 if the call releases them
    bool is_new;             ///< the call has made it
};

/// Releases what has no count, however often it was retained.
constexpr std::int64_t every_reference = std::numeric_limits<std::int64_t>::max();

/// Whether a call makes objects, and writes their handles.
bool makes_objects(description const& about) noexcept;

/// Whether a call may make, retain or release anything.
bool changes_objects(description const& about) noexcept;

/// What a call releases, before it is made: another thread may get the address of what it frees at once.
std::vector<object_change> released_by(description const& about, void const* block,
                                       memory_reader read = detail::copy_memory);

/// What a call that succeeded has made or retained.
std::vector<object_change> made_by(description const& about, void const* block,
                                   memory_reader read = detail::copy_memory);

} // namespace nq::layer
