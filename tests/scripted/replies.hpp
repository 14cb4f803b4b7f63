#pragma once

// What a read must make of the sizes that an info query reports, true or not.

#include <cstddef>
#include <string>
#include <type_traits>
#include <vector>

namespace scripted {

/// What is read: one value of `size` bytes, a text, or a list whose elements have `size` bytes.
struct reading {
    enum { value, text, list } kind;
    std::size_t size = 1;
};

/// How a member reads what it returns, if a good reply has so many bytes. A truth is read from a number or a text.
template <class Found>
reading reading_of(std::size_t size) {
    if constexpr (std::is_same_v<Found, std::string> || std::is_same_v<Found, std::vector<std::string>>) {
        return {reading::text};
    } else if constexpr (requires(Found found) { found.push_back(found[0]); }) {
        using element = typename Found::value_type;
        return {reading::list, std::is_class_v<element> ? sizeof(void*) : sizeof(element)};
    } else if constexpr (std::is_same_v<Found, bool>) {
        return size == 4 || size == 8 ? reading{reading::value, size} : reading{reading::text};
    } else {
        return {reading::value, size};
    }
}

/// One call of a query: the room it offered, and what it said the size is.
struct answered_query {
    std::size_t capacity;
    std::size_t reported;
};

enum class outcome {
    unfinished, ///< the read must ask again
    value,      ///< exactly the bytes of the last reply
    refused     ///< `common::bad_implementation`
};

/// What the read must do after these calls.
inline outcome outcome_of(reading const& of, std::vector<answered_query> const& calls) {
    auto const equal = [](std::size_t a, std::size_t b) { return a == b ? outcome::value : outcome::refused; };
    if (calls.empty()) {
        return outcome::unfinished;
    }
    std::size_t const first = calls.front().reported;
    std::size_t const last = calls.back().reported;
    if (of.kind == reading::value) {
        return calls.size() == 1 ? outcome::unfinished : equal(last, of.size);
    }
    if (of.kind == reading::text && first == 0) {
        return outcome::value;
    }
    if (first == 0) { // a list whose size the implementation does not tell
        return calls.size() == 1 || last == calls.back().capacity ? outcome::unfinished : equal(last % of.size, 0);
    }
    if (first % of.size != 0) {
        return outcome::refused;
    }
    return calls.size() == 1 ? outcome::unfinished : equal(first, last);
}

} // namespace scripted
