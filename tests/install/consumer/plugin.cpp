#include "borders.hpp"

namespace cl = vorn::mero::opencl_1_2;

/// Destroys an event whose release fails, so that the library logs. Returns whether the borders of the library hold.
extern "C" __attribute__((visibility("default"))) bool use_library() {
    static int no_event = 0;
    cl::event(nq::call_handle(), reinterpret_cast<_nq_cl_event*>(&no_event), cl::internal::take_ownership());
    return borders_hold();
}
