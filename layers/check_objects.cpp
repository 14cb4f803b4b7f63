#include "check_objects.hpp"

#include "objects.hpp"

#include <algorithm>
#include <mutex>
#include <string_view>
#include <unordered_map>

namespace nq::layer::check {
namespace {

constexpr char const* kinds[] = {"object",        "platform", "device",  "context", "command queue",
                                 "memory object", "sampler",  "program", "kernel",  "event"};

// Never freed: a program may make calls until its very end. Released objects stay until their address is used again.
struct state {
    std::mutex mutex;
    std::unordered_map<void*, object> objects;
};

state& all() {
    static state& made = *new state;
    return made;
}

char const* word_for(object_kind kind) { return kinds[static_cast<std::size_t>(kind)]; }

std::string text_of(void* handle) { return detail::hexadecimal(reinterpret_cast<std::uintptr_t>(handle)); }

bool has_references(object_kind kind) { return kind != object_kind::platform && kind != object_kind::device_id; }

// Handles in the reply of a query: what OpenCL names lives.
void revive_told(call const& made, description const& about) {
    for (field const& each : about) {
        if (each.direction != direction::out || each.kind != field_kind::bytes ||
            each.length.rule != length_rule::counted) {
            continue;
        }
        constexpr std::size_t most = 512; // handles
        std::size_t const size = read_field(made.block, each.length.operands[0]);
        std::vector<void*> words(size % sizeof(void*) == 0 ? std::min(size / sizeof(void*), most) : 0);
        void const* const reply = read_pointer(made.block, each.offset);
        if (reply != nullptr && !words.empty() && read_safely(words.data(), reply, words.size() * sizeof(void*))) {
            std::for_each(words.begin(), words.end(), revive);
        }
    }
}

// Whether the objects begin with the address of a table of functions, as all do that an ICD loader knows.
bool have_tables(call const& made) {
    block::clGetPlatformInfo const question{.platform = platform_of(made, own_device(made)),
                                            .param_name = "CL_PLATFORM_EXTENSIONS"_cl};
    return ask_text(made, question).find("cl_khr_icd") != std::string::npos;
}

// An address that no object of an implementation can be at. What begins with an address may be an object of a library
// that makes its own calls.
bool is_no_object(call const& made, void const* handle) {
    void const* table = nullptr;
    std::uintptr_t word = 0;
    return !read_safely(static_cast<void*>(&table), handle, sizeof table) ||
           (!read_safely(&word, table, sizeof word) && have_tables(made));
}

// The context of the first object in a call that has one.
void* context_of(call const& made, description const& about) {
    for (field const& each : about) {
        if (each.kind != field_kind::handle || each.direction != direction::in) {
            continue;
        }
        for (void* const handle : handles_in(made, about, each)) {
            auto const found = find_object(handle);
            if (each.object == object_kind::context) {
                return handle;
            }
            if (found && found->context != nullptr) {
                return found->context;
            }
        }
    }
    return nullptr;
}

struct context_seen {
    void* context = nullptr;
    std::string of;
};

// Prints what is wrong with one handle.
void check_handle(call const& made, field const& each, void* handle, context_seen& seen) {
    auto const found = find_object(handle);
    if (!found) {
        if (has_references(each.object) && is_no_object(made, handle)) {
            report(made, "nothing", std::string(each.name) + ' ' + text_of(handle) + " is no object of OpenCL");
        }
        return;
    }
    if (found->released_at != nullptr || (found->made_at != nullptr && found->kind != each.object)) {
        if (!has_other_users()) {
            bool const released = found->released_at != nullptr;
            report(made, released ? "released" : "kind",
                   std::string(each.name) + (released ? " is " : " is the ") + words_for(handle, *found));
        }
        return;
    }
    if (found->context == nullptr) {
        return;
    }
    if (seen.context == nullptr) {
        seen = {found->context, words_for(handle, *found)};
    } else if (seen.context != found->context && !has_other_users()) {
        report(made, "context", words_for(handle, *found) + ", is of another context than " + seen.of);
    }
}

} // namespace

std::optional<object> find_object(void* handle) {
    std::scoped_lock const lock{all().mutex};
    auto const found = all().objects.find(handle);
    return found != all().objects.end() ? std::optional{found->second} : std::nullopt;
}

bool is_released(void* handle) {
    auto const found = find_object(handle);
    return found && found->released_at != nullptr && !has_other_users();
}

std::string words_for(void* handle, object const& about) {
    std::string const made =
        about.made_at != nullptr ? std::string(", which ") + about.entry + " made" + at(about.made_at) : "";
    return std::string(word_for(about.kind)) + ' ' + text_of(handle) + made +
           (about.released_at != nullptr ? " and which was released" + at(about.released_at) : "");
}

void check_handles(call const& made, description const& about) {
    context_seen seen;
    for (field const& each : about) {
        if (each.kind != field_kind::handle || each.direction != direction::in) {
            continue;
        }
        for (void* const handle : handles_in(made, about, each)) {
            if (handle != nullptr) {
                check_handle(made, each, handle, seen);
            }
        }
    }
}

counting note_references(call const& made, description const& about) {
    std::string_view const entry = about.name;
    void* const handle = first_field(made, about);
    bool const releases = entry.starts_with("clRelease");
    if (handle == nullptr || (!releases && !entry.starts_with("clRetain"))) {
        return {};
    }
    std::scoped_lock const lock{all().mutex};
    auto const found = all().objects.find(handle);
    if (found == all().objects.end() || found->second.made_at == nullptr || found->second.released_at != nullptr) {
        return {};
    }
    found->second.references += releases ? -1 : 1;
    bool const is_last = found->second.references == 0;
    found->second.released_at = is_last ? here() : nullptr;
    return {handle, is_last};
}

void take_back(counting const& counted, description const& about) {
    std::scoped_lock const lock{all().mutex};
    if (auto const found = all().objects.find(counted.handle); found != all().objects.end()) {
        found->second.references += std::string_view(about.name).starts_with("clRelease") ? 1 : -1;
        found->second.released_at = nullptr;
    }
}

void note_objects(call const& made, description const& about) {
    if (makes_objects(about)) {
        auto const objects = made_by(about, made.block, read_safely);
        if (objects.empty()) {
            return;
        }
        void* const context = context_of(made, about);
        place const where = here();
        std::scoped_lock const lock{all().mutex};
        for (object_change const& each : objects) {
            bool const is_context = each.kind == object_kind::context;
            all().objects[each.address] = {each.kind, about.name, where, nullptr, is_context ? each.address : context,
                                           1};
        }
    } else if (std::string_view(about.name).starts_with("clGet")) {
        revive_told(made, about);
    }
}

void revive(void* handle) {
    std::scoped_lock const lock{all().mutex};
    auto const found = all().objects.find(handle);
    if (found != all().objects.end() && found->second.released_at != nullptr) {
        found->second.released_at = nullptr;
        found->second.made_at = nullptr; // its references are OpenCL's
    }
}

} // namespace nq::layer::check
