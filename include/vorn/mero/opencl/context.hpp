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
///     cl::context context = cl::create_context({}, {device}, nullptr, nullptr);
///     cl::buffer numbers = context.create_buffer(cl::mem_flags::read_write, 1024 * sizeof(float), nullptr);
///     cl::program program = context.create_program_from_source(text);
///     program.build({}, "-cl-std=CL1.2", nullptr, nullptr);
///     cl::kernel kernel = program.create_kernel("square");
///
/// What a factory makes holds its own reference and does not depend on this object. A factory makes one call. Nothing
/// is checked before the call but where stated: whatever OpenCL refuses is thrown as the exception of its status, and
/// nothing has been made then. The exceptions named here and elsewhere are those that OpenCL asks for; an
/// implementation may choose a neighbour of the same meaning, or let a mistake pass. Any number of threads may use one
/// context at once.
class VORN_MERO_EXPORT context : public mero::internal::handle<internal::context_kind> {
public:
    using handle::handle;

    /// The devices of the context, in OpenCL's order, on the same call handle. Two calls, and one to retain each device
    /// since OpenCL 1.2.
    std::vector<device> get_devices() const;

    /// The list that the context was made with, its closing 0 included; empty, or a 0 alone, for one made without a
    /// list.
    std::vector<context_property> get_properties() const;

    /// The platform of the first device. Throws `common::bad_implementation` when OpenCL reports no device. As
    /// `get_devices`, and two calls more.
    platform get_platform() const;

    /// A buffer of `size` bytes. `host_ptr` belongs to the caller; the flags say what becomes of it: with
    /// `mem_flags::copy_host_ptr` the `size` bytes there are copied before this returns, with `use_host_ptr` they are
    /// the buffer's store and must outlive it, with neither it must be null (`common::invalid_host_ptr`).
    ///
    /// A size of 0 or above `device::max_mem_alloc_size` is `common::invalid_buffer_size`. Memory may be set aside as
    /// late as the first use: `common::mem_object_allocation_failure` can come from here and from enqueueing.
    buffer create_buffer(mem_flags flags, std::size_t size, void* host_ptr);

    /// An image of `width` x `height` pixels; the pitch is in bytes, 0 lets OpenCL compute it, and it must be 0 when
    /// `host_ptr` is null. `host_ptr` is as in `create_buffer`.
    ///
    /// Throws `common::invalid_image_format_descriptor` for a format that is none, `common::image_format_not_supported`
    /// for one that no device has, `common::invalid_image_size` for dimensions that are 0 or too large,
    /// `common::invalid_operation` where no device has images. Since OpenCL 1.2 a dimension of 0 and a wrong pitch are
    /// `common::invalid_image_descriptor`.
    image_2d create_image_2d(mem_flags flags, image_format const& format, std::size_t width, std::size_t height,
                             std::size_t row_pitch, void* host_ptr);

    /// An image of `width` x `height` x `depth` pixels; pitches are in bytes, 0 lets OpenCL compute them. Otherwise as
    /// `create_image_2d`. Kernels can write it only with the extension `cl_khr_3d_image_writes` or since OpenCL 2.0.
    image_3d create_image_3d(mem_flags flags, image_format const& format, std::size_t width, std::size_t height,
                             std::size_t depth, std::size_t row_pitch, std::size_t slice_pitch, void* host_ptr);

    /// The formats for images of a shape and a use, maybe none. The flags are those that the image is to be made with.
    /// Of several devices in the context not each needs to support every format. Two calls, one when there is none.
    std::vector<image_format> image_2d_supported_formats(mem_flags flags);
    std::vector<image_format> image_3d_supported_formats(mem_flags flags);

    /// Coordinates run from 0 to 1 when normalized, else over the elements; `repeat` and `mirrored_repeat` need them
    /// normalized. Throws `common::invalid_operation` where no device has images.
    sampler create_sampler(bool normalized_coords, sampler_addressing_mode addressing_mode,
                           sampler_filter_mode filter_mode);

    /// A program to be built. OpenCL copies the text, which is read up to its first zero, and looks at it only when it
    /// is built.
    program create_program_from_source(std::string const& source);

    /// The same of a text that ends with a zero. A null source is OpenCL's to judge, `common::invalid_value`.
    program create_program_from_source(char const* source);

    /// A program from one binary for each device, as `program::binaries` gave them on this machine with this driver;
    /// OpenCL copies the bytes. It must be built before it has kernels. Throws `std::logic_error` when there is none,
    /// `common::invalid_binary` for one that is not the device's, `common::invalid_value` for an empty one,
    /// `common::invalid_device` for a device of another context. A damaged binary can end the process in some
    /// implementations.
    program create_program_from_binary(std::vector<device_binary> const& binaries);

