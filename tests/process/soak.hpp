#pragma once

#include <functional>
#include <string>
#include <vector>

namespace soak {

struct operation {
    std::string name;
    int weight;      // of so many in a row
    bool uses_queue; // needs more than bookkeeping of the implementation
    std::function<void()> run;
};

// The same work by the library and by OpenCL's own functions. What both need is made by the call.
std::vector<operation> library_load();
std::vector<operation> c_load();

/// The references that the program holds through libnq.
long living_references();
/// The call handles of libnq that the program has opened and not closed.
long open_call_handles();

} // namespace soak
