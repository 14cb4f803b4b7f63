#pragma once

/// Objects of other libraries here, and objects of this layer and the exact interface there, by OpenCL's own handles:
///
///     auto gpu = ez::session::on_device_of(their_context);                      // in it, with a queue of its own
///     auto same = ez::from_cl<ez::session>(their_queue, ez::retain);            // on a queue that there is
///     auto data = ez::from_cl<ez::array<float>>(their_memory, gpu, ez::retain); // they keep their reference
///     auto done = ez::from_cl<ez::event>(their_event, gpu, ez::take_over);      // their reference is ours now
///     their_sum(ez::to_cl(gpu.queue()), ez::to_cl(data), data.size());          // borrowed: valid while `data` lives
///
/// This header alone includes OpenCL's; programs include it by name. It calls OpenCL through libnq, and needs no other
/// library to link.
///
/// A handle means the same on both sides where libnq is the bridge and the other library uses the same OpenCL
/// implementation in the process: see "Other libraries" in the guide.

#include <vorn/mero/easy/image.hpp>
#include <vorn/mero/easy/session.hpp>
#include <vorn/mero/internal/lifetimebound.hpp>

#ifndef CL_TARGET_OPENCL_VERSION
#define CL_TARGET_OPENCL_VERSION 300
#endif
#include <CL/cl.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace vorn::mero::easy {

/// For `from_cl`: the caller keeps its reference, and the object takes one more.
struct retain_t {};
/// The same as an argument.
inline constexpr retain_t retain{};

/// For `from_cl`: the object gets the caller's reference, and releases it in the end. Where `from_cl` throws, the
/// caller keeps it.
struct take_over_t {};
/// The same as an argument.
inline constexpr take_over_t take_over{};

namespace detail {

// The types of a handle on the two sides.
cl_platform_id cl_side(_nq_cl_platform_id* raw);
cl_device_id cl_side(_nq_cl_device_id* raw);
cl_context cl_side(_nq_cl_context* raw);
cl_command_queue cl_side(_nq_cl_command_queue* raw);
cl_mem cl_side(_nq_cl_mem* raw);
cl_program cl_side(_nq_cl_program* raw);
cl_kernel cl_side(_nq_cl_kernel* raw);
cl_event cl_side(_nq_cl_event* raw);
cl_sampler cl_side(_nq_cl_sampler* raw);
_nq_cl_platform_id* raw_side(cl_platform_id handle);
_nq_cl_device_id* raw_side(cl_device_id handle);
_nq_cl_context* raw_side(cl_context handle);
_nq_cl_command_queue* raw_side(cl_command_queue handle);
_nq_cl_mem* raw_side(cl_mem handle);
_nq_cl_program* raw_side(cl_program handle);
_nq_cl_kernel* raw_side(cl_kernel handle);
_nq_cl_event* raw_side(cl_event handle);
_nq_cl_sampler* raw_side(cl_sampler handle);

/// Handles that OpenCL keeps until the process ends, whatever objects go.
template <class Raw>
inline constexpr bool is_lasting =
    std::is_same<Raw, _nq_cl_platform_id>::value || std::is_same<Raw, _nq_cl_device_id>::value;

template <class Kind>
Kind kind_of(internal::owner<Kind> const& object);

/// Says how an object of the exact interface is counted; only for those.
template <class Exact>
using kind_t = decltype(kind_of(std::declval<Exact const&>()));

template <class Object, class = void>
inline constexpr bool is_exact = false;
template <class Object>
inline constexpr bool is_exact<Object, std::void_t<kind_t<Object>>> = true;

} // namespace detail

/// OpenCL's handle of a raw one.
template <class Raw>
[[nodiscard]] auto to_cl(Raw* raw) noexcept -> decltype(detail::cl_side(raw)) {
    return reinterpret_cast<decltype(detail::cl_side(raw))>(raw);
}

