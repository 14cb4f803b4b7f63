#include "extract.hpp"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <stdexcept>
#include <string_view>

namespace nq::command {
namespace {

using recording::memory;
using recording::read_call;
using recording::session;

constexpr std::uint64_t access_flags = 7; // CL_MEM_READ_WRITE, CL_MEM_WRITE_ONLY, CL_MEM_READ_ONLY
constexpr std::uint32_t mem_type = 0x1100;
constexpr std::uint32_t mem_flags = 0x1101;
constexpr std::uint32_t mem_size = 0x1102;
constexpr std::uint32_t image_format = 0x1110;
constexpr std::uint32_t image_element_size = 0x1111;
constexpr std::uint32_t image_width = 0x1114;
constexpr std::uint32_t type_buffer = 0x10F0;
constexpr std::uint32_t type_image2d = 0x10F1;
constexpr std::uint32_t type_image3d = 0x10F2;

template <class Block>
Block const* as(read_call const& call) {
    return call.about == &description_of<Block> ? reinterpret_cast<Block const*>(call.block.data()) : nullptr;
}

std::string text_at(session const& from, recording::segment const* of) {
    memory const bytes = of != nullptr ? from.at(*of) : memory{};
    return {reinterpret_cast<char const*>(bytes.data()), bytes.empty() ? 0 : bytes.size() - 1};
}

template <class Object>
std::uint64_t number(Object* object) {
    return reinterpret_cast<std::uintptr_t>(object);
}

[[noreturn]] void refuse(std::string const& what) {
    throw std::runtime_error("the launch cannot be extracted: " + what);
}

} // namespace

extractor::extractor(std::string kernel, unsigned nth) {
    parts_.kernel = std::move(kernel);
    parts_.nth = nth;
}

std::string extractor::missing() const {
    std::string names;
    for (auto const& [name, count] : launches_) {
        names += (names.empty() ? "" : ", ") + std::to_string(count) + " of " + name;
    }
    return "the session has no launch " + std::to_string(parts_.nth) + " of " + parts_.kernel + "; it has " +
           (names.empty() ? "none at all" : names);
}

bool extractor::watch(player& on, std::size_t index, bool is_before) {
    read_call const& call = on.from().calls[index];
    if (!call.succeeded()) {
        return true;
    }
    bool const is_launch =
        as<block::clEnqueueNDRangeKernel>(call) != nullptr || as<block::clEnqueueTask>(call) != nullptr;
    if (!is_launch) {
        if (!is_before) {
            note(on.from(), call, index);
        }
        return true;
    }
    kernel_state const& kernel = kernels_[call.field(offsetof(block::clEnqueueTask, kernel))];
    if (is_before && ++launches_[kernel.name] == parts_.nth && kernel.name == parts_.kernel) {
        take(on, call);
        is_found_ = true;
    } else if (!is_before && is_found_) {
        for (auto& [position, each] : parts_.arguments) {
            launch_argument result;
            if (objects_.contains(position) && !each.before.empty()) {
                take_memory(on, call, objects_[position], result);
                each.after = std::move(result.before);
            }
        }
        return false;
    }
    return true;
}

// What later launches depend on.
void extractor::note(session const& from, read_call const& call, std::size_t index) {
    if (auto const* const set = as<block::clSetKernelArg>(call); set != nullptr) {
        kernels_[number(set->kernel)].arguments[set->arg_index] = index;
    } else if (auto const* const shared = as<block::clSetKernelArgSVMPointer>(call); shared != nullptr) {
        kernels_[number(shared->kernel)].arguments[shared->arg_index] = index;
    } else if (auto const* const made = as<block::clCreateProgramWithSource>(call); made != nullptr) {
        program_state program;
        for (std::uint32_t i = 1; i <= made->count; ++i) {
            recording::segment const* const part = call.find(offsetof(block::clCreateProgramWithSource, strings), i);
            memory const text = part != nullptr ? from.at(*part) : memory{};
            auto const end = std::find(text.begin(), text.end(), std::byte{0});
            program.source.insert(program.source.end(), text.begin(), end);
        }
        programs_[number(made->result)] = std::move(program);
    } else if (auto const* const build = as<block::clBuildProgram>(call);
               build != nullptr && programs_.contains(number(build->program))) {
        programs_[number(build->program)].options = text_at(from, call.find(offsetof(block::clBuildProgram, options)));
    } else if (auto const* const gate = as<block::clCreateUserEvent>(call); gate != nullptr) {
        gates_.insert(number(gate->result));
    } else if (auto const* const opened = as<block::clSetUserEventStatus>(call); opened != nullptr) {
        gates_.erase(number(opened->event));
    } else if (call.about->result != absent && std::string_view(call.about->name).starts_with("clCreate")) {
        creations_[call.field(call.about->result)] = index;
    }
    note_kernels(from, call);
}

void extractor::note_kernels(session const& from, read_call const& call) {
    if (auto const* const made = as<block::clCreateKernel>(call); made != nullptr) {
        kernels_[number(made->result)] = {text_at(from, call.find(offsetof(block::clCreateKernel, kernel_name))),
                                          number(made->program)};
    } else if (auto const* const clone = as<block::clCloneKernel>(call); clone != nullptr) {
        kernels_[number(clone->result)] = kernels_[number(clone->source_kernel)];
    } else if (auto const* const all = as<block::clCreateKernelsInProgram>(call); all != nullptr) {
        std::size_t const offset = offsetof(block::clCreateKernelsInProgram, kernels);
        recording::segment const* const list = call.find(offset);
        memory const words = list != nullptr ? from.at(*list) : memory{};
        for (std::uint32_t i = 0; i < words.size() / sizeof(std::uint64_t); ++i) {
            kernels_[read_field(words.data(), i * sizeof(std::uint64_t))] = {text_at(from, call.find(offset, i + 1)),
                                                                             number(all->program)};
        }
    }
}

void extractor::take(player& on, read_call const& launch) {
    session const& from = on.from();
    kernel_state const& kernel = kernels_[launch.field(offsetof(block::clEnqueueTask, kernel))];
    auto const program = programs_.find(kernel.program);
    if (program == programs_.end()) {
        refuse("the program of the kernel was not made of source");
    }
    parts_.source = program->second.source;
    parts_.options = program->second.options;
    parts_.platform = ask_text(on.through(launch),
                               block::clGetPlatformInfo{.platform = to_pointer<_nq_cl_platform_id>(on.names().object(
                                                            from.handles[launch.entry.handle].entry.platform))},
                               0x0902); // CL_PLATFORM_NAME
    take_sizes(from, launch);
    for (std::uint64_t const gate : gates_) { // the session ends here: nothing may wait for what would come
        block::clSetUserEventStatus open{.event = to_pointer<_nq_cl_event>(on.names().object(gate))};
        perform(on.through(launch), open);
    }
    for (auto const& [position, index] : kernel.arguments) {
        launch_argument taken = take_argument(on, launch, from.calls[index]);
        taken.same_as = position;
        bool const is_object = taken.what != launch_argument::kind::value && taken.what != launch_argument::kind::local;
        std::uint64_t const object =
            is_object
                ? read_field(from.at(*from.calls[index].find(offsetof(block::clSetKernelArg, arg_value))).data(), 0)
                : 0;
        for (auto const& [other, each] : objects_) {
            taken.same_as = each == object && is_object ? std::min(taken.same_as, other) : taken.same_as;
        }
        if (is_object) {
            objects_[position] = object;
        }
        parts_.arguments[position] = std::move(taken);
    }
}

void extractor::take_sizes(session const& from, read_call const& launch) {
    auto const* const range = as<block::clEnqueueNDRangeKernel>(launch);
    parts_.dimensions = range != nullptr ? std::clamp<std::uint32_t>(range->work_dim, 1, 3) : 1;
    auto const read = [&](std::size_t offset, std::uint64_t(&into)[3]) {
        recording::segment const* const list = range != nullptr ? launch.find(offset) : nullptr;
        memory const words = list != nullptr ? from.at(*list) : memory{};
        std::memcpy(into, words.data(), std::min(words.size(), sizeof into));
        return list != nullptr;
    };
    read(offsetof(block::clEnqueueNDRangeKernel, global_work_offset), parts_.offset);
    read(offsetof(block::clEnqueueNDRangeKernel, global_work_size), parts_.global);
    parts_.is_local_chosen =
        !read(offsetof(block::clEnqueueNDRangeKernel, local_work_size), parts_.local) && range != nullptr;
    if (parts_.is_local_chosen) {
        parts_.local[0] = std::gcd(parts_.global[0], std::uint64_t{64});
    }
}

launch_argument extractor::take_argument(player& on, read_call const& launch, read_call const& set) {
    auto const* const plain = as<block::clSetKernelArg>(set);
    if (plain == nullptr) {
        refuse("it has shared memory as an argument");
    }
    recording::segment const* const value = set.find(offsetof(block::clSetKernelArg, arg_value));
    launch_argument made;
    made.size = plain->arg_size;
    if (value == nullptr) {
        made.what = launch_argument::kind::local;
        return made;
    }
    memory const bytes = on.from().at(*value);
    auto const creation =
        bytes.size() == sizeof(std::uint64_t) ? creations_.find(read_field(bytes.data(), 0)) : creations_.end();
    if (creation == creations_.end()) {
        made.before.assign(bytes.begin(), bytes.end());
        return made;
    }
    read_call const& maker = on.from().calls[creation->second];
    std::string_view const entry = maker.about->name;
    if (entry.starts_with("clCreateSampler")) {
        take_sampler(on.from(), maker, made);
    } else if (entry.starts_with("clCreateBuffer") || entry.starts_with("clCreateImage") ||
               entry == "clCreateSubBuffer") {
        take_memory(on, launch, creation->first, made);
    } else {
        refuse("an argument was made by " + std::string(entry));
    }
    return made;
}

// Reads the memory object on the device, once the queue has come so far.
void extractor::take_memory(player& on, read_call const& launch, std::uint64_t object, launch_argument& into) const {
    opened const through = on.through(launch);
    auto* const queue = to_pointer<_nq_cl_command_queue>(on.names().object(launch.field(0)));
    auto* const raw = to_pointer<_nq_cl_mem>(on.names().object(object));
    block::clGetMemObjectInfo const asked{.memobj = raw};
    auto const type = ask<std::uint32_t>(through, asked, mem_type);
    into.flags = ask<std::uint64_t>(through, asked, mem_flags) & access_flags;
    into.size = ask<std::size_t>(through, asked, mem_size);
    bool is_read = false;
    if (type == type_buffer) {
        into.what = launch_argument::kind::buffer;
        into.before.resize(into.size);
        block::clEnqueueReadBuffer read{
            .command_queue = queue, .buffer = raw, .size = into.size, .ptr = into.before.data(), .blocking_read = 1};
        is_read = perform(through, read);
    } else if (type == type_image2d || type == type_image3d) {
        into.what = launch_argument::kind::image;
        block::clGetImageInfo const image{.image = raw};
        auto const format = ask<std::uint64_t>(through, image, image_format);
        into.order = static_cast<std::uint32_t>(format);
        into.type = static_cast<std::uint32_t>(format >> 32U);
        std::size_t region[3] = {1, 1, 1};
        std::size_t const origin[3] = {0, 0, 0};
        for (std::uint32_t i = 0; i < (type == type_image3d ? 3U : 2U); ++i) {
            region[i] = ask<std::size_t>(through, image, image_width + i);
        }
        std::copy_n(region, 3, into.extent);
        into.before.resize(region[0] * region[1] * region[2] * ask<std::size_t>(through, image, image_element_size));
        block::clEnqueueReadImage read{.command_queue = queue,
                                       .image = raw,
                                       .origin = origin,
                                       .region = region,
                                       .ptr = into.before.data(),
                                       .blocking_read = 1};
        is_read = perform(through, read);
    }
    if (!is_read) {
        refuse("the memory of an argument cannot be read by the host");
    }
}

void extractor::take_sampler(session const& from, read_call const& made, launch_argument& into) const {
    into.what = launch_argument::kind::sampler;
    if (auto const* const plain = as<block::clCreateSampler>(made); plain != nullptr) {
        into.extent[0] = plain->normalized_coords;
        into.order = plain->addressing_mode;
        into.type = plain->filter_mode;
        return;
    }
    constexpr std::uint32_t clamp = 0x1132;
    constexpr std::uint32_t nearest = 0x1140;
    into.extent[0] = 1;
    into.order = clamp;
    into.type = nearest;
    recording::segment const* const list =
        made.find(offsetof(block::clCreateSamplerWithProperties, sampler_properties));
    memory const words = list != nullptr ? from.at(*list) : memory{};
    for (std::size_t at = 0; at + 16 <= words.size(); at += 16) {
        std::uint64_t const name = read_field(words.data(), at);
        auto const value = static_cast<std::uint32_t>(read_field(words.data(), at + 8));
        if (name == 0x1152) { // CL_SAMPLER_NORMALIZED_COORDS, and then the two modes
            into.extent[0] = value;
        } else {
            (name == 0x1153 ? into.order : into.type) = value;
        }
    }
}

} // namespace nq::command
