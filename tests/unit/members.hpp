#pragma once

// Tests of members by what they send: for each the entry point, the call handle and the block, what becomes of the
// results, that nothing is taken from a call that fails, and that nothing else is called.

#include "scripted/scripted.hpp"

#include <gtest/gtest.h>

#include <typeindex>

// The OpenCL version; the build compiles each test once per version.
#ifndef UNIT_OPENCL
#define UNIT_OPENCL 220
#define UNIT_NAMESPACE opencl_2_2
#define UNIT_HEADER <vorn/mero/opencl_2_2.hpp>
#endif
#include UNIT_HEADER

#pragma GCC diagnostic ignored "-Wunused-result" // tests look at what is sent and thrown

namespace unit {

using namespace vorn::mero::UNIT_NAMESPACE; // NOLINT(google-build-using-namespace)
#if UNIT_OPENCL >= 200
using vorn::mero::UNIT_NAMESPACE::pipe; // not the system's
#endif
using namespace nq::block; // NOLINT(google-build-using-namespace)
namespace common = vorn::mero::common;
using api = vorn::mero::api<UNIT_OPENCL>;

/// A value as it stands in a block.
using word = std::uint64_t;
using words = std::vector<word>;
using names = std::vector<std::string>;
using array3 = std::array<std::size_t, 3>;

constexpr word large = 0x8123456789ABCDEF;
constexpr std::uint32_t number = 0x89ABCDEF;

/// How OpenCL names and counts the objects of a class.
struct kind {
    char const* name;
    std::uint32_t reference_count; ///< Its name in the info entry point; 0 for a class that is not counted.
    char const* object;
};

#define UNIT_CLASS(object, name, reference_count, accessor)                                                            \
    inline auto* raw_of(object const& of) { return raw::accessor(of); }                                                \
    constexpr kind kind_of(object const*) { return {#name, reference_count, #object}; }                                \
    clGet##name##Info info_of(object const&); // which has the object as its first argument

UNIT_CLASS(platform, Platform, 0, get_raw_platform_id)
UNIT_CLASS(device, Device, UNIT_OPENCL >= 120 ? 0x1047 : 0, get_raw_device_id)
UNIT_CLASS(context, Context, 0x1080, get_raw_context)
UNIT_CLASS(memory_object, MemObject, 0x1105, get_raw_memory_object)
UNIT_CLASS(sampler, Sampler, 0x1150, get_raw_sampler)
UNIT_CLASS(program, Program, 0x1160, get_raw_program)
UNIT_CLASS(kernel, Kernel, 0x1192, get_raw_kernel)
UNIT_CLASS(event, Event, 0x11D2, get_raw_event)
clGetImageInfo info_of(image const&);
#if UNIT_OPENCL < 200
UNIT_CLASS(command_queue, CommandQueue, 0x1092, get_raw_command_queue)
#else
UNIT_CLASS(host_command_queue, CommandQueue, 0x1092, get_raw_command_queue)
UNIT_CLASS(device_command_queue, CommandQueue, 0x1092, get_raw_command_queue)
clGetPipeInfo info_of(pipe const&);
#endif
#if UNIT_OPENCL >= 110
UNIT_CLASS(event_promise, Event, 0x11D2, get_raw_event)
#endif

template <class T>
concept owning = requires(T const& object) {
    raw_of(object);
};

template <class T>
concept owners = requires(T const& list) {
    requires owning<typename T::value_type>;
};

template <owning T>
constexpr bool counted = kind_of(static_cast<T*>(nullptr)).reference_count != 0;

/// The call handle of an object, or one itself.
template <class T>
nq_call_handle* handle_of(T const& object) {
    if constexpr (owning<T>) {
        return raw::get_call_handle(object).get();
    } else {
        return object.get();
    }
}

template <class T>
word word_of(T const& value) {
    if constexpr (owning<T>) {
        return word_of(raw_of(value));
    } else if constexpr (std::is_pointer_v<T>) {
        return reinterpret_cast<word>(value);
    } else {
        return static_cast<word>(value);
    }
}

/// What OpenCL replies where a member gives such a value.
template <class T>
std::string reply_of(T const& value) {
    if constexpr (std::is_convertible_v<T, std::string>) {
        return std::string(value) + '\0';
    } else if constexpr (owning<T>) {
        return scripted::bytes_of(raw_of(value));
    } else if constexpr (requires { value.size(), value[0]; }) {
        std::string all;
        for (auto const& element : value) {
            all += reply_of(element);
        }
        return all;
    } else {
        return scripted::bytes_of(value);
    }
}

/// Any value of any enumeration.
struct value {
    word number;

    template <class T>
    requires std::is_enum_v<T>
    constexpr operator T() const { return static_cast<T>(number); }
};

/// A place for OpenCL to write to; blocks are compared by whether they have one.
struct place {
    template <class T>
    operator T*() const {
        return reinterpret_cast<T*>(1);
    }
};
constexpr place somewhere;

/// The class and the message of what some work throws.
inline std::pair<std::type_index, std::string> thrown_by(std::function<void()> const& work) {
    try {
        work();
    } catch (std::exception const& thrown) {
        return {typeid(thrown), thrown.what()};
    }
    return {typeid(void), "nothing was thrown"};
}

/// Expects an exception of exactly this class, with this message.
template <class Exception>
void throws(std::string const& message, std::function<void()> const& work) {
    auto const [type, said] = thrown_by(work);
    EXPECT_EQ(type, typeid(Exception));
    EXPECT_EQ(said, message);
}

/// One object of every class, each on a call handle of its own.
struct world {
    template <class Object>
    static Object own() {
        auto& libnq = scripted::libnq::instance();
        auto* const raw = libnq.make<typename Object::raw_type>(counted<Object> ? 1 : 0);
        return Object(libnq.open(api::capability), raw, api::take_ownership{});
    }

    api::platform platform = own<api::platform>();
    api::device device = own<api::device>();
    api::device device_2 = own<api::device>();
    api::context context = own<api::context>();
    api::host_queue queue = own<api::host_queue>();
    api::buffer buffer = own<api::buffer>();
    api::buffer buffer_2 = own<api::buffer>();
    api::image_2d image = own<api::image_2d>();
    api::image_3d image_2 = own<api::image_3d>();
    api::sampler sampler = own<api::sampler>();
    api::program program = own<api::program>();
    api::program program_2 = own<api::program>();
    api::kernel kernel = own<api::kernel>();
    api::event event = own<api::event>();
    std::vector<api::device> devices{device, device_2};
    std::vector<_nq_cl_device_id*> ids{raw_of(device), raw_of(device_2)};
#if UNIT_OPENCL >= 110
    vorn::mero::UNIT_NAMESPACE::sub_buffer sub_buffer = own<vorn::mero::UNIT_NAMESPACE::sub_buffer>();
    api::event_promise promise = own<api::event_promise>();
#endif
#if UNIT_OPENCL >= 200
    device_command_queue device_queue = own<device_command_queue>();
    vorn::mero::UNIT_NAMESPACE::pipe pipe = own<vorn::mero::UNIT_NAMESPACE::pipe>();
#endif
};

/// Starts every test with a fresh libnq, and ends it by asking that no reference and no call handle is left. That is
/// asked once the members of the test's own fixture are gone.
struct fixture : testing::Test {
    fixture() { libnq.reset(); }
    fixture(fixture const&) = delete;
    fixture& operator=(fixture const&) = delete;
    ~fixture() override { EXPECT_EQ(libnq.leftovers(), ""); }

    scripted::libnq& libnq = scripted::libnq::instance();
};

struct members : fixture {
    members() { libnq.forget_calls(); }

    /// Expects the calls so far to be these, all on the call handle of one object. Those that retain results are not
    /// looked at: one too many or too few is seen at the end of the test.
    void expect_sent(auto const& receiver, auto const&... blocks) {
        auto made = libnq.calls;
        std::erase_if(made, [](scripted::call const& call) { return call.name.starts_with("clRetain"); });
        ASSERT_EQ(made.size(), sizeof...(blocks)) << testing::PrintToString(libnq.names());
        auto call = made.begin();
        auto const expect_call = [&](auto const& block) {
            EXPECT_EQ(call->name, scripted::name_of<std::decay_t<decltype(block)>>());
            EXPECT_EQ(call->inputs, scripted::inputs_of(block));
            EXPECT_EQ(call++->handle, handle_of(receiver));
        };
        (expect_call(blocks), ...);
    }

    /// Checks a member of one call: what it sends, and that its result is what OpenCL made, on the same call handle.
    template <class Block>
    void performs(auto const& receiver, Block const& sent, auto act) {
        SCOPED_TRACE(scripted::name_of<Block>());
        libnq.forget_calls();
        if constexpr (std::is_void_v<decltype(act())>) {
            act();
            expect_sent(receiver, sent);
        } else {
            auto const result = act();
            ASSERT_NO_FATAL_FAILURE(expect_sent(receiver, sent));
            EXPECT_EQ(word_of(result), word_of(libnq.calls[0].made));
            expect_handle(result, handle_of(receiver));
        }
        fails<Block>(act);
    }

    /// Checks a member that reads in two calls: what it asks and what it makes of the reply. What it finds is an object
    /// of the same call handle that is retained, a list of such, or a value. Unless it is given the reply is that of
    /// the value.
    template <class Block>
    requires std::is_class_v<Block>
    void reads(auto& object, Block query, auto const& expected, auto read, std::optional<std::string> given = {}) {
        SCOPED_TRACE(std::string(scripted::name_of<Block>()) + ' ' + std::to_string(query.param_name));
        std::string const reply = given ? *given : reply_of(expected);
        libnq.reply<Block>(query.param_name, reply);
        libnq.forget_calls();
        {
            auto const found = std::invoke(read, object);
            Block sizing = query;
            sizing.param_value_size_ret = query.param_value_size_ret = somewhere;
            query.param_value_size = reply.size();
            query.param_value = somewhere;
            expect_sent(object, sizing, query);
            EXPECT_EQ(reply_of(found), reply_of(expected));
            expect_handle(found, handle_of(object));
        }
        fails<Block>([&] { std::invoke(read, object); });
    }

    /// The same by the entry point of the object's class.
    void reads(auto& object, std::uint32_t name, auto const& expected, auto read,
               std::optional<std::string> given = {}) {
        auto* const raw = raw_of(object);
        decltype(info_of(object)) query{.param_name = name};
        std::memcpy(&query, &raw, sizeof raw);
        reads(object, query, expected, read, std::move(given));
    }

    /// The same of members whose names follow one another.
    void reads_each(auto& object, std::uint32_t name, auto const& expected, auto... each) {
        (reads(object, name++, expected, each), ...);
    }

    /// The same of those that tell whether a number is not zero.
    void reads_bool(auto& object, std::uint32_t name, auto... each) {
        for (std::uint32_t const answer : {0U, 1U, 0x100U}) {
            std::uint32_t asked = name;
            (reads(object, asked++, answer != 0, each, reply_of(answer)), ...);
        }
    }

    /// The same of those that tell whether a number has a bit.
    void reads_bit(auto& object, std::uint32_t name, word bit, auto read) {
        for (word const answer : {bit, ~word{0}, ~bit, word{0}}) {
            reads(object, name, (answer & bit) != 0, read, reply_of(answer));
        }
    }

    /// Has `reads(name, expected, member)` for members of an object that ask by another query, and take some arguments.
    template <class Block>
    auto reader(auto& object, Block query, auto const&... arguments) {
        return [=, this, &object](std::uint32_t name, auto const& expected, auto member) mutable {
            query.param_name = name;
            this->reads(object, query, expected, [&](auto& of) { return std::invoke(member, of, arguments...); });
        };
    }

    /// Checks a member that lists in two calls, or in one where there is nothing.
    template <class Block>
    void lists(auto const& receiver, Block const& counting, Block const& listing, std::uint32_t count, auto list) {
        SCOPED_TRACE(count);
        libnq.listed = count;
        libnq.forget_calls();
        {
            auto const found = list();
            EXPECT_EQ(found.size(), count);
            expect_handle(found, handle_of(receiver));
            if (count == 0) {
                expect_sent(receiver, counting);
            } else {
                expect_sent(receiver, counting, listing);
                if constexpr (owners<decltype(list())>) {
                    EXPECT_EQ(raw_of(found.back()), libnq.calls.back().made);
                }
            }
        }
        fails<Block>(list);
        libnq.fail(scripted::status(-6), count == 0 ? 1 : 2);
        EXPECT_THROW(list(), common::out_of_host_memory);
    }

    /// Expects one call of what fails by its status, where it has one, and by the call layer.
    template <class Block>
    void fails(auto act) {
        libnq.forget_calls();
        std::size_t made = 1;
        if constexpr (
            requires(Block block) { block.status; } || requires(Block block) { block.error_code; }) {
            libnq.fail(scripted::status(-5));
            EXPECT_THROW(act(), common::out_of_resources);
            ++made;
        }
        libnq.fail(scripted::layer(-1));
        EXPECT_THROW(act(), nq::unrecoverable_error);
        EXPECT_EQ(libnq.names(), names(made, std::string(scripted::name_of<Block>())));
    }

    /// Expects an exception before any call.
    template <class Exception>
    void refuses(std::string const& message, auto act) {
        libnq.forget_calls();
        throws<Exception>(message, act);
        EXPECT_EQ(libnq.names(), names{});
    }

    template <class T>
    static void expect_handle(T const& found, nq_call_handle* expected) {
        if constexpr (owning<T>) {
            EXPECT_EQ(handle_of(found), expected);
        } else if constexpr (owners<T>) {
            for (auto const& element : found) {
                EXPECT_EQ(handle_of(element), expected);
            }
        }
    }

    nq::call_handle handle = libnq.open(api::capability);
    world w;
};

} // namespace unit
