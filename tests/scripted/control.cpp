#include "scripted/state.hpp"

#include <algorithm>

namespace scripted {
namespace {

thread_local bool is_answering = false;

// Never reused, so that a handle of an earlier test is told from those of this one.
std::uintptr_t next_raw = 0x10000;

} // namespace

answering_scope::answering_scope() noexcept : outer_(std::exchange(is_answering, true)) {}
answering_scope::~answering_scope() { is_answering = outer_; }

bool libnq::answering() noexcept { return is_answering; }

std::optional<failure> libnq::state::take_failure(std::string_view entry_point) {
    std::optional<failure> due;
    std::erase_if(faults_to_come, [&](fault_to_come& candidate) {
        if (!candidate.entry_point.empty() && candidate.entry_point != entry_point) {
            return false;
        }
        bool const always = candidate.calls_left == every;
        if (always || --candidate.calls_left == 0) {
            due = candidate.how;
            return !always;
        }
        return false;
    });
    return due;
}

std::uint32_t libnq::state::count_of(std::string_view entry_point) const {
    auto const found = counts.find(entry_point);
    return found != counts.end() ? found->second : 2;
}

libnq::libnq() { reset(); }
libnq::~libnq() = default;

libnq& libnq::instance() {
    static libnq* const immortal = new libnq; // objects that outlive everything else still call it
    return *immortal;
}

libnq::state& libnq::internals() { return *state_; }

void libnq::reset() {
    auto fresh = std::make_unique<state>();
    if (state_ != nullptr) {
        fresh->handles = std::move(state_->handles);
    }
    state_ = std::move(fresh);
    version = nq::version;
    constexpr nq::device device = 0xD0;
    roots = {{device}};
    nodes.clear();
    for (std::uint64_t offered = 1; offered <= 6; ++offered) {
        nodes[{device, nq::capability{offered}}] = {{{device, offered}}};
    }
}

void libnq::fail_open(int result, unsigned n) { state_->failing_open = {result, n}; }

nq::call_handle libnq::open(nq::capability offered) {
    std::lock_guard const lock(state_->mutex);
    return {state_->open({0xD0, static_cast<std::uint64_t>(offered)}), nq_close_call_handle};
}

nq_call_handle* libnq::state::open(nq::capability_node node) {
    handles.push_back(std::make_unique<nq_call_handle>(nq_call_handle{node}));
    open_handles.insert(handles.back().get());
    return handles.back().get();
}

void libnq::understand_null(nq::capability offered) { state_->null_version = offered; }

void* libnq::make_raw(int references) {
    answering_scope const scope;
    std::lock_guard const lock(state_->mutex);
    next_raw += 0x10;
    void* const raw = reinterpret_cast<void*>(next_raw);
    state_->references[raw] = references;
    return raw;
}

int libnq::references(void const* raw) const {
    std::lock_guard const lock(state_->mutex);
    auto const known = state_->references.find(raw);
    return known != state_->references.end() ? known->second : 0;
}

void libnq::set_reply(std::string_view name, std::uint32_t param_name, scripted::reply answer) {
    std::lock_guard const lock(state_->mutex);
    state_->replies[{std::string(name), param_name}] = std::move(answer);
}

void libnq::set_count(std::string_view name, std::uint32_t count) {
    std::lock_guard const lock(state_->mutex);
    state_->counts[std::string(name)] = count;
}

void libnq::set_answer(std::string_view name, std::function<bool(void*)> answer) {
    std::lock_guard const lock(state_->mutex);
    state_->answers[std::string(name)] = std::move(answer);
}

void libnq::set_failure(std::string_view name, failure how, unsigned n) {
    std::lock_guard const lock(state_->mutex);
    state_->faults_to_come.push_back({std::string(name), how, n});
}

void libnq::stop_failing() {
    std::lock_guard const lock(state_->mutex);
    state_->faults_to_come.clear();
}

std::vector<call> libnq::calls() const {
    std::lock_guard const lock(state_->mutex);
    return state_->calls;
}

std::vector<call> libnq::calls_of(std::string_view name) const {
    auto found = calls();
    std::erase_if(found, [=](call const& candidate) { return candidate.name != name; });
    return found;
}

std::vector<discovery_call> libnq::discovery_calls() const {
    std::lock_guard const lock(state_->mutex);
    return state_->discovery_calls;
}

std::vector<std::string> libnq::names() const {
    std::vector<std::string> names;
    for (call const& made : calls()) {
        names.push_back(made.name);
    }
    return names;
}

void libnq::forget_calls() {
    std::lock_guard const lock(state_->mutex);
    state_->calls.clear();
    state_->discovery_calls.clear();
}

std::size_t libnq::open_handles() const {
    std::lock_guard const lock(state_->mutex);
    return state_->open_handles.size();
}

std::string libnq::leftovers() const {
    std::lock_guard const lock(state_->mutex);
    std::string text;
    for (auto const& [raw, count] : state_->references) {
        if (count != 0) {
            text += std::to_string(count) + " references of " + std::to_string(reinterpret_cast<std::uintptr_t>(raw)) +
                    '\n';
        }
    }
    if (!state_->open_handles.empty()) {
        text += std::to_string(state_->open_handles.size()) + " open call handles\n";
    }
    for (std::string const& fault : state_->faults) {
        text += fault + '\n';
    }
    return text;
}

std::vector<std::string> libnq::take_faults() {
    std::lock_guard const lock(state_->mutex);
    return std::exchange(state_->faults, {});
}

} // namespace scripted
