// Writes each failing call as one line to standard error, and what is wrong in words where libnq can be asked for it.

#include "ask.hpp"
#include "set_arguments.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>

namespace nq::layer {
namespace {

using sizes = std::array<std::size_t, 3>;

consteval int operator""_status(char const* name, std::size_t size) {
    return static_cast<int>(operator""_cl(name, size));
}

std::string number(std::size_t value) { return std::to_string(value); }

// Finds out what is wrong with one call.
class detective {
public:
    detective(call const& made, description const& about, int status) : made_(made), about_(about), status_(status) {}

    /// Empty if there is nothing to say.
    std::string words() const {
        if (auto const* const kernel = as<block::clCreateKernel>(made_, &about_); kernel != nullptr) {
            return status_ == "CL_INVALID_KERNEL_NAME"_status          ? kernels_of(kernel->program)
                   : status_ == "CL_INVALID_PROGRAM_EXECUTABLE"_status ? build_of(kernel->program)
                                                                       : "";
        }
        if (auto const* const build = as<block::clBuildProgram>(made_, &about_); build != nullptr) {
            return status_ == "CL_BUILD_PROGRAM_FAILURE"_status ? build_of(build->program) : "";
        }
        if (auto const* const set = as<block::clSetKernelArg>(made_, &about_); set != nullptr) {
            return argument(*set);
        }
        if (auto const* const launch = as<block::clEnqueueNDRangeKernel>(made_, &about_); launch != nullptr) {
            return status_ == "CL_INVALID_KERNEL_ARGS"_status ? missing_arguments(launch->kernel) : range(*launch);
        }
        if (auto const* const task = as<block::clEnqueueTask>(made_, &about_); task != nullptr) {
            return status_ == "CL_INVALID_KERNEL_ARGS"_status ? missing_arguments(task->kernel) : "";
        }
        if (auto const* const buffer = as<block::clCreateBuffer>(made_, &about_); buffer != nullptr) {
            return status_ == "CL_INVALID_BUFFER_SIZE"_status ? size_of_buffer(*buffer) : "";
        }
        return status_ == "CL_INVALID_VALUE"_status ? outside() : "";
    }

private:
    std::string kernels_of(_nq_cl_program* program) const {
        std::string const names =
            ask_text(made_, block::clGetProgramInfo{.program = program, .param_name = "CL_PROGRAM_KERNEL_NAMES"_cl});
        return names.empty() ? "" : "the program has these kernels: " + names;
    }

    // The state of the first device for which the program is not built, and the first error in its log.
    std::string build_of(_nq_cl_program* program) const {
        auto const devices = ask_list<_nq_cl_device_id*>(
            made_, block::clGetProgramInfo{.program = program, .param_name = "CL_PROGRAM_DEVICES"_cl});
        for (auto* const device : devices) {
            block::clGetProgramBuildInfo question{
                .program = program, .device = device, .param_name = "CL_PROGRAM_BUILD_STATUS"_cl};
            int const state = ask_value<std::int32_t>(made_, question).value_or(0);
            if (state == 0) {
                continue;
            }
            question.param_name = "CL_PROGRAM_BUILD_LOG"_cl;
            return state == -1 ? "the program was not built"
                               : "the build failed: " + first_error(ask_text(made_, question));
        }
        return "";
    }

    static std::string first_error(std::string const& log) {
        std::size_t const at = log.find("error");
        std::size_t const start = at == std::string::npos ? log.find_first_not_of('\n') : log.rfind('\n', at) + 1;
        return start >= log.size() ? "its log is empty" : log.substr(start, log.find('\n', start) - start);
    }

    std::string name_of_argument(_nq_cl_kernel* kernel, std::size_t index) const {
        block::clGetKernelArgInfo question{.kernel = kernel,
                                           .arg_index = static_cast<std::uint32_t>(index),
                                           .param_name = "CL_KERNEL_ARG_TYPE_NAME"_cl};
        std::string const type = ask_text(made_, question);
        question.param_name = "CL_KERNEL_ARG_NAME"_cl;
        std::string const name = ask_text(made_, question);
        return number(index) + (name.empty() ? "" : " (" + type + " " + name + ")");
    }

    std::string argument(block::clSetKernelArg const& set) const {
        block::clGetKernelInfo const question{.kernel = set.kernel, .param_name = "CL_KERNEL_NUM_ARGS"_cl};
        if (status_ == "CL_INVALID_ARG_INDEX"_status) {
            auto const count = ask_value<std::uint32_t>(made_, question);
            return count ? "the kernel has " + number(*count) + " arguments, which are numbered from 0" : "";
        }
        bool const told = status_ == "CL_INVALID_ARG_SIZE"_status;
        return told ? number(set.arg_size) + " bytes do not fit argument " + name_of_argument(set.kernel, set.arg_index)
                    : "";
    }

