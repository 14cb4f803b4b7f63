#include "objects.hpp"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace nq::layer {
namespace {

using changes = std::vector<object_change>;

void* first_field(description const& about, void const* block) {
    return const_cast<void*>(read_pointer(block, about.begin()->offset));
}

// How many handles a call has written behind a field: one, or a list with the number of objects after it.
std::uint64_t count_written(description const& about, field const& each, void const* block, memory_reader read) {
    if (each.length.rule != length_rule::counted) {
        return 1;
    }
    auto const* const written = std::find_if(about.begin(), about.end(), [](field const& other) {
        return other.kind == field_kind::count && other.direction == direction::out;
    });
    std::uint64_t const offered = read_field(block, each.length.operands[0], sizeof(std::uint32_t));
    void const* const told = written != about.end() ? read_pointer(block, written->offset) : nullptr;
    std::uint32_t count = 0;
    return told != nullptr && read(&count, told, sizeof count) ? std::min<std::uint64_t>(offered, count) : offered;
}

void add_handles(changes& to, void const* list, std::uint64_t count, object_change each, memory_reader read) {
    for (std::uint64_t i = 0; list != nullptr && i < count; ++i) {
        if (!read(static_cast<void*>(&each.address), static_cast<void* const*>(list) + i, sizeof each.address)) {
            return;
        }
        if (each.address != nullptr) {
            to.push_back(each);
        }
    }
}

} // namespace

bool makes_objects(description const& about) noexcept {
    std::string_view const entry = about.name;
    return entry.starts_with("clCreate") || entry.starts_with("clEnqueue") || entry == "clCloneKernel" ||
           entry == "clLinkProgram";
}

bool changes_objects(description const& about) noexcept {
    std::string_view const entry = about.name;
    return makes_objects(about) || entry.starts_with("clRetain") || entry.starts_with("clRelease") ||
           entry.starts_with("clSVM");
}

changes released_by(description const& about, void const* block, memory_reader read) {
    changes found;
    if (std::string_view(about.name).starts_with("clRelease")) {
        found.push_back({first_field(about, block), about.begin()->object, -1, false});
    } else if (&about == &description_of<block::clSVMFree>) {
        void const* const freed = read_pointer(block, offsetof(block::clSVMFree, svm_pointer));
        found.push_back({const_cast<void*>(freed), object_kind::none, -every_reference, false});
    } else if (&about == &description_of<block::clEnqueueSVMFree>) {
        add_handles(found, read_pointer(block, offsetof(block::clEnqueueSVMFree, svm_pointers)),
                    read_field(block, offsetof(block::clEnqueueSVMFree, num_svm_pointers), sizeof(std::uint32_t)),
                    {nullptr, object_kind::none, -every_reference, false}, read);
    }
    return found;
}

changes made_by(description const& about, void const* block, memory_reader read) {
    changes found;
    if (std::string_view(about.name).starts_with("clRetain")) {
        found.push_back({first_field(about, block), about.begin()->object, 1, false});
    } else if (&about == &description_of<block::clSVMAlloc> || makes_objects(about)) {
        for (field const& each : about) {
            bool const is_memory = each.offset == about.result && &about == &description_of<block::clSVMAlloc>;
            if (each.direction != direction::out || (each.kind != field_kind::handle && !is_memory)) {
                continue;
            }
            object_change const change{const_cast<void*>(read_pointer(block, each.offset)), each.object, 1, true};
            if (change.address == nullptr) {
                continue;
            }
            if (each.offset == about.result) {
                found.push_back(change);
            } else {
                add_handles(found, change.address, count_written(about, each, block, read), change, read);
            }
        }
    }
    return found;
}

} // namespace nq::layer
