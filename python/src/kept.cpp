#include "kept.hpp"

#include <atomic>

namespace vorn::mero::python {
namespace {

struct kept {
    std::unique_ptr<host_memory> memory;
    kept* next;
};

std::atomic<kept*> ended{nullptr};

/// OpenCL calls it on any thread, which must not wait for the GIL: another one may hold it and wait for OpenCL.
void CL_CALLBACK note_end(cl_mem /*deleted*/, void* data) {
    auto* const memory = static_cast<kept*>(data);
    memory->next = ended.load();
    while (!ended.compare_exchange_weak(memory->next, memory)) {
    }
}

} // namespace

void keep_for(exact::buffer const& user, std::unique_ptr<host_memory> memory) {
    auto note = std::make_unique<kept>(kept{std::move(memory), nullptr});
    nq::block::clSetMemObjectDestructorCallback block;
    block.memobj = easy::detail::raw_of(user);
    block.pfn_notify = reinterpret_cast<decltype(block.pfn_notify)>(note_end);
    block.user_data = note.get();
    easy::detail::perform<easy::default_version>(user, block);
    static_cast<void>(note.release()); // now OpenCL's
}

void forget_ended() {
    std::unique_ptr<kept> first(ended.exchange(nullptr));
    while (first) {
        first.reset(first->next);
    }
}

} // namespace vorn::mero::python
