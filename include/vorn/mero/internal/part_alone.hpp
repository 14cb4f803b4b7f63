#pragma once

// Read before one of the headers of vorn/mero/opencl that is included by itself, as an editor does. After a whole
// version it would declare another one, in parts: that is refused here rather than by errors that say nothing of it.

#ifdef VORN_MERO_WHOLE_VERSION
#error "the headers in vorn/mero/opencl are parts of <vorn/mero/opencl_1_2.hpp> and its siblings: include those alone"
#endif
