#pragma once

// The ways in which calls fail.

#include "scripted/scripted.hpp"

#include <nq/error.hpp>
#include <vorn/mero/common/error.hpp>

#include <typeindex>

namespace scripted {

/// A way in which a call fails, and what is thrown then.
struct failing {
    failure how;
    std::type_index thrown;
};

inline failing const failures[] = {{status(-5), typeid(vorn::mero::common::out_of_resources)},
                                   {status(-999), typeid(vorn::mero::common::unknown_opencl_error)},
                                   {layer(-1), typeid(nq::unrecoverable_error)},
                                   {layer(-2), typeid(nq::invalid_command_id)},
                                   {layer(7), typeid(nq::unknown_error)}};

} // namespace scripted
