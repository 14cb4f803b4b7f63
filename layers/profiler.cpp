#include "profiler.hpp"

#include "ask.hpp"
#include "trace_log.hpp"

#include <atomic>
#include <cstring>
#include <mutex>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace nq::layer::trace {
namespace {

constexpr std::uint64_t profiling = "CL_QUEUE_PROFILING_ENABLE"_cl;
constexpr std::uint32_t property_of_queue = "CL_QUEUE_PROPERTIES"_cl;
constexpr auto not_available = static_cast<std::int32_t>("CL_PROFILING_INFO_NOT_AVAILABLE"_cl);
constexpr std::size_t most_pending = 1024; // commands, before those that are done are looked for

// An enqueued command. Owns a reference to its event.
struct pending_command {
    call through; // whose handle is asked; its block is gone
    std::uint64_t number;
    _nq_cl_command_queue* queue;
    _nq_cl_event* event;
};

struct queue_state {
    bool profiled = false;
    bool forced = false;
};

// Never freed: a program may make calls until its very end.
struct state {
    std::mutex mutex;
    std::unordered_map<void*, queue_state> queues;
    std::atomic<std::uint64_t> changes{1}; // of the queues
    std::vector<pending_command> pending;
    std::atomic<std::size_t> pending_count = 0;
    std::atomic<bool> forces = false;
    std::atomic<bool> stopped = false;
};

state& all() {
    static state& made = *new state;
    return made;
}

// What is done about a command: nothing, but with those that go to a queue, make one, or ask for its times.
enum class part : std::uint8_t {
    none,
    enqueues,
    waits,
    creates_queue,
    creates_queue_with_properties,
    asks_queue,
    asks_times,
    sets_property
};

struct event_fields {
    part plays = part::none;
    std::uint8_t queue = absent;
    std::uint8_t event = absent;
    std::uint8_t blocking = absent;
};

template <class Block>
bool is(description const& about) {
    return &about == &description_of<Block>;
}

part part_of(description const& about) {
    return is<block::clFinish>(about) || is<block::clWaitForEvents>(about) ? part::waits
           : is<block::clCreateCommandQueue>(about)                        ? part::creates_queue
           : is<block::clCreateCommandQueueWithProperties>(about)          ? part::creates_queue_with_properties
           : is<block::clGetCommandQueueInfo>(about)                       ? part::asks_queue
           : is<block::clGetEventProfilingInfo>(about)                     ? part::asks_times
           : is<block::clSetCommandQueueProperty>(about)                   ? part::sets_property
                                                                           : part::none;
}

event_fields find_fields(description const& about) {
    event_fields found;
    found.plays = part_of(about);
    if (!std::string_view(about.name).starts_with("clEnqueue")) {
        return found;
    }
    for (field const& each : about) {
        std::string_view const name = each.name;
        if (name == "command_queue") {
            found.queue = each.offset;
        } else if (name == "event") {
            found.event = each.offset;
            found.plays = part::enqueues;
        } else if (name.starts_with("blocking_")) {
            found.blocking = each.offset;
        }
    }
    return found;
}

template <class Value>
void put(void* block, std::size_t offset, Value value) {
    std::memcpy(static_cast<unsigned char*>(block) + offset, &value, sizeof value);
}

std::uint64_t time_of(pending_command const& done, std::uint32_t which) {
    block::clGetEventProfilingInfo const question{.event = done.event, .param_name = which};
    return ask_value<std::uint64_t>(done.through, question).value_or(0);
}

// Whether it is done, failed ones too.
bool collect(pending_command const& each) {
    block::clGetEventInfo const question{.event = each.event, .param_name = "CL_EVENT_COMMAND_EXECUTION_STATUS"_cl};
    if (ask_value<std::int32_t>(each.through, question).value_or(0) > 0) {
        return false;
    }
    command_entry entry;
    entry.number = each.number;
    entry.queue = reinterpret_cast<std::uintptr_t>(each.queue);
    entry.event = reinterpret_cast<std::uintptr_t>(each.event);
    entry.queued = time_of(each, "CL_PROFILING_COMMAND_QUEUED"_cl);
    entry.submitted = time_of(each, "CL_PROFILING_COMMAND_SUBMIT"_cl);
    entry.started = time_of(each, "CL_PROFILING_COMMAND_START"_cl);
    entry.ended = time_of(each, "CL_PROFILING_COMMAND_END"_cl);
    if (entry.ended != 0) {
        append(entry);
    }
    block::clReleaseEvent released{.event = each.event};
    ask(each.through, released);
    return true;
}

void collect_done() {
    std::vector<pending_command> taken;
    {
        std::scoped_lock const lock{all().mutex};
        taken.swap(all().pending);
        all().pending_count = 0;
    }
    std::erase_if(taken, [](pending_command const& each) { return collect(each); });
    std::scoped_lock const lock{all().mutex};
    all().pending.insert(all().pending.begin(), taken.begin(), taken.end());
    all().pending_count = all().pending.size();
}

queue_state ask_for_state(call const& made, _nq_cl_command_queue* queue) {
    block::clGetCommandQueueInfo const question{.command_queue = queue, .param_name = property_of_queue};
    return {(ask_value<std::uint64_t>(made, question).value_or(0) & profiling) != 0, false};
}

void label(call const& made, _nq_cl_command_queue* queue) {
    label_entry entry;
    entry.address = reinterpret_cast<std::uintptr_t>(queue);
    entry.time = now();
    block::clGetCommandQueueInfo const question{.command_queue = queue, .param_name = "CL_QUEUE_DEVICE"_cl};
    if (auto const device = ask_value<_nq_cl_device_id*>(made, question); device) {
        block::clGetDeviceInfo named{.device = *device,
                                     .param_value = entry.text.data(),
                                     .param_name = "CL_DEVICE_NAME"_cl,
                                     .param_value_size = entry.text.size() - 1};
        ask(made, named);
    }
    append(entry);
}

void remember(call const& made, void* queue, queue_state how) {
    attempt([&] {
        std::scoped_lock const lock{all().mutex};
        all().queues[queue] = how;
        ++all().changes;
    });
    label(made, static_cast<_nq_cl_command_queue*>(queue));
}

queue_state look_up(call const& made, _nq_cl_command_queue* queue) {
    {
        std::scoped_lock const lock{all().mutex};
        if (auto const found = all().queues.find(queue); found != all().queues.end()) {
            return found->second;
        }
    }
    queue_state const told = ask_for_state(made, queue);
    remember(made, queue, told);
    return told;
}

// Each thread keeps the last answer, until something about a queue changes.
queue_state state_of(call const& made, _nq_cl_command_queue* queue) {
    struct answer {
        _nq_cl_command_queue* queue;
        std::uint64_t change;
        queue_state state;
    };
    static thread_local answer last{};
    std::uint64_t const change = all().changes;
    if (last.queue != queue || last.change != change) {
        last = {queue, change, look_up(made, queue)};
    }
    return last.state;
}

int create_queue(call const& made, block::clCreateCommandQueue& block) {
    bool const asked = (block.properties & profiling) != 0;
    bool const forced = all().forces && !asked;
    std::uint64_t const before = std::exchange(block.properties, block.properties | (forced ? profiling : 0));
    int const result = forward(made);
    block.properties = before;
    if (result == result::success && block.error_code == 0) {
        remember(made, block.result, {asked || forced, forced});
    }
    return result;
}

// The properties with profiling, and whether they had it.
std::vector<std::uint64_t> with_profiling(std::uint64_t const* properties, bool& asked) {
    std::vector<std::uint64_t> list;
    bool listed = false;
    for (auto const* each = properties; each != nullptr && each[0] != 0; each += 2) {
        bool const is_sum = each[0] == property_of_queue;
        asked = asked || (is_sum && (each[1] & profiling) != 0);
        listed = listed || is_sum;
        list.insert(list.end(), {each[0], each[1] | (is_sum ? profiling : 0)});
    }
    if (!listed) {
        list.insert(list.end(), {property_of_queue, profiling});
    }
    list.push_back(0);
    return list;
}

int create_queue(call const& made, block::clCreateCommandQueueWithProperties& block) {
    std::vector<std::uint64_t> list;
    bool asked = false;
    attempt([&] { list = with_profiling(block.properties, asked); });
    bool const forced = all().forces && !asked && !list.empty();
    auto const* const before = std::exchange(block.properties, forced ? list.data() : block.properties);
    int const result = forward(made);
    block.properties = before;
    if (result == result::success && block.error_code == 0) {
        remember(made, block.result, {asked || forced, forced});
    }
    return result;
}

// The program sees no profiling that it has not asked for.
int tell_properties(call const& made, block::clGetCommandQueueInfo const& block) {
    int const result = forward(made);
    if (result == result::success && block.status == 0 && block.param_name == property_of_queue &&
        block.param_value != nullptr && state_of(made, block.command_queue).forced) {
        std::uint64_t properties = 0;
        std::memcpy(&properties, block.param_value, sizeof properties);
        properties &= ~profiling;
        std::memcpy(block.param_value, &properties, sizeof properties);
    }
    return result;
}

int tell_times(call const& made, block::clGetEventProfilingInfo& block) {
    if (all().forces && block.event != nullptr) {
        block::clGetEventInfo const question{.event = block.event, .param_name = "CL_EVENT_COMMAND_QUEUE"_cl};
        auto* const queue = ask_value<_nq_cl_command_queue*>(made, question).value_or(nullptr);
        if (queue != nullptr && state_of(made, queue).forced) {
            block.status = not_available;
            return result::success;
        }
    }
    return forward(made);
}

int set_property(call const& made, block::clSetCommandQueueProperty& block) {
    queue_state now = state_of(made, block.command_queue);
    bool const concerns = (block.properties & profiling) != 0;
    std::uint64_t const before = block.properties;
    block.properties &= now.forced && block.enable == 0 ? ~profiling : ~std::uint64_t{0};
    int const result = forward(made);
    block.properties = before;
    if (result == result::success && block.status == 0) {
        if (now.forced && block.old_properties != nullptr) {
            *block.old_properties &= ~profiling;
        }
        if (concerns) {
            now.forced = all().forces && block.enable == 0;
            now.profiled = now.forced || block.enable != 0;
            std::scoped_lock const lock{all().mutex};
            all().queues[block.command_queue] = now;
            ++all().changes;
        }
    }
    return result;
}

int enqueue(call const& made, description const& about, event_fields const& where, std::uint64_t number) {
    auto* const queue = static_cast<_nq_cl_command_queue*>(const_cast<void*>(read_pointer(made.block, where.queue)));
    if (queue == nullptr || !state_of(made, queue).profiled) {
        return forward(made);
    }
    auto** const wanted = static_cast<_nq_cl_event**>(const_cast<void*>(read_pointer(made.block, where.event)));
    _nq_cl_event* event = nullptr;
    if (wanted == nullptr) {
        put(made.block, where.event, &event);
    }
    int const result = forward(made);
    bool const succeeded = result == result::success && read_field(made.block, about.status, sizeof(std::int32_t)) == 0;
    if (wanted == nullptr) {
        put(made.block, where.event, wanted);
    } else if (succeeded) {
        block::clRetainEvent retained{.event = *wanted};
        event = ask(made, retained) ? *wanted : nullptr;
    }
    if (succeeded && event != nullptr) {
        attempt([&] {
            std::scoped_lock const lock{all().mutex};
            all().pending.push_back({{made.handle, made.version, 0, nullptr, nullptr}, number, queue, event});
            ++all().pending_count;
        });
    }
    return result;
}

bool is_time_to_collect(call const& made, event_fields const& where) {
    if (where.blocking != absent && read_field(made.block, where.blocking, sizeof(std::uint32_t)) != 0) {
        return true;
    }
    std::size_t const count = all().pending_count;
    return count != 0 && (where.plays == part::waits || count % most_pending == 0);
}

int perform_by_part(call const& made, description const& about, event_fields const& where, std::uint64_t number) {
    switch (where.plays) {
    case part::enqueues:
        return enqueue(made, about, where, number);
    case part::creates_queue:
        return create_queue(made, *static_cast<block::clCreateCommandQueue*>(made.block));
    case part::creates_queue_with_properties:
        return create_queue(made, *static_cast<block::clCreateCommandQueueWithProperties*>(made.block));
    case part::asks_queue:
        return tell_properties(made, *static_cast<block::clGetCommandQueueInfo*>(made.block));
    case part::asks_times:
        return tell_times(made, *static_cast<block::clGetEventProfilingInfo*>(made.block));
    case part::sets_property:
        return set_property(made, *static_cast<block::clSetCommandQueueProperty*>(made.block));
    case part::none:
    case part::waits:
        break;
    }
    return forward(made);
}

} // namespace

void force_profiling() noexcept { all().forces = true; }

int perform_profiled(call const& made, description const& about, std::uint64_t number) noexcept {
    auto const& where = value_of<event_fields, find_fields>(made);
    if (where.plays == part::none || all().stopped) {
        return forward(made);
    }
    int const result = perform_by_part(made, about, where, number);
    bool const may_be_done = where.plays == part::enqueues || where.plays == part::waits;
    if (result == result::success && may_be_done && is_time_to_collect(made, where)) {
        attempt(collect_done);
    }
    return result;
}

void stop_profiling() noexcept {
    if (!all().stopped.exchange(true)) {
        attempt(collect_done);
    }
}

} // namespace nq::layer::trace