    /// Blocks until all `count` events are complete; they are raw handles of this context, as `raw::get_raw_event`
    /// gives them, and the caller keeps them alive. Throws `common::exec_status_error_for_events_in_wait_list` when one
    /// of them failed, `common::invalid_value` for a count of 0. Not to be called by a callback.
    void wait_for_events(std::uint32_t count, _nq_cl_event* const* events);

#if VORN_MERO_OPENCL < 200
    /// A queue that may run commands out of order, or times them for `event::profile_command_start` and the like.
    /// Throws `common::invalid_queue_properties` where the device lacks what is asked for, `common::invalid_device` for
    /// one of another context. Until OpenCL 1.2.
    command_queue create_command_queue(device const& target, bool out_of_order, bool profiling);
#endif

#if VORN_MERO_OPENCL >= 110
    /// The region of `parent` of `size` bytes that begins at `origin` bytes. It shares the parent's memory and keeps it
    /// alive; flags of access that are not given are the parent's.
    ///
    /// Throws `common::misaligned_sub_buffer_offset` when `origin` is no multiple of `device::mem_base_addr_align() /
    /// 8` of any device, `common::invalid_value` for a region that leaves the parent or flags that it forbids,
    /// `common::invalid_buffer_size` for a size of 0. Since OpenCL 1.1.
    sub_buffer create_sub_buffer(buffer& parent, mem_flags flags, std::size_t origin, std::size_t size);

    /// An event that the program completes, for the wait lists of commands. Since OpenCL 1.1.
    event_promise create_user_event();
#endif

#if VORN_MERO_OPENCL >= 120
    /// An image of one row of `width` pixels. Otherwise as `create_image_2d`. Since OpenCL 1.2.
    image_1d create_image_1d(mem_flags flags, image_format const& format, std::size_t width, std::size_t row_pitch,
                             void* host_ptr);

    /// An image of the first `width` pixels of `store`, whose memory it shares and keeps alive; `width` is bounded by
    /// `device::image_max_buffer_size`. `row_pitch` should be 0 and `host_ptr` null. Since OpenCL 1.2.
    image_1d_buffer create_image_1d_buffer(mem_flags flags, image_format const& format, buffer& store,
                                           std::size_t width, std::size_t row_pitch, void* host_ptr);

    /// `array_size` images of one row; a slice is one image. Mind the order of the pitches: the slice pitch comes
    /// first, unlike in `create_image_3d`. Since OpenCL 1.2.
    image_1d_array create_image_1d_array(mem_flags flags, image_format const& format, std::size_t width,
                                         std::size_t array_size, std::size_t slice_pitch, std::size_t row_pitch,
                                         void* host_ptr);

    /// `array_size` images of `width` x `height` pixels; a slice is one image. Mind the order of the pitches: the slice
    /// pitch comes first, unlike in `create_image_3d`. Since OpenCL 1.2.
    image_2d_array create_image_2d_array(mem_flags flags, image_format const& format, std::size_t width,
                                         std::size_t height, std::size_t array_size, std::size_t slice_pitch,
                                         std::size_t row_pitch, void* host_ptr);

    /// As `image_2d_supported_formats`. Since OpenCL 1.2.
    std::vector<image_format> image_1d_supported_formats(mem_flags flags);
    std::vector<image_format> image_1d_buffer_supported_formats(mem_flags flags);
    std::vector<image_format> image_1d_array_supported_formats(mem_flags flags);
    std::vector<image_format> image_2d_array_supported_formats(mem_flags flags);

    /// A program of kernels that the devices have built in, by names of `device::built_in_kernels`; it needs no
    /// building. Throws `common::invalid_value` for a name that a device lacks or for no devices. Since OpenCL 1.2.
    program create_program_from_builtin_kernels(std::vector<device> const& devices,
                                                std::vector<std::string> const& kernel_names);

