// Contexts, and everything that is made in one.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>

#include <vorn/mero/opencl/forward.hpp>
#include <vorn/mero/opencl/types.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

struct device_binary;

/// An OpenCL context: the factory of memory objects, samplers, command queues, programs and user events.
///
/// What a factory makes holds its own reference and does not depend on this object. Nothing is checked before the call
/// but where stated: whatever OpenCL refuses is thrown as the exception of its status, and nothing has been made then.
class VORN_MERO_EXPORT context : public mero::internal::handle<internal::context_kind> {
public:
    using handle::handle;

    /// The devices of the context, in OpenCL's order, on the same call handle.
    std::vector<device> get_devices() const;

    /// The list that the context was made with, its closing 0 included.
    std::vector<context_property> get_properties() const;

    /// The platform of the first device. Throws `common::bad_implementation` when OpenCL reports no device.
    platform get_platform() const;

    /// A buffer of `size` bytes. `host_ptr` belongs to the caller; the flags say what becomes of it.
    buffer create_buffer(mem_flags flags, std::size_t size, void* host_ptr);

    /// An image of `width` x `height` pixels; the pitch is in bytes, 0 lets OpenCL compute it.
    image_2d create_image_2d(mem_flags flags, image_format const& format, std::size_t width, std::size_t height,
                             std::size_t row_pitch, void* host_ptr);

    /// An image of `width` x `height` x `depth` pixels; pitches are in bytes, 0 lets OpenCL compute them.
    image_3d create_image_3d(mem_flags flags, image_format const& format, std::size_t width, std::size_t height,
                             std::size_t depth, std::size_t row_pitch, std::size_t slice_pitch, void* host_ptr);

    /// The formats for images of a shape and a use, maybe none.
    std::vector<image_format> image_2d_supported_formats(mem_flags flags);
    std::vector<image_format> image_3d_supported_formats(mem_flags flags);

    /// Coordinates run from 0 to 1 when normalized, else over the elements.
    sampler create_sampler(bool normalized_coords, sampler_addressing_mode addressing_mode,
                           sampler_filter_mode filter_mode);

    /// The text is read up to its first zero.
    program create_program_from_source(std::string const& source);

    /// A null source is OpenCL's to judge.
    program create_program_from_source(char const* source);

    /// A program from one binary for each device. Throws `std::logic_error` when there is none.
    program create_program_from_binary(std::vector<device_binary> const& binaries);

    /// Blocks until all `count` events are complete. Throws `common::exec_status_error_for_events_in_wait_list` when
    /// one of them failed.
    void wait_for_events(std::uint32_t count, _nq_cl_event* const* events);

#if VORN_MERO_OPENCL < 200
    /// A queue that may run commands out of order, or times them for `event::profile_command_start` and the like. Until
    /// OpenCL 1.2.
    command_queue create_command_queue(device const& target, bool out_of_order, bool profiling);
#endif

#if VORN_MERO_OPENCL >= 110
    /// The region of `parent` that begins at `origin` bytes. Since OpenCL 1.1.
    sub_buffer create_sub_buffer(buffer& parent, mem_flags flags, std::size_t origin, std::size_t size);

    /// An event that the program completes. Since OpenCL 1.1.
    event_promise create_user_event();
#endif

#if VORN_MERO_OPENCL >= 120
    /// An image of one row. Since OpenCL 1.2.
    image_1d create_image_1d(mem_flags flags, image_format const& format, std::size_t width, std::size_t row_pitch,
                             void* host_ptr);

    /// An image over the store of `store`.
    image_1d_buffer create_image_1d_buffer(mem_flags flags, image_format const& format, buffer& store,
                                           std::size_t width, std::size_t row_pitch, void* host_ptr);

    /// Mind the order of the pitches: the slice pitch comes first, unlike in `create_image_3d`.
    image_1d_array create_image_1d_array(mem_flags flags, image_format const& format, std::size_t width,
                                         std::size_t array_size, std::size_t slice_pitch, std::size_t row_pitch,
                                         void* host_ptr);

    /// Mind the order of the pitches: the slice pitch comes first, unlike in `create_image_3d`.
    image_2d_array create_image_2d_array(mem_flags flags, image_format const& format, std::size_t width,
                                         std::size_t height, std::size_t array_size, std::size_t slice_pitch,
                                         std::size_t row_pitch, void* host_ptr);

