#pragma once

// What the mistakes are made with.

#include <vorn/mero/opencl_1_2.hpp>
#include <vorn/mero/opencl_2_1.hpp>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace cl = vorn::mero::opencl_1_2;

struct session {
    cl::device device;
    cl::context context = cl::create_context({}, {device}, nullptr, nullptr);
    cl::command_queue queue = context.create_command_queue(device, false, false);
    cl::program program = context.create_program_from_source(
        "kernel void scale(global float* values, float factor) { values[get_global_id(0)] *= factor; }\n"
        "kernel __attribute__((reqd_work_group_size(8, 1, 1))) void eights(global float* values) { values[0] = 8; }\n");
    cl::buffer buffer = context.create_buffer(cl::mem_flags::read_write, 4096, nullptr);
    std::vector<float> values = std::vector<float>(2048, 2.0F);

    cl::kernel kernel(char const* name) {
        program.build({device}, "-cl-kernel-arg-info", nullptr, nullptr);
        return program.create_kernel(name);
    }

    void launch(cl::kernel& function, std::size_t global, std::size_t local) {
        queue.enqueue_command_without_event(cl::nd_range_kernel(function, 1, {0, 0, 0}, {global, 1, 1}, {local, 1, 1}));
        queue.finish();
    }
};

// The device of a session as the newer versions offer it.
vorn::mero::opencl_2_1::device newer_device(session& here);

// What OpenCL leaves undefined, and what is like it but right.
extern std::map<std::string, std::function<void(session&)>> const undefined;
