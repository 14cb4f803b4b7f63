#include "opencl/perform.hpp"

namespace vorn::mero::VORN_MERO_NAMESPACE {

using namespace detail;

namespace {

std::uint64_t host_queue_properties(bool out_of_order, bool profiling) {
    return (out_of_order ? cl::queue_out_of_order_exec_mode_enable : 0) | (profiling ? cl::queue_profiling_enable : 0);
}

} // namespace

#if VORN_MERO_OPENCL < 200
command_queue context::create_command_queue(device const& target, bool out_of_order, bool profiling) {
    block::clCreateCommandQueue block;
    block.context = raw_of(*this);
    block.device = raw_of(target);
    block.properties = host_queue_properties(out_of_order, profiling);
    return create<command_queue>(*this, block);
}
#endif

#if VORN_MERO_OPENCL >= 200
namespace {

constexpr std::uint64_t device_queue = cl::queue_out_of_order_exec_mode_enable | cl::queue_on_device;
constexpr std::uint64_t default_device_queue = device_queue | cl::queue_on_device_default;

template <class Queue>
Queue create_queue(context const& owner, device const& target, std::vector<std::uint64_t> const& properties) {
    block::clCreateCommandQueueWithProperties block;
    block.device = raw_of(target);
    block.context = raw_of(owner);
    block.properties = properties.data();
    return create<Queue>(owner, block);
}

std::uint64_t with_profiling(std::uint64_t properties, bool profiling) {
    return properties | (profiling ? cl::queue_profiling_enable : 0);
}

} // namespace

host_command_queue context::create_host_command_queue(device const& target, bool out_of_order, bool profiling) {
    return create_queue<host_command_queue>(*this, target,
                                            {cl::queue_properties, host_queue_properties(out_of_order, profiling), 0});
}

device_command_queue context::create_device_command_queue(device const& target, bool profiling) {
    return create_queue<device_command_queue>(*this, target,
                                              {cl::queue_properties, with_profiling(device_queue, profiling), 0});
}

device_command_queue context::create_device_command_queue(device const& target, bool profiling,
                                                          unsigned int queue_size) {
    return create_queue<device_command_queue>(
        *this, target, {cl::queue_properties, with_profiling(device_queue, profiling), cl::queue_size, queue_size, 0});
}

device_command_queue context::create_default_device_command_queue(device const& target, bool profiling) {
    return create_queue<device_command_queue>(
        *this, target, {cl::queue_properties, with_profiling(default_device_queue, profiling), 0});
}

device_command_queue context::create_default_device_command_queue(device const& target, bool profiling,
                                                                  unsigned int queue_size) {
    return create_queue<device_command_queue>(
        *this, target,
        {cl::queue_properties, with_profiling(default_device_queue, profiling), cl::queue_size, queue_size, 0});
}
#endif

#if VORN_MERO_OPENCL >= 210
void context::set_default_device_command_queue(device const& target, device_command_queue const& queue) {
    block::clSetDefaultDeviceCommandQueue block;
    block.context = raw_of(*this);
    block.device = raw_of(target);
    block.command_queue = raw_of(queue);
    perform(call_handle_of(*this), block);
}
#endif

} // namespace vorn::mero::VORN_MERO_NAMESPACE
