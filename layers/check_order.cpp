#include "check_order.hpp"

#include "check_unfinished.hpp"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

namespace nq::layer::check {
namespace {

bool is_out_of_order(call const& made, void* queue) {
    block::clGetCommandQueueInfo const question{.command_queue = static_cast<_nq_cl_command_queue*>(queue),
                                                .param_name = "CL_QUEUE_PROPERTIES"_cl};
    std::uint64_t const properties = ask_value<std::uint64_t>(made, question).value_or(0);
    return (properties & "CL_QUEUE_OUT_OF_ORDER_EXEC_MODE_ENABLE"_cl) != 0;
}

void know_queue(call const& made, void* queue) {
    {
        std::scoped_lock const lock{order().mutex};
        if (order().queues.contains(queue)) {
            return;
        }
    }
    bool const in_order = !is_out_of_order(made, queue);
    std::scoped_lock const lock{order().mutex};
    order().queues.try_emplace(queue).first->second.in_order = in_order;
}

// What the wait list adds, with the mutex held.
void wait_for(passage& through) {
    for (void* const event : through.events) {
        auto const found = order().events.find(event);
        add(through.before, found != order().events.end() ? found->second.before : past{unknown_command});
    }
}

void flush(void* queue) {
    if (auto const found = order().queues.find(queue); found != order().queues.end()) {
        found->second.flushed = found->second.enqueued;
        for (std::uint64_t const number : found->second.awaited) {
            order().unfinished.erase(number);
        }
        found->second.awaited.clear();
    }
}

void begin_command(passage& through, std::string_view entry, bool blocks) {
    queue_state& queue = order().queues[through.queue];
    through.number = ++queue.enqueued;
    through.before = queue.before;
    bool const orders = entry.starts_with("clEnqueueMarker") || entry.starts_with("clEnqueueBarrier");
    if (orders && through.events.empty()) {
        add(through.before, queue.all);
    }
    wait_for(through);
    if (blocks) {
        flush(through.queue);
    }
}

void begin_wait(passage& through) {
    if (through.queue != nullptr) {
        through.before = order().queues[through.queue].all;
        flush(through.queue);
        return;
    }
    wait_for(through);
    for (void* const event : through.events) {
        if (auto const found = order().events.find(event); found != order().events.end()) {
            flush(found->second.queue);
        }
    }
}

// Only a command that is not waited for can be in flight with others.
void lend_event(call const& made, description const& about, passage& through) {
    for (field const& each : about) {
        if (each.kind != field_kind::handle || each.object != object_kind::event || each.direction != direction::out) {
            continue;
        }
        if (read_pointer(made.block, each.offset) == nullptr) {
            _nq_cl_event** const place = &through.kept;
            std::memcpy(static_cast<char*>(made.block) + each.offset, &place, sizeof place);
            through.lent = true;
        }
    }
}

// Restores the block. Without an event of its own the layer takes part in the program's.
void take_event(call const& made, description const& about, passage& through, bool succeeded) {
    for (field const& each : about) {
        if (each.kind != field_kind::handle || each.object != object_kind::event || each.direction != direction::out) {
            continue;
        }
        if (through.lent) {
            std::memset(static_cast<char*>(made.block) + each.offset, 0, sizeof(void*));
        } else if (succeeded) {
            through.kept = *static_cast<_nq_cl_event* const*>(read_pointer(made.block, each.offset));
            block::clRetainEvent retained{.event = through.kept};
            through.kept = ask(made, retained) ? through.kept : nullptr;
        }
    }
}

// The event that the program gets; null if none.
void* event_of(call const& made, description const& about) {
    for (field const& each : about) {
        if (each.kind == field_kind::handle && each.object == object_kind::event && each.direction == direction::out) {
            void const* const value = read_pointer(made.block, each.offset);
            return each.offset == about.result || value == nullptr ? const_cast<void*>(value)
                                                                   : *static_cast<void* const*>(value);
        }
    }
    return nullptr;
}

// A user event, or a queue that is not flushed, that another command waits for; with the mutex held.
void note_waits(passage& through, char const* entry, place where) {
    for (void* const event : through.events) {
        auto const found = order().events.find(event);
        if (found == order().events.end()) {
            continue;
        }
        for (std::uint64_t const number : found->second.before) {
            auto const waited = order().unfinished.find(number);
            if (waited != order().unfinished.end() && waited->second.event == event &&
                waited->second.kind == kind::user_event && waited->second.where == nullptr) {
                waited->second.entry = entry;
                waited->second.where = where;
            }
        }
        void* const queue = found->second.queue;
        auto const other = order().queues.find(queue);
        if (through.enqueues && queue != through.queue && other != order().queues.end() &&
            other->second.flushed < found->second.number) {
            through.before.push_back(add_unfinished({.kind = kind::unflushed,
                                                     .queue = queue,
                                                     .number = found->second.number,
                                                     .entry = entry,
                                                     .where = where,
                                                     .thread = std::this_thread::get_id()}));
            other->second.awaited.push_back(through.before.back());
        }
    }
}

void end_command(call const& made, description const& about, passage& through) {
    std::scoped_lock const lock{order().mutex};
    if (through.kept != nullptr) {
        order().kept.insert(through.kept);
        through.before.push_back(add_unfinished({.kind = kind::transfer,
                                                 .kept = new kept_event{through.kept},
                                                 .accesses = through.accesses,
                                                 .entry = about.name,
                                                 .where = here()}));
        order().transfers.insert(through.before.back());
    }
    queue_state& queue = order().queues[through.queue];
    std::string_view const entry = about.name;
    bool const orders = entry.starts_with("clEnqueueBarrier") || entry == "clEnqueueWaitForEvents";
    if (queue.in_order || orders) {
        add(queue.before, through.before);
    }
    add(queue.all, through.before);
    if (void* const event = event_of(made, about); event != nullptr) {
        order().events[event] = {through.before, through.queue, through.number};
    }
}

bool is_in_conflict(std::vector<access> const& left, std::vector<access> const& right) {
    return std::any_of(left.begin(), left.end(), [&](access const& one) {
        return std::any_of(right.begin(), right.end(), [&](access const& other) {
            return (one.writes || other.writes) && overlaps(one.where, other.where);
        });
    });
}

} // namespace

void begin_passage(call const& made, description const& about, passage& through) {
    std::string_view const entry = about.name;
    bool const finishes = entry == "clFinish";
    bool const flushes = entry == "clFlush" || entry == "clReleaseCommandQueue";
    if (auto const* const set = as<block::clSetUserEventStatus>(made, &about); set != nullptr) {
        std::scoped_lock const lock{order().mutex};
        if (auto const found = find_user_event(set->event); found != order().unfinished.end()) {
            order().unfinished.erase(found);
        }
        return;
    }
    through.enqueues = entry.starts_with("clEnqueue");
    through.waits = finishes || entry == "clWaitForEvents" || is_blocking(made, about);
    if (!through.enqueues && !through.waits && !flushes) {
        return;
    }
    if (field const* const queue = find_handle(about, object_kind::command_queue); queue != nullptr) {
        through.queue = handles_in(made, about, *queue).front();
    }
    if (field const* const events = find_handle(about, object_kind::event); events != nullptr) {
        through.events = handles_in(made, about, *events);
        through.events.erase(std::remove(through.events.begin(), through.events.end(), nullptr), through.events.end());
    }
    if (through.queue != nullptr && through.enqueues) {
        know_queue(made, through.queue);
        through.accesses = accesses_of(made, about);
        through.keeps = !through.accesses.empty() && !through.waits;
    }
    if (through.keeps) {
        lend_event(made, about, through);
    }
    std::scoped_lock const lock{order().mutex};
    if (flushes) {
        flush(through.queue);
    } else if (through.enqueues) {
        begin_command(through, entry, through.waits);
    } else {
        begin_wait(through);
    }
}

std::vector<std::string> find_overlaps(call const& made, passage const& through) {
    std::vector<pending> found;
    {
        std::scoped_lock const lock{order().mutex};
        bool const is_sure = std::none_of(through.before.begin(), through.before.end(), [](std::uint64_t number) {
            auto const each = order().unfinished.find(number);
            return each != order().unfinished.end() &&
                   (each->second.kind == kind::unknown || each->second.kind == kind::user_event);
        });
        for (std::uint64_t const number : order().transfers) {
            pending const& each = order().unfinished.at(number);
            bool const ordered = std::binary_search(through.before.begin(), through.before.end(), number);
            if (is_sure && !ordered && is_in_conflict(through.accesses, each.accesses)) {
                found.push_back(each);
                ++each.kept->users;
            }
        }
    }
    std::vector<std::string> overlaps;
    for (pending const& each : found) {
        if (!is_complete(made, each.kept->event) && !has_other_users()) {
            overlaps.push_back("uses memory that " + std::string(each.entry) + at(each.where) +
                               " may still use, which nothing orders before it");
        }
        release(made, each.kept);
    }
    return overlaps;
}

void end_passage(call const& made, description const& about, passage& through, bool succeeded) {
    if (through.keeps) {
        take_event(made, about, through, succeeded);
    }
    if (succeeded && !through.events.empty()) {
        place const where = here();
        std::scoped_lock const lock{order().mutex};
        note_waits(through, about.name, where);
    }
    if (succeeded && through.enqueues && through.queue != nullptr) {
        end_command(made, about, through);
    }
    constexpr auto failed_before = static_cast<std::int32_t>("CL_EXEC_STATUS_ERROR_FOR_EVENTS_IN_WAIT_LIST"_cl);
    bool const waited =
        succeeded ||
        (about.status != absent && static_cast<std::int32_t>(read_field(made.block, about.status, 4)) == failed_before);
    if (through.waits && waited) {
        report_unflushed(made, through.before);
        complete(made, through.before);
    }
    if (through.keeps) {
        drop_complete_if_many(made);
    }
    if (auto const* const user = as<block::clCreateUserEvent>(made, &about); user != nullptr && succeeded) {
        std::scoped_lock const lock{order().mutex};
        past const own{add_unfinished({.kind = kind::user_event, .event = user->result})};
        order().events[user->result] = {own};
    }
}

void forget_queue(void* queue) {
    std::scoped_lock const lock{order().mutex};
    order().queues.erase(queue);
}

} // namespace nq::layer::check
