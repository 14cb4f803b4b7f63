#pragma once

#include <vorn/mero/easy/array.hpp>
#include <vorn/mero/easy/builder.hpp>
#include <vorn/mero/easy/device.hpp>
#include <vorn/mero/easy/sampler.hpp>

#include <initializer_list>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace vorn::mero::easy {

namespace detail {

/// Finds the functions of <vorn/mero/easy/borders.hpp> where that is included.
template <int Version>
struct adopted_as {};

} // namespace detail

/// The dimensions of an image.
enum class image_kind {
    one,       ///< Width.
    two,       ///< Width and height.
    three,     ///< Width, height and depth.
    one_array, ///< Several of `one`.
    two_array, ///< Several of `two`.
};

template <class Format, image_kind Kind, int Version>
class basic_image;

/// A device, a context for it and a queue with profiling: what a program needs to begin.
///
///     ez::session gpu;                // the device that MERO_DEVICE means, else the first
///     ez::session simulator("oclgrind");
///     ez::session exact(ez::needs::fp64 | ez::needs::images);
///     ez::session wide([](auto const& device) { return device.max_compute_units() >= 16; });
///
/// Builds programs by the members of `basic_builder`. Throws `no_device` when there is none as asked for. A copy names
/// the same device, context and queue; what a session made keeps them alive. Threads may share a session as far as the
/// OpenCL implementation lets them share a queue.
template <int Version>
class basic_session : public basic_builder<Version> {
public:
    /// @{
    /// The exact interface of the version, and its classes that a session holds.
    using exact_api = api<Version>;
    using device_type = typename exact_api::device;
    using context_type = typename exact_api::context;
    using queue_type = typename exact_api::host_queue;
    /// @}

    /// On the device that the environment variable MERO_DEVICE means, see `find_device`; on the first without it.
    basic_session() : basic_session(default_device<Version>()) {}

    /// On the first device that the text means, see `find_device`.
    explicit basic_session(std::string const& text) : basic_session(find_device<Version>(text)) {}
    /// The same.
    explicit basic_session(char const* text) : basic_session(std::string(text)) {}

    /// On the first device that MERO_DEVICE means and that has what is needed.
    explicit basic_session(needs what) : basic_session(default_device<Version>(what)) {}

    /// On the first device that the text means and that has what is needed.
    basic_session(std::string const& text, needs what) : basic_session(find_device<Version>(text, what)) {}

    /// On a device of the exact interface.
    explicit basic_session(device_type device) : basic_session(device, exact_api::create_context(device)) {}

    /// On the first device that `accept(device)` returns true for.
    template <class Accept, class = std::enable_if_t<std::is_invocable_r<bool, Accept&, device_type const&>::value>>
    explicit basic_session(Accept&& accept) : basic_session(find_device<Version>({}, accept)) {}

    /// In a context that there is, adopted from another library perhaps.
    basic_session(device_type device, context_type context)
        : basic_session(device, context, exact_api::create_queue(context, device, false, true)) {}

    /// On a queue that there is.
    basic_session(device_type device, context_type context, queue_type queue)
        : basic_builder<Version>(std::make_shared<detail::session_state<Version>>(std::move(device), std::move(context),
                                                                                  std::move(queue))) {}

    /// In a context of another library, a `cl_context`, which is retained: on its first device, or on the one that is
    /// given as `cl_device_id`, with a queue of its own. Include <vorn/mero/easy/borders.hpp> for it. Throws
    /// `no_device` where libnq does not offer the device for this OpenCL version.
    template <class Context, class... Device>
    [[nodiscard]] static basic_session on_device_of(Context context, Device... device) {
        return session_in(detail::adopted_as<Version>{}, context, device...);
    }

    /// The device of the exact interface.
    [[nodiscard]] device_type& device() const { return state_->device; }
    /// The context of the exact interface.
    [[nodiscard]] context_type& context() const { return state_->context; }
    /// The queue of the exact interface, in order and with profiling.
    [[nodiscard]] queue_type& queue() const { return state_->queue; }

    /// `count` elements that nothing has been written to. `count` may be 0. Throws `bounds_error` if the device has no
    /// buffer of that size.
    template <class T>
    [[nodiscard]] basic_array<T, Version> array(std::size_t count) const {
        return make_array<T>(flags::read_write, count, nullptr);
    }

    /// A copy of the values.
    template <class T>
    [[nodiscard]] basic_array<T, Version> array(std::vector<T> const& values) const {
        return values.empty() ? array<T>(0)
                              : make_array<T>(flags::read_write | flags::copy_host_ptr, values.size(),
                                              const_cast<T*>(values.data())); // OpenCL only reads it
    }

#if __cplusplus >= 202002L
    /// The same of a `std::span`, a `std::array` and so on.
    template <class... None, element_list List>
    requires(sizeof...(None) == 0) // the type of the elements is that of the list
        [[nodiscard]] auto array(List const& values) const {
        using value = std::remove_cvref_t<decltype(*values.data())>;
        return values.size() == 0 ? array<value>(0)
                                  : make_array<value>(flags::read_write | flags::copy_host_ptr, values.size(),
                                                      const_cast<value*>(values.data())); // OpenCL only reads it
    }
#endif

