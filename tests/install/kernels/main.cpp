// kernels OFFSET: runs the embedded kernels on every device, from source and from SPIR-V.
#include "embedded/scale.hpp"
#include "kernels.hpp"
#include "unchecked.hpp"

#include <vorn/mero/easy.hpp>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace ez = vorn::mero::easy;

static_assert(embedded::scale.kernels.size() == 2 && embedded::scale.find("nothing")->arguments == 0);
static_assert(embedded::scale.find("scale")->arguments == 2 && embedded::scale.options == "-cl-std=CL1.2 -DFACTOR=3");
static_assert(embedded::scale.name == "scale.cl" && embedded::scale.il.size() % 4 == 0 && !embedded::scale.il.empty());
static_assert(kernels::odd.find("odd")->arguments == 3 && kernels::odd.il.empty() && kernels::odd.options.empty());
static_assert(kernels::large.source.size() > 65536 && kernels::large.find("large")->arguments == 0);
static_assert(unchecked::odd.source == kernels::odd.source && unchecked::odd.kernels.empty());

template <int Version>
bool scales(ez::basic_session<Version> const& gpu, typename vorn::mero::api<Version>::program program, float offset) {
    ez::build<Version>(program, gpu.device(), std::string(embedded::scale.options));
    auto values = gpu.array(std::vector<float>{1, 2, 3});
    auto kernel = program.create_kernel("scale");
    std::uint32_t const count = 3;
    kernel.set_argument(0, values.exact());
    kernel.set_argument_raw(1, sizeof count, &count);
    gpu.queue().enqueue_command_without_event(vorn::mero::api<Version>::launch(kernel, 4, 1));
    bool const right = values.read() == std::vector<float>{3 + offset, 6 + offset, 9 + offset};
    std::printf("OpenCL %d on %s: %s\n", Version, gpu.device().name().c_str(), right ? "right" : "wrong");
    return right;
}

int main(int, char** arguments) try {
    std::ifstream file(ODD, std::ios::binary);
    bool good = std::string(std::istreambuf_iterator<char>(file), {}) == kernels::odd.source;
    std::printf("the text of odd.cl is %s\n", good ? "the same" : "another one");
    float const offset = std::strtof(arguments[1], nullptr);
    for (auto const& device : ez::find_devices<120>()) {
        ez::basic_session<120> const gpu(device);
        good =
            scales<120>(gpu, gpu.context().create_program_from_source(std::string(embedded::scale.source)), offset) &&
            good;
    }
    for (auto const& device : ez::find_devices<210>()) {
        if (device.il_version().find("SPIR-V") == std::string::npos) {
            std::printf("%s takes no SPIR-V\n", device.name().c_str());
            continue;
        }
        ez::basic_session<210> const gpu(device);
        auto const& il = embedded::scale.il;
        good = scales<210>(gpu, gpu.context().create_program_from_il({il.begin(), il.end()}), offset) && good;
    }
    return good ? 0 : 1;
} catch (std::exception const& failure) {
    std::puts(failure.what());
    return 1;
}
