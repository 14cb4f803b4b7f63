#pragma once

#include "operations.hpp"

#include <string_view>

namespace bench {

/// Prints the calls and allocations of every operation, or of one, if the process can count them. Under callgrind,
/// writes a dump of 1000 runs of each, named "operation|contender".
void count(std::vector<contender> const& contenders, std::string_view only);

} // namespace bench
