#include "opencl/perform.hpp"

template <>
struct vorn::mero::internal::ownership<vorn::mero::VORN_MERO_NAMESPACE::internal::program_kind>
    : counted<nq::capability::VORN_MERO_NAMESPACE, nq::block::clRetainProgram, nq::block::clReleaseProgram> {
    static constexpr char const* destructor_message = "Exception caught in program::~program().";
};

template class vorn::mero::internal::owner<vorn::mero::VORN_MERO_NAMESPACE::internal::program_kind>;

namespace vorn::mero::VORN_MERO_NAMESPACE {

using namespace detail;

namespace {

query<&block::clGetProgramInfo::program> ask(program const& object, std::uint32_t name) {
    return {call_handle_of(object), name, raw_of(object)};
}

query<&block::clGetProgramBuildInfo::program, &block::clGetProgramBuildInfo::device>
ask_build(program const& object, device const& target, std::uint32_t name) {
    return {call_handle_of(object), name, raw_of(object), raw_of(target)};
}

} // namespace

void program::build(std::vector<device> const& devices, std::string const& options,
                    void (*notify)(_nq_cl_program*, void*), void* user_data) {
    auto const ids = raw_handles(devices);
    block::clBuildProgram block;
    block.program = raw_of(*this);
    block.device_list = data_or_null(ids);
    block.options = options.c_str();
    block.pfn_notify = notify;
    block.user_data = user_data;
    block.num_devices = count_of(ids);
    send(call_handle_of(*this), block);
    if (block.status != static_cast<std::int32_t>(common::error_code::build_program_failure)) {
        mero::internal::check_error(block.status);
    }
}

program_build_status program::build_status(device const& target) const {
    return read_scalar<program_build_status>(ask_build(*this, target, cl::program_build_status));
}

std::string program::build_options(device const& target) const {
    return read_text(ask_build(*this, target, cl::program_build_options));
}

std::string program::build_log(device const& target) const {
    return read_text(ask_build(*this, target, cl::program_build_log));
}

context program::get_context() const { return read_object<context>(*this, ask(*this, cl::program_context)); }
std::vector<device> program::get_devices() const { return read_devices(*this, ask(*this, cl::program_devices)); }
std::string program::source_code() const { return read_text(ask(*this, cl::program_source)); }

std::vector<device_binary> program::binaries() const {
    std::vector<device_binary> binaries;
    for (device& target : get_devices()) {
        binaries.push_back({std::move(target), {}});
    }
    auto const sizes = read_vector<std::size_t>(ask(*this, cl::program_binary_sizes));
    if (sizes.size() != binaries.size()) {
        throw common::bad_implementation(
            "The number of binary sizes returned should be equal to the number of devices.");
    }
    std::vector<unsigned char*> places;
    places.reserve(binaries.size());
    for (std::size_t i = 0; i != binaries.size(); ++i) {
        binaries[i].binary.resize(sizes[i]);
        places.push_back(binaries[i].binary.data());
    }
    call_once(ask(*this, cl::program_binaries), places.size() * sizeof(unsigned char*), places.data());
    return binaries;
}

kernel program::create_kernel(std::string const& name) {
    block::clCreateKernel block;
    block.program = raw_of(*this);
    block.kernel_name = name.c_str();
    return create<kernel>(*this, block);
}

std::vector<kernel> program::create_all_kernels() {
    std::uint32_t count = 0;
    block::clCreateKernelsInProgram block{.program = raw_of(*this), .num_kernels_ret = &count};
    perform(call_handle_of(*this), block);
    if (count == 0) {
        return {};
    }
    std::vector<_nq_cl_kernel*> kernels(count);
    block.kernels = kernels.data();
    block.num_kernels_ret = nullptr;
    block.num_kernels = count;
    perform(call_handle_of(*this), block);
    return adopt_all<kernel>(call_handle_of(*this), kernels.data(), kernels.size());
}

#if VORN_MERO_OPENCL >= 120
program_binary_type program::binary_type(device const& target) const {
    return read_scalar<program_binary_type>(ask_build(*this, target, cl::program_binary_type));
}

unsigned long program::num_kernels() const { return read_scalar<unsigned long>(ask(*this, cl::program_num_kernels)); }

std::vector<std::string> program::kernel_names() const {
    return mero::internal::split_semicolon(read_text(ask(*this, cl::program_kernel_names)));
}
#endif

#if VORN_MERO_OPENCL >= 200
unsigned long program::build_global_variable_total_size(device const& target) const {
    return read_scalar<unsigned long>(ask_build(*this, target, cl::program_build_global_variable_total_size));
}
#endif

#if VORN_MERO_OPENCL >= 210
std::vector<unsigned char> program::il() const { return read_vector<unsigned char>(ask(*this, cl::program_il)); }
#endif

#if VORN_MERO_OPENCL >= 220
bool program::global_constructors_present() const {
    return read_bool(ask(*this, cl::program_scope_global_ctors_present));
}

bool program::global_destructors_present() const {
    return read_bool(ask(*this, cl::program_scope_global_dtors_present));
}

void program::set_specialization_constant_raw(unsigned int id, unsigned long size, void const* value) {
    block::clSetProgramSpecializationConstant block;
    block.program = raw_of(*this);
    block.spec_id = id;
    block.spec_size = size;
    block.spec_value = value;
    perform(call_handle_of(*this), block);
}

void program::set_specialization_constant(unsigned int id, bool value) {
    unsigned char const byte = value ? 1 : 0;
    set_specialization_constant_raw(id, sizeof byte, &byte);
}

void program::set_release_callback(void (*fn)(_nq_cl_program*, void*), void* user_data) {
    block::clSetProgramReleaseCallback block;
    block.program = raw_of(*this);
    block.pfn_notify = fn;
    block.user_data = user_data;
    perform(call_handle_of(*this), block);
}
#endif

namespace raw {

_nq_cl_program* get_raw_program(program const& object) noexcept { return raw_of(object); }
nq::call_handle const& get_call_handle(program const& object) noexcept { return call_handle_of(object); }
void retain(program const& object) { mero::internal::retain(object); }
void release(program const& object) { mero::internal::release(object); }

std::uint32_t refcount(program const& object) {
    return read_scalar<std::uint32_t>(ask(object, cl::program_reference_count));
}

program create_program(nq::call_handle const& call_handle, _nq_cl_program* handle) {
    return {call_handle, handle, internal::create_reference{}};
}

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE
