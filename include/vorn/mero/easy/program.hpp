#pragma once

#include <vorn/mero/easy/kernel.hpp>
#include <vorn/mero/easy/options.hpp>

#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vorn::mero::easy {

namespace detail {

/// What the compiler said where a build or a compilation of a program failed, one for each such device; `otherwise`
/// where it said nothing.
template <int Version>
std::vector<build_failure::report> reports_of(typename api<Version>::program const& made,
                                              std::vector<typename api<Version>::device> const& devices,
                                              std::string const& otherwise = {}) {
    std::vector<build_failure::report> reports;
    for (auto const& each : devices) {
        if (made.build_status(each) != api<Version>::program_build_status::success) {
            reports.push_back({each.name(), made.build_log(each)});
            if (reports.back().log.empty()) {
                reports.back().log = otherwise;
            }
        }
    }
    return reports;
}

/// Performs `action`, which builds or compiles a program. Throws `build_failure` when it does not, with OpenCL's own
/// exception nested if there is one.
template <int Version, class Action>
void build_by(Action const& action, typename api<Version>::program const& made,
              std::vector<typename api<Version>::device> const& devices, std::string const& options,
              std::string const& name) {
    std::vector<build_failure::report> reports;
    try {
        action();
        reports = reports_of<Version>(made, devices);
    } catch (common::error const& refused) {
        std::string const reason = refused.what(); // options that OpenCL does not know, a binary of another device
        try {
            reports = reports_of<Version>(made, devices, reason);
        } catch (common::error const&) { // then what it said first
        }
        if (reports.empty()) {
            reports.push_back({devices.front().name(), reason});
        }
        std::throw_with_nested(build_failure(name, std::move(reports), options));
    }
    if (!reports.empty()) {
        throw build_failure(name, std::move(reports), options);
    }
}

} // namespace detail

/// Builds a program of the exact interface for devices of its context, at least one. Throws `build_failure` with the
/// log of each device that it does not build for; `name` is for the message.
template <int Version>
void build(typename api<Version>::program& program, std::vector<typename api<Version>::device> const& devices,
           build_options const& options = {}, std::string const& name = "The program") {
    detail::build_by<Version>([&] { program.build(devices, options.text(), nullptr, nullptr); }, program, devices,
                              options.text(), name);
}

/// The same for one device.
template <int Version>
void build(typename api<Version>::program& program, typename api<Version>::device const& device,
           build_options const& options = {}) {
    build<Version>(program, std::vector<typename api<Version>::device>{device}, options);
}

/// A program of the exact interface from source, built for a device. Throws `build_failure` as above.
template <int Version>
[[nodiscard]] typename api<Version>::program build(typename api<Version>::context& context,
                                                   typename api<Version>::device const& device,
                                                   std::string const& source, build_options const& options = {}) {
    auto made = context.create_program_from_source(source);
    build<Version>(made, device, options);
    return made;
}

/// A built program; made by `session::build`.
template <int Version>
class basic_program {
public:
    /// The program of the exact interface.
    using exact_type = typename api<Version>::program;

    /// Of a program of the exact interface, which must be built.
    basic_program(std::shared_ptr<detail::session_state<Version>> session, exact_type exact) noexcept
        : session_(std::move(session)), exact_(std::move(exact)) {}

    /// The program of the exact interface.
    [[nodiscard]] exact_type& exact() noexcept { return exact_; }
    /// The same of an object that does not change.
    [[nodiscard]] exact_type const& exact() const noexcept { return exact_; }

    /// The same program, whose kernels use the queue of another session of its device and context. Throws
    /// `argument_error` for another context.
    template <class Session>
    [[nodiscard]] basic_program on(Session const& other) const {
        detail::check_same_context(detail::raw_of(session_->context), detail::raw_of(other.context()));
        return {other.state(), exact_};
    }

    /// The kernel of this name, without arguments. Throws `no_kernel` when the program has none of it.
    [[nodiscard]] basic_kernel<Version> operator[](std::string const& name) const {
        static_cast<void>(*session_);
        try {
            return basic_kernel<Version>(session_, exact_.create_kernel(name));
        } catch (common::invalid_kernel_name const&) {
            refuse_name(name);
        } catch (common::invalid_program_executable const&) { // of a program without any (Intel's)
            refuse_name(name);
        }
    }

    /// The binary for the session's device, for `session::build_binary` on the same device with the same driver.
    [[nodiscard]] std::vector<unsigned char> binary() const {
        auto const& device = session_->device;
        for (auto& each : exact_.binaries()) {
            if (each.device == device) {
                return std::move(each.binary);
            }
        }
        return {};
    }

private:
    [[noreturn, gnu::cold, gnu::noinline]] void refuse_name(std::string const& wanted) const {
        std::string list;
        if constexpr (Version >= 120) {
            try {
                for (std::string const& each : exact_.kernel_names()) {
                    list += list.empty() ? "; it has: " : ", ";
                    list += each;
                }
            } catch (common::invalid_program_executable const&) { // has none (Intel)
            }
            list += list.empty() ? "; it has none" : "";
        }
        throw no_kernel(detail::joined({"The program has no kernel '", wanted, "'", list}));
    }

    detail::session_link<Version> session_;
    mutable exact_type exact_; // its own members that make kernels are not const
};

/// `basic_program` of the default version.
using program = basic_program<default_version>;

} // namespace vorn::mero::easy
