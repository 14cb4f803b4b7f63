#pragma once

// Replays a recording.

#include "player.hpp"

#include <string>

namespace nq::command {

struct replay_options {
    std::string recording;
    device_choice device;
    std::string kernel; ///< of the launch that is extracted
    unsigned nth = 1;   ///< launch of this kernel
    std::string folder; ///< for the launch; empty: nothing is extracted
};

/// Prints what differs, and returns 1 if anything does. Throws `std::runtime_error` if it cannot be replayed.
int replay(replay_options const& with);

} // namespace nq::command
