// Writes the program of a launch.

#include "extract.hpp"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace nq::command {
namespace {

namespace fs = std::filesystem;
using kind = launch_argument::kind;

constexpr char const* head = R"(
#include <vorn/mero/opencl_1_2.hpp>

#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

namespace cl = vorn::mero::opencl_1_2;

namespace {

// A file beside this one.
std::vector<char> read_file(std::string const& name) {
    std::ifstream file(LAUNCH_FOLDER "/" + name, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read " + name);
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

// Whether an argument holds what it held after the recorded launch.
bool is_as_recorded(std::string const& name, std::vector<char> const& here) {
    std::vector<char> const recorded = read_file(name + ".expected.bin");
    std::size_t count = 0;
    for (std::size_t i = 0; i < here.size(); ++i) {
        count += i >= recorded.size() || here[i] != recorded[i] ? 1 : 0;
    }
    std::printf("%s: %zu of %zu bytes differ\n", name.c_str(), count, here.size());
    return count == 0;
}

bool run(cl::device const& device) {
    cl::context context = cl::create_context({}, {device}, nullptr, nullptr);
    cl::command_queue queue = context.create_command_queue(device, false, false);
    std::vector<char> const source = read_file("kernel.cl");
    cl::program program = context.create_program_from_source(std::string(source.begin(), source.end()));
)";

constexpr char const* tail = R"(    return same;
}

} // namespace

int main(int count, char** arguments) {
    std::string const platform = count > 1 ? arguments[1] : PLATFORM;
    try {
        for (cl::device const& device : cl::get_all_devices()) {
            if (device.get_platform().name().find(platform) != std::string::npos) {
                bool const same = run(device);
                std::puts(same ? "as recorded" : "not as recorded");
                return same ? 0 : 1;
            }
        }
        std::fprintf(stderr, "no platform's name has %s in it\n", platform.c_str());
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
    }
    return 2;
}
)";

std::string quoted(std::string const& text) {
    std::string made = "\"";
    for (char const letter : text) {
        char escaped[8];
        bool const is_plain = letter >= ' ' && letter < 127 && letter != '"' && letter != '\\' && letter != '?';
        std::snprintf(escaped, sizeof escaped, "\\%03o", static_cast<unsigned>(static_cast<unsigned char>(letter)));
        made += is_plain ? std::string(1, letter) : escaped;
    }
    return made + '"';
}

std::string list(std::uint64_t const (&of)[3], std::uint32_t count, std::uint64_t rest) {
    std::string made = "{";
    for (std::uint32_t i = 0; i < 3; ++i) {
        made += (i == 0 ? "" : ", ") + std::to_string(i < count ? of[i] : rest);
    }
    return made + "}";
}

std::string bytes(std::vector<std::byte> const& of) {
    std::string made;
    char text[8];
    for (std::byte const each : of) {
        std::snprintf(text, sizeof text, "%s0x%02x", made.empty() ? "" : ", ", static_cast<unsigned>(each));
        made += text;
    }
    return made;
}

// What four bytes are as numbers.
std::string comment(std::vector<std::byte> const& of) {
    if (of.size() != sizeof(float)) {
        return "";
    }
    float real = 0;
    std::int32_t whole = 0;
    std::memcpy(&real, of.data(), sizeof real);
    std::memcpy(&whole, of.data(), sizeof whole);
    char text[64];
    std::snprintf(text, sizeof text, " // %d or %g", whole, static_cast<double>(real));
    return text;
}

std::string access(std::uint64_t flags) {
    return flags == 4   ? "cl::mem_flags::read_only"
           : flags == 2 ? "cl::mem_flags::write_only"
                        : "cl::mem_flags::read_write";
}

void write_image(std::ostream& to, launch_argument const& each, std::string const& name, std::string const& values) {
    bool const is_flat = each.extent[2] == 1;
    to << "    cl::image_format const format_of_" << name << "(cl::image_channel_order{" << each.order
       << "}, cl::image_channel_type{" << each.type << "});\n"
       << "    auto " << name << " = context.create_image_" << (is_flat ? "2d(" : "3d(") << access(each.flags)
       << " | cl::mem_flags::copy_host_ptr, format_of_" << name << ", " << each.extent[0] << ", " << each.extent[1]
       << ", " << (is_flat ? "" : std::to_string(each.extent[2]) + ", 0, ") << "0, " << values << ".data());\n";
}

void write_argument(std::ostream& to, std::uint32_t position, launch_argument const& each) {
    std::string const number = std::to_string(position);
    std::string const name = "argument_" + std::to_string(each.same_as);
    std::string const values = "values_" + number;
    if (each.what == kind::local) {
        to << "    kernel.set_argument_raw(" << number << ", " << each.size << ", nullptr); // local memory\n";
        return;
    }
    if (each.what == kind::value) {
        to << "    unsigned char const " << name << "[] = {" << bytes(each.before) << "};" << comment(each.before)
           << '\n'
           << "    kernel.set_argument_raw(" << number << ", sizeof " << name << ", " << name << ");\n";
        return;
    }
    if (each.same_as == position && each.is_memory()) {
        to << "    std::vector<char> " << values << " = read_file(\"argument-" << number << ".bin\");\n";
    }
    if (each.same_as == position && each.what == kind::buffer) {
        to << "    cl::buffer " << name << " = context.create_buffer(" << access(each.flags)
           << " | cl::mem_flags::copy_host_ptr, " << values << ".size(), " << values << ".data());\n";
    } else if (each.same_as == position && each.what == kind::image) {
        write_image(to, each, name, values);
    } else if (each.same_as == position) {
        to << "    cl::sampler " << name << " = context.create_sampler(" << (each.extent[0] != 0 ? "true" : "false")
           << ", cl::sampler_addressing_mode{" << each.order << "}, cl::sampler_filter_mode{" << each.type << "});\n";
    }
    to << "    kernel.set_argument(" << number << ", " << name << ");\n";
}

void write_comparison(std::ostream& to, std::uint32_t position, launch_argument const& each) {
    if (!each.is_memory() || each.same_as != position) {
        return;
    }
    std::string const number = std::to_string(position);
    std::string const values = "values_" + number;
    to << "    queue.enqueue_command_without_event(cl::read_" << (each.what == kind::buffer ? "buffer" : "image")
       << "(argument_" << number << ", true, ";
    if (each.what == kind::buffer) {
        to << "0, " << values << ".size(), ";
    } else {
        to << "{0, 0, 0}, " << list(each.extent, 3, 1) << ", 0, 0, ";
    }
    to << values << ".data()));\n    same = is_as_recorded(\"argument-" << number << "\", " << values << ") && same;\n";
}

std::string program_of(launch_parts const& parts) {
    std::ostringstream to;
    to << "// Launch " << parts.nth << " of the kernel " << parts.kernel
       << " in a recorded session, alone: runs it and compares what it writes with what it wrote\n"
          "// then.\n//\n//     launch [PLATFORM]        a part of the platform's name\n"
       << head << "    program.build({device}, " << quoted(parts.options) << ", nullptr, nullptr);\n"
       << "    cl::kernel kernel = program.create_kernel(" << quoted(parts.kernel) << ");\n\n";
    for (auto const& [position, each] : parts.arguments) {
        write_argument(to, position, each);
    }
    to << (parts.is_local_chosen ? "\n    // the session left the size of the groups to OpenCL" : "")
       << "\n    queue.enqueue_command_without_event(cl::nd_range_kernel(kernel, " << parts.dimensions << ", "
       << list(parts.offset, parts.dimensions, 0) << ", " << list(parts.global, parts.dimensions, 1) << ", "
       << list(parts.local, parts.dimensions, 1) << "));\n    bool same = true;\n";
    for (auto const& [position, each] : parts.arguments) {
        write_comparison(to, position, each);
    }
    std::string end = tail;
    end.replace(end.find("PLATFORM"), std::strlen("PLATFORM"), quoted(parts.platform));
    return to.str() + end;
}

void write(fs::path const& path, void const* bytes, std::size_t size) {
    std::ofstream file(path, std::ios::binary);
    file.write(static_cast<char const*>(bytes), static_cast<std::streamsize>(size));
    if (!file.flush()) {
        throw std::runtime_error("cannot write " + path.string() + ": " + std::strerror(errno));
    }
}

} // namespace

