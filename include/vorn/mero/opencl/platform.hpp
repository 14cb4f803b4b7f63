// OpenCL platforms.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl.hpp>
#endif
#ifdef VORN_MERO_OPENCL

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// An OpenCL platform: one installed implementation, with its devices. Get it from a device or a context.
///
///     for (cl::device const& each : cl::get_all_devices()) {
///         cl::platform const owner = each.get_platform();
///         std::printf("%s: %s\n", owner.name().c_str(), owner.version().c_str());
///     }
///
/// OpenCL does not count references to platforms: copying and destroying one makes no call. Each query asks OpenCL
/// afresh, with two calls, and throws what failed. All queries are thread-safe.
class VORN_MERO_EXPORT platform : public mero::internal::handle<internal::platform_kind> {
public:
    using handle::handle;

    /// The name of the platform, for people to read.
    [[nodiscard]] std::string name() const;

    /// Who made the platform.
    [[nodiscard]] std::string vendor() const;

    /// "OpenCL", the highest version that the platform implements, and what the vendor adds, separated by blanks:
    /// "OpenCL 3.0 PoCL 3.1". A device of the platform may have a lower version.
    [[nodiscard]] std::string version() const;

    /// The names of the extensions that all devices of the platform support, in OpenCL's order. A device may have more.
    [[nodiscard]] std::vector<std::string> extensions() const;

    /// Whether the profile is exactly "FULL_PROFILE".
    [[nodiscard]] bool is_full_profile() const;

    /// Whether the profile is exactly "EMBEDDED_PROFILE", where 64-bit integers and most image features are optional.
    [[nodiscard]] bool is_embedded_profile() const;

    /// All devices of the platform but custom ones, in OpenCL's order, neither wrapped nor retained:
    /// `raw::create_device` wraps one. Root devices live as long as the platform. Two calls. Throws
    /// `common::device_not_found` if there is none.
    [[nodiscard]] std::vector<_nq_cl_device_id*> get_raw_devices() const;

#if VORN_MERO_OPENCL >= 210
    /// The step of `device::get_host_timer` in nanoseconds, 0 if the platform has no such timer. Since OpenCL 2.1.
    [[nodiscard]] std::uint64_t host_timer_resolution() const;
#endif
};

#if VORN_MERO_OPENCL < 120
/// The address of an extension function, null if OpenCL knows none of that name. It may belong to any platform; ICD
/// loaders often return null. One call. Throws the `nq` exceptions only. Until OpenCL 1.1.
///
/// An address does not mean that a device supports the extension: check `device::extensions`. The function takes raw
/// handles and returns OpenCL statuses.
[[nodiscard]] VORN_MERO_EXPORT void* get_extension_function_address(nq::call_handle const& call_handle,
                                                                    std::string const& name);
#else
/// The address of an extension function of a platform, null if it knows none of that name. Valid as long as the
/// process. One call. Throws the `nq` exceptions only. Since OpenCL 1.2.
///
/// An address does not mean that a device supports the extension: check `device::extensions`. The function takes raw
/// handles and returns OpenCL statuses.
[[nodiscard]] VORN_MERO_EXPORT void* get_extension_function_address_for_platform(nq::call_handle const& call_handle,
                                                                                 platform const& owner,
                                                                                 std::string const& name);
#endif

namespace raw {

/// The raw handle, null if the object was moved from.
[[nodiscard]] VORN_MERO_EXPORT _nq_cl_platform_id* get_raw_platform_id(platform const& object) noexcept;

/// The call handle of the object.
[[nodiscard]] VORN_MERO_EXPORT nq::call_handle const&
get_call_handle(platform const& object VORN_MERO_LIFETIMEBOUND) noexcept;

/// Does nothing: OpenCL does not count references to platforms.
VORN_MERO_EXPORT void retain(platform const& object);

/// Does nothing: OpenCL does not count references to platforms.
VORN_MERO_EXPORT void release(platform const& object);

/// Always 1, without a call.
[[nodiscard]] VORN_MERO_EXPORT std::uint32_t refcount(platform const& object);

/// Wraps a raw handle. Makes no call.
[[nodiscard]] VORN_MERO_EXPORT platform create_platform(nq::call_handle const& call_handle, _nq_cl_platform_id* handle);

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE

#endif
