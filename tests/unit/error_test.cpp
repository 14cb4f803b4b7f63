#include <nq/error.hpp>
#include <vorn/mero/common/error.hpp>
#include <vorn/mero/internal/check_error.hpp>

#include <gtest/gtest.h>

#include <climits>
#include <fstream>
#include <map>
#include <typeinfo>

namespace {

namespace common = vorn::mero::common;
using common::error_code;
using vorn::mero::internal::check_error;

/// The name of each status's class, and its message, as a file has them row by row.
std::map<int, std::pair<std::string, std::string>> all_errors() {
    std::map<int, std::pair<std::string, std::string>> errors;
    std::ifstream file(UNIT_ERRORS);
    for (int number = 0; file >> number;) {
        file >> errors[number].first;
        std::getline(file >> std::ws, errors[number].second);
    }
    return errors;
}

TEST(errors, every_status_has_its_class_code_and_message) {
    auto const errors = all_errors();
    EXPECT_EQ(errors.size(), 62U);
    for (auto const& [number, expected] : errors) {
        auto const& [name, message] = expected;
        EXPECT_EQ(common::get_error_string(error_code{number}), message);
        try {
            check_error(number);
            ADD_FAILURE() << number << " throws nothing";
        } catch (common::opencl_error const& error) {
            EXPECT_EQ(typeid(error).name(), "N4vorn4mero6common" + std::to_string(name.size()) + name + "E");
            EXPECT_EQ(error.code(), error_code{number});
            EXPECT_EQ(static_cast<std::exception const&>(error).what(), message);
        }
    }
}

TEST(errors, success_is_no_error) {
    EXPECT_NO_THROW(check_error(0));
    EXPECT_EQ(common::get_error_string(error_code::success), "Success.");
}

TEST(errors, numbers_without_a_class_are_unknown) {
    for (int const number : {INT_MIN, -1000, -73, -29, -28, -27, -26, -25, -24, -23, -22, -21, -20, 1, 7, INT_MAX}) {
        EXPECT_EQ(common::get_error_string(error_code{number}), "Unknown error.");
        try {
            check_error(number);
            ADD_FAILURE() << number << " throws nothing";
        } catch (common::unknown_opencl_error const& error) {
            EXPECT_EQ(typeid(error), typeid(common::unknown_opencl_error));
            EXPECT_EQ(error.value(), number);
            EXPECT_EQ(error.what(), "Unknown OpenCL Error Code: " + std::to_string(number));
        }
    }
}

TEST(errors, copies_keep_what_they_say) {
    common::invalid_value const original;
    common::opencl_error copy = common::out_of_resources();
    copy = original;
    EXPECT_EQ(copy.code(), error_code::invalid_value);
    EXPECT_STREQ(copy.what(), "One of the values is not valid.");
    nq::nq_error layer("one", 1);
    layer = nq::unknown_error(7);
    EXPECT_EQ(layer.code(), 7);
    EXPECT_STREQ(layer.what(), "Unknown error code returned by libnq.");
}

TEST(errors, a_program_makes_its_own) {
    auto const kept = [](common::opencl_error const& error) {
        return std::string(error.what()) + " " + std::to_string(static_cast<int>(error.code()));
    };
    EXPECT_EQ(kept(common::opencl_error("one", error_code::invalid_value)), "one -30");
    EXPECT_EQ(kept(common::logic_error("two", error_code::invalid_kernel)), "two -48");
    EXPECT_EQ(kept(common::runtime_error("three", error_code::out_of_resources)), "three -5");
    nq::nq_error const copy = nq::unknown_error(7); // NOLINT(cppcoreguidelines-slicing)
    EXPECT_EQ(copy.code(), 7);
}

static_assert(sizeof(nq::nq_error) == sizeof(nq::unknown_error) &&
              sizeof(nq::nq_error) == sizeof(std::exception) + sizeof(std::string) + 8);

} // namespace
