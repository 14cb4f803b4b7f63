#pragma once

#include "platform.hpp"

namespace nq::bridge {

/// The address of an extension function, or null. `caller` is the platform of the call handle, `id` the platform to
/// ask.
void* extension_function(platform const& caller, cl_platform_id id, char const* name);

} // namespace nq::bridge
