#include "player.hpp"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace nq::command {
namespace {

using recording::entry_kind;
using recording::memory;
using recording::read_call;

constexpr std::uint32_t image_element_size = 0x1111;
constexpr std::uint32_t kernel_name = 0x1190;
constexpr std::uint64_t context_platform = 0x1084;

template <class Block>
bool is(read_call const& call) {
    return call.about == &description_of<Block>;
}

// Calls that only ask, or that only have the program called.
bool has_no_effect(std::string_view entry) {
    return entry.starts_with("clGet") || entry == "call_handle_device" || entry == "clSetEventCallback" ||
           entry == "clSetMemObjectDestructorCallback" || entry == "clSetProgramReleaseCallback";
}

void copy_rows(std::byte* to, memory_rows const& rows_to, memory from, memory_rows const& rows_from) {
    for (std::size_t slice = 0; slice < rows_from.count[1]; ++slice) {
        for (std::size_t row = 0; row < rows_from.count[0]; ++row) {
            auto const at = [=](memory_rows const& rows) {
                return rows.offset + slice * rows.pitch[1] + row * rows.pitch[0];
            };
            std::memcpy(to + at(rows_to), from.data() + at(rows_from), rows_from.width);
        }
    }
}

} // namespace

player::player(recording::session const& from, machine& on, device_choice const& choice) : from_(from), machine_(on) {
    for (recording::contents_entry const& each : from.contents) {
        ++contents_of_[each.call];
    }
    for (recording::event const& each : from.events) {
        if (each.kind == entry_kind::call) {
            numbers_.emplace(each.order, numbers_.size() + 1);
        }
    }
    for (read_call const& each : from.calls) {
        if (is<block::clCreateSubDevices>(each)) {
            auto const made = objects_in(each, *find_field(*each.about, "out_devices"));
            parts_.insert(made.begin(), made.end());
        }
    }
    choose(choice);
}

player::~player() = default;

// The objects in a field of a call, or in the list that it refers to.
std::vector<std::uint64_t> player::objects_in(read_call const& call, field const& each) const {
    if (each.length.rule == length_rule::none || each.length.rule == length_rule::opaque) {
        return {call.field(each.offset)};
    }
    recording::segment const* const list = call.find(each.offset);
    memory const words = list != nullptr ? from_.at(*list) : memory{};
    std::vector<std::uint64_t> all;
    for (std::size_t at = 0; at + sizeof(std::uint64_t) <= words.size(); at += sizeof(std::uint64_t)) {
        all.push_back(read_field(words.data(), at));
    }
    return all;
}

bool player::is_replayed(read_call const& call) const {
    bool const is_of_device = is<block::clRetainDevice>(call) || is<block::clReleaseDevice>(call);
    return call.entry.result == result::success && !has_no_effect(call.about->name) &&
           from_.handles[call.entry.handle].entry.device != 0 && (!is_of_device || parts_.contains(call.field(0)));
}

comparison player::run(std::function<void(std::string const&)> print, watcher const& watch) {
    print_ = std::move(print);
    for (recording::event const& each : from_.events) {
        if (each.kind == entry_kind::contents) {
            compare_contents(from_.contents[each.index]);
        } else if (each.kind == entry_kind::shared) {
            compare_shared(from_.shared[each.index]);
        } else if (is_replayed(from_.calls[each.index])) {
            if (watch && !watch(*this, each.index, true)) {
                break;
            }
            perform_call(from_.calls[each.index]);
            if (watch && !watch(*this, each.index, false)) {
                break;
            }
        }
    }
    return done_;
}

// Whether a call needs what could not be made here.
bool player::is_missing(read_call const& call) const {
    auto const is_gone = [this](std::uint64_t each) { return names_.has_object(each) && names_.object(each) == 0; };
    return std::any_of(call.about->begin(), call.about->end(), [&](field const& each) {
        if (each.length.rule != length_rule::none && is_gone(call.field(each.offset))) {
            return true; // shared memory
        }
        bool const names_objects = each.kind == field_kind::handle || each.kind == field_kind::address;
        bool const is_argument = each.kind == field_kind::bytes && is<block::clSetKernelArg>(call);
        if (each.direction != direction::in || !(names_objects || is_argument)) {
            return false;
        }
        auto const objects = objects_in(call, each);
        return std::any_of(objects.begin(), objects.end(), is_gone);
    });
}

