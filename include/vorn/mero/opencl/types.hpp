// The value types of an OpenCL version. Each holds the OpenCL value unchanged. An enumerator has the name of the OpenCL
// constant without its prefix and the words of its group. Any value can be held: `mem_flags{0x13A}`. Bit fields combine
// with `|`, `&`, `^` and `~`; `mem_flags{}` is no flag. The types of two versions do not mix.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl.hpp>
#endif
#ifdef VORN_MERO_OPENCL

namespace vorn::mero::VORN_MERO_NAMESPACE {

#define VORN_MERO_BIT_FIELD(name)                                                                                      \
    /** The bits of either. */                                                                                         \
    constexpr name operator|(name a, name b) noexcept {                                                                \
        return name(static_cast<std::uint64_t>(a) | static_cast<std::uint64_t>(b));                                    \
    }                                                                                                                  \
    /** The bits of both. */                                                                                           \
    constexpr name operator&(name a, name b) noexcept {                                                                \
        return name(static_cast<std::uint64_t>(a) & static_cast<std::uint64_t>(b));                                    \
    }                                                                                                                  \
    /** The bits of one of them, but not of both. */                                                                   \
    constexpr name operator^(name a, name b) noexcept {                                                                \
        return name(static_cast<std::uint64_t>(a) ^ static_cast<std::uint64_t>(b));                                    \
    }                                                                                                                  \
    /** The bits that are not set, unnamed ones too. */                                                                \
    constexpr name operator~(name a) noexcept { return name(~static_cast<std::uint64_t>(a)); }                         \
    /** Adds the bits of `b`. */                                                                                       \
    constexpr name& operator|=(name& a, name b) noexcept { return a = a | b; }                                         \
    /** Keeps the bits of `b` only. */                                                                                 \
    constexpr name& operator&=(name& a, name b) noexcept { return a = a & b; }                                         \
    /** Changes the bits of `b`. */                                                                                    \
    constexpr name& operator^=(name& a, name b) noexcept { return a = a ^ b; }

/// How a memory object is made and used (`cl_mem_flags`), a bit field. Give at most one of the access flags
/// `read_write`, `write_only` and `read_only`; without one it is `read_write`.
///
///     cl::mem_flags const input = cl::mem_flags::read_only | cl::mem_flags::copy_host_ptr;
enum class mem_flags : std::uint64_t {
    read_write = 1 << 0,     ///< Kernels read and write it.
    write_only = 1 << 1,     ///< Kernels only write it.
    read_only = 1 << 2,      ///< Kernels only read it.
    use_host_ptr = 1 << 3,   ///< It uses the caller's memory, which must outlive it.
    alloc_host_ptr = 1 << 4, ///< It uses memory that the host can reach: good for mapping.
    copy_host_ptr = 1 << 5,  ///< It starts with a copy of the caller's memory.
#if VORN_MERO_OPENCL >= 120
    host_write_only = 1 << 7, ///< The host only writes it: read commands throw `invalid_operation`. Since OpenCL 1.2.
    host_read_only = 1 << 8,  ///< The host only reads it: write commands throw `invalid_operation`. Since OpenCL 1.2.
    host_no_access = 1 << 9,  ///< The host does neither. Since OpenCL 1.2.
#endif
#if VORN_MERO_OPENCL >= 200
    kernel_read_and_write = 1 << 12, ///< One kernel reads and writes it; for listing image formats. Since OpenCL 2.0.
#endif
};
VORN_MERO_BIT_FIELD(mem_flags)

/// How a mapped region is used (`cl_map_flags`), a bit field.
enum class map_flags : std::uint64_t {
    read = 1 << 0,  ///< The region has its content once the mapping is complete.
    write = 1 << 1, ///< The same, and unmapping writes changes back.
#if VORN_MERO_OPENCL >= 120
    write_invalidate_region = 1 << 2, ///< All of it will be rewritten; not with the others. Since OpenCL 1.2.
#endif
};
VORN_MERO_BIT_FIELD(map_flags)

/// The kind of a device (`cl_device_type`), a bit field: a device can have several.
enum class device_type : std::uint64_t {
    default_ = 1 << 0,    ///< The one that the platform prefers.
    cpu = 1 << 1,         ///< A processor that also runs the host, or one like it.
    gpu = 1 << 2,         ///< A graphics processor.
    accelerator = 1 << 3, ///< Another processor, such as one for signals or an FPGA.
#if VORN_MERO_OPENCL >= 120
    custom = 1 << 4, ///< It runs built-in kernels only. Since OpenCL 1.2.
#endif
    all = 0xFFFFFFFF, ///< Every device but the custom ones.
};
VORN_MERO_BIT_FIELD(device_type)

/// The kind of a memory object (`cl_mem_object_type`).
enum class mem_object_type : std::uint32_t {
    buffer = 0x10F0,  ///< A `buffer` or a `sub_buffer`.
    image2d = 0x10F1, ///< An `image_2d`.
    image3d = 0x10F2, ///< An `image_3d`.
#if VORN_MERO_OPENCL >= 120
    image2d_array = 0x10F3,  ///< An `image_2d_array`. Since OpenCL 1.2.
    image1d = 0x10F4,        ///< An `image_1d`. Since OpenCL 1.2.
    image1d_array = 0x10F5,  ///< An `image_1d_array`. Since OpenCL 1.2.
    image1d_buffer = 0x10F6, ///< An `image_1d_buffer`. Since OpenCL 1.2.
#endif
#if VORN_MERO_OPENCL >= 200
    pipe = 0x10F7, ///< A `pipe`. Since OpenCL 2.0.
#endif
};

/// What a sampler reads outside the image (`cl_addressing_mode`).
enum class sampler_addressing_mode : std::uint32_t {
    none = 0x1130,            ///< Undefined: the kernel must stay inside.
    clamp_to_edge = 0x1131,   ///< The nearest pixel of the edge.
    clamp = 0x1132,           ///< Zero, with alpha 1 if the format has no alpha.
    repeat = 0x1133,          ///< The image again and again; normalized coordinates only.
    mirrored_repeat = 0x1134, ///< The same, every other one mirrored. OpenCL 1.0 implementations refuse it.
};

/// How a sampler reads between elements (`cl_filter_mode`).
enum class sampler_filter_mode : std::uint32_t {
    nearest = 0x1140, ///< The pixel at the coordinates.
    linear = 0x1141,  ///< The weighted mean of the nearest 2, 4 or 8 pixels; not for integer formats.
};

/// The channels of a pixel and their order (`cl_channel_order`). A missing colour reads as 0, a missing alpha as 1.
/// Every implementation with images has `rgba`; `context::image_2d_supported_formats` tells the rest.
enum class image_channel_order : std::uint32_t {
    r = 0x10B0,         ///< Red.
    a = 0x10B1,         ///< Alpha.
    rg = 0x10B2,        ///< Red, green.
    ra = 0x10B3,        ///< Red, alpha.
    rgb = 0x10B4,       ///< With packed channel types only.
    rgba = 0x10B5,      ///< Red, green, blue, alpha.
    bgra = 0x10B6,      ///< With 8-bit channel types only.
    argb = 0x10B7,      ///< With 8-bit channel types only.
    intensity = 0x10B8, ///< One value, read as all four channels.
    luminance = 0x10B9, ///< One value, read as red, green and blue.
#if VORN_MERO_OPENCL >= 110
    rx = 0x10BA,   ///< `r` with alpha 0 outside the image. Since OpenCL 1.1.
    rgx = 0x10BB,  ///< `rg` with alpha 0 outside the image. Since OpenCL 1.1.
    rgbx = 0x10BC, ///< `rgb` with alpha 0 outside the image. Since OpenCL 1.1.
#endif
#if VORN_MERO_OPENCL >= 120
    depth = 0x10BD,         ///< One `unorm_int16` or `float_`. An extension of OpenCL 1.2, core since 2.0.
    depth_stencil = 0x10BE, ///< For images shared with OpenGL. An extension since OpenCL 1.2.
#endif
#if VORN_MERO_OPENCL >= 200
    srgb = 0x10BF,  ///< sRGB, of type `unorm_int8`: kernels read linear values. Since OpenCL 2.0.
    srgbx = 0x10C0, ///< As `srgb`. Since OpenCL 2.0.
    srgba = 0x10C1, ///< As `srgb`, with alpha. Since OpenCL 2.0.
    sbgra = 0x10C2, ///< As `srgba`, blue first. Since OpenCL 2.0.
    abgr = 0x10C3,  ///< With 8-bit channel types only. Since OpenCL 2.0.
#endif
};

/// The type of a pixel's channels (`cl_channel_type`). The integers of `snorm` stand for -1 to 1, those of `unorm` for
/// 0 to 1. Kernels read these and floating-point types with `read_imagef`, `signed_` types with `read_imagei`,
/// `unsigned_` types with `read_imageui`.
enum class image_channel_type : std::uint32_t {
    snorm_int8 = 0x10D0,       ///< 8 bits for -1 to 1.
    snorm_int16 = 0x10D1,      ///< 16 bits for -1 to 1.
    unorm_int8 = 0x10D2,       ///< 8 bits for 0 to 1.
    unorm_int16 = 0x10D3,      ///< 16 bits for 0 to 1.
    unorm_short_565 = 0x10D4,  ///< A whole pixel of `rgb` or `rgbx` in 16 bits.
    unorm_short_555 = 0x10D5,  ///< A whole pixel of `rgb` or `rgbx` in 16 bits, the top bit unused.
    unorm_int_101010 = 0x10D6, ///< A whole pixel of `rgb` or `rgbx` in 32 bits, the top two bits unused.
    signed_int8 = 0x10D7,      ///< A signed integer of 8 bits.
    signed_int16 = 0x10D8,     ///< A signed integer of 16 bits.
    signed_int32 = 0x10D9,     ///< A signed integer of 32 bits.
    unsigned_int8 = 0x10DA,    ///< An unsigned integer of 8 bits.
    unsigned_int16 = 0x10DB,   ///< An unsigned integer of 16 bits.
    unsigned_int32 = 0x10DC,   ///< An unsigned integer of 32 bits.
    half_float = 0x10DD,       ///< A floating-point number of 16 bits.
    float_ = 0x10DE,           ///< A floating-point number of 32 bits.
#if VORN_MERO_OPENCL >= 120
    unorm_int24 = 0x10DF, ///< For `depth_stencil`. Since OpenCL 1.2.
#endif
#if VORN_MERO_OPENCL >= 210
    unorm_int_101010_2 = 0x10E0, ///< A whole pixel of `rgba` in 32 bits. Since OpenCL 2.1.
#endif
};

/// The format of a pixel, laid out as `cl_image_format`.
///
///     cl::image_format const pixel{cl::image_channel_order::rgba, cl::image_channel_type::unorm_int8}; // 4 bytes
struct image_format {
    image_channel_order channel_order;    ///< Which channels there are, and in which order.
    image_channel_type channel_data_type; ///< The type of each channel.

