#include "scenario.hpp"

namespace contract {

using namespace nq::block;

namespace {

void add_to_first(void* arguments) {
    if (arguments != nullptr) {
        ++**static_cast<std::int32_t**>(arguments);
    }
}

template <nq::capability Version>
void native(session<Version>& s, _nq_cl_mem* buffer) {
    std::array<void*, 1> arguments{};
    void const* place = arguments.data();
    auto const before = read(s, buffer)[0];
    clEnqueueNativeKernel request{.command_queue = s.queue,
                                  .user_func = add_to_first,
                                  .args = arguments.data(),
                                  .cb_args = sizeof arguments,
                                  .mem_list = &buffer,
                                  .args_mem_loc = &place,
                                  .num_mem_objects = 1};
    if (s.feature(request)) {
        EXPECT_EQ(read(s, buffer)[0], before + 1);
    }
}

template <nq::capability Version>
void sub_groups(session<Version>& s, _nq_cl_kernel* kernel) {
    std::size_t const local = 16;
    std::size_t size = 0;
    clGetKernelSubGroupInfo request{.kernel = kernel,
                                    .device = s.device,
                                    .input_value_size = sizeof local,
                                    .input_value = &local,
                                    .param_value_size = sizeof size,
                                    .param_value = &size,
                                    .param_name = kernel_max_sub_group_size};
    if (s.feature(request)) {
        EXPECT_GT(size, 0U);
    }
}

// A clone brings the arguments along.
template <nq::capability Version>
void clone(session<Version>& s, _nq_cl_kernel* kernel, _nq_cl_mem* buffer) {
    auto const before = read(s, buffer)[3];
    auto* const copy = s.ok(clCloneKernel{kernel}).result;
    std::int32_t const other = 1000;
    set_argument(s, kernel, 1, other);
    launch(s, copy);
    EXPECT_EQ(read(s, buffer)[3], before + 10);
    s.ok(clReleaseKernel{copy});
}

} // namespace

template <nq::capability Version>
void kernels(session<Version>& s) {
    auto* const program = make_program(s, kernel_source);
    build(s, program, nq::has_command<Version, clGetKernelArgInfo> ? "-cl-kernel-arg-info" : "");
    auto* const kernel = make_kernel(s, program, "add");
    EXPECT_EQ(s.text(clGetKernelInfo{kernel}, kernel_function_name), "add");
    s.template references<clRetainKernel, clReleaseKernel, clGetKernelInfo>(kernel, kernel_reference_count);
    EXPECT_GT(s.template info<std::size_t>(clGetKernelWorkGroupInfo{kernel, s.device}, kernel_work_group_size), 0U);
    if constexpr (nq::has_command<Version, clGetKernelArgInfo>) {
        EXPECT_EQ(s.text(clGetKernelArgInfo{.kernel = kernel, .arg_index = 1}, kernel_argument_name), "value");
    }
    auto* const buffer = make_buffer(s, counting_from(0));
    std::int32_t const ten = 10;
    set_argument(s, kernel, 0, buffer);
    set_argument(s, kernel, 1, ten);
    launch(s, kernel);
    EXPECT_EQ(read(s, buffer), counting_from(10));
    if constexpr (nq::has_command<Version, clEnqueueTask>) {
        s.ok(clEnqueueTask{.command_queue = s.queue, .kernel = kernel});
        EXPECT_EQ(read(s, buffer)[0], 20);
    }
    native(s, buffer);
    if constexpr (nq::has_command<Version, clCloneKernel>) {
        clone(s, kernel, buffer);
        sub_groups(s, kernel);
    }
    s.ok(clReleaseKernel{kernel});
    s.ok(clReleaseProgram{program});
    s.ok(clReleaseMemObject{buffer});
}
CONTRACT_INSTANTIATE(kernels);

} // namespace contract
