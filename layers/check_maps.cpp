#include "check_maps.hpp"

#include "check_objects.hpp"

#include <algorithm>
#include <map>
#include <mutex>
#include <string_view>

namespace nq::layer::check {
namespace {

// A mapped range.
struct region {
    void* owner = nullptr; // the memory object; null for shared memory
    std::size_t size = 0;
    std::size_t offset = 0; // in the buffer
    bool of_buffer = false;
    char const* entry = "";
    place where = nullptr;
    place unmapped_at = nullptr;
};

using regions = std::multimap<std::uintptr_t, region>; // by address

// Never freed: a program may make calls until its very end. No call is made while the mutex is held.
struct state {
    std::mutex mutex;
    regions mapped;
    regions former;                               // of objects that live
    std::map<std::uintptr_t, std::size_t> shared; // the sizes of shared memory
};

state& all() {
    static state& made = *new state;
    return made;
}

std::uintptr_t number_of(void const* pointer) { return reinterpret_cast<std::uintptr_t>(pointer); }

regions::iterator find(regions& in, void const* pointer, void const* owner) {
    auto const [begin, end] = in.equal_range(number_of(pointer));
    auto const found = std::find_if(begin, end, [&](auto const& each) { return each.second.owner == owner; });
    return found == end ? in.end() : found;
}

// Takes regions out of a list.
template <class Predicate>
std::vector<region> take(regions& from, Predicate which) {
    std::vector<region> taken;
    for (auto each = from.begin(); each != from.end();) {
        bool const is_one = which(each->first, each->second);
        if (is_one) {
            taken.push_back(each->second);
        }
        each = is_one ? from.erase(each) : std::next(each);
    }
    return taken;
}

std::string words_for_map(region const& each) { return std::string("the map by ") + each.entry + at(each.where); }

bool unmap(call const& made, void const* pointer, void* owner, bool is_known) {
    std::string wrong;
    {
        std::scoped_lock const lock{all().mutex};
        auto const found = find(all().mapped, pointer, owner);
        if (found != all().mapped.end()) {
            region each = found->second;
            all().mapped.erase(found);
            if (find(all().mapped, pointer, owner) == all().mapped.end()) {
                take(all().former, [&](std::uintptr_t begin, region const& other) {
                    return begin == number_of(pointer) && other.owner == owner;
                });
                each.unmapped_at = here();
                all().former.emplace(number_of(pointer), each);
            }
            return true;
        }
        auto const before = find(all().former, pointer, owner);
        wrong = before == all().former.end()
                    ? "the memory is not mapped"
                    : words_for_map(before->second) + " was unmapped already" + at(before->second.unmapped_at);
    }
    if (is_known && pointer != nullptr && !has_other_users()) {
        report(made, "unmap", wrong);
    }
    return false;
}

void add(call const& made, void const* pointer, region each) {
    description const* const about = made.about();
    if (pointer == nullptr || about == nullptr) {
        return;
    }
    each.entry = about->name;
    each.where = here();
    std::uintptr_t const begin = number_of(pointer);
    std::scoped_lock const lock{all().mutex};
    take(all().former, [&](std::uintptr_t other, region const& before) {
        return other < begin + std::max<std::size_t>(each.size, 1) &&
               begin < other + std::max<std::size_t>(before.size, 1);
    });
    all().mapped.emplace(begin, each);
}

// The memory of a buffer in the program's own memory is the program's, mapped or not.
bool is_of_program(call const& made, void* buffer) {
    block::clGetMemObjectInfo const question{.memobj = static_cast<_nq_cl_mem*>(buffer),
                                             .param_name = "CL_MEM_FLAGS"_cl};
    auto const flags = ask_value<std::uint64_t>(made, question);
    return !flags || (*flags & "CL_MEM_USE_HOST_PTR"_cl) != 0;
}

// Whether memory is a buffer's, and so cannot be anything else's: maps it once more, and looks where it is.
bool is_still_of(call const& made, void* queue, region const& each, std::uintptr_t begin) {
    block::clEnqueueMapBuffer map{.map_flags = 1 /* CL_MAP_READ */,
                                  .command_queue = static_cast<_nq_cl_command_queue*>(queue),
                                  .buffer = static_cast<_nq_cl_mem*>(each.owner),
                                  .offset = each.offset,
                                  .size = each.size};
    std::uint32_t const id = find_command<block::clEnqueueMapBuffer>(made.version);
    if (id == 0 || forward({made.handle, made.version, id, &map, nullptr}) != result::success || map.error_code != 0) {
        return false;
    }
    block::clEnqueueUnmapMemObject unmap{
        .command_queue = map.command_queue, .memobj = map.buffer, .mapped_ptr = map.result};
    ask(made, unmap);
    return number_of(map.result) == begin;
}

// Commands whose memory was mapped once.
void check_access(call const& made, description const& about, access const& each) {
    region before;
    std::uintptr_t begin = 0;
    {
        std::scoped_lock const lock{all().mutex};
        auto after = all().former.upper_bound(each.where.begin);
        if (after == all().former.begin()) {
            return;
        }
        --after;
        begin = after->first;
        before = after->second;
        bool const is_mapped = std::any_of(all().mapped.begin(), all().mapped.end(), [&](auto const& other) {
            return other.first <= each.where.begin && each.where.begin - other.first < other.second.size;
        });
        if (!before.of_buffer || is_mapped || each.where.begin - begin >= before.size) {
            return;
        }
    }
    field const* const queue = find_handle(about, object_kind::command_queue);
    if (queue != nullptr && !is_of_program(made, before.owner) &&
        is_still_of(made, handles_in(made, about, *queue).front(), before, begin)) {
        report(made, "former map",
               "uses memory of " + words_for_map(before) + ", which was unmapped" + at(before.unmapped_at));
    }
}

// OpenCL has refused to unmap it.
void map_again(void const* pointer, void const* owner) {
    std::scoped_lock const lock{all().mutex};
    if (auto const found = find(all().former, pointer, owner); found != all().former.end()) {
        all().mapped.insert(all().former.extract(found));
    }
}

void report_freed(call const& made, std::vector<region> const& freed) {
    for (region const& each : freed) {
        report(made, "mapped", words_for_map(each) + " was never unmapped");
    }
}

void free_shared(call const& made, void const* pointer) {
    std::vector<region> freed;
    {
        std::scoped_lock const lock{all().mutex};
        auto const size = all().shared.find(number_of(pointer));
        std::size_t const bytes = size != all().shared.end() ? size->second : 1;
        auto const is_in = [&](std::uintptr_t begin, region const& each) {
            return each.owner == nullptr && begin >= number_of(pointer) && begin - number_of(pointer) < bytes;
        };
        freed = take(all().mapped, is_in);
        take(all().former, is_in);
        all().shared.erase(number_of(pointer));
    }
    report_freed(made, freed);
}

} // namespace

bool check_maps(call const& made, description const& about, std::vector<access> const& accesses) {
    if (auto const* const object = as<block::clEnqueueUnmapMemObject>(made, &about); object != nullptr) {
        return unmap(made, object->mapped_ptr, object->memobj, find_object(object->memobj).has_value());
    }
    if (auto const* const shared = as<block::clEnqueueSVMUnmap>(made, &about); shared != nullptr) {
        return unmap(made, shared->svm_ptr, nullptr, true);
    }
    if (auto const* const one = as<block::clSVMFree>(made, &about); one != nullptr) {
        free_shared(made, one->svm_pointer);
    } else if (auto const* const many = as<block::clEnqueueSVMFree>(made, &about); many != nullptr) {
        std::for_each_n(many->svm_pointers, many->svm_pointers != nullptr ? many->num_svm_pointers : 0,
                        [&](void const* each) { free_shared(made, each); });
    }
    std::for_each(accesses.begin(), accesses.end(), [&](access const& each) { check_access(made, about, each); });
    return false;
}

void take_back_unmap(call const& made, description const& about) {
    if (auto const* const object = as<block::clEnqueueUnmapMemObject>(made, &about); object != nullptr) {
        map_again(object->mapped_ptr, object->memobj);
    } else if (auto const* const shared = as<block::clEnqueueSVMUnmap>(made, &about); shared != nullptr) {
        map_again(shared->svm_ptr, nullptr);
    }
}

void note_maps(call const& made, description const& about) {
    if (auto const* const buffer = as<block::clEnqueueMapBuffer>(made, &about); buffer != nullptr) {
        add(made, buffer->result,
            {.owner = buffer->buffer, .size = buffer->size, .offset = buffer->offset, .of_buffer = true});
    } else if (auto const* const image = as<block::clEnqueueMapImage>(made, &about); image != nullptr) {
        add(made, image->result, {.owner = image->image});
    } else if (auto const* const shared = as<block::clEnqueueSVMMap>(made, &about); shared != nullptr) {
        add(made, shared->svm_ptr, {.size = shared->size});
    } else if (auto const* const allocated = as<block::clSVMAlloc>(made, &about);
               allocated != nullptr && allocated->result != nullptr) {
        std::scoped_lock const lock{all().mutex};
        all().shared[number_of(allocated->result)] = allocated->size;
    }
}

void forget_memory(call const& made, void* memory) {
    std::vector<region> freed;
    {
        std::scoped_lock const lock{all().mutex};
        auto const is_of = [&](std::uintptr_t, region const& each) { return each.owner == memory; };
        freed = take(all().mapped, is_of);
        take(all().former, is_of);
    }
    report_freed(made, freed);
}

void report_maps() {
    std::scoped_lock const lock{all().mutex};
    for (auto const& [begin, each] : all().mapped) {
        report(words_for_map(each) + " was never unmapped");
    }
}

} // namespace nq::layer::check
