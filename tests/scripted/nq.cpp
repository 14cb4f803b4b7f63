#include "scripted/scripted.hpp"

#include <algorithm>
#include <mutex>

namespace {

using scripted::libnq;

constexpr nq::device root = 0xD0;

// Recursive: an answer may call back into the program.
std::recursive_mutex one_at_a_time;

/// Marks libnq as being at work.
struct entered {
    entered() { libnq::is_answering = true; }
    entered(entered const&) = delete;
    entered& operator=(entered const&) = delete;
    ~entered() { libnq::is_answering = false; }

    /// Notes a call, whose last argument must be null.
    void note(std::string call, void const* reserved) {
        if (reserved != nullptr) {
            self.faults.push_back(call + " with a last argument other than null");
        }
        if (self.remembers_calls) {
            self.discovery_calls.push_back(std::move(call));
        }
    }

    std::lock_guard<std::recursive_mutex> lock{one_at_a_time};
    libnq& self = libnq::instance();
};

std::string listed(std::uint64_t capacity, bool has_array) {
    return ' ' + std::to_string(capacity) + (has_array ? " array" : "");
}

template <class Element>
int list(scripted::listing<std::type_identity_t<Element>> const& listing, std::uint64_t capacity, Element* array,
         std::uint64_t* count) {
    std::size_t const phase = array == nullptr ? 0 : 1;
    std::copy_n(listing.elements.begin(), array == nullptr ? 0 : std::min(capacity, listing.elements.size()), array);
    *count = listing.counts[phase].value_or(listing.elements.size());
    return listing.results[phase];
}

} // namespace

namespace scripted {

bool libnq::is_answering = false;

libnq& libnq::instance() {
    static libnq* const immortal = [] { // objects that outlive everything else still call it
        auto* const made = new libnq;
        made->reset();
        return made;
    }();
    return *immortal;
}

void libnq::reset() {
    libnq fresh;
    fresh.handles = std::move(handles);
    fresh.roots = {{root}};
    for (std::uint64_t offered = 1; offered <= 6; ++offered) {
        fresh.nodes[{root, nq::capability{offered}}] = {{{root, offered}}};
    }
    *this = std::move(fresh);
}

nq::call_handle libnq::open(nq::capability offered) {
    return {open_node({root, static_cast<std::uint64_t>(offered)}), nq_close_call_handle};
}

nq_call_handle* libnq::open_node(nq::capability_node node) {
    handles.push_back(std::make_unique<nq_call_handle>(nq_call_handle{node}));
    return *open_handles.insert(handles.back().get()).first;
}

void* libnq::make_raw(int held) {
    static std::uintptr_t next = 0x10000; // never reused, so that a handle of an earlier test is told from this one's
    void* const raw = reinterpret_cast<void*>(next += 0x10);
    references[raw] = held;
    return raw;
}

std::optional<failure> libnq::take_failure(std::string_view entry_point) {
    std::optional<failure> due;
    std::erase_if(failures, [&](failure_to_come& candidate) {
        bool const is_meant = candidate.entry_point.empty() || candidate.entry_point == entry_point;
        bool const is_due = is_meant && --candidate.calls_left == 0;
        due = is_due ? candidate.how : due;
        return is_due;
    });
    return due;
}

std::vector<std::string> libnq::names() const {
    std::vector<std::string> names;
    std::transform(calls.begin(), calls.end(), std::back_inserter(names), [](call const& made) { return made.name; });
    return names;
}

void libnq::forget_calls() {
    calls.clear();
    discovery_calls.clear();
}

std::string libnq::leftovers() const {
    std::string text = open_handles.empty() ? "" : std::to_string(open_handles.size()) + " open call handles\n";
    for (auto const& [raw, count] : references) {
        if (count != 0) {
            text += std::to_string(count) + " references of " + std::to_string(reinterpret_cast<std::uintptr_t>(raw)) +
                    '\n';
        }
    }
    for (std::string const& fault : faults) {
        text += fault + '\n';
    }
    return text;
}

int libnq::perform(nq_call_handle* handle, std::uint32_t command_id, void* block) {
    call record{.handle = handle, .id = command_id};
    int result = nq::result::unrecoverable;
    if (handle != nullptr && handle->is_open && block != nullptr) {
        result = answer(handle->node, block, record);
    } else if (handle != nullptr || block == nullptr) { // moved-from objects have a null handle
        faults.emplace_back("a call without an open call handle or a block");
    }
    if (remembers_calls) {
        calls.push_back(record);
    }
    return result;
}

} // namespace scripted

extern "C" {

SCRIPTED_EXPORT std::uint64_t nq_version() {
    entered nq;
    nq.note("version", nullptr);
    return nq.self.version;
}

SCRIPTED_EXPORT int nq_get_root_devices(std::uint64_t capacity, nq::device* devices, std::uint64_t* count,
                                        void* reserved) {
    entered nq;
    nq.note("roots" + listed(capacity, devices != nullptr), reserved);
    return list(nq.self.roots, capacity, devices, count);
}

SCRIPTED_EXPORT int nq_find_capability_nodes(nq::device device, nq::capability capability, std::uint64_t capacity,
                                             nq::capability_node* nodes, std::uint64_t* count, void* reserved) {
    entered nq;
    std::string const of = std::to_string(device) + " for " + std::to_string(static_cast<std::uint64_t>(capability));
    nq.note("nodes of " + of + listed(capacity, nodes != nullptr), reserved);
    return list(nq.self.nodes[{device, capability}], capacity, nodes, count);
}

SCRIPTED_EXPORT int nq_create_call_handle(nq::capability_node node, nq_call_handle** handle, void* reserved) {
    entered nq;
    nq.note("open " + std::to_string(node.first) + ' ' + std::to_string(node.second), reserved);
    if (auto const failure = nq.self.take_failure("nq_create_call_handle")) {
        return failure->result;
    }
    *handle = nq.self.open_node(node);
    return nq::result::success;
}

SCRIPTED_EXPORT void nq_close_call_handle(nq_call_handle* handle) {
    entered nq;
    if (!std::exchange(handle->is_open, false)) {
        nq.self.faults.emplace_back("a call handle closed twice");
    }
    nq.self.open_handles.erase(handle);
}

SCRIPTED_EXPORT int nq_call_capability(nq_call_handle* handle, std::uint32_t command_id, void* block, void* reserved) {
    entered nq;
    if (reserved != nullptr) {
        nq.self.faults.emplace_back("nq_call_capability with a last argument other than null");
    }
    return nq.self.perform(handle, command_id, block);
}

} // extern "C"
