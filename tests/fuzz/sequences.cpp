// Any sequence of operations on objects of the newest OpenCL version: made, copied, moved, assigned, destroyed, asked,
// enqueued. Calls and allocations fail where the input says so. What comes out of an operation is then exactly the
// exception for that; in the end every reference is released once, but those whose release failed.

#include "fuzz/input.hpp"
#include "scripted/failures.hpp"
#include "unit/allocations.hpp"
#include "unit/world.hpp"

#include <nq/error.hpp>
#include <vorn/mero/common/error.hpp>

#include <algorithm>
#include <numeric>
#include <tuple>
#include <typeindex>

namespace {

using namespace unit;
using unit::pipe; // not the system's
namespace common = vorn::mero::common;

scripted::libnq& libnq = scripted::libnq::instance();
nq::call_handle& call_handle = *new nq::call_handle(libnq.open(api::capability)); // for all runs
fuzz::input* input = nullptr;

template <class T>
using slots = std::array<std::optional<T>, 3>;
using pool = std::tuple<slots<device>, slots<context>, slots<host_command_queue>, slots<device_command_queue>,
                        slots<buffer>, slots<sub_buffer>, slots<image_2d>, slots<pipe>, slots<sampler>, slots<program>,
                        slots<kernel>, slots<event>, slots<event_promise>>;
pool objects;

template <class T>
std::optional<T>& slot() {
    return std::get<slots<T>>(objects).at(input->below(3));
}

/// An object, perhaps an empty one.
template <class T>
T& any() {
    auto& chosen = slot<T>();
    if (!chosen) {
        chosen.emplace(call_handle, libnq.make<typename T::raw_type>(1), api::take_ownership{});
    }
    return *chosen;
}

template <class T>
void put(T made) {
    slot<T>().emplace(std::move(made));
}

template <class T>
void put(std::vector<T> made) {
    for (T& each : made) {
        put(std::move(each));
    }
}

/// Calls `use` with a slot of any class.
template <class Use>
void on_any_class(Use use) {
    std::size_t left = input->below(std::tuple_size_v<pool>);
    std::apply([&](auto&... each) { ((left-- == 0 ? use(each) : void()), ...); }, objects);
}

template <class Slots>
using class_of = typename Slots::value_type::value_type;

char memory[64];
_nq_cl_event* wait_list() { return raw_of(any<event>()); }
value flags() { return {input->number()}; }

// What a failing release leaves as it was, what ends the process if a release fails, and everything else.
enum class kind { ordinary, keeps, unfailing };

struct operation {
    kind is;
    void (*perform)();
};

void copy() {
    on_any_class([]<class Slots>(Slots&) {
        using object = class_of<Slots>;
        if constexpr (std::is_copy_constructible_v<object>) {
            put(object(any<object>()));
        }
    });
}

void move() {
    on_any_class([]<class Slots>(Slots&) {
        using object = class_of<Slots>;
        put(object(std::move(any<object>())));
    });
}

void assign_copy() {
    on_any_class([]<class Slots>(Slots&) {
        using object = class_of<Slots>;
        if constexpr (std::is_copy_assignable_v<object>) {
            auto& to = any<object>();
            to = any<object>();
        }
    });
}

void assign_move() {
    on_any_class([]<class Slots>(Slots&) {
        using object = class_of<Slots>;
        auto& to = any<object>();
        to = std::move(any<object>());
    });
}

void destroy() {
    on_any_class([](auto& of) { of.at(input->below(3)).reset(); });
}

void retain_and_adopt() {
    on_any_class([]<class Slots>(Slots&) {
        using object = class_of<Slots>;
        auto& from = any<object>();
        raw::retain(from);
        put(object(raw::get_call_handle(from), raw_of(from), api::take_ownership{}));
    });
}

void grow() {
    std::vector<context> list;
    for (std::size_t left = input->below(6); left != 0; --left) {
        list.push_back(any<context>());
    }
}

#define DO(...)                                                                                                        \
    {                                                                                                                  \
        kind::ordinary, [] { __VA_ARGS__; }                                                                            \
    }
operation const operations[] = {
    {kind::ordinary, copy},
    {kind::ordinary, move},
    {kind::keeps, assign_copy},
    {kind::unfailing, assign_move},
    {kind::ordinary, destroy},
    {kind::ordinary, retain_and_adopt},
    {kind::ordinary, grow},
    DO(put(create_context({}, {any<device>(), any<device>()}, nullptr, nullptr))),
    DO(put(any<context>().get_devices())),
    DO(any<context>().get_platform()),
    DO(put(any<context>().create_host_command_queue(any<device>(), true, false))),
    DO(put(any<context>().create_device_command_queue(any<device>(), true, 64))),
    DO(put(any<context>().create_buffer(flags(), 64, memory))),
    DO(put(any<context>().create_sub_buffer(any<buffer>(), flags(), 0, 8))),
    DO(put(any<context>().create_image_2d(flags(), {1, 2}, 4, 4, 0, nullptr))),
    DO(put(any<context>().create_pipe(flags(), 4, 4))),
    DO(put(any<context>().create_sampler(true, flags(), flags()))),
    DO(put(any<context>().create_user_event())),
    DO(put(any<context>().create_program_from_source("kernel void f() {}"))),
    DO(put(any<context>().create_program_from_il({1, 2, 3}))),
    DO(put(any<context>().create_program_from_binary({{any<device>(), {1, 2}}, {any<device>(), {}}}))),
    DO(put(any<context>().create_program_from_builtin_kernels({any<device>()}, {"a", "b"}))),
    DO(put(any<context>().link_programs({any<device>()}, {any<program>(), any<program>()}, "", nullptr, nullptr))),
    DO(any<context>().image_2d_supported_formats(flags())),
    DO(any<context>().svm_free(any<context>().svm_allocate(flags(), 8, 0))),
    DO(put(any<device>().partition_equally(2))),
    DO(put(any<device>().partition_by_counts({1, 2}))),
    DO(put(any<device>().parent_device())),
    DO(any<device>().name()),
    DO(any<device>().extensions()),
    DO(any<program>().build({any<device>()}, "-D X", nullptr, nullptr)),
    DO(put(any<program>().get_context())),
    DO(put(any<program>().create_kernel("f"))),
    DO(put(any<program>().create_all_kernels())),
    DO(any<program>().binaries()),
    DO(any<program>().kernel_names()),
    DO(put(any<kernel>().clone())),
    DO(put(any<kernel>().copy())),
    DO(any<kernel>().set_argument(0, any<buffer>())),
    DO(any<kernel>().set_argument(1, any<sampler>())),
    DO(any<kernel>().set_argument(2, any<device_command_queue>())),
    DO(put(any<kernel>().get_program())),
    DO(put(any<event>().get_command_queue())),
    DO(any<event>().profile_command_end()),
    DO(any<event>().set_callback(
        {}, [](_nq_cl_event*, int, void*) {}, nullptr)),
    DO(put(any<event_promise>().get_event()); any<event_promise>().set_status_success()),
    DO(put(any<host_command_queue>().get_context())),
    DO(put(any<host_command_queue>().get_device())),
    DO(put(any<host_command_queue>().get_default_device_command_queue())),
    DO(any<host_command_queue>().finish()),
    DO(_nq_cl_event* const list[]{wait_list(), wait_list()}; put(any<host_command_queue>().enqueue_marker(2, list))),
    DO(put(any<host_command_queue>().enqueue_command(read_buffer(any<buffer>(), true, 0, 64, memory)))),
    DO(_nq_cl_event* const list[]{wait_list()};
       put(any<host_command_queue>().enqueue_command(write_buffer(any<buffer>(), false, 0, 64, memory), 1, list))),
    DO(void* place = nullptr;
       put(any<host_command_queue>().enqueue_command(map_buffer(place, any<buffer>(), true, flags(), 0, 8)))),
    DO(put(any<host_command_queue>().enqueue_command(copy_buffer(any<buffer>(), any<buffer>(), 0, 0, 4)))),
    DO(put(any<host_command_queue>().enqueue_command(fill_buffer<int>(any<buffer>(), 7, 0, 4)))),
    DO(put(any<host_command_queue>().enqueue_command(migrate_mem_objects({raw_of(any<buffer>())}, flags())))),
    DO(any<host_command_queue>().enqueue_command_without_event(svm_free({memory, memory}))),
    DO(any<host_command_queue>().enqueue_command_without_event(
        nd_range_kernel(any<kernel>(), 1, {0, 0, 0}, {64, 1, 1}, {8, 1, 1}))),
};

/// Answers queries with a handle that is held, or with other sizes.
template <class... Blocks>
void answer_queries() {
    (libnq.on<Blocks>([](auto& block) {
        std::uint8_t const how = input->byte();
        auto const held = std::find_if(libnq.references.begin(), libnq.references.end(),
                                       [](auto const& each) { return each.second > 0; });
        std::string text(how < 0xF0 ? 8 : how - 0xF0, 'a');
        if (how < 0xE0) {
            text = scripted::bytes_of(held != libnq.references.end() ? held->first : nullptr);
        }
        *block.param_value_size_ret = text.size();
        std::copy_n(text.data(), std::min<std::size_t>(text.size(), block.param_value_size),
                    static_cast<char*>(block.param_value));
        return true;
    }),
     ...);
}

/// References whose release failed, in this run.
int lost = 0;

/// Performs an operation of which perhaps a call fails, and perhaps an allocation. Looks what comes out.
void perform(operation const& chosen) {
    std::uint8_t const how = chosen.is != kind::unfailing ? input->byte() : 0;
    scripted::failing const& failure = scripted::failures[how / 4 % std::size(scripted::failures)];
    bool const call_fails = how % 4 == 1 || how % 4 == 3;
    std::size_t const failing_allocation = how % 4 >= 2 ? 1 + input->below(16) : 0;
    if (call_fails) {
        libnq.fail(failure.how, static_cast<unsigned>(1 + input->below(6)));
    }
    little_memory const limit;
    std::type_index thrown = typeid(void);
    try {
        allocations_of(chosen.perform, failing_allocation);
    } catch (std::exception const& error) {
        thrown = typeid(error);
    }
    bool const memory_lacked = (failing_allocation != 0 && allocated >= failing_allocation) || little_memory::was_short;
    auto const failed =
        std::find_if(libnq.calls.begin(), libnq.calls.end(), [](auto const& each) { return each.has_failed; });
    bool const is_release = failed != libnq.calls.end() && failed->name.starts_with("clRelease");
    bool const is_empty =
        std::any_of(libnq.calls.begin(), libnq.calls.end(), [](auto const& each) { return each.handle == nullptr; });
    bool const is_seen = failed != libnq.calls.end() && !is_release && (failure.how.status == 0 || failed->has_status);
    if (is_release && !(chosen.is == kind::keeps && thrown != typeid(void))) {
        ++lost;
    }
    bool const is_usual = thrown == typeid(void) || thrown == typeid(common::bad_implementation) ||
                          thrown == typeid(common::invalid_value) || thrown == typeid(std::logic_error);
    bool const is_right = is_seen      ? thrown == failure.thrown || (memory_lacked && thrown == typeid(std::bad_alloc))
                          : is_empty   ? thrown == typeid(nq::unrecoverable_error)
                          : is_release ? is_usual || thrown == failure.thrown || thrown == typeid(std::bad_alloc)
                          : memory_lacked ? thrown == typeid(std::bad_alloc)
                                          : is_usual;
    if (!is_right) {
        fuzz::fail("operation " + std::to_string(&chosen - operations) + " throws " + thrown.name());
    }
    libnq.failures.clear();
    libnq.forget_calls();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    libnq.notes_inputs = false;
    answer_queries<clGetPlatformInfo, clGetDeviceInfo, clGetContextInfo, clGetCommandQueueInfo, clGetProgramInfo,
                   clGetKernelInfo, clGetEventInfo, clGetEventProfilingInfo>();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    fuzz::input bytes(data, size);
    input = &bytes;
    lost = 0;
    for (int n = 0; n != 64 && !bytes.empty(); ++n) {
        perform(operations[bytes.below(std::size(operations))]);
    }
    objects = pool();
    auto const& counts = libnq.references;
    fuzz::expect(std::accumulate(counts.begin(), counts.end(), 0,
                                 [](int sum, auto const& each) { return sum + each.second; }) == lost,
                 "references are left");
    libnq.references.clear();
    // a reply that is no handle cannot be retained
    std::erase_if(libnq.faults, [](std::string const& fault) { return fault.starts_with("clRetain"); });
    if (!libnq.faults.empty() || libnq.open_handles.size() != 1) {
        fuzz::fail(libnq.leftovers());
    }
    libnq.forget_calls();
    return 0;
}
