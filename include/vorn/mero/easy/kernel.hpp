#pragma once

#include <vorn/mero/easy/argument.hpp>
#include <vorn/mero/easy/range.hpp>

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
/// Arguments are arrays, `local<T>(count)`, `nullptr`, objects of the exact interface (buffers, images, samplers), and
/// values that can be copied bytewise: numbers, `std::array` or OpenCL's own vector types for vectors, structures laid
/// out as in the kernel. A `float3` takes four floats.
///
/// Their number is always checked. Their kinds and sizes are checked against the source wherever the implementation
/// tells them, as it does for programs of `session::build`. Keep the kernel to call it often: making one asks for the
/// declarations. Two threads must not call one kernel at the same time.
template <int Version>
class basic_kernel {
public:
    using exact_type = typename api<Version>::kernel;
    using event_type = basic_event<Version>;

    /// Of a kernel of the exact interface, made by `basic_program`. Asks how its arguments are declared.
    basic_kernel(std::shared_ptr<detail::session_state<Version>> session, exact_type exact)
        : session_(std::move(session)), exact_(std::move(exact)), name_(exact_.function_name()),
          parameters_(detail::parameters_of<Version>(exact_)) {}

    /// The kernel of the exact interface.
    [[nodiscard]] exact_type& exact() noexcept { return exact_; }
    /// The same of an object that does not change.
    [[nodiscard]] exact_type const& exact() const noexcept { return exact_; }

    /// Sets the arguments and enqueues a launch on the session's queue. Does not block. Throws `argument_error` when an
    /// argument does not fit; what OpenCL refuses of one is nested in it.
    template <class... Arguments>
    event_type operator()(range const& over, Arguments const&... arguments) {
        return enqueue(over, 0, nullptr, arguments...);
    }

    /// The same, to start when the listed commands have ended.
    template <std::size_t Count, class... Arguments>
    event_type operator()(range const& over, wait_list<Version, Count> const& list, Arguments const&... arguments) {
        return enqueue(over, static_cast<unsigned>(Count), list.raws().data(), arguments...);
    }

    /// Sets the arguments without a launch.
    template <class... Arguments>
    void set_arguments(Arguments const&... arguments) {
        if (sizeof...(Arguments) != parameters_.size()) {
            refuse_count(sizeof...(Arguments));
        }
        unsigned index = 0;
        (set(index++, arguments), ...);
    }

private:
    template <class... Arguments>
    event_type enqueue(range const& over, unsigned count, _nq_cl_event* const* list, Arguments const&... arguments) {
        if (Version < 110 && over.offset() != std::array<std::size_t, 3>{}) {
            throw argument_error(detail::joined({"kernel '", name_, "': OpenCL launches from an offset since 1.1"}));
        }
        set_arguments(arguments...);
        return event_type(session_->queue.enqueue_command(detail::launch<Version>(exact_, over), count, list));
    }

    [[noreturn, gnu::cold, gnu::noinline]] void refuse_count(std::size_t given) const {
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
        detail::place const at{name_, index, parameters_[index]};
        if (at.declared.space != detail::address_space::unknown) {
            check(at, argument);
        }
        try {
            hand_over(index, argument);
        } catch (common::opencl_error const& refused) {
            std::throw_with_nested(argument_error(detail::joined({at.text(), ": ", refused.what()})));
        }
    }

    template <class T>
    static void check(detail::place const& at, basic_array<T, Version> const&) {
        detail::check_pointer(at, detail::shape<T>::value, false);
    }
    template <class T>
    static void check(detail::place const& at, local<T> const&) {
        detail::check_pointer(at, detail::shape<T>::value, true);
    }
    template <class T>
    static void check(detail::place const& at, T const&) {
        if constexpr (!is_object<T>) {
            detail::check_value(at, detail::shape<T>::value);
        }
    }

    template <class T>
    void hand_over(unsigned index, basic_array<T, Version> const& array) {
        exact_.set_argument(index, const_cast<typename api<Version>::buffer&>(array.exact())); // only read
    }
    template <class T>
    void hand_over(unsigned index, local<T> const& memory) {
        exact_.set_argument(index, typename api<Version>::local_memory(memory.count * sizeof(T)));
    }
    template <class T>
    void hand_over(unsigned index, T const& value) {
        if constexpr (is_object<T>) {
            exact_.set_argument(index, const_cast<T&>(value)); // only read
        } else {
            static_assert(std::is_trivially_copyable<T>::value && !std::is_pointer<T>::value,
                          "an argument is an array, an OpenCL object, or a value without pointers");
            exact_.set_argument_raw(index, sizeof value, &value);
        }
    }

    template <class T, class = void>
    struct settable : std::false_type {};
    template <class T>
    struct settable<T, std::void_t<decltype(std::declval<exact_type&>().set_argument(0U, std::declval<T&>()))>>
        : std::true_type {};

    /// Whether the exact interface takes it as an object.
    template <class T>
    static constexpr bool is_object = !std::is_arithmetic<T>::value && settable<T>::value;

    std::shared_ptr<detail::session_state<Version>> session_;
    exact_type exact_;
    std::string name_;
    std::vector<detail::parameter> parameters_;
};

/// `basic_kernel` of the default version.
using kernel = basic_kernel<default_version>;

} // namespace vorn::mero::easy