    std::string missing_arguments(_nq_cl_kernel* kernel) const {
        block::clGetKernelInfo const question{.kernel = kernel, .param_name = "CL_KERNEL_NUM_ARGS"_cl};
        std::string text;
        for (std::size_t i = 0; i < ask_value<std::uint32_t>(made_, question).value_or(0); ++i) {
            text += is_set(kernel, i) ? "" : (text.empty() ? "" : ", ") + name_of_argument(kernel, i);
        }
        return text.empty() ? "" : "never set: argument " + text;
    }

    std::string range(block::clEnqueueNDRangeKernel const& launch) const {
        sizes global{};
        sizes local{};
        std::size_t const dimensions = launch.work_dim;
        std::size_t const bytes = dimensions * sizeof(std::size_t);
        auto* const device =
            ask_value<_nq_cl_device_id*>(made_, block::clGetCommandQueueInfo{.command_queue = launch.command_queue,
                                                                             .param_name = "CL_QUEUE_DEVICE"_cl})
                .value_or(nullptr);
        block::clGetKernelWorkGroupInfo about{
            .kernel = launch.kernel, .device = device, .param_name = "CL_KERNEL_COMPILE_WORK_GROUP_SIZE"_cl};
        if (dimensions == 0 || dimensions > 3 || !read_safely(global.data(), launch.global_work_size, bytes)) {
            return "";
        }
        sizes const required = ask_value<sizes>(made_, about).value_or(sizes{});
        bool const given =
            launch.local_work_size != nullptr && read_safely(local.data(), launch.local_work_size, bytes);
        if (status_ == "CL_INVALID_WORK_GROUP_SIZE"_status && required[0] != 0 &&
            !std::equal(local.begin(), local.begin() + dimensions, required.begin())) {
            return "the kernel requires the local size [" + number(required[0]) + ", " + number(required[1]) + ", " +
                   number(required[2]) + "]";
        }
        if (!given ||
            (status_ != "CL_INVALID_WORK_GROUP_SIZE"_status && status_ != "CL_INVALID_WORK_ITEM_SIZE"_status)) {
            return "";
        }
        auto const most = ask_value<sizes>(
            made_, block::clGetDeviceInfo{.device = device, .param_name = "CL_DEVICE_MAX_WORK_ITEM_SIZES"_cl});
        std::size_t all = 1;
        for (std::size_t i = 0; i < dimensions; ++i) {
            all *= local[i];
            if (local[i] == 0 || global[i] % local[i] != 0) {
                return "in dimension " + number(i) + " the local size " + number(local[i]) +
                       " does not divide the global size " + number(global[i]);
            }
            if (most && local[i] > (*most)[i]) {
                return "in dimension " + number(i) + " the device has local sizes up to " + number((*most)[i]);
            }
        }
        about.param_name = "CL_KERNEL_WORK_GROUP_SIZE"_cl;
        std::size_t const limit = ask_value<std::size_t>(made_, about).value_or(all);
        return all > limit ? "the local size has " + number(all) + " work-items; the kernel can have " + number(limit) +
                                 " on this device"
                           : "";
    }

    std::string size_of_buffer(block::clCreateBuffer const& buffer) const {
        if (buffer.size == 0) {
            return "the size is 0";
        }
        auto const devices = ask_list<_nq_cl_device_id*>(
            made_, block::clGetContextInfo{.context = buffer.context, .param_name = "CL_CONTEXT_DEVICES"_cl});
        for (auto* const device : devices) {
            auto const most = ask_value<std::uint64_t>(
                made_, block::clGetDeviceInfo{.device = device, .param_name = "CL_DEVICE_MAX_MEM_ALLOC_SIZE"_cl});
            if (most && buffer.size > *most) {
                return "a device of the context has buffers of up to " + number(*most) + " bytes";
            }
        }
        return "";
    }

    // What reaches past the end of a buffer or an image, by the names of the arguments.
    std::string outside() const {
        static constexpr char const* spans[][3] = {
            {"buffer", "offset", "size"}, {"src_buffer", "src_offset", "size"}, {"dst_buffer", "dst_offset", "size"}};
        static constexpr char const* boxes[][5] = {
            {"buffer", "buffer_origin", "region", "buffer_row_pitch", "buffer_slice_pitch"},
            {"src_buffer", "src_origin", "region", "src_row_pitch", "src_slice_pitch"},
            {"dst_buffer", "dst_origin", "region", "dst_row_pitch", "dst_slice_pitch"}};
        static constexpr char const* images[][3] = {{"image", "origin", "region"},
                                                    {"src_image", "src_origin", "region"},
                                                    {"dst_image", "dst_origin", "region"}};
        std::string said;
        for (auto const& [object, offset, size] : spans) {
            if (said.empty() && has(object) && has(offset) && has(size)) {
                said = span(object, value(offset), value(size));
            }
        }
        for (auto const& [object, origin, region, row, slice] : boxes) {
            if (said.empty() && has(object) && has(origin) && has(row)) {
                said = box(object, three(origin), three(region), value(row), value(slice));
            }
        }
        for (auto const& [object, origin, region] : images) {
            if (said.empty() && has(object) && has(origin) && has(region)) {
                said = edges(object, three(origin), three(region));
            }
        }
        return said;
    }

