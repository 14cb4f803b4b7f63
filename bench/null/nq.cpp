// A libnq of the lowest cost: one device in every version; a command takes a look-up of its id and the OpenCL call.

#define CL_TARGET_OPENCL_VERSION 300
#define CL_USE_DEPRECATED_OPENCL_1_2_APIS
#include <CL/cl.h>

#include "../../bridge/argument.hpp"

#include <nq/commands.hpp>
#include <nq/nq.hpp>

#include <array>
#include <utility>

namespace {

namespace block = nq::block;
using nq::bridge::argument;
using command = int (*)(void*);

template <class Block, class Function, class... Fields>
void give_status(Block& block, Function* function, Fields... fields) {
    block.status = function(argument{fields}...);
}

template <class Block, class Function, class... Fields>
void give_result(Block& block, Function* function, Fields... fields) {
    block.result = argument{function(argument{fields}..., &block.error_code)};
}

#define STATUS(entry, ...)                                                                                             \
    void perform(block::entry& b) { give_status(b, ::entry, __VA_ARGS__); }
#define CREATE(entry, ...)                                                                                             \
    void perform(block::entry& b) { give_result(b, ::entry, __VA_ARGS__); }
#define INFO(entry, object)                                                                                            \
    STATUS(entry, b.object, b.param_name, b.param_value_size, b.param_value, b.param_value_size_ret)
#define ENQUEUE(entry, ...) STATUS(entry, __VA_ARGS__, b.num_events_in_wait_list, b.event_wait_list, b.event)
#define MAP(entry, ...) CREATE(entry, __VA_ARGS__, b.num_events_in_wait_list, b.event_wait_list, b.event)

cl_device_id the_device() {
    cl_platform_id platform = nullptr;
    cl_device_id device = nullptr;
    clGetPlatformIDs(1, &platform, nullptr);
    clGetDeviceIDs(platform, CL_DEVICE_TYPE_ALL, 1, &device, nullptr);
    return device;
}

void perform(block::call_handle_device& b) { b.result = argument{the_device()}; }

INFO(clGetPlatformInfo, platform)
INFO(clGetDeviceInfo, device)
INFO(clGetContextInfo, context)
INFO(clGetCommandQueueInfo, command_queue)
INFO(clGetKernelInfo, kernel)
STATUS(clGetKernelArgInfo, b.kernel, b.arg_index, b.param_name, b.param_value_size, b.param_value,
       b.param_value_size_ret)
STATUS(clGetProgramBuildInfo, b.program, b.device, b.param_name, b.param_value_size, b.param_value,
       b.param_value_size_ret)
CREATE(clCreateContext, b.properties, b.num_devices, b.devices, b.pfn_notify, b.user_data)
CREATE(clCreateCommandQueue, b.context, b.device, b.properties)
CREATE(clCreateCommandQueueWithProperties, b.context, b.device, b.properties)
CREATE(clCreateBuffer, b.context, b.flags, b.size, b.host_ptr)
CREATE(clCreateImage, b.context, b.flags, b.image_format, b.image_desc, b.host_ptr)
CREATE(clCreateUserEvent, b.context)
CREATE(clCreateProgramWithSource, b.context, b.count, b.strings, b.lengths)
CREATE(clCreateKernel, b.program, b.kernel_name)
CREATE(clCloneKernel, b.source_kernel)
STATUS(clBuildProgram, b.program, b.num_devices, b.device_list, b.options, b.pfn_notify, b.user_data)
STATUS(clSetKernelArg, b.kernel, b.arg_index, b.arg_size, b.arg_value)
STATUS(clRetainCommandQueue, b.command_queue)
STATUS(clReleaseCommandQueue, b.command_queue)
STATUS(clRetainContext, b.context)
STATUS(clReleaseContext, b.context)
STATUS(clRetainDevice, b.device)
STATUS(clReleaseDevice, b.device)
STATUS(clRetainEvent, b.event)
STATUS(clReleaseEvent, b.event)
STATUS(clRetainKernel, b.kernel)
STATUS(clReleaseKernel, b.kernel)
STATUS(clRetainMemObject, b.memobj)
STATUS(clReleaseMemObject, b.memobj)
STATUS(clRetainProgram, b.program)
STATUS(clReleaseProgram, b.program)
STATUS(clFlush, b.command_queue)
STATUS(clFinish, b.command_queue)

void perform(block::clSVMAlloc& b) { b.result = clSVMAlloc(argument{b.context}, b.flags, b.size, b.alignment); }
void perform(block::clSVMFree& b) { clSVMFree(argument{b.context}, b.svm_pointer); }

ENQUEUE(clEnqueueReadBuffer, b.command_queue, b.buffer, b.blocking_read, b.offset, b.size, b.ptr)
ENQUEUE(clEnqueueWriteBuffer, b.command_queue, b.buffer, b.blocking_write, b.offset, b.size, b.ptr)
ENQUEUE(clEnqueueReadBufferRect, b.command_queue, b.buffer, b.blocking_read, b.buffer_origin, b.host_origin, b.region,
        b.buffer_row_pitch, b.buffer_slice_pitch, b.host_row_pitch, b.host_slice_pitch, b.ptr)
ENQUEUE(clEnqueueWriteBufferRect, b.command_queue, b.buffer, b.blocking_write, b.buffer_origin, b.host_origin, b.region,
        b.buffer_row_pitch, b.buffer_slice_pitch, b.host_row_pitch, b.host_slice_pitch, b.ptr)
ENQUEUE(clEnqueueCopyBuffer, b.command_queue, b.src_buffer, b.dst_buffer, b.src_offset, b.dst_offset, b.size)
ENQUEUE(clEnqueueCopyBufferRect, b.command_queue, b.src_buffer, b.dst_buffer, b.src_origin, b.dst_origin, b.region,
        b.src_row_pitch, b.src_slice_pitch, b.dst_row_pitch, b.dst_slice_pitch)
ENQUEUE(clEnqueueFillBuffer, b.command_queue, b.buffer, b.pattern, b.pattern_size, b.offset, b.size)
MAP(clEnqueueMapBuffer, b.command_queue, b.buffer, b.blocking_map, b.map_flags, b.offset, b.size)
ENQUEUE(clEnqueueUnmapMemObject, b.command_queue, b.memobj, b.mapped_ptr)
ENQUEUE(clEnqueueMigrateMemObjects, b.command_queue, b.num_mem_objects, b.mem_objects, b.flags)
ENQUEUE(clEnqueueReadImage, b.command_queue, b.image, b.blocking_read, b.origin, b.region, b.row_pitch, b.slice_pitch,
        b.ptr)
ENQUEUE(clEnqueueWriteImage, b.command_queue, b.image, b.blocking_write, b.origin, b.region, b.input_row_pitch,
        b.input_slice_pitch, b.ptr)
ENQUEUE(clEnqueueCopyImage, b.command_queue, b.src_image, b.dst_image, b.src_origin, b.dst_origin, b.region)
ENQUEUE(clEnqueueFillImage, b.command_queue, b.image, b.fill_color, b.origin, b.region)
ENQUEUE(clEnqueueCopyImageToBuffer, b.command_queue, b.src_image, b.dst_buffer, b.src_origin, b.region, b.dst_offset)
ENQUEUE(clEnqueueCopyBufferToImage, b.command_queue, b.src_buffer, b.dst_image, b.src_offset, b.dst_origin, b.region)
MAP(clEnqueueMapImage, b.command_queue, b.image, b.blocking_map, b.map_flags, b.origin, b.region, b.image_row_pitch,
    b.image_slice_pitch)
ENQUEUE(clEnqueueNDRangeKernel, b.command_queue, b.kernel, b.work_dim, b.global_work_offset, b.global_work_size,
        b.local_work_size)
ENQUEUE(clEnqueueNativeKernel, b.command_queue, b.user_func, b.args, b.cb_args, b.num_mem_objects, b.mem_list,
        b.args_mem_loc)
ENQUEUE(clEnqueueMarkerWithWaitList, b.command_queue)
ENQUEUE(clEnqueueBarrierWithWaitList, b.command_queue)
ENQUEUE(clEnqueueSVMFree, b.command_queue, b.num_svm_pointers, b.svm_pointers, b.pfn_free_func, b.user_data)
ENQUEUE(clEnqueueSVMMemcpy, b.command_queue, b.blocking_copy, b.dst_ptr, b.src_ptr, b.size)
ENQUEUE(clEnqueueSVMMemFill, b.command_queue, b.svm_ptr, b.pattern, b.pattern_size, b.size)
ENQUEUE(clEnqueueSVMMap, b.command_queue, b.blocking_map, b.map_flags, b.svm_ptr, b.size)
ENQUEUE(clEnqueueSVMUnmap, b.command_queue, b.svm_ptr)
ENQUEUE(clEnqueueSVMMigrateMem, b.command_queue, b.num_svm_pointers, b.svm_pointers, b.sizes, b.flags)

template <class Block>
int perform_command([[maybe_unused]] void* memory) {
    if constexpr (requires(Block & b) { perform(b); }) {
        perform(*static_cast<Block*>(memory));
        return nq::result::success;
    } else {
        return nq::result::invalid_command_id;
    }
}

template <class... Blocks>
constexpr auto table_of(nq::command_list<Blocks...>) {
    return std::array<command, sizeof...(Blocks)>{perform_command<Blocks>...};
}

template <nq::capability Version>
constexpr auto table = table_of(nq::commands<Version>{});

} // namespace

