#pragma once

#include <nq/types.hpp>

#include <memory>

namespace nq {

/// Shared owner of one opened capability node: the last copy closes it. `get()` is its identity. Threads may copy and
/// destroy copies freely. Null in an object that was moved from.
using call_handle = std::shared_ptr<nq_call_handle>;

} // namespace nq
