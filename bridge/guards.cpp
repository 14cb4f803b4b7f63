#include "guards.hpp"

#include "loader.hpp"
#include "platform.hpp"

#include <algorithm>
#include <string_view>
#include <vector>

// Guards for single implementations. They replace the loader's functions in the tables of the implementation's
// platforms.

namespace nq::bridge {
namespace {

// PoCL ends the process when a program creates an on-device queue.
cl_command_queue CL_API_CALL pocl_create_queue(cl_context context, cl_device_id device,
                                               cl_queue_properties const* properties, cl_int* code) {
    for (auto const* entry = properties; entry != nullptr && entry[0] != 0; entry += 2) {
        if (entry[0] == CL_QUEUE_PROPERTIES && (entry[1] & CL_QUEUE_ON_DEVICE) != 0) {
            *code = CL_INVALID_QUEUE_PROPERTIES;
            return nullptr;
        }
    }
    return loaded().clCreateCommandQueueWithProperties(context, device, properties, code);
}

// PoCL ends the process when a program creates an image with mip-maps or samples.
cl_mem CL_API_CALL pocl_create_image(cl_context context, cl_mem_flags flags, cl_image_format const* format,
                                     cl_image_desc const* description, void* host_ptr, cl_int* code) {
    if (description != nullptr && (description->num_mip_levels != 0 || description->num_samples != 0)) {
        *code = CL_INVALID_IMAGE_DESCRIPTOR;
        return nullptr;
    }
    return loaded().clCreateImage(context, flags, format, description, host_ptr, code);
}

std::string argument_type(cl_kernel kernel, cl_uint index) {
    return info_text(
        [index](cl_kernel k, cl_uint name, std::size_t size, void* value, std::size_t* needed) {
            return loaded().clGetKernelArgInfo(k, index, name, size, value, needed);
        },
        kernel, CL_KERNEL_ARG_TYPE_NAME);
}

cl_uint address_qualifier(cl_kernel kernel, cl_uint index) {
    cl_uint qualifier = CL_KERNEL_ARG_ADDRESS_GLOBAL;
    loaded().clGetKernelArgInfo(kernel, index, CL_KERNEL_ARG_ADDRESS_QUALIFIER, sizeof qualifier, &qualifier, nullptr);
    return qualifier;
}

bool is_null_handle(std::size_t size, void const* value) {
    return size == sizeof(void*) && value != nullptr && *static_cast<void* const*>(value) == nullptr;
}

// Oclgrind reads the value of every argument that is neither buffer, image nor local memory, and the sampler behind a
// sampler's handle.
cl_int CL_API_CALL oclgrind_set_argument(cl_kernel kernel, cl_uint index, std::size_t size, void const* value) {
    if (kernel != nullptr && value == nullptr && address_qualifier(kernel, index) == CL_KERNEL_ARG_ADDRESS_PRIVATE) {
        return argument_type(kernel, index) == "sampler_t" ? CL_INVALID_SAMPLER : CL_INVALID_ARG_VALUE;
    }
    if (kernel != nullptr && is_null_handle(size, value) && argument_type(kernel, index) == "sampler_t") {
        return CL_INVALID_SAMPLER;
    }
    return loaded().clSetKernelArg(kernel, index, size, value);
}

bool is_empty(std::size_t const* local, cl_uint dimensions) noexcept {
    return dimensions <= 3 && ((dimensions > 0 && local[0] == 0) || (dimensions > 1 && local[1] == 0) ||
                               (dimensions > 2 && local[2] == 0));
}

// PoCL and Oclgrind divide by the local size.
cl_int CL_API_CALL launch_unless_group_is_empty(cl_command_queue queue, cl_kernel kernel, cl_uint dimensions,
                                                std::size_t const* offset, std::size_t const* global,
                                                std::size_t const* local, cl_uint event_count, cl_event const* events,
                                                cl_event* event) {
    if (local != nullptr && is_empty(local, dimensions)) {
        return CL_INVALID_WORK_GROUP_SIZE;
    }
    return loaded().clEnqueueNDRangeKernel(queue, kernel, dimensions, offset, global, local, event_count, events,
                                           event);
}

// rusticl panics on an image argument without a value, Intel's runtime crashes on a queue argument without one. If
// there is no argument information (Intel's programs from binaries and IL), the call is made.
template <char const* Type>
cl_int CL_API_CALL set_argument_unless_null(cl_kernel kernel, cl_uint index, std::size_t size, void const* value) {
    if (kernel != nullptr && value == nullptr && argument_type(kernel, index).starts_with(Type)) {
        return CL_INVALID_ARG_VALUE;
    }
    return loaded().clSetKernelArg(kernel, index, size, value);
}
constexpr char image_type[] = "image";
constexpr char queue_type[] = "queue_t";

// Whether the next part of the options may be a value of this one, as in "-D NAME".
bool takes_value(std::string_view option) noexcept {
    bool const is_whole = option.starts_with("-D") || option.starts_with("-I") || option.starts_with("-cl-");
    return option.starts_with('-') && option != "-w" && (option.size() == 2 || !is_whole);
}

// rusticl splits options at quotes, and at blanks between them. A part of one character panics, as in "-D N"; one that
// belongs to no option is compiled as a file, which crashes, as in "-DTEXT=\"of it\"".
bool ends_rusticl(std::string_view options) noexcept {
    std::string_view before;
    for (bool is_quoted = false; !options.empty();) {
        std::size_t const end = std::min(options.find_first_of(is_quoted ? "\"" : "\" "), options.size());
        std::string_view const part = options.substr(0, end);
        if (part.size() == 1 || (!part.empty() && part[0] != '-' && !takes_value(before))) {
            return true;
        }
        before = part.empty() ? before : part;
        is_quoted = end < options.size() && (options[end] == '"') != is_quoted;
        options.remove_prefix(std::min(end + 1, options.size()));
    }
    return false;
}

bool ends_rusticl(char const* options) noexcept {
    return options != nullptr && ends_rusticl(std::string_view(options));
}

cl_int CL_API_CALL rusticl_build(cl_program program, cl_uint count, cl_device_id const* devices, char const* options,
                                 void(CL_CALLBACK* notify)(cl_program, void*), void* data) {
    return ends_rusticl(options) ? CL_INVALID_BUILD_OPTIONS
                                 : loaded().clBuildProgram(program, count, devices, options, notify, data);
}

cl_int CL_API_CALL rusticl_compile(cl_program program, cl_uint count, cl_device_id const* devices, char const* options,
                                   cl_uint header_count, cl_program const* headers, char const** names,
                                   void(CL_CALLBACK* notify)(cl_program, void*), void* data) {
    return ends_rusticl(options) ? CL_INVALID_COMPILER_OPTIONS
                                 : loaded().clCompileProgram(program, count, devices, options, header_count, headers,
                                                             names, notify, data);
}

std::vector<std::size_t> binary_sizes(cl_program program, cl_int& code) {
    auto const ask = loaded().clGetProgramInfo;
    std::size_t bytes = 0;
    code = ask(program, CL_PROGRAM_BINARY_SIZES, 0, nullptr, &bytes);
    std::vector<std::size_t> sizes(code == CL_SUCCESS ? bytes / sizeof(std::size_t) : 0);
    if (!sizes.empty()) {
        code = ask(program, CL_PROGRAM_BINARY_SIZES, sizes.size() * sizeof(std::size_t), sizes.data(), nullptr);
    }
    return sizes;
}

// A null entry means that its binary is not wanted. PoCL, rusticl and Oclgrind write to it, and Intel's runtime refuses
// it: such a binary goes to temporary memory. rusticl panics if a program has no binary.
cl_int read_binaries(cl_program program, std::size_t size, void* value, std::size_t* size_needed) {
    cl_int code = CL_SUCCESS;
    auto const sizes = binary_sizes(program, code);
    std::size_t const bytes = sizes.size() * sizeof(void*);
    if (code != CL_SUCCESS || size < bytes) {
        return code != CL_SUCCESS ? code : CL_INVALID_VALUE;
    }
    if (size_needed != nullptr) {
        *size_needed = bytes;
    }
    if (std::all_of(sizes.begin(), sizes.end(), [](std::size_t each) { return each == 0; })) {
        return CL_SUCCESS;
    }
    std::vector<std::vector<unsigned char>> unwanted(sizes.size());
    auto* const first = static_cast<unsigned char**>(value);
    std::vector<unsigned char*> destinations(first, first + sizes.size());
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        if (destinations[i] == nullptr) {
            unwanted[i].resize(sizes[i] + 1);
            destinations[i] = unwanted[i].data();
        }
    }
    return loaded().clGetProgramInfo(program, CL_PROGRAM_BINARIES, bytes, destinations.data(), nullptr);
}

cl_int CL_API_CALL get_program_info(cl_program program, cl_program_info name, std::size_t size, void* value,
                                    std::size_t* size_needed) {
    if (name == CL_PROGRAM_BINARIES && program != nullptr && value != nullptr) {
        return read_binaries(program, size, value, size_needed);
    }
    return loaded().clGetProgramInfo(program, name, size, value, size_needed);
}

// Intel's runtime answers with as many sizes as it is given room for, and reports none when it is given no room.
cl_int CL_API_CALL intel_sub_group_info(cl_kernel kernel, cl_device_id device, cl_kernel_sub_group_info name,
                                        std::size_t input_size, void const* input, std::size_t size, void* value,
                                        std::size_t* size_needed) {
    cl_int const code =
        loaded().clGetKernelSubGroupInfo(kernel, device, name, input_size, input, size, value, size_needed);
    if (name == CL_KERNEL_LOCAL_SIZE_FOR_SUB_GROUP_COUNT && code == CL_SUCCESS && value == nullptr &&
        size_needed != nullptr) {
        *size_needed = sizeof(std::size_t);
    }
    return code;
}

template <class Function>
void replace(Function& function, Function guard) noexcept {
    function = function != nullptr ? guard : nullptr;
}

constexpr std::string_view pocl = "Portable Computing Language";
constexpr std::string_view rusticl = "rusticl";
constexpr std::string_view oclgrind = "Oclgrind";
constexpr std::string_view intel = "Intel(R) OpenCL";

} // namespace

