#include "replay_block.hpp"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

namespace nq::command {
namespace {

using recording::memory;

constexpr std::uint64_t most_memory = std::uint64_t{1} << 40U;
constexpr std::size_t most_padding = std::size_t{1} << 28U; // bytes; more comes from a damaged recording
constexpr std::uint64_t svm_pointers = 0x11B6;              // CL_KERNEL_EXEC_INFO_SVM_PTRS
constexpr std::uint64_t use_host_pointer = 8;

// What the readers of a description may look at: what the block refers to.
thread_local std::vector<memory> const* readable = nullptr;

bool read_allowed(void* to, void const* from, std::size_t size) {
    auto const* const start = static_cast<std::byte const*>(from);
    bool const allowed = std::any_of(readable->begin(), readable->end(), [&](memory each) {
        return start >= each.data() && start <= each.data() + each.size() &&
               size <= static_cast<std::size_t>(each.data() + each.size() - start);
    });
    return allowed && detail::copy_memory(to, from, size);
}

std::uint64_t address_of(void const* pointer) { return reinterpret_cast<std::uintptr_t>(pointer); }

bool is_list_of_pointers(field const& each) {
    return each.element_size == sizeof(void*) && (each.kind == field_kind::text || each.kind == field_kind::bytes);
}

// Whether the end of the rows is what it says, without an overflow.
bool is_sane(memory_rows const& rows) {
    constexpr std::size_t most = std::size_t{1} << 31U;
    bool const plain = rows.count[0] == 1 && rows.count[1] == 1;
    return plain ? rows.offset < most_memory
                 : rows.offset < most_memory && rows.width < most_memory && rows.count[0] < most &&
                       rows.count[1] < most && (rows.count[0] <= 1 || rows.pitch[0] < most) &&
                       (rows.count[1] <= 1 || rows.pitch[1] < most);
}

template <class Change>
void change_words(std::vector<std::byte>& bytes, Change change) {
    for (std::size_t at = 0; at + sizeof(std::uint64_t) <= bytes.size(); at += sizeof(std::uint64_t)) {
        std::uint64_t const before = read_field(bytes.data(), at);
        std::uint64_t const after = change(before);
        std::memcpy(bytes.data() + at, &after, sizeof after);
    }
}

} // namespace

std::uint64_t translation::object(std::uint64_t recorded) const {
    auto const found = objects_.find(recorded);
    return found != objects_.end() ? found->second : 0;
}

void translation::set_object(std::uint64_t recorded, std::uint64_t here) {
    if (recorded != 0) {
        objects_[recorded] = here;
    }
}

std::optional<memory> translation::shared_at(std::uint64_t recorded) const {
    auto const next = shared_.upper_bound(recorded);
    if (next == shared_.begin() || recorded - std::prev(next)->first >= std::prev(next)->second.size) {
        return std::nullopt;
    }
    auto const& [start, each] = *std::prev(next);
    std::uint64_t const offset = recorded - start;
    return memory(to_pointer<std::byte const>(each.here + offset), each.size - offset);
}

std::optional<std::uint64_t> translation::address(std::uint64_t recorded) const {
    auto const found = shared_at(recorded);
    return found ? std::optional(address_of(found->data())) : std::nullopt;
}

void translation::set_shared(std::uint64_t recorded, std::uint64_t size, std::uint64_t here) {
    shared_.erase(shared_.lower_bound(recorded), shared_.lower_bound(recorded + size));
    shared_[recorded] = {size, here};
}

std::vector<std::byte> translation::relocated(memory bytes) const {
    std::vector<std::byte> made(bytes.begin(), bytes.end());
    if (has_shared()) {
        change_words(made, [this](std::uint64_t word) { return address(word).value_or(word); });
    }
    return made;
}

std::optional<place> translation::find_map(std::uint64_t recorded) const {
    auto const found = maps_.find(recorded);
    return found != maps_.end() ? std::optional(found->second) : std::nullopt;
}

void translation::remove_map(std::uint64_t recorded) {
    if (auto const found = maps_.find(recorded); found != maps_.end()) {
        maps_.erase(found);
    }
}

replay_block::replay_block(recording::session const& from, recording::read_call const& call, translation const& names)
    : from_(from), call_(call), names_(names) {
    std::memcpy(block_.data(), call.block.data(), call.block.size());
    for (nq::field const& each : *call.about) {
        each.length.rule == length_rule::none ? put_value(each) : put_pointer(each);
    }
    for (nq::field const& each : *call.about) { // the lengths are in place now
        if (each.length.rule != length_rule::none && each.offset != call.about->result) {
            check_shared(each);
            each.direction == direction::out ? put_room(each) : check(each);
        }
    }
}

void replay_block::put(std::size_t offset, std::uint64_t value) {
    std::memcpy(block_.data() + offset, &value, sizeof value);
}

std::byte* replay_block::own(std::vector<std::byte> bytes) {
    owned_.push_back(std::move(bytes));
    allow(owned_.back());
    return owned_.back().data();
}

void replay_block::put_value(nq::field const& each) {
    if (each.offset == call_.about->status) {
        std::memset(block_.data() + each.offset, 0, each.size);
    } else if (each.offset == call_.about->result || each.kind == field_kind::callback) {
        put(each.offset, 0);
    } else if (each.kind == field_kind::handle) {
        put(each.offset, names_.object(field(each.offset)));
    }
}

void replay_block::put_pointer(nq::field const& each) {
    std::uint64_t const recorded = field(each.offset);
    put(each.offset, 0);
    if (recorded == 0 || each.offset == call_.about->result || each.kind == field_kind::user_data) {
        return;
    }
    if (each.length.rule == length_rule::opaque) {
        auto const map = names_.find_map(recorded);
        put(each.offset, map ? address_of(map->here) : names_.address(recorded).value_or(0));
    } else if (recording::segment const* const found = call_.find(each.offset);
               found != nullptr && each.direction == direction::in) {
        put_input(each, *found);
    } else if (auto const shared = names_.address(recorded); shared && each.kind == field_kind::bytes) {
        put(each.offset, *shared);
    } else if (each.direction == direction::out) {
        put(each.offset, address_of(this)); // any: room is found for it when all lengths are known
    }
}

void replay_block::put_input(nq::field const& each, recording::segment const& of) {
    memory const content = from_.at(of);
    bool const is_exec_info = std::string_view(each.name) == "param_value" &&
                              field(offsetof(block::clSetKernelExecInfo, param_name), 4) == svm_pointers;
    bool const is_argument = std::string_view(each.name) == "arg_value" && content.size() == sizeof(std::uint64_t);
    bool const is_plain = each.kind == field_kind::bytes && !is_list_of_pointers(each) && !is_exec_info && !is_argument;
    bool const is_shared = names_.has_shared();
    if (is_plain && !is_shared && std::string_view(each.name) != "host_ptr") { // which the implementation may write
        allow(content);
        put(each.offset, address_of(content.data()));
        return;
    }
    std::vector<std::byte> list = is_plain ? names_.relocated(content) : std::vector(content.begin(), content.end());
    auto const object_or_same = [this](std::uint64_t word) {
        return names_.has_object(word) ? names_.object(word) : word;
    };
    if (each.kind == field_kind::handle) {
        change_words(list, [this](std::uint64_t word) { return names_.object(word); });
    } else if (each.kind == field_kind::property || is_argument) {
        change_words(list, object_or_same);
    } else if (each.kind == field_kind::address || is_exec_info) {
        change_words(list, [this](std::uint64_t word) { return names_.address(word).value_or(0); });
    } else if (each.kind == field_kind::image_desc && list.size() == sizeof(nq::image_desc)) {
        std::uint64_t const buffer = names_.object(read_field(list.data(), offsetof(nq::image_desc, mem_object)));
        std::memcpy(list.data() + offsetof(nq::image_desc, mem_object), &buffer, sizeof buffer);
    } else if (is_list_of_pointers(each)) {
        put_list(each, list);
    }
    put(each.offset, address_of(own(std::move(list))));
}

// The texts or binaries of a list.
void replay_block::put_list(nq::field const& each, std::vector<std::byte>& list) {
    std::uint8_t const at = each.length.operands[1];
    recording::segment const* const sizes = at != absent ? call_.find(at) : nullptr;
    for (std::size_t i = 0; i < list.size() / sizeof(std::uint64_t); ++i) {
        recording::segment const* const item = call_.find(each.offset, static_cast<std::uint32_t>(i + 1));
        std::uint64_t address = 0;
        if (item != nullptr) {
            memory const content = from_.at(*item);
            bool const has_size = sizes != nullptr && from_.at(*sizes).size() >= (i + 1) * sizeof(std::uint64_t);
            std::uint64_t const size = has_size ? read_field(from_.at(*sizes).data(), i * sizeof(std::uint64_t)) : 0;
            if (size != 0 ? size != content.size() : content.empty() || content.back() != std::byte{0}) {
                throw std::runtime_error("a text or binary of " + std::string(call_.about->name) + " has another size");
            }
            address = address_of(content.data());
        }
        std::memcpy(list.data() + i * sizeof address, &address, sizeof address);
    }
}

std::optional<memory_rows> replay_block::rows(nq::field const& each, void const* block) const {
    readable = &readable_;
    return rows_of(*call_.about, each, block, call_.entry.pixel_size, read_allowed);
}

void replay_block::put_room(nq::field const& each) {
    if (field(each.offset) != address_of(this)) {
        return; // null, or shared memory
    }
    auto const wanted = rows(each, block_.data());
    if (wanted && (!is_sane(*wanted) || wanted->end() > most_memory)) {
        throw std::runtime_error(std::string(call_.about->name) + " writes more memory than there can be");
    }
    // one byte more, so that there is an address
    put(each.offset, address_of(own(std::vector<std::byte>(wanted ? wanted->end() + 1 : 1))));
}

// A command that reaches past the end of shared memory gets none.
void replay_block::check_shared(nq::field const& each) {
    auto const shared = names_.shared_at(call_.field(each.offset));
    bool const is_used = shared && field(each.offset) == address_of(shared->data());
    if (is_used && rows(each, block_.data()).value_or(memory_rows{}).end() > shared->size()) {
        put(each.offset, 0);
    }
}

void replay_block::check(nq::field const& each) {
    recording::segment const* const found = call_.find(each.offset);
    if (field(each.offset) == 0 || each.length.rule == length_rule::opaque || found == nullptr) {
        return; // null, an address, or shared memory
    }
    auto const wanted = rows(each, block_.data());
    if (!wanted || !is_sane(*wanted) || wanted->end() != from_.at(*found).size()) {
        throw std::runtime_error(std::string(each.name) + " of " + call_.about->name + " has another size");
    }
    // An implementation may read an image that is made of it to the end of its last row and slice.
    bool const is_image = each.length.rule == length_rule::image || each.length.rule == length_rule::described_image;
    std::size_t const whole = wanted->count[1] * wanted->pitch[1];
    if (is_image && whole > wanted->end() && whole - wanted->end() < most_padding) {
        auto const* const rows = to_pointer<std::byte const>(field(each.offset));
        std::vector<std::byte> padded(rows, rows + wanted->end());
        padded.resize(whole);
        put(each.offset, address_of(own(std::move(padded))));
    }
}

std::map<std::size_t, place> replay_block::written() const {
    std::map<std::size_t, place> all;
    auto recorded = block_;
    for (nq::field const& each : *call_.about) { // the pitches of a map are what the recorded call was told
        recording::segment const* const told = call_.find(each.offset);
        if (each.direction == direction::out && each.kind == field_kind::size && told != nullptr) {
            std::uint64_t const address = address_of(from_.at(*told).data());
            std::memcpy(recorded.data() + each.offset, &address, sizeof address);
        }
    }
    auto readable_here = readable_;
    for (recording::segment const& each : call_.segments) {
        readable_here.push_back(from_.at(each));
    }
    for (nq::field const& each : *call_.about) {
        if (each.direction == direction::out && each.kind == field_kind::bytes && field(each.offset) != 0) {
            readable = &readable_here;
            auto const size = call_.entry.pixel_size;
            auto const here = rows_of(*call_.about, each, block_.data(), size, read_allowed);
            auto const there = rows_of(*call_.about, each, recorded.data(), size, read_allowed);
            if (here && there && is_sane(*there)) {
                all[each.offset] = {to_pointer<std::byte>(field(each.offset)), *here, *there};
            }
        }
    }
    readable = &readable_;
    return all;
}

std::vector<std::pair<std::uint64_t, std::uint64_t>> replay_block::returned() const {
    std::vector<std::pair<std::uint64_t, std::uint64_t>> all;
    for (nq::field const& each : *call_.about) {
        if (each.direction != direction::out || each.kind != field_kind::handle) {
            continue;
        }
        recording::segment const* const list = call_.find(each.offset);
        if (each.offset == call_.about->result) {
            all.emplace_back(call_.field(each.offset), field(each.offset));
        } else if (list != nullptr && field(each.offset) != 0) {
            memory const recorded = from_.at(*list);
            auto const room = rows(each, block_.data());
            std::size_t const size = std::min(recorded.size(), room ? room->end() : 0);
            for (std::size_t at = 0; at + sizeof(std::uint64_t) <= size; at += sizeof(std::uint64_t)) {
                all.emplace_back(read_field(recorded.data(), at),
                                 read_field(to_pointer<void const>(field(each.offset)), at));
            }
        }
    }
    return all;
}

bool replay_block::keeps_memory() const {
    bool const is_command = names_.has_shared() && std::string_view(call_.about->name).starts_with("clEnqueue");
    return is_command || (call_.about->begin()->kind == field_kind::bits &&
                          std::string_view(call_.about->name).starts_with("clCreate") &&
                          (field(call_.about->begin()->offset) & use_host_pointer) != 0);
}

} // namespace nq::command
