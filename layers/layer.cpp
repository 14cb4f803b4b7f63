#include "layer.hpp"

#include <nq/export.hpp>

#include <dlfcn.h>
#include <pthread.h>
#include <sys/uio.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <map>
#include <mutex>
#include <unordered_map>
#include <utility>

namespace nq::layer {
namespace {

// The next libnq. Null functions if there is none, as in a program that does not use libnq.
struct libnq {
    decltype(&nq_version) version;
    decltype(&nq_get_root_devices) get_root_devices;
    decltype(&nq_find_capability_nodes) find_capability_nodes;
    decltype(&nq_create_call_handle) create_call_handle;
    decltype(&nq_close_call_handle) close_call_handle;
    decltype(&nq_call_capability) call_capability;
};

template <class Function>
void find(Function& function, char const* name) {
    function = reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

libnq const& next() noexcept {
    static libnq const found = [] {
        libnq each{};
        find(each.version, "nq_version");
        find(each.get_root_devices, "nq_get_root_devices");
        find(each.find_capability_nodes, "nq_find_capability_nodes");
        find(each.create_call_handle, "nq_create_call_handle");
        find(each.close_call_handle, "nq_close_call_handle");
        find(each.call_capability, "nq_call_capability");
        return each;
    }();
    return found;
}

// Which OpenCL version each node and each call handle is of. Never freed: a program may make calls until its very end.
struct versions {
    std::mutex mutex;
    std::map<std::pair<std::uint64_t, std::uint64_t>, capability> of_nodes;
    std::unordered_map<nq_call_handle*, capability> of_handles;
    std::atomic<std::uint64_t> changes{1};
};

versions& known() {
    static versions& all = *new versions;
    return all;
}

void remember_nodes(capability version, capability_node const* nodes, std::uint64_t count) {
    std::scoped_lock const lock{known().mutex};
    for (std::uint64_t i = 0; i < count; ++i) {
        known().of_nodes[{nodes[i].first, nodes[i].second}] = version;
    }
}

void remember_handle(capability_node node, nq_call_handle* handle) {
    versions& all = known();
    std::scoped_lock const lock{all.mutex};
    auto const found = all.of_nodes.find({node.first, node.second});
    all.of_handles[handle] = found != all.of_nodes.end() ? found->second : capability{};
    all.changes.fetch_add(1, std::memory_order_release);
}

// Each thread keeps the last answer, until a handle is opened.
capability version_of(nq_call_handle* handle) {
    struct answer {
        nq_call_handle* handle;
        capability version;
        std::uint64_t change;
    };
    static thread_local answer last{};
    versions& all = known();
    std::uint64_t const change = all.changes.load(std::memory_order_acquire);
    if (last.handle != handle || last.change != change) {
        std::scoped_lock const lock{all.mutex};
        auto const found = all.of_handles.find(handle);
        last = {handle, found != all.of_handles.end() ? found->second : capability{}, change};
    }
    return last.version;
}

} // namespace

int forward(call const& made) noexcept {
    auto* const function = next().call_capability;
    return function != nullptr ? function(made.handle, made.id, made.block, made.reserved) : result::unrecoverable;
}

bool is_forked() noexcept {
    static std::atomic<bool> forked = false;
    static bool const watched = [] { return pthread_atfork(nullptr, nullptr, [] { forked = true; }) == 0; }();
    return watched && forked.load(std::memory_order_relaxed);
}

bool read_safely(void* to, void const* from, std::size_t size) noexcept {
    int const before = errno;
    iovec const local{to, size};
    iovec const remote{const_cast<void*>(from), size};
    bool const read = process_vm_readv(getpid(), &local, 1, &remote, 1, 0) == static_cast<ssize_t>(size);
    errno = before;
    return read;
}

void print(char const* layer, std::string const& line) noexcept {
    int const before = errno;
    attempt([&] {
        std::string const whole = std::string(layer) + ": " + line + "\n";
        for (std::size_t done = 0; done < whole.size();) {
            ssize_t const wrote = write(STDERR_FILENO, whole.data() + done, whole.size() - done);
            if (wrote <= 0 && errno != EINTR) {
                break;
            }
            done += wrote > 0 ? static_cast<std::size_t>(wrote) : 0;
        }
    });
    errno = before;
}

} // namespace nq::layer

using namespace nq::layer;

extern "C" {

NQ_EXPORT std::uint64_t nq_version() { return next().version != nullptr ? next().version() : 0; }

NQ_EXPORT int nq_get_root_devices(std::uint64_t capacity, nq::device* devices, std::uint64_t* count, void* reserved) {
    auto* const function = next().get_root_devices;
    return function != nullptr ? function(capacity, devices, count, reserved) : nq::result::unrecoverable;
}

NQ_EXPORT int nq_find_capability_nodes(nq::device device, nq::capability capability, std::uint64_t capacity,
                                       nq::capability_node* nodes, std::uint64_t* count, void* reserved) {
    auto* const function = next().find_capability_nodes;
    if (function == nullptr) {
        return nq::result::unrecoverable;
    }
    int const result = function(device, capability, capacity, nodes, count, reserved);
    if (result == nq::result::success && nodes != nullptr && count != nullptr) {
        attempt([&] { remember_nodes(capability, nodes, *count < capacity ? *count : capacity); });
    }
    return result;
}

NQ_EXPORT int nq_create_call_handle(nq::capability_node node, nq_call_handle** handle, void* reserved) {
    auto* const function = next().create_call_handle;
    int const result = function != nullptr ? function(node, handle, reserved) : nq::result::unrecoverable;
    if (result == nq::result::success && handle != nullptr) {
        attempt([&] { remember_handle(node, *handle); });
    }
    return result;
}

NQ_EXPORT void nq_close_call_handle(nq_call_handle* handle) {
    if (auto* const function = next().close_call_handle; function != nullptr) {
        function(handle);
    }
}

NQ_EXPORT int nq_call_capability(nq_call_handle* handle, std::uint32_t command_id, void* block, void* reserved) {
    call made{handle, nq::capability{}, command_id, block, reserved};
    attempt([&] { made.version = version_of(handle); });
    return perform(made);
}

} // extern "C"
