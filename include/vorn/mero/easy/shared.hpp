#pragma once

// Shared virtual memory; a program that uses it includes this header beside `vorn/mero/easy.hpp`.

#include <vorn/mero/easy/array.hpp>
#include <vorn/mero/easy/session.hpp>

#include <cstddef>
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace vorn::mero::easy {

/// How finely host and device share memory. A device that has one has those before it.
enum class grain {
    coarse,  ///< The host maps it before it looks.
    fine,    ///< The host uses it without mapping, while no command does.
    atomics, ///< The same, and atomic operations work across host and device meanwhile.
};

namespace detail {

/// Shared virtual memory of a session. Freed when the queue of the session has finished.
template <int Version>
class shared_block {
    static_assert(Version >= 200, "OpenCL has shared virtual memory since 2.0: use basic_session<200>");

public:
    shared_block(std::shared_ptr<session_state<Version>> state, std::size_t bytes, grain how)
        : state_(std::move(state)), address_(allocated(*state_, bytes, how)) {}

    shared_block(shared_block const&) = delete;
    shared_block& operator=(shared_block const&) = delete;
    ~shared_block() { free(*state_, address_); }

    void* address() const noexcept { return address_; }
    session_state<Version>& state() const noexcept { return *state_; }

    /// Throws `unsupported` if the device shares less finely, `std::bad_alloc` if there is no memory.
    static void* allocated(session_state<Version>& state, std::size_t bytes, grain how) {
        using flags = typename api<Version>::svm_mem_flags;
        auto const wanted = how == grain::coarse ? flags::read_write
                            : how == grain::fine ? flags::read_write | flags::fine_grain_buffer
                                                 : flags::read_write | flags::fine_grain_buffer | flags::atomics;
        void* const made = state.context.svm_allocate(wanted, bytes != 0 ? bytes : 1, 0);
        if (made == nullptr) {
            refuse(state.device, how);
        }
        return made;
    }

    /// Waits for the queue. If that fails, the memory stays: a command may still use it.
    static void free(session_state<Version>& state, void* address) noexcept {
        try {
            state.queue.finish();
            state.context.svm_free(address);
        } catch (std::exception const&) { // nothing can be done about it here
        }
    }

private:
    [[noreturn, gnu::cold, gnu::noinline]] static void refuse(typename api<Version>::device const& device, grain how) {
        if (!device.svm_coarse_grain_buffer_supported()) {
            throw unsupported(joined({device.name(), " has no shared virtual memory: use arrays, or choose a device "
                                                     "that has it"}));
        }
        if ((how != grain::coarse && !device.svm_fine_grain_buffer_supported()) ||
            (how == grain::atomics && !device.svm_atomics_supported())) {
            throw unsupported(joined({device.name(), " does not share memory as finely: use ez::grain::coarse and map "
                                                     "the memory"}));
        }
        throw std::bad_alloc();
    }

    std::shared_ptr<session_state<Version>> state_;
    void* address_;
};

} // namespace detail

/// Elements of shared virtual memory in the host's reach; `T` is const for those that are only read. The destructor
/// gives them back to the device; it drops a failure, which later commands on the memory then meet.
template <class T, int Version>
class [[nodiscard]] mapped_shared : public element_range<T> {
public:
    /// The flags of the version.
    using flags_type = typename api<Version>::map_flags;

    /// Blocks until the elements are there; the `map` functions of shared memory call it.
    mapped_shared(std::shared_ptr<detail::shared_block<Version>> block, flags_type how, std::size_t count,
                  waits<Version> const& earlier)
        : element_range<T>(static_cast<T*>(block->address()), count), block_(std::move(block)) {
        if (count != 0) {
            block_->state().enqueue_and_wait(
                typename api<Version>::svm_map(earlier.size() == 0, how, block_->address(), count * sizeof(T)),
                earlier);
        }
    }

    /// `other` is empty afterwards.
    mapped_shared(mapped_shared&& other) noexcept
        : element_range<T>(std::exchange(static_cast<element_range<T>&>(other), element_range<T>(nullptr, 0))),
          block_(std::move(other.block_)) {}
    mapped_shared(mapped_shared const&) = delete;
    mapped_shared& operator=(mapped_shared const&) = delete;
    mapped_shared& operator=(mapped_shared&&) = delete;

    /// Gives the elements back, without blocking.
    ~mapped_shared() {
        if (block_ && this->size() != 0) {
            try {
                block_->state().queue.enqueue_command_without_event(
                    typename api<Version>::svm_unmap(block_->address()));
            } catch (std::exception const&) { // nothing can be done about it here
            }
        }
    }

private:
    std::shared_ptr<detail::shared_block<Version>> block_;
};

/// Elements that host and device reach at one address, so that they may hold pointers to each other. Move-only.
///
///     ez::basic_session<200> gpu(ez::needs::svm);
///     ez::shared<node> nodes(gpu, 1000);
///     link(nodes.map_write());                      // the host reaches them until the result ends
///     walk(ez::range(1000), nodes);                 // as an argument it is a pointer to the first
///
/// What a kernel reaches only through pointers in memory is named to it by `kernel.exact().set_svm_pointers`. The
/// destructor finishes the queue of the session; finish other queues before.
template <class T, int Version = 200>
class basic_shared {
    static_assert(Version >= 200, "OpenCL has shared virtual memory since 2.0: use basic_session<200>");
    static_assert(std::is_trivially_copyable<T>::value, "host and device see the same bytes");
    static_assert(alignof(T) <= 128, "OpenCL aligns shared memory as its largest type, to 128 bytes");

public:
    /// @{
    /// The types of its elements, and what its members take and return.
    using value_type = T;
    using event_type = basic_event<Version>;
    using waits_type = waits<Version>;
    /// @}

    /// `count` elements that nothing has been written to. Throws `unsupported` if the device lacks the grain,
    /// `std::bad_alloc` if there is no memory, `bounds_error` if their size in bytes is no
    /// number of the host.
    basic_shared(basic_session<Version> const& owner, std::size_t count, grain how = grain::coarse)
        : block_(
              std::make_shared<detail::shared_block<Version>>(owner.state(), detail::product(count, sizeof(T)), how)),
          size_(count) {}

    /// `other` is empty afterwards.
    basic_shared(basic_shared&& other) noexcept
        : block_(std::move(other.block_)), size_(std::exchange(other.size_, 0)) {}
    /// Frees its own elements as the destructor does. `other` is empty afterwards.
    basic_shared& operator=(basic_shared&& other) noexcept {
        block_ = std::move(other.block_);
        size_ = std::exchange(other.size_, 0);
        return *this;
    }
    basic_shared(basic_shared const&) = delete;
    basic_shared& operator=(basic_shared const&) = delete;
    ~basic_shared() = default;

    /// The number of elements.
    [[nodiscard]] std::size_t size() const noexcept { return size_; }

    /// The address of the first element, of host and device. With coarse grain the host may use what is there only
    /// while it is mapped.
    [[nodiscard]] T* data() const noexcept { return static_cast<T*>(block_ ? block_->address() : nullptr); }

    /// The raw handle of its context, which kernels must share; null if it was moved from.
    [[nodiscard]] _nq_cl_context* raw_context() const noexcept {
        return block_ ? detail::raw_of(block_->state().context) : nullptr;
    }

    /// A copy of all elements. Blocks.
    [[nodiscard]] std::vector<T> read(waits_type const& earlier = {}) const {
        std::vector<T> values(size_);
        static_cast<void>(block());
        if (size_ != 0) {
            block_->state().enqueue_and_wait(copy(values.data(), data(), size_, earlier), earlier);
        }
        return values;
    }

    /// Copies the elements of a list to the front. Blocks. Throws `bounds_error` if there are too many.
    void write(std::vector<T> const& values, waits_type const& earlier = {}) {
        static_cast<void>(block());
        detail::check_bounds(0, values.size(), size_);
        if (!values.empty()) {
            block_->state().enqueue_and_wait(copy(data(), values.data(), values.size(), earlier), earlier);
        }
    }

    /// Sets every element. Does not block.
    event_type fill(T const& value, waits_type const& earlier = {}) {
        static_assert(sizeof(T) <= 128 && (sizeof(T) & (sizeof(T) - 1)) == 0,
                      "OpenCL fills with patterns of 1, 2, 4, ... 128 bytes");
        using fill_svm = typename api<Version>::template fill_svm<T>;
        return size_ == 0 ? block()->state().enqueue_nothing(earlier)
                          : block()->state().enqueue(fill_svm(data(), value, size_), earlier);
    }

    /// Gives the host the elements, for reading and writing, until the result is destroyed; kernels must not use them
    /// meanwhile. Blocks until they are there. Needless with fine grain, once the commands before have ended.
    mapped_shared<T, Version> map(waits_type const& earlier = {}) {
        return {block(), flags::read | flags::write, size_, earlier};
    }
    /// The same for reading only; kernels may read the elements meanwhile.
    mapped_shared<T const, Version> map_read(waits_type const& earlier = {}) const {
        return {block(), flags::read, size_, earlier};
    }
    /// The same for writing all of the elements: what was there may be gone.
    mapped_shared<T, Version> map_write(waits_type const& earlier = {}) {
        return {block(), flags::write_invalidate_region, size_, earlier};
    }

private:
    using flags = typename api<Version>::map_flags;

    std::shared_ptr<detail::shared_block<Version>> const& block() const {
        if (!block_) {
            detail::refuse_moved_from();
        }
        return block_;
    }

    static typename api<Version>::svm_memcpy copy(void* to, void const* from, std::size_t count,
                                                  waits_type const& earlier) {
        return {earlier.size() == 0 ? 1U : 0U, to, from, count * sizeof(T)};
    }

    std::shared_ptr<detail::shared_block<Version>> block_;
    std::size_t size_;
};

/// `basic_shared` of OpenCL 2.0, the first version that has it.
template <class T>
using shared = basic_shared<T>;

/// Allocates for containers in shared virtual memory of fine grain: host and device use their elements without mapping,
/// in turns. A kernel takes a `std::vector` of it as a pointer to the first element.
///
///     ez::basic_session<200> gpu(ez::needs::svm);
///     std::vector<float, ez::shared_allocator<float>> values(1000, 1.0F, ez::shared_allocator<float>(gpu));
///     grow(ez::range(1000), values, 2.0F).wait();
///     std::printf("%g\n", values[0]);
///
/// A container that frees memory, as when it grows, finishes the queue of the session first. Throws `unsupported` if
/// the device has no fine grain, `std::bad_alloc` if there is no memory.
template <class T, int Version = 200>
class basic_shared_allocator {
    static_assert(alignof(T) <= 128, "OpenCL aligns shared memory as its largest type, to 128 bytes");

public:
    /// The type of an element.
    using value_type = T;

    /// The same for elements of another type.
    template <class Other>
    struct rebind {
        /// The allocator for them.
        using other = basic_shared_allocator<Other, Version>;
    };

    /// In the context of a session.
    explicit basic_shared_allocator(basic_session<Version> const& owner) : state_(owner.state()) {}

    /// @{
    /// Of the same context; a move as well, since the container that was moved from may be filled anew.
    basic_shared_allocator(basic_shared_allocator const& other) noexcept = default;
    basic_shared_allocator& operator=(basic_shared_allocator const& other) noexcept = default;
    /// @}
    ~basic_shared_allocator() = default;

    /// For elements of another type in the same context.
    template <class Other>
    basic_shared_allocator(basic_shared_allocator<Other, Version> const& other) noexcept : state_(other.state_) {}

    /// Memory for `count` elements.
    [[nodiscard]] T* allocate(std::size_t count) {
        if (count > static_cast<std::size_t>(-1) / sizeof(T)) {
            throw std::bad_alloc();
        }
        return static_cast<T*>(detail::shared_block<Version>::allocated(*state_, count * sizeof(T), grain::fine));
    }

    /// Finishes the queue, then frees.
    void deallocate(T* memory, std::size_t /*count*/) noexcept { detail::shared_block<Version>::free(*state_, memory); }

    /// The raw handle of the context, which kernels must share.
    [[nodiscard]] _nq_cl_context* raw_context() const noexcept { return detail::raw_of(state_->context); }

    /// Whether one may free what the other allocated.
    template <class Other>
    bool operator==(basic_shared_allocator<Other, Version> const& other) const noexcept {
        return state_ == other.state_;
    }
    /// The contrary.
    template <class Other>
    bool operator!=(basic_shared_allocator<Other, Version> const& other) const noexcept {
        return !(*this == other);
    }

private:
    template <class, int>
    friend class basic_shared_allocator;

    std::shared_ptr<detail::session_state<Version>> state_;
};

/// `basic_shared_allocator` of OpenCL 2.0, the first version that has it.
template <class T>
using shared_allocator = basic_shared_allocator<T>;

/// Shared memory is memory to a kernel.
template <class T, int Version>
struct argument_traits<basic_shared<T, Version>, Version> {
    static void check(argument_place const& at, basic_shared<T, Version> const&) {
        detail::check_memory(at, detail::argument_kind::pointer, detail::shape<T>::value);
    }
    static void set(typename api<Version>::kernel& target, unsigned index, basic_shared<T, Version> const& memory) {
        target.set_svm_argument(index, memory.data());
    }
    static _nq_cl_context* context(basic_shared<T, Version> const& memory) noexcept { return memory.raw_context(); }
    static std::string text(basic_shared<T, Version> const& memory) {
        return detail::joined(
            {"shared memory of ", std::to_string(memory.size()), " elements of ", std::to_string(sizeof(T)), " bytes"});
    }
};

/// So is a list in shared memory.
template <class T, int Version>
struct argument_traits<std::vector<T, basic_shared_allocator<T, Version>>, Version> {
    using list = std::vector<T, basic_shared_allocator<T, Version>>;

    static void check(argument_place const& at, list const&) {
        detail::check_memory(at, detail::argument_kind::pointer, detail::shape<T>::value);
    }
    static void set(typename api<Version>::kernel& target, unsigned index, list const& values) {
        target.set_svm_argument(index, values.data());
    }
    static _nq_cl_context* context(list const& values) noexcept { return values.get_allocator().raw_context(); }
    static std::string text(list const& values) {
        return detail::joined(
            {"a shared list of ", std::to_string(values.size()), " elements of ", std::to_string(sizeof(T)), " bytes"});
    }
};

} // namespace vorn::mero::easy
