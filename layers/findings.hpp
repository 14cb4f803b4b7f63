#pragma once

// How a layer ends a program in which it has found something.

namespace nq::layer {

/// Has the process end with exit status 1, or N if a variable of the environment is `exit-status=N`; 0 leaves the
/// program's own. Of several layers the last one whose status is not 0 decides. To be called when shared objects end.
void end_with_findings(char const* layer, char const* variable);

} // namespace nq::layer
