#include "scenario.hpp"

#include <iostream>

namespace nq::block::contract {

namespace {

struct null_guard {
    std::uint32_t (*id)(capability);
    std::size_t offset;
    std::int32_t code;
};

template <class... Blocks, class... Pointers>
void add(std::vector<null_guard>& table, std::int32_t code, Pointers Blocks::*... members) {
    constexpr auto offset_of = []<class Block, class Pointer>(Pointer Block::*member) {
        Block const block{};
        return static_cast<std::size_t>(reinterpret_cast<char const*>(&(block.*member)) -
                                        reinterpret_cast<char const*>(&block));
    };
    (table.push_back({command_id<Blocks>, offset_of(members), code}), ...);
}

std::vector<null_guard> make_null_guards() {
    std::vector<null_guard> table;
    add(table, CL_INVALID_EVENT_WAIT_LIST, &clEnqueueMarkerWithWaitList::event_wait_list,
        &clEnqueueBarrierWithWaitList::event_wait_list);
    add(table, CL_INVALID_VALUE, &clWaitForEvents::event_list, &clEnqueueWaitForEvents::event_list);
    add(table, CL_INVALID_KERNEL, &clEnqueueNDRangeKernel::kernel, &clEnqueueTask::kernel);
    add(table, CL_INVALID_VALUE, &clEnqueueReadBufferRect::buffer_origin, &clEnqueueReadBufferRect::host_origin,
        &clEnqueueReadBufferRect::region, &clEnqueueWriteBufferRect::buffer_origin,
        &clEnqueueWriteBufferRect::host_origin, &clEnqueueWriteBufferRect::region, &clEnqueueCopyBufferRect::src_origin,
        &clEnqueueCopyBufferRect::dst_origin, &clEnqueueCopyBufferRect::region);
    add(table, CL_INVALID_VALUE, &clEnqueueReadImage::origin, &clEnqueueReadImage::region, &clEnqueueWriteImage::origin,
        &clEnqueueWriteImage::region, &clEnqueueFillImage::origin, &clEnqueueFillImage::region,
        &clEnqueueMapImage::origin, &clEnqueueMapImage::region, &clEnqueueCopyImage::src_origin,
        &clEnqueueCopyImage::dst_origin, &clEnqueueCopyImage::region, &clEnqueueCopyImageToBuffer::src_origin,
        &clEnqueueCopyImageToBuffer::region, &clEnqueueCopyBufferToImage::dst_origin,
        &clEnqueueCopyBufferToImage::region);
    add(table, CL_INVALID_MEM_OBJECT, &clEnqueueReadBufferRect::buffer, &clEnqueueWriteBufferRect::buffer,
        &clEnqueueCopyBufferRect::src_buffer, &clEnqueueCopyBufferRect::dst_buffer, &clEnqueueReadImage::image,
        &clEnqueueWriteImage::image, &clEnqueueFillImage::image, &clEnqueueMapImage::image,
        &clEnqueueCopyImage::src_image, &clEnqueueCopyImage::dst_image, &clEnqueueCopyImageToBuffer::src_image,
        &clEnqueueCopyImageToBuffer::dst_buffer, &clEnqueueCopyBufferToImage::src_buffer,
        &clEnqueueCopyBufferToImage::dst_image);
    add(table, CL_INVALID_VALUE, &clEnqueueNativeKernel::args_mem_loc, &clEnqueueSVMMemFill::pattern,
        &clCreateProgramWithSource::strings, &clCreateProgramWithBinary::binaries, &clCompileProgram::input_headers,
        &clCompileProgram::header_include_names, &clLinkProgram::input_programs);
    return table;
}

void lists(session& s, _nq_cl_mem* buffer) {
    _nq_cl_event* marker = nullptr;
    s.ok(clEnqueueMarkerWithWaitList{.event = &marker});
    std::array<_nq_cl_event*, 2> const list{marker, nullptr};
    s.refused(clEnqueueMarkerWithWaitList{.event_wait_list = list.data(), .num_events_in_wait_list = 2},
              CL_INVALID_EVENT_WAIT_LIST);
    s.refused(clEnqueueMapBuffer{.buffer = buffer, .event_wait_list = list.data(), .num_events_in_wait_list = 2},
              CL_INVALID_EVENT_WAIT_LIST);
    s.refused(clWaitForEvents{.event_list = list.data(), .num_events = 2}, CL_INVALID_EVENT);
    s.ok(clReleaseEvent{marker});
    void* argument = nullptr;
    void const* nowhere = nullptr;
    s.refused(clEnqueueNativeKernel{.user_func = [](void*) {},
                                    .args = &argument,
                                    .cb_args = sizeof argument,
                                    .mem_list = &buffer,
                                    .args_mem_loc = &nowhere,
                                    .num_mem_objects = 1},
              CL_INVALID_VALUE);
}

void programs_made_of_nothing(session& s, _nq_cl_program* program) {
    _nq_cl_device_id* no_device = nullptr;
    _nq_cl_program* no_program = nullptr;
    char const* no_text = nullptr;
    char const* const name = "h";
    unsigned char const* no_binary = nullptr;
    std::size_t const size = 0;
    s.refused(clCreateProgramWithSource{.strings = &no_text, .count = 1}, CL_INVALID_VALUE);
    s.refused(clCreateProgramWithBinary{.lengths = &size, .binaries = &no_binary}, CL_INVALID_VALUE);
    s.refused(clCreateProgramWithBuiltInKernels{.device_list = &no_device, .kernel_names = name}, CL_INVALID_DEVICE);
    s.refused(clBuildProgram{.program = program, .device_list = &no_device}, CL_INVALID_DEVICE);
    EXPECT_NE(s.call(clBuildProgram{.program = program, .num_devices = 1}).status, CL_SUCCESS);
    s.refused(clBuildProgram{}, CL_INVALID_PROGRAM);
    clCompileProgram compile{.program = program, .input_headers = &no_program, .header_include_names = &name};
    compile.num_input_headers = 1;
    s.refused(compile, CL_INVALID_PROGRAM);
    compile.input_headers = &program;
    compile.header_include_names = &no_text;
    s.refused(compile, CL_INVALID_VALUE);
    compile.device_list = &no_device;
    s.refused(compile, CL_INVALID_DEVICE);
    clLinkProgram link{.input_programs = &no_program, .num_input_programs = 1};
    s.refused(link, CL_INVALID_PROGRAM);
    link.device_list = &no_device;
    s.refused(link, CL_INVALID_DEVICE);
}

// A missing value, and a null handle as the value. Only what crashes somewhere has its code fixed here.
void kernel_arguments(session& s, _nq_cl_program* program) {
    void* const nothing = nullptr;
    auto* const kernel = make_kernel(s, program, "use");
    s.refused(clSetKernelArg{.kernel = kernel, .arg_size = 4, .arg_index = 1}, CL_INVALID_ARG_VALUE);
    auto const image = s.call(clSetKernelArg{.kernel = kernel, .arg_size = 8, .arg_index = 2});
    EXPECT_TRUE(s.name != "rusticl" || image.status == CL_INVALID_ARG_VALUE);
    for (void const* const value : {static_cast<void const*>(nullptr), static_cast<void const*>(&nothing)}) {
        auto const sampler = s.call(clSetKernelArg{kernel, 8, value, 0, 3});
        EXPECT_TRUE(s.name != "oclgrind" || sampler.status == CL_INVALID_SAMPLER);
    }
    s.ok(clSetKernelArg{.kernel = kernel, .arg_size = 8});
    s.ok(clSetKernelArg{.kernel = kernel, .arg_size = 8, .arg_value = &nothing});
    if (s.name == "oclgrind" || s.name == "pocl") {
        std::size_t const global = 16;
        std::size_t const local = 0;
        s.refused(clEnqueueNDRangeKernel{.kernel = kernel, .global_work_size = &global, .local_work_size = &local},
                  CL_INVALID_WORK_GROUP_SIZE);
    }
    if (s.name == "intel") {
        auto* const device_side = make_program(s, "__kernel void use(queue_t queue) {}");
        build(s, device_side, "-cl-std=CL2.0");
        s.refused(clSetKernelArg{.kernel = make_kernel(s, device_side, "use"), .arg_size = 8}, CL_INVALID_ARG_VALUE);
    }
}

void others(session& s) {
    unsigned char* destination = nullptr;
    s.call(clGetProgramInfo{make_program(s, kernel_source), sizeof destination, &destination, nullptr, 0,
                            CL_PROGRAM_BINARIES});
    image_desc const mip_mapped{
        .image_type = CL_MEM_OBJECT_IMAGE2D, .image_width = 4, .image_height = 4, .num_mip_levels = 2};
    auto const made = s.call(clCreateImage{.context = s.context, .image_format = &rgba, .image_desc = &mip_mapped});
    EXPECT_TRUE(s.name != "pocl" || made.error_code == CL_INVALID_IMAGE_DESCRIPTOR);
    if (s.name == "pocl" && s.has<clCreateCommandQueueWithProperties>()) {
        std::array<std::uint64_t, 3> const on_device{CL_QUEUE_PROPERTIES,
                                                     CL_QUEUE_ON_DEVICE | CL_QUEUE_OUT_OF_ORDER_EXEC_MODE_ENABLE, 0};
        s.refused(clCreateCommandQueueWithProperties{.properties = on_device.data()}, CL_INVALID_QUEUE_PROPERTIES);
    }
}

} // namespace

void guards(session& s) {
    set_up(s);
    auto* const program =
        make_program(s, "__kernel void use(__global int* data, int value, read_only image2d_t image, "
                        "sampler_t sampler) { data[0] = value + read_imageui(image, sampler, (int2)(0, 0)).x; }");
    build(s, program);
    lists(s, make_buffer(s));
    programs_made_of_nothing(s, program);
    kernel_arguments(s, program);
    others(s);
    s.tear_down();
}

bool guarded(session const& s) {
    bool all = true;
    for (null_guard const& each : make_null_guards()) {
        std::uint32_t const id = each.id(s.version);
        auto const found = s.codes_when_null.find({id, each.offset});
        bool const met = found != s.codes_when_null.end() && found->second == std::set{each.code};
        if (id != 0 && !met) {
            std::cout << "command " << id << " without the pointer at " << each.offset << " did not answer "
                      << each.code << std::endl;
            all = false;
        }
    }
    return all;
}

} // namespace nq::block::contract
