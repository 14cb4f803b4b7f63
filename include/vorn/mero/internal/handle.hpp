#pragma once

// Ownership of OpenCL objects, written once for every class. Programs meet it as the base of `device`, `buffer` and the
// rest.

#include <nq/call_handle.hpp>
#include <vorn/mero/common/export.hpp>

#include <cstddef>
#include <cstdint>
#include <utility>

namespace vorn::mero::internal {

/// A shared call handle and one reference to an OpenCL object.
///
///     cl::program first = context.create_program_from_source(text);
///     cl::program second = first;            // retains: both name one OpenCL program
///     cl::program third = std::move(second); // no call; `second` is empty
///     second = third;                        // retains again
///
/// Copying retains, destruction releases, moving transfers without a call. An object that was moved from is empty: its
/// raw handle is null, and it may be destroyed, assigned to or moved from. A member that makes a call throws
/// `nq::unrecoverable_error`. As an argument its null handle goes to OpenCL, which refuses it with the status for such
/// an object (`common::invalid_mem_object`, say) or, as the buffer argument of a kernel, takes it for a null pointer;
/// PoCL takes null images and samplers too, and crashes at the launch.
///
/// An object does not keep alive what it was made from: OpenCL does, as far as it needs it. It does keep the call
/// handle open. Objects may be kept in containers, and in objects of static lifetime as far as the OpenCL
/// implementation allows calls at process exit.
///
/// `Kind` names the raw handle's type and the two constructor tags of an OpenCL version. Platforms, and devices before
/// OpenCL 1.2, are not counted: for them no operation here makes a call.
///
/// Failing calls throw the exceptions of `nq` and `vorn::mero::common`. Distinct objects may be used by different
/// threads, also when they name the same OpenCL object; one object must not be assigned or destroyed while another
/// thread uses it.
template <class Kind>
class VORN_MERO_EXPORT owner {
public:
    using raw_type = typename Kind::raw_type;

    /// Adopts a reference that the caller holds; makes no call.
    owner(nq::call_handle const& call_handle, raw_type* raw, typename Kind::take_ownership) noexcept
        : call_handle_(call_handle), raw_(raw) {}

    /// Retains: the caller keeps its own reference. When that fails nothing is released.
    owner(nq::call_handle const& call_handle, raw_type* raw, typename Kind::create_reference);

    /// Retains; throws when that fails, and `other` stays as it is.
    owner(owner const& other);

    /// Makes no call; `other` is empty afterwards.
    owner(owner&& other) noexcept
        : call_handle_(std::move(other.call_handle_)), raw_(std::exchange(other.raw_, nullptr)) {}

    /// Releases the own reference first; when that fails nothing has changed, when the retain fails this object is
    /// empty but for its call handle.
    owner& operator=(owner const& other);

    /// Releases the own reference. A release that fails ends the process. Assigning an object to itself empties it.
    owner& operator=(owner&& other) noexcept;

    /// A release that fails is logged at error level (see `internal::log_singleton`) and otherwise passed over.
    ~owner();

protected:
    /// Exchanges the references, not the call handles.
    void swap_reference(owner& other) noexcept { std::swap(raw_, other.raw_); }

private:
    friend struct owner_access;

    nq::call_handle call_handle_;
    raw_type* raw_;
};

/// The library's own way into an owner; programs use the functions of `raw`.
struct owner_access {
    template <class Kind>
    static typename Kind::raw_type* raw(owner<Kind> const& object) noexcept {
        return object.raw_;
    }

    template <class Kind>
    static nq::call_handle const& call_handle(owner<Kind> const& object) noexcept {
        return object.call_handle_;
    }
};

/// An owner with an identity: the call handle and the raw handle together. Base of every object class but the memory
/// objects.
///
///     struct by_hash {
///         std::size_t operator()(cl::device const& each) const { return each.hash(); }
///     };
///     std::unordered_map<cl::device, cl::context, by_hash> contexts; // std::map needs no such thing
template <class Kind>
class handle : public owner<Kind> {
public:
    using owner<Kind>::owner;

    /// Whether both name the same OpenCL object through the same call handle. Makes no call. Objects that two calls of
    /// `get_all_devices` found are unequal, since each call opens call handles of its own.
    bool operator==(handle const& other) const noexcept {
        return call_handle_address() == other.call_handle_address() && raw_address() == other.raw_address();
    }

    /// Orders by call handle, then by raw handle, both as addresses: an order for containers, not the same from run to
    /// run.
    bool operator<(handle const& other) const noexcept {
        return call_handle_address() != other.call_handle_address()
                   ? call_handle_address() < other.call_handle_address()
                   : raw_address() < other.raw_address();
    }

    /// Equal for equal objects, 0 for an empty one.
    std::size_t hash() const noexcept { return call_handle_address() ^ raw_address(); }

private:
    std::uintptr_t call_handle_address() const noexcept {
        return reinterpret_cast<std::uintptr_t>(owner_access::call_handle(*this).get());
    }

    std::uintptr_t raw_address() const noexcept { return reinterpret_cast<std::uintptr_t>(owner_access::raw(*this)); }
};

} // namespace vorn::mero::internal
