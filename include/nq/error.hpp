#pragma once

// What a failing call layer throws. A failed OpenCL operation throws the exceptions of `vorn::mero::common` instead.
// `what()` is empty for a call on an object that was moved from and in a forked process, the commonest causes: tell the
// code too.
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

/// Root of the call layer's exceptions. They tell of an installation that does not work, or of an object that was moved
/// from; trying again does not help.
class NQ_EXPORT nq_error : public std::exception {
public:
    nq_error(std::string const& message, int code);
    nq_error(nq_error const&);
    nq_error& operator=(nq_error const&);
    ~nq_error() override;

    char const* what() const noexcept final;

    /// What libnq returned, see `nq::result`.
    int code() const noexcept { return code_; }

private:
    std::string message_;
    int code_;
};

/// The call was refused; the call handle can still be used.
class NQ_EXPORT recoverable_error : public nq_error {
public:
    recoverable_error(std::string const& message, int code);
};

/// The call handle is of no further use, nor are the objects made through it: it is null, as that of an object that was
/// moved from, or lost in a forked process whose OpenCL implementation does not survive that.
class NQ_EXPORT unrecoverable_error : public nq_error {
public:
    unrecoverable_error(std::string const& message, int code);
};

/// libnq knows no entry point of that command id: it is made for other versions than the library.
class NQ_EXPORT invalid_command_id : public recoverable_error {
public:
    invalid_command_id();
};

/// libnq returned a value that has no meaning.
class NQ_EXPORT unknown_error : public unrecoverable_error {
public:
    explicit unknown_error(int code);
};

} // namespace nq
