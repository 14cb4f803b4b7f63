#include "record_memory.hpp"

#include <array>
#include <utility>

namespace nq::layer::record {
namespace {

constexpr std::uint64_t fine_grained = "CL_MEM_SVM_FINE_GRAIN_BUFFER"_cl;
constexpr std::uint64_t for_writing = "CL_MAP_WRITE"_cl | "CL_MAP_WRITE_INVALIDATE_REGION"_cl;

std::size_t extent(call const& made, description const& about, field const& of, std::size_t pixel_size) {
    return extent_of(about, of, made.block, pixel_size, read_safely).value_or(0);
}

} // namespace

std::optional<bytes> copy(void const* from, std::size_t size) {
    std::byte last{};
    auto const* const start = static_cast<std::byte const*>(from);
    if (size != 0 && !read_safely(&last, start + (size - 1), 1)) { // sizes may be wrong
        return std::nullopt;
    }
    bytes made(size);
    return size == 0 || read_safely(made.data(), from, size) ? std::optional(std::move(made)) : std::nullopt;
}

std::optional<bytes> copy_text(void const* from) {
    constexpr std::size_t page = 4096;
    bytes made;
    for (auto const* at = static_cast<std::byte const*>(from);;) {
        std::array<std::byte, page> piece; // NOLINT(cppcoreguidelines-pro-type-member-init): filled
        std::size_t const size = page - reinterpret_cast<std::uintptr_t>(at) % page;
        if (!read_safely(piece.data(), at, size)) {
            return std::nullopt;
        }
        std::byte const* const end = piece.data() + size;
        auto const* const zero = std::find<std::byte const*>(piece.data(), end, std::byte{0});
        made.insert(made.end(), std::as_const(piece).data(), zero != end ? zero + 1 : end);
        if (zero != end) {
            return made;
        }
        at += size;
    }
}

std::uint64_t value_of(call const& made, description const& about, char const* name) noexcept {
    field const* const found = find_field(about, name);
    return found != nullptr ? read_field(made.block, found->offset, found->size) : 0;
}

std::optional<bool> is_done(written const& each) noexcept {
    block::clGetEventInfo const question{.event = each.event, .param_name = "CL_EVENT_COMMAND_EXECUTION_STATUS"_cl};
    std::int32_t const state = ask_value<std::int32_t>(each.through, question).value_or(-1);
    if (state > 0) {
        return std::nullopt;
    }
    block::clReleaseEvent released{.event = each.event};
    ask(each.through, released);
    return state == 0;
}

void host_memory::note(call const& made, description const& about, std::size_t pixel_size) {
    if (field const* const flags = find_field(about, "map_flags"); flags != nullptr) {
        field const* const where = find_field(about, about.result != absent ? "result" : "svm_ptr");
        maps_.emplace(read_pointer(made.block, where->offset),
                      mapped{extent(made, about, *where, pixel_size),
                             (read_field(made.block, flags->offset) & for_writing) != 0});
    } else if (auto const* const allocated = as<block::clSVMAlloc>(made, &about); allocated != nullptr) {
        shared_[reinterpret_cast<std::uintptr_t>(allocated->result)] = {allocated->size,
                                                                        (allocated->flags & fine_grained) != 0};
    } else if (auto const* const freed = as<block::clSVMFree>(made, &about); freed != nullptr) {
        shared_.erase(reinterpret_cast<std::uintptr_t>(freed->svm_pointer));
    } else if (auto const* const many = as<block::clEnqueueSVMFree>(made, &about); many != nullptr) {
        std::for_each_n(many->svm_pointers, many->num_svm_pointers,
                        [this](void* each) { shared_.erase(reinterpret_cast<std::uintptr_t>(each)); });
    }
}

std::optional<mapped> host_memory::take_map(void const* address) {
    auto const found = maps_.find(address);
    if (found == maps_.end()) {
        return std::nullopt;
    }
    mapped const taken = found->second;
    maps_.erase(found);
    return taken;
}

bool host_memory::is_shared(void const* address) const {
    auto const value = reinterpret_cast<std::uintptr_t>(address);
    auto const next = shared_.upper_bound(value);
    return next != shared_.begin() && value - std::prev(next)->first < std::prev(next)->second.size;
}

} // namespace nq::layer::record
