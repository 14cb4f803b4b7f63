#pragma once

#include <vorn/mero/easy/error.hpp>

#include <array>
#include <cstddef>
#include <string>

namespace vorn::mero::easy {

/// The least multiple of `step` that is at least `count`. Throws `bounds_error` if `step` is 0, and if there is none.
[[nodiscard]] constexpr std::size_t round_up(std::size_t count, std::size_t step) {
    std::size_t const beyond = step == 0 ? 0 : count % step;
    if (step == 0 || (beyond != 0 && step - beyond > static_cast<std::size_t>(-1) - count)) {
        throw bounds_error(detail::joined({std::to_string(count), " cannot be rounded up to a multiple of ",
                                           std::to_string(step), ": round to the size of a work-group"}));
    }
    return beyond == 0 ? count : count + (step - beyond);
}

/// The work-items of a launch, in one, two or three dimensions.
///
///     ez::range const line(1024);                             // OpenCL chooses the size of the work-groups
///     auto const picture = ez::range(640, 480).local(16, 16); // work-groups of 16 x 16
///     auto const rest = ez::range(100).from(28);              // get_global_id(0) is 28 to 127; since OpenCL 1.1
///
/// A local size must divide the global size before OpenCL 2.0: `ez::range(ez::round_up(n, 64)).local(64)`. Throws
/// `bounds_error` for a global size or an offset that can only be a negative number, since implementations crash for
/// it.
class range {
public:
    /// One dimension of `x` work-items.
    explicit constexpr range(std::size_t x) : dimensions_(1), size_{checked(x), 1, 1} {}

    /// Two dimensions.
    constexpr range(std::size_t x, std::size_t y) : dimensions_(2), size_{checked(x), checked(y), 1} {}

    /// Three dimensions.
    constexpr range(std::size_t x, std::size_t y, std::size_t z)
        : dimensions_(3), size_{checked(x), checked(y), checked(z)} {}

    /// The same range in work-groups of this size. Dimensions that are left out count 1.
    [[nodiscard]] constexpr range local(std::size_t x, std::size_t y = 1, std::size_t z = 1) const noexcept {
        range made = *this;
        made.local_ = {x, y, z};
        made.has_local_ = true;
        return made;
    }

    /// The same range with global ids that begin here. Since OpenCL 1.1.
    [[nodiscard]] constexpr range from(std::size_t x, std::size_t y = 0, std::size_t z = 0) const {
        range made = *this;
        made.offset_ = {checked(x), checked(y), checked(z)};
        return made;
    }

    /// 1, 2 or 3.
    [[nodiscard]] constexpr unsigned dimensions() const noexcept { return dimensions_; }

    /// The global size; 1 in dimensions that the range lacks.
    [[nodiscard]] constexpr std::array<std::size_t, 3> const& size() const noexcept { return size_; }

    /// The first global id.
    [[nodiscard]] constexpr std::array<std::size_t, 3> const& offset() const noexcept { return offset_; }

    /// The local size, null where OpenCL chooses it. Valid as long as this object.
    [[nodiscard]] constexpr std::array<std::size_t, 3> const* local_size() const noexcept {
        return has_local_ ? &local_ : nullptr;
    }

    /// For messages: "640 x 480 work-items in groups of 16 x 16".
    [[nodiscard, gnu::cold, gnu::noinline]] std::string text() const {
        bool const is_moved = offset_ != std::array<std::size_t, 3>{};
        return detail::joined({product(size_), " work-items", has_local_ ? " in groups of " : "",
                               has_local_ ? product(local_) : std::string(), is_moved ? " from " : "",
                               is_moved ? product(offset_) : std::string()});
    }

private:
    static constexpr std::size_t checked(std::size_t number) {
        return number <= static_cast<std::size_t>(-1) / 2 ? number : refuse(number);
    }

    [[noreturn, gnu::cold, gnu::noinline]] static std::size_t refuse(std::size_t number) {
        throw bounds_error(detail::joined({"the size or offset ", std::to_string(number),
                                           " of a range was a negative number: look at how it is computed"}));
    }

    [[gnu::cold, gnu::noinline]] std::string product(std::array<std::size_t, 3> const& sizes) const {
        std::string listed;
        for (unsigned i = 0; i < dimensions_; ++i) {
            listed += detail::joined({i == 0 ? "" : " x ", std::to_string(sizes[i])});
        }
        return listed;
    }

    unsigned dimensions_;
    std::array<std::size_t, 3> size_;
    std::array<std::size_t, 3> offset_{};
    std::array<std::size_t, 3> local_{};
    bool has_local_ = false;
};

} // namespace vorn::mero::easy
