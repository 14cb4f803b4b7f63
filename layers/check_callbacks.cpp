#include "check_callbacks.hpp"

#include "check_objects.hpp"
#include "check_order.hpp"

#include <cxxabi.h>

#include <cstring>
#include <exception>
#include <memory>
#include <typeinfo>

namespace nq::layer::check {
namespace {

// A function of the program that OpenCL will call. Kept as long as OpenCL may call it, which for most is for ever.
struct watcher {
    void (*function)();
    void* user_data;
    char const* entry;
    place where;
    call through; // its block is gone
};

std::string words_for_exception() {
    std::type_info const* const type = abi::__cxa_current_exception_type();
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> const name(
        type != nullptr ? abi::__cxa_demangle(type->name(), nullptr, nullptr, &status) : nullptr, std::free);
    std::string text = name != nullptr ? name.get() : "something";
    try {
        throw;
    } catch (std::exception const& thrown) {
        text += std::string(": ") + thrown.what();
    } catch (...) { // NOLINT(bugprone-empty-catch) there is no more to say
    }
    return text;
}

// What the function is told of.
void see(call const& through, _nq_cl_event* event, int status) {
    revive(event);
    if (status <= 0) {
        note_complete(through, event);
    }
}
template <class First, class... Others>
void see(call const& /*through*/, First first, Others... /*others*/) {
    if constexpr (detail::object_of<std::remove_pointer_t<First>>::value != object_kind::none) {
        revive(first);
    }
}

template <class... Arguments>
void call_watched(watcher const& to, Arguments... arguments) {
    attempt([&] { see(to.through, arguments...); });
    auto* const function = reinterpret_cast<void (*)(Arguments..., void*)>(to.function);
    try {
        function(arguments..., to.user_data);
    } catch (abi::__forced_unwind&) { // the thread ends
        throw;
    } catch (...) {
        attempt([&] {
            report("the callback that " + std::string(to.entry) + at(to.where) + " set has thrown " +
                   words_for_exception());
        });
        throw;
    }
}

// One function for each type of callback; all have the user data last.
template <class Callback>
struct entrance;
template <class... Arguments>
struct entrance<void (*)(Arguments...)> {
    template <std::size_t... Index, class Tuple>
    static void pass_on(std::index_sequence<Index...>, Tuple const& all) {
        auto const& to = *static_cast<watcher const*>(std::get<sizeof...(Index)>(all));
        call_watched(to, std::get<Index>(all)...);
    }
    static void function(Arguments... arguments) {
        pass_on(std::make_index_sequence<sizeof...(Arguments) - 1>(), std::make_tuple(arguments...));
    }
};

using any_function = void (*)();

// The function for the type of callback that an entry point takes.
any_function entrance_for(description const& about) {
    auto const as_any = [](auto* function) { return reinterpret_cast<any_function>(function); };
    if (&about == &description_of<block::clSetEventCallback>) {
        return as_any(&entrance<event_callback>::function);
    }
    if (&about == &description_of<block::clSetMemObjectDestructorCallback>) {
        return as_any(&entrance<memory_callback>::function);
    }
    if (&about == &description_of<block::clEnqueueSVMFree>) {
        return as_any(&entrance<svm_free_callback>::function);
    }
    if (&about == &description_of<block::clCreateContext> ||
        &about == &description_of<block::clCreateContextFromType>) {
        return as_any(&entrance<context_callback>::function);
    }
    return as_any(&entrance<program_callback>::function); // builds, compilations, links, releases
}

field const* find(description const& about, field_kind kind) {
    auto const* const found =
        std::find_if(about.begin(), about.end(), [&](field const& each) { return each.kind == kind; });
    return found != about.end() ? found : nullptr;
}

void put(call const& made, field const& where, void* value) {
    std::memcpy(static_cast<char*>(made.block) + where.offset, &value, sizeof value);
}

} // namespace

watched watch_callback(call const& made, description const& about) {
    field const* const function = find(about, field_kind::callback);
    field const* const data = find(about, field_kind::user_data);
    if (function == nullptr || data == nullptr || read_pointer(made.block, function->offset) == nullptr) {
        return {};
    }
    watched was{const_cast<void*>(read_pointer(made.block, function->offset)),
                const_cast<void*>(read_pointer(made.block, data->offset))};
    auto* const own = new watcher{reinterpret_cast<any_function>(was.function),
                                  was.user_data,
                                  about.name,
                                  here(),
                                  {made.handle, made.version, 0, nullptr, nullptr}};
    was.watcher = own;
    put(made, *function, reinterpret_cast<void*>(entrance_for(about)));
    put(made, *data, own);
    return was;
}

void restore_callback(call const& made, description const& about, watched const& was, bool succeeded) {
    if (was.function == nullptr) {
        return;
    }
    put(made, *find(about, field_kind::callback), was.function);
    put(made, *find(about, field_kind::user_data), was.user_data);
    if (!succeeded) {
        delete static_cast<watcher*>(was.watcher);
    }
}

} // namespace nq::layer::check
