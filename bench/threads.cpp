#include "threads.hpp"

#include "operations.hpp"

#include <vorn/mero/opencl_2_1.hpp>

#include <algorithm>
#include <barrier>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <iterator>
#include <thread>

namespace bench {
namespace {

namespace mero = vorn::mero::opencl_2_1;
using clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds turn(20); // several time slices, where there are more threads than processors
constexpr std::size_t turns = 9;
constexpr int operations_between_looks = 1000;

struct objects {
    explicit objects(mero::device on) : device(std::move(on)) { kernel.set_argument(0, buffer); }

    static mero::program built(mero::context& context) {
        mero::program made = context.create_program_from_source(program_text);
        made.build({}, "", nullptr, nullptr);
        return made;
    }

    mero::device device;
    mero::context context = mero::create_context({}, {device}, nullptr, nullptr);
    mero::host_command_queue queue = context.create_host_command_queue(device, false, false);
    mero::buffer buffer = context.create_buffer(mero::mem_flags::read_write, buffer_size, nullptr);
    mero::kernel kernel = built(context).create_kernel("nothing");
    std::shared_ptr<int> control = std::make_shared<int>();
};

mero::nd_range_kernel launch_of(mero::kernel& kernel) {
    return {kernel, 1, {0, 0, 0}, {work_items, 1, 1}, {group_size, 1, 1}};
}

struct named_operation {
    char const* name;
    void (*run)(objects&);
};

// Each loop is part of a function of its own, so that the call through the pointer costs nothing per operation.
template <class Operation>
named_operation repeated(char const* name, Operation) {
    return {name, [](objects& on) {
                for (int i = 0; i != operations_between_looks; ++i) {
                    Operation{}(on);
                }
            }};
}

std::vector<named_operation> all_operations() {
    return {
        repeated("set argument", [](objects& on) { on.kernel.set_argument(0, on.buffer); }),
        repeated("scalar query", [](objects& on) { keep(on.device.max_compute_units()); }),
        repeated("launch", [](objects& on) { on.queue.enqueue_command_without_event(launch_of(on.kernel)); }),
        repeated("launch, event", [](objects& on) { keep(on.queue.enqueue_command(launch_of(on.kernel))); }),
        repeated("copy and destroy buffer",
                 [](objects& on) {
                     mero::buffer const copy = on.buffer;
                     keep(copy);
                 }),
        repeated(
            "create and release buffer",
            [](objects& on) { keep(on.context.create_buffer(mero::mem_flags::read_write, buffer_size, nullptr)); }),
        repeated("copy and destroy std::shared_ptr", [](objects& on) { keep(std::shared_ptr<int>(on.control)); }),
    };
}

struct sharing {
    char const* name;
    objects (*make)(objects const& first);
};

constexpr sharing ways[] = {
    {"device each", [](objects const&) { return objects(mero::get_all_devices().front()); }},
    {"objects each", [](objects const& first) { return objects(first.device); }},
    {"copies", [](objects const& first) { return first; }},
};

// The thread's own time, which other programs on the machine hardly change.
double processor_nanoseconds() {
    std::timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

double nanoseconds_of_turn(named_operation const& operation, objects& on) {
    auto const end = clock::now() + turn;
    double const start = processor_nanoseconds();
    int runs = 0;
    do {
        operation.run(on);
        ++runs;
    } while (clock::now() < end);
    return (processor_nanoseconds() - start) / (static_cast<double>(runs) * operations_between_looks);
}

double median(std::vector<double> values) {
    auto const middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// One time for each way of sharing. The ways take turns, since the speed of a machine drifts.
std::vector<double> nanoseconds(named_operation const& operation, objects const& first, std::size_t count) {
    std::barrier<> together(static_cast<std::ptrdiff_t>(count));
    std::vector<std::vector<double>> times(std::size(ways), std::vector<double>(count * turns));
    {
        std::vector<std::jthread> running;
        for (std::size_t thread = 0; thread != count; ++thread) {
            running.emplace_back([&, thread] {
                std::vector<objects> on;
                std::transform(std::begin(ways), std::end(ways), std::back_inserter(on),
                               [&first](sharing const& way) { return way.make(first); });
                for (std::size_t i = 0; i != turns * on.size(); ++i) {
                    std::size_t const way = i % on.size();
                    together.arrive_and_wait();
                    times[way][thread * turns + i / on.size()] = nanoseconds_of_turn(operation, on[way]);
                }
            });
        }
    }
    std::vector<double> medians;
    std::transform(times.begin(), times.end(), std::back_inserter(medians), median);
    return medians;
}

} // namespace

void threads() {
    objects const first(mero::get_all_devices().front());
    for (named_operation const& operation : all_operations()) {
        for (std::size_t const count : {1U, 2U, 4U}) {
            auto const times = nanoseconds(operation, first, count);
            for (std::size_t way = 0; way != times.size(); ++way) {
                std::printf("%s|%s|%zu|%.1f\n", operation.name, ways[way].name, count, times[way]);
            }
        }
    }
}

} // namespace bench
