// Contexts, and everything that is made in one.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl.hpp>
#endif
#ifdef VORN_MERO_OPENCL

namespace vorn::mero::VORN_MERO_NAMESPACE {

struct device_binary;

/// An OpenCL context: the factory of memory objects, samplers, command queues, programs and user events.
///
///     cl::context context = cl::create_context({}, {device}, nullptr, nullptr);
///     cl::buffer numbers = context.create_buffer(cl::mem_flags::read_write, 1024 * sizeof(float), nullptr);
///     cl::program program = context.create_program_from_source(text);
///     program.build({}, "-cl-std=CL1.2", nullptr, nullptr);
///     cl::kernel kernel = program.create_kernel("square");
///
/// Objects made by a context hold references of their own and may outlive it. Making one takes one call. Arguments are
/// not checked before the call unless stated: when OpenCL refuses them, the exception of its status is thrown and
/// nothing has been made. The exceptions named here and elsewhere are those that OpenCL specifies; an implementation
/// may throw a related one, or accept a mistake. Thread-safe.
class VORN_MERO_EXPORT context : public mero::internal::handle<internal::context_kind> {
public:
    using handle::handle;

    /// The devices of the context, in OpenCL's order, on the same call handle. Two calls, and since OpenCL 1.2 one to
    /// retain each.
    [[nodiscard]] std::vector<device> get_devices() const;

    /// The property list that the context was made with, including its closing 0. Empty, or a single 0, if it was made
    /// without a list. Two calls.
    [[nodiscard]] std::vector<context_property> get_properties() const;

    /// The platform of the first device. Calls `get_devices`, and makes two calls more. Throws
    /// `common::bad_implementation` if OpenCL reports no device.
    [[nodiscard]] platform get_platform() const;

    /// A buffer of `size` bytes. `host_ptr` is the caller's memory. With `mem_flags::copy_host_ptr`, OpenCL copies
    /// `size` bytes from it before this returns. With `use_host_ptr`, the buffer uses it, and it must outlive the
    /// buffer. With neither it must be null, else throws `common::invalid_host_ptr`.
    ///
    /// Throws `common::invalid_buffer_size` for a size of 0 or above `device::max_mem_alloc_size`. OpenCL may allocate
    /// as late as the first use: both this and enqueueing can throw `common::mem_object_allocation_failure`.
    [[nodiscard]] buffer create_buffer(mem_flags flags, std::size_t size, void* host_ptr);

    /// An image of `width` x `height` pixels. `row_pitch` is in bytes; 0 means tightly packed. It must be 0 if
    /// `host_ptr` is null. `host_ptr` is as in `create_buffer`.
    ///
    /// Throws `common::invalid_image_format_descriptor` for an invalid format, `common::image_format_not_supported` for
    /// one that no device supports, `common::invalid_image_size` for dimensions that are 0 or too large,
    /// `common::invalid_operation` if no device has images. Since OpenCL 1.2 a dimension of 0 and a wrong pitch throw
    /// `common::invalid_image_descriptor`.
    [[nodiscard]] image_2d create_image_2d(mem_flags flags, image_format const& format, std::size_t width,
                                           std::size_t height, std::size_t row_pitch, void* host_ptr);

    /// An image of `width` x `height` x `depth` pixels. Pitches are in bytes; 0 means tightly packed. Otherwise as
    /// `create_image_2d`. Before OpenCL 2.0 kernels can write it only with the extension `cl_khr_3d_image_writes`.
    [[nodiscard]] image_3d create_image_3d(mem_flags flags, image_format const& format, std::size_t width,
                                           std::size_t height, std::size_t depth, std::size_t row_pitch,
                                           std::size_t slice_pitch, void* host_ptr);

    /// The formats for two-dimensional images made with these flags, perhaps none. If the context has several devices,
    /// not each of them needs to support every format. Two calls, or one if there is no format.
    [[nodiscard]] std::vector<image_format> image_2d_supported_formats(mem_flags flags);

    /// The formats for three-dimensional images; otherwise as `image_2d_supported_formats`.
    [[nodiscard]] std::vector<image_format> image_3d_supported_formats(mem_flags flags);

