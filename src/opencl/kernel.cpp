#include "opencl/perform.hpp"

template <>
struct vorn::mero::internal::ownership<vorn::mero::VORN_MERO_NAMESPACE::internal::kernel_kind>
    : counted<nq::capability::VORN_MERO_NAMESPACE, nq::block::clRetainKernel, nq::block::clReleaseKernel> {
    static constexpr char const* destructor_message = "Exception caught in kernel::~kernel().";
};

template class vorn::mero::internal::owner<vorn::mero::VORN_MERO_NAMESPACE::internal::kernel_kind>;

namespace vorn::mero::VORN_MERO_NAMESPACE {

using namespace detail;

namespace {

query<&block::clGetKernelInfo::kernel> ask(kernel const& object, std::uint32_t name) {
    return {call_handle_of(object), name, raw_of(object)};
}

query<&block::clGetKernelWorkGroupInfo::kernel, &block::clGetKernelWorkGroupInfo::device>
ask_work_group(kernel const& object, device const& target, std::uint32_t name) {
    return {call_handle_of(object), name, raw_of(object), raw_of(target)};
}

[[gnu::always_inline]] inline void bind(kernel const& object, unsigned int index, std::size_t size, void const* value) {
    block::clSetKernelArg block;
    block.kernel = raw_of(object);
    block.arg_size = size;
    block.arg_value = value;
    block.arg_index = index;
    perform(call_handle_of(object), block);
}

template <class Object>
[[gnu::always_inline]] inline void bind(kernel const& target, unsigned int index, Object const& object) {
    auto* const raw = raw_of(object);
    bind(target, index, sizeof raw, &raw);
}

} // namespace

kernel kernel::clone() const { return get_program().create_kernel(function_name()); }

void kernel::set_argument(unsigned int index, std::nullptr_t) { bind(*this, index, sizeof(void*), nullptr); }
void kernel::set_argument(unsigned int index, local_memory const& size) { bind(*this, index, size.size(), nullptr); }
void kernel::set_argument(unsigned int index, memory_object& object) { bind(*this, index, object); }
void kernel::set_argument(unsigned int index, sampler& object) { bind(*this, index, object); }

void kernel::set_argument_raw(unsigned int index, unsigned long size, void const* value) {
    bind(*this, index, size, value);
}

std::string kernel::function_name() const { return read_text(ask(*this, cl::kernel_function_name)); }
unsigned int kernel::num_args() const { return read_scalar<unsigned int>(ask(*this, cl::kernel_num_args)); }
context kernel::get_context() const { return read_object<context>(*this, ask(*this, cl::kernel_context)); }
program kernel::get_program() const { return read_object<program>(*this, ask(*this, cl::kernel_program)); }

std::size_t kernel::max_work_group_size(device const& target) const {
    return read_scalar<std::size_t>(ask_work_group(*this, target, cl::kernel_work_group_size));
}

std::array<std::size_t, 3> kernel::compile_work_group_size(device const& target) const {
    return read_sizes(ask_work_group(*this, target, cl::kernel_compile_work_group_size));
}

std::uint64_t kernel::local_mem_size(device const& target) const {
    return read_scalar<std::uint64_t>(ask_work_group(*this, target, cl::kernel_local_mem_size));
}

#if VORN_MERO_OPENCL >= 110
std::size_t kernel::preferred_work_group_size_multiple(device const& target) const {
    return read_scalar<std::size_t>(ask_work_group(*this, target, cl::kernel_preferred_work_group_size_multiple));
}

std::uint64_t kernel::private_mem_per_work_item(device const& target) const {
    return read_scalar<std::uint64_t>(ask_work_group(*this, target, cl::kernel_private_mem_size));
}
#endif

#if VORN_MERO_OPENCL >= 120
namespace {

query<&block::clGetKernelArgInfo::kernel, &block::clGetKernelArgInfo::arg_index>
ask_argument(kernel const& object, unsigned int index, std::uint32_t name) {
    return {call_handle_of(object), name, raw_of(object), index};
}

} // namespace

std::vector<std::string> kernel::attributes() const {
    return mero::internal::split_space(read_text(ask(*this, cl::kernel_attributes)));
}

kernel_argument_address_qualifier kernel::argument_address_qualifier(unsigned int index) const {
    return read_scalar<kernel_argument_address_qualifier>(ask_argument(*this, index, cl::kernel_arg_address_qualifier));
}

kernel_argument_access_qualifier kernel::argument_access_qualifier(unsigned int index) const {
    return read_scalar<kernel_argument_access_qualifier>(ask_argument(*this, index, cl::kernel_arg_access_qualifier));
}

kernel_argument_type_qualifier kernel::argument_type_qualifier(unsigned int index) const {
    return read_scalar<kernel_argument_type_qualifier>(ask_argument(*this, index, cl::kernel_arg_type_qualifier));
}

std::string kernel::argument_type_name(unsigned int index) const {
    return read_text(ask_argument(*this, index, cl::kernel_arg_type_name));
}

std::string kernel::argument_name(unsigned int index) const {
    return read_text(ask_argument(*this, index, cl::kernel_arg_name));
}

std::array<std::size_t, 3> kernel::max_global_work_size(device const& target) const {
    return read_sizes(ask_work_group(*this, target, cl::kernel_global_work_size));
}
#endif

#if VORN_MERO_OPENCL >= 200
namespace {

void set_exec_info(kernel const& object, std::uint32_t name, std::size_t size, void const* value) {
    block::clSetKernelExecInfo block;
    block.kernel = raw_of(object);
    block.param_value_size = size;
    block.param_value = value;
    block.param_name = name;
    perform(call_handle_of(object), block);
}

} // namespace

void kernel::set_argument(unsigned int index, device_command_queue& queue) { bind(*this, index, queue); }

void kernel::set_svm_argument(std::uint32_t index, void const* pointer) {
    block::clSetKernelArgSVMPointer block;
    block.kernel = raw_of(*this);
    block.arg_value = pointer;
    block.arg_index = index;
    perform(call_handle_of(*this), block);
}

void kernel::set_svm_pointers(std::vector<void*> const& pointers) {
    set_exec_info(*this, cl::kernel_exec_info_svm_ptrs, pointers.size() * sizeof(void*), data_or_null(pointers));
}

void kernel::set_fine_grain_system_flag(bool enabled) {
    std::uint32_t const flag = enabled ? 1 : 0;
    set_exec_info(*this, cl::kernel_exec_info_svm_fine_grain_system, sizeof flag, &flag);
}
#endif

#if VORN_MERO_OPENCL >= 210
namespace {

// Reads one number about sub-groups; `input` is the local size or the number that the query takes.
std::size_t read_sub_group(kernel const& object, device const& target, std::uint32_t name, std::size_t input_size = 0,
                           void const* input = nullptr) {
    return read_scalar<std::size_t>(
        query<&block::clGetKernelSubGroupInfo::kernel, &block::clGetKernelSubGroupInfo::device,
              &block::clGetKernelSubGroupInfo::input_value_size, &block::clGetKernelSubGroupInfo::input_value>(
            call_handle_of(object), name, raw_of(object), raw_of(target), input_size, input));
}

} // namespace

kernel::kernel(kernel const& other) : handle(call_handle_of(other), nullptr, internal::take_ownership{}) {
    kernel clone = other.copy();
    swap_reference(clone);
}

kernel kernel::copy() const {
    block::clCloneKernel block;
    block.source_kernel = raw_of(*this);
    return create<kernel>(*this, block);
}

std::size_t kernel::get_max_sub_group_size_for_nd_range(device const& target,
                                                        std::array<std::size_t, 1> const& size) const {
    return read_sub_group(*this, target, cl::kernel_max_sub_group_size_for_ndrange, sizeof size, size.data());
}

std::size_t kernel::get_max_sub_group_size_for_nd_range(device const& target,
                                                        std::array<std::size_t, 2> const& size) const {
    return read_sub_group(*this, target, cl::kernel_max_sub_group_size_for_ndrange, sizeof size, size.data());
}

std::size_t kernel::get_max_sub_group_size_for_nd_range(device const& target,
                                                        std::array<std::size_t, 3> const& size) const {
    return read_sub_group(*this, target, cl::kernel_max_sub_group_size_for_ndrange, sizeof size, size.data());
}

std::size_t kernel::get_sub_group_count_for_nd_range(device const& target,
                                                     std::array<std::size_t, 1> const& size) const {
    return read_sub_group(*this, target, cl::kernel_sub_group_count_for_ndrange, sizeof size, size.data());
}

std::size_t kernel::get_sub_group_count_for_nd_range(device const& target,
                                                     std::array<std::size_t, 2> const& size) const {
    return read_sub_group(*this, target, cl::kernel_sub_group_count_for_ndrange, sizeof size, size.data());
}

std::size_t kernel::get_sub_group_count_for_nd_range(device const& target,
                                                     std::array<std::size_t, 3> const& size) const {
    return read_sub_group(*this, target, cl::kernel_sub_group_count_for_ndrange, sizeof size, size.data());
}

std::size_t kernel::get_local_size_for_sub_group_count(device const& target, unsigned long count) const {
    return read_sub_group(*this, target, cl::kernel_local_size_for_sub_group_count, sizeof count, &count);
}

std::size_t kernel::get_max_num_sub_groups(device const& target) const {
    return read_sub_group(*this, target, cl::kernel_max_num_sub_groups);
}

std::size_t kernel::compile_num_sub_groups(device const& target) const {
    return read_sub_group(*this, target, cl::kernel_compile_num_sub_groups);
}
#endif

namespace raw {

_nq_cl_kernel* get_raw_kernel(kernel const& object) noexcept { return raw_of(object); }
nq::call_handle const& get_call_handle(kernel const& object) noexcept { return call_handle_of(object); }
void retain(kernel const& object) { mero::internal::retain(object); }
void release(kernel const& object) { mero::internal::release(object); }

std::uint32_t refcount(kernel const& object) {
    return read_scalar<std::uint32_t>(ask(object, cl::kernel_reference_count));
}

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE
