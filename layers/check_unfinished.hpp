#pragma once

// What commands can come after and is perhaps not over: transfers, user events, waits for queues that are not flushed.

#include "check_order.hpp"

#include <atomic>
#include <map>
#include <mutex>
#include <set>
#include <thread>
#include <unordered_map>
#include <unordered_set>

namespace nq::layer::check {

enum class kind { unknown, transfer, user_event, unflushed };

// An event that the layer has a reference to, as long as somebody looks at it.
struct kept_event {
    void* event;
    std::atomic<int> users = 1;
};

constexpr std::uint64_t unknown_command = 0; // comes after what nobody knows: an event that another library made
constexpr std::size_t few = 64;

// Something that a command can come after and that is perhaps not over.
struct pending {
    check::kind kind{};
    void* event = nullptr;      // a user event
    kept_event* kept = nullptr; // of a transfer
    void* queue = nullptr;      // that was not flushed
    std::uint64_t number = 0;
    std::vector<access> accesses;
    char const* entry = ""; // of the transfer, or of what waits
    place where = nullptr;  // of that call; null while nothing waits
    std::thread::id thread; // that has to flush
};

struct queue_state {
    bool in_order = true;
    past before; // of the next command: the last command in order, the last barrier out of order
    past all;    // commands
    std::uint64_t enqueued = 0;
    std::uint64_t flushed = 0;
    past awaited; // by commands of other queues, since it is not flushed
};

struct event_state {
    past before;
    void* queue = nullptr;
    std::uint64_t number = 0;
};

/// All that is known of the order of commands.
struct order_state {
    std::mutex mutex;
    std::map<std::uint64_t, pending> unfinished{{unknown_command, {}}};
    std::set<std::uint64_t> transfers; // of those
    std::unordered_map<void*, queue_state> queues;
    std::unordered_map<void*, event_state> events;
    std::unordered_set<void*> kept;
    std::uint64_t last = unknown_command;
    std::size_t limit = few; // of events that are kept, before those that are complete are looked for
};

/// Never freed: a program may make calls until its very end. No call is made while the mutex is held.
order_state& order();

/// Joins two lists, with the mutex held. What is over is dropped.
void add(past& to, past const& more);

/// Its number. With the mutex held.
std::uint64_t add_unfinished(pending made);

/// The user event if nobody has completed it, else the end. With the mutex held.
std::map<std::uint64_t, pending>::iterator find_user_event(void* event);

/// Whether its command is done, or failed.
bool is_complete(call const& made, void* event);

/// Ends a look at an event.
void release(call const& made, kept_event* each);

/// All in a list is over.
void complete(call const& made, past const& numbers);

/// Looks for transfers that are complete without the program's knowing, if there are many.
void drop_complete_if_many(call const& made);

/// Prints the queues that were not flushed, of a wait that has ended.
void report_unflushed(call const& made, past const& numbers);

} // namespace nq::layer::check
