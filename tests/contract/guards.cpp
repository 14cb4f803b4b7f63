#include "guards.hpp"

#include "scenario.hpp"

namespace contract {

using namespace nq::block;

namespace {

using triple = std::array<std::size_t, 3>;

struct image_format {
    std::uint32_t order = rgba;
    std::uint32_t type = unsigned_int8;
};

/// Valid objects for the arguments that are not missing.
template <nq::capability Version>
struct objects {
    explicit objects(session<Version>& s) {
        image_format const format;
        nq::image_desc const description{.image_type = image2d, .image_width = 4, .image_height = 4};
        image =
            s
                .ok(clCreateImage{
                    .flags = mem_read_write, .context = s.context, .image_format = &format, .image_desc = &description})
                .result;
        buffer = make_buffer(s, numbers{});
        program =
            make_program(s, "__kernel void use(__global int* data, int value, read_only image2d_t image, "
                            "sampler_t sampler) { data[0] = value + read_imageui(image, sampler, (int2)(0, 0)).x; }");
        build(s, program);
        kernel = make_kernel(s, program, "use");
    }

    void release(session<Version>& s) {
        s.ok(clReleaseKernel{kernel});
        s.ok(clReleaseProgram{program});
        s.ok(clReleaseMemObject{buffer});
        s.ok(clReleaseMemObject{image});
    }

