#pragma once

// What the recipes share: their arguments, the comparison of the obvious way with the better one, and the exit status.

#include <vorn/mero/easy.hpp>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <exception>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace cookbook {

/// One run of a recipe.
class recipe {
public:
    recipe(char const* name, bool small) : name_(name), small_(small) {}

    /// How much to compute; with `--small` as much as a simulator does in a second.
    std::size_t size(std::size_t full, std::size_t small) const { return small_ ? small : full; }

    /// Ends the recipe with this message when a result is wrong.
    void check(bool right, char const* wrong) const {
        if (!right) {
            throw std::runtime_error(wrong);
        }
    }

    /// Times the two ways in turns, and prints the medians. A way returns the time that the device took; for one that
    /// returns nothing it is the time of the host. The first turn does not count.
    template <class Obvious, class Better>
    void compare(Obvious&& obvious, Better&& better) const {
        std::vector<double> slow;
        std::vector<double> fast;
        for (int turn = 0; turn != (small_ ? 2 : 12); ++turn) {
            slow.push_back(milliseconds(obvious));
            fast.push_back(milliseconds(better));
        }
        double const one = median(slow);
        double const other = median(fast);
        std::printf("%s: obvious %.3f ms, better %.3f ms, %.1f times faster\n", name_, one, other, one / other);
    }

private:
    template <class Way>
    static double milliseconds(Way& way) {
        std::chrono::duration<double, std::milli> took{};
        if constexpr (std::is_void_v<std::invoke_result_t<Way&>>) {
            auto const start = std::chrono::steady_clock::now();
            way();
            took = std::chrono::steady_clock::now() - start;
        } else {
            took = way();
        }
        return took.count();
    }

    static double median(std::vector<double>& times) {
        auto const middle = times.begin() + 1 + static_cast<std::ptrdiff_t>((times.size() - 1) / 2);
        std::nth_element(times.begin() + 1, middle, times.end());
        return *middle;
    }

    char const* name_;
    bool small_;
};

/// The body of `main`: 0 when all went well, 1 for a wrong result or an error, 77 when there is no device as needed.
inline int run(char const* name, void (*cook)(recipe const&), int count, char** arguments) try {
    cook(recipe(name, count > 1 && std::strcmp(arguments[1], "--small") == 0));
    return 0;
} catch (vorn::mero::easy::no_device const& reason) {
    std::fprintf(stderr, "%s: %s\n", name, reason.what());
    return 77;
} catch (std::exception const& failure) {
    std::fprintf(stderr, "%s: %s\n", name, failure.what());
    return 1;
}

} // namespace cookbook
