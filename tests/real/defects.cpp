#include "support.hpp"

namespace real {

using enum common::error_code;

std::vector<defect> const& known_defects() {
    static std::vector<defect> const all{
        {"rusticl", "sub-devices", invalid_operation, "lacks the entry point"},
        {"oclgrind", "sub-devices", invalid_value, "has no sub-devices"},
        {"pocl", "host timers", invalid_operation, "has no timers"},
        {"rusticl", "host timers", invalid_operation, "has no timers"},
        {"pocl", "device and host timers", invalid_operation, "has no timers"},
        {"rusticl", "device and host timers", invalid_operation, "has no timers"},
        {"rusticl", "out-of-order queues", invalid_queue_properties, "has no such queues"},
        {"pocl", "waits for events in a queue", invalid_operation, "would end the process"},
        {"rusticl", "waits for events in a queue", invalid_operation, "lacks the entry point"},
        {"pocl", "queue properties switched on", invalid_operation, "lacks the entry point"},
        {"rusticl", "queue properties switched on", invalid_operation, "lacks the entry point"},
        {"intel", "queue properties switched on", invalid_operation, "refuses"},
        {"pocl", "device queues", invalid_queue_properties, "would end the process"},
        {"rusticl", "device queues", success, "makes a queue of the host instead"},
        {"pocl", "images, 1d_buffer", success, "fills of such images crash, and none is ever deleted"},
        {"pocl", "image maps, 1d_buffer", success, "such an image is never deleted"},
        {"rusticl", "images, 1d_buffer", success, "what is written does not reach the buffer"},
        {"rusticl", "image maps, 1d_buffer", success, "what is written does not reach the buffer"},
        {"rusticl", "image maps, 1d_array", success, "maps the wrong layer"},
        {"oclgrind", "image pitches of the host", success, "ignores the pitches"},
        {"pocl", "pipes", invalid_operation, "has no pipes"},
        {"rusticl", "pipes", invalid_operation, "has no pipes"},
        {"pocl", "queries of what is no pipe", invalid_mem_object, "refuses"},
        {"rusticl", "queries of what is no pipe", invalid_mem_object, "refuses"},
        {"rusticl", "SVM", invalid_operation, "has no shared virtual memory"},
        {"rusticl", "programs linked from two", link_program_failure, "gives the two different SPIR-V versions"},
        {"rusticl", "built-in kernels", invalid_operation, "lacks the entry point"},
        {"oclgrind", "built-in kernels", invalid_value, "has none"},
        {"intel", "built-in kernels", invalid_operation, "has none; what it makes instead cannot be released"},
        {"pocl", "intermediate language", invalid_value, "takes none"},
        {"rusticl", "intermediate language", invalid_operation, "takes none"},
        {"pocl", "specialization constants", invalid_value, "takes no intermediate language"},
        {"rusticl", "specialization constants", invalid_operation, "takes no intermediate language"},
        {"pocl", "program release callbacks", invalid_operation, "refuses"},
        {"rusticl", "program release callbacks", invalid_operation, "refuses"},
        {"intel", "program release callbacks", invalid_operation, "refuses"},
        {"rusticl", "native kernels", invalid_operation, "has no native kernels"},
        {"pocl", "sub-groups", invalid_operation, "lacks the entry point"},
        {"rusticl", "sub-groups", invalid_operation, "lacks the entry point"},
        {"rusticl", "cl_khr_spir", invalid_value, "does not have it"},
    };
    return all;
}

} // namespace real
