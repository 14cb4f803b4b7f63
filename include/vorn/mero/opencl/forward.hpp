// The names of a version's classes, and the tags of their constructors. The library instantiates `owner` for each kind;
// programs link to its members.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl.hpp>
#endif
#ifdef VORN_MERO_OPENCL

namespace vorn::mero::VORN_MERO_NAMESPACE {

class platform;
class device;
class context;
class memory_object;
class buffer;
class image;
class image_2d;
class image_3d;
class sampler;
class program;
class kernel;
class event;
class command;

#if VORN_MERO_OPENCL >= 110
class sub_buffer;
class event_promise;
#endif

#if VORN_MERO_OPENCL >= 120
class image_1d;
class image_1d_array;
class image_1d_buffer;
class image_2d_array;
#endif

#if VORN_MERO_OPENCL < 200
class command_queue;
#else
class host_command_queue;
class device_command_queue;
class pipe;
#endif

namespace internal {

/// Tag of a constructor that retains: the caller keeps its own reference. One call.
///
///     cl::event shared(call_handle, raw_event, cl::internal::create_reference{});
struct create_reference {};

/// Tag of a constructor that adopts: the caller hands over its reference, such as that of a C API create function. No
/// call.
struct take_ownership {};

/// The types that `vorn::mero::internal::owner` needs of a class: raw handle and constructor tags.
template <class Raw>
struct kind {
    using raw_type = Raw;
    using create_reference = internal::create_reference;
    using take_ownership = internal::take_ownership;
};

struct VORN_MERO_EXPORT platform_kind : kind<_nq_cl_platform_id> {};
struct VORN_MERO_EXPORT device_kind : kind<_nq_cl_device_id> {};
struct VORN_MERO_EXPORT context_kind : kind<_nq_cl_context> {};
struct VORN_MERO_EXPORT memory_object_kind : kind<_nq_cl_mem> {};
struct VORN_MERO_EXPORT sampler_kind : kind<_nq_cl_sampler> {};
struct VORN_MERO_EXPORT program_kind : kind<_nq_cl_program> {};
struct VORN_MERO_EXPORT kernel_kind : kind<_nq_cl_kernel> {};
struct VORN_MERO_EXPORT event_kind : kind<_nq_cl_event> {};

#if VORN_MERO_OPENCL >= 110
struct VORN_MERO_EXPORT event_promise_kind : kind<_nq_cl_event> {};
#endif

#if VORN_MERO_OPENCL < 200
struct VORN_MERO_EXPORT command_queue_kind : kind<_nq_cl_command_queue> {};
using host_queue = command_queue;
#else
struct VORN_MERO_EXPORT host_command_queue_kind : kind<_nq_cl_command_queue> {};
struct VORN_MERO_EXPORT device_command_queue_kind : kind<_nq_cl_command_queue> {};
using host_queue = host_command_queue;
#endif

} // namespace internal
} // namespace vorn::mero::VORN_MERO_NAMESPACE

#if VORN_MERO_OPENCL >= 110
VORN_MERO_IN_LIBRARY(vorn::mero::internal::owner<vorn::mero::VORN_MERO_NAMESPACE::internal::event_promise_kind>);
#endif

#if VORN_MERO_OPENCL < 200
VORN_MERO_IN_LIBRARY(vorn::mero::internal::owner<vorn::mero::VORN_MERO_NAMESPACE::internal::command_queue_kind>);
#else
VORN_MERO_IN_LIBRARY(vorn::mero::internal::owner<vorn::mero::VORN_MERO_NAMESPACE::internal::host_command_queue_kind>);
VORN_MERO_IN_LIBRARY(vorn::mero::internal::owner<vorn::mero::VORN_MERO_NAMESPACE::internal::device_command_queue_kind>);
#endif

VORN_MERO_IN_LIBRARY(vorn::mero::internal::owner<vorn::mero::VORN_MERO_NAMESPACE::internal::platform_kind>);
VORN_MERO_IN_LIBRARY(vorn::mero::internal::owner<vorn::mero::VORN_MERO_NAMESPACE::internal::device_kind>);
VORN_MERO_IN_LIBRARY(vorn::mero::internal::owner<vorn::mero::VORN_MERO_NAMESPACE::internal::context_kind>);
VORN_MERO_IN_LIBRARY(vorn::mero::internal::owner<vorn::mero::VORN_MERO_NAMESPACE::internal::memory_object_kind>);
VORN_MERO_IN_LIBRARY(vorn::mero::internal::owner<vorn::mero::VORN_MERO_NAMESPACE::internal::sampler_kind>);
VORN_MERO_IN_LIBRARY(vorn::mero::internal::owner<vorn::mero::VORN_MERO_NAMESPACE::internal::program_kind>);
VORN_MERO_IN_LIBRARY(vorn::mero::internal::owner<vorn::mero::VORN_MERO_NAMESPACE::internal::kernel_kind>);
VORN_MERO_IN_LIBRARY(vorn::mero::internal::owner<vorn::mero::VORN_MERO_NAMESPACE::internal::event_kind>);

#endif
