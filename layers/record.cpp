// Writes a session to a file: each call with its arguments and results and the memory that they refer to, for
// `vorn-mero replay`.

#include "layer.hpp"
#include "record_memory.hpp"
#include "record_state.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace nq::layer {
namespace {

using namespace record;
using recording::entry_kind;

std::uint32_t own_thread() {
    static std::atomic<std::uint32_t> count = 0;
    static thread_local std::uint32_t const number = count++;
    return number;
}

// A callback of the program, which may read what commands have written.
struct watched_callback {
    event_callback function;
    void* user_data;

    static void run(_nq_cl_event* event, int status, void* data) {
        watched_callback const each = *static_cast<watched_callback*>(data);
        delete static_cast<watched_callback*>(data);
        attempt([] { collect(false); });
        each.function(event, status, each.user_data);
    }
};

// A call while it is made.
class draft {
public:
    draft(call const& made, description const& about) : made_(made), about_(about), used_(made) {}

    // Before the call. It is made with what this returns.
    call const& begin() {
        std::string_view const entry = about_.name;
        entry_.handle = number_of_handle(made_);
        entry_.thread = own_thread();
        entry_.id = made_.id;
        entry_.pixel_size = pixel_size();
        std::scoped_lock const lock{all().mutex};
        if (entry.starts_with("clEnqueue")) {
            write_shared(false);
        }
        for (field const& each : about_) {
            if (each.direction == direction::in) {
                add_input(each);
            }
        }
        watch();
        // what other threads may build on before the call returns
        is_ordered_ = entry.starts_with("clRelease") || entry == "clSetUserEventStatus" || entry == "clSVMFree";
        entry_.order = is_ordered_ ? next_order() : 0;
        return used_;
    }

    // After the call.
    void end(int result) {
        take_results(result);
        bool const is_done = succeeded(made_, about_, result);
        _nq_cl_event* kept = is_done ? event() : nullptr;
        std::vector<std::string> const kernels = is_done ? names_of_kernels() : std::vector<std::string>();
        {
            std::scoped_lock const lock{all().mutex};
            entry_.order = is_ordered_ ? entry_.order : next_order();
            if (is_done) {
                add_results(kernels);
            }
            write(result);
            if (is_done) {
                all().memory.note(made_, about_, entry_.pixel_size);
                note_written(kept);
            }
        }
        if (block::clReleaseEvent released{.event = kept}; kept != nullptr) {
            ask(made_, released);
        }
        std::string_view const entry = about_.name;
        bool const waits = entry == "clFinish" || entry == "clWaitForEvents" || is_blocking();
        if (waits || entry == "clGetEventInfo") {
            collect(waits);
        }
    }

private:
    // Of the image that is made, or that the command uses; 0 without one.
    std::uint32_t pixel_size() const {
        if (field const* const format = find_field(about_, "image_format"); format != nullptr) {
            std::uint32_t words[2] = {};
            read_safely(words, read_pointer(made_.block, format->offset), sizeof words);
            return static_cast<std::uint32_t>(pixel_size_of(words[0], words[1]));
        }
        bool const is_command = std::string_view(about_.name).starts_with("clEnqueue");
        field const* const image = is_command ? find_field(about_, "image") : nullptr;
        if (image == nullptr) {
            return 0;
        }
        block::clGetImageInfo const question{
            .image = static_cast<_nq_cl_mem*>(const_cast<void*>(read_pointer(made_.block, image->offset))),
            .param_name = "CL_IMAGE_ELEMENT_SIZE"_cl};
        return static_cast<std::uint32_t>(ask_value<std::size_t>(made_, question).value_or(0));
    }

    bool is_blocking() const {
        bool blocks = false;
        for (field const& each : about_) {
            blocks =
                blocks || (each.kind == field_kind::boolean && std::string_view(each.name).starts_with("blocking_") &&
                           read_field(made_.block, each.offset, each.size) != 0);
        }
        return blocks;
    }

    void add(std::size_t offset, std::size_t item, std::optional<bytes> const& content) {
        if (content) {
            segments_.push_back(
                {static_cast<std::uint32_t>(offset), static_cast<std::uint32_t>(item), all().file.keep(*content)});
        }
    }

    std::size_t extent(field const& of) const {
        return extent_of(about_, of, made_.block, entry_.pixel_size, read_safely).value_or(0);
    }

