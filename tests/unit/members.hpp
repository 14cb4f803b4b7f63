#pragma once

// Tests of members by what they send: for each the entry point and its id, the call handle, the fields of the block at
// their offsets, what becomes of the results, and that nothing else is called. Every offset is written out, so that a
// slip in the library's blocks is seen.

#include "scripted/fixture.hpp"
#include "unit/entry_points.hpp"
#include "unit/world.hpp"

#include <gmock/gmock.h>

#include <concepts>
#include <cstring>
#include <typeinfo>

namespace unit {

namespace block = nq::block;
namespace common = vorn::mero::common;
using vorn::mero::internal::owner;
using vorn::mero::internal::owner_access;

using versions = testing::Types<vorn::mero::opencl_1_0::api, vorn::mero::opencl_1_1::api, vorn::mero::opencl_1_2::api,
                                vorn::mero::opencl_2_0::api, vorn::mero::opencl_2_1::api, vorn::mero::opencl_2_2::api>;

/// A value as it stands in a block.
using word = std::uint64_t;

template <class T>
word word_of(T const& value) {
    if constexpr (std::is_pointer_v<T>) {
        return reinterpret_cast<word>(value);
    } else if constexpr (std::is_array_v<T>) {
        return reinterpret_cast<word>(&value[0]);
    } else if constexpr (requires { owner_access::raw(value); }) {
        return word_of(owner_access::raw(value));
    } else {
        return static_cast<word>(value);
    }
}

inline word word_of(std::nullptr_t) { return 0; }

template <class Object>
nq_call_handle* handle_of(Object const& object) {
    return owner_access::call_handle(object).get();
}

/// Any value of any enumeration.
struct value {
    word number;

    template <class T>
    requires std::is_enum_v<T>
    constexpr operator T() const { return static_cast<T>(number); }
};

struct field {
    std::size_t offset;
    std::size_t width;
    word content;
};

template <class T>
field u8(std::size_t offset, T const& content) {
    return {offset, 8, word_of(content)};
}

template <class T>
field u4(std::size_t offset, T const& content) {
    return {offset, 4, word_of(content) & 0xFFFFFFFF};
}

word word_at(std::string const& block, std::size_t offset, std::size_t width = 8);

void expect_fields(scripted::call const& call, std::vector<field> const& fields);

/// What a pointer of a block, by the name of its field, leads to.
struct pointee {
    char const* field;
    std::string bytes;
};

template <class Element = word>
pointee list(char const* field, std::vector<Element> const& elements) {
    return {field, scripted::bytes_of_list(elements)};
}

inline constexpr std::size_t nowhere = ~std::size_t{0};

/// Where a block has its results.
struct results {
    std::size_t status = nowhere;  ///< 4 bytes.
    std::size_t object = nowhere;  ///< 8 bytes.
    std::size_t through = nowhere; ///< A pointer to the 8 bytes of an object.
};

using calls = std::vector<std::string>;

/// One call of a member.
struct action {
    std::string_view entry_point;
    nq_call_handle* handle;
    results at;
    std::vector<field> fields;
    std::function<word()> act; ///< Returns what became of the object in the results.
    std::vector<pointee> pointees{};
    calls after{}; ///< The calls that end the result's life.
    void (*prepare)(scripted::libnq&, action const&, std::int32_t status, void* made) = nullptr;
};

/// Writes results where the offsets of an action say.
void answer(void* block, results const& at, std::int32_t status, void* made);

template <class Block>
action does(nq_call_handle* handle, results at, std::vector<field> fields, std::function<word()> act,
            std::vector<pointee> pointees = {}, calls after = {}) {
    return {scripted::name_of<Block>(),
            handle,
            at,
            std::move(fields),
            std::move(act),
            std::move(pointees),
            std::move(after),
            [](scripted::libnq& libnq, action const& self, std::int32_t status, void* made) {
                libnq.on<Block>([=, at = self.at](Block& block) {
                    bool const scripted = status != 0 || made != nullptr;
                    if (scripted) {
                        answer(&block, at, status, made);
                    }
                    return scripted;
                });
            }};
}

/// Where the block of an info entry point has the fields that every read fills.
struct info_layout {
    std::size_t param_name, size, value, size_ret, status;
};
inline constexpr info_layout device_info{24, 32, 8, 16, 40};
inline constexpr info_layout declared_info{8, 16, 24, 32, 40};
inline constexpr info_layout plain_info{36, 8, 16, 24, 32};
inline constexpr info_layout two_object_info{44, 16, 24, 32, 40};
inline constexpr info_layout argument_info{40, 8, 16, 24, 32};
inline constexpr info_layout sub_group_info{60, 32, 40, 48, 56};

/// One info query of two calls.
struct query {
    std::string_view entry_point;
    nq_call_handle* handle;
    info_layout layout;
    std::vector<field> fields;
    std::uint32_t param_name;
    std::string reply;
    word expected;
    std::function<word()> act;
    calls after{}; ///< The calls that the conversion makes and that end the result's life.
    void (*prepare)(scripted::libnq&, query const&) = nullptr;
    void (*refuse)(scripted::libnq&, query const&) = nullptr;
};

template <class Block>
query asks(nq_call_handle* handle, info_layout layout, std::vector<field> fields, std::uint32_t param_name,
           std::string reply, word expected, std::function<word()> act, calls after = {}) {
    return {scripted::name_of<Block>(),
            handle,
            layout,
            std::move(fields),
            param_name,
            std::move(reply),
            expected,
            std::move(act),
            std::move(after),
            [](scripted::libnq& libnq, query const& self) {
                libnq.on<Block>([](Block&) { return false; });
                libnq.reply<Block>(self.param_name, self.reply);
            },
            [](scripted::libnq& libnq, query const& self) {
                libnq.on<Block>(
                    [at = self.layout.status](Block& block) { answer(&block, {.status = at}, -5, nullptr); });
            }};
}

/// The same of what gives nothing.
template <class Work>
std::function<word()> performs(Work work) {
    return [work] {
        work();
        return word{0};
    };
}

/// An object of every class, and the checks of what its members send.
template <class Api>
class members : public scripted::versioned<Api> {
protected:
    static constexpr int number = Api::number;
    using world_type = world<Api>;

