// What a replay compares.

#include "player.hpp"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <utility>

namespace nq::command {
namespace {

using recording::memory;
using recording::read_call;

std::string name_of_status(std::int32_t status) {
    char const* const name = values::status.name_of(status);
    return name != nullptr ? name : "status " + std::to_string(status);
}

} // namespace

void player::compare_status(read_call const& call, replay_block const& block) {
    std::uint8_t const at = call.about->status;
    auto const here = at != absent ? static_cast<std::int32_t>(block.field(at, sizeof(std::int32_t))) : 0;
    std::string const number = "call " + std::to_string(numbers_.at(call.entry.order)) + ": " + call.about->name;
    if (here != call.status()) {
        differ(number + ": " + name_of_status(call.status()) + " recorded, " + name_of_status(here) + " here");
    } else if (call.about == &description_of<block::clSVMAlloc> &&
               (call.field(call.about->result) == 0) != (block.field(call.about->result) == 0)) {
        differ(number + ": " +
               (block.field(call.about->result) == 0 ? "memory recorded, none here" : "no memory recorded, some here"));
    }
}

void player::compare_contents(recording::contents_entry const& entry) {
    auto const found = awaited_.find(entry.call);
    if (found == awaited_.end()) {
        return; // the call has failed, which was a difference
    }
    awaited& call = found->second;
    if (call.event != nullptr) {
        block::clWaitForEvents waited{.event_list = &call.event, .num_events = 1};
        perform(call.through, waited);
    }
    auto const place = call.places.find(entry.offset);
    auto const of =
        std::lower_bound(from_.events.begin(), from_.events.end(), entry.call,
                         [](recording::event const& one, std::uint64_t order) { return one.order < order; });
    std::string const what =
        "call " + std::to_string(numbers_.at(entry.call)) + ": " + from_.calls[of->index].about->name;
    if (place != call.places.end()) {
        compare(from_.memories[entry.memory], place->second, what);
    }
    if (--call.contents == 0) {
        block::clReleaseEvent released{.event = call.event};
        if (call.event != nullptr) {
            perform(call.through, released);
        }
        awaited_.erase(found);
    }
}

void player::compare_shared(recording::shared_entry const& entry) {
    auto const here = names_.shared_at(entry.address);
    memory const recorded = from_.memories[entry.memory];
    if (!here || here->size() < recorded.size()) {
        return; // the allocation has failed, which was a difference
    }
    auto* const start = const_cast<std::byte*>(here->data());
    if (entry.is_result != 0) {
        memory_rows const rows{0, recorded.size()};
        compare(recorded, {start, rows, rows}, "shared memory");
    } else {
        auto const bytes = names_.relocated(recorded);
        std::memcpy(start, bytes.data(), bytes.size());
    }
}

void player::compare(memory recorded, place const& here, std::string const& what) {
    memory_rows const& rows = here.rows_recorded;
    ++done_.results;
    done_.bytes += recorded.size();
    if (!here.is_same_shape() || recorded.size() < rows.end()) {
        differ(what + ": another size");
        return;
    }
    auto const wanted = names_.relocated(recorded);
    std::size_t count = 0;
    std::size_t first = 0;
    std::pair<unsigned, unsigned> bytes;
    for (std::size_t slice = 0; slice < rows.count[1]; ++slice) {
        for (std::size_t row = 0; row < rows.count[0]; ++row) {
            std::size_t const at = rows.offset + slice * rows.pitch[1] + row * rows.pitch[0];
            std::byte const* const have =
                here.here + here.rows_here.offset + slice * here.rows_here.pitch[1] + row * here.rows_here.pitch[0];
            for (std::size_t i = 0; i < rows.width; ++i) {
                if (wanted[at + i] != have[i] && count++ == 0) {
                    first = at + i;
                    bytes = {static_cast<unsigned>(wanted[at + i]), static_cast<unsigned>(have[i])};
                }
            }
        }
    }
    if (count != 0) {
        char text[40];
        std::snprintf(text, sizeof text, "%02x recorded, %02x here", bytes.first, bytes.second);
        differ(what + ": " + std::to_string(count) + " of " + std::to_string(recorded.size()) +
               " bytes differ, the first at offset " + std::to_string(first) + ": " + text);
    }
}

void player::differ(std::string const& what) {
    ++done_.different;
    print_(what);
}

} // namespace nq::command
