#pragma once

// The base classes of the exceptions, and those that no status has. Those of each status are in
// <vorn/mero/common/error.hpp>.

#include <vorn/mero/common/error_code.hpp>
#include <vorn/mero/common/export.hpp>

#include <exception>
#include <string>

namespace vorn::mero::common {

/// Root of the exceptions of OpenCL operations.
class VORN_MERO_EXPORT error : public std::exception {
public:
    /// Copies the message.
    explicit error(std::string const& message);
    /// Copies the message.
    error(error const&);
    /// Copies the message.
    error& operator=(error const&);
    /// Frees the message.
    ~error() override;

    /// The message, for people to read. Valid as long as the exception.
    [[nodiscard]] char const* what() const noexcept final;

private:
    friend class opencl_error;
    VORN_MERO_HIDDEN explicit error(error_code code); // makes the message in place

    std::string message_;
};

/// An OpenCL operation failed with a status.
class VORN_MERO_EXPORT opencl_error : public error {
public:
    /// Copies the message.
    opencl_error(std::string const& message, error_code code);

    /// The status.
    [[nodiscard]] error_code const& code() const noexcept { return code_; }

private:
    friend class logic_error;
    friend class runtime_error;
    VORN_MERO_HIDDEN explicit opencl_error(error_code code);

    error_code code_;
};

/// The program misused OpenCL: an invalid handle, value or option. Not `std::logic_error`, which the library throws for
/// misuse that it detects itself.
class VORN_MERO_EXPORT logic_error : public opencl_error {
public:
    /// Copies the message.
    logic_error(std::string const& message, error_code code);

protected:
    VORN_MERO_HIDDEN explicit logic_error(error_code code); // for the classes below
};

/// A condition of the device, its resources or the program being built.
class VORN_MERO_EXPORT runtime_error : public opencl_error {
public:
    /// Copies the message.
    runtime_error(std::string const& message, error_code code);

protected:
    VORN_MERO_HIDDEN explicit runtime_error(error_code code); // for the classes below
};

/// A status that no OpenCL version defines, such as that of an extension. Not an `opencl_error`.
class VORN_MERO_EXPORT unknown_opencl_error : public error {
public:
    /// Puts the status into the message.
    explicit unknown_opencl_error(int value);

    /// The status as OpenCL returned it.
    [[nodiscard]] int value() const noexcept { return value_; }

private:
    int value_;
};

/// The OpenCL implementation contradicted itself: a reply has the wrong size, or a release failed. Not an
/// `opencl_error`.
class VORN_MERO_EXPORT bad_implementation : public error {
public:
    /// Copies the message.
    explicit bad_implementation(std::string const& message);
};

} // namespace vorn::mero::common
