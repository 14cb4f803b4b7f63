#pragma once

// One object of every class of an OpenCL version, over the scripted libnq, and what tests write of values.

#include "scripted/scripted.hpp"

// The OpenCL version; the build compiles each test once per version.
#ifndef UNIT_OPENCL
#define UNIT_OPENCL 220
#define UNIT_NAMESPACE opencl_2_2
#define UNIT_HEADER <vorn/mero/opencl_2_2.hpp>
#endif
#include UNIT_HEADER

#pragma GCC diagnostic ignored "-Wunused-result" // tests look at what is sent and thrown

namespace unit {

using namespace vorn::mero::UNIT_NAMESPACE; // NOLINT(google-build-using-namespace)
#if UNIT_OPENCL >= 200
using vorn::mero::UNIT_NAMESPACE::pipe; // not the system's
#endif
using namespace nq::block; // NOLINT(google-build-using-namespace)
using api = vorn::mero::api<UNIT_OPENCL>;

/// A value as it stands in a block.
using word = std::uint64_t;
using words = std::vector<word>;
using names = std::vector<std::string>;
using array3 = std::array<std::size_t, 3>;

constexpr word large = 0x8123456789ABCDEF;
constexpr std::uint32_t number = 0x89ABCDEF;

/// How OpenCL names and counts the objects of a class.
struct kind {
    char const* name;
    std::uint32_t reference_count; ///< Its name in the info entry point; 0 for a class that is not counted.
    char const* object;
};

#define UNIT_CLASS(object, name, reference_count, accessor)                                                            \
    inline auto* raw_of(object const& of) { return raw::accessor(of); }                                                \
    constexpr kind kind_of(object const*) { return {#name, reference_count, #object}; }                                \
    clGet##name##Info info_of(object const&); // which has the object as its first argument

UNIT_CLASS(platform, Platform, 0, get_raw_platform_id)
UNIT_CLASS(device, Device, UNIT_OPENCL >= 120 ? 0x1047 : 0, get_raw_device_id)
UNIT_CLASS(context, Context, 0x1080, get_raw_context)
UNIT_CLASS(memory_object, MemObject, 0x1105, get_raw_memory_object)
UNIT_CLASS(sampler, Sampler, 0x1150, get_raw_sampler)
UNIT_CLASS(program, Program, 0x1160, get_raw_program)
UNIT_CLASS(kernel, Kernel, 0x1192, get_raw_kernel)
UNIT_CLASS(event, Event, 0x11D2, get_raw_event)
clGetImageInfo info_of(image const&);
#if UNIT_OPENCL < 200
UNIT_CLASS(command_queue, CommandQueue, 0x1092, get_raw_command_queue)
#else
UNIT_CLASS(host_command_queue, CommandQueue, 0x1092, get_raw_command_queue)
UNIT_CLASS(device_command_queue, CommandQueue, 0x1092, get_raw_command_queue)
clGetPipeInfo info_of(pipe const&);
#endif
#if UNIT_OPENCL >= 110
UNIT_CLASS(event_promise, Event, 0x11D2, get_raw_event)
#endif

template <class T>
concept owning = requires(T const& object) {
    raw_of(object);
};

template <class T>
concept owners = requires(T const& list) {
    requires owning<typename T::value_type>;
};

template <owning T>
constexpr bool counted = kind_of(static_cast<T*>(nullptr)).reference_count != 0;

/// The call handle of an object, or one itself.
template <class T>
nq_call_handle* handle_of(T const& object) {
    if constexpr (owning<T>) {
        return raw::get_call_handle(object).get();
    } else {
        return object.get();
    }
}

template <class T>
word word_of(T const& value) {
    if constexpr (owning<T>) {
        return word_of(raw_of(value));
    } else if constexpr (std::is_pointer_v<T>) {
        return reinterpret_cast<word>(value);
    } else {
        return static_cast<word>(value);
    }
}

/// What OpenCL replies where a member gives such a value.
template <class T>
std::string reply_of(T const& value) {
    if constexpr (std::is_convertible_v<T, std::string>) {
        return std::string(value) + '\0';
    } else if constexpr (owning<T>) {
        return scripted::bytes_of(raw_of(value));
    } else if constexpr (requires { value.size(), value[0]; }) {
        std::string all;
        for (auto const& element : value) {
            all += reply_of(element);
        }
        return all;
    } else {
        return scripted::bytes_of(value);
    }
}

/// Any value of any enumeration.
struct value {
    word number;

    template <class T>
    requires std::is_enum_v<T>
    constexpr operator T() const { return static_cast<T>(number); }
};

/// One object of every class, each on a call handle of its own.
struct world {
    template <class Object>
    static Object own() {
        auto& libnq = scripted::libnq::instance();
        auto* const raw = libnq.make<typename Object::raw_type>(counted<Object> ? 1 : 0);
        return Object(libnq.open(api::capability), raw, api::take_ownership{});
    }

    api::platform platform = own<api::platform>();
    api::device device = own<api::device>();
    api::device device_2 = own<api::device>();
    api::context context = own<api::context>();
    api::host_queue queue = own<api::host_queue>();
    api::buffer buffer = own<api::buffer>();
    api::buffer buffer_2 = own<api::buffer>();
    api::image_2d image = own<api::image_2d>();
    api::image_3d image_2 = own<api::image_3d>();
    api::sampler sampler = own<api::sampler>();
    api::program program = own<api::program>();
    api::program program_2 = own<api::program>();
    api::kernel kernel = own<api::kernel>();
    api::event event = own<api::event>();
    std::vector<api::device> devices{device, device_2};
    std::vector<_nq_cl_device_id*> ids{raw_of(device), raw_of(device_2)};
#if UNIT_OPENCL >= 110
    vorn::mero::UNIT_NAMESPACE::sub_buffer sub_buffer = own<vorn::mero::UNIT_NAMESPACE::sub_buffer>();
    api::event_promise promise = own<api::event_promise>();
#endif
#if UNIT_OPENCL >= 200
    device_command_queue device_queue = own<device_command_queue>();
    vorn::mero::UNIT_NAMESPACE::pipe pipe = own<vorn::mero::UNIT_NAMESPACE::pipe>();
#endif
};

} // namespace unit
