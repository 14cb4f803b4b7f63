#pragma once

// Scenarios that run on every device of every platform that is found, in every version of a range: a device with a
// context and a queue, data that goes to it and comes back, and an account of what each implementation can do.

#include <vorn/mero/opencl.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <list>
#include <numeric>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

namespace real {

using namespace vorn::mero;

using versions = std::tuple<api<100>, api<110>, api<120>, api<200>, api<210>, api<220>>;

using box = std::array<std::size_t, 3>;
using bytes = std::vector<unsigned char>;
using numbers = std::vector<std::int32_t>;

/// `count` values from `first` on, each one more than the one before.
template <class T = std::int32_t>
std::vector<T> counting(std::size_t count, T first = 1) {
    std::vector<T> values(count);
    std::iota(values.begin(), values.end(), first);
    return values;
}

/// Calls `use` with two patterns of each size that fills take, 1 to 128 bytes.
template <class Use>
void for_each_pattern(Use use) {
    auto const of_size = [&]<std::size_t Size>(std::integral_constant<std::size_t, Size>) {
        std::array<unsigned char, Size> first{}, second{};
        std::iota(first.begin(), first.end(), static_cast<unsigned char>(3));
        std::iota(second.begin(), second.end(), static_cast<unsigned char>(100));
        use(first, second);
    };
    [&]<std::size_t... Power>(std::index_sequence<Power...>) {
        (of_size(std::integral_constant<std::size_t, std::size_t{1} << Power>{}), ...);
    }
    (std::make_index_sequence<8>{});
}

struct region {
    box origin;
    box size;

    std::size_t count() const { return size[0] * size[1] * size[2]; }
};

/// Calls `use(position in a tight copy of the region, position in what has rows and layers of the size `whole`)`.
template <class Use>
void for_each_in(region const& part, box const& whole, Use use) {
    for (std::size_t next = 0; next < part.count(); ++next) {
        std::size_t const x = part.origin[0] + next % part.size[0];
        std::size_t const y = part.origin[1] + next / part.size[0] % part.size[1];
        std::size_t const z = part.origin[2] + next / part.size[0] / part.size[1];
        use(next, (z * whole[1] + y) * whole[0] + x);
    }
}

/// Puts what lies tight in `part` into a region of `content`, whose rows and layers have the size `whole`.
template <class T>
void put(std::vector<T> const& part, region const& to, std::vector<T>& content, box const& whole) {
    for_each_in(to, whole, [&](std::size_t from, std::size_t at) { content.at(at) = part.at(from); });
}

template <class T>
std::vector<T> taken(std::vector<T> const& content, region const& from, box const& whole) {
    std::vector<T> part(from.count());
    for_each_in(from, whole, [&](std::size_t to, std::size_t at) { part.at(to) = content.at(at); });
    return part;
}

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

/// The SPIR-V module of the tests: its kernel "f" adds 100 to each element.
bytes intermediate_language();

/// Prints on which thread OpenCL called a function of the program.
void tell_thread(char const* what, std::thread::id caller);

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

using opencl_1_0::raw::refcount, opencl_1_1::raw::refcount, opencl_1_2::raw::refcount, opencl_2_0::raw::refcount,
    opencl_2_1::raw::refcount, opencl_2_2::raw::refcount;
using opencl_1_0::raw::release, opencl_1_1::raw::release, opencl_1_2::raw::release, opencl_2_0::raw::release,
    opencl_2_1::raw::release, opencl_2_2::raw::release;
using opencl_1_0::raw::retain, opencl_1_1::raw::retain, opencl_1_2::raw::retain, opencl_2_0::raw::retain,
    opencl_2_1::raw::retain, opencl_2_2::raw::retain;

/// Whether an object that nothing else uses yet counts its references.
template <class Object>
void expect_counted(Object const& fresh) {
    EXPECT_EQ(refcount(fresh), 1U);
    retain(fresh);
    EXPECT_EQ(refcount(fresh), 2U);
    release(fresh);
    EXPECT_EQ(refcount(fresh), 1U);
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

/// The devices found and what their tests are named after, until the run ends: some implementations do not bear calls
/// from static destructors.
template <class Api>
std::list<std::pair<std::string, typename Api::device>>& found_devices() {
    static std::list<std::pair<std::string, typename Api::device>> devices;
    return devices;
}

/// Calls an action with an object of each version's `api`.
template <class Action>
void for_each_version(Action action) {
    std::apply([&](auto... each) { (action(each), ...); }, versions{});
}

/// What is to be done once the devices are found.
std::list<std::function<void()>>& additions();

/// A test of every device for every version from `First` to `Last`: the body is called with a `bench<Api>&` of its own.
template <int First, int Last = 220>
struct scenario {
    template <class Body>
    scenario(std::string const& name, std::string const& feature, Body body) {
        additions().push_back([=] {
            for_each_version([&]<class Api>(Api) {
                if constexpr (Api::number >= First && Api::number <= Last) {
                    for (auto const& [device_name, device] : found_devices<Api>()) {
                        auto const implementation = implementation_of(device.get_platform().name());
                        add_test({name, feature, implementation, device_name, Api::number},
                                 [&device = device, implementation, body] {
                                     bench<Api> b(implementation, device);
                                     body(b);
                                 });
                    }
                }
            });
        });
    }
};

/// Heads the body of a scenario, which runs in each version from `first` on, or from a first to a last one.
#define SCENARIO(name, feature, ...)                                                                                   \
    template <class Api>                                                                                               \
    void name(bench<Api>& b);                                                                                          \
    scenario<__VA_ARGS__> const adds_##name(#name, feature, [](auto& b) { name(b); });                                 \
    template <class Api>                                                                                               \
    void name([[maybe_unused]] bench<Api>& b)

} // namespace real
