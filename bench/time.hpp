#pragma once

#include "operations.hpp"

#include <string_view>

namespace bench {

/// Prints for every operation, or for one, how long it takes with the C API, in nanoseconds, and the ratio of each
/// other contender to that. On a machine whose speed drifts only the ratio of neighbouring batches means anything: both
/// sides run in turns in batches of about 100 us, and the ratio is the median of those of the pairs. The C API against
/// itself shows how far that can be believed; an operation whose control is not within 2 % of 1 is measured again.
void time(std::vector<contender> const& contenders, std::string_view only);

} // namespace bench