void write_launch(launch_parts const& parts, std::string const& folder) {
    fs::path const to = folder;
    std::error_code failure;
    std::string first;
    std::getline(std::ifstream(to / "main.cpp"), first);
    if (fs::is_directory(to, failure) && !fs::is_empty(to, failure) && !first.starts_with("// Launch ")) {
        throw std::runtime_error(folder + " has files of yours; give a folder that is empty, or that is not there");
    }
    fs::create_directories(to, failure);
    std::string const program = program_of(parts);
    std::string const version = VORN_MERO_COMMAND_VERSION;
    std::string const project =
        "cmake_minimum_required(VERSION 3.25)\nproject(launch LANGUAGES CXX)\n\n"
        "find_package(vorn-mero " +
        version.substr(0, version.rfind('.')) +
        " REQUIRED COMPONENTS opencl_1_2)\nadd_executable(launch main.cpp)\n"
        "target_compile_definitions(launch PRIVATE LAUNCH_FOLDER=\"${CMAKE_CURRENT_SOURCE_DIR}\")\n"
        "target_link_libraries(launch PRIVATE vorn::mero)\n";
    write(to / "main.cpp", program.data(), program.size());
    write(to / "CMakeLists.txt", project.data(), project.size());
    write(to / "kernel.cl", parts.source.data(), parts.source.size());
    for (auto const& [position, each] : parts.arguments) {
        std::string const name = "argument-" + std::to_string(position);
        if (each.is_memory() && each.same_as == position) {
            write(to / (name + ".bin"), each.before.data(), each.before.size());
            write(to / (name + ".expected.bin"), each.after.data(), each.after.size());
        }
    }
}

} // namespace nq::command