/// OpenCL's handle of an object of the exact interface, borrowed: valid while the object or another reference lives.
/// Null if the object was moved from.
template <class Kind, std::enable_if_t<!detail::is_lasting<typename Kind::raw_type>, int> = 0>
[[nodiscard]] auto to_cl(internal::owner<Kind> const& object VORN_MERO_LIFETIMEBOUND) noexcept {
    return to_cl(internal::owner_access::raw(object));
}
/// The same of a platform or device.
template <class Kind, std::enable_if_t<detail::is_lasting<typename Kind::raw_type>, int> = 0>
[[nodiscard]] auto to_cl(internal::owner<Kind> const& object) noexcept {
    return to_cl(internal::owner_access::raw(object));
}

/// The same of an object of this layer: an array, program, kernel, event and so on. Of a session say which:
/// `to_cl(gpu.queue())`, `to_cl(gpu.context())`, `to_cl(gpu.device())`.
template <class Object>
[[nodiscard]] auto to_cl(Object const& object VORN_MERO_LIFETIMEBOUND) noexcept -> decltype(to_cl(object.exact())) {
    return to_cl(object.exact());
}

/// The raw handle of OpenCL's, with no reference, as for a wait list of the exact interface.
template <class Handle>
[[nodiscard]] auto from_cl(Handle handle) noexcept -> decltype(detail::raw_side(handle)) {
    return reinterpret_cast<decltype(detail::raw_side(handle))>(handle);
}

namespace detail {

template <class Exact>
Exact owning(nq::call_handle const& where, typename kind_t<Exact>::raw_type* raw, take_over_t) {
    return Exact(where, raw, typename kind_t<Exact>::take_ownership{});
}

// A kernel cannot be made to retain, its base can.
template <class Exact>
Exact owning(nq::call_handle const& where, typename kind_t<Exact>::raw_type* raw, retain_t) {
    internal::owner<kind_t<Exact>> counted(where, raw, typename kind_t<Exact>::create_reference{});
    auto made = owning<Exact>(where, raw, take_over);
    *internal::owner_access::place(counted) = nullptr;
    return made;
}

/// Ends the caller's reference, now that the object that takes it over has one.
template <class Exact>
void end_reference(nq::call_handle const& where, typename kind_t<Exact>::raw_type* raw, take_over_t) {
    static_cast<void>(owning<Exact>(where, raw, take_over));
}
template <class Exact>
void end_reference(nq::call_handle const& /*where*/, typename kind_t<Exact>::raw_type* /*raw*/, retain_t) noexcept {}

/// The device of a handle. OpenCL finds what belongs to a handle by itself, so any device of the process can ask.
template <int Version>
typename api<Version>::device device_of(std::vector<typename api<Version>::device> const& devices,
                                        _nq_cl_device_id* raw) {
    using exact = typename api<Version>::device;
    for (exact const& each : devices) {
        if (raw_of(each) == raw) {
            return each;
        }
    }
    if constexpr (Version >= 120) {
        try {
            auto const part = owning<exact>(internal::owner_access::call_handle(devices.front()), raw, retain);
            if (!part.is_root_device()) {
                auto const whole = device_of<Version>(devices, raw_of(part.parent_device()));
                return owning<exact>(internal::owner_access::call_handle(whole), raw, retain);
            }
        } catch (common::invalid_device const&) { // of another OpenCL
        }
    }
    throw no_device(
        joined({"libnq does not offer the device of this handle for OpenCL ", std::to_string(Version / 100), ".",
                std::to_string(Version / 10 % 10),
                ". It must have that version, and libnq must use the OpenCL that made the handle. There are:\n",
                list_devices<Version>()}));
}

template <int Version>
std::vector<typename api<Version>::device> devices_to_ask() {
    auto devices = api<Version>::get_all_devices();
    if (devices.empty()) {
        devices.push_back(find_device<Version>()); // throws, and says why
    }
    return devices;
}

template <class Handle>
void check_handle(Handle handle) {
    if (handle == nullptr) {
        throw argument_error("The handle from another library is null: look at what that library says");
    }
}

/// Makes an object of this layer of one of the exact interface.
template <class Object>
struct adoption {
    template <int Version>
    static Object make(basic_session<Version> const& gpu, typename Object::exact_type exact) {
        if constexpr (std::is_constructible<Object, typename Object::exact_type>::value) {
            return Object(std::move(exact));
        } else {
            return Object(gpu.state(), std::move(exact));
        }
    }
};

template <int Version>
void check_context(basic_session<Version> const& gpu, typename api<Version>::memory_object const& exact) {
    if (raw_of(exact.get_context()) != raw_of(gpu.context())) {
        throw argument_error("The memory from another library belongs to another context than the session: make the "
                             "session by `on_device_of(context)`");
    }
}

template <class T, int Version>
struct adoption<basic_array<T, Version>> {
    static basic_array<T, Version> make(basic_session<Version> const& gpu, typename api<Version>::buffer exact) {
        check_context(gpu, exact);
        std::size_t const size = exact.size() / sizeof(T);
        bool const is_part = is_sub_buffer(exact);
        return {gpu.state(), std::move(exact), size, is_part};
    }

private:
    static bool is_sub_buffer(typename api<Version>::buffer const& exact) {
        nq::block::clGetMemObjectInfo block;
        _nq_cl_mem* whole = nullptr;
        block.memobj = raw_of(exact);
        block.param_name = 0x1107; // CL_MEM_ASSOCIATED_MEMOBJECT, since OpenCL 1.1
        block.param_value_size = sizeof whole;
        block.param_value = &whole;
        block.param_value_size_ret = nullptr;
        if constexpr (Version >= 110) {
            perform<Version>(exact, block);
        }
        return whole != nullptr;
    }
};

template <class Format, image_kind Kind, int Version>
struct adoption<basic_image<Format, Kind, Version>> {
    using made = basic_image<Format, Kind, Version>;

