#pragma once

// What the parts of the layer check share.

#include "ask.hpp"
#include "source.hpp"

#include <string>
#include <vector>

namespace nq::layer::check {

/// A place in the program that is kept for as long as the process; equal places are one.
using place = call_site const*;

/// The place of the calling function. Unwinds the stack.
place here();

/// ` at file.cpp:13 main`, empty if it is not known.
std::string at(place where);

/// A finding about a call that is being made: prints it with the arguments and the line. Of equal `rule` and line only
/// the first is printed.
void report(call const& made, char const* rule, std::string const& what);

/// What may be a finding: prints it, and leaves the exit status as it is.
void remark(call const& made, place where, std::string const& what);

/// A finding at the end of the program, or of a callback.
void report(std::string const& what);

/// Whether the program, or a library in it, makes OpenCL calls that do not pass libnq. Handles may then come from
/// there, so that nothing is known of those that were released.
bool has_other_users() noexcept;

/// Notes that the program asks for the address of an extension's function. By some, objects are made or retained.
void note_extension(call const& made, description const& about);

/// The object in the first field.
inline void* first_field(call const& made, description const& about) {
    return const_cast<void*>(read_pointer(made.block, about.begin()->offset));
}

/// The handles of one kind in a field that libnq reads. Of a list that cannot be read none.
std::vector<void*> handles_in(call const& made, description const& about, field const& each);

/// The first field that libnq reads and that holds an object of this kind, or a list of them; null if there is none.
field const* find_handle(description const& about, object_kind kind) noexcept;

} // namespace nq::layer::check