    _nq_cl_mem* image;
    _nq_cl_mem* buffer;
    _nq_cl_program* program;
    _nq_cl_kernel* kernel;
};

template <nq::capability Version>
void lists(session<Version>& s, objects<Version>& o) {
    _nq_cl_event* marker = nullptr;
    s.ok(clEnqueueMarkerWithWaitList{.command_queue = s.queue, .event = &marker});
    std::array<_nq_cl_event*, 2> const list{marker, nullptr};
    s.refused(clEnqueueMarkerWithWaitList{.command_queue = s.queue, .num_events_in_wait_list = 1},
              invalid_event_wait_list);
    s.refused(clEnqueueMarkerWithWaitList{.command_queue = s.queue,
                                          .event_wait_list = list.data(),
                                          .num_events_in_wait_list = 2},
              invalid_event_wait_list);
    s.refused(clEnqueueMapBuffer{.map_flags = map_read,
                                 .command_queue = s.queue,
                                 .buffer = o.buffer,
                                 .size = 4,
                                 .event_wait_list = list.data(),
                                 .num_events_in_wait_list = 2},
              invalid_event_wait_list);
    s.refused(clWaitForEvents{.event_list = list.data(), .num_events = 2}, invalid_event);
    s.ok(clReleaseEvent{marker});
}

void do_nothing(void*) {}

template <nq::capability Version>
void launches(session<Version>& s, objects<Version>& o) {
    std::size_t const global = 16;
    std::size_t const local = 0;
    s.refused(clEnqueueNDRangeKernel{.command_queue = s.queue, .global_work_size = &global, .work_dim = 1},
              invalid_kernel);
    void* argument = nullptr;
    void const* nowhere = nullptr;
    s.refused(clEnqueueNativeKernel{.command_queue = s.queue,
                                    .user_func = do_nothing,
                                    .args = &argument,
                                    .cb_args = sizeof argument,
                                    .mem_list = &o.buffer,
                                    .args_mem_loc = &nowhere,
                                    .num_mem_objects = 1},
              invalid_value);
    if constexpr (nq::has_command<Version, clEnqueueTask>) {
        s.refused(clEnqueueTask{.command_queue = s.queue}, invalid_kernel);
    }
    if (s.name == "oclgrind") {
        s.refused(clEnqueueNDRangeKernel{.command_queue = s.queue,
                                         .kernel = o.kernel,
                                         .global_work_size = &global,
                                         .local_work_size = &local,
                                         .work_dim = 1},
                  invalid_work_group_size);
    }
}

template <nq::capability Version>
void buffer_rectangles(session<Version>& s, objects<Version>& o) {
    triple const origin{0, 0, 0};
    triple const region{4, 1, 1};
    numbers data{};
    clEnqueueReadBufferRect const reading{.command_queue = s.queue,
                                          .buffer = o.buffer,
                                          .buffer_origin = origin.data(),
                                          .host_origin = origin.data(),
                                          .region = region.data(),
                                          .ptr = &data,
                                          .blocking_read = 1};
    clEnqueueWriteBufferRect const writing{.command_queue = s.queue,
                                           .buffer = o.buffer,
                                           .buffer_origin = origin.data(),
                                           .host_origin = origin.data(),
                                           .region = region.data(),
                                           .ptr = &data,
                                           .blocking_write = 1};
    clEnqueueCopyBufferRect const copying{.command_queue = s.queue,
                                          .src_buffer = o.buffer,
                                          .dst_buffer = o.buffer,
                                          .src_origin = origin.data(),
                                          .dst_origin = origin.data(),
                                          .region = region.data()};
    auto const without = [&s](auto block, auto member, std::int32_t code) {
        block.*member = nullptr;
        s.refused(block, code);
    };
    without(reading, &clEnqueueReadBufferRect::buffer_origin, invalid_value);
    without(reading, &clEnqueueReadBufferRect::host_origin, invalid_value);
    without(reading, &clEnqueueReadBufferRect::region, invalid_value);
    without(writing, &clEnqueueWriteBufferRect::buffer_origin, invalid_value);
    without(writing, &clEnqueueWriteBufferRect::host_origin, invalid_value);
    without(writing, &clEnqueueWriteBufferRect::region, invalid_value);
    without(copying, &clEnqueueCopyBufferRect::src_origin, invalid_value);
    without(copying, &clEnqueueCopyBufferRect::dst_origin, invalid_value);
    without(copying, &clEnqueueCopyBufferRect::region, invalid_value);
    without(copying, &clEnqueueCopyBufferRect::src_buffer, invalid_mem_object);
    without(copying, &clEnqueueCopyBufferRect::dst_buffer, invalid_mem_object);
}

template <nq::capability Version>
void image_rectangles(session<Version>& s, objects<Version>& o) {
    triple const origin{0, 0, 0};
    triple const region{4, 4, 1};
    std::array<std::uint32_t, 16> data{};
    std::size_t pitch = 0;
    auto const without = [&s](auto block, auto... members) {
        (
            [&s, block](auto member) mutable {
                block.*member = nullptr;
                s.refused(block, invalid_value);
            }(members),
            ...);
    };
    without(
        clEnqueueReadImage{
            .command_queue = s.queue, .image = o.image, .origin = origin.data(), .region = region.data(), .ptr = &data},
        &clEnqueueReadImage::origin, &clEnqueueReadImage::region);
    without(
        clEnqueueWriteImage{
            .command_queue = s.queue, .image = o.image, .origin = origin.data(), .region = region.data(), .ptr = &data},
        &clEnqueueWriteImage::origin, &clEnqueueWriteImage::region);
    without(clEnqueueFillImage{.command_queue = s.queue,
                               .image = o.image,
                               .fill_color = &data,
                               .origin = origin.data(),
                               .region = region.data()},
            &clEnqueueFillImage::origin, &clEnqueueFillImage::region);
    without(clEnqueueMapImage{.map_flags = map_read,
                              .command_queue = s.queue,
                              .image = o.image,
                              .origin = origin.data(),
                              .region = region.data(),
                              .image_row_pitch = &pitch},
            &clEnqueueMapImage::origin, &clEnqueueMapImage::region);
    without(clEnqueueCopyImage{.command_queue = s.queue,
                               .src_image = o.image,
                               .dst_image = o.image,
                               .src_origin = origin.data(),
                               .dst_origin = origin.data(),
                               .region = region.data()},
            &clEnqueueCopyImage::src_origin, &clEnqueueCopyImage::dst_origin, &clEnqueueCopyImage::region);
    without(clEnqueueCopyImageToBuffer{.command_queue = s.queue,
                                       .src_image = o.image,
                                       .dst_buffer = o.buffer,
                                       .src_origin = origin.data(),
                                       .region = region.data()},
            &clEnqueueCopyImageToBuffer::src_origin, &clEnqueueCopyImageToBuffer::region);
    without(clEnqueueCopyBufferToImage{.command_queue = s.queue,
                                       .src_buffer = o.buffer,
                                       .dst_image = o.image,
                                       .dst_origin = origin.data(),
                                       .region = region.data()},
            &clEnqueueCopyBufferToImage::dst_origin, &clEnqueueCopyBufferToImage::region);
    s.refused(
        clEnqueueCopyImageToBuffer{
            .command_queue = s.queue, .src_image = o.image, .src_origin = origin.data(), .region = region.data()},
        invalid_mem_object);
}

template <nq::capability Version>
void programs_made_of_nothing(session<Version>& s, objects<Version>& o) {
    _nq_cl_device_id* no_device = nullptr;
    _nq_cl_program* no_program = nullptr;
    char const* no_text = nullptr;
    char const* const name = "h";
    unsigned char const* no_binary = nullptr;
    std::size_t const size = 0;
    s.refused(clCreateProgramWithSource{.context = s.context, .count = 1}, invalid_value);
    s.refused(clCreateProgramWithSource{.context = s.context, .strings = &no_text, .lengths = &size, .count = 1},
              invalid_value);
    s.refused(
        clCreateProgramWithBinary{.context = s.context, .device_list = &s.device, .lengths = &size, .num_devices = 1},
        invalid_value);
    s.refused(
        clCreateProgramWithBinary{
            .context = s.context, .device_list = &s.device, .lengths = &size, .binaries = &no_binary, .num_devices = 1},
        invalid_value);
    s.refused(
        clCreateProgramWithBuiltInKernels{
            .context = s.context, .device_list = &no_device, .kernel_names = name, .num_devices = 1},
        invalid_device);
    s.refused(clBuildProgram{.program = o.program, .device_list = &no_device, .num_devices = 1}, invalid_device);
    EXPECT_NE(s.call(clBuildProgram{.program = o.program, .num_devices = 1}).status, success);
    s.refused(clBuildProgram{.device_list = &s.device, .num_devices = 1}, invalid_program);
    clCompileProgram compile{.program = o.program,
                             .device_list = &s.device,
                             .header_include_names = &name,
                             .num_devices = 1,
                             .num_input_headers = 1};
    s.refused(compile, invalid_value);
    compile.input_headers = &no_program;
    s.refused(compile, invalid_program);
    compile.input_headers = &o.program;
    compile.header_include_names = &no_text;
    s.refused(compile, invalid_value);
    clLinkProgram link{.context = s.context, .device_list = &s.device, .num_devices = 1, .num_input_programs = 1};
    s.refused(link, invalid_value);
    link.input_programs = &no_program;
    s.refused(link, invalid_program);
    link.device_list = &no_device;
    s.refused(link, invalid_device);
}

// A missing value, and a null handle as the value. Only what crashes somewhere has its code fixed here.
template <nq::capability Version>
void kernel_arguments(session<Version>& s, objects<Version>& o) {
    void* const nothing = nullptr;
    s.refused(clSetKernelArg{.kernel = o.kernel, .arg_size = 4, .arg_index = 1}, invalid_arg_value);
    auto const image = s.call(clSetKernelArg{.kernel = o.kernel, .arg_size = 8, .arg_index = 2});
    EXPECT_TRUE(s.name != "rusticl" || image.status == invalid_arg_value);
    auto const sampler = s.call(clSetKernelArg{.kernel = o.kernel, .arg_size = 8, .arg_index = 3});
    EXPECT_TRUE(s.name != "oclgrind" || sampler.status == invalid_sampler);
    auto const null_sampler =
        s.call(clSetKernelArg{.kernel = o.kernel, .arg_size = 8, .arg_value = &nothing, .arg_index = 3});
    EXPECT_TRUE(s.name != "oclgrind" || null_sampler.status == invalid_sampler);
    s.ok(clSetKernelArg{.kernel = o.kernel, .arg_size = 8, .arg_index = 0});
    s.ok(clSetKernelArg{.kernel = o.kernel, .arg_size = 8, .arg_value = &nothing, .arg_index = 0});
}

template <nq::capability Version>
void queue_argument(session<Version>& s) {
    auto* const program = make_program(s, "__kernel void use(queue_t queue) {}");
    build(s, program, "-cl-std=CL2.0");
    auto* const kernel = make_kernel(s, program, "use");
    s.refused(clSetKernelArg{.kernel = kernel, .arg_size = 8}, invalid_arg_value);
    s.ok(clReleaseKernel{kernel});
    s.ok(clReleaseProgram{program});
}

template <nq::capability Version>
void others(session<Version>& s) {
    auto* const unbuilt = make_program(s, kernel_source);
    unsigned char* destination = nullptr;
    s.call(clGetProgramInfo{.program = unbuilt,
                            .param_value_size = sizeof destination,
                            .param_value = &destination,
                            .param_name = program_binaries});
    s.ok(clReleaseProgram{unbuilt});
    image_format const format;
    nq::image_desc const mip_mapped{.image_type = image2d, .image_width = 4, .image_height = 4, .num_mip_levels = 2};
    auto const made = s.call(clCreateImage{
        .flags = mem_read_write, .context = s.context, .image_format = &format, .image_desc = &mip_mapped});
    EXPECT_TRUE(s.name != "pocl" || made.error_code == invalid_image_descriptor);
    if constexpr (nq::has_command<Version, clEnqueueSVMMemFill>) {
        s.refused(clEnqueueSVMMemFill{.command_queue = s.queue, .svm_ptr = &destination, .pattern_size = 1, .size = 1},
                  invalid_value);
    }
    if (s.name == "intel") {
        queue_argument(s);
    }
}

} // namespace

template <nq::capability Version>
void refuses_missing_arguments(session<Version>& s) {
    set_up(s);
    objects<Version> o(s);
    lists(s, o);
    launches(s, o);
    buffer_rectangles(s, o);
    image_rectangles(s, o);
    programs_made_of_nothing(s, o);
    kernel_arguments(s, o);
    others(s);
    o.release(s);
    tear_down(s);
}
template void refuses_missing_arguments(session<nq::capability::opencl_1_2>&);
template void refuses_missing_arguments(session<nq::capability::opencl_2_2>&);

} // namespace contract
