#pragma once

#include <vorn/mero/easy/kernel.hpp>

#include <memory>
#include <string>
#include <utility>

namespace vorn::mero::easy {

/// Builds a program of the exact interface for a device. Throws `build_failure` with the log when it does not build.
/// The options are OpenCL's.
template <int Version>
void build(typename api<Version>::program& program, typename api<Version>::device const& device,
           std::string const& options = {}) {
    program.build({device}, options, nullptr, nullptr);
    if (program.build_status(device) != api<Version>::program_build_status::success) {
        throw build_failure(device.name(), options, program.build_log(device));
    }
}

/// A program of the exact interface from source, built for a device. Throws `build_failure` as above.
template <int Version>
[[nodiscard]] typename api<Version>::program build(typename api<Version>::context& context,
                                                   typename api<Version>::device const& device,
                                                   std::string const& source, std::string const& options = {}) {
    auto made = context.create_program_from_source(source);
    build<Version>(made, device, options);
    return made;
}

/// A built program; made by `session::build`.
template <int Version>
class basic_program {
public:
    using exact_type = typename api<Version>::program;

    /// Of a program of the exact interface, which must be built.
    basic_program(std::shared_ptr<detail::session_state<Version>> session, exact_type exact) noexcept
        : session_(std::move(session)), exact_(std::move(exact)) {}

    /// The program of the exact interface.
    [[nodiscard]] exact_type& exact() noexcept { return exact_; }
    /// The same of an object that does not change.
    [[nodiscard]] exact_type const& exact() const noexcept { return exact_; }

    /// The same program, whose kernels use the queue of another session of its device and context.
    template <class Session>
    [[nodiscard]] basic_program on(Session const& other) const {
        return {other.state(), exact_};
    }

    /// The kernel of this name, without arguments. Throws `no_kernel` when the program has none of it.
    [[nodiscard]] basic_kernel<Version> operator[](std::string const& name) const {
        try {
            return basic_kernel<Version>(session_, exact_.create_kernel(name));
        } catch (common::invalid_kernel_name const&) {
            throw no_kernel(detail::joined({"The program has no kernel '", name, "'", names()}));
        }
    }

private:
    std::string names() const {
        std::string list;
        if constexpr (Version >= 120) {
            for (std::string const& each : exact_.kernel_names()) {
                list += list.empty() ? "; it has: " : ", ";
                list += each;
            }
        }
        return list;
    }

    std::shared_ptr<detail::session_state<Version>> session_;
    mutable exact_type exact_; // its own members that make kernels are not const
};

/// `basic_program` of the default version.
using program = basic_program<default_version>;

} // namespace vorn::mero::easy
