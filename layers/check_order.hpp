#pragma once

// Which commands come before which, and which may still run: by queues, wait lists, barriers and what the program has
// waited for.

#include "check.hpp"
#include "check_areas.hpp"

#include <cstdint>
#include <vector>

namespace nq::layer::check {

/// Numbers of what a command comes after, in order: transfers that may still run, user events that nobody has
/// completed, waits for queues that are not flushed.
using past = std::vector<std::uint64_t>;

/// A call that enqueues, waits or flushes, on its way through.
struct passage {
    bool enqueues = false;
    bool waits = false;           ///< the program is to wait for all in `before`
    bool keeps = false;           ///< it uses memory of the program after it has returned
    void* queue = nullptr;        ///< null if there is none
    std::uint64_t number = 0;     ///< of the command in its queue
    past before;                  ///< what it comes after, its own numbers too once it is enqueued
    std::vector<void*> events;    ///< its wait list
    std::vector<access> accesses; ///< the memory of the program that it uses until it is done
    _nq_cl_event* kept = nullptr; ///< a reference to its event, of the layer's own
    bool lent = false;            ///< the block has `kept` in place of a null event
};

/// Before the call. Prints nothing; gives a transfer an event.
void begin_passage(call const& made, description const& about, passage& through);

/// Before the call: the memory that it uses and that others in flight use. Printed when the call has succeeded.
std::vector<std::string> find_overlaps(call const& made, passage const& through);

/// Before a call that waits: the user event that it waits for, in words. Empty if there is none.
std::string find_gate(passage const& through);

/// After the call.
void end_passage(call const& made, description const& about, passage& through, bool succeeded);

/// The program knows that an event is complete.
void note_complete(call const& made, void* event);

/// How many references to an event the layer has, which the program must not see.
std::uint32_t kept_references(void* event);

/// The last reference to an event or a queue is released.
void forget_event(call const& made, void* event);
void forget_queue(void* queue);

/// At the end of the program.
void report_unfinished();

} // namespace nq::layer::check
