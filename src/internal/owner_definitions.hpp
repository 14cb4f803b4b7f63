#pragma once

// The member definitions of `owner`. Before a source instantiates them for a kind, it says how OpenCL counts the kind:
//
//     template <> struct ownership<some_kind> : counted<version, block::clRetainX, block::clReleaseX> {
//         static constexpr char const* destructor_message = "...";
//     };

#include <nq/commands.hpp>
#include <vorn/mero/common/error.hpp>
#include <vorn/mero/internal/handle.hpp>

#include "internal/call.hpp"
#include "internal/log_failure.hpp"

#include <cstdint>

namespace vorn::mero::internal {

template <class Kind>
struct ownership;

/// Objects that OpenCL counts: the blocks of their retain and release entry points.
template <nq::capability Version, class Retain, class Release>
struct counted {
    static void retain(nq_call_handle* call_handle, auto* raw) {
        Retain block;
        auto& [object, status] = block;
        object = raw;
        call_checked(call_handle, nq::command_id<Version, Retain>, block);
    }

    static void release(nq_call_handle* call_handle, auto* raw) {
        Release block;
        auto& [object, status] = block;
        object = raw;
        call(call_handle, nq::command_id<Version, Release>, &block);
        if (block.status != 0) [[unlikely]] {
            throw common::bad_implementation("OpenCL release operations should never fail.  Complain to your vendor.");
        }
    }

    /// Whether the release succeeded.
    static bool try_release(nq_call_handle* call_handle, auto* raw) noexcept {
        Release block;
        auto& [object, status] = block;
        object = raw;
        return attempt(call_handle, nq::command_id<Version, Release>, block) == 0;
    }
};

/// Objects that OpenCL does not count.
struct uncounted {
    static constexpr char const* destructor_message = "";
    static void retain(nq_call_handle*, void*) noexcept {}
    static void release(nq_call_handle*, void*) noexcept {}
    static bool try_release(nq_call_handle*, void*) noexcept { return true; }
};

template <class Kind>
void retain(owner<Kind> const& object) {
    ownership<Kind>::retain(owner_access::call_handle(object).get(), owner_access::raw(object));
}

template <class Kind>
void release(owner<Kind> const& object) {
    if (auto* const raw = owner_access::raw(object)) {
        ownership<Kind>::release(owner_access::call_handle(object).get(), raw);
    }
}

// Retains before it takes the call handle, so that nothing is to be undone if that fails.
template <class Kind>
owner<Kind>::owner(nq::call_handle const& call_handle, raw_type* raw, typename Kind::create_reference)
    : call_handle_((retain(call_handle.get(), raw), call_handle)), raw_(raw) {}

template <class Kind>
void owner<Kind>::retain(nq_call_handle* call_handle, raw_type* raw) {
    ownership<Kind>::retain(call_handle, raw);
}

template <class Kind>
owner<Kind>& owner<Kind>::operator=(owner const& other) {
    if (this != &other) {
        internal::release(*this);
        raw_ = nullptr;
        retain(other.call_handle_.get(), other.raw_);
        call_handle_ = other.call_handle_;
        raw_ = other.raw_;
    }
    return *this;
}

template <class Kind>
void owner<Kind>::become_empty() noexcept {
    internal::release(*this);
    raw_ = nullptr;
    call_handle_.reset();
}

template <class Kind>
void owner<Kind>::release_and_close() noexcept {
    if (!ownership<Kind>::try_release(call_handle_.get(), raw_)) [[unlikely]] {
        log_failure(ownership<Kind>::destructor_message);
    }
    close();
}

template <class Kind>
void owner<Kind>::close() noexcept {
    call_handle_.~shared_ptr();
}

} // namespace vorn::mero::internal
