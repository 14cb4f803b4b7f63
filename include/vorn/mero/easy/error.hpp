#pragma once

#include <cstddef>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vorn::mero::easy {

namespace detail {

/// The parts as one text. A sum of strings would be compiled anew, and at length, wherever there is one.
[[gnu::noinline]] inline std::string joined(std::initializer_list<std::string_view> parts) {
    std::string text;
    for (std::string_view const part : parts) {
        text += part;
    }
    return text;
}

} // namespace detail

/// The base of what this layer throws by itself. The message says what is wrong and what to do about it.
class error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// No device is there, or none is as asked for. The message lists the devices that there are.
class no_device : public error {
public:
    using error::error;
};

/// A program does not build. The message contains the devices, the options and what the compiler said for each.
class build_failure : public error {
public:
    /// What the compiler said for a device.
    struct report {
        std::string device; ///< Its name.
        std::string log;    ///< Empty when the compiler said nothing.
    };

    /// `log` is the compiler's own text.
    build_failure(std::string device, std::string options, std::string log)
        : build_failure("The program", {{std::move(device), std::move(log)}}, std::move(options)) {}

    /// Of a program that has a name, for one device or several.
    build_failure(std::string const& program, std::vector<report> reports, std::string options)
        : error(text(program, reports, options)), options_(std::move(options)), reports_(std::move(reports)) {}

    /// The name of the first device that it does not build for.
    std::string const& device() const noexcept { return reports_.front().device; }

    /// The options of the build.
    std::string const& options() const noexcept { return options_; }

    /// What the compiler said for the first device; empty when it said nothing.
    std::string const& log() const noexcept { return reports_.front().log; }

    /// The devices that it does not build for, at least one.
    std::vector<report> const& reports() const noexcept { return reports_; }

private:
    static std::string text(std::string const& program, std::vector<report> const& reports,
                            std::string const& options) {
        std::string all;
        for (report const& each : reports) {
            all += detail::joined({all.empty() ? "" : "\n", program, " does not build for ", each.device,
                                   options.empty() ? "" : " with '", options, options.empty() ? "" : "'", ":\n",
                                   each.log.empty() ? std::string_view("(the compiler gave no reason)") : each.log});
        }
        return all;
    }

    std::string options_;
    std::vector<report> reports_;
};

/// The device, or its implementation, lacks what the program asks for. The message says what to use instead.
class unsupported : public error {
public:
    using error::error;
};

/// An option of a build cannot be right. Nothing was built.
class option_error : public error {
public:
    using error::error;
};

/// A file cannot be read. The message names it.
class file_error : public error {
public:
    using error::error;
};

/// A program has no kernel of the name. The message lists those that it has.
class no_kernel : public error {
public:
    using error::error;
};

/// A kernel was called with a wrong argument, or with a wrong number of them. Nothing was launched.
class argument_error : public error {
public:
    using error::error;
};

/// OpenCL refused to enqueue a kernel; its own exception is nested. Nothing was launched.
class launch_error : public error {
public:
    using error::error;
};

/// A region leaves an array, or host memory has the wrong size. Nothing was enqueued.
class bounds_error : public error {
public:
    using error::error;
};

/// Events are used in an order that cannot work.
class order_error : public error {
public:
    using error::error;
};

/// An object was used that was moved from.
class moved_from : public error {
public:
    using error::error;
};

namespace detail {

[[noreturn, gnu::cold, gnu::noinline]] inline void refuse_moved_from() {
    throw moved_from("An object was used that was moved from: use the one that it was moved to");
}

/// A value that is zero once it was moved from.
template <class T>
class zero_once_moved {
public:
    constexpr zero_once_moved(T value) noexcept : value_(value) {}
    constexpr zero_once_moved(zero_once_moved&& other) noexcept : value_(std::exchange(other.value_, T{})) {}
    constexpr zero_once_moved& operator=(zero_once_moved&& other) noexcept {
        value_ = std::exchange(other.value_, T{});
        return *this;
    }
    constexpr zero_once_moved(zero_once_moved const&) noexcept = default;
    constexpr zero_once_moved& operator=(zero_once_moved const&) noexcept = default;
    ~zero_once_moved() = default;

    constexpr operator T const&() const noexcept { return value_; }

private:
    T value_;
};

/// The product of a number of things and the number or size of what each has.
constexpr std::size_t product(std::size_t count, std::size_t each) {
    if (each != 0 && count > static_cast<std::size_t>(-1) / each) {
        throw bounds_error(joined(
            {std::to_string(count), " times ", std::to_string(each), " is more than memory can hold: ask for less"}));
    }
    return count * each;
}

} // namespace detail

} // namespace vorn::mero::easy
