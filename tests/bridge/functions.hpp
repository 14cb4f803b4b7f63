#pragma once

// OpenCL's functions replaced, for tests that are linked with the sources of the bridge.

#include "bridge/entry_points.hpp"

#include <type_traits>

/// What each function of OpenCL does; a test defines it.
template <class Result, class... Parameters>
Result opencl_function(char const* name, Parameters... arguments);

template <class Result, class... Parameters>
Result result_of(Result (*)(Parameters...));

/// A table of these functions.
inline nq::bridge::functions make_functions() {
    nq::bridge::functions made{};
#define ENTRY(entry)                                                                                                   \
    made.entry = [](auto... arguments) {                                                                               \
        return opencl_function<decltype(result_of(made.entry))>(#entry, arguments...);                                 \
    };
#include "entry_points.inc"
#undef ENTRY
    return made;
}