    /// A sampler. Normalized coordinates run from 0 to 1, others are in pixels; `repeat` and `mirrored_repeat` need
    /// normalized ones. Throws `common::invalid_operation` if no device has images.
    [[nodiscard]] sampler create_sampler(bool normalized_coords, sampler_addressing_mode addressing_mode,
                                         sampler_filter_mode filter_mode);

    /// A program from OpenCL C source, not built yet. OpenCL copies the text up to its first zero; the build finds its
    /// errors.
    [[nodiscard]] program create_program_from_source(std::string const& source);

    /// The same from a text that ends with a zero. Throws `common::invalid_value` for null.
    [[nodiscard]] program create_program_from_source(char const* source);

    /// A program from one binary for each device, as `program::binaries` returned them on this machine with this
    /// driver. OpenCL copies the bytes. The program must be built before it has kernels. Throws `std::logic_error` for
    /// an empty list, `common::invalid_binary` for a binary of another device, `common::invalid_value` for an empty
    /// binary, `common::invalid_device` for a device of another context. In some implementations a damaged binary ends
    /// the process.
    [[nodiscard]] program create_program_from_binary(std::vector<device_binary> const& binaries);

    /// Blocks until all `count` events are complete. `events` are raw handles of this context, see
    /// `raw::get_raw_event`; the caller keeps them alive. Throws `common::exec_status_error_for_events_in_wait_list` if
    /// one of them failed, `common::invalid_value` for a count of 0. Callbacks must not call this.
    void wait_for_events(std::uint32_t count, _nq_cl_event* const* events);

#if VORN_MERO_OPENCL < 200
    /// A queue of a device. With `out_of_order` it may run commands in any order; with `profiling` events tell their
    /// times, see `event::profile_command_start`. Throws `common::invalid_queue_properties` if the device does not
    /// support this, `common::invalid_device` for a device of another context. Until OpenCL 1.2.
    [[nodiscard]] command_queue create_command_queue(device const& target, bool out_of_order, bool profiling);
#endif

#if VORN_MERO_OPENCL >= 110
    /// A region of `parent`: `size` bytes from byte `origin`. It shares the parent's memory and keeps it alive. Access
    /// flags that are not given are inherited.
    ///
    /// Throws `common::misaligned_sub_buffer_offset` unless `origin` is a multiple of `device::mem_base_addr_align() /
    /// 8` bytes for at least one device, `common::invalid_value` for a region outside the parent or flags that the
    /// parent does not allow, `common::invalid_buffer_size` for a size of 0. Since OpenCL 1.1.
    [[nodiscard]] sub_buffer create_sub_buffer(buffer& parent, mem_flags flags, std::size_t origin, std::size_t size);

    /// A user event: the program completes it, commands can wait for it. Since OpenCL 1.1.
    [[nodiscard]] event_promise create_user_event();
#endif

#if VORN_MERO_OPENCL >= 120
    /// An image of `width` pixels. Otherwise as `create_image_2d`. Since OpenCL 1.2.
    [[nodiscard]] image_1d create_image_1d(mem_flags flags, image_format const& format, std::size_t width,
                                           std::size_t row_pitch, void* host_ptr);

    /// An image of the first `width` pixels of `store`: it shares the buffer's memory and keeps it alive. `width` is at
    /// most `device::image_max_buffer_size`. `row_pitch` should be 0 and `host_ptr` null. Since OpenCL 1.2.
    [[nodiscard]] image_1d_buffer create_image_1d_buffer(mem_flags flags, image_format const& format, buffer& store,
                                                         std::size_t width, std::size_t row_pitch, void* host_ptr);

    /// An array of `array_size` images of `width` pixels each; the slice pitch is that from image to image. Mind the
    /// order: unlike in `create_image_3d` the slice pitch comes first. Otherwise as `create_image_2d`. Since
    /// OpenCL 1.2.
    [[nodiscard]] image_1d_array create_image_1d_array(mem_flags flags, image_format const& format, std::size_t width,
                                                       std::size_t array_size, std::size_t slice_pitch,
                                                       std::size_t row_pitch, void* host_ptr);

    /// An array of `array_size` images of `width` x `height` pixels each; the slice pitch is that from image to image.
    /// Mind the order: unlike in `create_image_3d` the slice pitch comes first. Otherwise as `create_image_2d`. Since
    /// OpenCL 1.2.
    [[nodiscard]] image_2d_array create_image_2d_array(mem_flags flags, image_format const& format, std::size_t width,
                                                       std::size_t height, std::size_t array_size,
                                                       std::size_t slice_pitch, std::size_t row_pitch, void* host_ptr);

