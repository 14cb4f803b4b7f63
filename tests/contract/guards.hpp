#pragma once

#include "session.hpp"

namespace contract {

/// Null and missing arguments that end the process in some implementation get an error code.
template <nq::capability Version>
void refuses_missing_arguments(session<Version>& s);

} // namespace contract
