#pragma once

// The types that cross the wire between the library and libnq.

#include <cstddef>
#include <cstdint>

// The layouts of the argument blocks are those of LP64 machines.
static_assert(sizeof(void*) == 8 && sizeof(std::size_t) == 8, "libnq's argument blocks need a 64-bit machine");

/// An opened capability node of libnq; never dereferenced outside libnq.
struct nq_call_handle;

// OpenCL's raw handles are pointers to these types; never dereferenced. If libnq is built on an OpenCL implementation,
// they are its own handles and can be cast to those of the C API, such as `_nq_cl_mem*` to `cl_mem`.
struct _nq_cl_platform_id;   ///< `cl_platform_id` points to it.
struct _nq_cl_device_id;     ///< `cl_device_id` points to it.
struct _nq_cl_context;       ///< `cl_context` points to it.
struct _nq_cl_command_queue; ///< `cl_command_queue` points to it.
struct _nq_cl_mem;           ///< `cl_mem` points to it.
struct _nq_cl_sampler;       ///< `cl_sampler` points to it.
struct _nq_cl_program;       ///< `cl_program` points to it.
struct _nq_cl_kernel;        ///< `cl_kernel` points to it.
struct _nq_cl_event;         ///< `cl_event` points to it.

namespace nq {

/// A root device of libnq. The value is libnq's own, valid as long as the process.
using device = std::uint64_t;

/// A capability node of a root device: one OpenCL version that it offers. The words are libnq's own.
struct capability_node {
    std::uint64_t first;  ///< libnq's own.
    std::uint64_t second; ///< libnq's own.
};

/// An OpenCL version that a capability node can offer. Any value can be held: `nq::capability{3}` is OpenCL 1.2.
enum class capability : std::uint64_t {
    opencl_1_0 = 1, ///< OpenCL 1.0.
    opencl_1_1 = 2, ///< OpenCL 1.1.
    opencl_1_2 = 3, ///< OpenCL 1.2.
    opencl_2_0 = 4, ///< OpenCL 2.0.
    opencl_2_1 = 5, ///< OpenCL 2.1.
    opencl_2_2 = 6, ///< OpenCL 2.2.
};

/// What `nq_call_capability` and the other functions of libnq return.
namespace result {
inline constexpr int success = 0;             ///< The call was made. OpenCL may still have refused it.
inline constexpr int unrecoverable = -1;      ///< The handle is null or cannot be used any more.
inline constexpr int invalid_command_id = -2; ///< The handle's version has no such entry point.
} // namespace result

/// The only value of `nq_version()` that the library accepts.
inline constexpr std::uint64_t version = 0x8000000000000000U;

// Callbacks of programs. OpenCL calls them on any thread, perhaps on several at once. They must not throw, since their
// caller is C code. `user_data` is passed on unchanged.

/// Gets the errors of a context: a text, and `size` bytes that the implementation defines.
using context_callback = void (*)(char const* error, void const* private_info, std::size_t size, void* user_data);
/// Called when a build, compilation or link has ended, or when OpenCL deletes a program.
using program_callback = void (*)(_nq_cl_program* program, void* user_data);
/// Called when a command reaches a state, or fails with a negative status.
using event_callback = void (*)(_nq_cl_event* event, int status, void* user_data);
/// Called when OpenCL deletes a memory object.
using memory_callback = void (*)(_nq_cl_mem* memory, void* user_data);
/// Must free the pointers.
using svm_free_callback = void (*)(_nq_cl_command_queue* queue, std::uint32_t count, void** pointers, void* user_data);
/// Runs in its turn in the queue, on OpenCL's copy of the arguments.
using native_function = void (*)(void* arguments);

/// Laid out as `cl_image_desc`. Dimensions are in pixels, pitches in bytes; what does not apply is 0 or null.
struct image_desc {
    std::uint32_t image_type;      ///< A `cl_mem_object_type`.
    std::size_t image_width;       ///< In pixels.
    std::size_t image_height;      ///< In pixels; 0 in one dimension.
    std::size_t image_depth;       ///< In pixels; 0 unless there are three dimensions.
    std::size_t image_array_size;  ///< The images of an array.
    std::size_t image_row_pitch;   ///< The bytes from a row to the next; 0 for no gaps, and without host memory.
    std::size_t image_slice_pitch; ///< The same from a slice, or an image, to the next.
    std::uint32_t num_mip_levels;  ///< Levels of mip-maps, which are an extension; else 0.
    std::uint32_t num_samples;     ///< Samples of a pixel, which are an extension; else 0.
    _nq_cl_mem* mem_object;        ///< The buffer of an image in a buffer.
};
static_assert(offsetof(image_desc, image_width) == 8 && offsetof(image_desc, image_slice_pitch) == 48 &&
              offsetof(image_desc, num_samples) == 60 && offsetof(image_desc, mem_object) == 64 &&
              sizeof(image_desc) == 72);

/// Laid out as `cl_buffer_region`. In bytes.
struct buffer_region {
    std::size_t origin; ///< Where it begins.
    std::size_t size;   ///< How long it is.
};
static_assert(sizeof(buffer_region) == 16);

} // namespace nq