    /// The formats for `create_image_1d`; otherwise as `image_2d_supported_formats`. Since OpenCL 1.2.
    [[nodiscard]] std::vector<image_format> image_1d_supported_formats(mem_flags flags);
    /// The formats for `create_image_1d_buffer`; otherwise as `image_2d_supported_formats`. Since OpenCL 1.2.
    [[nodiscard]] std::vector<image_format> image_1d_buffer_supported_formats(mem_flags flags);
    /// The formats for `create_image_1d_array`; otherwise as `image_2d_supported_formats`. Since OpenCL 1.2.
    [[nodiscard]] std::vector<image_format> image_1d_array_supported_formats(mem_flags flags);
    /// The formats for `create_image_2d_array`; otherwise as `image_2d_supported_formats`. Since OpenCL 1.2.
    [[nodiscard]] std::vector<image_format> image_2d_array_supported_formats(mem_flags flags);

    /// A program of built-in kernels, by their names in `device::built_in_kernels`. It needs no build. Throws
    /// `common::invalid_value` for a name that a device lacks and for an empty list of devices. Since OpenCL 1.2.
    [[nodiscard]] program create_program_from_builtin_kernels(std::vector<device> const& devices,
                                                              std::vector<std::string> const& kernel_names);

    /// Links programs to an executable or, with the option `-create-library`, to a library, for the given devices or,
    /// if there is none, for all devices of the context. The programs must contain compiled objects or libraries, see
    /// `program::binary_type`. They come from binaries: this interface cannot compile without linking.
    ///
    /// If `notify` is null, linking has ended when this returns. Otherwise it may still run; at its end OpenCL calls
    /// `notify` with the new program's raw handle and `user_data`, on any thread, perhaps before this returns. `notify`
    /// must not throw.
    ///
    /// Throws `common::link_program_failure` if the programs do not link, `common::invalid_operation` if one contains
    /// no object, `common::invalid_linker_options`, `common::linker_not_available`. Since OpenCL 1.2.
    [[nodiscard]] program link_programs(std::vector<device> const& devices, std::vector<program> const& programs,
                                        std::string const& options, void (*notify)(_nq_cl_program*, void*),
                                        void* user_data);
#endif

#if VORN_MERO_OPENCL >= 200
    /// A pipe for at most `max_packets` packets of `packet_size` bytes. `flags` may be `read_write` and
    /// `host_no_access`. Throws `common::invalid_pipe_size` for a packet size of 0 or above
    /// `device::pipe_max_packet_size`, `common::invalid_operation` or `common::invalid_value` where there are no pipes.
    /// Since OpenCL 2.0.
    [[nodiscard]] pipe create_pipe(mem_flags flags, std::uint32_t packet_size, std::uint32_t max_packets);

    /// A queue of a device. With `out_of_order` it may run commands in any order; with `profiling` events tell their
    /// times, see `event::profile_command_start`. Throws `common::invalid_queue_properties` if the device does not
    /// support this, `common::invalid_device` for a device of another context. Since OpenCL 2.0.
    [[nodiscard]] host_command_queue create_host_command_queue(device const& target, bool out_of_order, bool profiling);

    /// An on-device queue, for kernels to enqueue to; always out of order. Its size is
    /// `device::queue_on_device_preferred_size`. Throws `common::invalid_queue_properties` or `common::invalid_value`
    /// if the device has no such queues. Since OpenCL 2.0.
    [[nodiscard]] device_command_queue create_device_command_queue(device const& target, bool profiling);

    /// The same with a size in bytes, at most `device::queue_on_device_max_size`. Since OpenCL 2.0.
    [[nodiscard]] device_command_queue create_device_command_queue(device const& target, bool profiling,
                                                                   unsigned int queue_size);

    /// The default on-device queue, which kernels get from `get_default_queue()`. Each device has one: a second call
    /// returns another reference to it. Otherwise as `create_device_command_queue`. Since OpenCL 2.0.
    [[nodiscard]] device_command_queue create_default_device_command_queue(device const& target, bool profiling);