    /// The formats for images of a shape and a use, maybe none. Since OpenCL 1.2.
    std::vector<image_format> image_1d_supported_formats(mem_flags flags);
    std::vector<image_format> image_1d_buffer_supported_formats(mem_flags flags);
    std::vector<image_format> image_1d_array_supported_formats(mem_flags flags);
    std::vector<image_format> image_2d_array_supported_formats(mem_flags flags);

    /// A program of kernels that the devices have built in. Since OpenCL 1.2.
    program create_program_from_builtin_kernels(std::vector<device> const& devices,
                                                std::vector<std::string> const& kernel_names);

    /// An executable program from compiled ones, for the given devices or, when there is none, for every device of the
    /// context. `notify` may be null; it is called once linking has ended, on a thread of OpenCL's choice, and must not
    /// throw. Since OpenCL 1.2.
    program link_programs(std::vector<device> const& devices, std::vector<program> const& programs,
                          std::string const& options, void (*notify)(_nq_cl_program*, void*), void* user_data);
#endif

#if VORN_MERO_OPENCL >= 200
    /// A pipe of at most `max_packets` packets of `packet_size` bytes. Since OpenCL 2.0.
    pipe create_pipe(mem_flags flags, std::uint32_t packet_size, std::uint32_t max_packets);

    /// A queue that may run commands out of order, or times them for `event::profile_command_start` and the like. Since
    /// OpenCL 2.0.
    host_command_queue create_host_command_queue(device const& target, bool out_of_order, bool profiling);

    // Queues that kernels enqueue to; always out of order. A size is in bytes.
    device_command_queue create_device_command_queue(device const& target, bool profiling);
    device_command_queue create_device_command_queue(device const& target, bool profiling, unsigned int queue_size);
    device_command_queue create_default_device_command_queue(device const& target, bool profiling);
    device_command_queue create_default_device_command_queue(device const& target, bool profiling,
                                                             unsigned int queue_size);

    /// Shared virtual memory of `size` bytes, null when there is none. The alignment is cut to 32 bits. Throws the `nq`
    /// exceptions only. Since OpenCL 2.0.
    void* svm_allocate(svm_mem_flags flags, std::size_t size, std::size_t alignment);

    /// Frees shared virtual memory, of which no command may still make use. Throws the `nq` exceptions only. Since
    /// OpenCL 2.0.
    void svm_free(void* pointer);
#endif

#if VORN_MERO_OPENCL >= 210
    /// A program from intermediate language, such as SPIR-V. Since OpenCL 2.1.
    program create_program_from_il(std::vector<unsigned char> const& il);

    /// The queue that kernels of a device enqueue to when they name none. Since OpenCL 2.1.
    void set_default_device_command_queue(device const& target, device_command_queue const& queue);
#endif
};

/// A context of the given devices, on the call handle of the first. A property list that is not empty must end with 0.
///
/// `notify` may be null; it is called with errors of the context, on a thread of OpenCL's choice, and must not throw.
/// Throws `std::logic_error` when there is no device.
VORN_MERO_EXPORT context create_context(std::vector<context_property> const& properties,
                                        std::vector<device> const& devices,
                                        void (*notify)(char const*, void const*, std::size_t, void*), void* user_data);

/// A context of the devices of a type, on the platform that the properties name. Otherwise as `create_context`.
VORN_MERO_EXPORT context create_context_from_type(nq::call_handle const& call_handle,
                                                  std::vector<context_property> const& properties, device_type type,
                                                  void (*notify)(char const*, void const*, std::size_t, void*),
                                                  void* user_data);

namespace raw {

/// Null for an object that was moved from.
VORN_MERO_EXPORT _nq_cl_context* get_raw_context(context const& object) noexcept;

/// The call handle that the object was made through.
VORN_MERO_EXPORT nq::call_handle const& get_call_handle(context const& object) noexcept;

/// Adds a reference that the caller has to release.
VORN_MERO_EXPORT void retain(context const& object);

/// A status other than success is thrown as `common::bad_implementation`.
VORN_MERO_EXPORT void release(context const& object);

/// OpenCL's count, which may have changed by the time that it is read.
VORN_MERO_EXPORT std::uint32_t refcount(context const& object);

/// Retains: the caller keeps its own reference.
VORN_MERO_EXPORT context create_context(nq::call_handle const& call_handle, _nq_cl_context* handle);

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE
