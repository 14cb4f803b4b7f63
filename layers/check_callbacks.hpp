#pragma once

// Functions of the program that OpenCL calls.

#include "check.hpp"

namespace nq::layer::check {

/// A call whose function has been replaced by one that watches it.
struct watched {
    void* function = nullptr; ///< null if nothing was replaced
    void* user_data = nullptr;
    void* watcher = nullptr;
};

/// Before the call. Replaces the function in the block.
watched watch_callback(call const& made, description const& about);

/// After the call. Restores the block.
void restore_callback(call const& made, description const& about, watched const& was, bool succeeded);

} // namespace nq::layer::check
