#include "internal/query.hpp"

#include <vorn/mero/common/error.hpp>

namespace vorn::mero::internal {
namespace {

// An implementation that reports no size may fill this many buffers completely; then the query fails.
constexpr int full_buffer_limit = 55;
constexpr std::size_t first_guess = 100;

[[noreturn, gnu::cold]] void refuse(std::string const& message) { throw common::bad_implementation(message); }

[[noreturn, gnu::cold]] void refuse_indivisible(std::size_t size, std::size_t element_size) {
    refuse(
        "Expected to read an array of values from the OpenCL implementation, but the size of the array is not evenly "
        "divisible by the size of array elements. Implementation reported size: " +
        std::to_string(size) + " bytes, each element size is expected to be " + std::to_string(element_size) +
        " bytes.");
}

[[noreturn, gnu::cold]] void refuse_changed_size() {
    refuse("The result size for the query changed between the time the size was queried, and data was populated.  "
           "Either this query is extremely dynamic, and a bug should be filed against MERO, or there is a bug in your "
           "OpenCL implementation.");
}

std::size_t read_size(info_query query) {
    std::size_t size = 0;
    query(0, nullptr, &size);
    return size;
}

// Returns the size that the implementation reported last.
std::size_t read_once(info_query query, void* doubled_buffer, std::size_t size) {
    std::size_t reported = read_size(query);
    query(reported != 0 ? size : 2 * size, doubled_buffer, &reported);
    return reported;
}

// Khronos public bug #1510: some implementations report no size for a list. The query is repeated with growing buffers
// until the reply does not fill one.
void read_array_of_unreported_size(info_query query, std::size_t element_size, growable_array& array) {
    std::size_t capacity = first_guess;
    std::size_t size = 0;
    for (int full_buffers = 0;; capacity *= 2) {
        query(capacity * element_size, array.resize(capacity), &size);
        if (size != capacity * element_size) {
            break;
        }
        if (++full_buffers == full_buffer_limit) {
            refuse(
                "Attempted to work around Khronos public bug #1510, and the number of array values in the result has "
                "exceeded the number of bytes representable by size_t / 2.  File a bug.");
        }
    }
    if (size % element_size != 0) {
        refuse_indivisible(size, element_size);
    }
    array.resize(size / element_size);
}

} // namespace

void read_value(info_query query, void* doubled_buffer, std::size_t size) {
    std::size_t const reported = read_once(query, doubled_buffer, size);
    if (reported != size) [[unlikely]] {
        refuse("OpenCL implementation did not provide expected size of data.  Expected: " + std::to_string(size) +
               " bytes, but implementation provided " + std::to_string(reported) + " bytes.");
    }
}

void read_elements(info_query query, void* doubled_buffer, std::size_t count, std::size_t element_size) {
    std::size_t const expected = count * element_size;
    std::size_t const reported = read_once(query, doubled_buffer, expected);
    if (reported != expected) [[unlikely]] {
        refuse("Expected to read an array of " + std::to_string(count) +
               " elements from the OpenCL implementation.  Implementation reported the array to be " +
               std::to_string(reported) + " bytes, but expected the array to be " + std::to_string(expected) +
               " bytes.");
    }
}

std::string read_text(info_query query) {
    std::size_t const size = read_size(query);
    std::string text(size, '\0');
    if (size != 0) {
        std::size_t written = 0;
        query(size, text.data(), &written);
        if (written != size) {
            refuse_changed_size();
        }
        text.pop_back();
    }
    return text;
}

void read_array(info_query query, std::size_t element_size, growable_array& array) {
    std::size_t const size = read_size(query);
    if (size == 0) {
        read_array_of_unreported_size(query, element_size, array);
        return;
    }
    if (size % element_size != 0) {
        refuse_indivisible(size, element_size);
    }
    std::size_t written = 0;
    query(size, array.resize(size / element_size), &written);
    if (written != size) {
        refuse_changed_size();
    }
}

} // namespace vorn::mero::internal
