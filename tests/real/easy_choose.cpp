// Devices chosen by text and by what they have: what the layer says of each device must be what the device does.

#include "support.hpp"

#include <vorn/mero/easy.hpp>

namespace real {
namespace {

namespace ez = vorn::mero::easy;
using ez::needs;

/// Whether an action succeeds.
template <class Action>
bool works(Action action) {
    return refusal<std::exception>(action) == "nothing";
}

template <class Api>
bool builds(bench<Api>& b, std::string const& body, std::string const& options = "") {
    return works([&] {
        ez::build<Api::number>(
            b.context, b.device,
            "#ifdef EXTENSION\n#pragma OPENCL EXTENSION EXTENSION : enable\n#endif\nkernel void f(global float* v) { " +
                body + " }",
            options);
    });
}

/// Whether the device does it, as a program finds out by trying.
template <class Api>
bool does(bench<Api>& b, needs what) {
    using flags = typename Api::mem_flags;
    if (what == needs::images) {
        return works([&] {
            b.context.create_sampler(false, typename Api::sampler_addressing_mode{CL_ADDRESS_CLAMP},
                                     typename Api::sampler_filter_mode{CL_FILTER_NEAREST});
        });
    }
    if (what == needs::fp64) {
        return builds(b, "v[0] = (float)((double)v[0] / 3);");
    }
    if (what == needs::fp16) {
        return builds(b, "half const h = (half)v[0]; v[0] = (float)(h * h);", "-DEXTENSION=cl_khr_fp16");
    }
    if (what == needs::sub_groups && !b.differs("oclgrind", "declares the functions of sub-groups and has none")) {
        return builds(b, "v[0] = (float)get_sub_group_size();", "-DEXTENSION=cl_khr_subgroups -cl-std=CL3.0") ||
               builds(b, "v[0] = (float)get_sub_group_size();", "-DEXTENSION=cl_khr_subgroups -cl-std=CL2.0");
    }
    if (what == needs::out_of_order && Api::number >= 200 &&
        b.differs("rusticl", "takes the property of out-of-order queues and drops it")) {
        return false;
    }
    if (what == needs::out_of_order) {
        return works([&] { Api::create_queue(b.context, b.device, true, false); });
    }
    if constexpr (Api::number >= 200) {
        if (what == needs::svm) {
            void* const memory = b.context.svm_allocate({}, 64, 0);
            b.context.svm_free(memory);
            return memory != nullptr;
        }
        if (what == needs::pipes) {
            return works([&] { b.context.create_pipe(flags::read_write, 4, 4); });
        }
        if (what == needs::device_queue &&
            !b.differs("rusticl", "makes a queue of the host instead of one of the device")) {
            return works([&] { b.context.create_device_command_queue(b.device, false); });
        }
    }
    return false;
}

SCENARIO(easy_needs, "easy choice", 100) {
    for (auto const& [each, name, since] : ez::detail::all_needs) {
        bool const claimed = ez::lacks<Api::number>(b.device, each).empty();
        EXPECT_EQ(claimed, does(b, each)) << name;
    }
    auto const is_this = [&](auto const& found) { return found == b.device; };
    for (needs const each : {needs::images, needs::fp64, needs::fp16, needs::sub_groups}) {
        auto const found = ez::find_devices<Api::number>(each);
        EXPECT_EQ(std::any_of(found.begin(), found.end(), is_this), ez::lacks<Api::number>(b.device, each).empty());
    }
    if constexpr (Api::number < 200) {
        EXPECT_EQ(refusal<ez::no_device>([] { ez::find_device<Api::number>(needs::images | needs::svm); }),
                  "OpenCL " + ez::detail::version_text(Api::number) +
                      " has no shared virtual memory (svm): use version 200, as in ez::basic_session<200>");
    }
}

SCENARIO(easy_says_what_devices_lack, "easy choice", 120, 120) {
    auto const devices = Api::get_all_devices();
    auto const number = std::find(devices.begin(), devices.end(), b.device) - devices.begin();
    std::string const text = std::to_string(number);
    EXPECT_EQ(ez::find_device(text, needs::images), b.device);
    EXPECT_EQ(ez::session(text, needs::images).device(), b.device);
    for (auto const& each : ez::find_devices("pocl")) { // which is in its platform's version only
        EXPECT_EQ(each.get_platform().name(), "Portable Computing Language");
    }
    EXPECT_EQ(ez::find_devices("pocl").empty(), ez::find_devices("portable computing").empty());
    needs const much = needs::fp64 | needs::fp16 | needs::sub_groups | needs::out_of_order;
    std::string const line = text + ": " + b.device.get_platform().name() + ": " + b.device.name() + " (";
    EXPECT_NE(("\n" + ez::list_devices<Api::number>()).find("\n" + line), std::string::npos);
    std::string const lacked = ez::lacks(b.device, much);
    if (lacked.empty()) {
        EXPECT_EQ(ez::find_device(text, much), b.device);
        return;
    }
    std::string const refused = refusal<ez::no_device>([&] { ez::session(text, much); });
    EXPECT_EQ(refused.find("No OpenCL device fits '" + text + "' and has what is needed. There are:\n"), 0U) << refused;
    EXPECT_NE(refused.find("\n" + line), std::string::npos) << refused;
    EXPECT_NE(refused.find("): lacks " + lacked + "\n"), std::string::npos) << refused;
}

} // namespace
} // namespace real
