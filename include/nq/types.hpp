#pragma once

// The types that cross the wire between the library and libnq.

#include <cstddef>
#include <cstdint>

// The layouts of the argument blocks are those of LP64 machines.
static_assert(sizeof(void*) == 8 && sizeof(std::size_t) == 8, "libnq's argument blocks need a 64-bit machine");

/// An opened capability node of libnq; never dereferenced outside libnq.
struct nq_call_handle;

// OpenCL's objects as libnq presents them; never dereferenced. With a libnq on top of an OpenCL implementation they are
// its own handles, `_nq_cl_mem*` what the C API calls `cl_mem`, and may be cast to those.
struct _nq_cl_platform_id;
struct _nq_cl_device_id;
struct _nq_cl_context;
struct _nq_cl_command_queue;
struct _nq_cl_mem;
struct _nq_cl_sampler;
struct _nq_cl_program;
struct _nq_cl_kernel;
struct _nq_cl_event;

namespace nq {

/// One root device of libnq; its value is libnq's own, valid as long as the process.
using device = std::uint64_t;

/// One capability node of a root device: an OpenCL version as it is offered there. Its words are libnq's own.
struct capability_node {
    std::uint64_t first;
    std::uint64_t second;
};

/// An OpenCL version that a capability node can offer. Any value can be carried: `nq::capability{3}` is OpenCL 1.2.
enum class capability : std::uint64_t {
    opencl_1_0 = 1,
    opencl_1_1 = 2,
    opencl_1_2 = 3,
    opencl_2_0 = 4,
    opencl_2_1 = 5,
    opencl_2_2 = 6,
};

/// What `nq_call_capability` and the other functions of libnq return.
namespace result {
inline constexpr int success = 0;             ///< The call was made; OpenCL may have refused it still.
inline constexpr int unrecoverable = -1;      ///< The handle is of no further use, or there is none.
inline constexpr int invalid_command_id = -2; ///< The handle's version has no such entry point.
} // namespace result

/// The only value of `nq_version()` that the library works with.
inline constexpr std::uint64_t version = 0x8000000000000000U;

// The functions that a program hands to OpenCL. They are called on a thread of OpenCL's choice, maybe on several at
// once, and must not throw: there is C code in between. `user_data` comes back as it was given.
using context_callback = void (*)(char const* error, void const* private_info, std::size_t size, void* user_data);
using program_callback = void (*)(_nq_cl_program* program, void* user_data);
using event_callback = void (*)(_nq_cl_event* event, int status, void* user_data);
using memory_callback = void (*)(_nq_cl_mem* memory, void* user_data);
using svm_free_callback = void (*)(_nq_cl_command_queue* queue, std::uint32_t count, void** pointers, void* user_data);
using native_function = void (*)(void* arguments);

/// Laid out as `cl_image_desc`; dimensions in pixels, pitches in bytes, what does not apply 0 or null.
struct image_desc {
    std::uint32_t image_type;
    std::size_t image_width;
    std::size_t image_height;
    std::size_t image_depth;
    std::size_t image_array_size;
    std::size_t image_row_pitch;
    std::size_t image_slice_pitch;
    std::uint32_t num_mip_levels;
    std::uint32_t num_samples;
    _nq_cl_mem* mem_object;
};
static_assert(offsetof(image_desc, image_width) == 8 && offsetof(image_desc, image_slice_pitch) == 48 &&
              offsetof(image_desc, num_samples) == 60 && offsetof(image_desc, mem_object) == 64 &&
              sizeof(image_desc) == 72);

/// Laid out as `cl_buffer_region`; in bytes.
struct buffer_region {
    std::size_t origin;
    std::size_t size;
};
static_assert(sizeof(buffer_region) == 16);

} // namespace nq
