// What the bridge makes of the texts with which implementations describe themselves.

#include "bridge/platform.hpp"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <tuple>

namespace nq::bridge {
namespace {

using namespace std::string_view_literals;

TEST(answers, versions) {
    for (auto const& [text, number] : {std::pair{"OpenCL 1.2"sv, 102U},
                                       {"OpenCL 3.0 PoCL 3.1"sv, 300U},
                                       {"OpenCL 2.1 "sv, 201U},
                                       {"OpenCL 1.12 x"sv, 112U},
                                       {""sv, 0U},
                                       {"OpenCL "sv, 0U},
                                       {"OpenCL"sv, 0U},
                                       {"opencl 1.2"sv, 0U},
                                       {"OpenCL x.2"sv, 0U},
                                       {"OpenCL 3"sv, 0U},
                                       {"OpenCL 3 0"sv, 0U},
                                       {"OpenCL 3."sv, 0U},
                                       {"OpenCL 3.x"sv, 0U},
                                       {"OpenCL C 1.2"sv, 0U},
                                       {"OpenCL 1.2 OpenCL 3.0"sv, 102U},
                                       {"OpenCL 99999999999.0"sv, 0U}}) {
        EXPECT_EQ(parse_version(text), number) << text;
    }
}

/// A device that tells a text, or fails when asked for its size or for its bytes.
struct teller {
    std::string_view bytes;
    cl_int size_code = CL_SUCCESS;
    cl_int code = CL_SUCCESS;
};

cl_int tell(teller const* from, cl_uint, std::size_t, void* value, std::size_t* size) {
    if (size != nullptr) {
        *size = from->bytes.size();
    }
    if (value != nullptr) {
        std::copy(from->bytes.begin(), from->bytes.end(), static_cast<char*>(value));
    }
    return value != nullptr ? from->code : from->size_code;
}

TEST(answers, texts) {
    for (auto const& [from, text] : {std::pair{teller{"name\0"sv}, "name"sv},
                                     {teller{"name"sv}, "name"sv},
                                     {teller{"na\0me\0"sv}, "na"sv},
                                     {teller{"\0"sv}, ""sv},
                                     {teller{""sv}, ""sv},
                                     {teller{"name\0"sv, CL_INVALID_VALUE}, ""sv},
                                     {teller{"name\0"sv, CL_SUCCESS, CL_OUT_OF_RESOURCES}, ""sv}}) {
        EXPECT_EQ(info_text(tell, &from, CL_DEVICE_NAME), text);
    }
}

} // namespace
} // namespace nq::bridge
