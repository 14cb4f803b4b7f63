// Six threads share a context, a queue, a program, copies of all handles, discovery and the logger: every result is
// right, the references stay few, and in the end none is left.

#include "load.hpp"

#ifdef THREADS_SCRIPTED
#include "scripted/scripted.hpp"
#endif

#include <gtest/gtest.h>
#include <nq/commands.hpp>
#include <nq/nq.hpp>

#include <barrier>
#include <chrono>
#include <cstdlib>
#include <spdlog/details/null_mutex.h>
#include <spdlog/sinks/base_sink.h>
#include <thread>

namespace {

using namespace load;

constexpr std::size_t thread_count = 6;

struct counting_sink : spdlog::sinks::base_sink<spdlog::details::null_mutex> {
    void sink_it_(spdlog::details::log_msg const&) override { ++lines; }
    void flush_() override {}
    std::atomic<long> lines{0};
};

#ifdef THREADS_SCRIPTED
constexpr std::size_t rounds = 40;
constexpr bool computes = false;

template <class Api>
std::vector<typename Api::device> devices() {
    namespace block = nq::block;
    auto& libnq = scripted::libnq::instance();
    libnq.reset();
    libnq.remembers_calls = false;
    libnq.reply<block::clGetDeviceInfo>(0x102B, "name\0");
    libnq.reply<block::clGetDeviceInfo>(0x1031, scripted::bytes_of(libnq.make<_nq_cl_platform_id>())); // for a layer
    libnq.reply<block::clGetPlatformInfo>(0x902, "name\0");
    libnq.reply<block::clGetMemObjectInfo>(0x1102, scripted::bytes_of(bytes));
    libnq.reply<block::clGetContextInfo>(0x1081, scripted::bytes_of(libnq.make<_nq_cl_device_id>()));
    libnq.on<block::clRetainDevice>([](auto&) { return true; });
    libnq.on<block::clReleaseDevice>([](auto&) { return true; });
    libnq.on<block::clReleaseEvent>([&libnq](block::clReleaseEvent& b) {
        bool const is_known = libnq.references.contains(b.event);
        b.status = is_known ? 0 : -58;
        return !is_known;
    });
    libnq.on<block::clCreateBuffer>([](block::clCreateBuffer& b) {
        b.error_code = b.size == 0 ? -61 : 0;
        return b.size == 0;
    });
    libnq.on<block::clSetEventCallback>([](block::clSetEventCallback& b) {
        b.pfn_notify(b.event, 0, b.user_data);
        return true;
    });
    return Api::get_all_devices();
}

void expect_nothing_left() { EXPECT_EQ(scripted::libnq::instance().leftovers(), ""); }
#else
constexpr std::size_t rounds = 50;
constexpr bool computes = true;

template <class Api>
std::vector<typename Api::device> devices() {
    std::vector<typename Api::device> found;
    for (auto const& each : Api::get_all_devices()) {
        auto const name = each.get_platform().name();
        char const* const reason = name == "Oclgrind" ? "is for one thread"
                                   : name == "rusticl"
                                       ? "crashes, or computes wrong results, where threads share a queue"
                                       : nullptr;
        if (reason == nullptr) {
            found.push_back(each);
        } else {
            std::printf("left out: %s %s\n", name.c_str(), reason);
        }
    }
    return found;
}

void expect_nothing_left() {} // the layer that looks for leaks says so when the process ends
#endif

using opencl_1_2::raw::refcount, opencl_2_2::raw::refcount;

/// Implementations may let go of an object on a thread of their own, a little later.
template <class Condition>
bool comes_true(Condition condition) {
    for (int i = 0; i < 1000 && !condition(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return condition();
}

/// All operations in an order of its own, on its own copies and on the shared objects in turn.
template <class Api>
void work(objects<Api>& shared, std::size_t thread) {
    auto const& all = operations<Api>;
    objects<Api> own = shared;
    for (std::size_t step = 0; step < rounds * all.size(); ++step) {
        std::size_t const round = step / all.size();
        auto const& next = all[(step + thread * 3 + round) % all.size()];
        if (next.weight > 1 || round % 25 == 0) { // builds take long
            next.run(step % 2 == 0 ? own : shared);
        }
    }
}

template <class Api>
void share(typename Api::device const& device) {
    SCOPED_TRACE((computes ? device.get_platform().name() : "scripted") + " in " + std::to_string(Api::number));
    auto const sink = std::make_shared<counting_sink>();
    internal::get_mero_logger()->sinks() = {sink};
    objects<Api> shared(device, computes);
    std::atomic<int> running = thread_count;
    std::barrier start(thread_count);
    std::vector<std::jthread> threads;
    for (std::size_t thread = 0; thread < thread_count; ++thread) {
        threads.emplace_back([&, thread] {
            start.arrive_and_wait();
            EXPECT_NO_THROW(work(shared, thread));
            --running;
        });
    }
    std::uint32_t most = 0;
    for (; running > 0; std::this_thread::sleep_for(std::chrono::milliseconds(1))) {
        most = std::max(most, computes ? refcount(shared.context) : 0);
    }
    threads.clear();
    EXPECT_LT(most, 100U * thread_count);
    EXPECT_EQ(sink->lines, rounds * thread_count);
    EXPECT_TRUE(comes_true([] { return callbacks_called == callbacks_expected; }));
    if (computes) {
        shared.queue.finish();
        EXPECT_TRUE(comes_true([&] { return refcount(shared.queue) == 1; })) << refcount(shared.queue);
        EXPECT_EQ(refcount(shared.store), 1U);
    }
}

template <class Api>
void share_all() {
    ::setenv("MERO_LOG_LEVEL", "error", 1);
    auto const found = devices<Api>();
    ASSERT_FALSE(found.empty());
    for (auto const& device : found) {
        share<Api>(device);
    }
}

#ifndef THREADS_SCRIPTED
TEST(threads, open_and_close_one_call_handle) {
    constexpr auto version = nq::capability::opencl_1_2;
    nq::capability_node node{};
    nq_call_handle* kept = nullptr;
    std::uint64_t count = 0;
    ASSERT_EQ(nq_find_capability_nodes(1, version, 1, &node, &count, nullptr), 0);
    ASSERT_EQ(nq_create_call_handle(node, &kept, nullptr), 0);
    {
        std::barrier start(thread_count);
        std::vector<std::jthread> threads;
        for (std::size_t thread = 0; thread < thread_count; ++thread) {
            threads.emplace_back([&] {
                start.arrive_and_wait();
                for (int i = 0; i < 300000; ++i) {
                    nq_call_handle* opened = nullptr;
                    nq_create_call_handle(node, &opened, nullptr);
                    nq_close_call_handle(opened);
                }
            });
        }
    }
    nq::block::call_handle_device block{};
    auto const ask = [&] {
        return nq_call_capability(kept, nq::command_id<version, nq::block::call_handle_device>, &block, nullptr);
    };
    EXPECT_EQ(ask(), nq::result::success) << "an opening was not counted";
    nq_close_call_handle(kept);
    EXPECT_EQ(ask(), nq::result::unrecoverable) << "a closing was not counted";
}
#endif

TEST(threads, share_everything) {
    share_all<api<120>>();
    expect_nothing_left();
    share_all<api<220>>();
    expect_nothing_left();
}

} // namespace
