#pragma once

#include "platform.hpp"

namespace nq::bridge {

/// The address of an extension function of a platform, or of the ICD loader's own; null where there is none.
void* extension_function(platform const& where, char const* name);

/// The address of an extension function of the platform `id`, or null. `caller` is the platform of the call handle.
void* extension_function_for_platform(platform const& caller, cl_platform_id id, char const* name);

} // namespace nq::bridge
