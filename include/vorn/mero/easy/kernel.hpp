#pragma once

#include <vorn/mero/easy/argument.hpp>
#include <vorn/mero/easy/array.hpp>
#include <vorn/mero/easy/event.hpp>
#include <vorn/mero/easy/range.hpp>

#include <array>
#include <cstddef>
#include <exception>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vorn::mero::easy {

namespace detail {

/// `clEnqueueNDRangeKernel` for a `range`, which may leave the local size to OpenCL.
template <int Version>
class launch final : public api<Version>::command {
public:
    launch(typename api<Version>::kernel const& kernel, range const& over) noexcept
        : kernel_(raw_of(kernel)), range_(over) {}

    void call(nq::call_handle const& handle, _nq_cl_command_queue* queue, unsigned int num_events_in_wait_list,
              _nq_cl_event* const* event_wait_list, _nq_cl_event** event) const override {
        nq::block::clEnqueueNDRangeKernel block;
        block.command_queue = queue;
        block.kernel = kernel_;
        block.global_work_offset = Version >= 110 ? range_.offset().data() : nullptr;
        block.global_work_size = range_.size().data();
        block.local_work_size = range_.local_size() != nullptr ? range_.local_size()->data() : nullptr;
        block.event_wait_list = event_wait_list;
        block.event = event;
        block.work_dim = range_.dimensions();
        block.num_events_in_wait_list = num_events_in_wait_list;
        internal::call_capability(handle, nq::command_id<api<Version>::capability, nq::block::clEnqueueNDRangeKernel>,
                                  &block);
        internal::check_error(block.status);
    }

private:
    _nq_cl_kernel* kernel_;
    range const& range_; // outlives the command, which is enqueued where it is made
};

} // namespace detail

/// A function of a program, to be called like one:
///
///     auto vadd = program["vadd"];
///     vadd(ez::range(n), a, b, c, std::uint32_t(n));
///     vadd(ez::range(n), ez::after(earlier), a, b, c, std::uint32_t(n));
///
/// Arguments are arrays, images, samplers, `local<T>(count)`, `nullptr`, objects of the exact interface, and values
/// that can be copied bytewise: numbers, `std::array` or the types of `CL/cl_platform.h` for vectors, structures laid
/// out as in the kernel. A `float3` takes four floats. `argument_traits` makes other types arguments.
///
/// Their number is always checked. Their kinds and sizes are checked against the source wherever the implementation
/// tells them, as it does for programs of `session::build`. Keep the kernel to call it often: making one asks for the
/// declarations. Two threads must not call one kernel at the same time.
template <int Version>
class basic_kernel {
public:
    /// @{
    /// The kernel of the exact interface, and what a launch returns.
    using exact_type = typename api<Version>::kernel;
    using event_type = basic_event<Version>;
    /// @}

    /// Of a kernel of the exact interface, made by `basic_program`. Asks how its arguments are declared.
    basic_kernel(std::shared_ptr<detail::session_state<Version>> session, exact_type exact)
        : session_(std::move(session)), exact_(std::move(exact)), name_(exact_.function_name()),
          parameters_(detail::parameters_of<Version>(exact_)) {}

    /// The kernel of the exact interface.
    [[nodiscard]] exact_type& exact() noexcept { return exact_; }
    /// The same of an object that does not change.
    [[nodiscard]] exact_type const& exact() const noexcept { return exact_; }

    /// How the source declares the arguments, as far as the implementation tells.
    [[nodiscard]] std::vector<detail::parameter> const& parameters() const noexcept { return parameters_; }

    /// The name of the function.
    [[nodiscard]] std::string const& name() const noexcept { return name_; }

    /// The device that it runs on, of the exact interface.
    [[nodiscard]] typename api<Version>::device const& device() const { return session_->device; }

    /// Sets the arguments and enqueues a launch on the session's queue. Does not block. Throws `argument_error` when an
    /// argument does not fit and `launch_error` when OpenCL refuses the launch; OpenCL's own exception is nested.
    template <class... Arguments>
    event_type operator()(range const& over, Arguments const&... arguments) {
        return enqueue(over, 0, nullptr, arguments...);
    }

    /// The same, to start when the listed commands have ended.
    template <std::size_t Count, class... Arguments>
    event_type operator()(range const& over, wait_list<Version, Count> const& list, Arguments const&... arguments) {
        return enqueue(over, list.size(), list.data(), arguments...);
    }

    /// Sets the arguments without a launch.
    template <class... Arguments>
    void set_arguments(Arguments const&... arguments) {
        if (sizeof...(Arguments) != parameters_.size()) {
            refuse_count(sizeof...(Arguments));
        }
        unsigned index = 0;
        (set(index++, arguments), ...);
        if ((std::size_t{0} + ... + detail::local_bytes<Arguments>::of(arguments)) > every_device_has) {
            // of all arguments, and of what the kernel itself declares
            check_local(detail::joined({"kernel '", name_, "'"}), exact_.local_mem_size(session_->device));
        }
    }

    /// The same as a call where the number of arguments is known only when the program runs, as in a binding to another
    /// language: a type with `argument_traits` of its own holds any of them.
    template <class Argument>
    event_type launch(range const& over, waits<Version> const& earlier, std::vector<Argument> const& arguments) {
        check_offset(over);
        if (arguments.size() != parameters_.size()) {
            refuse_count(arguments.size());
        }
        unsigned index = 0;
        for (Argument const& each : arguments) {
            set(index++, each);
        }
        return start(over, earlier.size(), earlier.data());
    }

private:
    template <class... Arguments>
    event_type enqueue(range const& over, unsigned count, _nq_cl_event* const* list, Arguments const&... arguments) {
        check_offset(over);
        set_arguments(arguments...);
        return start(over, count, list);
    }

