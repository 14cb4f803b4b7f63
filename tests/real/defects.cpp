#include "support.hpp"

namespace real {

using enum common::error_code;

std::vector<defect> const& known_defects() {
    static std::vector<defect> const all{
        {"pocl", "image commands, 1d_buffer", success, "fills of such images crash, and none is ever deleted"},
        {"pocl", "image maps, 1d_buffer", success, "such an image is never deleted"},
        {"rusticl", "image commands, 1d_buffer", success, "what is written does not reach the buffer"},
        {"rusticl", "image maps, 1d_buffer", success, "what is written does not reach the buffer"},
        {"rusticl", "image maps, 1d_array", success, "maps the wrong layer"},
        {"rusticl", "native kernels", invalid_operation, "has no native kernels"},
        {"rusticl", "out-of-order queues", invalid_queue_properties, "has no such queues"},
        {"pocl", "waits for events in a queue", invalid_operation, "would end the process"},
        {"rusticl", "waits for events in a queue", invalid_operation, "lacks the entry point"},
        {"pocl", "queue properties switched on", invalid_operation, "lacks the entry point"},
        {"rusticl", "queue properties switched on", invalid_operation, "lacks the entry point"},
        {"intel", "queue properties switched on", invalid_operation, "refuses"},
        {"pocl", "pipes", invalid_operation, "has no pipes"},
        {"rusticl", "pipes", invalid_operation, "has no pipes"},
        {"oclgrind", "pipes", invalid_operation, "has no pipes"},
        {"rusticl", "SVM", invalid_operation, "has no shared virtual memory"},
        {"pocl", "device queues", invalid_queue_properties, "would end the process"},
        {"rusticl", "device queues", success, "makes a queue of the host instead"},
        {"rusticl", "cl_khr_spir", invalid_value, "does not have it"},
    };
    return all;
}

} // namespace real
