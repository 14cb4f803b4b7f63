#include "opencl/perform.hpp"

template <>
struct vorn::mero::internal::ownership<vorn::mero::VORN_MERO_NAMESPACE::internal::sampler_kind>
    : counted<nq::capability::VORN_MERO_NAMESPACE, nq::block::clRetainSampler, nq::block::clReleaseSampler> {
    static constexpr char const* destructor_message = "Exception caught in sampler::~sampler().";
};

template class vorn::mero::internal::owner<vorn::mero::VORN_MERO_NAMESPACE::internal::sampler_kind>;

namespace vorn::mero::VORN_MERO_NAMESPACE {

using namespace detail;

namespace {

query<&block::clGetSamplerInfo::sampler> ask(sampler const& object, std::uint32_t name) {
    return {call_handle_of(object), name, raw_of(object)};
}

} // namespace

bool sampler::normalized_coords() const { return read_bool(ask(*this, cl::sampler_normalized_coords)); }

sampler_addressing_mode sampler::addressing_mode() const {
    return read_scalar<sampler_addressing_mode>(ask(*this, cl::sampler_addressing_mode));
}

sampler_filter_mode sampler::filter_mode() const {
    return read_scalar<sampler_filter_mode>(ask(*this, cl::sampler_filter_mode));
}

context sampler::get_context() const { return read_object<context>(*this, ask(*this, cl::sampler_context)); }

namespace raw {

_nq_cl_sampler* get_raw_sampler(sampler const& object) noexcept { return raw_of(object); }
nq::call_handle const& get_call_handle(sampler const& object) noexcept { return call_handle_of(object); }
void retain(sampler const& object) { mero::internal::retain(object); }
void release(sampler const& object) { mero::internal::release(object); }

std::uint32_t refcount(sampler const& object) {
    return read_scalar<std::uint32_t>(ask(object, cl::sampler_reference_count));
}

sampler create_sampler(nq::call_handle const& call_handle, _nq_cl_sampler* handle) {
    return {call_handle, handle, internal::create_reference{}};
}

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE
