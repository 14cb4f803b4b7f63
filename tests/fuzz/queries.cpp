// Queries of the newest OpenCL version, and the string helpers, on replies that the input makes up: sizes that are
// wrong, change or are not told, and any bytes. A read gives exactly the bytes of the last reply, or refuses it.

#include "fuzz/input.hpp"
#include "scripted/replies.hpp"
#include "unit/allocations.hpp"
#include "unit/world.hpp"

#include <nq/error.hpp>
#include <vorn/mero/common/error.hpp>
#include <vorn/mero/internal/strings.hpp>

#include <algorithm>
#include <typeinfo>

namespace {

using namespace unit;
namespace common = vorn::mero::common;
using scripted::outcome;

world& objects() {
    static auto& immortal = *new world;
    return immortal;
}

/// What the implementation did in this run.
struct {
    fuzz::input* input = nullptr;
    std::vector<scripted::answered_query> calls{};
    std::string written{}; // by the last call
} implementation;

/// Answers a query. Writes no more than the room that is offered.
void answer(std::size_t capacity, void* value, std::size_t& reported) {
    fuzz::input& input = *implementation.input;
    switch (std::uint8_t const how = input.byte(); how % 8) {
    case 0:
    case 1:
        reported = input.byte();
        break;
    case 2: // nothing is told
        break;
    case 3:
        reported = capacity;
        break;
    case 4:
        reported = capacity + input.byte() - 128;
        break;
    case 5:
        input.fill(&reported, sizeof reported);
        break;
    default: // the size of most values
        reported = how % 8 == 6 ? 8 : 4;
    }
    bool const objects_are_known = input.byte() % 2 == 0;
    implementation.written.assign(std::min<std::size_t>(capacity, 1U << 16U), '\0');
    input.fill(implementation.written.data(), implementation.written.size());
    if (objects_are_known) {
        auto* const handle = raw_of(objects().device);
        for (std::size_t i = 0; i + sizeof handle <= implementation.written.size(); i += sizeof handle) {
            std::memcpy(implementation.written.data() + i, &handle, sizeof handle);
        }
    }
    if (value != nullptr) {
        std::memcpy(value, implementation.written.data(), implementation.written.size());
    }
    implementation.calls.push_back({capacity, reported});
}

template <class... Blocks>
void answer_queries() {
    (scripted::libnq::instance().on<Blocks>([](auto& block) {
        answer(block.param_value_size, block.param_value, *block.param_value_size_ret);
        return true;
    }),
     ...);
}

/// Tells any number of objects, and makes as many as there is room for, or fewer.
template <class Raw>
bool list(Raw** place, std::uint32_t capacity, std::uint32_t* count) {
    std::uint64_t const told = implementation.input->number();
    for (std::uint32_t i = 0; place != nullptr && i < std::min<std::uint64_t>(told, capacity); ++i) {
        place[i] = scripted::libnq::instance().make<Raw>(1);
    }
    if (count != nullptr) {
        *count = static_cast<std::uint32_t>(told);
    }
    return true;
}

void answer_listings() {
    auto& libnq = scripted::libnq::instance();
    libnq.on<clCreateSubDevices>(
        [](auto& block) { return list(block.out_devices, block.num_devices, block.num_devices_ret); });
    libnq.on<clCreateKernelsInProgram>(
        [](auto& block) { return list(block.kernels, block.num_kernels, block.num_kernels_ret); });
    libnq.on<clGetSupportedImageFormats>([](auto& block) {
        implementation.input->fill(block.image_formats, block.num_entries * sizeof(image_format));
        if (block.num_image_formats != nullptr) {
            *block.num_image_formats = static_cast<std::uint32_t>(implementation.input->number());
        }
        return true;
    });
}

struct query {
    char const* name;
    std::optional<scripted::reading> reading; // none where there is more than one read
    bool is_exact;                            // what is found is what the reply holds
    std::string (*read)(world&);
};

template <class Read>
constexpr bool is_exact() {
    using found = std::invoke_result_t<Read, world&>;
    return !std::is_same_v<found, bool> && !std::is_same_v<found, unit::names>;
}

template <class Read>
query read(char const* name, Read, std::size_t size = 0) {
    using found = std::invoke_result_t<Read, world&>;
    constexpr std::size_t width = owning<found> ? sizeof(void*) : sizeof(found);
    auto const bytes = [](world& w) {
        std::string text = reply_of(Read()(w));
        text.resize(text.size() - (std::is_same_v<found, std::string> ? 1 : 0));
        return text;
    };
    return {name, scripted::reading_of<found>(size != 0 ? size : width), is_exact<Read>(), bytes};
}

template <class Use>
query use(char const* name, Use) {
    return {name, {}, false, [](world& w) { return Use()(w), std::string(); }};
}

#define READ(member, ...) read(#member, [](world& w) { return w.member; } __VA_OPT__(, ) __VA_ARGS__)
#define USE(member) use(#member, [](world& w) { w.member; })

std::vector<query> const queries = {
    READ(platform.name()),
    READ(platform.extensions()),
    READ(platform.is_full_profile(), 1),
    READ(platform.host_timer_resolution()),
    READ(device.name()),
    READ(device.extensions()),
    READ(device.built_in_kernels()),
    READ(device.is_embedded_profile(), 1),
    READ(device.address_bits()),
    READ(device.image_support(), 4),
    READ(device.single_fp_fma_supported(), 8),
    READ(device.max_work_group_size()),
    READ(device.max_work_item_sizes()),
    READ(device.get_platform()),
    READ(device.parent_device()),
    READ(context.get_devices()),
    READ(context.get_properties()),
    READ(queue.get_context()),
    READ(queue.get_device()),
    READ(queue.profiling_enabled(), 8),
    READ(queue.get_default_device_command_queue()),
    READ(device_queue.device_queue_size()),
    READ(buffer.size()),
    READ(buffer.host_ptr()),
    READ(buffer.get_context()),
    READ(sub_buffer.parent_buffer()),
    READ(pipe.packet_size()),
    READ(image.get_image_format()),
    READ(sampler.filter_mode()),
    READ(program.get_devices()),
    READ(program.source_code()),
    READ(program.kernel_names()),
    READ(program.il()),
    READ(program.build_status(w.device)),
    READ(program.build_log(w.device)),
    READ(kernel.function_name()),
    READ(kernel.get_program()),
    READ(kernel.attributes()),
    READ(kernel.argument_type_qualifier(1)),
    READ(kernel.compile_work_group_size(w.device)),
    READ(kernel.get_max_num_sub_groups(w.device)),
    READ(event.get_command_queue()),
    READ(event.has_associated_command_queue(), 8),
    READ(event.profile_command_end()),
    USE(device.partition_type()),
    USE(device.partition_equally_supported()),
    USE(device.partition_equally(2)),
    USE(event.execution_status()),
    USE(event.error_code()),
    USE(event.check()),
    USE(context.get_platform()),
    USE(context.image_2d_supported_formats(mem_flags::read_write)),
    USE(program.binaries()),
    USE(program.create_all_kernels()),
    USE(kernel.clone()),
};

/// Whether a reply is longer than memory.
bool is_huge() { return implementation.calls.back().reported > little_memory::largest / sizeof(word); }

void expect_reply(query const& asked, std::string const& found) {
    std::string reply = implementation.written;
    reply.resize(implementation.calls.back().reported);
    if (asked.reading->kind == scripted::reading::text && !reply.empty()) {
        reply.pop_back();
    }
    fuzz::expect(!asked.is_exact || found == reply, "something else than the reply was found");
}

/// Asks, and looks whether what comes of it is right.
void ask(query const& asked) {
    bool const is_read = asked.reading.has_value();
    auto const made = [&] {
        return is_read ? scripted::outcome_of(*asked.reading, implementation.calls) : outcome::value;
    };
    try {
        std::string const found = asked.read(objects());
        fuzz::expect(made() == outcome::value, "a wrong reply was taken");
        if (is_read) {
            expect_reply(asked, found);
        }
    } catch (common::bad_implementation const&) {
        fuzz::expect(!is_read || made() == outcome::refused, "a right reply was refused");
    } catch (std::bad_alloc const&) {
        fuzz::expect(!is_read || made() == outcome::unfinished || is_huge(), "there is memory");
    } catch (std::length_error const&) {
        fuzz::expect(!is_read || made() == outcome::unfinished || is_huge(), "the reply is not too long");
    } catch (common::error const& error) { // a handle that is none, or the status of an event
        fuzz::expect(made() == outcome::value, error.what());
    } catch (std::logic_error const& error) { // an object that is not there
        fuzz::expect(typeid(error) == typeid(std::logic_error) && made() == outcome::value, error.what());
    }
}

void split(std::string const& text) {
    auto const items = vorn::mero::internal::split_semicolon(text);
    std::string joined;
    for (std::string const& item : items) {
        fuzz::expect(!item.empty() && item.find(';') == std::string::npos, "an item with a semicolon");
        joined += item;
    }
    std::string rest = text;
    std::erase(rest, ';');
    fuzz::expect(joined == rest, "characters got lost");
    fuzz::expect(vorn::mero::internal::split_semicolon(vorn::mero::internal::join_semicolon(items)) == items,
                 "joining does not undo splitting");
    for (std::string const& item : vorn::mero::internal::split_space(text)) {
        fuzz::expect(!item.empty() && text.find(item) != std::string::npos, "a word that is not in the text");
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    objects();
    scripted::libnq::instance().notes_inputs = false;
    answer_queries<clGetPlatformInfo, clGetDeviceInfo, clGetContextInfo, clGetCommandQueueInfo, clGetMemObjectInfo,
                   clGetImageInfo, clGetPipeInfo, clGetSamplerInfo, clGetProgramInfo, clGetProgramBuildInfo,
                   clGetKernelInfo, clGetKernelArgInfo, clGetKernelWorkGroupInfo, clGetKernelSubGroupInfo,
                   clGetEventInfo, clGetEventProfilingInfo>();
    answer_listings();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    auto& libnq = scripted::libnq::instance();
    fuzz::input input(data, size);
    little_memory const limit;
    std::string const before = libnq.leftovers();
    std::size_t const chosen = input.below(queries.size() + 1);
    implementation.input = &input;
    implementation.calls.clear();
    if (chosen == queries.size()) {
        split(input.rest());
    } else {
        ask(queries[chosen]);
    }
    // what is no handle cannot be retained; only the library's releases are its own
    std::erase_if(libnq.faults, [](std::string const& fault) { return fault.starts_with("clRetain"); });
    fuzz::expect(libnq.leftovers() == before, "references are left");
    std::erase_if(libnq.references, [](auto const& each) { return each.second == 0; });
    libnq.forget_calls();
    return 0;
}
