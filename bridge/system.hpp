#pragma once

// What the bridge asks of the operating system.

#include <string>

namespace nq::bridge {

/// An environment variable, or null. A set-uid program must not be told by its user what to load: null there.
char const* trusted_environment(char const* name) noexcept;

/// The ICD loader that is loaded where nothing else is said, and how a user gets one.
extern char const* const default_library;
extern char const* const loader_remedy;

/// When the names that a library needs are looked up, where there is a choice.
enum class binding { at_once, when_called };

/// Loads a library for itself alone; null if that fails.
void* load_library(char const* name, binding when) noexcept;

/// Why that failed, if nothing was loaded since: a file, a colon and the reason.
std::string load_failure(char const* name);
void unload_library(void* library) noexcept;

/// A function that a library exports, or null.
void* exported(void* library, char const* name) noexcept;

/// A stand-in for every library that the process has preloaded or linked, for `exported`; null where there is none.
void* global_scope() noexcept;

/// Where the library or program lies in memory that a function is part of; null if that is unknown.
void* object_of(void* function) noexcept;
bool is_in_program(void* function) noexcept;

/// Calls these around each fork; they must not fail.
void watch_forks(void (*before)(), void (*after_in_parent)(), void (*after_in_child)()) noexcept;

} // namespace nq::bridge