struct nq_call_handle {
    std::uint32_t command_count;
    command const* commands; // by id - 1
};

namespace {

template <nq::capability Version>
constexpr nq_call_handle handle{table<Version>.size(), table<Version>.data()};

// By capability - 1.
constexpr std::array handles{handle<nq::capability::opencl_1_0>, handle<nq::capability::opencl_1_1>,
                             handle<nq::capability::opencl_1_2>, handle<nq::capability::opencl_2_0>,
                             handle<nq::capability::opencl_2_1>, handle<nq::capability::opencl_2_2>};

} // namespace

extern "C" {

std::uint64_t nq_version() { return nq::version; }

int nq_get_root_devices(std::uint64_t capacity, nq::device* devices, std::uint64_t* count, void*) {
    *count = 1;
    if (capacity != 0) {
        *devices = 1;
    }
    return nq::result::success;
}

int nq_find_capability_nodes(nq::device, nq::capability capability, std::uint64_t capacity, nq::capability_node* nodes,
                             std::uint64_t* count, void*) {
    *count = 1;
    if (capacity != 0) {
        *nodes = {1, static_cast<std::uint64_t>(capability)};
    }
    return nq::result::success;
}

int nq_create_call_handle(nq::capability_node node, nq_call_handle** handle, void*) {
    *handle = const_cast<nq_call_handle*>(&handles[node.second - 1]);
    return nq::result::success;
}

void nq_close_call_handle(nq_call_handle*) {}

int nq_call_capability(nq_call_handle* handle, std::uint32_t command_id, void* block, void*) {
    std::uint32_t const index = command_id - 1;
    if (index >= handle->command_count) [[unlikely]] {
        return nq::result::invalid_command_id;
    }
    return handle->commands[index](block);
}

} // extern "C"
