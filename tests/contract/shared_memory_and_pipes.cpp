#include "scenario.hpp"

namespace contract {

using namespace nq::block;

namespace {

// A program's own function is to free the memory itself; here it only counts.
void count_call(_nq_cl_command_queue*, std::uint32_t count, void**, void* counter) {
    *static_cast<std::atomic<std::uint32_t>*>(counter) += count;
}

template <nq::capability Version>
void map_for_reading(session<Version>& s, void* memory, std::int32_t expected) {
    s.ok(clEnqueueSVMMap{.map_flags = map_read,
                         .command_queue = s.queue,
                         .svm_ptr = memory,
                         .size = sizeof(numbers),
                         .blocking_map = 1});
    EXPECT_EQ(static_cast<std::int32_t const*>(memory)[1], expected);
    s.ok(clEnqueueSVMUnmap{.command_queue = s.queue, .svm_ptr = memory});
}

template <nq::capability Version>
void commands_on(session<Version>& s, void* memory) {
    std::int32_t const pattern = 11;
    s.ok(clEnqueueSVMMemFill{.command_queue = s.queue,
                             .svm_ptr = memory,
                             .pattern = &pattern,
                             .pattern_size = sizeof pattern,
                             .size = sizeof(numbers)});
    map_for_reading(s, memory, pattern);
    auto const values = counting_from(40);
    s.ok(clEnqueueSVMMemcpy{
        .command_queue = s.queue, .dst_ptr = memory, .src_ptr = &values, .size = sizeof values, .blocking_copy = 1});
    if constexpr (nq::has_command<Version, clEnqueueSVMMigrateMem>) {
        void const* const list = memory;
        s.ok(clEnqueueSVMMigrateMem{.command_queue = s.queue, .num_svm_pointers = 1, .svm_pointers = &list});
    }
    map_for_reading(s, memory, 41);
}

template <nq::capability Version>
void kernel_on(session<Version>& s, void* memory) {
    auto* const program = make_program(s, kernel_source);
    build(s, program);
    auto* const kernel = make_kernel(s, program, "store");
    s.ok(clSetKernelArgSVMPointer{.kernel = kernel, .arg_value = memory, .arg_index = 0});
    s.ok(clSetKernelExecInfo{.kernel = kernel,
                             .param_value_size = sizeof memory,
                             .param_value = &memory,
                             .param_name = kernel_svm_pointers});
    launch(s, kernel);
    map_for_reading(s, memory, 1);
    s.ok(clReleaseKernel{kernel});
    s.ok(clReleaseProgram{program});
}

template <nq::capability Version>
void without_shared_memory(session<Version>& s) {
    std::array<std::int32_t, 4> memory{};
    void* list = memory.data();
    void const* const migrated = list;
    s.call(clSVMFree{s.context, nullptr});
    s.refused(clEnqueueSVMFree{.command_queue = s.queue, .svm_pointers = &list, .num_svm_pointers = 1},
              invalid_operation);
    s.refused(clEnqueueSVMMap{.map_flags = map_read, .command_queue = s.queue, .svm_ptr = list, .size = 4},
              invalid_operation);
    s.refused(clEnqueueSVMUnmap{.command_queue = s.queue, .svm_ptr = list}, invalid_operation);
    s.refused(clEnqueueSVMMemcpy{.command_queue = s.queue, .dst_ptr = list, .src_ptr = &memory[1], .size = 4},
              invalid_operation);
    s.refused(
        clEnqueueSVMMemFill{
            .command_queue = s.queue, .svm_ptr = list, .pattern = &memory[1], .pattern_size = 4, .size = 4},
        invalid_operation);
    auto* const program = make_program(s, kernel_source);
    build(s, program);
    auto* const kernel = make_kernel(s, program, "store");
    s.refused(clSetKernelArgSVMPointer{.kernel = kernel, .arg_value = list}, invalid_operation);
    s.refused(
        clSetKernelExecInfo{
            .kernel = kernel, .param_value_size = sizeof list, .param_value = &list, .param_name = kernel_svm_pointers},
        invalid_operation);
    if constexpr (nq::has_command<Version, clEnqueueSVMMigrateMem>) {
        s.refused(clEnqueueSVMMigrateMem{.command_queue = s.queue, .num_svm_pointers = 1, .svm_pointers = &migrated},
                  invalid_operation);
    }
    s.ok(clReleaseKernel{kernel});
    s.ok(clReleaseProgram{program});
}

template <nq::capability Version>
void shared_memory(session<Version>& s) {
    clSVMAlloc request{.flags = mem_read_write, .context = s.context, .size = sizeof(numbers)};
    if (!s.feature(request)) {
        return without_shared_memory(s);
    }
    commands_on(s, request.result);
    kernel_on(s, request.result);
    std::atomic<std::uint32_t> freed = 0;
    s.ok(clEnqueueSVMFree{.command_queue = s.queue,
                          .svm_pointers = &request.result,
                          .pfn_free_func = count_call,
                          .user_data = &freed,
                          .num_svm_pointers = 1});
    s.ok(clFinish{s.queue});
    EXPECT_EQ(freed, 1U);
    s.call(clSVMFree{s.context, request.result});
}

// On a platform without pipes a buffer stands in for one.
template <nq::capability Version>
void pipe(session<Version>& s) {
    clCreatePipe request{.context = s.context, .pipe_packet_size = 4, .pipe_max_packets = 16};
    if (s.feature(request)) {
        EXPECT_EQ(s.template info<std::uint32_t>(clGetPipeInfo{request.result}, pipe_packet_size), 4U);
        EXPECT_EQ(s.template info<std::uint32_t>(clGetPipeInfo{request.result}, pipe_max_packets), 16U);
    } else {
        request.result = make_buffer(s, numbers{});
        s.refused(clGetPipeInfo{.pipe = request.result, .param_name = pipe_packet_size}, invalid_mem_object);
    }
    s.ok(clReleaseMemObject{request.result});
}

} // namespace

template <nq::capability Version>
void shared_memory_and_pipes(session<Version>& s) {
    if constexpr (nq::has_command<Version, clSVMAlloc>) {
        shared_memory(s);
        pipe(s);
    }
}
CONTRACT_INSTANTIATE(shared_memory_and_pipes);

} // namespace contract