    /// `image_format{}` is zero, which is not a valid format.
    image_format() = default;

    /// Not every pair is a valid format, see `image_channel_order`.
    constexpr image_format(image_channel_order order, image_channel_type data_type) noexcept
        : channel_order(order), channel_data_type(data_type) {}

    /// The same from numbers of the C API.
    constexpr image_format(std::uint32_t order, std::uint32_t data_type) noexcept
        : channel_order(image_channel_order{order}), channel_data_type(image_channel_type{data_type}) {}

    /// Whether both members are equal.
    constexpr bool operator==(image_format const& other) const noexcept {
        return channel_order == other.channel_order && channel_data_type == other.channel_data_type;
    }
};
static_assert(sizeof(image_format) == 8);

/// The state of a command (`cl_int`). Its value only ever falls. `failed` stands for every negative status;
/// `event::error_code` tells which.
enum class event_execution_status : std::int32_t {
    failed = -1,   ///< It has failed, or a command that it waited for.
    complete = 0,  ///< It has ended without a failure.
    running = 1,   ///< The device has started it.
    submitted = 2, ///< The queue has handed it to the device.
    queued = 3,    ///< The queue holds it.
};

/// The state of a program's build for a device (`cl_build_status`).
enum class program_build_status : std::int32_t {
    success = 0,      ///< The last build succeeded.
    none = -1,        ///< Not built yet.
    error = -2,       ///< The build failed, see `program::build_log`.
    in_progress = -3, ///< The build is running.
};

/// One word of a context's property list (`cl_context_properties`). A list is empty, or consists of names each followed
/// by its value, and a 0 at the end. A word converts from and to the number that it holds.
///
///     auto* const id = cl::raw::get_raw_platform_id(platform);
///     std::vector<cl::context_property> const list{cl::context_property::platform,
///                                                  reinterpret_cast<std::intptr_t>(id), 0};
class context_property {
public:
    /// A name, a value, or the closing 0.
    constexpr context_property(std::intptr_t value = 0) noexcept : value_(value) {}

