#pragma once

// Scenarios that run on every device of every platform that is found, in every version of a range: a device with a
// context and a queue, data that goes to it and comes back, and an account of what each implementation can do.

#include <vorn/mero/opencl.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <list>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace real {

using namespace vorn::mero;

using versions =
    std::tuple<opencl_1_0::api, opencl_1_1::api, opencl_1_2::api, opencl_2_0::api, opencl_2_1::api, opencl_2_2::api>;

/// "pocl", "rusticl", "oclgrind", "intel", or another platform's own name without what is neither letter nor digit.
std::string implementation_of(std::string const& platform_name);

/// Ends the scenario, from any depth; the reason is printed and counted.
[[noreturn]] void skip(std::string const& reason);

/// What one implementation is known not to do. With a status, the scenario may end with it; without one, the scenario
/// is not run at all.
struct defect {
    std::string implementation;
    std::string feature;
    common::error_code status;
    std::string reason;
};

/// The defects that the tests know; of other implementations every refusal is taken for one.
std::vector<defect> const& known_defects();

/// A function of the C API, from the ICD loader that the bridge has loaded.
void* c_function(char const* name);

#define REAL_C_API(name) reinterpret_cast<decltype(&::name)>(::real::c_function(#name))

/// Has OpenCL tell when it deletes the context, where the implementation can.
void watch(std::string const& implementation, _nq_cl_context* context);

struct scenario_name {
    std::string scenario;
    std::string feature; // a row of the table that closes the run
    std::string implementation;
    std::string device; // its tests are named after it
    int version;
};

/// Adds a test that runs the body, turns what it throws into a skip or a failure, and then demands that every watched
/// context is gone.
void add_test(scenario_name const& name, std::function<void()> body);

/// The raw handle of any object.
template <class Object>
auto* raw_of(Object const& object) {
    return vorn::mero::internal::owner_access::raw(object);
}

/// A device under a version, a context and a queue for it.
template <class Api>
struct bench {
    using buffer = typename Api::buffer;
    using event = typename Api::event;
    static constexpr int version = Api::number;

    bench(std::string implementation, typename Api::device const& target)
        : name(std::move(implementation)), device(target), context(Api::create_context(device)),
          queue(Api::create_queue(context, device, false, false)) {
        watch(name, raw_of(context));
    }

    template <class T>
    buffer store(std::vector<T> values) {
        return context.create_buffer(Api::mem_flags::read_write | Api::mem_flags::copy_host_ptr,
                                     values.size() * sizeof(T), values.data());
    }

    /// The content of a whole memory object, once every command before is complete.
    template <class T = std::int32_t>
    std::vector<T> load(typename Api::memory_object const& source) {
        std::vector<T> values(source.size() / sizeof(T));
        queue.finish();
        buffer const whole(vorn::mero::internal::owner_access::call_handle(source), raw_of(source),
                           typename Api::create_reference{});
        run(typename Api::read_buffer(whole, true, 0, source.size(), values.data()));
        return values;
    }

    void run(typename Api::command const& command) { queue.enqueue_command_without_event(command); }

    /// Runs a kernel over one dimension, and waits.
    void launch(typename Api::kernel const& function, std::size_t global_size, std::size_t local_size = 1) {
        run(Api::launch(function, global_size, local_size));
        queue.finish();
    }

    /// Enqueues after the given events.
    template <class... Events>
    event run_after(typename Api::command const& command, Events const&... events) {
        std::array<_nq_cl_event*, sizeof...(events)> const list{raw_of(events)...};
        return queue.enqueue_command(command, sizeof...(events), list.data());
    }

    template <class... Events>
    void wait_for(Events const&... events) {
        std::array<_nq_cl_event*, sizeof...(events)> const list{raw_of(events)...};
        context.wait_for_events(sizeof...(events), list.data());
    }

    typename Api::program build(std::string const& source, std::string const& options = "") {
        auto program = context.create_program_from_source(source);
        build(program, options);
        return program;
    }

    void build(typename Api::program& program, std::string const& options = "") {
        program.build({device}, options, nullptr, nullptr);
        EXPECT_EQ(static_cast<int>(program.build_status(device)), 0) << program.build_log(device);
    }

    /// The kernel `f` of a program of its own, with these arguments: memory objects, samplers and plain values.
    template <class... Arguments>
    typename Api::kernel function(std::string const& source, Arguments&&... arguments) {
        auto kernel = build(source).create_kernel("f");
        set_arguments(kernel, arguments...);
        return kernel;
    }

    template <class... Arguments>
    static void set_arguments(typename Api::kernel& kernel, Arguments&&... arguments) {
        unsigned int index = 0;
        (set_argument(kernel, index++, arguments), ...);
    }

    std::string name;
    typename Api::device device;
    typename Api::context context;
    typename Api::host_queue queue;

private:
    template <class Argument>
    static void set_argument(typename Api::kernel& kernel, unsigned int index, Argument& argument) {
        if constexpr (requires { kernel.set_argument(index, argument); }) {
            kernel.set_argument(index, argument);
        } else {
            kernel.set_argument_raw(index, sizeof argument, &argument);
        }
    }
};

/// What a device's tests are named after, and the device.
template <class Api>
using named_device = std::pair<std::string, typename Api::device>;

/// The devices found, which live until `run` ends: some implementations do not bear calls from static destructors.
template <class Api>
std::list<named_device<Api>>& found_devices() {
    static std::list<named_device<Api>> devices;
    return devices;
}

/// Fills `found_devices`. A platform's second device, and every further one, is told apart by its name.
void find_devices();

/// Adds a test of every device for every version from `First` to `Last`; the scenario is called with a
/// `bench<Api>&` of its own.
template <int First, int Last = 220, class Scenario>
void add_scenario(std::string const& name, std::string const& feature, Scenario scenario) {
    auto const add = [&]<class Api>(Api) {
        if constexpr (Api::number >= First && Api::number <= Last) {
            for (auto const& target : found_devices<Api>()) {
                auto const implementation = implementation_of(target.second.get_platform().name());
                add_test({name, feature, implementation, target.first, Api::number},
                         [&target, implementation, scenario] {
                             bench<Api> b(implementation, target.second);
                             scenario(b);
                         });
            }
        }
    };
    std::apply([&](auto... each) { (add(each), ...); }, versions{});
}

/// Finds the devices, adds the scenarios and runs them.
int run(int count, char** words, std::function<void()> const& add_scenarios);

} // namespace real
