#pragma once

#include "scripted/scripted.hpp"

#include <mutex>
#include <set>

struct nq_call_handle {
    nq::capability_node node;
    bool open = true;
};

namespace scripted {

/// What `scripted::libnq` has behind it; every access holds the mutex.
struct libnq::state {
    struct fault_to_come {
        std::string entry_point; // any when empty
        failure how;
        unsigned calls_left; // until it fails, this one included; `every` fails each
    };
    using reply_key = std::pair<std::string, std::uint32_t>;

    mutable std::recursive_mutex mutex;
    std::vector<call> calls;
    std::vector<discovery_call> discovery_calls;
    std::vector<std::string> faults;
    std::vector<fault_to_come> faults_to_come;
    std::optional<std::pair<int, unsigned>> failing_open;
    std::map<reply_key, scripted::reply> replies;
    std::map<std::string, std::uint32_t, std::less<>> counts;
    std::map<std::string, std::function<bool(void*)>, std::less<>> answers;
    std::map<void const*, int> references;
    std::map<std::uint64_t, void*> devices; // by the first word of a node
    std::set<nq_call_handle*> open_handles;
    std::vector<std::unique_ptr<nq_call_handle>> handles; // never given back, so that a closed one is recognised
    std::optional<nq::capability> null_version;

    nq_call_handle* open(nq::capability_node node);

    void fault(std::string what) { faults.push_back(std::move(what)); }

    /// Takes the failure that is due at a call of an entry point.
    std::optional<failure> take_failure(std::string_view entry_point);

    std::uint32_t count_of(std::string_view entry_point) const;
};

/// Marks this thread as being inside libnq.
class answering_scope {
public:
    answering_scope() noexcept;
    answering_scope(answering_scope const&) = delete;
    answering_scope& operator=(answering_scope const&) = delete;
    ~answering_scope();

private:
    bool outer_;
};

/// Performs a command: remembers it, then fails or answers it.
int perform(libnq& self, libnq::state& state, nq_call_handle* handle, std::uint32_t id, void* block);

} // namespace scripted
