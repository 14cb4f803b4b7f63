// OpenCL platforms.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>

#include <vorn/mero/opencl/forward.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// An OpenCL platform: one installed implementation, with its devices. Obtained from a device or a context.
///
///     for (cl::device const& each : cl::get_all_devices()) {
///         cl::platform const owner = each.get_platform();
///         std::printf("%s: %s\n", owner.name().c_str(), owner.version().c_str());
///     }
///
/// Platforms are not counted: copying and destroying one makes no call. Every query asks OpenCL afresh, with two calls
/// (the size of the reply, then the reply); failures are thrown. Queries may be made by any number of threads at once.
class VORN_MERO_EXPORT platform : public mero::internal::handle<internal::platform_kind> {
public:
    using handle::handle;

    /// The name that a person knows the platform by.
    std::string name() const;

    /// Who made the platform.
    std::string vendor() const;

    /// "OpenCL", the highest version that the platform implements, and what the vendor adds, divided by blanks:
    /// "OpenCL 3.0 PoCL 3.1". It may be higher than that of a device of the platform.
    std::string version() const;

    /// The names of the extensions that all devices of the platform support, in OpenCL's order; a device may have more.
    std::vector<std::string> extensions() const;

    /// Whether the profile is exactly "FULL_PROFILE".
    bool is_full_profile() const;

    /// Whether the profile is exactly "EMBEDDED_PROFILE", in which 64-bit integers and much of the images are optional.
    bool is_embedded_profile() const;

    /// All devices of the platform, of every type but custom, in OpenCL's order, neither wrapped nor retained: root
    /// devices live as long as the platform. Two calls, of `clGetDeviceIDs`. Throws `common::device_not_found` when
    /// there is none. `raw::create_device` makes objects of them.
    std::vector<_nq_cl_device_id*> get_raw_devices() const;

#if VORN_MERO_OPENCL >= 210
    /// The step of `device::get_host_timer` in nanoseconds, 0 where the platform has no such timer. Since OpenCL 2.1.
    std::uint64_t host_timer_resolution() const;
#endif
};

#if VORN_MERO_OPENCL < 120
/// The address of an extension function, null when OpenCL knows none of that name. Throws the `nq` exceptions only.
/// Until OpenCL 1.1, where it may belong to any of the platforms: those that are called through a loader often answer
/// null.
///
/// An address says nothing of whether a device supports the extension: ask `device::extensions`. What it points to is
/// called with raw handles, returns OpenCL statuses, and throws nothing.
VORN_MERO_EXPORT void* get_extension_function_address(nq::call_handle const& call_handle, std::string const& name);
#endif

#if VORN_MERO_OPENCL >= 120
/// The address of an extension function of a platform, null when it knows none of that name. Throws the `nq` exceptions
/// only. One call, and valid as long as the process. Since OpenCL 1.2.
///
/// An address says nothing of whether a device supports the extension: ask `device::extensions`. What it points to is
/// called with raw handles, returns OpenCL statuses, and throws nothing.
VORN_MERO_EXPORT void* get_extension_function_address_for_platform(nq::call_handle const& call_handle,
                                                                   platform const& owner, std::string const& name);
#endif

namespace raw {

/// Null for an object that was moved from.
VORN_MERO_EXPORT _nq_cl_platform_id* get_raw_platform_id(platform const& object) noexcept;

/// The call handle that the object was made through.
VORN_MERO_EXPORT nq::call_handle const& get_call_handle(platform const& object) noexcept;

/// Does nothing.
VORN_MERO_EXPORT void retain(platform const& object);

/// Does nothing.
VORN_MERO_EXPORT void release(platform const& object);

/// Always 1.
VORN_MERO_EXPORT std::uint32_t refcount(platform const& object);

/// Wraps a raw handle, as `raw::get_raw_platform_id` or the C API gives it; makes no call.
VORN_MERO_EXPORT platform create_platform(nq::call_handle const& call_handle, _nq_cl_platform_id* handle);

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE
