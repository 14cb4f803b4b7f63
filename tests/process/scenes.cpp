// One way for a process to use the library at its edges: scenes NAME [PLUGIN...]
// Prints a word when it comes to the edge; then it must end with 0, in time, and print nothing else.

#include "load.hpp"
#include "plugin.hpp"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <pthread.h>
#include <spdlog/logger.h>
#include <spdlog/sinks/base_sink.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace load;
using old_api = api<110>;
using new_api = api<120>;
using shared_objects = objects<api<120>>;

// These are destroyed after everything that the library and the implementations have of their own.
[[gnu::init_priority(101)]] std::optional<objects<old_api>> last_of_all; // NOLINT(cert-err58-cpp)
[[gnu::init_priority(102)]] std::optional<objects<new_api>> last;        // NOLINT(cert-err58-cpp)
[[gnu::init_priority(103)]] std::optional<new_api::event> event_at_end;  // NOLINT(cert-err58-cpp)

template <class Api = api<120>>
objects<Api> make() {
    return {Api::get_all_devices().at(0), true};
}

/// Of objects that threads use until the process ends.
template <class Object>
Object& immortal(Object object) {
    return *new Object(std::move(object));
}

void at_the_edge() {
    std::puts("edge");
    std::fflush(stdout);
}

void sleep_milliseconds(int count) { std::this_thread::sleep_for(std::chrono::milliseconds(count)); }

/// While the process ends, implementations fail what still runs.
void attempt(shared_objects& on, std::function<void(shared_objects&)> const& perform) {
    try {
        perform(on);
    } catch (std::exception const&) { // NOLINT(bugprone-empty-catch)
    }
}

/// Several threads that perform an operation for ever.
void run_for_ever(shared_objects& on, std::function<void(shared_objects&)> const& perform) {
    for (int i = 0; i < 3; ++i) {
        std::thread([&on, perform] {
            for (;;) {
                attempt(on, perform);
            }
        }).detach();
    }
    sleep_milliseconds(50);
}

void use_everything(shared_objects& on) {
    for (auto const& each : operations<api<120>>) {
        if (each.weight > 1) {
            each.run(on);
        }
    }
}

// Process exit.

void statics() {
    last_of_all.emplace(make<old_api>());
    last.emplace(make<new_api>());
    launch(*last_of_all);
    launch(*last);
    event_at_end.emplace(last->context.create_user_event().get_event());
    at_the_edge();
}

// ThreadSanitizer does not see how an implementation hands events to its threads.
std::atomic<bool> may_exit = false;

void exit_if_allowed(_nq_cl_event*, int, void*) {
    if (may_exit) {
        std::exit(0);
    }
}

// The exit destroys the statics, so that a thread which waits meanwhile uses copies.
void exit_in_callback() {
    statics();
    auto queue = last->queue;
    auto promise = last->context.create_user_event();
    promise.get_event().set_callback(new_api::commmand_exec_callback_type::complete, exit_if_allowed, nullptr);
    may_exit = true;
    promise.set_status_success();
    queue.finish();
    sleep_milliseconds(10000);
    std::abort();
}

void exit_in_callback_of_a_command() {
    statics();
    auto context = last->context;
    auto store = last->make_buffer();
    std::vector<int> values(items);
    auto gate = context.create_user_event();
    auto const gate_event = gate.get_event();
    _nq_cl_event* const list[] = {internal::owner_access::raw(gate_event)};
    auto done = last->queue.enqueue_command(new_api::write_buffer(store, false, 0, bytes, values.data()), 1, list);
    done.set_callback(new_api::commmand_exec_callback_type::complete, exit_if_allowed, nullptr);
    last->queue.flush();
    may_exit = true;
    gate.set_status_success();
    _nq_cl_event* const waited[] = {internal::owner_access::raw(done)};
    context.wait_for_events(1, waited);
    sleep_milliseconds(10000);
    std::abort();
}

void exit_while_threads_call(std::function<void(shared_objects&)> const& perform) {
    run_for_ever(immortal(make()), perform);
    statics();
}

void exit_from_a_thread() {
    auto& on = immortal(make());
    std::thread([] {
        sleep_milliseconds(50);
        statics();
        std::exit(0);
    }).detach();
    for (;;) {
        attempt(on, use_everything);
    }
}