    void add_input(field const& each) {
        void const* const pointer =
            each.length.rule != length_rule::none ? read_pointer(made_.block, each.offset) : nullptr;
        if (pointer == nullptr) {
            return;
        }
        if (each.kind == field_kind::address && each.length.rule == length_rule::opaque) {
            bool const is_unmap = std::string_view(about_.name).find("Unmap") != std::string_view::npos;
            auto const map = is_unmap ? all().memory.take_map(pointer) : std::nullopt;
            add(each.offset, 0, map && map->is_written ? copy(pointer, map->size) : std::nullopt);
        } else if (each.length.rule == length_rule::zero_terminated) {
            add(each.offset, 0, copy_text(pointer));
        } else if (each.length.rule != length_rule::opaque && !all().memory.is_shared(pointer)) {
            auto const content = copy(pointer, extent(each));
            add(each.offset, 0, content);
            bool const is_list =
                (each.kind == field_kind::text || each.kind == field_kind::bytes) && each.element_size == sizeof(void*);
            if (is_list && content) {
                add_items(each, *content);
            }
        }
    }

    // The texts or binaries of a list.
    void add_items(field const& each, bytes const& list) {
        std::uint8_t const at = each.length.operands[1];
        void const* const lengths = at == absent ? nullptr : read_pointer(made_.block, at);
        auto const sizes = lengths != nullptr ? copy(lengths, list.size()) : std::nullopt;
        for (std::size_t i = 0; i < list.size() / sizeof(void*); ++i) {
            void const* const item = read_pointer(list.data(), i * sizeof(void*));
            std::size_t const size = sizes ? read_field(sizes->data(), i * sizeof(void*)) : 0;
            if (item != nullptr) {
                add(each.offset, i + 1, size != 0 ? copy(item, size) : copy_text(item));
            }
        }
    }

    // What the layer puts into the block in place of what the program has there.
    void watch() {
        field const* const event = find_field(about_, "event");
        bool writes = false;
        for (field const& each : about_) {
            writes = writes || (each.kind == field_kind::bytes && each.direction == direction::out);
        }
        std::memcpy(block_.data(), made_.block, about_.size);
        if (writes && event != nullptr && event->direction == direction::out && !is_blocking()) {
            event_at_ = event->offset;
            if (read_pointer(made_.block, event_at_) == nullptr) {
                put(event_at_, &own_event_);
            }
        }
        auto const* const callback = as<block::clSetEventCallback>(made_, &about_);
        if (callback != nullptr && callback->pfn_notify != nullptr) {
            watched_ = new watched_callback{callback->pfn_notify, callback->user_data};
            put(offsetof(block::clSetEventCallback, pfn_notify), &watched_callback::run);
            put(offsetof(block::clSetEventCallback, user_data), watched_);
        }
    }

    template <class Value>
    void put(std::size_t offset, Value value) {
        std::memcpy(block_.data() + offset, &value, sizeof value);
        used_.block = block_.data();
    }

    void take_results(int result) {
        if (used_.block != made_.block) {
            for (field const& each : about_) {
                if (each.offset == about_.status || each.offset == about_.result) {
                    std::memcpy(static_cast<std::byte*>(made_.block) + each.offset, block_.data() + each.offset,
                                each.size);
                }
            }
        }
        auto const* const callback = as<block::clSetEventCallback>(made_, &about_);
        if (watched_ != nullptr && (result != result::success || callback->status != 0)) {
            delete watched_;
        }
    }

    // Of kernels that were made all at once.
    std::vector<std::string> names_of_kernels() const {
        std::vector<std::string> names;
        auto const* const many = as<block::clCreateKernelsInProgram>(made_, &about_);
        if (many != nullptr && many->kernels != nullptr) {
            std::size_t const count = written_size(*find_field(about_, "kernels")) / sizeof(void*);
            for (std::size_t i = 0; i < std::min<std::size_t>(count, many->num_kernels); ++i) {
                names.push_back(ask_text(made_, block::clGetKernelInfo{.kernel = many->kernels[i],
                                                                       .param_name = "CL_KERNEL_FUNCTION_NAME"_cl}));
            }
        }
        return names;
    }

