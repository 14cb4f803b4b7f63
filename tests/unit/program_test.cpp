#include "unit/allocations.hpp"
#include "unit/members.hpp"

namespace unit {
namespace {

using namespace nq::block; // NOLINT(google-build-using-namespace)

template <class Api>
class programs : public members<Api> {};
TYPED_TEST_SUITE(programs, versions);

void on_program(_nq_cl_program*, void*) {}

TYPED_TEST(programs, is_built) {
    auto& w = this->objects;
    this->template performs<clBuildProgram>(
        w.program, {.status = 40}, {u8(0, w.program), u8(24, &on_program), u8(32, &w), u4(44, 2)},
        [&] { w.program.build(w.devices, "-D X", &on_program, &w); },
        {list("device_list", {word_of(w.device), word_of(w.device_2)}), {"options", "-D X"}});
    auto const build = [&] { w.program.build({}, "", nullptr, nullptr); };
    this->template performs<clBuildProgram>(
        w.program, {.status = 40}, {u8(0, w.program), u8(8, nullptr), u8(24, nullptr), u8(32, nullptr), u4(44, 0)},
        build, {{"options", ""}});
    for (std::int32_t status = -72; status != 0; ++status) {
        this->libnq.template fail<clBuildProgram>(scripted::status(status));
        if (status == -11) {
            EXPECT_NO_THROW(build()) << "its status and its log tell";
        } else {
            EXPECT_ANY_THROW(build()) << status;
        }
    }
    this->libnq.template fail<clBuildProgram>(scripted::layer(-11));
    EXPECT_THROW(build(), nq::unknown_error);
}

TYPED_TEST(programs, reads_what_it_is) {
    auto& w = this->objects;
    auto const reads = [&](std::uint32_t name, std::string const& reply, auto const& expected, auto read) {
        this->template reads<clGetProgramInfo>(w.program, name, reply, expected, read);
    };
    this->template reads<clGetProgramInfo>(w.program, 0x1161, scripted::bytes_of(word_of(w.context)), w.context,
                                           [&] { return w.program.get_context(); });
    this->template lists_devices<clGetProgramInfo>(w.program, 0x1163, [&] { return w.program.get_devices(); });
    reads(0x1164, scripted::text("text"), "text", [&] { return w.program.source_code(); });
    if constexpr (TypeParam::number >= 120) {
        constexpr word many = 0x8000000000000001;
        reads(0x1167, scripted::bytes_of(many), many, [&] { return w.program.num_kernels(); });
        reads(0x1168, scripted::text("a;b"), calls{"a", "b"}, [&] { return w.program.kernel_names(); });
    }
    if constexpr (TypeParam::number >= 210) {
        reads(0x1169, "\3\2#\7\1", std::vector<unsigned char>{3, 2, 35, 7, 1}, [&] { return w.program.il(); });
    }
    if constexpr (TypeParam::number >= 220) {
        for (std::uint32_t const answer : {0U, 1U, 256U}) {
            auto const reply = scripted::bytes_of(answer);
            reads(0x116A, reply, answer != 0, [&] { return w.program.global_constructors_present(); });
            reads(0x116B, reply, answer != 0, [&] { return w.program.global_destructors_present(); });
        }
    }
}

TYPED_TEST(programs, reads_its_builds) {
    auto& w = this->objects;
    auto const reads = [&](std::uint32_t name, std::string const& reply, auto const& expected, auto read) {
        this->template reads<clGetProgramBuildInfo>(w.program, name, reply, expected, read, {u8(8, w.device)});
    };
    for (std::int32_t const status : {0, -1, -2, -3}) {
        reads(0x1181, scripted::bytes_of(status), status, [&] { return w.program.build_status(w.device); });
    }
    reads(0x1182, scripted::text("-D X"), "-D X", [&] { return w.program.build_options(w.device); });
    reads(0x1183, scripted::text("a log"), "a log", [&] { return w.program.build_log(w.device); });
    if constexpr (TypeParam::number >= 120) {
        reads(0x1184, scripted::bytes_of(0x40E1), 0x40E1, [&] { return w.program.binary_type(w.device); });
    }
    if constexpr (TypeParam::number >= 200) {
        constexpr word size = 0x8000000000000001;
        reads(0x1185, scripted::bytes_of(size), size,
              [&] { return w.program.build_global_variable_total_size(w.device); });
    }
}

TYPED_TEST(programs, reads_binaries_straight_into_their_vectors) {
    auto& w = this->objects;
    auto const devices = scripted::bytes_of(word_of(w.device), word_of(w.device_2));
    this->libnq.template reply<clGetProgramInfo>(0x1163, devices);
    this->libnq.template reply<clGetProgramInfo>(0x1165, scripted::bytes_of(word{3}, word{0}));
    std::array<unsigned char*, 2> places{};
    this->libnq.template on<clGetProgramInfo>([&places](clGetProgramInfo& block) {
        if (block.param_name != 0x1166) {
            return false;
        }
        std::memcpy(places.data(), block.param_value, sizeof places);
        std::memcpy(places[0], "\1\2\3", 3);
        return true;
    });
    this->forget();
    {
        auto const binaries = w.program.binaries();
        ASSERT_EQ(binaries.size(), 2U);
        EXPECT_EQ(binaries[0].binary, (std::vector<unsigned char>{1, 2, 3}));
        EXPECT_EQ(binaries[0].binary.data(), places[0]);
        EXPECT_EQ(binaries[1].binary.size(), 0U);
        EXPECT_EQ(word_of(binaries[1].device), word_of(w.device_2));
        auto const made = this->libnq.template last_call<clGetProgramInfo>();
        expect_fields(made, {u8(0, w.program), u4(36, 0x1166), u8(8, 16), u8(24, nullptr)});
        EXPECT_EQ(this->libnq.template count<clGetProgramInfo>(), 5U) << "two lists of two calls, and the binaries";
    }
    until_no_allocation_fails([&] { return [&] { w.program.binaries(); }; });
    this->libnq.template reply<clGetProgramInfo>(0x1165, scripted::bytes_of(word{3}));
    EXPECT_EQ(message_of<common::bad_implementation>([&] { w.program.binaries(); }),
              "The number of binary sizes returned should be equal to the number of devices.");
}

TYPED_TEST(programs, creates_a_kernel) {
    auto& w = this->objects;
    this->template performs<clCreateKernel>(w.program, {.status = 24, .object = 16}, {u8(0, w.program)},
                                            [&] { return w.program.create_kernel("f"); }, {{"kernel_name", "f"}});
}

// Whatever fails, every kernel is released exactly once; the fixture asks for that.
TYPED_TEST(programs, creates_all_kernels_in_two_calls) {
    auto& w = this->objects;
    for (std::uint32_t const count : {0U, 1U, 3U}) {
        this->libnq.template list<clCreateKernelsInProgram>(count);
        this->forget();
        EXPECT_EQ(w.program.create_all_kernels().size(), count);
        this->expect_listing("clCreateKernelsInProgram", handle_of(w.program), {u8(0, w.program)}, {28, 8, 16}, count,
                             calls(count, "clReleaseKernel"));
        EXPECT_GE(until_no_allocation_fails([&] { return [&] { w.program.create_all_kernels(); }; }),
                  count == 0 ? 0U : 1U);
    }
    for (unsigned const n : {1U, 2U}) {
        this->libnq.template fail<clCreateKernelsInProgram>(scripted::status(-45), n);
        EXPECT_THROW(w.program.create_all_kernels(), common::invalid_program_executable);
    }
}

TYPED_TEST(programs, is_specialized) {
    if constexpr (TypeParam::number >= 220) {
        auto& w = this->objects;
        for (bool const constant : {false, true}) {
            this->template performs<clSetProgramSpecializationConstant>(
                w.program, {.status = 32}, {u8(0, w.program), u4(8, 7), u8(16, 1)},
                [&] { w.program.set_specialization_constant(7, constant); },
                {{"spec_value", std::string(1, constant ? '\1' : '\0')}});
        }
        this->template performs<clSetProgramSpecializationConstant>(
            w.program, {.status = 32}, {u8(0, w.program), u4(8, 0xFFFFFFFF), u8(16, 4), u8(24, "abcd")},
            [&] { w.program.set_specialization_constant_raw(0xFFFFFFFF, 4, "abcd"); });
        this->template performs<clSetProgramReleaseCallback>(w.program, {.status = 24},
                                                             {u8(0, w.program), u8(8, &on_program), u8(16, &w)},
                                                             [&] { w.program.set_release_callback(&on_program, &w); });
    }
}

} // namespace
} // namespace unit
