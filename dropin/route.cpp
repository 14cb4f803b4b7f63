#include "route.hpp"

#include "behind.hpp"

#include "../bridge/system.hpp"

#include <nq/blocks.hpp>
#include <nq/nq.hpp>

#include <dlfcn.h>
#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace nq::dropin {
namespace {

struct routes {
    std::vector<route> all;
    std::vector<void const*> others; // the tables of platforms that libnq does not offer
    bool only_one;                   // implementation: its objects need not begin with a table
};

// Never freed, and its call handles are never closed: a program may make calls until its very end.
std::atomic<routes const*> known = nullptr;
std::atomic<bool> forked = false;
thread_local bool discovering = false; // an implementation may call OpenCL's functions meanwhile

nq_call_handle* open(nq::device device, nq::capability version) {
    nq::capability_node node{};
    std::uint64_t count = 0;
    nq_call_handle* handle = nullptr;
    bool const opened = nq_find_capability_nodes(device, version, 1, &node, &count, nullptr) == result::success &&
                        count != 0 && nq_create_call_handle(node, &handle, nullptr) == result::success;
    return opened ? handle : nullptr;
}

void const* first_word(void const* object) noexcept { return *static_cast<void const* const*>(object); }

void* raw_device(nq_call_handle* handle, std::size_t version) noexcept {
    block::call_handle_device ask{};
    int const made = nq_call_capability(handle, command_ids<block::call_handle_device>[version], &ask, nullptr);
    return made == result::success ? ask.result : nullptr;
}

bool is_3_0(void* device) noexcept {
    auto* const ask = reinterpret_cast<decltype(&clGetDeviceInfo)>(function_behind("clGetDeviceInfo"));
    std::array<char, 128> text{}; // "OpenCL 3.0 ..."
    return ask != nullptr &&
           ask(static_cast<cl_device_id>(device), CL_DEVICE_VERSION, text.size(), text.data(), nullptr) == CL_SUCCESS &&
           std::string_view(text.data()) >= "OpenCL 3";
}

void add(routes& to, nq::device device) {
    route made{};
    for (std::size_t i = 0; i < version_count; ++i) {
        made.handles[i] = open(device, nq::capability{i + 1});
        void* const raw =
            made.handles[i] != nullptr && made.table == nullptr ? raw_device(made.handles[i], i) : nullptr;
        if (raw != nullptr) {
            made.table = first_word(raw);
            made.is_3_0 = is_3_0(raw);
        }
    }
    auto const found =
        std::find_if(to.all.begin(), to.all.end(), [&](route const& each) { return each.table == made.table; });
    if (found == to.all.end() && made.table != nullptr) {
        to.all.push_back(made);
        return;
    }
    for (std::size_t i = 0; i < version_count; ++i) { // devices of one implementation may offer different versions
        if (found != to.all.end() && found->handles[i] == nullptr) {
            found->handles[i] = made.handles[i];
        } else {
            nq_close_call_handle(made.handles[i]);
        }
    }
}

std::vector<cl_platform_id> list_platforms() {
    auto* const list = reinterpret_cast<decltype(&clGetPlatformIDs)>(function_behind("clGetPlatformIDs"));
    cl_uint count = 0;
    if (list == nullptr || list(0, nullptr, &count) != CL_SUCCESS) {
        return {};
    }
    std::vector<cl_platform_id> platforms(count);
    return list(count, platforms.data(), nullptr) == CL_SUCCESS ? platforms : std::vector<cl_platform_id>();
}

// A tool that watches OpenCL is preloaded before the drop-in. libnq performs calls by it, and it may make them here:
// what comes here goes to the library behind.
bool is_behind_a_tool() noexcept {
    void* const first = dlsym(RTLD_DEFAULT, "clGetPlatformIDs");
    return first != nullptr && !bridge::is_in_program(first) &&
           bridge::object_of(first) != bridge::object_of(reinterpret_cast<void*>(nq_opencl_behind));
}

std::unique_ptr<routes const> discover() {
    auto made = std::make_unique<routes>();
    if (is_behind_a_tool()) {
        return made;
    }
    std::uint64_t count = 0;
    if (nq_version() != nq::version || nq_get_root_devices(0, nullptr, &count, nullptr) != result::success) {
        return made;
    }
    std::vector<nq::device> devices(count);
    if (nq_get_root_devices(count, devices.data(), &count, nullptr) != result::success) {
        return made;
    }
    devices.resize(std::min<std::size_t>(devices.size(), count));
    for (nq::device const each : devices) {
        add(*made, each);
    }
    auto const platforms = list_platforms();
    made->only_one = platforms.size() == 1;
    for (std::size_t i = 0; i != platforms.size() && !made->only_one; ++i) {
        made->others.push_back(first_word(platforms[i]));
    }
    return made;
}

// Two threads may ask at once: both get the same call handles. Without a device the next call asks again.
[[gnu::cold, gnu::noinline]] routes const* ask() noexcept {
    if (discovering) {
        return nullptr;
    }
    discovering = true;
    try {
        static int const watched = pthread_atfork(nullptr, nullptr, [] { forked = known != nullptr; });
        auto made = discover();
        routes const* before = nullptr;
        if (watched == 0 && !made->all.empty() && known.compare_exchange_strong(before, made.get())) {
            static_cast<void>(made.release());
        }
    } catch (...) { // NOLINT(bugprone-empty-catch): out of memory; perhaps not the next time
    }
    discovering = false;
    return known;
}

} // namespace

route const* find_route(void const* object) noexcept {
    routes const* found = known.load(std::memory_order_acquire);
    if (found == nullptr && (found = ask()) == nullptr) {
        return nullptr;
    }
    bool const is_aligned = reinterpret_cast<std::uintptr_t>(object) % alignof(void*) == 0;
    if (object == nullptr || found->only_one || !is_aligned) {
        return &found->all.front();
    }
    void const* const table = first_word(object);
    for (route const& each : found->all) {
        if (each.table == table) {
            return &each;
        }
    }
    // Memory that was an object, or never was one: the layers see the call before it crashes.
    bool const is_object = std::find(found->others.begin(), found->others.end(), table) != found->others.end();
    return is_object ? nullptr : &found->all.front();
}

bool is_forked() noexcept { return forked; }

} // namespace nq::dropin

// A layer finds the next libnq in the scope of the whole process. The drop-in may be loaded for a plugin alone, as the
// modules of scripts are, and its libnq with it.
[[gnu::constructor]] static void show_libnq() { dlopen(NQ_DROPIN_LIBNQ, RTLD_LAZY | RTLD_GLOBAL | RTLD_NOLOAD); }
