// OpenCL platforms.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>

#include <vorn/mero/opencl/forward.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// An OpenCL platform, obtained from a device or a context. Platforms are not counted: copying one makes no call.
class VORN_MERO_EXPORT platform : public mero::internal::handle<internal::platform_kind> {
public:
    using handle::handle;

    /// The name that a person knows the platform by.
    std::string name() const;

    /// Who made the platform.
    std::string vendor() const;

    /// "OpenCL", the version, and what the vendor adds, divided by blanks.
    std::string version() const;

    /// The names of the extensions that all devices of the platform support.
    std::vector<std::string> extensions() const;

    /// Whether the profile is exactly "FULL_PROFILE".
    bool is_full_profile() const;

    /// Whether the profile is exactly "EMBEDDED_PROFILE".
    bool is_embedded_profile() const;

    /// All devices of the platform, neither wrapped nor retained. Throws `common::device_not_found` when there is none.
    std::vector<_nq_cl_device_id*> get_raw_devices() const;

#if VORN_MERO_OPENCL >= 210
    /// In nanoseconds. Since OpenCL 2.1.
    std::uint64_t host_timer_resolution() const;
#endif
};

#if VORN_MERO_OPENCL < 120
/// The address of an extension function, null when OpenCL knows none of that name. Throws the `nq` exceptions only.
VORN_MERO_EXPORT void* get_extension_function_address(nq::call_handle const& call_handle, std::string const& name);
#endif

#if VORN_MERO_OPENCL >= 120
/// The address of an extension function of a platform, null when it knows none of that name. Throws the `nq` exceptions
/// only. Since OpenCL 1.2.
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

/// Wraps a raw handle; makes no call.
VORN_MERO_EXPORT platform create_platform(nq::call_handle const& call_handle, _nq_cl_platform_id* handle);

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE
