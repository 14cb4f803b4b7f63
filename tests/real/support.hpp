#pragma once

// Scenarios that run on every device of every platform that is found, in every version of a range: a device with a
// context and a queue, data that goes to it and comes back, and an account of what each implementation can do.

#include "names.hpp"

#include <nq/commands.hpp>
#include <nq/nq.hpp>
#include <vorn/mero/easy/versions.hpp>

#include <CL/cl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#pragma GCC diagnostic ignored "-Wunused-result" // tests look at what is done and thrown

namespace real {

using namespace vorn::mero;
namespace wire = nq::block;

using vorn::mero::easy::for_each_version;

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

/// The message of what an action throws, or "nothing".
template <class Exception, class Action>
std::string refusal(Action action) {
    try {
        action();
    } catch (Exception const& refused) {
        return refused.what();
    }
    return "nothing";
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

/// Has the table that closes the run tell what an implementation does in another way, in the running scenario.
void note_difference(std::string const& how);

/// What one implementation is known not to do. With a status, the scenario may end with it; with success, the scenario
/// is not run at all.
struct defect {
    std::string implementation;
    std::string feature;
    common::error_code status;
    std::string reason;
};

/// The defects that the tests know; of other implementations every refusal is taken for one.
std::vector<defect> const& known_defects();

/// The SPIR-V module of the tests: its kernel "f" adds 100 to each element.
bytes intermediate_language();

/// The sanitizers that the tests are built with.
#if defined(__has_feature)
inline constexpr bool address_sanitizer = __has_feature(address_sanitizer);
inline constexpr bool thread_sanitizer = __has_feature(thread_sanitizer);
#else
#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool address_sanitizer = true;
#else
inline constexpr bool address_sanitizer = false;
#endif
#if defined(__SANITIZE_THREAD__)
inline constexpr bool thread_sanitizer = true;
#else
inline constexpr bool thread_sanitizer = false;
#endif
#endif

/// Waits a little for what OpenCL does on a thread of its own.
bool comes_true(std::function<bool()> const& condition);

/// An object that lives as long as the process, for callbacks: with nulled pointers an object that would call may stay
/// behind, and call after its scenario has ended.
template <class T>
T& lasting() {
    static std::deque<T> all;
    return all.emplace_back();
}

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

/// Runs a mode of this program in a process of its own, with the arguments of env(1) before it, for what needs its own
/// environment or may not come back. It must end with 0. Its output.
std::string expect_ends_well(std::string const& mode, std::string const& environment = {});

/// The mode that builds through a cache of binaries while other processes do; on the device of this number.
int share_cache(std::string const& folder, std::string const& device);

/// Performs a mode: its exit status.
int perform_mode(std::vector<std::string> const& words);

/// Finds the devices, adds and runs the tests.
int run_tests();

/// The raw handle of any object.
template <class Object>
auto* raw_of(Object const& object) {
    return vorn::mero::internal::owner_access::raw(object);
}

template <class Object>
nq_call_handle* handle_of(Object const& object) {
    return vorn::mero::internal::owner_access::call_handle(object).get();
}

using opencl_1_0::raw::refcount, opencl_1_1::raw::refcount, opencl_1_2::raw::refcount, opencl_2_0::raw::refcount,
    opencl_2_1::raw::refcount, opencl_2_2::raw::refcount;
using opencl_1_0::raw::release, opencl_1_1::raw::release, opencl_1_2::raw::release, opencl_2_0::raw::release,
    opencl_2_1::raw::release, opencl_2_2::raw::release;
using opencl_1_0::raw::retain, opencl_1_1::raw::retain, opencl_1_2::raw::retain, opencl_2_0::raw::retain,
    opencl_2_1::raw::retain, opencl_2_2::raw::retain;

/// Whether an object counts its references.
template <class Object>
void expect_counted(Object const& object) {
    auto const before = refcount(object);
    EXPECT_GE(before, 1U);
    retain(object);
    EXPECT_EQ(refcount(object), before + 1);
    release(object);
    EXPECT_EQ(refcount(object), before);
}

/// A device under a version, a context and a queue for it.
template <class Api>
struct bench {
    using buffer = typename Api::buffer;
    using event = typename Api::event;

    bench(std::string implementation, typename Api::device const& target)
        : name(std::move(implementation)), device(target), context(Api::create_context(device)),
          queue(Api::create_queue(context, device, false, false)) {
        watch(name, raw_of(context));
    }

    /// Whether this is the implementation that does something in another way, which the table then tells.
    bool differs(std::string const& implementation, std::string const& how) const {
        if (name == implementation) {
            note_difference(how);
        }
        return name == implementation;
    }

    /// Ends the scenario if this is that implementation.
    void leave_out(std::string const& implementation, std::string const& reason) const {
        if (name == implementation) {
            skip(reason);
        }
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

    /// Performs an entry point that the library does not call, or not so.
    template <class Block>
    Block perform(Block block) const {
        std::uint32_t const id = nq::command_id<Api::capability, Block>;
        EXPECT_EQ(nq_call_capability(handle_of(device), id, &block, nullptr), 0) << names::name_of<Block>();
        return block;
    }

    template <class Block>
    Block expect(std::int32_t code, Block block) const {
        block = perform(block);
        if constexpr (requires { block.status; }) {
            EXPECT_EQ(block.status, code) << names::name_of<Block>();
        } else {
            EXPECT_EQ(block.error_code, code) << names::name_of<Block>();
        }
        return block;
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

struct found_device {
    std::string implementation;
    std::string name; // its tests are named after it
};

/// Adds a device; a platform's second one, and every further one, is told apart by its name.
void add_device(std::vector<found_device>& devices, std::string const& platform, std::string const& name);

/// The devices of a version, in the order of their discovery. None is kept open between the tests.
template <class Api>
std::vector<found_device> const& found_devices() {
    static std::vector<found_device> const all = [] {
        std::vector<found_device> found;
        for (auto const& device : Api::get_all_devices()) {
            add_device(found, device.get_platform().name(), device.name());
        }
        return found;
    }();
    return all;
}

/// What is to be done before the tests run.
std::list<std::function<void()>>& additions();

/// A test of every device for every version from `First` to `Last`: the body is called with a `bench<Api>&` of its own.
template <int First, int Last = 220>
struct scenario {
    template <class Body>
    scenario(std::string const& name, std::string const& feature, Body body) {
        additions().push_back([=] {
            for_each_version([&]<class Api>(Api) {
                if constexpr (Api::number >= First && Api::number <= Last) {
                    auto const& devices = found_devices<Api>();
                    for (std::size_t i = 0; i < devices.size(); ++i) {
                        auto const& implementation = devices[i].implementation;
                        add_test({name, feature, implementation, devices[i].name, Api::number}, [=] {
                            bench<Api> b(implementation, Api::get_all_devices().at(i));
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