    members() { this->libnq.forget_calls(); }
    ~members() override { forget(); }

    /// Forgets the calls after a look at their ids.
    void forget() {
        for (scripted::call const& call : this->libnq.calls()) {
            EXPECT_EQ(call.name, entry_point(number, call.id));
        }
        this->libnq.forget_calls();
    }

    void check(action const& expected);
    void check(query const& expected);

    /// Checks a query of one object alone, with the layout that most have.
    template <class Block>
    void reads(auto const& object, std::uint32_t name, std::string const& reply, word expected,
               std::function<word()> const& read, calls const& after = {}) {
        check(asks<Block>(handle_of(object), plain_info, {u8(0, object)}, name, reply, expected, read, after));
    }

    /// The same of a query that finds another object, which is then of the same call handle.
    template <class Block>
    void finds(auto const& object, std::uint32_t name, auto const& other, auto read, calls const& life) {
        reads<Block>(
            object, name, scripted::bytes_of(word_of(other)), word_of(other),
            [&] {
                auto const found = read();
                EXPECT_EQ(handle_of(found), handle_of(object));
                return word_of(found);
            },
            life);
    }

    world_type objects{this->libnq};

private:
    template <class Exception>
    void expect_failure(std::string_view entry_point, std::function<word()> const& act) {
        forget();
        EXPECT_THROW(act(), Exception) << entry_point;
        EXPECT_EQ(this->libnq.names(), calls{std::string(entry_point)});
    }
};

template <class Api>
void members<Api>::check(action const& expected) {
    SCOPED_TRACE(std::string(expected.entry_point));
    void* const made = this->libnq.template make<_nq_cl_mem>(expected.after.empty() ? 0 : 1);
    expected.prepare(this->libnq, expected, 0, made);
    forget();
    EXPECT_EQ(expected.act(), expected.at.object != nowhere || expected.at.through != nowhere ? word_of(made) : 0);
    calls all{std::string(expected.entry_point)};
    all.insert(all.end(), expected.after.begin(), expected.after.end());
    ASSERT_EQ(this->libnq.names(), all);
    scripted::call const call = this->libnq.calls().front();
    EXPECT_EQ(call.handle, expected.handle);
    expect_fields(call, expected.fields);
    for (pointee const& target : expected.pointees) {
        EXPECT_EQ(call.has(target.field) ? call.parts(target.field) : calls{}, calls{target.bytes}) << target.field;
    }
    if (expected.at.status != nowhere) {
        expected.prepare(this->libnq, expected, -5, reinterpret_cast<void*>(0xBAD));
        expect_failure<common::out_of_resources>(expected.entry_point, expected.act);
    }
    expected.prepare(this->libnq, expected, 0, nullptr);
    this->libnq.fail(scripted::layer(-1));
    expect_failure<nq::unrecoverable_error>(expected.entry_point, expected.act);
}

template <class Api>
void members<Api>::check(query const& expected) {
    SCOPED_TRACE(std::string(expected.entry_point) + ' ' + std::to_string(expected.param_name));
    std::string const entry_point{expected.entry_point};
    expected.prepare(this->libnq, expected);
    forget();
    EXPECT_EQ(expected.act(), expected.expected);
    calls all{entry_point, entry_point};
    all.insert(all.end(), expected.after.begin(), expected.after.end());
    ASSERT_EQ(this->libnq.names(), all);
    auto const made = this->libnq.calls();
    auto const& layout = expected.layout;
    for (std::size_t const n : {0U, 1U}) {
        EXPECT_EQ(made[n].handle, expected.handle);
        expect_fields(made[n], expected.fields);
        expect_fields(
            made[n], {u4(layout.param_name, expected.param_name), u8(layout.size, n == 0 ? 0 : expected.reply.size())});
        EXPECT_EQ(word_at(made[n].block, layout.value) == 0, n == 0);
        EXPECT_NE(word_at(made[n].block, layout.size_ret), 0U);
    }
    expected.refuse(this->libnq, expected);
    expect_failure<common::out_of_resources>(entry_point, expected.act);
    this->libnq.fail(scripted::layer(-1));
    expect_failure<nq::unrecoverable_error>(entry_point, expected.act);
    expected.prepare(this->libnq, expected);
}

/// The message of what is thrown, which must be of exactly this class.
template <class Exception, class Work>
std::string message_of(Work work) {
    try {
        work();
    } catch (std::exception const& thrown) {
        EXPECT_EQ(typeid(thrown), typeid(Exception)) << thrown.what();
        return thrown.what();
    }
    return "nothing was thrown";
}

/// The calls of the lives of `count` devices that are made and end together.
template <class Api>
calls device_lives(std::size_t count) {
    calls lives;
    for (char const* const name : {"clRetainDevice", "clReleaseDevice"}) {
        lives.insert(lives.end(), Api::number >= 120 ? count : 0, name);
    }
    return lives;
}

} // namespace unit
