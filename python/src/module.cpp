#include "module.hpp"

#include <vorn/mero/version.hpp>

NB_MODULE(vorn_mero, module) {
    using namespace vorn::mero::python;
    module.doc() = "OpenCL by way of libvorn-mero: devices, sessions, arrays, programs, kernels and events.\n\n"
                   "Every call that can wait for a device lets other Python threads run meanwhile.";
    module.attr("__version__") =
        (std::to_string(VORN_MERO_VERSION_MAJOR) + "." + std::to_string(VORN_MERO_VERSION_MINOR) + "." +
         std::to_string(VORN_MERO_VERSION_PATCH))
            .c_str();
    define_errors(module);
    define_devices(module);
    define_events(module);
    define_arrays(module);
    define_mappings(module);
    define_sessions(module);
    define_kernels(module);
}