    /// The number that the word holds.
    constexpr operator std::intptr_t() const noexcept { return value_; }

    /// Name of the platform, `CL_CONTEXT_PLATFORM`; its value is a raw platform handle.
    static context_property const platform;
#if VORN_MERO_OPENCL >= 120
    /// `CL_CONTEXT_INTEROP_USER_SYNC`; its value is 1 if the program itself synchronizes with other APIs such as
    /// OpenGL. Since OpenCL 1.2.
    static context_property const interop_user_sync;
#endif

private:
    std::intptr_t value_;
};
static_assert(sizeof(context_property) == 8);
inline constexpr context_property context_property::platform{0x1084};
#if VORN_MERO_OPENCL >= 120
inline constexpr context_property context_property::interop_user_sync{0x1085};
#endif

/// The size of a `__local` kernel argument. Each work-group gets memory of its own.
class local_memory {
public:
    /// In bytes.
    explicit constexpr local_memory(std::size_t size) noexcept : size_(size) {}

    /// In bytes.
    [[nodiscard]] constexpr std::size_t size() const noexcept { return size_; }

private:
    std::size_t size_;
};

#if VORN_MERO_OPENCL >= 110
/// The state of a command that triggers a callback (`cl_int`). Mind the spelling, with three m. Since OpenCL 1.1.
enum class commmand_exec_callback_type : std::int32_t {
    complete = 0,  ///< It has ended, or failed.
    running = 1,   ///< The device has started it. An implementation of OpenCL 1.1 may refuse it.
    submitted = 2, ///< The queue has handed it to the device. An implementation of OpenCL 1.1 may refuse it.
};
#endif

#if VORN_MERO_OPENCL >= 120
/// Where memory objects migrate to (`cl_mem_migration_flags`), a bit field; without a flag, to the device of the queue.
/// Since OpenCL 1.2.
enum class migration_flags : std::uint64_t {
    host = 1 << 0,              ///< To the host.
    content_undefined = 1 << 1, ///< The content may be lost.
};
VORN_MERO_BIT_FIELD(migration_flags)

/// What a program holds for a device (`cl_program_binary_type`). Since OpenCL 1.2.
enum class program_binary_type : std::uint32_t {
    none = 0,            ///< Nothing: it has not been built.
    compiled_object = 1, ///< Input of `context::link_programs`.
    library = 2,         ///< A library, input of `context::link_programs`.
    executable = 4,      ///< An executable: kernels can be created.
};

/// What the compute units of a sub-device share (`cl_device_affinity_domain`), a bit field. Since OpenCL 1.2.
enum class device_affinity_domain : std::uint64_t {
    numa = 1 << 0,               ///< A NUMA node.
    l4_cache = 1 << 1,           ///< A cache of level 4.
    l3_cache = 1 << 2,           ///< A cache of level 3.
    l2_cache = 1 << 3,           ///< A cache of level 2.
    l1_cache = 1 << 4,           ///< A cache of level 1.
    next_partitionable = 1 << 5, ///< The first of the above that can divide the device.
};
VORN_MERO_BIT_FIELD(device_affinity_domain)

/// One word of the list that tells how a device was partitioned (`cl_device_partition_property`): a scheme, its
/// numbers, and perhaps a closing 0. A word converts from and to the number that it holds. Since OpenCL 1.2.
class device_partition_property {
public:
    /// A scheme, a number, or the closing 0.
    constexpr device_partition_property(std::intptr_t value = 0) noexcept : value_(value) {}

