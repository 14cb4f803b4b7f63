#include "set_arguments.hpp"

#include <algorithm>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace nq::layer {
namespace {

// Never freed: a program may make calls until its very end.
struct set_arguments {
    std::mutex mutex;
    std::unordered_map<void*, std::vector<bool>> of_kernels;
};

set_arguments& arguments() {
    static set_arguments& all = *new set_arguments;
    return all;
}

void set(void* kernel, std::uint32_t index) {
    std::scoped_lock const lock{arguments().mutex};
    std::vector<bool>& known = arguments().of_kernels[kernel];
    known.resize(std::max<std::size_t>(known.size(), index + std::size_t{1}));
    known[index] = true;
}

// A new kernel may have the address of a former one.
void begin(void* kernel, void* source = nullptr) {
    std::scoped_lock const lock{arguments().mutex};
    auto const found = arguments().of_kernels.find(source);
    auto known = found != arguments().of_kernels.end() ? found->second : std::vector<bool>{};
    arguments().of_kernels[kernel] = std::move(known);
}

} // namespace

void note_success(call const& made, description const* about) {
    if (auto const* const set_value = as<block::clSetKernelArg>(made, about); set_value != nullptr) {
        set(set_value->kernel, set_value->arg_index);
    } else if (auto const* const set_svm = as<block::clSetKernelArgSVMPointer>(made, about); set_svm != nullptr) {
        set(set_svm->kernel, set_svm->arg_index);
    } else if (auto const* const created = as<block::clCreateKernel>(made, about); created != nullptr) {
        begin(created->result);
    } else if (auto const* const clone = as<block::clCloneKernel>(made, about); clone != nullptr) {
        begin(clone->result, clone->source_kernel);
    } else if (auto const* const all = as<block::clCreateKernelsInProgram>(made, about);
               all != nullptr && all->kernels != nullptr) {
        std::uint32_t const told = all->num_kernels_ret != nullptr ? *all->num_kernels_ret : all->num_kernels;
        std::for_each_n(all->kernels, std::min(all->num_kernels, told), [](auto* each) { begin(each); });
    }
}

bool is_set(void* kernel, std::size_t index) {
    std::scoped_lock const lock{arguments().mutex};
    std::vector<bool> const& known = arguments().of_kernels[kernel];
    return index < known.size() && known[index];
}

} // namespace nq::layer