    bool has(char const* name) const { return find_field(about_, name) != nullptr; }
    std::size_t value(char const* name) const {
        field const* const found = find_field(about_, name);
        return found != nullptr ? static_cast<std::size_t>(read_field(made_.block, *found)) : 0;
    }
    _nq_cl_mem* memory(char const* name) const { return std::bit_cast<_nq_cl_mem*>(value(name)); }

    // Zeros if it cannot be read.
    sizes three(char const* name) const {
        sizes numbers{};
        return read_safely(numbers.data(), std::bit_cast<void const*>(value(name)), sizeof numbers) ? numbers : sizes{};
    }

    std::string span(char const* object, std::size_t offset, std::size_t size) const {
        auto const total = ask_value<std::size_t>(
            made_, block::clGetMemObjectInfo{.memobj = memory(object), .param_name = "CL_MEM_SIZE"_cl});
        if (!total || (offset <= *total && size <= *total - offset)) {
            return size == 0 ? "the size is 0" : "";
        }
        return "offset " + number(offset) + " and size " + number(size) + " reach past the end of " + object +
               ", which has " + number(*total) + " bytes";
    }

    std::string box(char const* object, sizes origin, sizes region, std::size_t row, std::size_t slice) const {
        row = row != 0 ? row : region[0];
        slice = slice != 0 ? slice : row * region[1];
        if (row < region[0] || slice < row * region[1]) {
            return std::string("the pitches of ") + object + " are smaller than the region";
        }
        std::size_t const start = origin[2] * slice + origin[1] * row + origin[0];
        bool const empty = region[0] == 0 || region[1] == 0 || region[2] == 0;
        return span(object, start, empty ? 0 : (region[2] - 1) * slice + (region[1] - 1) * row + region[0]);
    }

    std::string edges(char const* object, sizes origin, sizes region) const {
        for (std::uint32_t i = 0; i < region.size(); ++i) {
            block::clGetImageInfo const question{.image = memory(object),
                                                 .param_name = "CL_IMAGE_WIDTH"_cl + i /* then height and depth */};
            std::size_t const length = ask_value<std::size_t>(made_, question).value_or(0);
            if (length != 0 && (origin[i] > length || region[i] > length - origin[i])) {
                return "in dimension " + number(i) + " origin " + number(origin[i]) + " and region " +
                       number(region[i]) + " reach past the edge of " + object + ", which has " + number(length) +
                       " pixels";
            }
        }
        return std::any_of(region.begin(), region.end(), [](std::size_t each) { return each == 0; })
                   ? "a side of the region is 0"
                   : "";
    }

    call const& made_;
    description const& about_;
    int status_;
};

// 0 if the call succeeded, or has no status. Shared memory that is null counts as out of memory, which it mostly is.
int status_of(call const& made, description const& about) {
    if (about.status != absent) {
        return static_cast<std::int32_t>(read_field(made.block, about.status, sizeof(std::int32_t)));
    }
    auto const* const allocated = as<block::clSVMAlloc>(made, &about);
    return allocated != nullptr && allocated->result == nullptr && allocated->size != 0 ? "CL_OUT_OF_HOST_MEMORY"_status
                                                                                        : 0;
}

void report(call const& made, description const* about, int result, int status) {
    if (result != result::success) {
        std::string const call = about != nullptr ? about->name : "command " + std::to_string(made.id);
        char const* const why = result == result::unrecoverable
                                    ? ": the object was moved from, or the process was forked"
                                : result == result::invalid_command_id ? ": this OpenCL version has no such call"
                                                                       : "";
        print("nq-errors", call + ": libnq did not make the call and returned " + std::to_string(result) + why);
    } else {
        std::string const words = detective{made, *about, status}.words();
        print("nq-errors",
              format_call(made.version, made.id, made.block, read_safely) + (words.empty() ? "" : ": ") + words);
    }
}

} // namespace

int perform(call const& made) noexcept {
    int const result = forward(made);
    int const before = errno;
    try {
        description const* const about = made.about();
        int const status = result == result::success && about != nullptr ? status_of(made, *about) : 0;
        if (result != result::success || status != 0) {
            report(made, about, result, status);
        } else {
            note_success(made, about);
        }
    } catch (...) { // NOLINT(bugprone-empty-catch) out of memory: the line is lost, the program goes on
    }
    errno = before;
    return result;
}

} // namespace nq::layer