    /// The number that the word holds.
    constexpr operator std::intptr_t() const noexcept { return value_; }

    /// The compute units of each sub-device follow.
    static device_partition_property const equally;
    /// The compute units of the sub-devices follow, one number for each, then `by_counts_list_end`.
    static device_partition_property const by_counts;
    /// Closes the numbers of `by_counts`; 0.
    static device_partition_property const by_counts_list_end;
    /// A `device_affinity_domain` follows.
    static device_partition_property const by_affinity_domain;

private:
    std::intptr_t value_;
};
static_assert(sizeof(device_partition_property) == 8);
inline constexpr device_partition_property device_partition_property::equally{0x1086};
inline constexpr device_partition_property device_partition_property::by_counts{0x1087};
inline constexpr device_partition_property device_partition_property::by_counts_list_end{0};
inline constexpr device_partition_property device_partition_property::by_affinity_domain{0x1088};

/// The address space of a kernel argument (`cl_kernel_arg_address_qualifier`). Since OpenCL 1.2.
enum class kernel_argument_address_qualifier : std::uint32_t {
    global = 0x119B,   ///< `__global`; images too.
    local = 0x119C,    ///< `__local`.
    constant = 0x119D, ///< `__constant`.
    private_ = 0x119E, ///< A value: none of these.
};

/// How a kernel accesses an image or pipe argument (`cl_kernel_arg_access_qualifier`); `none` for any other argument.
/// Since OpenCL 1.2.
enum class kernel_argument_access_qualifier : std::uint32_t {
    read_only = 0x11A0,  ///< `__read_only`, which is what an image without a qualifier is.
    write_only = 0x11A1, ///< `__write_only`.
    read_write = 0x11A2, ///< `__read_write`.
    none = 0x11A3,       ///< Neither an image nor a pipe.
};

/// The qualifiers of a kernel argument's type (`cl_kernel_arg_type_qualifier`), a bit field. For a pointer, `const_`
/// and `volatile_` are those of the pointed-to type. Since OpenCL 1.2.
enum class kernel_argument_type_qualifier : std::uint64_t {
    none = 0,           ///< No qualifier.
    const_ = 1 << 0,    ///< `const`.
    restrict_ = 1 << 1, ///< `restrict`.
    volatile_ = 1 << 2, ///< `volatile`.
#if VORN_MERO_OPENCL >= 200
    pipe = 1 << 3, ///< A pipe. Since OpenCL 2.0.
#endif
};
VORN_MERO_BIT_FIELD(kernel_argument_type_qualifier)
#endif

#if VORN_MERO_OPENCL >= 200
/// How shared virtual memory is made and used (`cl_svm_mem_flags`), a bit field. Give at most one of the access flags
/// `read_write`, `write_only` and `read_only`; without one it is `read_write`. Since OpenCL 2.0.
enum class svm_mem_flags : std::uint64_t {
    read_write = 1 << 0,         ///< Kernels read and write it.
    write_only = 1 << 1,         ///< Kernels only write it.
    read_only = 1 << 2,          ///< Kernels only read it.
    fine_grain_buffer = 1 << 10, ///< Host and devices use it at the same time, without mapping.
    atomics = 1 << 11,           ///< Atomic operations work across host and devices; needs `fine_grain_buffer`.
};
VORN_MERO_BIT_FIELD(svm_mem_flags)
#endif

#undef VORN_MERO_BIT_FIELD

} // namespace vorn::mero::VORN_MERO_NAMESPACE

#endif
