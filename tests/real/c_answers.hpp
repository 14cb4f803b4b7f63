#pragma once

// What the C API itself answers, to be compared with what the library makes of it.

#include "support.hpp"

#include <CL/cl.h>

#include <cstring>
#include <sstream>

namespace real {

struct answer {
    cl_int status;
    std::vector<char> bytes;

    /// Without the closing zero.
    std::string text() const { return {bytes.data(), bytes.empty() ? 0 : bytes.size() - 1}; }

    std::vector<std::string> parts(char separator) const {
        std::vector<std::string> found;
        std::istringstream stream(text());
        for (std::string part; std::getline(stream, part, separator);) {
            if (!part.empty()) {
                found.push_back(part);
            }
        }
        return found;
    }
};

/// The reply of an info query of the C API, called as `query(object, arguments..., size, value, size_needed)`.
template <class Query, class Object, class... Arguments>
answer ask(Query query, Object object, Arguments... arguments) {
    std::size_t size = 0;
    cl_int const status = query(object, arguments..., 0, nullptr, &size);
    answer found{status, std::vector<char>(status == CL_SUCCESS ? size : 0)};
    if (!found.bytes.empty()) {
        found.status = query(object, arguments..., size, found.bytes.data(), nullptr);
    }
    return found;
}

/// Whether a member gives the C API's word as `convert` has it, or throws what its status or its size demands.
template <class Word, class Member, class Convert>
void expect_same(char const* member, answer const& expected, Member call, Convert convert) {
    Word word{};
    bool const fits = expected.status == CL_SUCCESS && expected.bytes.size() == sizeof word;
    if (fits) {
        std::memcpy(&word, expected.bytes.data(), sizeof word);
    }
    try {
        EXPECT_EQ(call(), convert(word)) << member;
        EXPECT_TRUE(fits) << member << ": status " << expected.status << ", " << expected.bytes.size() << " bytes";
    } catch (common::opencl_error const& error) {
        bool const longer = expected.bytes.size() > sizeof word; // for the C API itself the place is then too small
        EXPECT_EQ(static_cast<int>(error.code()), longer ? CL_INVALID_VALUE : expected.status) << member;
    } catch (common::bad_implementation const&) {
        EXPECT_NE(expected.bytes.size(), sizeof word) << member;
    }
}

/// The same of a member that gives the word as it is.
template <class Member>
void expect_same(char const* member, answer const& expected, Member call) {
    expect_same<decltype(call())>(member, expected, call, [](auto value) { return value; });
}

} // namespace real
