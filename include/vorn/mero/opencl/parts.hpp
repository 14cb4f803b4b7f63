// Reads the headers of this folder once, for the version in the macros. <vorn/mero/opencl_1_2.hpp> and its siblings
// include it. forward.hpp and types.hpp must come first, and bases before derived classes.

#include <vorn/mero/opencl/forward.hpp>
#include <vorn/mero/opencl/hash.hpp>
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