    static made make(basic_session<Version> const& gpu, typename made::exact_type exact) {
        check_context(gpu, exact);
        auto const format = exact.get_image_format();
        auto const order = static_cast<std::uint32_t>(format.channel_order);
        auto const type = static_cast<std::uint32_t>(format.channel_data_type);
        if (order != Format::order || type != Format::type) {
            throw argument_error(joined({"The image from another library has the format ", format_name(order, type),
                                         ", and not ", format_name(Format::order, Format::type)}));
        }
        typename made::size_type size{exact.width(), exact.height(), exact.depth()};
        if constexpr (Kind == image_kind::one_array || Kind == image_kind::two_array) {
            size[Kind == image_kind::one_array ? 1 : 2] = exact.array_size();
        }
        for (std::size_t& each : size) {
            each = each != 0 ? each : 1; // directions that the image lacks
        }
        return made(gpu.state(), std::move(exact), size);
    }
};

/// A session that `session::on_device_of` makes.
template <int Version>
basic_session<Version> session_in(adopted_as<Version>, cl_context foreign, cl_device_id wanted = nullptr) {
    using exact_api = api<Version>;
    check_handle(foreign);
    auto const devices = devices_to_ask<Version>();
    auto const& any = internal::owner_access::call_handle(devices.front());
    auto const first = owning<typename exact_api::context>(any, from_cl(foreign), retain).get_devices().front();
    auto device = device_of<Version>(devices, wanted != nullptr ? from_cl(wanted) : raw_of(first));
    auto context =
        owning<typename exact_api::context>(internal::owner_access::call_handle(device), from_cl(foreign), retain);
    return basic_session<Version>(std::move(device), std::move(context));
}

template <int Version, class Ownership>
basic_session<Version> session_on(cl_command_queue foreign, Ownership ownership) {
    using exact_api = api<Version>;
    check_handle(foreign);
    auto const devices = devices_to_ask<Version>();
    auto const& any = internal::owner_access::call_handle(devices.front());
    auto const asked = owning<typename exact_api::host_queue>(any, from_cl(foreign), retain);
    auto device = device_of<Version>(devices, raw_of(asked.get_device()));
    auto const& where = internal::owner_access::call_handle(device);
    auto context = owning<typename exact_api::context>(where, raw_of(asked.get_context()), retain);
    auto queue = owning<typename exact_api::host_queue>(where, from_cl(foreign), retain);
    basic_session<Version> made(device, std::move(context), std::move(queue));
    end_reference<typename exact_api::host_queue>(where, from_cl(foreign), ownership);
    return made;
}

} // namespace detail

