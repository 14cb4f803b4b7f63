// Writes what OpenCL leaves undefined, and implementations answer by crashing or wrongly.

#include "check.hpp"
#include "check_callbacks.hpp"
#include "check_hangs.hpp"
#include "check_kernels.hpp"
#include "check_maps.hpp"
#include "check_objects.hpp"
#include "check_order.hpp"

#include <cerrno>
#include <memory>
#include <string_view>
#include <utility>

namespace nq::layer::check {

void end();

namespace {

// What is kept of a call from before to after it.
struct crossing {
    counting counted;
    passage through;
    watched callback;
    bool unmaps = false;
    std::vector<std::string> overlaps;
    std::unique_ptr<hang_watch> watch;
};

void forget(call const& made, counting const& counted) {
    switch (find_object(counted.handle).value_or(object{}).kind) {
    case object_kind::event:
        forget_event(made, counted.handle);
        break;
    case object_kind::memory:
        forget_memory(made, counted.handle);
        break;
    case object_kind::command_queue:
        forget_queue(counted.handle);
        break;
    case object_kind::kernel:
        forget_kernel(counted.handle);
        break;
    default:
        break;
    }
}

void before(call const& made, description const& about, crossing& own) {
    check_handles(made, about);
    own.counted = note_references(made, about);
    check_kernel(made, about);
    begin_passage(made, about, own.through);
    own.unmaps = check_maps(made, about, own.through.accesses);
    if (!own.through.accesses.empty()) {
        own.overlaps = find_overlaps(made, own.through);
    }
    if (own.counted.is_last) {
        forget(made, own.counted);
    }
    own.callback = watch_callback(made, about);
    if (std::string gate = own.through.waits ? find_gate(own.through) : ""; !gate.empty()) {
        own.watch = std::make_unique<hang_watch>(made, std::move(gate));
    }
}

// What the program learns of an event, and what it must not.
void note_answer(call const& made, description const& about) {
    if (auto const* const asked = as<block::clGetEventInfo>(made, &about); asked != nullptr) {
        auto* const number = static_cast<std::int32_t*>(asked->param_value);
        bool const told = number != nullptr && asked->param_value_size >= sizeof *number;
        if (told && asked->param_name == "CL_EVENT_REFERENCE_COUNT"_cl) {
            *number -= static_cast<std::int32_t>(kept_references(asked->event));
        } else if (told && asked->param_name == "CL_EVENT_COMMAND_EXECUTION_STATUS"_cl && *number <= 0) {
            note_complete(made, asked->event);
        }
    } else if (auto const* const profile = as<block::clGetEventProfilingInfo>(made, &about); profile != nullptr) {
        note_complete(made, profile->event);
    }
}

void after(call const& made, description const& about, crossing& own, bool succeeded) {
    own.watch.reset();
    restore_callback(made, about, own.callback, succeeded);
    end_passage(made, about, own.through, succeeded); // an event of the layer's own is not in the block any more
    note_kernel(made, about, succeeded);
    if (succeeded) {
        note_objects(made, about);
        note_extension(made, about);
        note_answer(made, about);
        note_maps(made, about);
        for (std::string const& each : own.overlaps) {
            report(made, "overlap", each);
        }
        return;
    }
    if (own.counted.handle != nullptr) {
        take_back(own.counted, about);
    }
    if (own.unmaps) {
        take_back_unmap(made, about);
    }
}

[[gnu::destructor]] void end_all() {
    if (!is_forked()) {
        attempt([] {
            report_unfinished();
            report_maps();
            end();
        });
    }
}

} // namespace
} // namespace nq::layer::check

namespace nq::layer {

int perform(call const& made) noexcept {
    description const* const about = made.about();
    if (about == nullptr || is_forked()) {
        return forward(made);
    }
    check::crossing own;
    attempt([&] { check::before(made, *about, own); });
    int const result = forward(made);
    int const error = errno;
    attempt([&] { check::after(made, *about, own, succeeded(made, *about, result)); });
    errno = error;
    return result;
}

} // namespace nq::layer
