// Reads the bodies beside this file once, for the version that the macros name; each namespace has a header that does
// so: <vorn/mero/opencl_1_2.hpp> and its siblings, which programs include. The order matters only in that forward.hpp
// and types.hpp come first, and the bases before what derives from them.
#define VORN_MERO_WHOLE_VERSION // a part of it must not be read again, see standalone.hpp

#include <vorn/mero/opencl/forward.hpp>
#include <vorn/mero/opencl/types.hpp>

#include <vorn/mero/opencl/command.hpp>
#include <vorn/mero/opencl/device.hpp>
#include <vorn/mero/opencl/event.hpp>
#include <vorn/mero/opencl/memory_object.hpp>
#include <vorn/mero/opencl/platform.hpp>
#include <vorn/mero/opencl/sampler.hpp>

#include <vorn/mero/opencl/kernel.hpp>
#include <vorn/mero/opencl/program.hpp>

#include <vorn/mero/opencl/buffer_commands.hpp>
#include <vorn/mero/opencl/command_queue.hpp>
#include <vorn/mero/opencl/context.hpp>
#include <vorn/mero/opencl/image_commands.hpp>
#include <vorn/mero/opencl/kernel_commands.hpp>
#include <vorn/mero/opencl/svm_commands.hpp>

#include <vorn/mero/opencl/api.hpp>
#include <vorn/mero/opencl/extension.hpp>
