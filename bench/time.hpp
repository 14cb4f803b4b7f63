#pragma once

#include "operations.hpp"

#include <string_view>

namespace bench {

/// Prints, for every operation or for one, its time with the C API in nanoseconds, and the ratio of each other
/// contender to it. Since the speed of a machine drifts, both sides run in turns, in batches of about 100 us, and the
/// ratio is the median over pairs of neighbouring batches. As a control the C API is compared with itself; an operation
/// whose control is not within 2 % of 1 is measured again.
void time(std::vector<contender> const& contenders, std::string_view only);

} // namespace bench
