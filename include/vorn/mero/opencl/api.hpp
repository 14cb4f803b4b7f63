// A version as one type, for code that runs over several of them.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>

#include <vorn/mero/opencl/forward.hpp>
#include <vorn/mero/opencl/types.hpp>

#include <vorn/mero/opencl/context.hpp>
#include <vorn/mero/opencl/device.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// The version's number (120 for OpenCL 1.2), its capability and the classes that a program meets first. Classes whose
/// name changed with OpenCL 2.0 have one name here.
struct api {
    static constexpr int number = VORN_MERO_OPENCL;
    static constexpr nq::capability capability = nq::capability::VORN_MERO_NAMESPACE;

    using platform = VORN_MERO_NAMESPACE::platform;
    using device = VORN_MERO_NAMESPACE::device;
    using context = VORN_MERO_NAMESPACE::context;
    using memory_object = VORN_MERO_NAMESPACE::memory_object;
    using buffer = VORN_MERO_NAMESPACE::buffer;
    using image = VORN_MERO_NAMESPACE::image;
    using image_2d = VORN_MERO_NAMESPACE::image_2d;
    using image_3d = VORN_MERO_NAMESPACE::image_3d;
    using sampler = VORN_MERO_NAMESPACE::sampler;
    using program = VORN_MERO_NAMESPACE::program;
    using kernel = VORN_MERO_NAMESPACE::kernel;
    using event = VORN_MERO_NAMESPACE::event;
    using command = VORN_MERO_NAMESPACE::command;
    using read_buffer = VORN_MERO_NAMESPACE::read_buffer;
    using write_buffer = VORN_MERO_NAMESPACE::write_buffer;
    using copy_buffer = VORN_MERO_NAMESPACE::copy_buffer;
    using map_buffer = VORN_MERO_NAMESPACE::map_buffer;
    using unmap_mem_object = VORN_MERO_NAMESPACE::unmap_mem_object;
    using nd_range_kernel = VORN_MERO_NAMESPACE::nd_range_kernel;
    using context_property = VORN_MERO_NAMESPACE::context_property;
    using device_type = VORN_MERO_NAMESPACE::device_type;
    using mem_flags = VORN_MERO_NAMESPACE::mem_flags;
    using map_flags = VORN_MERO_NAMESPACE::map_flags;
    using image_format = VORN_MERO_NAMESPACE::image_format;
    using device_binary = VORN_MERO_NAMESPACE::device_binary;
    using local_memory = VORN_MERO_NAMESPACE::local_memory;
    using create_reference = internal::create_reference;
    using take_ownership = internal::take_ownership;

#if VORN_MERO_OPENCL < 200
    /// The queue that the host enqueues to.
    using host_queue = command_queue;
#endif

#if VORN_MERO_OPENCL >= 200
    /// The queue that the host enqueues to.
    using host_queue = host_command_queue;
#endif

    static std::vector<device> get_all_devices() { return VORN_MERO_NAMESPACE::get_all_devices(); }

    static device get_call_handle_device(nq::call_handle const& call_handle) {
        return VORN_MERO_NAMESPACE::get_call_handle_device(call_handle);
    }

    /// A context of one device.
    static context create_context(device const& target) {
        return VORN_MERO_NAMESPACE::create_context({}, {target}, nullptr, nullptr);
    }

#if VORN_MERO_OPENCL < 200
    static host_queue create_queue(context& owner, device const& target, bool out_of_order, bool profiling) {
        return owner.create_command_queue(target, out_of_order, profiling);
    }
#endif

#if VORN_MERO_OPENCL >= 200
    static host_queue create_queue(context& owner, device const& target, bool out_of_order, bool profiling) {
        return owner.create_host_command_queue(target, out_of_order, profiling);
    }
#endif

#if VORN_MERO_OPENCL < 110
    /// A launch over one dimension, from offset 0.
    static nd_range_kernel launch(kernel const& function, std::size_t global_size, std::size_t local_size) {
        return {function, 1, {global_size, 1, 1}, {local_size, 1, 1}};
    }
#endif

#if VORN_MERO_OPENCL >= 110
    /// A launch over one dimension, from offset 0.
    static nd_range_kernel launch(kernel const& function, std::size_t global_size, std::size_t local_size) {
        return {function, 1, {0, 0, 0}, {global_size, 1, 1}, {local_size, 1, 1}};
    }
#endif
};

} // namespace vorn::mero::VORN_MERO_NAMESPACE