// What a call that is left out, or that has failed, would have made.
void player::forget_results(read_call const& call) {
    for (field const& each : *call.about) {
        bool const is_object = each.kind == field_kind::handle || is<block::clSVMAlloc>(call);
        if (each.direction == direction::out && is_object) {
            for (std::uint64_t const object :
                 each.offset == call.about->result ? std::vector{call.field(each.offset)} : objects_in(call, each)) {
                names_.set_object(object, 0);
            }
        }
    }
}

void player::perform_call(read_call const& call) {
    if (is_missing(call)) {
        ++done_.missing;
        forget_results(call);
        return;
    }
    auto block = [&] {
        try {
            return std::make_unique<replay_block>(from_, call, names_);
        } catch (std::runtime_error const& failure) {
            throw std::runtime_error("the recording is damaged: " + std::string(failure.what()) +
                                     "; copy it or record it again");
        }
    }();
    if (!has_right_pixels(call)) {
        throw std::runtime_error("the recording is damaged: " + std::string(call.about->name) +
                                 " has pixels of another size; copy it or record it again");
    }
    own_event_ = nullptr;
    prepare(call, *block);
    bool const is_made = make(call, *block);
    ++done_.calls;
    compare_status(call, *block);
    bool const is_done = is_made && (call.about->status == absent || block->field(call.about->status, 4) == 0);
    take_results(call, std::move(block), is_done);
}

// Whether the size of a pixel, which all lengths of images come from, is that of the image.
bool player::has_right_pixels(read_call const& call) {
    field const* const format = find_field(*call.about, "image_format");
    bool const is_command = std::string_view(call.about->name).starts_with("clEnqueue");
    field const* const image = is_command ? find_field(*call.about, "image") : nullptr;
    if (call.entry.pixel_size == 0 && image == nullptr) {
        return true;
    }
    if (format != nullptr) {
        recording::segment const* const words = call.find(format->offset);
        return words != nullptr && from_.at(*words).size() == 2 * sizeof(std::uint32_t) &&
               call.entry.pixel_size ==
                   pixel_size_of(static_cast<std::uint32_t>(read_field(from_.at(*words).data(), 0, 4)),
                                 static_cast<std::uint32_t>(read_field(from_.at(*words).data(), 4, 4)));
    }
    return image != nullptr &&
           call.entry.pixel_size ==
               ask<std::size_t>(
                   through(call),
                   block::clGetImageInfo{.image = to_pointer<_nq_cl_mem>(names_.object(call.field(image->offset)))},
                   image_element_size);
}

// What the program did to memory before the call, and what is needed to wait for it.
void player::prepare(read_call const& call, replay_block& block) {
    bool const is_unmap = is<block::clEnqueueUnmapMemObject>(call) || is<block::clEnqueueSVMUnmap>(call);
    for (field const& each : *call.about) {
        recording::segment const* const content =
            is_unmap && each.kind == field_kind::address ? call.find(each.offset) : nullptr;
        auto const map = content != nullptr ? names_.find_map(call.field(each.offset)) : std::nullopt;
        if (map && map->is_same_shape() && from_.at(*content).size() >= map->rows_recorded.end()) {
            auto const bytes = names_.relocated(from_.at(*content));
            copy_rows(map->here, map->rows_here, bytes, map->rows_recorded);
        }
        if (is_unmap && each.kind == field_kind::address) {
            names_.remove_map(call.field(each.offset));
        }
    }
    field const* const event = find_field(*call.about, "event");
    if (contents_of_.contains(call.entry.order) && event != nullptr && block.field(event->offset) == 0) {
        block.put(event->offset, reinterpret_cast<std::uintptr_t>(&own_event_));
    }
    if (auto* const freed =
            is<block::clEnqueueSVMFree>(call) ? reinterpret_cast<block::clEnqueueSVMFree*>(block.data()) : nullptr;
        freed != nullptr && call.field(offsetof(block::clEnqueueSVMFree, pfn_free_func)) != 0) {
        freed->pfn_free_func = [](auto...) {}; // the program's function has freed it by calls of its own
    }
}

bool player::make(read_call const& call, replay_block& block) {
    if (is<block::clCreateContextFromType>(call)) {
        return make_context(call, block);
    }
    if (is<block::clEnqueueNativeKernel>(call)) {
        ++done_.left_out;
        return make_marker(call, block);
    }
    return nq_call_capability(through(call).handle, call.entry.id, block.data(), nullptr) == result::success;
}