void exit_while_a_thread_is_blocked() {
    auto& on = immortal(make());
    std::thread([&on] {
        auto const& never = immortal(on.context.create_user_event().get_event());
        attempt(on, [&](auto& other) { other.wait_for(never); });
        sleep_milliseconds(10000);
    }).detach();
    sleep_milliseconds(50);
    statics();
}

void objects_of_threads() {
    thread_local std::optional<shared_objects> of_main;
    of_main.emplace(make());
    std::atomic<bool> is_ready = false;
    for (bool const ends : {true, false}) {
        std::thread user([ends, &is_ready] {
            thread_local std::optional<shared_objects> of_thread;
            of_thread.emplace(make());
            launch(*of_thread);
            if (!ends) {
                is_ready = true;
                pause();
            }
        });
        ends ? user.join() : user.detach();
    }
    while (!is_ready) {
        sleep_milliseconds(1);
    }
    at_the_edge();
}

// Forks.

/// The child must end well, and soon.
void in_child(std::function<void()> const& action, void (*end)(int) = _exit) {
    std::fflush(stdout);
    pid_t const child = fork();
    if (child == 0) {
        alarm(20);
        action();
        std::fflush(stdout);
        end(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (status != 0) {
        std::printf("a child ended with %#x\n", static_cast<unsigned int>(status));
        std::exit(1);
    }
}

void fork_and_exit() {
    statics(); // which both processes destroy
    in_child([] {}, std::exit);
}

/// Where nothing was found, children look again, and so do other threads of the parent.
void fork_without_a_device() {
    auto const look = [] { require(api<120>::get_all_devices().empty(), "there is a device"); };
    look();
    in_child(look);
    std::thread(look).join();
    at_the_edge();
}

void fork_while_threads_use(std::function<void(shared_objects&)> const& perform, int forks) {
    auto& on = immortal(make());
    run_for_ever(on, perform);
    for (int i = 0; i < forks; ++i) {
        in_child([&] {
            shared_objects const taken = std::move(on); // whose destructors fail, and log
        });
    }
    at_the_edge();
}

/// A sink of the program's own, which takes a lock of the program's own.
struct locking_sink : spdlog::sinks::base_sink<spdlog::details::null_mutex> {
    inline static std::mutex lock;
    inline static std::atomic<bool> is_entered{false};

    void sink_it_(spdlog::details::log_msg const&) override {
        is_entered = true;
        std::lock_guard const turn(lock);
    }
    void flush_() override {}
};

/// The thread that forks holds the lock, which the child keeps.
void fork_while_a_sink_waits() {
    internal::get_mero_logger()->sinks() = {std::make_shared<locking_sink>()};
    auto on = make();
    std::unique_lock held(locking_sink::lock);
    std::thread logging([&] { log(on); });
    while (!locking_sink::is_entered) {
        sleep_milliseconds(1);
    }
    in_child([&] { log(on); });
    held.unlock();
    logging.join();
    at_the_edge();
}

std::optional<shared_objects> logs_in_fork_handlers;

void log_in_fork_handler() {
    if (logs_in_fork_handlers) {
        log(*logs_in_fork_handlers);
    }
}

// Registered before the library's own: runs after it before a fork, and before it in the parent.
[[gnu::no_sanitize_address, gnu::no_sanitize_thread]] void watch_forks_early() {
    pthread_atfork(log_in_fork_handler, log_in_fork_handler, nullptr);
}
[[gnu::section(".preinit_array"), gnu::used]] void (*const before_libraries_start)() = watch_forks_early;

void fork_while_handlers_log() {
    logs_in_fork_handlers.emplace(make());
    in_child([] {});
    logs_in_fork_handlers.reset();
    at_the_edge();
}

// Plugins of two compilers, and two versions of OpenCL.

void two_versions() {
    auto first = make<old_api>();
    auto second = make<api<220>>();
    require(std::hash<nq_call_handle*>()(internal::owner_access::call_handle(first.device).get()) !=
                std::hash<nq_call_handle*>()(internal::owner_access::call_handle(second.device).get()),
            "two versions have one call handle");
    for (auto const& each : operations<old_api>) {
        each.run(first);
    }
    for (auto const& each : operations<api<220>>) {
        each.run(second);
    }
    // an object that one version made, with a reference of its own
    api<220>::buffer store(internal::owner_access::call_handle(second.context),
                           internal::owner_access::raw(first.store), api<220>::create_reference{});
    require(store.size() == bytes, "a buffer of another version has another size");
    at_the_edge();
}

plugin_functions const& load_plugin(char const* file, void*& handle) {
    handle = dlopen(file, RTLD_NOW | RTLD_LOCAL);
    require(handle != nullptr, "a plugin cannot be loaded");
    return *static_cast<plugin_functions const*>(dlsym(handle, "plugin"));
}

template <class Caught, class Action>
bool throws(Action action) {
    try {
        action();
    } catch (Caught const& caught) {
        return typeid(caught) == typeid(common::invalid_buffer_size);
    } catch (...) { // not recognized
    }
    return false;
}

void use_plugin(plugin_functions const& plugin) {
    auto on = make();
    auto const fail = [&] { plugin.fail(on.context); };
    require(throws<common::invalid_buffer_size>(fail) && throws<common::opencl_error>(fail) &&
                throws<std::exception>(fail),
            "the host does not recognize what a plugin throws");
    require(plugin.catches([](void* context) { load::fail_unhandled(*static_cast<shared_objects*>(context)); }, &on),
            "a plugin does not recognize what the host throws");
    auto const made = plugin.make(on.context);
    require(made->size() == bytes && dynamic_cast<api<120>::buffer const*>(made.get()) != nullptr,
            "the host does not recognize a plugin's object");
    plugin.keep(on.context);
}

void plugins(char** files, bool closes) {
    for (int time = 0; time < (closes ? 20 : 1); ++time) {
        std::vector<void*> handles;
        for (char** file = files; *file != nullptr; ++file) {
            use_plugin(load_plugin(*file, handles.emplace_back()));
        }
        for (void* const handle : handles) {
            require(!closes || dlclose(handle) == 0, "a plugin cannot be closed");
        }
    }
    at_the_edge();
}

using scene = std::function<void(char**)>;

scene plain(void (*perform)()) {
    return [perform](char**) { perform(); };
}

std::map<std::string, scene> const scenes = {
    {"statics", plain(statics)},
    {"exit_in_callback", plain(exit_in_callback)},
    {"exit_in_callback_of_a_command", plain(exit_in_callback_of_a_command)},
    {"exit_while_threads_call", [](char**) { exit_while_threads_call(use_everything); }},
    {"exit_while_threads_build", [](char**) { exit_while_threads_call(build<api<120>>); }},
    {"exit_while_threads_discover", [](char**) { exit_while_threads_call(discover<api<120>>); }},
    {"exit_while_threads_log", [](char**) { exit_while_threads_call(log<api<120>>); }},
    {"exit_from_a_thread", plain(exit_from_a_thread)},
    {"exit_while_a_thread_is_blocked", plain(exit_while_a_thread_is_blocked)},
    {"objects_of_threads", plain(objects_of_threads)},
    {"fork_and_exit", plain(fork_and_exit)},
    {"fork_without_a_device", plain(fork_without_a_device)},
    {"fork_while_threads_call", [](char**) { fork_while_threads_use(use_everything, 20); }},
    {"fork_while_threads_discover", [](char**) { fork_while_threads_use(discover<api<120>>, 50); }},
    {"fork_while_threads_log", [](char**) { fork_while_threads_use(log<api<120>>, 50); }},
    {"fork_while_handlers_log", plain(fork_while_handlers_log)},
    {"fork_while_a_sink_waits", plain(fork_while_a_sink_waits)},
    {"two_versions", plain(two_versions)},
    {"plugins_closed", [](char** files) { plugins(files, true); }},
    {"plugins_left_open", [](char** files) { plugins(files, false); }},
};

} // namespace

int main(int count, char** words) {
    auto const found = scenes.find(count > 1 ? words[1] : "");
    if (found == scenes.end()) {
        for (auto const& [name, perform] : scenes) {
            std::puts(name.c_str());
        }
        return 2;
    }
    try {
        found->second(words + 2);
    } catch (std::exception const& failure) {
        std::puts(failure.what());
        return 1;
    }
}