    void add_results(std::vector<std::string> const& kernels) {
        bool const is_query = std::string_view(about_.name).starts_with("clGet");
        for (field const& each : about_) {
            bool const is_known = each.direction == direction::out && each.length.rule != length_rule::none &&
                                  each.length.rule != length_rule::opaque;
            void const* const pointer = is_known ? read_pointer(made_.block, each.offset) : nullptr;
            if (pointer != nullptr && (is_query || each.kind != field_kind::bytes)) {
                add(each.offset, 0, copy(pointer, std::min(extent(each), written_size(each))));
            }
        }
        for (std::size_t i = 0; i < kernels.size(); ++i) {
            add(offsetof(block::clCreateKernelsInProgram, kernels), i + 1,
                copy(kernels[i].c_str(), kernels[i].size() + 1));
        }
    }

    // How much of the room for a list or a reply the call has filled.
    std::size_t written_size(field const& room) const {
        for (field const& each : about_) {
            bool const tells = each.direction == direction::out && each.length.rule == length_rule::constant &&
                               each.kind == (room.kind == field_kind::bytes ? field_kind::size : field_kind::count);
            void const* const told = tells ? read_pointer(made_.block, each.offset) : nullptr;
            if (told != nullptr && room.length.rule == length_rule::counted) {
                return read_field(told, 0, each.element_size) * room.element_size;
            }
        }
        return std::size_t(-1);
    }

    void write(int result) {
        entry_.result = result;
        entry_.segments = static_cast<std::uint32_t>(segments_.size());
        bytes tail(about_.size + segments_.size() * sizeof(recording::segment));
        std::memcpy(tail.data(), made_.block, about_.size);
        if (!segments_.empty()) {
            std::memcpy(tail.data() + about_.size, segments_.data(), tail.size() - about_.size);
        }
        if (!all().is_closed) {
            all().file.write(entry_kind::call, entry_, tail);
            all().calls.fetch_add(1, std::memory_order_relaxed);
        }
    }

    // What the command writes into memory of the program, now or later. Takes the event if it is to be waited for.
    void note_written(_nq_cl_event*& of) {
        if (!std::string_view(about_.name).starts_with("clEnqueue")) {
            return;
        }
        bool const reads = find_field(about_, "map_flags") == nullptr ||
                           (value_of(made_, about_, "map_flags") & "CL_MAP_READ"_cl) != 0;
        for (field const& each : about_) {
            if (each.kind != field_kind::bytes || each.direction != direction::out) {
                continue;
            }
            void const* const pointer = read_pointer(made_.block, each.offset);
            bool const is_device = find_field(about_, "map_flags") == nullptr && all().memory.is_shared(pointer);
            written const noted{{made_.handle, made_.version, 0, nullptr, nullptr},
                                entry_.order,
                                each.offset,
                                pointer,
                                extent(each),
                                of};
            bool const is_wanted = pointer != nullptr && reads && !is_device && noted.size != 0;
            if (is_wanted && noted.event != nullptr) {
                all().pending.push_back(noted);
                of = nullptr;
            } else if (is_wanted && is_blocking()) {
                write_contents(noted);
            }
        }
    }

    // A reference to the event of a command that does not block; null if there is none.
    _nq_cl_event* event() const {
        if (own_event_ != nullptr || event_at_ == absent) {
            return own_event_;
        }
        auto* const* const place = static_cast<_nq_cl_event* const*>(read_pointer(made_.block, event_at_));
        block::clRetainEvent retained{.event = place != nullptr ? *place : nullptr};
        return retained.event != nullptr && ask(made_, retained) ? retained.event : nullptr;
    }

    call const& made_;
    description const& about_;
    call used_;
    recording::call_entry entry_{};
    std::vector<recording::segment> segments_{};
    std::array<std::byte, 256> block_{};
    bool is_ordered_ = false;
    std::uint8_t event_at_ = absent;
    _nq_cl_event* own_event_ = nullptr;
    watched_callback* watched_ = nullptr;
};

[[gnu::destructor]] void finish() { close(); }

} // namespace

int perform(call const& made) noexcept {
    description const* const about = made.about();
    if (about == nullptr || is_forked() || all().is_closed) {
        return forward(made);
    }
    draft each(made, *about);
    call const* used = &made;
    attempt([&] { used = &each.begin(); });
    int const result = forward(*used);
    attempt([&] { each.end(result); });
    return result;
}

} // namespace nq::layer
