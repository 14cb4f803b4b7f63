#pragma once

// How a layer ends a program in which it has found something.

namespace nq::layer {

/// Ends the process with exit status 1, or N if a variable of the environment is `exit-status=N`; 0 leaves the
/// program's own. To be called when the program has ended.
void end_with_findings(char const* layer, char const* variable);

} // namespace nq::layer
