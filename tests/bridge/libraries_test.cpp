#include <nq/commands.hpp>
#include <nq/nq.hpp>
#include <vorn/mero/easy.hpp>
#include <vorn/mero/internal/logger.hpp>
#include <vorn/mero/opencl.hpp>

#include <CL/cl.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <set>
#include <spdlog/spdlog.h>
#include <string>
#include <sys/auxv.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace vorn::mero;
using names = std::set<std::string>;

// What the processes do that the tests start.

template <class Device>
nq_call_handle* handle_of(Device const& device) {
    return internal::owner_access::call_handle(device).get();
}

template <class Block>
Block perform(nq_call_handle* handle, std::uint32_t id, Block block) {
    EXPECT_EQ(nq_call_capability(handle, id, &block, nullptr), 0);
    return block;
}

/// What ICD loaders answer for a null first object, which the block's fields name; CL_SUCCESS without one.
template <class Block>
constexpr cl_int code_without_object() {
    return requires(Block b) { b.context; }
    ? CL_INVALID_CONTEXT : requires(Block b) { b.command_queue; }
    ? CL_INVALID_COMMAND_QUEUE : requires(Block b) { b.program; }
    ? CL_INVALID_PROGRAM : requires(Block b) { b.kernel; }
    ? CL_INVALID_KERNEL : requires(Block b) { b.source_kernel; }
    ? CL_INVALID_KERNEL : requires(Block b) { b.event; }
    ? CL_INVALID_EVENT : requires(Block b) { b.sampler; }
    ? CL_INVALID_SAMPLER : requires(Block b) { b.memobj; }
    ? CL_INVALID_MEM_OBJECT : requires(Block b) { b.image; }
    ? CL_INVALID_MEM_OBJECT : requires(Block b) { b.pipe; }
    ? CL_INVALID_MEM_OBJECT : requires(Block b) { b.buffer; }
    ? CL_INVALID_MEM_OBJECT : requires(Block b) { b.device; }
    ? CL_INVALID_DEVICE : requires(Block b) { b.in_device; }
    ? CL_INVALID_DEVICE : CL_SUCCESS;
}

template <class... Blocks>
void refuse_null_objects(nq_call_handle* handle, nq::command_list<Blocks...>) {
    std::uint32_t id = 0;
    auto const refuse = [&]<class Block>(Block block) {
        block = perform(handle, ++id, block);
        if constexpr (requires { block.status; } && code_without_object<Block>() != CL_SUCCESS) {
            EXPECT_EQ(block.status, code_without_object<Block>()) << __PRETTY_FUNCTION__;
        } else if constexpr (requires { block.error_code; } && code_without_object<Block>() != CL_SUCCESS) {
            EXPECT_EQ(block.error_code, code_without_object<Block>()) << __PRETTY_FUNCTION__;
            EXPECT_EQ(block.result, nullptr);
        }
    };
    (refuse(Blocks{}), ...);
}

/// The names of the platforms, one for each device and version; every command without its object is refused.
template <int... Versions>
void list(std::integer_sequence<int, Versions...>) {
    auto const list_version = []<class Api>(Api) {
        for (auto const& device : Api::get_all_devices()) {
            std::cout << device.get_platform().name() << std::endl;
            refuse_null_objects(handle_of(device), nq::commands<Api::capability>{});
        }
    };
    (list_version(api<Versions>{}), ...);
}

template <int... Versions>
void use(std::integer_sequence<int, Versions...>) {
    auto const use_version = []<class Api>(Api) {
        for (auto const& device : Api::get_all_devices()) {
            easy::basic_session<Api::number> session(device);
            auto program = session.build("kernel void f(global int* a) { a[get_global_id(0)] += 1; }");
            auto values = session.array(std::vector<int>{1, 2, 3, 4});
            program["f"](easy::range(4), values);
            EXPECT_EQ(values.read(), (std::vector<int>{2, 3, 4, 5})) << device.name();
        }
    };
    (use_version(api<Versions>{}), ...);
}

void overrun() {
    easy::session session("Oclgrind");
    auto values = session.array(std::vector<int>{1, 2, 3, 4});
    session.build("kernel void f(global int* a) { a[get_global_id(0) + 1] = 1; }")["f"](easy::range(4), values).wait();
}

