#include "opencl/perform.hpp"

#include <stdexcept>

namespace vorn::mero::VORN_MERO_NAMESPACE {

using namespace detail;

program context::create_program_from_source(std::string const& source) {
    return create_program_from_source(source.c_str());
}

program context::create_program_from_source(char const* source) {
    block::clCreateProgramWithSource block;
    block.context = raw_of(*this);
    block.strings = &source;
    block.lengths = nullptr;
    block.count = 1;
    return create<program>(*this, block);
}

program context::create_program_from_binary(std::vector<device_binary> const& binaries) {
    if (binaries.empty()) {
        throw std::logic_error("Cannot create a device binary from an empty collection of binaries.");
    }
    std::vector<_nq_cl_device_id*> ids;
    std::vector<std::size_t> lengths;
    std::vector<unsigned char const*> data;
    for (device_binary const& entry : binaries) {
        ids.push_back(raw_of(entry.device));
        lengths.push_back(entry.binary.size());
        data.push_back(entry.binary.data());
    }
    block::clCreateProgramWithBinary block;
    block.context = raw_of(*this);
    block.device_list = ids.data();
    block.lengths = lengths.data();
    block.binaries = data.data();
    block.binary_status = nullptr;
    block.num_devices = count_of(ids);
    return create<program>(*this, block);
}

#if VORN_MERO_OPENCL >= 120
program context::create_program_from_builtin_kernels(std::vector<device> const& devices,
                                                     std::vector<std::string> const& kernel_names) {
    std::string const names = mero::internal::join_semicolon(kernel_names);
    auto const ids = raw_handles(devices);
    block::clCreateProgramWithBuiltInKernels block;
    block.context = raw_of(*this);
    block.device_list = data_or_null(ids);
    block.kernel_names = names.c_str();
    block.num_devices = count_of(ids);
    return create<program>(*this, block);
}

program context::link_programs(std::vector<device> const& devices, std::vector<program> const& programs,
                               std::string const& options, void (*notify)(_nq_cl_program*, void*), void* user_data) {
    auto const inputs = raw_handles(programs);
    auto const ids = raw_handles(devices);
    block::clLinkProgram block;
    block.context = raw_of(*this);
    block.device_list = data_or_null(ids);
    block.options = options.c_str();
    block.input_programs = data_or_null(inputs);
    block.pfn_notify = notify;
    block.user_data = user_data;
    block.num_devices = count_of(ids);
    block.num_input_programs = count_of(inputs);
    return create<program>(*this, block);
}
#endif

#if VORN_MERO_OPENCL >= 210
program context::create_program_from_il(std::vector<unsigned char> const& il) {
    block::clCreateProgramWithIL block;
    block.context = raw_of(*this);
    block.il = il.data();
    block.length = il.size();
    return create<program>(*this, block);
}
#endif

} // namespace vorn::mero::VORN_MERO_NAMESPACE
