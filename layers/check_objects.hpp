#pragma once

// Which objects there are, as the program sees it: what it made and has not released.

#include "check.hpp"

#include <optional>

namespace nq::layer::check {

/// An object that a call has made.
struct object {
    object_kind kind = object_kind::none;
    char const* entry = "";      ///< that made it
    place made_at = nullptr;     ///< null if it came from elsewhere: then its references are not known
    place released_at = nullptr; ///< by the last release; null while it lives
    void* context = nullptr;     ///< null if it has none, or it is not known
    std::int64_t references = 0; ///< of the program
};

/// What is known of a handle.
std::optional<object> find_object(void* handle);

/// Whether it has been released for the last time, and nothing else can be at its address.
bool is_released(void* handle);

/// `kernel 0x12, which clCreateKernel made at main.cpp:3 main and clReleaseKernel released at main.cpp:9 main`
std::string words_for(void* handle, object const& about);

/// Prints the handles that the call must not name: released ones, those of another kind or context, addresses of
/// nothing.
void check_handles(call const& made, description const& about);

/// What a call has done to the count of an object.
struct counting {
    void* handle = nullptr; ///< null if nothing was counted
    bool is_last = false;   ///< the last reference is released
};

/// Before a call: counts what it retains and releases.
counting note_references(call const& made, description const& about);

/// After a call that failed: takes back what `note_references` counted.
void take_back(counting const& counted, description const& about);

/// After a call that succeeded: notes what it made, and what a query tells of.
void note_objects(call const& made, description const& about);

/// Another part of OpenCL tells the program of an object, so that it lives.
void revive(void* handle);

} // namespace nq::layer::check