/// The platforms that have an extension function, looked up in OpenCL 1.0 and 1.1.
void look_up(char const* name) {
    for (auto const& device : opencl_1_0::get_all_devices()) {
        void* const found = opencl_1_0::get_extension_function_address(opencl_1_0::raw::get_call_handle(device), name);
        std::cout << (found != nullptr ? device.get_platform().name() + "\n" : "");
    }
}

/// Discovers devices and logs; says whether the program's spdlog knows the logger and the default loader was taken.
void log() {
    std::uint64_t count = 0;
    EXPECT_EQ(nq_get_root_devices(0, nullptr, &count, nullptr), 0);
    auto* const logger = vorn::mero::internal::get_mero_logger();
    logger->error("logged");
    std::cout << "registered=" << (spdlog::get("mero").get() == logger) << std::endl;
    std::cout << "default=" << (dlopen("libOpenCL.so.1", RTLD_NOW | RTLD_NOLOAD) != nullptr) << std::endl;
}

int perform_mode(std::string const& mode, char const* argument) {
    EXPECT_NE(dlopen(LOGGER, RTLD_NOW | RTLD_NOLOAD), nullptr) << "this program uses spdlog, so it is loaded early";
    using versions = std::integer_sequence<int, 100, 110, 120, 200, 210, 220>;
    if (mode == "list" || mode == "use") {
        list(versions{});
    }
    if (mode == "use") {
        use(versions{});
    } else if (mode == "overrun") {
        overrun();
    } else if (mode == "look_up") {
        look_up(argument);
    } else if (mode == "log") {
        log();
    } else if (mode == "secure") {
        return getauxval(AT_SECURE) != 0 ? 0 : 1;
    }
    return testing::UnitTest::GetInstance()->Failed() ? 1 : 0;
}

// The tests.

std::string const self = fs::read_symlink("/proc/self/exe").string();

std::string output_of(std::string const& command) {
    std::string output;
    FILE* const child = popen(("timeout 100 env " + command + " 2>&1").c_str(), "r");
    for (int next = std::fgetc(child); next != EOF; next = std::fgetc(child)) {
        output += static_cast<char>(next);
    }
    EXPECT_EQ(pclose(child), 0) << command << "\n" << output;
    return output;
}

std::string run(std::string const& environment, std::string const& mode) {
    return output_of(environment + " '" + self + "' " + mode);
}

names lines_of(std::string const& text) {
    std::istringstream stream(text);
    names lines;
    for (std::string line; std::getline(stream, line);) {
        lines.insert(line);
    }
    return lines;
}

/// The libraries of the implementations that the loader is told of, and Oclgrind's for use without a loader.
std::vector<std::string> implementations() {
    char const* const setting = std::getenv("OCL_ICD_VENDORS");
    std::vector<std::string> libraries;
    for (auto const& entry : fs::directory_iterator(setting != nullptr ? setting : "/etc/OpenCL/vendors")) {
        std::ifstream stream(entry.path());
        std::getline(stream, libraries.emplace_back());
        if (auto const suffix = libraries.back().find("-icd.so"); suffix != std::string::npos) {
            libraries.push_back(std::string(libraries.back()).replace(suffix, std::string::npos, ".so"));
        }
    }
    return libraries;
}

TEST(libraries, an_implementation_works_without_a_loader) {
    names alone;
    for (std::string const& library : implementations()) {
        names const found = lines_of(run("NQ_BRIDGE_OPENCL=" + library, "use"));
        EXPECT_LE(found.size(), 1U) << library << " is not the only one";
        alone.insert(found.begin(), found.end());
    }
    EXPECT_EQ(alone, lines_of(run("", "use")));
}

TEST(libraries, an_implementation_without_a_dispatch_table_is_not_looked_into) {
    EXPECT_EQ(lines_of(run("NQ_BRIDGE_OPENCL=" PLAIN, "list")), names{"Plain"});
    std::string const verbose = "NQ_BRIDGE_VERBOSE=1 OCL_ICD_VENDORS=libnone.so"; // which only a loader would look for
    EXPECT_EQ(lines_of(run(verbose + " NQ_BRIDGE_OPENCL=" PLAIN, "list")), names{"Plain"});
    EXPECT_EQ(run("NQ_BRIDGE_OPENCL=" EMPTY, "list"), "");
}