void install_guards(std::string_view platform_name, functions& cl) noexcept {
    replace(cl.clGetProgramInfo, get_program_info);
    if (platform_name == pocl) {
        cl.clEnqueueWaitForEvents = nullptr;             // ends the process: "unimplemented"
        cl.clSetProgramSpecializationConstant = nullptr; // aborts on a program never built; has no constants
        replace(cl.clCreateCommandQueueWithProperties, pocl_create_queue);
        replace(cl.clCreateImage, pocl_create_image);
        replace(cl.clEnqueueNDRangeKernel, launch_unless_group_is_empty);
    } else if (platform_name == oclgrind) {
        replace(cl.clSetKernelArg, oclgrind_set_argument);
        replace(cl.clEnqueueNDRangeKernel, launch_unless_group_is_empty);
    } else if (platform_name == rusticl) {
        replace(cl.clSetKernelArg, set_argument_unless_null<image_type>);
        replace(cl.clBuildProgram, rusticl_build);
        replace(cl.clCompileProgram, rusticl_compile);
    } else if (platform_name == intel) {
        cl.clCreateProgramWithBuiltInKernels = nullptr; // has no such kernels; releasing what it makes crashes
        replace(cl.clSetKernelArg, set_argument_unless_null<queue_type>);
        replace(cl.clGetKernelSubGroupInfo, intel_sub_group_info);
    }
}

// The threads of PoCL and rusticl do not exist in the child, which waits for them forever. Oclgrind, Intel's runtime
// and PoCL's "basic" device work there.
bool device_survives_fork(std::string_view platform_name, cl_device_id device) {
    if (platform_name == pocl) {
        return info_text(loaded().clGetDeviceInfo, device, CL_DEVICE_NAME).starts_with("basic");
    }
    return platform_name != rusticl;
}

} // namespace nq::bridge