    /// The same: `gpu.array({1.0F, 2.0F})`.
    template <class T>
    [[nodiscard]] basic_array<T, Version> array(std::initializer_list<T> values) const {
        return array(std::vector<T>(values));
    }

    /// An array in the program's own memory, which must outlive it and all commands that use it: devices that share the
    /// host's memory copy nothing. The program may touch the elements only through `map` while the array lives.
    template <class T>
    [[nodiscard]] basic_array<T, Version> array_over(T* memory, std::size_t count) const {
        return count == 0 ? array<T>(0) : make_array<T>(flags::read_write | flags::use_host_ptr, count, memory);
    }
    /// The same in the memory of a list that keeps its size.
    template <class T>
    [[nodiscard]] basic_array<T, Version> array_over(std::vector<T>& values) const {
        return array_over(values.data(), values.size());
    }
#if __cplusplus >= 202002L
    /// The same in the memory of a span.
    template <class T, std::size_t Extent>
    [[nodiscard]] basic_array<T, Version> array_over(std::span<T, Extent> values) const {
        return array_over(values.data(), values.size());
    }
#endif

    /// An image of `width` x `height` pixels that nothing has been written to: `gpu.image<ez::rgba8>(640, 480)`. For
    /// this and its siblings include `vorn/mero/easy/image.hpp`, which says more.
    template <class Format>
    [[nodiscard]] basic_image<Format, image_kind::two, Version> image(std::size_t width, std::size_t height) const {
        return {state_, {width, height, 1}};
    }
    /// The same in three dimensions.
    template <class Format>
    [[nodiscard]] basic_image<Format, image_kind::three, Version> image(std::size_t width, std::size_t height,
                                                                        std::size_t depth) const {
        return {state_, {width, height, depth}};
    }
    /// The same in one dimension. Since OpenCL 1.2.
    template <class Format>
    [[nodiscard]] basic_image<Format, image_kind::one, Version> image(std::size_t width) const {
        return {state_, {width, 1, 1}};
    }
    /// An array of two-dimensional images. Since OpenCL 1.2.
    template <class Format>
    [[nodiscard]] basic_image<Format, image_kind::two_array, Version> image_array(std::size_t width, std::size_t height,
                                                                                  std::size_t images) const {
        return {state_, {width, height, images}};
    }
    /// An array of one-dimensional images. Since OpenCL 1.2.
    template <class Format>
    [[nodiscard]] basic_image<Format, image_kind::one_array, Version> image_array(std::size_t width,
                                                                                  std::size_t images) const {
        return {state_, {width, images, 1}};
    }

    /// A sampler for images.
    [[nodiscard]] basic_sampler<Version> sampler(address outside = address::edge, filter between = filter::nearest,
                                                 coordinates unit = coordinates::pixels) const {
        return context().create_sampler(unit == coordinates::normalized,
                                        typename exact_api::sampler_addressing_mode(outside),
                                        typename exact_api::sampler_filter_mode(between));
    }

    /// Blocks until everything enqueued so far has ended.
    void finish() const {
        queue().finish();
        state_->forget();
    }

    /// Has everything enqueued so far run, without waiting: before another queue waits for it, and before polling.
    void flush() const { queue().flush(); }

    /// A session on a further queue of the same device and context, in order and with profiling. Arrays and programs of
    /// this session are used there by their member `on`. Flush a queue that another one's commands wait for.
    [[nodiscard]] basic_session another_queue() const { return {device(), context()}; }

    /// The same with a queue that runs commands in any order, but for what they wait for: give each a list of `after`.
    /// Throws `unsupported` if the device has no such queue.
    [[nodiscard]] basic_session out_of_order() const {
        try {
            return {device(), context(), exact_api::create_queue(context(), device(), true, true)};
        } catch (common::invalid_queue_properties const&) {
            throw unsupported(detail::joined({device().name(), " has no out-of-order queues: use several queues of "
                                                               "`another_queue`, or choose a device that has them"}));
        }
    }

    /// What the session shares with its objects; for other headers of this layer.
    [[nodiscard]] std::shared_ptr<detail::session_state<Version>> const& state() const {
        static_cast<void>(*state_);
        return state_;
    }

private:
    using flags = typename exact_api::mem_flags;

    template <class T>
    basic_array<T, Version> make_array(flags how, std::size_t count, T* values) const {
        std::size_t const bytes = detail::product(count != 0 ? count : 1, sizeof(T)); // OpenCL has no empty buffers
        try {
            return {state_, context().create_buffer(how, bytes, values), count};
        } catch (common::error const&) { // each implementation has its own
            check_size(bytes);
            throw;
        }
    }

    [[gnu::cold, gnu::noinline]] void check_size(std::size_t bytes) const {
        if (bytes <= device().max_mem_alloc_size()) {
            return;
        }
        throw bounds_error(detail::joined({device().name(), " has no buffer of ", std::to_string(bytes),
                                           " bytes, but of at most ", std::to_string(device().max_mem_alloc_size()),
                                           ": use several arrays, or work on one part after another"}));
    }

    using basic_builder<Version>::state_;
};

/// `basic_session` of the default version.
using session = basic_session<default_version>;

} // namespace vorn::mero::easy
