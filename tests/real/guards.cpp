#include "support.hpp"

// Lists with nothing in them and values that end the process in some implementation; what null pointers come to is seen
// where the scenarios run with them.

namespace real {
namespace {

/// A list of one null entry.
template <class Element>
Element* nothing[1]{};

SCENARIO(refuses_null_events, "null list entries", 120) {
    auto* const queue = raw_of(b.queue);
    auto const buffer = b.store(numbers(4));
    auto* memory = raw_of(buffer);
    auto const marker = b.queue.enqueue_marker(0, nullptr);
    std::array<_nq_cl_event*, 2> const list{raw_of(marker), nullptr};
    b.expect(CL_INVALID_EVENT_WAIT_LIST, wire::clEnqueueMarkerWithWaitList{.command_queue = queue,
                                                                           .event_wait_list = list.data(),
                                                                           .num_events_in_wait_list = 2});
    b.expect(CL_INVALID_EVENT_WAIT_LIST, wire::clEnqueueMapBuffer{.command_queue = queue,
                                                                  .buffer = memory,
                                                                  .event_wait_list = list.data(),
                                                                  .num_events_in_wait_list = 2});
    b.expect(CL_INVALID_EVENT, wire::clWaitForEvents{.event_list = list.data(), .num_events = 2});
    void* argument = nullptr;
    b.expect(CL_INVALID_VALUE, wire::clEnqueueNativeKernel{.command_queue = queue,
                                                           .user_func = [](void*) {},
                                                           .args = &argument,
                                                           .cb_args = sizeof argument,
                                                           .mem_list = &memory,
                                                           .args_mem_loc = nothing<void const>,
                                                           .num_mem_objects = 1});
}

SCENARIO(refuses_programs_of_nothing, "null list entries", 120) {
    auto* const context = raw_of(b.context);
    auto const source = b.context.create_program_from_source("__kernel void f() {}");
    auto* program = raw_of(source);
    char const* const name = "h";
    std::size_t const size = 0;
    auto* const devices = nothing<_nq_cl_device_id>;
    b.expect(CL_INVALID_VALUE,
             wire::clCreateProgramWithSource{.context = context, .strings = nothing<char const>, .count = 1});
    auto* device = raw_of(b.device);
    b.expect(CL_INVALID_VALUE, wire::clCreateProgramWithBinary{.context = context,
                                                               .device_list = &device,
                                                               .lengths = &size,
                                                               .binaries = nothing<unsigned char const>,
                                                               .num_devices = 1});
    b.expect(CL_INVALID_DEVICE,
             wire::clCreateProgramWithBuiltInKernels{
                 .context = context, .device_list = devices, .kernel_names = name, .num_devices = 1});
    b.expect(CL_INVALID_DEVICE, wire::clBuildProgram{.program = program, .device_list = devices, .num_devices = 1});
    b.expect(CL_INVALID_VALUE, wire::clBuildProgram{.program = program, .num_devices = 1});
    wire::clCompileProgram compile{.program = program,
                                   .input_headers = nothing<_nq_cl_program>,
                                   .header_include_names = &name,
                                   .num_input_headers = 1};
    b.expect(CL_INVALID_PROGRAM, compile);
    compile.input_headers = &program;
    compile.header_include_names = nothing<char const>;
    b.expect(CL_INVALID_VALUE, compile);
    compile.num_devices = 1;
    compile.device_list = devices;
    b.expect(CL_INVALID_DEVICE, compile);
    wire::clLinkProgram link{.context = context, .input_programs = nothing<_nq_cl_program>, .num_input_programs = 1};
    b.expect(CL_INVALID_PROGRAM, link);
    link.num_devices = 1;
    link.device_list = devices;
    b.expect(CL_INVALID_DEVICE, link);
}

// The kernel lacks arguments, so that no launch is made.
template <class Api>
void refuse_empty_groups(bench<Api>& b, typename Api::kernel const& kernel) {
    std::size_t const global[] = {1, 1, 1};
    for (unsigned int dimensions = 1; dimensions <= 3; ++dimensions) {
        for (unsigned int empty = 0; empty < 3; ++empty) {
            std::size_t local[] = {1, 1, 1};
            local[empty] = 0;
            wire::clEnqueueNDRangeKernel const launch{.command_queue = raw_of(b.queue),
                                                      .kernel = raw_of(kernel),
                                                      .global_work_size = global,
                                                      .local_work_size = local,
                                                      .work_dim = dimensions};
            b.expect(empty < dimensions ? CL_INVALID_WORK_GROUP_SIZE : CL_INVALID_KERNEL_ARGS, launch);
        }
    }
}

// A missing value, and a null handle as the value. Only what crashes somewhere has its code fixed here.
SCENARIO(refuses_arguments_without_a_value, "arguments without a value", 100) {
    auto const kernel =
        b.build("__kernel void f(__global int* data, int value, read_only image2d_t image, "
                "sampler_t sampler) { data[0] = value + read_imageui(image, sampler, (int2)(0, 0)).x; }")
            .create_kernel("f");
    auto const argument = [&](unsigned int index, std::size_t size, void const* value) {
        return wire::clSetKernelArg{raw_of(kernel), size, value, 0, index};
    };
    auto const* const null_handle = nothing<void>;
    b.expect(CL_INVALID_ARG_VALUE, argument(1, 4, nullptr));
    b.expect(CL_SUCCESS, argument(0, 8, nullptr));
    b.expect(CL_SUCCESS, argument(0, 8, null_handle));
    if (b.differs("rusticl", "refuses null images as arguments")) {
        b.expect(CL_INVALID_ARG_VALUE, argument(2, 8, nullptr));
    } else {
        b.perform(argument(2, 8, nullptr));
    }
    for (void const* const value : {static_cast<void const*>(nullptr), static_cast<void const*>(null_handle)}) {
        EXPECT_TRUE(b.perform(argument(3, 8, value)).status == CL_INVALID_SAMPLER || b.name != "oclgrind");
    }
    std::string const ends = "would end the process for work-groups of no items; the bridge refuses them";
    if (b.differs("oclgrind", ends) || b.differs("pocl", ends)) {
        refuse_empty_groups(b, kernel);
    }
}

SCENARIO(builds_with_quotes, "values and quotes in build options", 120) {
    auto const source = b.context.create_program_from_source("__kernel void f() {}");
    auto* program = raw_of(source);
    bool const refuses = b.differs("rusticl", "would end the process for a part of one letter, or a quoted one that "
                                              "belongs to no option; the bridge refuses them");
    for (auto const& [options, is_harmful] : {std::pair{"-D N", true},
                                              {"-D N -w", true},
                                              {"-DA=\"N\"", true},
                                              {"-w -DA=\"N M\" -DB", true},
                                              {"-D AB", false},
                                              {"-D AB -I \"/a b\" -w", false},
                                              {"  -w  -DN ", false},
                                              {"-DA=\"\"", false}}) {
        bool const is_refused = refuses && is_harmful;
        b.expect(is_refused ? CL_INVALID_BUILD_OPTIONS : CL_SUCCESS,
                 wire::clBuildProgram{.program = program, .options = options});
        b.expect(is_refused ? CL_INVALID_COMPILER_OPTIONS : CL_SUCCESS,
                 wire::clCompileProgram{.program = program, .options = options});
    }
}

SCENARIO(refuses_unusual_objects, "unusual objects", 120) {
    auto const unbuilt = b.context.create_program_from_source("__kernel void f() {}");
    unsigned char* binary = nullptr;
    wire::clGetProgramInfo ask{raw_of(unbuilt), sizeof binary, &binary, nullptr, 0, CL_PROGRAM_BINARIES};
    b.perform(ask);
    auto const built = b.build("__kernel void f() {}");
    ask.program = raw_of(built);
    ask.param_value_size -= 1;
    b.expect(CL_INVALID_VALUE, ask);
    cl_image_format const rgba{CL_RGBA, CL_UNSIGNED_INT8};
    for (auto const& [mip_levels, samples] : {std::pair{2U, 0U}, {0U, 2U}}) {
        nq::image_desc const description{.image_type = CL_MEM_OBJECT_IMAGE2D,
                                         .image_width = 4,
                                         .image_height = 4,
                                         .num_mip_levels = mip_levels,
                                         .num_samples = samples};
        wire::clCreateImage const image{
            .context = raw_of(b.context), .image_format = &rgba, .image_desc = &description};
        auto const made = b.perform(image);
        EXPECT_TRUE(made.error_code == CL_INVALID_IMAGE_DESCRIPTOR || b.name != "pocl");
        b.perform(wire::clReleaseMemObject{made.result});
    }
    if constexpr (Api::number >= 210) {
        wire::clSetDefaultDeviceCommandQueue const none{raw_of(b.context), raw_of(b.device)};
        EXPECT_NE(b.perform(none).status, CL_SUCCESS);
    }
}

} // namespace
} // namespace real
