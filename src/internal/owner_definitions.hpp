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
        Retain block{raw, 0};
        call_checked(call_handle, nq::command_id<Version, Retain>, block);
    }

    static void release(nq_call_handle* call_handle, auto* raw) {
        Release block{raw, 0};
        call(call_handle, nq::command_id<Version, Release>, &block);
        if (block.status != 0) [[unlikely]] {
            throw common::bad_implementation("OpenCL release operations should never fail.  Complain to your vendor.");
        }
    }
};

/// Objects that OpenCL does not count.
struct uncounted {
    static constexpr char const* destructor_message = "";
    static void retain(nq_call_handle*, void*) noexcept {}
    static void release(nq_call_handle*, void*) noexcept {}
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

template <class Kind>
owner<Kind>::owner(nq::call_handle const& call_handle, raw_type* raw, typename Kind::create_reference)
    : call_handle_(call_handle), raw_(raw) {
    retain(*this);
}

template <class Kind>
owner<Kind>::owner(owner const& other) : call_handle_(other.call_handle_), raw_(other.raw_) {
    retain(*this);
}

template <class Kind>
owner<Kind>& owner<Kind>::operator=(owner const& other) {
    if (this != &other) {
        release(*this);
        raw_ = nullptr;
        retain(other);
        call_handle_ = other.call_handle_;
        raw_ = other.raw_;
    }
    return *this;
}

template <class Kind>
owner<Kind>& owner<Kind>::operator=(owner&& other) noexcept {
    release(*this);
    call_handle_ = std::move(other.call_handle_);
    raw_ = other.raw_;
    other.call_handle_.reset();
    other.raw_ = nullptr;
    return *this;
}

template <class Kind>
owner<Kind>::~owner() {
    try {
        release(*this);
    } catch (...) {
        log_failure(ownership<Kind>::destructor_message);
    }
}

} // namespace vorn::mero::internal
