#include "soak.hpp"

#include "load.hpp"

#include <nq/describe.hpp>
#include <nq/nq.hpp>

#include <algorithm>
#include <array>
#include <atomic>
#include <dlfcn.h>
#include <string_view>

namespace {

using version = vorn::mero::api<120>;

std::atomic<long> references{0};
std::atomic<long> call_handles{0};

/// How a command that succeeds changes the number of references.
struct counted {
    int change = 0;
    nq::description const* about = nullptr;
    std::uint16_t event = nq::absent; // where the block has the place of an event
};

counted describe(std::uint32_t id) {
    nq::description const* const about = nq::describe(version::capability, id);
    std::string_view const name = about != nullptr ? about->name : "";
    counted made{name.starts_with("clRelease") ? -1 : name.starts_with("clRetain") || name.starts_with("clCreate"),
                 about};
    if (name.starts_with("clEnqueue")) {
        auto const* const event = std::find_if(about->begin(), about->end(),
                                               [](auto& each) { return each.name == std::string_view("event"); });
        made.event = event != about->end() ? event->offset : nq::absent;
    }
    return made;
}

std::array<counted, 128> const commands = [] {
    std::array<counted, 128> made{};
    for (std::uint32_t id = 0; id < made.size(); ++id) {
        made[id] = describe(id);
    }
    return made;
}();

} // namespace

// These stand before the bridge.
extern "C" {

[[gnu::visibility("default")]] int nq_create_call_handle(nq::capability_node node, nq_call_handle** handle,
                                                         void* reserved) {
    static auto* const next =
        reinterpret_cast<decltype(&nq_create_call_handle)>(dlsym(RTLD_NEXT, "nq_create_call_handle"));
    int const result = next(node, handle, reserved);
    call_handles += result == nq::result::success;
    return result;
}

[[gnu::visibility("default")]] void nq_close_call_handle(nq_call_handle* handle) {
    static auto* const next =
        reinterpret_cast<decltype(&nq_close_call_handle)>(dlsym(RTLD_NEXT, "nq_close_call_handle"));
    next(handle);
    call_handles -= handle != nullptr;
}

[[gnu::visibility("default")]] int nq_call_capability(nq_call_handle* handle, std::uint32_t id, void* block,
                                                      void* reserved) {
    static auto* const next = reinterpret_cast<decltype(&nq_call_capability)>(dlsym(RTLD_NEXT, "nq_call_capability"));
    int const result = next(handle, id, block, reserved);
    counted const& made = commands.at(id);
    bool const has_event = made.event != nq::absent && nq::read_pointer(block, made.event) != nullptr;
    if ((made.change != 0 || has_event) && result == nq::result::success &&
        nq::read_field(block, made.about->status, sizeof(std::int32_t)) == 0) {
        references += has_event ? 1 : made.change;
    }
    return result;
}

} // extern "C"

namespace soak {

std::vector<operation> library_load() {
    // never released: Oclgrind damages memory when that happens at the end of the process
    static auto& on = *new load::objects<version>(version::get_all_devices().at(0), true);
    std::vector<operation> all;
    for (auto const& each : load::operations<version>) {
        all.push_back({each.name, each.weight, each.uses_queue, [run = each.run] { run(on); }});
    }
    return all;
}

long living_references() { return references; }
long open_call_handles() { return call_handles; }

} // namespace soak
