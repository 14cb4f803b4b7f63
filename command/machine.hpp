#pragma once

// The devices of this machine, as the wire shows them.

#include "wire.hpp"

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace nq::command {

struct device_here {
    nq::device root;
    std::string platform;
    std::string name;
    std::uint64_t raw_platform; ///< OpenCL's raw handle
    std::uint64_t raw;          ///< OpenCL's raw handle
};

/// What all call handles are opened through, and closed with.
class machine {
public:
    machine();
    ~machine();
    machine(machine const&) = delete;
    machine& operator=(machine const&) = delete;

    std::vector<device_here> const& devices() const { return devices_; }

    /// The call handle of a device in an OpenCL version; null if it does not offer that.
    opened open(nq::device root, capability version);

private:
    std::vector<device_here> devices_{};
    std::map<std::pair<nq::device, capability>, nq_call_handle*> handles_{};
};

} // namespace nq::command