    void check_offset(range const& over) const {
        if (Version < 110 && over.offset() != std::array<std::size_t, 3>{}) {
            throw unsupported(detail::joined({"kernel '", name_, "' over ", over.text(),
                                              ": OpenCL launches from an offset since 1.1: use ez::basic_session<110>,",
                                              " or pass the offset as an argument"}));
        }
    }

    event_type start(range const& over, unsigned count, _nq_cl_event* const* list) {
        try {
            return event_type(session_->queue.enqueue_command(detail::launch<Version>(exact_, over), count, list));
        } catch (common::error const& refused) {
            refuse_launch(over, refused);
        }
    }

    [[noreturn, gnu::cold, gnu::noinline]] void refuse_count(std::size_t given) const {
        static_cast<void>(*session_);
        std::string wanted;
        for (auto const& each : parameters_) {
            wanted +=
                detail::joined({wanted.empty() ? "" : ", ", each.type.empty() ? std::string_view("?") : each.type,
                                each.type.empty() ? "" : " ", each.type.empty() ? std::string_view() : each.name});
        }
        throw argument_error(detail::joined({"kernel '", name_, "' takes ", std::to_string(parameters_.size()),
                                             " arguments (", wanted, "), but was given ", std::to_string(given)}));
    }

    template <class Argument>
    void set(unsigned index, Argument const& argument) {
        using traits = argument_traits<Argument, Version>;
        argument_place const at{name_, index, parameters_[index]};
        if (at.declared.kind != detail::argument_kind::unknown) {
            traits::check(at, argument);
        }
        if constexpr (detail::has_context<traits, Argument>::value) { // not every implementation compares them
            if (auto const* const context = traits::context(argument);
                context != detail::raw_of(session_.get()->context)) {
                refuse_context(at, traits::text(argument), context == nullptr);
            }
        }
        if (std::size_t const bytes = detail::local_bytes<Argument>::of(argument); bytes > every_device_has) {
            check_local(at.text(), bytes);
        }
        try {
            traits::set(exact_, index, argument);
        } catch (common::error const& refused) {
            refuse_argument(at, traits::text(argument), refused);
        }
    }

    static constexpr std::size_t every_device_has = 16384; // bytes of local memory; more are worth a question

    /// PoCL ends the process at the launch where there is not enough for all, Oclgrind allocates it.
    [[gnu::cold, gnu::noinline]] void check_local(std::string const& taker, std::size_t bytes) const {
        std::size_t const most = session_->device.local_mem_size();
        if (bytes > most) {
            throw argument_error(detail::joined({taker, " takes ", std::to_string(bytes),
                                                 " bytes of local memory, but a work-group has ", std::to_string(most),
                                                 " here for everything: use smaller work-groups"}));
        }
    }

    [[noreturn, gnu::cold, gnu::noinline]] static void refuse_context(argument_place const& at, std::string const& what,
                                                                      bool is_empty) {
        throw argument_error(detail::joined(
            {at.text(), " was given ", what,
             is_empty ? " that was moved from: pass the object that it was moved to"
                      : " of another context: make it by the kernel's session, or by one of its `another_queue`"}));
    }

    [[noreturn, gnu::cold, gnu::noinline]] static void
    refuse_argument(argument_place const& at, std::string const& what, common::error const& refused) {
        std::throw_with_nested(argument_error(
            detail::joined({at.text(), " was given ", what, ", which OpenCL refuses: ", refused.what()})));
    }

    /// Called while OpenCL's exception is handled.
    [[noreturn, gnu::cold, gnu::noinline]] void refuse_launch(range const& over, common::error const& refused) const {
        std::throw_with_nested(
            launch_error(detail::joined({"kernel '", name_, "' over ", over.text(), ": ", refused.what(),
                                         dynamic_cast<common::invalid_context const*>(&refused) != nullptr
                                             ? "; the list of `after` has an event of another context"
                                             : launch_advice(over)})));
    }

    /// What to do about sizes that the kernel cannot have; empty for those that it can.
    [[gnu::cold, gnu::noinline]] std::string launch_advice(range const& over) const {
        auto const* const local = over.local_size();
        if (local == nullptr) {
            return {};
        }
        try {
            std::size_t const most = exact_.max_work_group_size(session_->device);
            auto const required = exact_.compile_work_group_size(session_->device);
            if (required[0] != 0 && required != *local) {
                return detail::joined({"; the source requires groups of ", std::to_string(required[0]), " x ",
                                       std::to_string(required[1]), " x ", std::to_string(required[2])});
            }
            if ((*local)[0] * (*local)[1] * (*local)[2] > most) {
                return detail::joined(
                    {"; a group of this kernel has at most ", std::to_string(most), " work-items here"});
            }
        } catch (common::error const&) { // then without advice
        }
        for (unsigned i = 0; i != over.dimensions(); ++i) {
            if ((*local)[i] == 0 || over.size()[i] % (*local)[i] != 0) {
                return "; the local size must divide the global size: use ez::round_up";
            }
        }
        return {};
    }

    detail::session_link<Version> session_;
    exact_type exact_;
    std::string name_;
    std::vector<detail::parameter> parameters_;
};

/// `basic_kernel` of the default version.
using kernel = basic_kernel<default_version>;

} // namespace vorn::mero::easy
