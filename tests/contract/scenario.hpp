#pragma once

// Every entry point of a version, each with its effect read back.

#include "session.hpp"

#include <array>
#include <atomic>
#include <initializer_list>
#include <utility>

namespace contract {

constexpr std::size_t length = 256; // of the buffers, in elements
using numbers = std::array<std::int32_t, length>;

numbers counting_from(std::int32_t first);

template <nq::capability Version>
void platform_and_device(session<Version>& s);
template <nq::capability Version>
void context_and_queue(session<Version>& s);
template <nq::capability Version>
void buffers(session<Version>& s);
template <nq::capability Version>
void images_and_samplers(session<Version>& s);
template <nq::capability Version>
void programs(session<Version>& s);
template <nq::capability Version>
void kernels(session<Version>& s);
template <nq::capability Version>
void events(session<Version>& s);
template <nq::capability Version>
void shared_memory_and_pipes(session<Version>& s);

/// Makes the session's context and queue.
template <nq::capability Version>
void set_up(session<Version>& s);

template <nq::capability Version>
void tear_down(session<Version>& s);

template <nq::capability Version>
void every_entry_point(session<Version>& s) {
    set_up(s);
    platform_and_device(s);
    context_and_queue(s);
    buffers(s);
    images_and_samplers(s);
    programs(s);
    kernels(s);
    events(s);
    shared_memory_and_pipes(s);
    tear_down(s);
}

// What several scenarios need.

template <nq::capability Version>
_nq_cl_mem* make_buffer(session<Version>& s, numbers const& values) {
    return s
        .ok(nq::block::clCreateBuffer{.flags = mem_read_write | mem_copy_host_pointer,
                                      .context = s.context,
                                      .size = sizeof values,
                                      .host_ptr = const_cast<numbers*>(&values)})
        .result;
}

/// A blocking read of a whole buffer, after the commands before it.
template <nq::capability Version>
numbers read(session<Version>& s, _nq_cl_mem* buffer) {
    s.ok(nq::block::clFinish{s.queue});
    numbers values{};
    s.ok(nq::block::clEnqueueReadBuffer{
        .command_queue = s.queue, .buffer = buffer, .size = sizeof values, .ptr = &values, .blocking_read = 1});
    return values;
}

template <nq::capability Version>
_nq_cl_program* make_program(session<Version>& s, char const* source) {
    return s.ok(nq::block::clCreateProgramWithSource{.context = s.context, .strings = &source, .count = 1}).result;
}

template <nq::capability Version>
void build(session<Version>& s, _nq_cl_program* program, char const* options = "") {
    s.ok(nq::block::clBuildProgram{.program = program, .device_list = &s.device, .options = options, .num_devices = 1});
}

template <nq::capability Version>
_nq_cl_kernel* make_kernel(session<Version>& s, _nq_cl_program* program, char const* name) {
    return s.ok(nq::block::clCreateKernel{.program = program, .kernel_name = name}).result;
}

template <nq::capability Version, class Value>
void set_argument(session<Version>& s, _nq_cl_kernel* kernel, std::uint32_t index, Value const& value) {
    s.ok(
        nq::block::clSetKernelArg{.kernel = kernel, .arg_size = sizeof value, .arg_value = &value, .arg_index = index});
}

/// Runs a kernel once per element, in work-groups of 16.
template <nq::capability Version>
void launch(session<Version>& s, _nq_cl_kernel* kernel, _nq_cl_event** event = nullptr) {
    std::size_t const global = length;
    std::size_t const local = 16;
    s.ok(nq::block::clEnqueueNDRangeKernel{.command_queue = s.queue,
                                           .kernel = kernel,
                                           .global_work_size = &global,
                                           .local_work_size = &local,
                                           .event = event,
                                           .work_dim = 1});
}

/// `add(data, value)` adds to every element; `store(data)` puts the number of each element into it.
extern char const* const kernel_source;

} // namespace contract
