#pragma once

// Ownership of OpenCL objects: the base of `device`, `buffer` and every other object class.

#include <nq/call_handle.hpp>
#include <vorn/mero/common/export.hpp>

#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>

namespace vorn::mero::internal {

/// A shared call handle and one reference to an OpenCL object.
///
///     cl::program first = context.create_program_from_source(text);
///     cl::program second = first;            // retains: both name one OpenCL program
///     cl::program third = std::move(second); // no call; `second` is empty
///     second = third;                        // retains again
///
/// Copying retains, destruction releases, moving makes no call. An object that was moved from is empty: its raw handle
/// is null. It may be destroyed, assigned to or moved from; any member that makes a call throws
/// `nq::unrecoverable_error`. As an argument it passes a null handle to OpenCL. OpenCL refuses it with the status for
/// such an object, such as `common::invalid_mem_object`; for the buffer argument of a kernel it means the null pointer.
/// PoCL also accepts null images and samplers, and crashes at the launch.
///
/// An object keeps its call handle open. It does not keep alive the objects that it was made from; OpenCL does as far
/// as needed. Objects may be static if the OpenCL implementation allows calls at process exit.
///
/// `Kind` names the raw handle's type and the two constructor tags of an OpenCL version. OpenCL does not count
/// references to platforms, and before 1.2 to devices: for them no operation here makes a call.
///
/// Failing calls throw the exceptions of `nq` and `vorn::mero::common`. Different threads may use distinct objects,
/// even of the same OpenCL object. No thread may assign or destroy an object that another uses.
template <class Kind>
class VORN_MERO_EXPORT_TEMPLATE owner {
public:
    /// What the raw handle points to.
    using raw_type = typename Kind::raw_type;

    /// Adopts a reference that the caller holds. Makes no call.
    owner(nq::call_handle const& call_handle, raw_type* raw, typename Kind::take_ownership) noexcept
        : call_handle_(call_handle), raw_(raw) {}

    /// Retains: the caller keeps its own reference. If that fails, nothing is released.
    owner(nq::call_handle const& call_handle, raw_type* raw, typename Kind::create_reference);

    /// Retains. If that fails, throws and leaves `other` unchanged.
    owner(owner const& other)
        : call_handle_((retain(other.call_handle_.get(), other.raw_), other.call_handle_)), raw_(other.raw_) {}

    /// Makes no call. `other` is empty afterwards.
    owner(owner&& other) noexcept : call_handle_(), raw_(std::exchange(other.raw_, nullptr)) {
        call_handle_.swap(other.call_handle_);
    }

    /// Releases its own reference, then retains. If the release fails, nothing has changed; if the retain fails, this
    /// object has a null raw handle and its old call handle.
    owner& operator=(owner const& other);

    /// Releases its own reference; if that fails, the process ends. Assigning an object to itself empties it.
    owner& operator=(owner&& other) noexcept {
        if (raw_ != nullptr || has_call_handle()) {
            become_empty();
        }
        call_handle_.swap(other.call_handle_);
        raw_ = other.raw_;
        // `other` is empty already. Said last, this spares programs the code that would ask when they destroy it.
        ::new (static_cast<void*>(&other.call_handle_)) nq::call_handle();
        other.raw_ = nullptr;
        return *this;
    }

    /// Releases the reference. If that fails, logs at error level (see `internal::log_singleton`) and continues.
    ~owner() {
        if (raw_ != nullptr) {
            release_and_close();
        } else if (has_call_handle()) {
            close();
        }
    }

protected:
    /// Swaps the references, but not the call handles.
    void swap_reference(owner& other) noexcept { std::swap(raw_, other.raw_); }

private:
    friend struct owner_access;

    static void retain(nq_call_handle* call_handle, raw_type* raw);

    // A null call handle may share a count too.
    bool has_call_handle() const noexcept { return call_handle_.use_count() != 0; }

    [[gnu::cold]] void become_empty() noexcept;

    // These two end the lifetime of the call handle.
    void release_and_close() noexcept;
    void close() noexcept;

    // An empty call handle needs no destructor. The union keeps that of the others out of the code of programs.
    union {
        nq::call_handle call_handle_;
    };
    raw_type* raw_;
};

/// The library's own access to an owner. Programs use the functions of `raw`.
struct owner_access {
    /// The raw handle, null if the object was moved from.
    template <class Kind>
    static typename Kind::raw_type* raw(owner<Kind> const& object) noexcept {
        return object.raw_;
    }

    /// Where the raw handle is.
    template <class Kind>
    static typename Kind::raw_type** place(owner<Kind>& object) noexcept {
        return &object.raw_;
    }

    /// The call handle, null if the object was moved from.
    template <class Kind>
    static nq::call_handle const& call_handle(owner<Kind> const& object) noexcept {
        return object.call_handle_;
    }
};

/// An owner that can be compared: its identity is the call handle and the raw handle together. Base of every object
/// class except memory objects.
///
///     std::unordered_map<cl::device, cl::context> contexts; // or std::map
template <class Kind>
class handle : public owner<Kind> {
public:
    using owner<Kind>::owner;

    /// Whether both name the same OpenCL object through the same call handle. Makes no call. Devices of two calls of
    /// `get_all_devices` are equal if libnq gives them the same call handle, as the bridge does.
    bool operator==(handle const& other) const noexcept {
        return call_handle_address() == other.call_handle_address() && raw_address() == other.raw_address();
    }

    /// Orders by call handle, then by raw handle, both as addresses: an order for containers, different in each run.
    bool operator<(handle const& other) const noexcept {
        return call_handle_address() != other.call_handle_address()
                   ? call_handle_address() < other.call_handle_address()
                   : raw_address() < other.raw_address();
    }

    /// Equal for equal objects, 0 for an empty one.
    [[nodiscard]] std::size_t hash() const noexcept { return call_handle_address() ^ raw_address(); }

private:
    std::uintptr_t call_handle_address() const noexcept {
        return reinterpret_cast<std::uintptr_t>(owner_access::call_handle(*this).get());
    }

    std::uintptr_t raw_address() const noexcept { return reinterpret_cast<std::uintptr_t>(owner_access::raw(*this)); }
};

/// Base of `std::hash` for the classes that derive from a `handle`.
struct handle_hash {
    /// The same as `handle::hash`.
    template <class Kind>
    [[nodiscard]] std::size_t operator()(handle<Kind> const& object) const noexcept {
        return object.hash();
    }
};

} // namespace vorn::mero::internal