    /// The same with a size in bytes, at most `device::queue_on_device_max_size`. Since OpenCL 2.0.
    [[nodiscard]] device_command_queue create_default_device_command_queue(device const& target, bool profiling,
                                                                           unsigned int queue_size);

    /// `size` bytes of shared virtual memory, which host and devices reach at the same address. Returns null if there
    /// is no memory, if the flags or the alignment are not supported, or if the size is 0 or above
    /// `device::max_mem_alloc_size`. `alignment` is in bytes, a power of two; 0 means that of the largest type. Only
    /// its low 32 bits are used.
    ///
    /// The caller frees the memory, with `svm_free` here or the command `svm_free`. Throws the `nq` exceptions only.
    /// Since OpenCL 2.0.
    [[nodiscard]] void* svm_allocate(svm_mem_flags flags, std::size_t size, std::size_t alignment);

    /// Frees memory of `svm_allocate` at once: commands that use it must be complete, which is not checked. Null does
    /// nothing. Throws the `nq` exceptions only. Since OpenCL 2.0.
    void svm_free(void* pointer);
#endif

#if VORN_MERO_OPENCL >= 210
    /// A program from intermediate language such as SPIR-V, in a version of `device::il_version`. OpenCL copies it. The
    /// program must be built before it has kernels. Throws `common::invalid_operation` if no device accepts any,
    /// `common::invalid_value` for bytes that are none. The build may be the first to find damage, or the process may
    /// end there. Since OpenCL 2.1.
    [[nodiscard]] program create_program_from_il(std::vector<unsigned char> const& il);

    /// Makes `queue` the one that kernels on the device get from `get_default_queue()`, from the next launch on. Throws
    /// `common::invalid_command_queue` for a queue of another device. Since OpenCL 2.1.
    void set_default_device_command_queue(device const& target, device_command_queue const& queue);
#endif
};

/// A context of the given devices, all of one platform, on the call handle of the first. `properties` is empty, as most
/// programs need, or ends with 0, see `context_property`. OpenCL copies both lists.
///
/// `notify` may be null. Otherwise OpenCL calls it with errors of the context: a text, implementation-defined bytes and
/// their number, and `user_data`. It runs on any thread, perhaps on several at once, while the context or any object
/// made in it lives; `user_data` must stay valid as long. `notify` must not throw.
///
/// Throws `std::logic_error` for an empty list of devices, `common::invalid_property` or `common::invalid_platform` for
/// a wrong property list, `common::invalid_device` for devices of several platforms, `common::device_not_available`.
/// Some implementations crash on devices of several platforms.
[[nodiscard]] VORN_MERO_EXPORT context create_context(std::vector<context_property> const& properties,
                                                      std::vector<device> const& devices,
                                                      void (*notify)(char const*, void const*, std::size_t, void*),
                                                      void* user_data);

/// A context of all devices of a type, on the platform that `properties` names. Without properties OpenCL chooses the
/// platform, perhaps another one than that of the call handle: name it. Throws `common::device_not_found` if the
/// platform has no such device, `common::invalid_device_type` for an invalid type. Otherwise as `create_context`.
[[nodiscard]] VORN_MERO_EXPORT context create_context_from_type(
    nq::call_handle const& call_handle, std::vector<context_property> const& properties, device_type type,
    void (*notify)(char const*, void const*, std::size_t, void*), void* user_data);

namespace raw {

/// The raw handle, null if the object was moved from.
[[nodiscard]] VORN_MERO_EXPORT _nq_cl_context* get_raw_context(context const& object VORN_MERO_LIFETIMEBOUND) noexcept;

/// The call handle of the object.
[[nodiscard]] VORN_MERO_EXPORT nq::call_handle const&
get_call_handle(context const& object VORN_MERO_LIFETIMEBOUND) noexcept;

/// Adds a reference that the caller must release.
VORN_MERO_EXPORT void retain(context const& object);

/// Drops a reference that the caller holds. Throws `common::bad_implementation` when OpenCL refuses.
VORN_MERO_EXPORT void release(context const& object);

/// OpenCL's reference count, which may be outdated at once.
[[nodiscard]] VORN_MERO_EXPORT std::uint32_t refcount(context const& object);

/// Wraps a raw handle and retains it: the caller keeps its own reference.
[[nodiscard]] VORN_MERO_EXPORT context create_context(nq::call_handle const& call_handle, _nq_cl_context* handle);

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE

#endif
