#pragma once

// Included before a header of vorn/mero/opencl that is read by itself, as editors do. After a whole version the header
// would declare classes of another one: this gives a clear error instead.

#ifdef VORN_MERO_WHOLE_VERSION
#error "the headers in vorn/mero/opencl are parts of <vorn/mero/opencl_1_2.hpp> and its siblings: include those alone"
#endif
