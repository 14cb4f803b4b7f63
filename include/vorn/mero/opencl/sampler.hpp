// Samplers: how a kernel reads an image.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl.hpp>
#endif
#ifdef VORN_MERO_OPENCL

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// How a kernel reads an image: its coordinates, and what it reads outside the image and between pixels. Made by
/// `context::create_sampler`.
///
///     cl::sampler edges = context.create_sampler(false, cl::sampler_addressing_mode::clamp_to_edge,
///                                                cl::sampler_filter_mode::nearest);
///     kernel.set_argument(2, edges); // (read_only image2d_t, write_only image2d_t, sampler_t)
///
/// A sampler cannot change; any number of threads and kernels may use it. Queries make two calls; `get_context` makes
/// another to retain the context.
class VORN_MERO_EXPORT sampler : public mero::internal::handle<internal::sampler_kind> {
public:
    using handle::handle;

    /// Whether coordinates run from 0 to 1. If not, they are in pixels.
    [[nodiscard]] bool normalized_coords() const;

    /// What the sampler reads outside the image.
    [[nodiscard]] sampler_addressing_mode addressing_mode() const;

    /// What the sampler reads between pixels.
    [[nodiscard]] sampler_filter_mode filter_mode() const;

    /// The context of the sampler, on the same call handle.
    [[nodiscard]] context get_context() const;
};

namespace raw {

/// The raw handle, null if the object was moved from.
[[nodiscard]] VORN_MERO_EXPORT _nq_cl_sampler* get_raw_sampler(sampler const& object VORN_MERO_LIFETIMEBOUND) noexcept;

/// The call handle of the object.
[[nodiscard]] VORN_MERO_EXPORT nq::call_handle const&
get_call_handle(sampler const& object VORN_MERO_LIFETIMEBOUND) noexcept;

/// Adds a reference that the caller must release.
VORN_MERO_EXPORT void retain(sampler const& object);

/// Drops a reference that the caller holds. Throws `common::bad_implementation` when OpenCL refuses.
VORN_MERO_EXPORT void release(sampler const& object);

/// OpenCL's reference count, which may be outdated at once.
[[nodiscard]] VORN_MERO_EXPORT std::uint32_t refcount(sampler const& object);

/// Wraps a raw handle and retains it: the caller keeps its own reference.
[[nodiscard]] VORN_MERO_EXPORT sampler create_sampler(nq::call_handle const& call_handle, _nq_cl_sampler* handle);

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE

#endif
