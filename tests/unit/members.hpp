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
using vorn::mero::internal::owner_access;

using versions = testing::Types<vorn::mero::opencl_1_0::api, vorn::mero::opencl_1_1::api, vorn::mero::opencl_1_2::api,
                                vorn::mero::opencl_2_0::api, vorn::mero::opencl_2_1::api, vorn::mero::opencl_2_2::api>;

template <class T>
concept owning = requires(T const& object) {
    owner_access::raw(object);
};

/// A value as it stands in a block.
using word = std::uint64_t;

template <class T>
word word_of(T const& value) {
    if constexpr (std::is_pointer_v<T>) {
        return reinterpret_cast<word>(value);
    } else if constexpr (std::is_array_v<T>) {
        return reinterpret_cast<word>(&value[0]);
    } else if constexpr (owning<T>) {
        return word_of(owner_access::raw(value));
    } else {
        return static_cast<word>(value);
    }
}

inline word word_of(std::nullptr_t) { return 0; }

/// The call handle of an object, or one itself.
template <class T>
nq_call_handle* handle_of(T const& object) {
    if constexpr (owning<T>) {
        return owner_access::call_handle(object).get();
    } else {
        return object.get();
    }
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

/// Writes the results of a call.
void answer(void* block, results const& at, std::int32_t status, void* made);

/// Where the block of an info entry point has the fields that every read fills.
struct info_layout {
    std::size_t param_name, size, value, size_ret, status;
};
template <class Block>
inline constexpr info_layout layout_of{36, 8, 16, 24, 32};
template <>
inline constexpr info_layout layout_of<block::clGetDeviceInfo>{24, 32, 8, 16, 40};
template <>
inline constexpr info_layout layout_of<block::clGetPlatformInfo>{8, 16, 24, 32, 40};
template <>
inline constexpr info_layout layout_of<block::clGetContextInfo>{8, 16, 24, 32, 40};
template <>
inline constexpr info_layout layout_of<block::clGetProgramBuildInfo>{44, 16, 24, 32, 40};
template <>
inline constexpr info_layout layout_of<block::clGetKernelWorkGroupInfo>{44, 16, 24, 32, 40};
template <>
inline constexpr info_layout layout_of<block::clGetKernelArgInfo>{40, 8, 16, 24, 32};
template <>
inline constexpr info_layout layout_of<block::clGetKernelSubGroupInfo>{60, 32, 40, 48, 56};

/// Where the block of a listing has the room that the caller gives, the array and the pointer to the count.
struct listing_layout {
    std::size_t capacity, array, count;
};

using calls = std::vector<std::string>;

/// A member's calls of one entry point, and how OpenCL answers them.
struct expectation {
    std::string entry_point;
    nq_call_handle* handle;
    std::vector<field> fields;
    std::function<word()> act; ///< Gives what became of the object that OpenCL made.
    calls after;               ///< The calls of the result's life.
    /// Has OpenCL answer; with neither a status nor an object as it does by itself.
    std::function<void(std::int32_t status, void* made)> answer;
};

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

/// An object of every class, and the checks of what its members send.
template <class Api>
class members : public scripted::versioned<Api> {
protected:
    members() { this->libnq.forget_calls(); }
    ~members() override { forget(); }

    /// Forgets the calls after a look at their ids.
    void forget() {
        for (scripted::call const& call : this->libnq.calls()) {
            EXPECT_EQ(call.name, entry_point(Api::number, call.id));
        }
        this->libnq.forget_calls();
    }

    /// Checks a member of one call: what it sends, that its results are taken from `at` and become an object of the
    /// same call handle, and that nothing is taken from a failing call.
    template <class Block, class Act>
    void performs(auto const& receiver, results at, std::vector<field> fields, Act act,
                  std::vector<pointee> const& pointees = {}) {
        using result = std::invoke_result_t<Act>;
        auto* const through = handle_of(receiver);
        auto const act_for_word = [=] {
            if constexpr (std::is_void_v<result>) {
                act();
                return word{0};
            } else {
                auto const made = act();
                expect_handle(made, through);
                return word_of(made);
            }
        };
        bool const gives = at.object != nowhere || at.through != nowhere;
        calls const end = life_of<result>("clRelease");
        check_call({std::string(scripted::name_of<Block>()), through, std::move(fields), act_for_word, end,
                    [=, this](std::int32_t status, void* made) { answers<Block>(at, status, made); }},
                   gives ? this->libnq.template make<_nq_cl_mem>(end.empty() ? 0 : 1) : nullptr, pointees,
                   at.status != nowhere);
    }

    /// Checks a member that reads a value in two calls; an object is one of the same call handle and is retained.
    template <class Block, class Expected, class Read>
    void reads(auto const& object, std::uint32_t param_name, std::string const& reply, Expected const& expected,
               Read read, std::vector<field> const& fields = {}) {
        using result = std::invoke_result_t<Read>;
        calls life = life_of<result>("clRetain");
        calls const end = life_of<result>("clRelease");
        life.insert(life.end(), end.begin(), end.end());
        auto const act = [read, through = handle_of(object), wanted = comparable(expected)] {
            auto const found = read();
            expect_handle(found, through);
            EXPECT_EQ(comparable(found), wanted);
            return word{0};
        };
        reads_in_two_calls<Block>(object, param_name, reply, act, life, fields);
    }

    /// The same of one that lists devices.
    template <class Block, class Read>
    void lists_devices(auto const& object, std::uint32_t param_name, Read read) {
        std::vector<word> const devices{word_of(objects.device_2), word_of(objects.device)};
        auto const act = [=, through = handle_of(object)] {
            std::vector<word> found;
            for (auto const& device : read()) {
                expect_handle(device, through);
                found.push_back(word_of(device));
            }
            EXPECT_EQ(found, devices);
            return word{0};
        };
        calls life(2, "clRetainDevice");
        life.insert(life.end(), 2, "clReleaseDevice");
        reads_in_two_calls<Block>(object, param_name, scripted::bytes_of_list(devices), act,
                                  Api::number >= 120 ? life : calls{}, {});
    }

    /// Expects what was called to be a listing of two calls, of one for an empty listing.
    void expect_listing(std::string const& entry_point, nq_call_handle* through, std::vector<field> const& fields,
                        listing_layout const& at, std::size_t elements, calls const& after = {}) {
        std::size_t const phases = elements == 0 ? 1 : 2;
        calls all(phases, entry_point);
        all.insert(all.end(), after.begin(), after.end());
        ASSERT_EQ(this->libnq.names(), all);
        for (std::size_t n = 0; n != phases; ++n) {
            auto const call = this->libnq.calls()[n];
            EXPECT_EQ(call.handle, through);
            expect_fields(call, fields);
            expect_fields(call, {u4(at.capacity, n == 0 ? 0 : elements)});
            EXPECT_EQ(word_at(call.block, at.array) == 0, n == 0);
            EXPECT_EQ(word_at(call.block, at.count) == 0, n == 1);
        }
        forget();
    }

    world<Api> objects{this->libnq};

private:
    template <class Block>
    void reads_in_two_calls(auto const& object, std::uint32_t param_name, std::string const& reply,
                            std::function<word()> const& act, calls const& life, std::vector<field> fields) {
        this->libnq.template reply<Block>(param_name, reply);
        fields.push_back(u8(0, object));
        fields.push_back(u4(layout_of<Block>.param_name, param_name));
        check_read({std::string(scripted::name_of<Block>()), handle_of(object), std::move(fields), act, life,
                    [this](std::int32_t status, void*) {
                        answers<Block>({.status = layout_of<Block>.status}, status, nullptr);
                    }},
                   layout_of<Block>, reply.size());
    }

    /// Numbers, enumerators and objects as words, texts as strings.
    template <class T>
    static auto comparable(T const& value) {
        if constexpr (std::is_array_v<T>) {
            return std::string(value);
        } else if constexpr (std::is_scalar_v<T> || owning<T>) {
            return word_of(value);
        } else {
            return value;
        }
    }

    template <class Block>
    void answers(results const& at, std::int32_t status, void* made) {
        this->libnq.template on<Block>([=](Block& block) {
            bool const scripted = status != 0 || made != nullptr;
            if (scripted) {
                answer(&block, at, status, made);
            }
            return scripted;
        });
    }

    /// The call that begins or ends the life of a result, if there is one.
    template <class Result>
    static calls life_of(std::string const& what) {
        if constexpr (requires { typename Result::raw_type; }) {
            constexpr char const* kind = kind_of(static_cast<typename Result::raw_type*>(nullptr));
            return kind != nullptr ? calls{what + kind} : calls{};
        } else {
            return {};
        }
    }

    static constexpr char const* kind_of(_nq_cl_platform_id*) { return nullptr; }
    static constexpr char const* kind_of(_nq_cl_device_id*) { return Api::number >= 120 ? "Device" : nullptr; }
    static constexpr char const* kind_of(_nq_cl_context*) { return "Context"; }
    static constexpr char const* kind_of(_nq_cl_command_queue*) { return "CommandQueue"; }
    static constexpr char const* kind_of(_nq_cl_mem*) { return "MemObject"; }
    static constexpr char const* kind_of(_nq_cl_sampler*) { return "Sampler"; }
    static constexpr char const* kind_of(_nq_cl_program*) { return "Program"; }
    static constexpr char const* kind_of(_nq_cl_kernel*) { return "Kernel"; }
    static constexpr char const* kind_of(_nq_cl_event*) { return "Event"; }

    template <class T>
    static void expect_handle(T const& object, nq_call_handle* expected) {
        if constexpr (owning<T>) {
            EXPECT_EQ(handle_of(object), expected);
        }
    }

    void check_call(expectation const& expected, void* made, std::vector<pointee> const& pointees, bool has_status);
    void check_read(expectation const& expected, info_layout const& layout, std::size_t size);
    void expect_calls(expectation const& expected, std::size_t count, void* made);
    void expect_layer_failure(expectation const& expected);

    template <class Exception>
    void expect_failure(expectation const& expected) {
        forget();
        EXPECT_THROW(expected.act(), Exception);
        EXPECT_EQ(this->libnq.names(), calls{expected.entry_point});
    }
};

template <class Api>
void members<Api>::expect_calls(expectation const& expected, std::size_t count, void* made) {
    expected.answer(0, made);
    forget();
    EXPECT_EQ(expected.act(), word_of(made));
    calls all(count, expected.entry_point);
    all.insert(all.end(), expected.after.begin(), expected.after.end());
    ASSERT_EQ(this->libnq.names(), all);
    for (scripted::call const& call : this->libnq.calls()) {
        EXPECT_EQ(call.handle, expected.handle);
        if (call.name == expected.entry_point) {
            expect_fields(call, expected.fields);
        }
    }
}

template <class Api>
void members<Api>::expect_layer_failure(expectation const& expected) {
    expected.answer(0, nullptr);
    this->libnq.fail(scripted::layer(-1));
    expect_failure<nq::unrecoverable_error>(expected);
}

template <class Api>
void members<Api>::check_call(expectation const& expected, void* made, std::vector<pointee> const& pointees,
                              bool has_status) {
    SCOPED_TRACE(expected.entry_point);
    ASSERT_NO_FATAL_FAILURE(expect_calls(expected, 1, made));
    scripted::call const call = this->libnq.calls().front();
    for (pointee const& target : pointees) {
        EXPECT_EQ(call.has(target.field) ? call.parts(target.field) : calls{}, calls{target.bytes}) << target.field;
    }
    if (has_status) {
        expected.answer(-5, reinterpret_cast<void*>(0xBAD));
        expect_failure<common::out_of_resources>(expected);
    }
    expect_layer_failure(expected);
}

template <class Api>
void members<Api>::check_read(expectation const& expected, info_layout const& layout, std::size_t size) {
    SCOPED_TRACE(expected.entry_point);
    ASSERT_NO_FATAL_FAILURE(expect_calls(expected, 2, nullptr));
    auto const made = this->libnq.calls();
    for (std::size_t const n : {0U, 1U}) {
        expect_fields(made[n], {u8(layout.size, n == 0 ? 0 : size)});
        EXPECT_EQ(word_at(made[n].block, layout.value) == 0, n == 0);
        EXPECT_NE(word_at(made[n].block, layout.size_ret), 0U);
    }
    expected.answer(-5, nullptr);
    expect_failure<common::out_of_resources>(expected);
    expect_layer_failure(expected);
}

} // namespace unit
