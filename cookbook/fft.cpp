// Fourier transforms of many signals, with clFFT.

#include "support.hpp"

#include <vorn/mero/easy/borders.hpp>

#include <array>
#include <clFFT.h>
#include <cmath>

namespace ez = vorn::mero::easy;

static void succeed(clfftStatus status) {
    if (status != CLFFT_SUCCESS) {
        throw std::runtime_error("clFFT returns status " + std::to_string(status));
    }
}

// The library's plan for a number of signals side by side, on a session's queue. It goes before the session does.
class transform {
public:
    transform(ez::session const& gpu, std::size_t length, std::size_t signals) : queue_(ez::to_cl(gpu.queue())) {
        succeed(clfftCreateDefaultPlan(&plan_, ez::to_cl(gpu.context()), CLFFT_1D, &length));
        succeed(clfftSetPlanBatchSize(plan_, signals));
        succeed(clfftSetResultLocation(plan_, CLFFT_OUTOFPLACE));
        succeed(clfftBakePlan(plan_, 1, &queue_, nullptr, nullptr)); // builds the kernels
    }
    transform(transform const&) = delete;
    transform& operator=(transform const&) = delete;
    ~transform() { clfftDestroyPlan(&plan_); }

    // Enqueues the transform; it goes through the queue in order.
    void operator()(cl_mem from, cl_mem to) {
        succeed(clfftEnqueueTransform(plan_, CLFFT_FORWARD, 1, &queue_, 0, nullptr, nullptr, &from, &to, nullptr));
    }

private:
    cl_command_queue queue_;
    clfftPlanHandle plan_{};
};

using complex = std::array<float, 2>;

static void fft(cookbook::recipe const& here) {
    std::size_t const length = here.size(256, 64);
    std::size_t const signals = here.size(512, 4);
    double const turn = 2 * std::acos(-1.0) / static_cast<double>(length);
    std::vector<complex> values(length * signals); // signal n is a pure tone of frequency n
    for (std::size_t i = 0; i != values.size(); ++i) {
        double const angle = turn * static_cast<double>(i / length * i % length);
        values[i] = {static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle))};
    }

    ez::session gpu;
    clfftSetupData setup{};
    succeed(clfftInitSetupData(&setup));
    succeed(clfftSetup(&setup));
    {
        transform one(gpu, length, 1), all(gpu, length, signals);
        std::vector<ez::array<complex>> from, to;
        for (std::size_t i = 0; i != signals; ++i) {
            auto const begin = values.begin() + static_cast<std::ptrdiff_t>(i * length);
            from.push_back(gpu.array(std::vector<complex>(begin, begin + static_cast<std::ptrdiff_t>(length))));
            to.push_back(gpu.array<complex>(length));
        }
        auto from_all = gpu.array(values), to_all = gpu.array<complex>(values.size());
        here.compare(
            [&] {
                for (std::size_t i = 0; i != signals; ++i) {
                    one(ez::to_cl(from[i]), ez::to_cl(to[i]));
                }
                gpu.finish();
            },
            [&] {
                all(ez::to_cl(from_all), ez::to_cl(to_all));
                gpu.finish();
            });
        auto const spectra = to_all.read();
        for (std::size_t i = 0; i != signals; ++i) {
            auto const spectrum = to[i].read();
            for (std::size_t k = 0; k != length; ++k) {
                float const expected = k == i % length ? static_cast<float>(length) : 0;
                here.check(std::abs(spectrum[k][0] - expected) < 1e-2F, "a transform alone is wrong");
                here.check(std::abs(spectra[i * length + k][0] - expected) < 1e-2F, "a transform in a batch is wrong");
            }
        }
    }
    succeed(clfftTeardown());
    std::printf("%zu signals of %zu\n", signals, length);
}

int main(int count, char** arguments) { return cookbook::run("fft", fft, count, arguments); }
