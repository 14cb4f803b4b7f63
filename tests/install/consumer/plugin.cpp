#include <vorn/mero/opencl_1_2.hpp>

namespace cl = vorn::mero::opencl_1_2;

/// Destroys an event whose release fails, so that the library logs.
extern "C" __attribute__((visibility("default"))) void use_library() {
    static int no_event = 0;
    cl::event(nq::call_handle(), reinterpret_cast<_nq_cl_event*>(&no_event), cl::internal::take_ownership());
}
