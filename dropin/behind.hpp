#pragma once

// The OpenCL library that the program would use without the drop-in.

namespace nq::dropin {

/// One of its functions, or null.
void* function_behind(char const* name) noexcept;

} // namespace nq::dropin

/// A handle of it, for `dlsym`, or null if there is none. libnq asks for it: by name it would find the drop-in.
extern "C" void* nq_opencl_behind() noexcept;
