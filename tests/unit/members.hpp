#pragma once

// Tests of members by what they send: for each the entry point, the call handle and the block, what becomes of the
// results, that nothing is taken from a call that fails, and that nothing else is called.

#include "unit/sweep.hpp"
#include "unit/world.hpp"

namespace unit {

/// A place for OpenCL to write to; blocks are compared by whether they have one.
struct place {
    template <class T>
    operator T*() const {
        return reinterpret_cast<T*>(1);
    }
};
constexpr place somewhere;

/// Expects an exception of exactly this class, with this message.
template <class Exception>
void throws(std::string const& message, std::function<void()> const& work) {
    auto const [type, said] = thrown_by(work);
    EXPECT_EQ(type, typeid(Exception));
    EXPECT_EQ(said, message);
}

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
        withstands(act);
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
        withstands([&] { return std::invoke(read, object); });
        withstands_sizes<Block>(query.param_name, reply, [&] { return std::invoke(read, object); });
        auto taken = std::move(object);
        auto const thrown = thrown_by([&] { std::invoke(read, object); }); // NOLINT(bugprone-use-after-move)
        EXPECT_EQ(thrown.first, typeid(nq::unrecoverable_error)) << thrown.second;
        object = std::move(taken);
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
        withstands(list);
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
