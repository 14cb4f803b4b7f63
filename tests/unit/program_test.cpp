#include "unit/members.hpp"

namespace unit {

struct programs : members {
    static void on_program(_nq_cl_program*, void*) {}

    api::program& p = w.program;
    _nq_cl_program* const raw = raw_of(p);
};

TEST_F(programs, is_built) {
    performs(p, clBuildProgram{raw, w.ids.data(), "-D X", &on_program, &w, 0, 2},
             [&] { p.build(w.devices, "-D X", &on_program, &w); });
    auto const build = [&] { p.build({}, "", nullptr, nullptr); };
    performs(p, clBuildProgram{.program = raw, .options = ""}, build);
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
TEST_F(programs, creates_kernels) {
    performs(p, clCreateKernel{raw, "f"}, [&] { return p.create_kernel("f"); });
    for (std::uint32_t const count : {0U, 1U, 3U}) {
        lists(p, clCreateKernelsInProgram{raw, nullptr, somewhere, 0, 0}, {raw, somewhere, nullptr, 0, count}, count,
              [&] { return p.create_all_kernels(); });
    }
}

#if UNIT_OPENCL >= 220
TEST_F(programs, is_specialized) {
    for (bool const constant : {false, true}) {
        performs(p, clSetProgramSpecializationConstant{raw, 7, 1, &constant},
                 [&] { p.set_specialization_constant(7, constant); });
    }
    performs(p, clSetProgramSpecializationConstant{raw, 0xFFFFFFFF, 4, "abcd"},
             [&] { p.set_specialization_constant_raw(0xFFFFFFFF, 4, "abcd"); });
    performs(p, clSetProgramReleaseCallback{raw, &on_program, &w}, [&] { p.set_release_callback(&on_program, &w); });
}
#endif

TEST_F(programs, tells) {
    reads(p, 0x1161, w.context, &program::get_context);
    reads(p, 0x1163, w.devices, &program::get_devices);
    reads(p, 0x1164, "text", &program::source_code);
#if UNIT_OPENCL >= 120
    reads(p, 0x1167, large, &program::num_kernels);
    reads(p, 0x1168, names{"a", "b"}, &program::kernel_names, reply_of("a;b"));
#endif
#if UNIT_OPENCL >= 210
    reads(p, 0x1169, std::vector<unsigned char>{3, 2, 35, 7, 1}, &program::il);
#endif
#if UNIT_OPENCL >= 220
    reads_bool(p, 0x116A, &program::global_constructors_present, &program::global_destructors_present);
#endif
}

TEST_F(programs, tells_of_builds) {
    auto reads = reader(p, clGetProgramBuildInfo{.program = raw, .device = raw_of(w.device)}, std::cref(w.device));
    for (std::int32_t const status : {0, -1, -2, -3}) {
        reads(0x1181, status, &program::build_status);
    }
    reads(0x1182, "-D X", &program::build_options);
    reads(0x1183, "a log", &program::build_log);
#if UNIT_OPENCL >= 120
    reads(0x1184, number, &program::binary_type);
#endif
#if UNIT_OPENCL >= 200
    reads(0x1185, large, &program::build_global_variable_total_size);
#endif
}

TEST_F(programs, reads_binaries_straight_into_their_vectors) {
    libnq.reply<clGetProgramInfo>(0x1163, reply_of(w.ids));
    libnq.reply<clGetProgramInfo>(0x1165, reply_of(words{3, 0}));
    std::array<unsigned char*, 2> places{};
    libnq.on<clGetProgramInfo>([&](clGetProgramInfo& block) {
        if (block.param_name != 0x1166) {
            return false;
        }
        clGetProgramInfo const expected{raw, 16, somewhere, somewhere, 0, 0x1166};
        EXPECT_EQ(scripted::inputs_of(block), scripted::inputs_of(expected));
        std::memcpy(places.data(), block.param_value, sizeof places);
        std::memcpy(places[0], "\1\2\3", 3);
        *block.param_value_size_ret = 1; // nobody reads it
        return true;
    });
    {
        auto const binaries = p.binaries();
        ASSERT_EQ(binaries.size(), 2U);
        EXPECT_EQ(binaries[0].binary, (std::vector<unsigned char>{1, 2, 3}));
        EXPECT_EQ(binaries[0].binary.data(), places[0]);
        EXPECT_EQ(binaries[1].binary.size(), 0U);
        EXPECT_EQ(raw_of(binaries[1].device), w.ids[1]);
        std::size_t const retained = counted<device> ? 2 : 0;
        EXPECT_EQ(libnq.calls.size(), 5 + retained) << "two lists of two calls, and the binaries";
    }
    withstands([&] { return p.binaries(); });
    libnq.reply<clGetProgramInfo>(0x1165, reply_of(words{3}));
    throws<common::bad_implementation>("The number of binary sizes returned should be equal to the number of devices.",
                                       [&] { p.binaries(); });
}

} // namespace unit
