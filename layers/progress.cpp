#include "progress.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>
#include <utility>

namespace nq {
namespace {

constexpr auto between = std::chrono::milliseconds(100); // two lines
constexpr std::string_view full = "##############################";

// A line that is lost is no failure.
void write_line(char const* text, int size) noexcept {
    [[maybe_unused]] ssize_t const wrote = write(STDERR_FILENO, text, static_cast<std::size_t>(std::max(size, 0)));
}

} // namespace

progress::progress(std::uint64_t all, std::string what)
    : all_(all), what_(std::move(what)), is_terminal_(isatty(STDERR_FILENO) != 0), next_(clock::now() + between) {}

void progress::show(std::uint64_t done) noexcept {
    done_ = done;
    if (!is_terminal_ || clock::now() < next_) {
        return;
    }
    std::array<char, 128> line{};
    auto const part = all_ != 0 ? static_cast<double>(std::min(done, all_)) / static_cast<double>(all_) : 1;
    int const size =
        std::snprintf(line.data(), line.size(), "\r\033[K[%-*.*s] %llu of %llu %s", static_cast<int>(full.size()),
                      static_cast<int>(part * static_cast<double>(full.size())), full.data(),
                      static_cast<unsigned long long>(done), static_cast<unsigned long long>(all_), what_.c_str());
    winsize window{}; // a line that is wider could not be taken away
    int const columns = ioctl(STDERR_FILENO, TIOCGWINSZ, &window) == 0 && window.ws_col != 0 ? window.ws_col : 80;
    constexpr int erasing = 4; // characters that the terminal does not show
    write_line(line.data(), std::min({size, static_cast<int>(line.size()) - 1, columns - 1 + erasing}));
    is_shown_ = true;
    next_ = clock::now() + between;
}

void progress::clear() noexcept {
    constexpr std::string_view erase = "\r\033[K";
    if (is_shown_) {
        write_line(erase.data(), static_cast<int>(erase.size()));
        is_shown_ = false;
    }
}

} // namespace nq
