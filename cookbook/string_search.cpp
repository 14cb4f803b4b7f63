// How often a word occurs in a text.

#include "support.hpp"

#include <numeric>
#include <string>

namespace ez = vorn::mero::easy;

static char const* const source = R"(
// A work-item for each place of the text, which compares letter by letter.
kernel void by_place(global char const* text, constant char* word, uint length, global uint* found) {
    uint i = 0;
    while (i < length && text[get_global_id(0) + i] == word[i]) ++i;
    if (i == length) atomic_inc(found);
}

// A work-item for a stretch of 16 places at a time: a word begins only where its first and its last letter are.
kernel void by_sixteen(global char const* text, constant char* word, uint length, global uint* found, uint stretch) {
    text += get_global_id(0) * stretch;
    uint mine = 0;
    for (uint i = 0; i < stretch; i += 16) {
        char16 maybe = vload16(0, text + i) == word[0] & vload16(0, text + i + length - 1) == word[length - 1];
        if (!any(maybe)) continue;
        char places[16];
        vstore16(maybe, 0, places);
        for (uint j = 0; j < 16; ++j) {
            uint k = 0;
            while (places[j] && k < length && text[i + j + k] == word[k]) ++k;
            mine += k == length;
        }
    }
    found[get_global_id(0)] = mine;
}
)";

static void string_search(cookbook::recipe const& here) {
    std::size_t const n = here.size(1 << 23, 1 << 13);
    std::size_t const items = 64;
    std::string const word = "needle";
    std::string text(n + 16 + word.size(), ' '); // so that the last places may read on
    for (std::size_t i = 0; i != n; ++i) {
        text[i] = static_cast<char>("etaoinsrhld "[(i * 2654435761U >> 20) % 12]);
    }
    for (std::size_t i = 0; i + word.size() < n; i += 997) {
        text.replace(i, word.size(), word);
    }
    std::uint32_t expected = 0;
    for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) {
        ++expected;
    }

    ez::session gpu;
    auto program = gpu.build(source);
    auto by_place = program["by_place"], by_sixteen = program["by_sixteen"];
    auto letters = gpu.array(std::vector<char>(text.begin(), text.end()));
    auto wanted = gpu.array(std::vector<char>(word.begin(), word.end()));
    auto slow = gpu.array<std::uint32_t>(1), fast = gpu.array<std::uint32_t>(items);
    auto const length = static_cast<std::uint32_t>(word.size());
    here.compare(
        [&] {
            slow.fill(0);
            return by_place(ez::range(n), letters, wanted, length, slow).time();
        },
        [&] {
            ez::range const stretches(items);
            return by_sixteen(stretches.local(1), letters, wanted, length, fast, std::uint32_t(n / items)).time();
        });
    auto const found = fast.read();
    here.check(slow.read()[0] == expected, "the count by places is wrong");
    here.check(std::accumulate(found.begin(), found.end(), 0U) == expected, "the count by sixteen places is wrong");
    std::printf("'%s' occurs %u times in %zu letters\n", word.c_str(), expected, n);
}

int main(int count, char** arguments) { return cookbook::run("string_search", string_search, count, arguments); }
