#include "unit/members.hpp"

namespace unit {

struct kernels : members {
    api::kernel& k = w.kernel;
    _nq_cl_kernel* const raw = raw_of(k);
};

TEST_F(kernels, takes_arguments) {
    auto const sets = [&](std::uint32_t index, word size, void const* content, auto set) {
        performs(k, clSetKernelArg{raw, size, content, 0, index}, set);
    };
    auto const takes = [&](std::uint32_t index, auto& object) {
        auto* const content = raw_of(object);
        sets(index, 8, &content, [&] { k.set_argument(index, object); });
    };
    takes(2, w.buffer);
    takes(3, w.image);
    takes(4, w.sampler);
    auto const emptied = std::move(w.buffer_2);
    takes(5, w.buffer_2); // NOLINT(bugprone-use-after-move)
#if UNIT_OPENCL >= 110
    takes(6, w.sub_buffer);
#endif
#if UNIT_OPENCL >= 200
    takes(7, w.pipe);
    takes(9, w.device_queue); // not the size of its handle
#endif
    sets(0, 8, nullptr, [&] { k.set_argument(0, nullptr); });
    sets(1, large, nullptr, [&] { k.set_argument(1, local_memory(large)); });
    sets(0xFFFFFFFF, 3, "abc", [&] { k.set_argument_raw(0xFFFFFFFF, 3, "abc"); });
}

#if UNIT_OPENCL >= 200
TEST_F(kernels, takes_shared_memory) {
    performs(k, clSetKernelArgSVMPointer{raw, &w, 0, 9}, [&] { k.set_svm_argument(9, &w); });
    std::vector<void*> const pointers{&w, nullptr};
    performs(k, clSetKernelExecInfo{raw, 16, pointers.data(), 0, 0x11B6}, [&] { k.set_svm_pointers(pointers); });
    performs(k, clSetKernelExecInfo{raw, 0, nullptr, 0, 0x11B6}, [&] { k.set_svm_pointers({}); });
    for (std::uint32_t const enabled : {0U, 1U}) {
        performs(k, clSetKernelExecInfo{raw, 4, &enabled, 0, 0x11B7},
                 [&] { k.set_fine_grain_system_flag(enabled != 0); });
    }
}
#endif

#if UNIT_OPENCL >= 210
TEST_F(kernels, is_copied_with_its_arguments) {
    performs(k, clCloneKernel{raw}, [&] { return k.copy(); });
    performs(k, clCloneKernel{raw}, [&] { return k; });
}
#endif

// The program is read first, then the name, and nothing of the arguments.
TEST_F(kernels, is_made_afresh) {
    libnq.reply<clGetKernelInfo>(0x1194, reply_of(w.program));
    libnq.reply<clGetKernelInfo>(0x1190, reply_of("f"));
    k.clone();
    EXPECT_EQ(libnq.names(), (names{"clGetKernelInfo", "clGetKernelInfo", "clRetainProgram", "clGetKernelInfo",
                                    "clGetKernelInfo", "clCreateKernel", "clReleaseProgram", "clReleaseKernel"}));
    EXPECT_EQ(libnq.calls[5].inputs, scripted::inputs_of(clCreateKernel{raw_of(w.program), "f"}));
    libnq.fail<clCreateKernel>(scripted::status(-46));
    EXPECT_THROW(k.clone(), common::invalid_kernel_name);
}

TEST_F(kernels, tells) {
    reads(k, 0x1190, "f", &kernel::function_name);
    reads(k, 0x1191, number, &kernel::num_args);
    reads(k, 0x1193, w.context, &kernel::get_context);
    reads(k, 0x1194, w.program, &kernel::get_program);
#if UNIT_OPENCL >= 120
    reads(k, 0x1195, names{"a", "b"}, &kernel::attributes, reply_of("a  b "));
    auto reads = reader(k, clGetKernelArgInfo{.kernel = raw, .arg_index = 5}, 5U);
    reads(0x1196, number, &kernel::argument_address_qualifier);
    reads(0x1197, number, &kernel::argument_access_qualifier);
    reads(0x1198, "int*", &kernel::argument_type_name);
    reads(0x1199, large, &kernel::argument_type_qualifier);
    reads(0x119A, "x", &kernel::argument_name);
#endif
}

TEST_F(kernels, tells_of_work_groups) {
    auto reads = reader(k, clGetKernelWorkGroupInfo{.kernel = raw, .device = raw_of(w.device)}, std::cref(w.device));
    reads(0x11B0, large, &kernel::max_work_group_size);
    reads(0x11B1, array3{1, 2, large}, &kernel::compile_work_group_size);
    reads(0x11B2, large, &kernel::local_mem_size);
#if UNIT_OPENCL >= 110
    reads(0x11B3, large, &kernel::preferred_work_group_size_multiple);
    reads(0x11B4, large, &kernel::private_mem_per_work_item);
#endif
#if UNIT_OPENCL >= 120
    reads(0x11B5, array3{1, 2, large}, &kernel::max_global_work_size);
#endif
}

#if UNIT_OPENCL >= 210
TEST_F(kernels, tells_of_sub_groups) {
    auto const reads = [&](std::uint32_t name, words const& input, auto read) {
        auto const* const place = input.empty() ? nullptr : input.data();
        clGetKernelSubGroupInfo const query{
            .kernel = raw, .device = raw_of(w.device), .input_value_size = input.size() * 8, .input_value = place};
        reader(k, query)(name, large, read);
    };
    auto const of_ranges = [&](auto const& size) {
        words const input(size.begin(), size.end());
        reads(0x2033, input, [&](kernel& of) { return of.get_max_sub_group_size_for_nd_range(w.device, size); });
        reads(0x2034, input, [&](kernel& of) { return of.get_sub_group_count_for_nd_range(w.device, size); });
    };
    of_ranges(std::array<std::size_t, 1>{4});
    of_ranges(std::array<std::size_t, 2>{4, 5});
    of_ranges(std::array<std::size_t, 3>{4, 5, 6});
    reads(0x11B8, {77}, [&](kernel& of) { return of.get_local_size_for_sub_group_count(w.device, 77); });
    reads(0x11B9, {}, [&](kernel& of) { return of.get_max_num_sub_groups(w.device); });
    reads(0x11BA, {}, [&](kernel& of) { return of.compile_num_sub_groups(w.device); });
}
#endif

} // namespace unit
