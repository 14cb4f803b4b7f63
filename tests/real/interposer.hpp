#pragma once

// What this program puts between the library and libnq: it spoils the results of each call before, notes it, and can
// make it once more for every pointer in its block, with that pointer nulled.

#include <nq/types.hpp>

#include <set>
#include <string>

namespace real {

/// Makes each call also with nulled pointers from now on, before the call itself, and keeps those that come back. What
/// becomes of the scenarios is then of no interest.
void start_nulling();
bool is_nulling();

/// The calls with nulled pointers that were answered otherwise than with the code for such an argument.
std::set<std::string> const& wrong_answers();

/// The entry points of a version that were not called, through any call handle.
std::string never_called(nq::capability which);

} // namespace real
