#pragma once

#include "operations.hpp"

#include <string_view>

namespace bench {

/// Prints, for every operation or for one, its time with each contender in nanoseconds and the ratio to the C API:
///
///     operation|contender|nanoseconds|ratio|uncertainty of the ratio|its lower quartile|its upper quartile
///
/// Since the speed of a machine drifts, the contenders run in turns, in batches of about 100 us. The ratio is the
/// median over rounds of neighbouring batches, the uncertainty half of its 95 % confidence interval. Rounds are added
/// until it is below 0.5 %, or there are 1600 of them. As a control the C API takes part twice, which must agree within
/// 2 % as well: its own line has the ratio of the two.
void time(std::vector<contender> const& contenders, std::string_view only);

} // namespace bench
