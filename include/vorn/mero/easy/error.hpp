#pragma once

#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

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

/// A program does not build. The message contains the device, the options and the log.
class build_failure : public error {
public:
    /// `log` is the compiler's own text.
    build_failure(std::string device, std::string options, std::string log)
        : error(detail::joined({"The program does not build for ", device, options.empty() ? "" : " with '", options,
                                options.empty() ? "" : "'", ":\n",
                                log.empty() ? std::string_view("(the compiler gave no reason)") : log})),
          device_(std::move(device)), options_(std::move(options)), log_(std::move(log)) {}

    /// The name of the device.
    std::string const& device() const noexcept { return device_; }

    /// The options of the build.
    std::string const& options() const noexcept { return options_; }

    /// What the compiler said; empty when it said nothing.
    std::string const& log() const noexcept { return log_; }

private:
    std::string device_;
    std::string options_;
    std::string log_;
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

} // namespace vorn::mero::easy
