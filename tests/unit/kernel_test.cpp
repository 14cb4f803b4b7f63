#include "unit/members.hpp"

namespace unit {
namespace {

using namespace nq::block; // NOLINT(google-build-using-namespace)

template <class Api>
class kernels : public members<Api> {
protected:
    /// A call that sets something.
    template <class Block>
    void sets(results at, std::vector<field> const& fields, std::function<void()> const& act,
              std::vector<pointee> const& pointees = {}) {
        this->template performs<Block>(this->objects.kernel, at, fields, act, pointees);
    }
};
TYPED_TEST_SUITE(kernels, versions);

TYPED_TEST(kernels, takes_arguments) {
    auto& w = this->objects;
    auto const sets = [&](unsigned int index, word size, std::function<void()> const& act, std::string const& value) {
        auto const fields = {u8(0, w.kernel), u8(8, size), u4(28, index)};
        if (value.empty()) {
            std::vector<field> with_null(fields);
            with_null.push_back(u8(16, nullptr));
            this->template sets<clSetKernelArg>({.status = 24}, with_null, act);
        } else {
            this->template sets<clSetKernelArg>({.status = 24}, fields, act, {{"arg_value", value}});
        }
    };
    sets(
        0, 8, [&] { w.kernel.set_argument(0, nullptr); }, "");
    typename TypeParam::local_memory const local{0x123456789A};
    sets(
        1, 0x123456789A, [&] { w.kernel.set_argument(1, local); }, "");
    sets(
        2, 8, [&] { w.kernel.set_argument(2, w.buffer); }, scripted::bytes_of(word_of(w.buffer)));
    sets(
        3, 8, [&] { w.kernel.set_argument(3, w.image); }, scripted::bytes_of(word_of(w.image)));
    sets(
        4, 8, [&] { w.kernel.set_argument(4, w.sampler); }, scripted::bytes_of(word_of(w.sampler)));
    auto const emptied = std::move(w.buffer_2);
    sets(
        5, 8, [&] { w.kernel.set_argument(5, w.buffer_2); },
        scripted::bytes_of(word{0})); // NOLINT(bugprone-use-after-move)
    sets(
        0xFFFFFFFF, 3, [&] { w.kernel.set_argument_raw(0xFFFFFFFF, 3, "abc"); }, "abc");
    if constexpr (TypeParam::number >= 110) {
        sets(
            6, 8, [&] { w.kernel.set_argument(6, w.sub_buffer); }, scripted::bytes_of(word_of(w.sub_buffer)));
    }
    if constexpr (TypeParam::number >= 200) {
        sets(
            7, 8, [&] { w.kernel.set_argument(7, w.pipe); }, scripted::bytes_of(word_of(w.pipe)));
        sets(
            8, 8, [&] { w.kernel.set_argument(8, w.device_queue); }, scripted::bytes_of(word_of(w.device_queue)));
    }
}

TYPED_TEST(kernels, takes_shared_memory) {
    if constexpr (TypeParam::number >= 200) {
        auto& w = this->objects;
        this->template sets<clSetKernelArgSVMPointer>({.status = 16}, {u8(0, w.kernel), u8(8, &w), u4(20, 9)},
                                                      [&] { w.kernel.set_svm_argument(9, &w); });
        auto const execution = [&](std::uint32_t name, word size, std::function<void()> const& act,
                                   std::vector<pointee> const& value) {
            this->template sets<clSetKernelExecInfo>({.status = 24}, {u8(0, w.kernel), u8(8, size), u4(28, name)}, act,
                                                     value);
        };
        execution(0x11B6, 16,
                  [&] {
                      w.kernel.set_svm_pointers({&w, nullptr});
                  },
                  {list("param_value", {word_of(&w), 0})});
        this->template sets<clSetKernelExecInfo>({.status = 24}, {u8(0, w.kernel), u8(8, 0), u8(16, nullptr)},
                                                 [&] { w.kernel.set_svm_pointers({}); });
        for (bool const enabled : {false, true}) {
            execution(0x11B7, 4, [&] { w.kernel.set_fine_grain_system_flag(enabled); },
                      {list<std::uint32_t>("param_value", {enabled})});
        }
    }
}

TYPED_TEST(kernels, reads_what_it_is) {
    auto& w = this->objects;
    auto const reads = [&](std::uint32_t name, std::string const& reply, auto const& expected, auto read) {
        this->template reads<clGetKernelInfo>(w.kernel, name, reply, expected, read);
    };
    reads(0x1190, scripted::text("f"), "f", [&] { return w.kernel.function_name(); });
    reads(0x1191, scripted::bytes_of(0x89ABCDEF), 0x89ABCDEF, [&] { return w.kernel.num_args(); });
    this->template reads<clGetKernelInfo>(w.kernel, 0x1193, scripted::bytes_of(word_of(w.context)), w.context,
                                          [&] { return w.kernel.get_context(); });
    this->template reads<clGetKernelInfo>(w.kernel, 0x1194, scripted::bytes_of(word_of(w.program)), w.program,
                                          [&] { return w.kernel.get_program(); });
    if constexpr (TypeParam::number >= 120) {
        reads(0x1195, scripted::text("a  b "), calls{"a", "b"}, [&] { return w.kernel.attributes(); });
    }
}

TYPED_TEST(kernels, reads_its_arguments) {
    if constexpr (TypeParam::number >= 120) {
        auto& w = this->objects;
        auto const reads = [&](std::uint32_t name, std::string const& reply, auto const& expected, auto read) {
            this->template reads<clGetKernelArgInfo>(w.kernel, name, reply, expected, read, {u4(36, 5)});
        };
        constexpr word bits = 0x8000000000000001;
        reads(0x1196, scripted::bytes_of(0x119B), 0x119B, [&] { return w.kernel.argument_address_qualifier(5); });
        reads(0x1197, scripted::bytes_of(0x11A3), 0x11A3, [&] { return w.kernel.argument_access_qualifier(5); });
        reads(0x1198, scripted::text("int*"), "int*", [&] { return w.kernel.argument_type_name(5); });
        reads(0x1199, scripted::bytes_of(bits), bits, [&] { return w.kernel.argument_type_qualifier(5); });
        reads(0x119A, scripted::text("x"), "x", [&] { return w.kernel.argument_name(5); });
        this->libnq.template on<clGetKernelArgInfo>([](clGetKernelArgInfo& block) { block.status = -19; });
        EXPECT_EQ(message_of<common::kernel_arg_info_not_available>([&] { w.kernel.argument_name(0); }),
                  "Kernel argument information is not available for the kernel.");
    }
}

TYPED_TEST(kernels, reads_its_work_groups) {
    auto& w = this->objects;
    auto const reads = [&](std::uint32_t name, std::string const& reply, auto const& expected, auto read) {
        this->template reads<clGetKernelWorkGroupInfo>(w.kernel, name, reply, expected, read, {u8(8, w.device)});
    };
    constexpr word large = 0x8123456789ABCDEF;
    auto const reply = scripted::bytes_of(large);
    std::array<std::size_t, 3> const sizes{1, 2, large};
    auto const three = scripted::bytes_of(sizes);
    reads(0x11B0, reply, large, [&] { return w.kernel.max_work_group_size(w.device); });
    reads(0x11B1, three, sizes, [&] { return w.kernel.compile_work_group_size(w.device); });
    reads(0x11B2, reply, large, [&] { return w.kernel.local_mem_size(w.device); });
    if constexpr (TypeParam::number >= 110) {
        reads(0x11B3, reply, large, [&] { return w.kernel.preferred_work_group_size_multiple(w.device); });
        reads(0x11B4, reply, large, [&] { return w.kernel.private_mem_per_work_item(w.device); });
    }
    if constexpr (TypeParam::number >= 120) {
        reads(0x11B5, three, sizes, [&] { return w.kernel.max_global_work_size(w.device); });
    }
}

TYPED_TEST(kernels, reads_its_sub_groups) {
    if constexpr (TypeParam::number >= 210) {
        auto& w = this->objects;
        auto const reads = [&](std::uint32_t name, std::vector<std::size_t> const& input, auto read) {
            constexpr word large = 0x8123456789ABCDEF;
            std::vector<field> fields{u8(8, w.device), u8(16, input.size() * 8)};
            if (input.empty()) {
                fields.push_back(u8(24, nullptr));
            }
            this->template reads<clGetKernelSubGroupInfo>(w.kernel, name, scripted::bytes_of(large), large, read,
                                                          fields);
            this->forget();
            read();
            auto const call = this->libnq.template last_call<clGetKernelSubGroupInfo>();
            EXPECT_EQ(input, input.empty() ? input : call.template array<std::size_t>("input_value"));
        };
        auto const of_ranges = [&](auto const& size) {
            std::vector<std::size_t> const input(size.begin(), size.end());
            reads(0x2033, input, [&] { return w.kernel.get_max_sub_group_size_for_nd_range(w.device, size); });
            reads(0x2034, input, [&] { return w.kernel.get_sub_group_count_for_nd_range(w.device, size); });
        };
        of_ranges(std::array<std::size_t, 1>{4});
        of_ranges(std::array<std::size_t, 2>{4, 5});
        of_ranges(std::array<std::size_t, 3>{4, 5, 6});
        reads(0x11B8, {77}, [&] { return w.kernel.get_local_size_for_sub_group_count(w.device, 77); });
        reads(0x11B9, {}, [&] { return w.kernel.get_max_num_sub_groups(w.device); });
        reads(0x11BA, {}, [&] { return w.kernel.compile_num_sub_groups(w.device); });
    }
}

// The program is read first, then the name, and nothing of the arguments.
TYPED_TEST(kernels, is_made_afresh) {
    auto& w = this->objects;
    this->libnq.template reply<clGetKernelInfo>(0x1194, scripted::bytes_of(word_of(w.program)));
    this->libnq.template reply<clGetKernelInfo>(0x1190, scripted::text("f"));
    this->forget();
    w.kernel.clone();
    EXPECT_EQ(this->libnq.names(), (calls{"clGetKernelInfo", "clGetKernelInfo", "clRetainProgram", "clGetKernelInfo",
                                          "clGetKernelInfo", "clCreateKernel", "clReleaseProgram", "clReleaseKernel"}));
    expect_fields(this->libnq.template last_call<clCreateKernel>(), {u8(0, w.program)});
    EXPECT_EQ(this->libnq.template last_call<clCreateKernel>().bytes("kernel_name"), "f");
    this->libnq.template fail<clCreateKernel>(scripted::status(-46));
    EXPECT_THROW(w.kernel.clone(), common::invalid_kernel_name);
}

TYPED_TEST(kernels, is_copied_with_its_arguments) {
    using copied = typename TypeParam::kernel;
    constexpr bool copies = TypeParam::number >= 210;
    EXPECT_EQ(std::is_copy_constructible_v<copied>, copies);
    EXPECT_EQ(std::is_copy_assignable_v<copied>, copies);
    if constexpr (copies) {
        auto& w = this->objects;
        auto const clones = [&](auto copy) {
            this->template performs<clCloneKernel>(w.kernel, {.status = 16, .object = 8}, {u8(0, w.kernel)}, copy);
        };
        clones([&] { return w.kernel.copy(); });
        clones([&] { return w.kernel; });

        auto other = w.template own<copied>();
        this->forget();
        other = w.kernel; // shares the kernel and its arguments
        EXPECT_EQ(this->libnq.names(), (calls{"clReleaseKernel", "clRetainKernel"}));
        EXPECT_TRUE(other == w.kernel);
        auto const& same = other;
        other = same;
        EXPECT_EQ(this->libnq.calls().size(), 2U);
    }
}

} // namespace
} // namespace unit
