#include "check_kernels.hpp"

#include "check_objects.hpp"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <string_view>
#include <thread>
#include <unordered_map>

namespace nq::layer::check {
namespace {

constexpr unsigned most_pauses = 32; // for a kernel
constexpr auto pause = std::chrono::microseconds(500);

struct kernel_state {
    std::thread::id setter; // that is in a call now
    char const* entry = nullptr;
    place where = nullptr;
    std::thread::id last; // that was in a call
    unsigned pauses = 0;
    std::map<std::uint32_t, void*> objects; // by argument
};

// Never freed: a program may make calls until its very end. No call is made while the mutex is held.
struct state {
    std::mutex mutex;
    std::unordered_map<void*, kernel_state> kernels;
};

state& all() {
    static state& made = *new state;
    return made;
}

bool sets(std::string_view entry) { return entry.starts_with("clSetKernel"); }

bool uses_arguments(std::string_view entry) {
    return entry == "clEnqueueNDRangeKernel" || entry == "clEnqueueTask" || entry == "clCloneKernel";
}

// Its type and name, if OpenCL or the source of the program tell; else empty.
std::string declaration(call const& made, _nq_cl_kernel* kernel, std::uint32_t argument) {
    block::clGetKernelArgInfo question{
        .kernel = kernel, .arg_index = argument, .param_name = "CL_KERNEL_ARG_TYPE_NAME"_cl};
    std::string const type = ask_text(made, question);
    if (!type.empty()) {
        question.param_name = "CL_KERNEL_ARG_ADDRESS_QUALIFIER"_cl;
        std::uint32_t const space = ask_value<std::uint32_t>(made, question).value_or(0);
        return (space == 0x119B /* CL_KERNEL_ARG_ADDRESS_GLOBAL */ && type.back() == '*' ? "global " : "") + type;
    }
    auto const program = ask_value<_nq_cl_program*>(
        made, block::clGetKernelInfo{.kernel = kernel, .param_name = "CL_KERNEL_PROGRAM"_cl});
    if (!program) {
        return "";
    }
    return declaration_of(
        ask_text(made, block::clGetProgramInfo{.program = *program, .param_name = "CL_PROGRAM_SOURCE"_cl}),
        ask_text(made, block::clGetKernelInfo{.kernel = kernel, .param_name = "CL_KERNEL_FUNCTION_NAME"_cl}), argument);
}

bool has_word(std::string const& text, std::string_view word) {
    auto const in_word = [&](std::size_t at) {
        return at < text.size() && (std::isalnum(static_cast<unsigned char>(text[at])) != 0 || text[at] == '_');
    };
    for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) {
        if (!in_word(at - 1) && !in_word(at + word.size())) {
            return true;
        }
    }
    return false;
}

bool is_image_or_sampler(std::string const& declared) {
    static constexpr char const* types[] = {"image1d_t",       "image1d_array_t", "image1d_buffer_t", "image2d_t",
                                            "image2d_array_t", "image3d_t",       "sampler_t"};
    return std::any_of(std::begin(types), std::end(types), [&](char const* type) { return has_word(declared, type); });
}

// The object in an argument's bytes; nothing if they cannot be one.
std::optional<void*> object_in(block::clSetKernelArg const& set) {
    void* handle = nullptr;
    bool const fits = set.arg_size == sizeof handle;
    return fits && (set.arg_value == nullptr || read_safely(&handle, set.arg_value, sizeof handle))
               ? std::optional{handle}
               : std::nullopt;
}

void check_argument(call const& made, block::clSetKernelArg const& set) {
    auto const handle = object_in(set);
    if (!handle || (*handle != nullptr && !is_released(*handle))) {
        return;
    }
    std::string const declared = declaration(made, set.kernel, set.arg_index);
    bool const image = is_image_or_sampler(declared);
    if (*handle == nullptr && image) {
        report(made, "null", "argument " + std::to_string(set.arg_index) + " (" + declared + ") is null");
    } else if (*handle != nullptr && (image || has_word(declared, "global") || has_word(declared, "__global"))) {
        report(made, "argument", "uses " + words_for(*handle, find_object(*handle).value_or(object{})));
    }
}

// An argument that was released after it was set.
void check_launch(call const& made, void* kernel) {
    std::map<std::uint32_t, void*> objects;
    {
        std::scoped_lock const lock{all().mutex};
        if (auto const found = all().kernels.find(kernel); found != all().kernels.end()) {
            objects = found->second.objects;
        }
    }
    for (auto const& [argument, handle] : objects) {
        if (is_released(handle)) {
            report(made, "argument",
                   "argument " + std::to_string(argument) + " is " +
                       words_for(handle, find_object(handle).value_or(object{})));
        }
    }
}

// Notes that this thread is in a call. What another thread is doing at the same time, if it must not.
std::string begin(void* kernel, char const* entry) {
    auto const self = std::this_thread::get_id();
    bool pauses = false;
    std::string other;
    {
        std::scoped_lock const lock{all().mutex};
        kernel_state& each = all().kernels[kernel];
        if (each.entry != nullptr && each.setter != self) {
            other = std::string(each.entry) + at(each.where) + " sets an argument of the kernel in another thread";
        } else if (sets(entry)) {
            bool const alone = each.last == std::thread::id{} || each.last == self;
            pauses = !alone && each.pauses < most_pauses;
            each.pauses += pauses ? 1 : 0;
            each.setter = self;
            each.entry = entry;
            each.where = pauses ? here() : nullptr;
        }
        each.last = self;
    }
    if (pauses) {
        std::this_thread::sleep_for(pause); // so that two threads meet that nothing keeps apart
    }
    return other;
}

} // namespace

void check_kernel(call const& made, description const& about) {
    std::string_view const entry = about.name;
    if (!sets(entry) && !uses_arguments(entry)) {
        return;
    }
    auto* const kernel = handles_in(made, about, *find_handle(about, object_kind::kernel)).front();
    if (std::string const other = begin(kernel, about.name); !other.empty()) {
        report(made, "threads", other);
    }
    if (auto const* const set = as<block::clSetKernelArg>(made, &about); set != nullptr) {
        check_argument(made, *set);
    } else if (!sets(entry)) {
        check_launch(made, kernel);
    }
}

void note_kernel(call const& made, description const& about, bool succeeded) {
    if (!sets(about.name)) {
        return;
    }
    auto const* const set = as<block::clSetKernelArg>(made, &about);
    void* const handle = set != nullptr ? object_in(*set).value_or(nullptr) : nullptr;
    bool counts = false;
    if (auto const object = find_object(handle); handle != nullptr && object) {
        bool const is_counted = object->kind == object_kind::memory || object->kind == object_kind::sampler;
        counts = is_counted && object->released_at == nullptr;
    }
    std::scoped_lock const lock{all().mutex};
    kernel_state& each = all().kernels[first_field(made, about)];
    if (each.setter == std::this_thread::get_id()) {
        each.entry = nullptr;
    }
    if (set == nullptr || !succeeded) {
        return;
    }
    if (counts) {
        each.objects[set->arg_index] = handle;
    } else {
        each.objects.erase(set->arg_index);
    }
}

void forget_kernel(void* kernel) {
    std::scoped_lock const lock{all().mutex};
    all().kernels.erase(kernel);
}

} // namespace nq::layer::check
