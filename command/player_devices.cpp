// Which devices stand for those of a recording.

#include "player.hpp"

#include <algorithm>
#include <stdexcept>

namespace nq::command {
namespace {

using recording::entry_kind;
using recording::read_call;

recording::read_handle const* find_handle(recording::session const& from, std::uint64_t device) {
    auto const found =
        std::find_if(from.handles.begin(), from.handles.end(),
                     [device](recording::read_handle const& each) { return each.entry.device == device; });
    return found != from.handles.end() ? &*found : nullptr;
}

} // namespace

// The devices that the recording's calls need, in the order of their use.
std::vector<std::uint64_t> player::used_devices() const {
    std::vector<std::uint64_t> used;
    auto const add = [&](std::uint64_t device) {
        if (device != 0 && std::find(used.begin(), used.end(), device) == used.end()) {
            used.push_back(device);
        }
    };
    for (recording::event const& event : from_.events) {
        if (event.kind != entry_kind::call || !is_replayed(from_.calls[event.index])) {
            continue;
        }
        read_call const& call = from_.calls[event.index];
        add(from_.handles[call.entry.handle].entry.device);
        for (field const& each : *call.about) {
            if (each.object == object_kind::device_id && each.direction == direction::in) {
                for (std::uint64_t const device : objects_in(call, each)) {
                    add(parts_.contains(device) ? 0 : device);
                }
            }
        }
    }
    return used;
}

void player::choose(device_choice const& choice) {
    std::vector<device_here> offered;
    for (device_here const& each : machine_.devices()) {
        if (each.platform.find(choice.platform) != std::string::npos) {
            offered.push_back(each);
        }
    }
    if (offered.empty() || choice.number >= static_cast<int>(offered.size())) {
        throw std::runtime_error(machine_.devices().empty() ? "there is no device; vorn-mero doctor says why"
                                 : offered.empty()          ? "no platform's name has " + choice.platform + " in it"
                                                            : "there is no device " + std::to_string(choice.number) +
                                                         "; there are " + std::to_string(offered.size()));
    }
    bool const is_chosen = !choice.platform.empty() || choice.number >= 0;
    for (std::uint64_t const device : used_devices()) {
        recording::read_handle const* const handle = find_handle(from_, device);
        auto same = std::find_if(offered.begin(), offered.end(), [&](device_here const& each) {
            return handle != nullptr && each.platform == handle->platform && each.name == handle->device;
        });
        auto const position =
            choice.number >= 0 ? static_cast<std::size_t>(choice.number) : std::min(chosen_.size(), offered.size() - 1);
        device_here const& target = !is_chosen && same != offered.end() ? *same : offered[position];
        chosen_.emplace(device, target);
        names_.set_object(device, target.raw);
        if (handle != nullptr) {
            names_.set_object(handle->entry.platform, target.raw_platform);
        }
    }
}

std::vector<std::string> player::devices() const {
    std::vector<std::string> lines;
    for (auto const& [recorded, here] : chosen_) {
        recording::read_handle const* const handle = find_handle(from_, recorded);
        std::string const before = handle != nullptr ? handle->platform + ", " + handle->device : "a device";
        lines.push_back("recorded on " + before + "; replayed on " + here.platform + ", " + here.name);
    }
    return lines;
}

opened player::through(read_call const& call) {
    auto const& entry = from_.handles[call.entry.handle].entry;
    device_here const& device = chosen_.at(entry.device);
    opened const made = machine_.open(device.root, capability{entry.version});
    if (made.handle == nullptr) {
        constexpr char const* versions[] = {"1.0", "1.1", "1.2", "2.0", "2.1", "2.2"};
        throw std::runtime_error(device.platform + ", " + device.name + " offers no OpenCL " +
                                 versions[entry.version - 1] + ", which the recording has calls of");
    }
    return made;
}

} // namespace nq::command
