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
static_assert(embedded::scale.find("scale")->arguments == 2 &&
              embedded::scale.options == "-cl-std=CL1.2 -D \"FACTOR=1 + 2\"");
static_assert(embedded::scale.name == "scale.cl" && embedded::scale.il.size() % 4 == 0 && !embedded::scale.il.empty());
static_assert(kernels::odd.find("odd")->arguments == 3 && kernels::odd.il.empty() && kernels::odd.options.empty());
static_assert(kernels::large.source.size() > 65536 && kernels::large.find("large")->arguments == 0);
static_assert(unchecked::odd.source == kernels::odd.source && unchecked::odd.kernels.empty());

template <int Version>
bool scales(char const* how, float offset) {
    bool good = true;
    for (auto const& device : ez::find_devices<Version>()) {
        ez::basic_session<Version> const gpu(device);
        auto const program = gpu.build(embedded::scale);
        auto values = gpu.array(std::vector<float>{1, 2, 3});
        program["nothing"](ez::range(1));
        program["scale"](ez::range(4), values, std::uint32_t{3});
        bool const right = values.read() == std::vector<float>{3 + offset, 6 + offset, 9 + offset};
        std::printf("%s, %s: %s\n", device.name().c_str(), how, right ? "right" : "wrong");
        good = good && right;
    }
    return good;
}

int main(int, char** arguments) try {
    std::ifstream file(ODD, std::ios::binary);
    bool good = std::string(std::istreambuf_iterator<char>(file), {}) == kernels::odd.source;
    std::printf("the text of odd.cl is %s\n", good ? "the same" : "another one");
    float const offset = std::strtof(arguments[1], nullptr);
    good = scales<120>("from source", offset) && good;
    good = scales<210>("from SPIR-V if it takes that", offset) && good;
    return good ? 0 : 1;
} catch (std::exception const& failure) {
    std::puts(failure.what());
    return 1;
}
