#pragma once

// The reads behind every query. They check each size that the implementation reports and throw
// `common::bad_implementation` if it is wrong. Nothing is cached.
//
// `ask(size, value)` is an info entry point, complete except for these arguments. It makes one capability call and
// throws what failed. `ask.reported` is where the implementation puts the size, 0 before the first call.

#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace vorn::mero::internal {

[[noreturn, gnu::cold]] void refuse_value(std::size_t expected, std::size_t reported);
[[noreturn, gnu::cold]] void refuse_elements(std::size_t count, std::size_t expected, std::size_t reported);
[[noreturn, gnu::cold]] void refuse_indivisible(std::size_t size, std::size_t element_size);
[[noreturn, gnu::cold]] void refuse_changed_size();
[[noreturn, gnu::cold]] void refuse_endless_array();

/// Reads into a buffer of twice the size that is expected. An implementation that reports no size may write to all of
/// it.
template <class Ask, class Value>
void read_once(Ask& ask, std::array<Value, 2>& values) {
    ask(0, nullptr);
    std::size_t size = sizeof(Value);
    if (ask.reported == 0) [[unlikely]] {
        size = sizeof values;
    }
    ask(size, values.data());
}

/// Reads into a buffer of the size that the implementation has reported.
template <class Ask>
void read_again(Ask& ask, std::size_t size, void* value) {
    ask.reported = 0;
    ask(size, value);
    if (ask.reported != size) [[unlikely]] {
        refuse_changed_size();
    }
}

template <class T, class Ask>
T read_scalar(Ask&& ask) {
    std::array<T, 2> values{};
    read_once(ask, values);
    if (ask.reported != sizeof(T)) [[unlikely]] {
        refuse_value(sizeof(T), ask.reported);
    }
    return values[0];
}

template <class T, std::size_t N, class Ask>
std::array<T, N> read_fixed(Ask&& ask) {
    std::array<std::array<T, N>, 2> values{};
    read_once(ask, values);
    if (ask.reported != sizeof values[0]) [[unlikely]] {
        refuse_elements(N, sizeof values[0], ask.reported);
    }
    return values[0];
}

/// Reads a text without its last byte, the terminating zero.
template <class Ask>
std::string read_text(Ask&& ask) {
    ask(0, nullptr);
    std::size_t const size = ask.reported;
    std::string text(size, '\0');
    if (size != 0) {
        read_again(ask, size, text.data());
        text.pop_back();
    }
    return text;
}

/// Khronos public bug #1510: implementations that report no size for a list. The reply is asked for with growing
/// buffers until one is not filled to its end.
template <class Ask, class Array>
[[gnu::cold, gnu::noinline]] void read_array_of_unreported_size(Ask& ask, std::size_t element_size, Array& array) {
    constexpr int full_buffer_limit = 55; // full buffers, after which the answer is refused
    std::size_t capacity = 100;
    for (int full_buffers = 0;; capacity *= 2) {
        ask(capacity * element_size, array.resize(capacity));
        if (ask.reported != capacity * element_size) {
            break;
        }
        if (++full_buffers == full_buffer_limit) {
            refuse_endless_array();
        }
    }
    if (ask.reported % element_size != 0) {
        refuse_indivisible(ask.reported, element_size);
    }
    array.resize(ask.reported / element_size);
}

/// Reads an array whose size the implementation has reported. `array.resize(count)` returns its storage resized to a
/// number of elements, new ones zero.
template <class Ask, class Array>
void read_reported_array(Ask& ask, std::size_t element_size, Array& array) {
    std::size_t const size = ask.reported;
    if (size == 0) [[unlikely]] {
        read_array_of_unreported_size(ask, element_size, array);
        return;
    }
    if (size % element_size != 0) [[unlikely]] {
        refuse_indivisible(size, element_size);
    }
    read_again(ask, size, array.resize(size / element_size));
}

template <class T, class Ask>
std::vector<T> read_reported_vector(Ask& ask) {
    struct {
        std::vector<T> elements;
        void* resize(std::size_t count) {
            elements.resize(count);
            return elements.data();
        }
    } array;
    read_reported_array(ask, sizeof(T), array);
    return std::move(array.elements);
}

template <class T, class Ask>
std::vector<T> read_vector(Ask&& ask) {
    ask(0, nullptr);
    return read_reported_vector<T>(ask);
}

/// Reads a list that is converted at once and returns `convert(elements, count)`. The list needs the heap only for more
/// than `N` elements.
template <class T, std::size_t N, class Ask, class Convert>
auto read_list(Ask&& ask, Convert convert) {
    ask(0, nullptr);
    std::size_t const size = ask.reported;
    if (size - 1 < N * sizeof(T) && size % sizeof(T) == 0) [[likely]] {
        std::array<T, N> elements{};
        read_again(ask, size, elements.data());
        return convert(elements.data(), size / sizeof(T));
    }
    std::vector<T> elements = read_reported_vector<T>(ask);
    return convert(elements.data(), elements.size());
}

} // namespace vorn::mero::internal
