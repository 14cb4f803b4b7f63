#pragma once

// Base of `fill_buffer`, `fill_image` and `fill_svm`.

#include <type_traits>
#include <utility>

namespace vorn::mero::internal {

/// A fill command that holds its pattern. `PointTo` is the member of `Base` that sets the address of the pattern; each
/// copy calls it for its own pattern.
///
///     cl::fill_buffer<float> fill(buffer, 0.0F, 0, count); // a pattern of 4 bytes in the command itself
///     std::vector<cl::fill_buffer<float>> fills(3, fill);  // three commands, three patterns
///
/// `Pattern` must be trivially copyable: OpenCL copies its bytes.
template <class Base, class Pattern, void (Base::*PointTo)(void const*) noexcept>
class kept_pattern : public Base {
public:
    /// Copies the pattern. `arguments` are those of `Base`, with a null pointer as the address of the pattern.
    template <class... Arguments>
    explicit kept_pattern(Pattern const& pattern, Arguments&&... arguments)
        : Base(std::forward<Arguments>(arguments)...), pattern_(pattern) {
        point_to_own();
    }

    /// With a pattern of its own.
    kept_pattern(kept_pattern const& other) : Base(other), pattern_(other.pattern_) { point_to_own(); }

    /// Copies the pattern too.
    kept_pattern& operator=(kept_pattern const& other) {
        Base::operator=(other);
        pattern_ = other.pattern_;
        point_to_own();
        return *this;
    }

private:
    static_assert(std::is_trivially_copyable_v<Pattern>, "OpenCL copies the pattern byte by byte");

    void point_to_own() noexcept { (this->*PointTo)(&pattern_); }

    Pattern pattern_;
};

} // namespace vorn::mero::internal
