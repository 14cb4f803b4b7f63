#include "unit/allocations.hpp"
#include "unit/members.hpp"

namespace unit {
namespace {

class programs : public members {
protected:
    _nq_cl_program* const raw = raw_of(w.program);
    _nq_cl_context* const owner = raw_of(w.context);
};

void on_program(_nq_cl_program*, void*) {}

TEST_F(programs, is_created_from_source) {
    char const* source = "kernel void f() {}";
    clCreateProgramWithSource sent{.context = owner, .strings = &source, .count = 1};
    performs(w.context, sent, [&] { return w.context.create_program_from_source(std::string(source)); });
    performs(w.context, sent, [&] { return w.context.create_program_from_source(source); });
    source = nullptr; // is OpenCL's to judge
    performs(w.context, sent, [&] { return w.context.create_program_from_source(source); });
#if UNIT_OPENCL >= 210
    std::vector<unsigned char> const il{3, 2, 35, 7};
    performs(w.context, clCreateProgramWithIL{owner, il.data(), 4},
             [&] { return w.context.create_program_from_il(il); });
#endif
}

TEST_F(programs, is_created_from_binaries) {
    std::vector<device_binary> const binaries{{w.device, {1, 2, 3}}, {w.device_2, {4}}};
    unsigned char const* const bytes[]{binaries[0].binary.data(), binaries[1].binary.data()};
    std::size_t const lengths[]{3, 1};
    clCreateProgramWithBinary const sent{
        .context = owner, .device_list = w.ids.data(), .lengths = lengths, .binaries = bytes, .num_devices = 2};
    performs(w.context, sent, [&] { return w.context.create_program_from_binary(binaries); });
    libnq.forget_calls();
    EXPECT_EQ(message_of<std::logic_error>([&] { w.context.create_program_from_binary({}); }),
              "Cannot create a device binary from an empty collection of binaries.");
    EXPECT_EQ(libnq.names(), names{});
}

#if UNIT_OPENCL >= 120
TEST_F(programs, is_created_of_builtin_kernels) {
    clCreateProgramWithBuiltInKernels sent{
        .context = owner, .device_list = w.ids.data(), .kernel_names = "a;b", .num_devices = 2};
    performs(w.context, sent, [&] {
        return w.context.create_program_from_builtin_kernels(w.devices, names{"a", "b"});
    });
    sent = {.context = owner, .kernel_names = ""};
    performs(w.context, sent, [&] { return w.context.create_program_from_builtin_kernels({}, {}); });
}

TEST_F(programs, is_linked) {
    _nq_cl_program* const inputs[]{raw, raw_of(w.program_2), raw};
    clLinkProgram sent{.context = owner,
                       .device_list = w.ids.data(),
                       .options = "-x",
                       .input_programs = inputs,
                       .pfn_notify = &on_program,
                       .user_data = &w,
                       .num_devices = 2,
                       .num_input_programs = 3};
    std::vector<program> const linked{w.program, w.program_2, w.program};
    performs(w.context, sent, [&] { return w.context.link_programs(w.devices, linked, "-x", &on_program, &w); });
    auto const link_nothing = [&] { return w.context.link_programs({}, {}, "", nullptr, nullptr); };
    performs(w.context, clLinkProgram{.context = owner, .options = ""}, link_nothing);
    libnq.fail(scripted::status(-11));
    EXPECT_THROW(link_nothing(), common::build_program_failure);
}
#endif

TEST_F(programs, is_built) {
    clBuildProgram const sent{raw, w.ids.data(), "-D X", &on_program, &w, 0, 2};
    performs(w.program, sent, [&] { w.program.build(w.devices, "-D X", &on_program, &w); });
    auto const build = [&] { w.program.build({}, "", nullptr, nullptr); };
    performs(w.program, clBuildProgram{.program = raw, .options = ""}, build);
    for (std::int32_t status = -72; status != 0; ++status) {
        libnq.fail(scripted::status(status));
        if (status == -11) {
            EXPECT_NO_THROW(build()) << "its status and its log tell";
        } else {
            EXPECT_ANY_THROW(build()) << status;
        }
    }
    libnq.fail(scripted::layer(-11));
    EXPECT_THROW(build(), nq::unknown_error);
}

// Whatever fails, every kernel is released exactly once; the fixture asks for that.
TEST_F(programs, creates_all_kernels_in_two_calls) {
    for (std::uint32_t const count : {0U, 1U, 3U}) {
        lists(w.program, clCreateKernelsInProgram{raw, nullptr, somewhere, 0, 0}, {raw, somewhere, nullptr, 0, count},
              count, [&] { return w.program.create_all_kernels(); });
        EXPECT_GE(until_no_allocation_fails([&] { return [&] { w.program.create_all_kernels(); }; }),
                  count == 0 ? 0U : 1U);
    }
}

#if UNIT_OPENCL >= 220
TEST_F(programs, is_specialized) {
    for (bool const constant : {false, true}) {
        performs(w.program, clSetProgramSpecializationConstant{raw, 7, 1, &constant},
                 [&] { w.program.set_specialization_constant(7, constant); });
    }
    performs(w.program, clSetProgramSpecializationConstant{raw, 0xFFFFFFFF, 4, "abcd"},
             [&] { w.program.set_specialization_constant_raw(0xFFFFFFFF, 4, "abcd"); });
    performs(w.program, clSetProgramReleaseCallback{raw, &on_program, &w},
             [&] { w.program.set_release_callback(&on_program, &w); });
}
#endif

class kernels : public members {
protected:
    _nq_cl_kernel* const raw = raw_of(w.kernel);
};

TEST_F(kernels, is_created) {
    performs(w.program, clCreateKernel{raw_of(w.program), "f"}, [&] { return w.program.create_kernel("f"); });
}

TEST_F(kernels, takes_arguments) {
    auto const sets = [&](std::uint32_t index, word size, void const* content, auto set) {
        performs(w.kernel, clSetKernelArg{raw, size, content, 0, index}, set);
    };
    auto const takes = [&](std::uint32_t index, auto& object) {
        auto* const content = raw_of(object);
        sets(index, 8, &content, [&] { w.kernel.set_argument(index, object); });
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
    takes(8, w.device_queue);
#endif
    sets(0, 8, nullptr, [&] { w.kernel.set_argument(0, nullptr); });
    sets(1, large, nullptr, [&] { w.kernel.set_argument(1, local_memory(large)); });
    sets(0xFFFFFFFF, 3, "abc", [&] { w.kernel.set_argument_raw(0xFFFFFFFF, 3, "abc"); });
}

#if UNIT_OPENCL >= 200
TEST_F(kernels, takes_shared_memory) {
    performs(w.kernel, clSetKernelArgSVMPointer{raw, &w, 0, 9}, [&] { w.kernel.set_svm_argument(9, &w); });
    std::vector<void*> const pointers{&w, nullptr};
    performs(w.kernel, clSetKernelExecInfo{raw, 16, pointers.data(), 0, 0x11B6},
             [&] { w.kernel.set_svm_pointers(pointers); });
    performs(w.kernel, clSetKernelExecInfo{raw, 0, nullptr, 0, 0x11B6}, [&] { w.kernel.set_svm_pointers({}); });
    for (std::uint32_t const enabled : {0U, 1U}) {
        performs(w.kernel, clSetKernelExecInfo{raw, 4, &enabled, 0, 0x11B7},
                 [&] { w.kernel.set_fine_grain_system_flag(enabled != 0); });
    }
}
#endif

#if UNIT_OPENCL >= 210
TEST_F(kernels, is_copied_with_its_arguments) {
    performs(w.kernel, clCloneKernel{raw}, [&] { return w.kernel.copy(); });
    performs(w.kernel, clCloneKernel{raw}, [&] { return w.kernel; });
}
#endif

// The program is read first, then the name, and nothing of the arguments.
TEST_F(kernels, is_made_afresh) {
    libnq.reply<clGetKernelInfo>(0x1194, reply_of(w.program));
    libnq.reply<clGetKernelInfo>(0x1190, scripted::text("f"));
    w.kernel.clone();
    EXPECT_EQ(libnq.names(), (names{"clGetKernelInfo", "clGetKernelInfo", "clRetainProgram", "clGetKernelInfo",
                                    "clGetKernelInfo", "clCreateKernel", "clReleaseProgram", "clReleaseKernel"}));
    EXPECT_EQ(libnq.calls()[5].inputs, scripted::inputs_of(clCreateKernel{raw_of(w.program), "f"}));
    libnq.fail<clCreateKernel>(scripted::status(-46));
    EXPECT_THROW(w.kernel.clone(), common::invalid_kernel_name);
}

} // namespace
} // namespace unit
