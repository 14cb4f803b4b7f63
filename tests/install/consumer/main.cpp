#include "borders.hpp"

#include <vorn/mero/opencl.hpp>
#include <vorn/mero/version.hpp>

#include <iostream>
#include <string>

namespace {

template <class Devices>
void list(char const* version, Devices const& devices) {
    std::cout << version << ": " << devices.size() << " device(s)\n";
    for (auto const& device : devices) {
        std::cout << "  " << device.name() << '\n';
    }
}

} // namespace

int main() {
    using namespace vorn::mero;
    std::string const version =
        std::to_string(version_major) + '.' + std::to_string(version_minor) + '.' + std::to_string(version_patch);
    if (version != PACKAGE_VERSION || vorn::mero::version != VORN_MERO_VERSION) {
        std::cout << "the headers are of " << version << ", the package of " << PACKAGE_VERSION << '\n';
        return 1;
    }
    list("OpenCL 1.0", vorn::mero::opencl_1_0::get_all_devices());
    list("OpenCL 2.2", vorn::mero::opencl_2_2::get_all_devices());
    return borders_hold() ? 0 : 1;
}
