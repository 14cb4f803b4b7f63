#include "check_unfinished.hpp"

#include "check_objects.hpp"

#include <algorithm>
#include <utility>

namespace nq::layer::check {
namespace {

std::string words_for_event(pending const& each) {
    auto const about = find_object(each.event);
    return about ? words_for(each.event, *about) : "a user event";
}

std::string words_for_user(pending const& each) {
    return words_for_event(each) + ", was never completed: " + each.entry + at(each.where) + " waits for it";
}

std::string words_for_unflushed(pending const& each) {
    auto const about = find_object(each.queue);
    return "waits for a command in " + (about ? words_for(each.queue, *about) : std::string("another command queue")) +
           ", which is not flushed";
}

} // namespace

order_state& order() {
    static order_state& made = *new order_state;
    return made;
}

void add(past& to, past const& more) {
    past both;
    std::set_union(to.begin(), to.end(), more.begin(), more.end(), std::back_inserter(both));
    both.erase(std::remove_if(both.begin(), both.end(), [](auto each) { return !order().unfinished.contains(each); }),
               both.end());
    to = std::move(both);
}

std::uint64_t add_unfinished(pending made) {
    order().unfinished.emplace(++order().last, std::move(made));
    return order().last;
}

void release(call const& made, kept_event* each) {
    if (--each->users == 0) {
        block::clReleaseEvent released{.event = static_cast<_nq_cl_event*>(each->event)};
        ask(made, released);
        delete each;
    }
}

std::map<std::uint64_t, pending>::iterator find_user_event(void* event) {
    auto const known = order().events.find(event);
    if (known == order().events.end() || known->second.before.size() != 1) {
        return order().unfinished.end();
    }
    auto const found = order().unfinished.find(known->second.before.front());
    bool const is_user = found != order().unfinished.end() && found->second.kind == kind::user_event;
    return is_user && found->second.event == event ? found : order().unfinished.end();
}

bool is_complete(call const& made, void* event) {
    block::clGetEventInfo const question{.event = static_cast<_nq_cl_event*>(event),
                                         .param_name = "CL_EVENT_COMMAND_EXECUTION_STATUS"_cl};
    return ask_value<std::int32_t>(made, question).value_or(0) <= 0;
}

void complete(call const& made, past const& numbers) {
    std::vector<kept_event*> events;
    std::unique_lock lock{order().mutex};
    for (std::uint64_t const number : numbers) {
        auto const found = order().unfinished.find(number);
        if (found != order().unfinished.end() && found->second.kind == kind::transfer) {
            events.push_back(found->second.kept);
            order().kept.erase(found->second.kept->event);
            order().transfers.erase(number);
            order().unfinished.erase(found);
        }
    }
    lock.unlock();
    std::for_each(events.begin(), events.end(), [&](kept_event* each) { release(made, each); });
}

void drop_complete_if_many(call const& made) {
    std::vector<std::pair<std::uint64_t, kept_event*>> transfers;
    {
        std::scoped_lock const lock{order().mutex};
        if (order().kept.size() < order().limit) {
            return;
        }
        for (std::uint64_t const number : order().transfers) {
            transfers.emplace_back(number, order().unfinished.at(number).kept);
            ++transfers.back().second->users;
        }
    }
    past done;
    for (auto const& [number, event] : transfers) {
        if (is_complete(made, event->event)) {
            done.push_back(number);
        }
        release(made, event);
    }
    complete(made, done);
    std::scoped_lock const lock{order().mutex};
    order().limit = std::max(few, 2 * order().kept.size());
}

void report_unflushed(call const& made, past const& numbers) {
    std::vector<pending> missing;
    {
        std::scoped_lock const lock{order().mutex};
        for (std::uint64_t const number : numbers) {
            auto const found = order().unfinished.find(number);
            if (found == order().unfinished.end() || found->second.kind != kind::unflushed) {
                continue;
            }
            auto const queue = order().queues.find(found->second.queue);
            bool const unflushed = queue != order().queues.end() && queue->second.flushed < found->second.number;
            if (unflushed && found->second.thread == std::this_thread::get_id()) {
                missing.push_back(std::move(found->second));
                order().unfinished.erase(found);
            }
        }
    }
    for (pending const& each : missing) {
        report(made, "flush",
               "what it waits for, " + std::string(each.entry) + at(each.where) + ", " + words_for_unflushed(each));
    }
}

std::string find_gate(passage const& through) {
    std::scoped_lock const lock{order().mutex};
    for (std::uint64_t const number : through.before) {
        auto const found = order().unfinished.find(number);
        if (found != order().unfinished.end() && found->second.kind == kind::user_event) {
            return words_for_event(found->second) + ", and which nobody has completed";
        }
    }
    return "";
}

void note_complete(call const& made, void* event) {
    past before;
    {
        std::scoped_lock const lock{order().mutex};
        if (auto const found = order().events.find(event); found != order().events.end()) {
            before = found->second.before;
        }
    }
    complete(made, before);
}

std::uint32_t kept_references(void* event) {
    std::scoped_lock const lock{order().mutex};
    return static_cast<std::uint32_t>(order().kept.count(event));
}

void forget_event(call const& made, void* event) {
    pending lost;
    {
        std::scoped_lock const lock{order().mutex};
        if (auto const found = find_user_event(event); found != order().unfinished.end()) {
            lost = std::move(found->second);
            order().unfinished.erase(found);
        }
        order().events.erase(event);
    }
    if (lost.where != nullptr) {
        report(made, "user event", words_for_user(lost));
    }
}

void report_unfinished() {
    std::scoped_lock const lock{order().mutex};
    for (auto const& [number, each] : order().unfinished) {
        if (each.kind == kind::user_event && each.where != nullptr) {
            report(words_for_user(each));
        } else if (each.kind == kind::unflushed) {
            report(std::string(each.entry) + at(each.where) + ' ' + words_for_unflushed(each));
        }
    }
}

} // namespace nq::layer::check
