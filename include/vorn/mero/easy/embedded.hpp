#pragma once

#include <cstddef>
#include <string_view>

namespace vorn::mero::easy {

/// A view of constant data, for `embedded`: a pointer and a count.
template <class T>
class embedded_list {
public:
    /// Of nothing.
    constexpr embedded_list() noexcept = default;
    /// Of an array, which must live as long as this.
    template <std::size_t Count>
    constexpr embedded_list(T const (&values)[Count]) noexcept : data_(values), size_(Count) {}

    /// Of `size` elements, which must live as long as this.
    constexpr embedded_list(T const* data, std::size_t size) noexcept : data_(data), size_(size) {}

    /// The first element; null for an empty list.
    [[nodiscard]] constexpr T const* data() const noexcept { return data_; }
    /// The number of elements.
    [[nodiscard]] constexpr std::size_t size() const noexcept { return size_; }
    /// Whether there is none.
    [[nodiscard]] constexpr bool empty() const noexcept { return size_ == 0; }
    /// The first element.
    [[nodiscard]] constexpr T const* begin() const noexcept { return data_; }
    /// Behind the last element.
    [[nodiscard]] constexpr T const* end() const noexcept { return data_ + size_; }

private:
    T const* data_ = nullptr;
    std::size_t size_ = 0;
};

/// A kernel of an embedded program.
struct embedded_kernel {
    std::string_view name; ///< In the source.
    unsigned arguments;    ///< How many it takes.
};

/// A program as constant data of the host program: its source, and what is known of it beforehand. Plain data without
/// any code of OpenCL's, for generated headers; `session::build` builds it.
///
///     inline constexpr ez::embedded_kernel blur_kernels[] = {{"blur", 4}};
///     inline constexpr unsigned char blur_il[] = {0x03, 0x02, 0x23, 0x07, 0x00};
///     inline constexpr ez::embedded blur{"blur.cl", "kernel void blur(...) { ... }", blur_kernels, blur_il};
///     auto program = gpu.build(blur);
struct embedded {
    std::string_view name;                    ///< Of the file, for the compiler's messages.
    std::string_view source;                  ///< OpenCL C.
    embedded_list<embedded_kernel> kernels{}; ///< In the order of the source; none if they are not known.
    embedded_list<unsigned char> il{};        ///< The same program in SPIR-V; none if there is only source.
    std::string_view options{};               ///< What it must be built with, beside those of the caller.

    /// The kernel of this name, null if there is none: `static_assert(blur.find("blur")->arguments == 4)`.
    [[nodiscard]] constexpr embedded_kernel const* find(std::string_view wanted) const noexcept {
        for (embedded_kernel const& each : kernels) {
            if (each.name == wanted) {
                return &each;
            }
        }
        return nullptr;
    }
};

} // namespace vorn::mero::easy
