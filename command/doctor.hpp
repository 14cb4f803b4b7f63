#pragma once

// Finds out why there is no OpenCL device, or why one is missing.

namespace nq::command {

/// What was found; the exit status of the command. Of several the one that comes first here.
enum class finding {
    healthy = 0,
    no_loader = 10,          ///< of OpenCL
    no_implementation,       ///< no vendor file
    broken_library,          ///< an implementation does not load
    platform_without_device, ///< it drives nothing in this machine
    forbidden_device_file,   ///< a graphics card that this user may not use
    no_device,               ///< for no reason that is known
    broken_vendor_file,      ///< it cannot be read, or names no library
    library_without_platform ///< an implementation loads, and offers nothing
};

/// Prints the devices, what is wrong, and what to do about it; as text or as JSON.
finding diagnose(bool json);

} // namespace nq::command
