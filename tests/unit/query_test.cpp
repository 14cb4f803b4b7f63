#include "internal/query.hpp"

#include <gtest/gtest.h>
#include <nq/error.hpp>
#include <vorn/mero/common/error.hpp>

#include <algorithm>
#include <functional>

// The reads behind every query, asked of an implementation that answers as written down, with every size that they ask
// for.

namespace {

namespace common = vorn::mero::common;
using namespace vorn::mero::internal;

constexpr std::size_t unwritten = ~std::size_t{0};
constexpr char const* changed =
    "The result size for the query changed between the time the size was queried, and data was populated.  Either this "
    "query is extremely dynamic, and a bug should be filed against MERO, or there is a bug in your OpenCL "
    "implementation.";
constexpr char const* endless =
    "Attempted to work around Khronos public bug #1510, and the number of array values in the result has exceeded the "
    "number of bytes representable by size_t / 2.  File a bug.";
constexpr char const* indivisible =
    "Expected to read an array of values from the OpenCL implementation, but the size of the array is not evenly "
    "divisible by the size of array elements. Implementation reported size: 12 bytes, each element size is expected to "
    "be 8 bytes.";

std::string not_three(int size) {
    return "Expected to read an array of 3 elements from the OpenCL implementation.  Implementation reported the array "
           "to be " +
           std::to_string(size) + " bytes, but expected the array to be 24 bytes.";
}

std::string unexpected(int size) {
    return "OpenCL implementation did not provide expected size of data.  Expected: 4 bytes, but implementation "
           "provided " +
           std::to_string(size) + " bytes.";
}

/// An info entry point.
struct info_query {
    void operator()(std::size_t size, void* value) { implementation(size, value, &reported); }

