#include "unit/members.hpp"

namespace unit {

using platforms = members;

TEST_F(platforms, tells) {
    reads_each(w.platform, 0x901, "a text", &platform::version, &platform::name, &platform::vendor);
    reads(w.platform, 0x904, names{"a", "b"}, &platform::extensions, reply_of("a  b"));
    for (std::string const profile : {"FULL_PROFILE", "EMBEDDED_PROFILE", "FULL", ""}) {
        reads(w.platform, 0x900, profile == "FULL_PROFILE", &platform::is_full_profile, reply_of(profile));
        reads(w.platform, 0x900, profile == "EMBEDDED_PROFILE", &platform::is_embedded_profile, reply_of(profile));
    }
#if UNIT_OPENCL >= 210
    reads(w.platform, 0x905, large, &platform::host_timer_resolution);
#endif
}

TEST_F(platforms, lists_raw_devices) {
    clGetDeviceIDs const counting{raw_of(w.platform), 0xFFFFFFFF, 0, nullptr, somewhere};
    lists(w.platform, counting, {raw_of(w.platform), 0xFFFFFFFF, 3, somewhere, nullptr}, 3,
          [&] { return w.platform.get_raw_devices(); });
}

} // namespace unit