// The devices that the recording uses, whatever their type is here.
bool player::make_context(read_call const& call, replay_block& block) {
    std::vector<_nq_cl_device_id*> devices;
    device_here const& own = chosen_.at(from_.handles[call.entry.handle].entry.device);
    for (auto const& [recorded, each] : chosen_) {
        auto* const raw = to_pointer<_nq_cl_device_id>(each.raw);
        if (each.raw_platform == own.raw_platform && std::find(devices.begin(), devices.end(), raw) == devices.end()) {
            devices.push_back(raw);
        }
    }
    std::int64_t const properties[] = {context_platform, static_cast<std::int64_t>(own.raw_platform), 0};
    block::clCreateContext made{
        .properties = properties, .num_devices = static_cast<std::uint32_t>(devices.size()), .devices = devices.data()};
    bool const is_made = perform(through(call), made);
    block.put(call.about->result, reinterpret_cast<std::uintptr_t>(made.result));
    std::memcpy(block.data() + call.about->status, &made.error_code, sizeof made.error_code);
    return is_made;
}

// In place of a function of the program, so that others can wait for it.
bool player::make_marker(read_call const& call, replay_block& block) {
    auto const* const native = reinterpret_cast<block::clEnqueueNativeKernel*>(block.data());
    block::clEnqueueMarkerWithWaitList made{.command_queue = native->command_queue,
                                            .event_wait_list = native->event_wait_list,
                                            .event = native->event,
                                            .num_events_in_wait_list = native->num_events_in_wait_list};
    block::clEnqueueMarker older{.command_queue = native->command_queue, .event = native->event};
    return perform(through(call), made) || perform(through(call), older);
}

void player::take_results(read_call const& call, std::unique_ptr<replay_block> block, bool is_done) {
    bool const is_whole = is_done && call.succeeded();
    if (call.succeeded()) {
        forget_results(call);
    }
    if (is_whole) {
        for (auto const& [recorded, here] : block->returned()) {
            names_.set_object(recorded, here);
        }
    }
    auto places = is_whole ? block->written() : std::map<std::size_t, place>{};
    field const* const flags = find_field(*call.about, "map_flags");
    for (auto const& [offset, each] : places) {
        if (is<block::clSVMAlloc>(call)) {
            names_.set_object(call.field(offset), reinterpret_cast<std::uintptr_t>(each.here));
            names_.set_shared(call.field(offset), each.rows_here.end(), reinterpret_cast<std::uintptr_t>(each.here));
        } else if (flags != nullptr) {
            names_.add_map(call.field(offset), each);
        }
    }
    if (is_whole && is<block::clCreateKernelsInProgram>(call)) {
        name_kernels(call, *block);
    }
    auto const contents = contents_of_.find(call.entry.order);
    if (is_whole && contents != contents_of_.end()) {
        field const* const at = find_field(*call.about, "event");
        auto* const* const event = at != nullptr ? to_pointer<_nq_cl_event*>(block->field(at->offset)) : nullptr;
        block::clRetainEvent retained{.event = event != nullptr ? *event : nullptr};
        if (retained.event != own_event_) {
            perform(through(call), retained);
        }
        awaited_[call.entry.order] = {through(call), std::move(block), std::move(places), retained.event,
                                      contents->second};
    } else if (block->keeps_memory()) {
        kept_.push_back(std::move(block));
    }
}

// Implementations list the kernels of a program in orders of their own.
void player::name_kernels(read_call const& call, replay_block const& block) {
    auto const all = block.returned();
    for (std::uint32_t i = 0; i < all.size(); ++i) {
        recording::segment const* const name = call.find(offsetof(block::clCreateKernelsInProgram, kernels), i + 1);
        for (auto const& [recorded, here] : all) {
            std::string const text =
                ask_text(through(call), block::clGetKernelInfo{.kernel = to_pointer<_nq_cl_kernel>(here)}, kernel_name);
            memory const wanted = name != nullptr ? from_.at(*name) : memory{};
            if (wanted.size() == text.size() + 1 && std::memcmp(wanted.data(), text.data(), text.size()) == 0) {
                names_.set_object(all[i].first, here);
            }
        }
    }
}

} // namespace nq::command
