#pragma once

#include <nq/types.hpp>

#include <memory>

namespace nq {

/// Shared owner of one opened capability node; the last copy closes it. Its identity is `get()`. Copies may be made and
/// dropped on any thread. Null in an object that was moved from.
using call_handle = std::shared_ptr<nq_call_handle>;

} // namespace nq
