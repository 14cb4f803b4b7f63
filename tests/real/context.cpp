#include "support.hpp"

namespace real {
namespace {

void ignore_report(char const*, void const*, std::size_t, void*) {}

SCENARIO(makes_contexts, "contexts", 100) {
    using property = typename Api::context_property;
    using type = typename Api::device_type;
    auto const platform = b.device.get_platform();
    std::vector<property> const properties{property::platform, reinterpret_cast<std::intptr_t>(raw_of(platform)), 0};
    auto const made = create_context(properties, std::vector{b.device}, ignore_report, nullptr);
    expect_counted(made);
    EXPECT_EQ(made.get_properties(), properties);
    EXPECT_EQ(made.get_devices(), std::vector{b.device});
    EXPECT_EQ(made.get_platform(), platform);
    EXPECT_FALSE(made == b.context);
    auto const from_type = [&](type which) {
        auto const& handle = vorn::mero::internal::owner_access::call_handle(b.device);
        return create_context_from_type(handle, properties, which, ignore_report, nullptr).get_devices();
    };
    auto const devices = from_type(type::all);
    EXPECT_NE(std::ranges::find(devices, b.device), devices.end());
    EXPECT_THROW(from_type(type{CL_DEVICE_TYPE_CUSTOM}), common::opencl_error);
    std::vector<property> const unknown{property(0x7777), property(1), property(0)};
    if (!b.differs("oclgrind", "takes any property of a context")) {
        EXPECT_THROW(create_context(unknown, std::vector{b.device}, nullptr, nullptr), common::invalid_property);
    }
}

} // namespace
} // namespace real
