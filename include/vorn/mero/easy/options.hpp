#pragma once

#include <vorn/mero/easy/error.hpp>

#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace vorn::mero::easy {

/// The options of a build, put together and quoted as OpenCL wants them. A text of OpenCL's options is one as well.
///
///     auto const options = ez::build_options().define("WIDTH", 64).define("SCALE", 0.5F).fast_math();
///     auto const first = gpu.build(source, options);
///     auto const second = gpu.build(source, "-DWIDTH=64 -cl-fast-relaxed-math");
///
/// Throws `option_error` for what no quotes can hold together.
class build_options {
public:
    /// None.
    build_options() = default;
    /// OpenCL's own text, which is not looked at.
    build_options(std::string text) : text_(std::move(text)) {}
    /// The same.
    build_options(char const* text) : text_(text) {}

    /// Defines a macro as 1.
    build_options& define(std::string_view name) { return add_macro(name, "", "1"); }

    /// Defines a macro as a text, which may contain blanks and no quotation marks: a name, a type, an expression.
    build_options& define(std::string_view name, std::string_view value) { return add_macro(name, "=", value); }
    /// The same.
    build_options& define(std::string_view name, char const* value) { return define(name, std::string_view(value)); }

    /// Defines a macro as a number: exactly the value, and a `float` or a `double` in the kernel as it is here.
    template <class Number, class = std::enable_if_t<std::is_arithmetic<Number>::value>>
    build_options& define(std::string_view name, Number value) {
        if constexpr (std::is_floating_point<Number>::value) {
            static_assert(sizeof(Number) <= sizeof(double), "OpenCL C has no long double");
            return define(name, std::string_view(floating_text(value, std::is_same<Number, float>::value)));
        } else {
            bool const is_beyond_long = std::is_unsigned<Number>::value && sizeof(Number) == 8 &&
                                        static_cast<unsigned long long>(value) >> 63U != 0;
            return define(name, std::string_view(std::to_string(+value) + (is_beyond_long ? "UL" : "")));
        }
    }

    /// The version of OpenCL C: "CL1.2", "CL2.0", "CL3.0". Without it the source is OpenCL C 1.2 at most.
    build_options& standard(std::string_view version) { return add(detail::joined({"-cl-std=", version})); }

    /// A folder to search for what the source includes. Blanks are put in quotation marks, which PoCL 3.1 does not
    /// understand.
    build_options& include(std::string_view folder) {
        refuse_in(folder, "\"\n", "a folder", false, "name one without quotation marks, \".\" for the current one");
        // no blank behind -I and -D: rusticl of Mesa 22.3 ends the process for an option of one character
        bool const is_plain = folder.find_first_of(" \t") == std::string_view::npos;
        return add(is_plain ? detail::joined({"-I", folder}) : detail::joined({"-I\"", folder, "\""}));
    }

    /// Warnings fail the build.
    build_options& warnings_as_errors() { return add("-Werror"); }

    /// Arithmetic that is faster and less exact, without infinities and NaN.
    build_options& fast_math() { return add("-cl-fast-relaxed-math"); }

    /// What debuggers of kernels need. Not every compiler has it: Intel's and PoCL's do.
    build_options& debug() { return add("-g"); }

    /// OpenCL's own text for anything else: `add("-cl-mad-enable")`.
    build_options& add(std::string_view option) {
        text_ += detail::joined({text_.empty() || option.empty() ? "" : " ", option});
        return *this;
    }

    /// All as OpenCL takes it.
    [[nodiscard]] std::string const& text() const noexcept { return text_; }

private:
    static void refuse_in(std::string_view text, char const* unwanted, char const* what, bool may_be_empty = false,
                          char const* remedy = "put it into the source instead") {
        std::size_t const found = text.find_first_of(std::string_view(unwanted));
        if (found != std::string_view::npos || (text.empty() && !may_be_empty)) {
            throw option_error(
                detail::joined({"'", text, "' cannot be ", what, " in the options of a build: ", remedy}));
        }
    }

    /// The value is left out where there is no `equals`.
    build_options& add_macro(std::string_view name, std::string_view equals, std::string_view value) {
        refuse_in(name, " \t\n\"=\\", "the name of a macro");
        refuse_in(value, "\n\"\\", "the value of a macro", true);
        bool const is_plain = value.find_first_of(" \t'") == std::string_view::npos;
        std::string const macro = detail::joined({name, equals, equals.empty() ? "" : value});
        return add(is_plain ? detail::joined({"-D", macro}) : detail::joined({"-D \"", macro, "\""}));
    }

    static std::string floating_text(double value, bool is_float) {
        if (std::isnan(value)) {
            return "NAN";
        }
        if (std::isinf(value)) {
            return value < 0 ? "(-INFINITY)" : "INFINITY";
        }
        std::array<char, 40> text{};
        std::snprintf(text.data(), text.size(), "%.*e",
                      is_float ? std::numeric_limits<float>::max_digits10 : std::numeric_limits<double>::max_digits10,
                      value);
        std::string literal;
        for (char const each : std::string_view(text.data())) {
            bool const is_radix = std::string_view("0123456789+-e").find(each) == std::string_view::npos;
            if (!is_radix || literal.find('.') == std::string::npos) { // in any locale, of any length
                literal += is_radix ? '.' : each;
            }
        }
        return literal + (is_float ? "f" : "");
    }

    std::string text_;
};

} // namespace vorn::mero::easy
