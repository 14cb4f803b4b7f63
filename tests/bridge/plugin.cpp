// A plugin with libnq and an OpenCL implementation of its own, both local to it.

#include <nq/nq.hpp>

extern "C" __attribute__((visibility("default"))) int count_devices() {
    std::uint64_t count = 99;
    return nq_get_root_devices(0, nullptr, &count, nullptr) == 0 ? static_cast<int>(count) : -1;
}
