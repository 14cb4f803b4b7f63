#include "parent.hpp"

#include "kernels.hpp"

static_assert(kernels::parent.find("greet")->arguments == 1);

std::vector<std::string> parent::names() {
    std::vector<std::string> names;
    for (auto const& device : vorn::mero::opencl_1_2::get_all_devices()) {
        names.push_back(device.name());
    }
    return names;
}
