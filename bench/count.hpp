#pragma once

#include "operations.hpp"

#include <string_view>

namespace bench {

/// Prints the calls and allocations of every operation, or of one, as far as they can be counted, and under callgrind
/// leaves a dump of 1000 of each, named "operation|contender".
void count(std::vector<contender> const& contenders, std::string_view only);

} // namespace bench