/// An object of the exact interface from a handle of its kind, which is not checked. `where` is a session, or any
/// object of the exact interface on the same device. Throws `argument_error` for a null handle.
///
///     auto buffer = ez::from_cl<vorn::mero::opencl_1_2::buffer>(their_memory, gpu.context(), ez::retain);
template <class Object, class Handle, class Kind, class Ownership, std::enable_if_t<detail::is_exact<Object>, int> = 0>
[[nodiscard]] Object from_cl(Handle handle, internal::owner<Kind> const& where, Ownership ownership) {
    static_assert(std::is_same<decltype(detail::raw_side(handle)), typename detail::kind_t<Object>::raw_type*>::value,
                  "a handle of this type names no such object");
    static_assert(std::is_same<Ownership, retain_t>::value || std::is_same<Ownership, take_over_t>::value,
                  "say ez::retain, if the caller keeps its reference, or ez::take_over");
    detail::check_handle(handle);
    return detail::owning<Object>(internal::owner_access::call_handle(where), from_cl(handle), ownership);
}
/// The same, on the device of a session.
template <class Object, class Handle, int Version, class Ownership, std::enable_if_t<detail::is_exact<Object>, int> = 0>
[[nodiscard]] Object from_cl(Handle handle, basic_session<Version> const& where, Ownership ownership) {
    return from_cl<Object>(handle, where.context(), ownership);
}

/// An object of this layer from a handle: an array of as many elements as the memory holds, a program (which must be
/// built), a kernel, an event. Commands on it go to the queue of the session. Throws `argument_error` for a null
/// handle, and for memory of another context than the session's.
template <class Object, class Handle, int Version, class Ownership,
          std::enable_if_t<!detail::is_exact<Object>, int> = 0>
[[nodiscard]] Object from_cl(Handle handle, basic_session<Version> const& gpu, Ownership ownership) {
    static_assert(std::is_same<Ownership, retain_t>::value || std::is_same<Ownership, take_over_t>::value,
                  "say ez::retain, if the caller keeps its reference, or ez::take_over");
    using exact = typename Object::exact_type;
    auto made = detail::adoption<Object>::make(gpu, from_cl<exact>(handle, gpu.context(), retain));
    detail::end_reference<exact>(internal::owner_access::call_handle(gpu.context()), from_cl(handle), ownership);
    return made;
}

/// The device of OpenCL's handle, for a session of its own. Throws `no_device` where libnq does not offer it for this
/// OpenCL version.
template <int Version = default_version>
[[nodiscard]] typename api<Version>::device find_device(cl_device_id handle) {
    detail::check_handle(handle);
    return detail::device_of<Version>(detail::devices_to_ask<Version>(), from_cl(handle));
}

/// A session on a queue that there is, in the queue's context. Its events have times only if the queue has profiling.
/// Throws `no_device` where libnq does not offer the queue's device for the session's OpenCL version.
template <class Session, class Ownership, class Api = typename Session::exact_api>
[[nodiscard]] Session from_cl(cl_command_queue queue, Ownership ownership) {
    return detail::session_on<Api::number>(queue, ownership);
}

} // namespace vorn::mero::easy
