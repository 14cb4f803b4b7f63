#include "unit/members.hpp"

namespace unit {
namespace {

using namespace nq::block; // NOLINT(google-build-using-namespace)

template <class Api>
class platforms : public members<Api> {};
TYPED_TEST_SUITE(platforms, versions);

TYPED_TEST(platforms, reads_what_it_is) {
    auto& w = this->objects;
    auto const reads = [&](std::uint32_t name, std::string const& reply, auto const& expected, auto read) {
        this->template reads<clGetPlatformInfo>(w.platform, name, reply, expected, read);
    };
    auto const text = [](char const* content) { return scripted::text(content); };
    reads(0x901, text("OpenCL"), "OpenCL", [&] { return w.platform.version(); });
    reads(0x902, text("name"), "name", [&] { return w.platform.name(); });
    reads(0x903, text("maker"), "maker", [&] { return w.platform.vendor(); });
    reads(0x904, text("a  b"), calls{"a", "b"}, [&] { return w.platform.extensions(); });
    reads(0x904, text(""), calls{}, [&] { return w.platform.extensions(); });
    for (char const* const profile : {"FULL_PROFILE", "EMBEDDED_PROFILE", "FULL", ""}) {
        reads(0x900, text(profile), profile == std::string("FULL_PROFILE"),
              [&] { return w.platform.is_full_profile(); });
        reads(0x900, text(profile), profile == std::string("EMBEDDED_PROFILE"),
              [&] { return w.platform.is_embedded_profile(); });
    }
    if constexpr (TypeParam::number >= 210) {
        constexpr word nanoseconds = 0x8000000000000001;
        reads(0x905, scripted::bytes_of(nanoseconds), nanoseconds, [&] { return w.platform.host_timer_resolution(); });
    }
}

TYPED_TEST(platforms, lists_raw_devices_in_two_calls) {
    auto& w = this->objects;
    this->libnq.template list<clGetDeviceIDs>(3);
    this->forget();
    EXPECT_EQ(w.platform.get_raw_devices().size(), 3U);
    this->expect_listing("clGetDeviceIDs", handle_of(w.platform), {u8(0, w.platform), u8(8, 0xFFFFFFFF)}, {16, 24, 32},
                         3);
    this->libnq.template fail<clGetDeviceIDs>(scripted::status(-1));
    EXPECT_THROW(w.platform.get_raw_devices(), common::device_not_found);
}

TYPED_TEST(platforms, is_that_of_the_first_device_of_a_context) {
    auto& w = this->objects;
    auto const devices = scripted::bytes_of(word_of(w.device), word_of(w.device_2));
    this->libnq.template reply<clGetContextInfo>(0x1081, devices);
    this->libnq.template reply<clGetDeviceInfo>(0x1031, scripted::bytes_of(word_of(w.platform)));
    this->forget();
    EXPECT_EQ(word_of(w.context.get_platform()), word_of(w.platform));
    std::size_t const counted = TypeParam::number >= 120 ? 2 : 0;
    calls expected(2, "clGetContextInfo");
    expected.insert(expected.end(), counted, "clRetainDevice");
    expected.insert(expected.end(), 2, "clGetDeviceInfo");
    expected.insert(expected.end(), counted, "clReleaseDevice");
    ASSERT_EQ(this->libnq.names(), expected);
    expect_fields(this->libnq.template last_call<clGetDeviceInfo>(), {u8(0, w.device)});
    this->libnq.template reply<clGetContextInfo>(0x1081, std::string());
    EXPECT_EQ(message_of<common::bad_implementation>([&] { w.context.get_platform(); }),
              "Context has no associated devices, this is impossible.");
}

TYPED_TEST(platforms, looks_up_extension_functions) {
    auto& w = this->objects;
    auto const& other = owner_access::call_handle(w.queue);
    std::vector<pointee> const name{{"func_name", "clSome"}};
    auto const look_up = [&] { return w.function_address(other, w.platform, "clSome"); };
    if constexpr (TypeParam::number < 120) {
        this->template performs<clGetExtensionFunctionAddress>(other, {.object = 8}, {}, look_up, name);
    } else {
        this->template performs<clGetExtensionFunctionAddressForPlatform>(other, {.object = 16}, {u8(0, w.platform)},
                                                                          look_up, name);
    }
    EXPECT_EQ(w.function_address(other, w.platform, "clUnknown"), nullptr);
}

} // namespace
} // namespace unit
