#pragma once

// The exceptions of the call layer. A failed OpenCL operation throws those of `vorn::mero::common` instead. `what()` is
// empty after the most common causes, a call on an object that was moved from and a forked process: print the code too.
//
//     try {
//         devices = cl::get_all_devices();
//     } catch (nq::nq_error const& broken) { // libnq itself, not OpenCL
//         std::fprintf(stderr, "libnq: %s (%d)\n", broken.what(), broken.code());
//     }

#include <nq/export.hpp>

#include <exception>
#include <string>

namespace nq {

/// Root of the call layer's exceptions. They mean that the installation does not work, or that an object was moved
/// from; trying again does not help.
class NQ_EXPORT nq_error : public std::exception {
public:
    /// Copies the message. `code` is what libnq returned.
    nq_error(std::string const& message, int code);
    /// Copies the message and the code.
    nq_error(nq_error const&);
    /// Copies the message and the code.
    nq_error& operator=(nq_error const&);
    /// Frees the message.
    ~nq_error() override;

    /// The message, perhaps empty; valid as long as the exception.
    [[nodiscard]] char const* what() const noexcept final;

    /// What libnq returned, see `nq::result`.
    [[nodiscard]] int code() const noexcept { return code_; }

private:
    std::string message_;
    int code_;
};

/// The call was refused; the call handle can still be used.
class NQ_EXPORT recoverable_error : public nq_error {
public:
    /// Copies the message.
    recoverable_error(std::string const& message, int code);
};

/// The call handle and the objects made through it cannot be used any more: it is null, because an object was moved
/// from, or the process was forked and its OpenCL implementation does not survive that.
class NQ_EXPORT unrecoverable_error : public nq_error {
public:
    /// Copies the message.
    unrecoverable_error(std::string const& message, int code);
};

/// libnq has no entry point of this command id: it is made for other OpenCL versions than the library.
class NQ_EXPORT invalid_command_id : public recoverable_error {
public:
    /// With `nq::result::invalid_command_id`.
    invalid_command_id();
};

/// libnq returned an undefined value.
class NQ_EXPORT unknown_error : public unrecoverable_error {
public:
    /// `code` is that value.
    explicit unknown_error(int code);
};

} // namespace nq