    std::function<void(std::size_t, void*, std::size_t*)> implementation;
    std::size_t reported = 0;
};

/// The number of the elements that are read, and the first four.
template <auto Read>
std::string list(info_query& query) {
    auto elements = Read(query);
    std::string text = std::to_string(elements.size()) + ":";
    for (std::size_t i = 0; i != std::min<std::size_t>(4, elements.size()); ++i) {
        text += ' ' + std::to_string(elements.data()[i]);
    }
    return text;
}

auto read_onto_the_stack(info_query& query) {
    return read_list<std::uint64_t, 4>(query, [](std::uint64_t const* elements, std::size_t count) {
        return std::vector<std::uint64_t>(elements, elements + count);
    });
}

constexpr auto* text = read_text<info_query&>;
std::string scalar(info_query& query) { return std::to_string(read_scalar<std::uint32_t>(query)); }
constexpr auto* array = list<read_vector<std::uint64_t, info_query&>>;
constexpr auto* bytes = list<read_vector<unsigned char, info_query&>>;
constexpr auto* three = list<read_fixed<std::size_t, 3, info_query&>>;
constexpr auto* list_on_the_stack = list<read_onto_the_stack>;

struct read {
    char const* name;
    std::string (*perform)(info_query&);
    std::vector<std::size_t> reported; // by one call after the other; `unwritten` writes no size
    std::string reply;                 // as much of it as there is room for
    std::vector<std::size_t> asked;    // the sizes that the calls are to pass
    std::string result;                // or the message of `bad_implementation`
};

std::string number(std::uint64_t value) { return {reinterpret_cast<char const*>(&value), sizeof value}; }
std::string numbers() { return number(7) + number(8) + number(9); }

std::vector<read> const reads = {
    {"scalar", scalar, {4, 4}, number(7), {0, 4}, "7"},
    {"scalar without a size", scalar, {0, 4}, number(7), {0, 8}, "7"},
    {"scalar of which the second call says no size", scalar, {4, unwritten}, number(7), {0, 4}, "7"},
    {"scalar without any size", scalar, {unwritten, unwritten}, number(7), {0, 8}, unexpected(0)},
    {"long scalar", scalar, {8, 8}, number(7), {0, 4}, unexpected(8)},
    {"long scalar without a size", scalar, {0, 8}, number(7), {0, 8}, unexpected(8)},
    {"short scalar", scalar, {2, 2}, number(7), {0, 4}, unexpected(2)},
    {"scalar whose first size is wrong", scalar, {12, 4}, number(7), {0, 4}, "7"},

    {"text", text, {4, 4}, {"abc\0", 4}, {0, 4}, "abc"},
    {"empty text", text, {1, 1}, {"\0", 1}, {0, 1}, ""},
    {"no text", text, {0}, "", {0}, ""},
    {"text without a terminating zero", text, {3, 3}, "abc", {0, 3}, "ab"},
    {"text with a zero inside", text, {4, 4}, {"a\0c\0", 4}, {0, 4}, {"a\0c", 3}},
    {"text that grew", text, {4, 5}, "abcd", {0, 4}, changed},
    {"text that shrank", text, {4, 3}, "ab", {0, 4}, changed},
    {"text without a second size", text, {4, unwritten}, "abc", {0, 4}, changed},

    {"array", array, {24, 24}, numbers(), {0, 24}, "3: 7 8 9"},
    {"array of bytes", bytes, {3, 3}, "\1\2\3", {0, 3}, "3: 1 2 3"},
    {"indivisible array", array, {12}, numbers(), {0}, indivisible},
    {"array that grew", array, {16, 24}, numbers(), {0, 16}, changed},
    {"array that shrank", array, {16, 8}, numbers(), {0, 16}, changed},
    {"array without a second size", array, {16, unwritten}, numbers(), {0, 16}, changed},
    {"array without a size", array, {0, 80}, numbers(), {0, 800}, "10: 7 8 9 0"},
    {"no array", array, {0, 0}, "", {0, 800}, "0:"},
    {"array without any size", array, {unwritten, unwritten}, numbers(), {0, 800}, "0:"},
    {"array without a size, indivisible", array, {0, 12}, numbers(), {0, 800}, indivisible},
    {"array that fills the first buffer", array, {0, 800, 808}, numbers(), {0, 800, 1600}, "101: 7 8 9 0"},
    {"array that fills two buffers", array, {0, 800, 1600, 1608}, numbers(), {0, 800, 1600, 3200}, "201: 7 8 9 0"},
    {"short list", list_on_the_stack, {24, 24}, numbers(), {0, 24}, "3: 7 8 9"},
    {"long list", list_on_the_stack, {40, 40}, numbers(), {0, 40}, "5: 7 8 9 0"},
    {"list without a size", list_on_the_stack, {0, 16}, numbers(), {0, 800}, "2: 7 8"},

    {"three sizes", three, {24, 24}, numbers(), {0, 24}, "3: 7 8 9"},
    {"three sizes without a size", three, {0, 24}, numbers(), {0, 48}, "3: 7 8 9"},
    {"two sizes", three, {16, 16}, numbers(), {0, 24}, not_three(16)},
    {"six sizes without a size", three, {0, 48}, numbers() + numbers(), {0, 48}, not_three(48)},
    {"three sizes, the second call says none", three, {24, unwritten}, numbers(), {0, 24}, "3: 7 8 9"},
};

TEST(queries, every_read_asks_and_checks_as_told) {
    for (read const& test : reads) {
        SCOPED_TRACE(test.name);
        std::vector<std::size_t> asked;
        auto implementation = [&](std::size_t size, void* value, std::size_t* size_ret) {
            EXPECT_EQ(value == nullptr, size == 0);
            std::size_t const reported = test.reported.at(asked.size());
            asked.push_back(size);
            std::copy_n(test.reply.data(), std::min(size, test.reply.size()), static_cast<char*>(value));
            *size_ret = reported != unwritten ? reported : *size_ret;
        };
        try {
            info_query query{implementation};
            EXPECT_EQ(test.perform(query), test.result);
        } catch (common::bad_implementation const& error) {
            EXPECT_EQ(error.what(), test.result);
        }
        EXPECT_EQ(asked, test.asked);
    }
}

TEST(queries, a_failing_call_ends_the_read) {
    for (auto* const perform : {scalar, text, array, bytes, three, list_on_the_stack}) {
        for (int const failing : {1, 2}) {
            int calls = 0;
            auto implementation = [&](std::size_t, void*, std::size_t* size_ret) {
                *size_ret = 24;
                if (++calls == failing) {
                    throw nq::unknown_error(7);
                }
            };
            info_query query{implementation};
            EXPECT_THROW(perform(query), nq::unknown_error);
            EXPECT_EQ(calls, failing);
        }
    }
}

// Storage of any size that holds nothing.
struct imagined_array {
    std::size_t count = 0;
    void* resize(std::size_t new_count) {
        count = new_count;
        return this;
    }
};

TEST(queries, an_endless_array_is_given_up_after_55_full_buffers) {
    for (int const full_buffers : {54, 55}) {
        std::vector<std::size_t> asked;
        auto implementation = [&](std::size_t size, void*, std::size_t* size_ret) {
            *size_ret = asked.size() <= static_cast<std::size_t>(full_buffers) ? size : 3;
            asked.push_back(size);
        };
        imagined_array elements;
        std::string message;
        try {
            info_query query{implementation};
            query(0, nullptr);
            read_reported_array(query, 1, elements);
        } catch (common::bad_implementation const& error) {
            message = error.what();
        }
        EXPECT_EQ(asked.size(), 56U);
        EXPECT_EQ(asked.back(), std::size_t{100} << 54);
        EXPECT_EQ(message, full_buffers == 55 ? endless : "");
        EXPECT_EQ(elements.count, full_buffers == 55 ? std::size_t{100} << 54 : 3U);
    }
}

} // namespace