TEST(libraries, a_preloaded_one_comes_after_the_named_one_and_before_the_loader) {
    EXPECT_EQ(lines_of(run("LD_PRELOAD=" PLAIN, "list")), names{"Plain"});
    EXPECT_EQ(run("LD_PRELOAD=" PLAIN " NQ_BRIDGE_OPENCL=libnone.so", "list"), "");
    for (std::string const host :
         {HOST, EXPORTING_HOST}) { // neither a plugin's library nor the program's own functions
        EXPECT_EQ(output_of("OCL_ICD_VENDORS=" NO_VENDORS " '" + host + "' " PLUGIN), "devices=0\n");
    }
}

TEST(libraries, oclgrind_watches_a_program) {
    if (std::system("command -v oclgrind >/dev/null") != 0) {
        GTEST_SKIP() << "oclgrind is not installed";
    }
    std::string const wrapper = "oclgrind";
    EXPECT_EQ(lines_of(run(wrapper, "use")), names{"Oclgrind"});
    std::vector<std::string> environments{wrapper};
    for (std::string const& library : implementations()) {
        if (library.find("oclgrind") != std::string::npos) {
            environments.push_back("NQ_BRIDGE_OPENCL=" + library);
        }
    }
    EXPECT_GT(environments.size(), 1U);
    for (std::string const& environment : environments) {
        std::string const told = run(environment, "overrun");
        EXPECT_NE(told.find("Invalid write of size 4 at global memory address"), std::string::npos) << told;
    }
}

TEST(libraries, lookups_find_the_functions_of_the_loader_but_of_no_other_vendor) {
    names const all = lines_of(run("", "list"));
    void* const loader = dlopen("libOpenCL.so.1", RTLD_NOW | RTLD_LOCAL);
    auto* const look_up = reinterpret_cast<void* (*)(char const*)>(dlsym(loader, "clGetExtensionFunctionAddress"));
    bool const says_who_it_is = look_up("clGetICDLoaderInfoOCLICD") != nullptr;
    EXPECT_EQ(lines_of(run("", "look_up clGetICDLoaderInfoOCLICD")), says_who_it_is ? all : names{});
    names const intel = lines_of(run("", "look_up clHostMemAllocINTEL"));
    EXPECT_EQ(intel, all.contains("Intel(R) OpenCL") ? names{"Intel(R) OpenCL"} : names{});
    EXPECT_EQ(run("", "look_up clNoSuchFunction"), "");
}

TEST(libraries, reasons_are_told_to_those_who_say_yes) {
    for (std::string const value : {"1", "true", "YES", "On"}) {
        EXPECT_TRUE(run("NQ_BRIDGE_OPENCL=libnone.so NQ_BRIDGE_VERBOSE=" + value, "list").starts_with("libnq: "));
    }
    for (std::string const value : {"", "0", "no", "off", "yess"}) {
        EXPECT_EQ(run("NQ_BRIDGE_OPENCL=libnone.so NQ_BRIDGE_VERBOSE=" + value, "list"), "");
    }
}

TEST(libraries, set_uid_programs_ignore_the_environment) {
    fs::path const copy = self + "_set_uid";
    fs::copy_file(self, copy, fs::copy_options::overwrite_existing);
    constexpr uid_t nobody = 65534;
    std::string const plainly = "ASAN_OPTIONS=$ASAN_OPTIONS:detect_leaks=0 "; // which it cannot with other rights
    if (chown(copy.c_str(), nobody, nobody) != 0 || chmod(copy.c_str(), 04755) != 0 ||
        std::system((plainly + "'" + copy.string() + "' secure").c_str()) != 0) {
        fs::remove(copy);
        GTEST_SKIP() << "no set-uid program can be made here";
    }
    auto const told = [&](std::string const& program) {
        return output_of(plainly +
                         "NQ_BRIDGE_OPENCL=libnone.so NQ_BRIDGE_VERBOSE=1 OCL_ICD_VENDORS=" NO_VENDORS
                         " MERO_LOG_LEVEL=error MERO_LOG_TARGET=console '" +
                         program + "' log");
    };
    for (std::string const word : {"libnq: ", "logged", "registered=1", "default=0"}) {
        EXPECT_NE(told(self).find(word), std::string::npos) << word;
        EXPECT_EQ(told(copy).find(word), std::string::npos) << word;
    }
    fs::remove(copy);
}

} // namespace

int main(int count, char** words) {
    testing::InitGoogleTest(&count, words);
    return count > 1 ? perform_mode(words[1], words[2]) : RUN_ALL_TESTS();
}
