// What programs are built from, with which options, and what failures say.

#include "support.hpp"

#include <vorn/mero/easy.hpp>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>

namespace real {
namespace {

namespace ez = vorn::mero::easy;

constexpr char adds_n[] = "kernel void f(global int* v) { v[get_global_id(0)] += N; }";

/// What the kernel f makes of one number.
template <int Version>
int result_of(ez::basic_session<Version> const& gpu, ez::basic_program<Version> const& program, int number = 1) {
    auto values = gpu.array(std::vector<int>{number});
    program["f"](ez::range(1), values);
    return values.read()[0];
}

/// A folder with a blank in its name, and with files, which goes with the object.
struct folder {
    folder() { std::filesystem::create_directories(path); }
    ~folder() { std::filesystem::remove_all(path); }

    std::string file(std::string const& name, std::string const& text) const {
        std::ofstream(path / name) << text;
        return path / name;
    }

    std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("vorn-mero files." + std::to_string(getpid()));
};

SCENARIO(easy_builds_from_everything, "easy builds", 100) {
    auto const gpu = ez::basic_session<Api::number>(b.device, b.context);
    auto const n = [](int value) { return ez::build_options().define("N", value); };
    auto const built = gpu.build(adds_n, n(16));
    EXPECT_EQ(result_of(gpu, built), 17);
    EXPECT_EQ(result_of(gpu, gpu.build_binary(built.binary())), 17);
    EXPECT_EQ(result_of(gpu, gpu.build({"#define N 5", adds_n, "// no end of line"}, "")), 6);
    EXPECT_EQ(result_of(gpu, gpu.build({"#define N 8", adds_n})), 9);
    EXPECT_EQ(result_of(gpu, gpu.build({std::string("#define N 8"), adds_n})), 9);
    EXPECT_EQ(result_of(gpu, gpu.build(adds_n, "-DN=7")), 8);
    static constexpr ez::embedded_kernel kernels[] = {{"f", 1}};
    static constexpr ez::embedded text{"adds.cl", adds_n, kernels, {}, "-DN=M"};
    static_assert(text.find("f")->arguments == 1 && text.find("g") == nullptr);
    EXPECT_EQ(result_of(gpu, gpu.build(text, "-DM=3")), 4);

    folder const files;
    auto const constants = files.file("constants.cl", "#define N (M + 1)\n");
    auto const source = files.file("adds.cl", adds_n);
    EXPECT_EQ(result_of(gpu, gpu.build_file({constants, source}, "-D M=1")), 3);
    EXPECT_EQ(refusal<ez::file_error>([&] { gpu.build_file("no/such.cl"); }),
              "Cannot read the file 'no/such.cl': No such file or directory");
    auto const broken = files.file("broken.cl", "kernel void f( {");
    EXPECT_EQ(refusal<ez::build_failure>([&] { gpu.build_file(broken); }).find("'" + broken + "' does not build for "),
              0U);
    try {
        gpu.build("kernel void f( {", "-DX");
        ADD_FAILURE() << "nothing is thrown";
    } catch (ez::build_failure const& failed) {
        ASSERT_EQ(failed.reports().size(), 1U);
        EXPECT_EQ(failed.device(), b.device.name());
        EXPECT_NE(failed.log().find("error"), std::string::npos) << failed.log();
        EXPECT_NE(std::string(failed.what()).find(failed.log()), std::string::npos);
    }
    EXPECT_NE(refusal<ez::build_failure>([&] { gpu.build(adds_n, "-DN=1 --no-such-option"); }).find("no-such-option"),
              std::string::npos);
}

SCENARIO(easy_includes_beside_the_file, "easy builds", 100) {
    b.leave_out("pocl", "finds no folder with a blank");
    auto const gpu = ez::basic_session<Api::number>(b.device, b.context);
    folder const files;
    files.file("constants.cl", "#define N (M + 1)\n");
    auto const all = files.file("all.cl", std::string("#include \"constants.cl\"\n") + adds_n);
    EXPECT_EQ(result_of(gpu, gpu.build_file(all, "-DM=8")), 10);
}

SCENARIO(easy_refuses_damaged_binaries, "easy builds", 100) {
    b.leave_out("rusticl", "a damaged binary ends the process");
    auto const gpu = ez::basic_session<Api::number>(b.device, b.context);
    EXPECT_NE(refusal<ez::build_failure>([&] { gpu.build_binary({1, 2, 3}); }), "nothing");
}

SCENARIO(easy_defines_exact_values, "easy builds", 100) {
    auto const gpu = ez::basic_session<Api::number>(b.device, b.context);
    std::vector<float> const exact{
        0.1F, -1.5e-30F, 16777217.0F, 3.0F, std::numeric_limits<float>::max(), -std::numeric_limits<float>::infinity()};
    auto defined = ez::build_options()
                       .define("LEAST", std::numeric_limits<std::int32_t>::min())
                       .define("NONE", std::numeric_limits<float>::quiet_NaN());
    std::string source = "kernel void f(global float* v) { v[0] = LEAST == -2147483647 - 1 && isnan(NONE);";
    for (std::size_t i = 0; i != exact.size(); ++i) {
        std::string const number = std::to_string(i);
        defined.define("X" + number, exact[i]);
        source += "v[" + number + " + 1] = sizeof(X" + number + ") == 4 ? X" + number + " : 0;";
    }
    auto values = gpu.template array<float>(exact.size() + 1);
    gpu.build(source + "}", defined)["f"](ez::range(1), values);
    auto const got = values.read();
    EXPECT_EQ(got[0], 1.0F);
    EXPECT_EQ(std::memcmp(got.data() + 1, exact.data(), exact.size() * sizeof(float)), 0) << defined.text();
    auto const options = ez::build_options()
                             .define("A", "1 + 2")
                             .define("B")
                             .define("D", "")
                             .define("C", std::numeric_limits<std::uint64_t>::max())
                             .fast_math()
                             .warnings_as_errors()
                             .standard("CL1.2")
                             .add("-cl-mad-enable");
    EXPECT_EQ(options.text(),
              "-D \"A=1 + 2\" -DB -DD= -DC=18446744073709551615UL -cl-fast-relaxed-math -Werror -cl-std=CL1.2 "
              "-cl-mad-enable");
    EXPECT_EQ(result_of(gpu, gpu.build("kernel void f(global int* v) { v[0] = A * B + (C == ~0UL) D; }", options)), 4);
    EXPECT_EQ(ez::build_options().include("a b").include("c").debug().text(), "-I\"a b\" -Ic -g");
    for (auto const& wrong : {"two words", "", "X=1"}) {
        EXPECT_NE(refusal<ez::option_error>([&] { ez::build_options().define(wrong, 1); }), "nothing") << wrong;
    }
    EXPECT_EQ(refusal<ez::option_error>([] { ez::build_options().define("X", "\"text\""); }),
              "'\"text\"' cannot be the value of a macro in the options of a build: put it into the source instead");
}

SCENARIO(easy_compiles_and_links, "easy links", 120) {
    auto const gpu = ez::basic_session<Api::number>(b.device, b.context);
    auto const whole =
        gpu.compile("#include \"n.h\"\n#include \"more/sign.h\"\nkernel void f(global int* v) { v[0] += SIGN N; }",
                    "-DM=4", {{"n.h", "#define N (M * 10)"}, {"more/sign.h", "#define SIGN -"}});
    EXPECT_EQ(result_of(gpu, gpu.link({whole})), -39);
    EXPECT_NE(
        refusal<ez::build_failure>([&] { gpu.compile("int f( {"); }).find("The part of a program does not build for "),
        std::string::npos);
    b.leave_out("rusticl", "gives the parts different SPIR-V versions");
    auto const caller = gpu.compile("int twice(int); kernel void f(global int* v) { v[0] = twice(v[0]); }");
    auto const callee = gpu.compile("int twice(int value) { return 2 * value; }");
    EXPECT_EQ(result_of(gpu, gpu.link({caller, callee}), 4), 8);
    EXPECT_EQ(result_of(gpu, gpu.link({caller, gpu.link_library({callee})}), 5), 10);
}

SCENARIO(easy_links_nothing_incomplete, "easy links", 120) {
    b.leave_out("oclgrind", "links without a function that is called");
    auto const gpu = ez::basic_session<Api::number>(b.device, b.context);
    auto const lacking = gpu.compile("void missing(void); kernel void all(void) { missing(); }");
    EXPECT_NE(refusal<ez::build_failure>([&] { gpu.link({lacking}); }), "nothing");
}

SCENARIO(easy_logs_of_all_devices, "sub-devices", 120, 120) {
    auto devices = b.device.partition_equally(1);
    devices.resize(std::min<std::size_t>(devices.size(), 2), b.device);
    auto context = opencl_1_2::create_context({}, devices, nullptr, nullptr);
    auto broken = context.create_program_from_source("kernel void f( {");
    try {
        ez::build<120>(broken, devices, "-DX");
        ADD_FAILURE() << "nothing is thrown";
    } catch (ez::build_failure const& failed) {
        ASSERT_EQ(failed.reports().size(), devices.size());
        for (auto const& [device, log] : failed.reports()) {
            EXPECT_EQ(device, b.device.name());
            EXPECT_NE(log.find("error"), std::string::npos) << log;
        }
    }
    auto good = context.create_program_from_source(adds_n);
    ez::build<120>(good, devices, "-DN=1");
}

SCENARIO(easy_builds_intermediate_language, "easy intermediate language", 210) {
    auto const gpu = ez::basic_session<Api::number>(b.device, b.context);
    auto const il = intermediate_language();
    ez::embedded const both{"adds.cl", "kernel void f(global int* v) { v[0] = 9; }", {}, {il.data(), il.size()}};
    ez::embedded const alone{"adds.spv", "", {}, {il.data(), il.size()}};
    if (b.device.il_version().empty()) {
        EXPECT_NE(
            refusal<ez::unsupported>([&] { gpu.build(alone); }).find(" takes no intermediate language: build the "),
            std::string::npos);
        EXPECT_EQ(result_of(gpu, gpu.build(both)), 9);
        return;
    }
    EXPECT_EQ(result_of(gpu, gpu.build(alone)), 101);
    EXPECT_EQ(result_of(gpu, gpu.build(both)), 101);
    EXPECT_EQ(result_of(gpu, gpu.build(both, "-DN=1")), 9);
    EXPECT_EQ(refusal<ez::unsupported>([&] { ez::basic_session<200>("").build(alone); }),
              "'adds.spv' has no source, and OpenCL takes SPIR-V since 2.1: use ez::basic_session<210>");
}

} // namespace
} // namespace real