    /// An executable program, or a library with the option `-create-library`, from programs that hold compiled objects
    /// or libraries (see `program::binary_type`); those come from binaries, since nothing here compiles without
    /// linking. It is linked for the given devices or, when there is none, for every device of the context.
    ///
    /// `notify` may be null: linking has then ended when this returns. Otherwise it may go on, `notify` is called once
    /// it has ended, with the new program's raw handle and `user_data`, on a thread of OpenCL's choice, maybe before
    /// this returns, and must not throw.
    ///
    /// Throws `common::link_program_failure` when the programs do not fit together, `common::invalid_operation` when
    /// one holds no object, `common::invalid_linker_options`, `common::linker_not_available`. Since OpenCL 1.2.
    program link_programs(std::vector<device> const& devices, std::vector<program> const& programs,
                          std::string const& options, void (*notify)(_nq_cl_program*, void*), void* user_data);
#endif

#if VORN_MERO_OPENCL >= 200
    /// A pipe of at most `max_packets` packets of `packet_size` bytes. Of the flags only `read_write` and
    /// `host_no_access` are meant. Throws `common::invalid_pipe_size` for a size of 0 or above
    /// `device::pipe_max_packet_size`, `common::invalid_operation` or `common::invalid_value` where there are no pipes.
    /// Since OpenCL 2.0.
    pipe create_pipe(mem_flags flags, std::uint32_t packet_size, std::uint32_t max_packets);

    /// A queue that may run commands out of order, or times them for `event::profile_command_start` and the like.
    /// Throws `common::invalid_queue_properties` where the device lacks what is asked for, `common::invalid_device` for
    /// one of another context. Since OpenCL 2.0.
    host_command_queue create_host_command_queue(device const& target, bool out_of_order, bool profiling);

    // Queues that kernels enqueue to; always out of order. A size is in bytes, at most
    // `device::queue_on_device_max_size`; without one it is `device::queue_on_device_preferred_size`. The default queue
    // is what kernels get from `get_default_queue()`: there is one for each device, and asking again gives another
    // reference to it. Throw `common::invalid_queue_properties` or `common::invalid_value` where there are no such
    // queues. Since OpenCL 2.0.
    device_command_queue create_device_command_queue(device const& target, bool profiling);
    device_command_queue create_device_command_queue(device const& target, bool profiling, unsigned int queue_size);
    device_command_queue create_default_device_command_queue(device const& target, bool profiling);
    device_command_queue create_default_device_command_queue(device const& target, bool profiling,
                                                             unsigned int queue_size);

    /// Shared virtual memory of `size` bytes that devices and host reach by one address; null when there is none, when
    /// the flags or the alignment are not supported, or when the size is 0 or above `device::max_mem_alloc_size`. The
    /// alignment is in bytes, a power of two, 0 for that of the largest type; it is cut to 32 bits.
    ///
    /// The caller frees it, with `svm_free` here or the command of that name. Throws the `nq` exceptions only. Since
    /// OpenCL 2.0.
    void* svm_allocate(svm_mem_flags flags, std::size_t size, std::size_t alignment);

    /// Frees memory of `svm_allocate`, at once: no command may still make use of it, and it is not looked whether one
    /// does. Null is let pass. Throws the `nq` exceptions only. Since OpenCL 2.0.
    void svm_free(void* pointer);
#endif

#if VORN_MERO_OPENCL >= 210
    /// A program from intermediate language, such as SPIR-V, of the versions in `device::il_version`; OpenCL copies it.
    /// It must be built before it has kernels. Throws `common::invalid_operation` where no device takes any,
    /// `common::invalid_value` for bytes that are none; damaged ones may be found out, or end the process, only when
    /// they are built. Since OpenCL 2.1.
    program create_program_from_il(std::vector<unsigned char> const& il);

    /// Makes `queue` what kernels of a device get from `get_default_queue()` from the next launch on. Throws
    /// `common::invalid_command_queue` for a queue of another device. Since OpenCL 2.1.
    void set_default_device_command_queue(device const& target, device_command_queue const& queue);
#endif
};

/// A context of the given devices, on the call handle of the first; they must be of one platform. A property list that
/// is not empty must end with 0, see `context_property`; most programs need none. OpenCL copies both lists.
///
/// `notify` may be null; it is called with errors of the context: a text, implementation-defined bytes and their
/// number, and `user_data`. It runs on a thread of OpenCL's choice, maybe on several at once, as long as the context or
/// anything made in it lives, and must not throw. `user_data` must be of use as long.
///
/// Throws `std::logic_error` when there is no device, `common::invalid_property` or `common::invalid_platform` for a
/// wrong list, `common::invalid_device` for devices of several platforms, `common::device_not_available`.
VORN_MERO_EXPORT context create_context(std::vector<context_property> const& properties,
                                        std::vector<device> const& devices,
                                        void (*notify)(char const*, void const*, std::size_t, void*), void* user_data);

/// A context of the devices of a type, on the platform that the properties name. Without properties OpenCL chooses the
/// platform, which need not be that of the call handle: name it. Throws `common::device_not_found` when the platform
/// has none, `common::invalid_device_type` for a type that is none. Otherwise as `create_context`.
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
