#include "internal/query.hpp"

#include <vorn/mero/common/error.hpp>

namespace vorn::mero::internal {

void refuse_value(std::size_t expected, std::size_t reported) {
    throw common::bad_implementation(
        "OpenCL implementation did not provide expected size of data.  Expected: " + std::to_string(expected) +
        " bytes, but implementation provided " + std::to_string(reported) + " bytes.");
}

void refuse_elements(std::size_t count, std::size_t expected, std::size_t reported) {
    throw common::bad_implementation("Expected to read an array of " + std::to_string(count) +
                                     " elements from the OpenCL implementation.  Implementation reported the array to "
                                     "be " +
                                     std::to_string(reported) + " bytes, but expected the array to be " +
                                     std::to_string(expected) + " bytes.");
}

void refuse_indivisible(std::size_t size, std::size_t element_size) {
    throw common::bad_implementation(
        "Expected to read an array of values from the OpenCL implementation, but the size of the array is not evenly "
        "divisible by the size of array elements. Implementation reported size: " +
        std::to_string(size) + " bytes, each element size is expected to be " + std::to_string(element_size) +
        " bytes.");
}

void refuse_changed_size() {
    throw common::bad_implementation(
        "The result size for the query changed between the time the size was queried, and data was populated.  Either "
        "this query is extremely dynamic, and a bug should be filed against MERO, or there is a bug in your OpenCL "
        "implementation.");
}

void refuse_endless_array() {
    throw common::bad_implementation(
        "Attempted to work around Khronos public bug #1510, and the number of array values in the result has exceeded "
        "the number of bytes representable by size_t / 2.  File a bug.");
}

} // namespace vorn::mero::internal
