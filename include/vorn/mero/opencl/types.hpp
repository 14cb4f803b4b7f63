// The value types of an OpenCL version. Each carries the OpenCL value unchanged; an enumerator bears the name of the
// OpenCL constant without its prefix and the words of its group. Any value can be carried: `mem_flags{0x13A}`. Bit
// fields combine with `|`, `&`, `^` and `~`, and name no flag with `mem_flags{}`; the types of two versions do not mix.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

#define VORN_MERO_BIT_FIELD(name)                                                                                      \
    constexpr name operator|(name a, name b) noexcept {                                                                \
        return name(static_cast<std::uint64_t>(a) | static_cast<std::uint64_t>(b));                                    \
    }                                                                                                                  \
    constexpr name operator&(name a, name b) noexcept {                                                                \
        return name(static_cast<std::uint64_t>(a) & static_cast<std::uint64_t>(b));                                    \
    }                                                                                                                  \
    constexpr name operator^(name a, name b) noexcept {                                                                \
        return name(static_cast<std::uint64_t>(a) ^ static_cast<std::uint64_t>(b));                                    \
    }                                                                                                                  \
    constexpr name operator~(name a) noexcept { return name(~static_cast<std::uint64_t>(a)); }                         \
    constexpr name& operator|=(name& a, name b) noexcept { return a = a | b; }                                         \
    constexpr name& operator&=(name& a, name b) noexcept { return a = a & b; }                                         \
    constexpr name& operator^=(name& a, name b) noexcept { return a = a ^ b; }

/// How a memory object is made and used (`cl_mem_flags`), a bit field. One flag of access at most, `read_write` without
/// any.
///
///     cl::mem_flags const input = cl::mem_flags::read_only | cl::mem_flags::copy_host_ptr;
enum class mem_flags : std::uint64_t {
    read_write = 1 << 0,
    write_only = 1 << 1,     ///< Kernels do not read it.
    read_only = 1 << 2,      ///< Kernels do not write it.
    use_host_ptr = 1 << 3,   ///< Its store is the caller's memory, which must outlive it.
    alloc_host_ptr = 1 << 4, ///< Its store is memory that the host reaches: good to map.
    copy_host_ptr = 1 << 5,  ///< Its first content is copied from the caller's memory.
#if VORN_MERO_OPENCL >= 120
    // What commands of the host may do; others throw `common::invalid_operation`. Since OpenCL 1.2.
    host_write_only = 1 << 7,
    host_read_only = 1 << 8,
    host_no_access = 1 << 9,
#endif
#if VORN_MERO_OPENCL >= 200
    // One kernel both reads and writes it; to ask for image formats only. Since OpenCL 2.0.
    kernel_read_and_write = 1 << 12,
#endif
};
VORN_MERO_BIT_FIELD(mem_flags)

/// How a mapped region is used (`cl_map_flags`), a bit field.
enum class map_flags : std::uint64_t {
    read = 1 << 0,  ///< Its content is there once the mapping is complete.
    write = 1 << 1, ///< The same, and unmapping brings changes back.
#if VORN_MERO_OPENCL >= 120
    write_invalidate_region = 1 << 2, ///< Its content is not brought, all of it will be written; not with the others.
#endif
};
VORN_MERO_BIT_FIELD(map_flags)

/// The kind of a device (`cl_device_type`), a bit field: a device can be of several.
enum class device_type : std::uint64_t {
    default_ = 1 << 0, ///< Whichever the platform prefers.
    cpu = 1 << 1,
    gpu = 1 << 2,
    accelerator = 1 << 3,
#if VORN_MERO_OPENCL >= 120
    custom = 1 << 4, ///< Runs built-in kernels only.
#endif
    all = 0xFFFFFFFF, ///< All but custom devices.
};
VORN_MERO_BIT_FIELD(device_type)

/// The kind of a memory object (`cl_mem_object_type`).
enum class mem_object_type : std::uint32_t {
    buffer = 0x10F0,
    image2d = 0x10F1,
    image3d = 0x10F2,
#if VORN_MERO_OPENCL >= 120
    image2d_array = 0x10F3,
    image1d = 0x10F4,
    image1d_array = 0x10F5,
    image1d_buffer = 0x10F6,
#endif
#if VORN_MERO_OPENCL >= 200
    pipe = 0x10F7,
#endif
};

/// What a sampler reads outside the image (`cl_addressing_mode`).
enum class sampler_addressing_mode : std::uint32_t {
    none = 0x1130,            ///< The kernel reads inside only; outside is undefined.
    clamp_to_edge = 0x1131,   ///< The nearest pixel of the edge.
    clamp = 0x1132,           ///< Zero, with alpha 1 where the format has no alpha.
    repeat = 0x1133,          ///< The image over and over; normalized coordinates only.
    mirrored_repeat = 0x1134, ///< The same with every other one mirrored. Refused by implementations of 1.0.
};

/// How a sampler reads between elements (`cl_filter_mode`).
enum class sampler_filter_mode : std::uint32_t {
    nearest = 0x1140, ///< The pixel that the coordinates lie in.
    linear = 0x1141,  ///< The weighted mean of the 2, 4 or 8 around; not of integer formats.
};

/// The channels of an image element and their order (`cl_channel_order`). What is absent reads as 0, alpha as 1. Every
/// implementation with images has `rgba`; ask `context::image_2d_supported_formats` for the rest.
enum class image_channel_order : std::uint32_t {
    r = 0x10B0,
    a = 0x10B1,
    rg = 0x10B2,
    ra = 0x10B3,
    rgb = 0x10B4, ///< With the packed channel types only.
    rgba = 0x10B5,
    bgra = 0x10B6, ///< With 8-bit channel types only, as `argb`.
    argb = 0x10B7,
    intensity = 0x10B8, ///< One value, read as all four channels.
    luminance = 0x10B9, ///< One value, read as red, green and blue.
#if VORN_MERO_OPENCL >= 110
    // `r`, `rg`, `rgb` with alpha 0 outside the image. Since OpenCL 1.1.
    rx = 0x10BA,
    rgx = 0x10BB,
    rgbx = 0x10BC,
#endif
#if VORN_MERO_OPENCL >= 120
    // One number, of type `unorm_int16` or `float_`. Since OpenCL 1.2 by extension, in the core since 2.0.
    depth = 0x10BD,
    depth_stencil = 0x10BE,
#endif
#if VORN_MERO_OPENCL >= 200
    // The `s` orders are read as linear values, and are of type `unorm_int8`; `abgr` has 8-bit channel types. Since
    // OpenCL 2.0.
    srgb = 0x10BF,
    srgbx = 0x10C0,
    srgba = 0x10C1,
    sbgra = 0x10C2,
    abgr = 0x10C3,
#endif
};

/// The type of an image element's channels (`cl_channel_type`). Kernels read normalized and floating-point ones with
/// `read_imagef`, signed ones with `read_imagei`, unsigned ones with `read_imageui`.
enum class image_channel_type : std::uint32_t {
    // Integers that stand for -1 to 1 (`snorm`) or 0 to 1 (`unorm`).
    snorm_int8 = 0x10D0,
    snorm_int16 = 0x10D1,
    unorm_int8 = 0x10D2,
    unorm_int16 = 0x10D3,

    // All channels of `rgb` packed into 16 or 32 bits.
    unorm_short_565 = 0x10D4,
    unorm_short_555 = 0x10D5,
    unorm_int_101010 = 0x10D6,

    // Integers as they are.
    signed_int8 = 0x10D7,
    signed_int16 = 0x10D8,
    signed_int32 = 0x10D9,
    unsigned_int8 = 0x10DA,
    unsigned_int16 = 0x10DB,
    unsigned_int32 = 0x10DC,
    half_float = 0x10DD,
    float_ = 0x10DE,
#if VORN_MERO_OPENCL >= 120
    unorm_int24 = 0x10DF, ///< Of depth with stencil. Since OpenCL 1.2.
#endif
#if VORN_MERO_OPENCL >= 210
    unorm_int_101010_2 = 0x10E0, ///< `rgba` packed into 32 bits. Since OpenCL 2.1.
#endif
};

/// The format of an image's elements; laid out as `cl_image_format`.
///
///     cl::image_format const pixel{cl::image_channel_order::rgba, cl::image_channel_type::unorm_int8}; // 4 bytes
struct image_format {
    image_channel_order channel_order;
    image_channel_type channel_data_type;

    bool operator==(image_format const&) const = default;
};
static_assert(sizeof(image_format) == 8);

/// The state of a command (`cl_int`), which only ever falls. `failed` stands for every negative status, which
/// `event::error_code` tells apart.
enum class event_execution_status : std::int32_t {
    failed = -1,
    complete = 0,
    running = 1,   ///< The device has started it.
    submitted = 2, ///< The queue has handed it to the device.
    queued = 3,    ///< It waits in the queue.
};

/// The state of a program's build for a device (`cl_build_status`).
enum class program_build_status : std::int32_t {
    success = 0,
    none = -1,  ///< Nothing was built yet.
    error = -2, ///< See `program::build_log`.
    in_progress = -3,
};

/// One word of a context's property list (`cl_context_properties`): a name, its value, and so on, closed by a 0 unless
/// the list is empty. Converts from and to the number that it carries.
///
///     auto* const id = cl::raw::get_raw_platform_id(platform);
///     std::vector<cl::context_property> const list{cl::context_property::platform,
///                                                  reinterpret_cast<std::intptr_t>(id), 0};
class context_property {
public:
    constexpr context_property(std::intptr_t value = 0) noexcept : value_(value) {}
    constexpr operator std::intptr_t() const noexcept { return value_; }

    // The value is a raw platform handle.
    static context_property const platform;
#if VORN_MERO_OPENCL >= 120
    // The value is 1 where the program synchronises with other interfaces itself. Since OpenCL 1.2.
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

/// A size in bytes of local memory, for a kernel argument in the `__local` address space. Each work-group gets its own.
class local_memory {
public:
    explicit constexpr local_memory(std::size_t size) noexcept : size_(size) {}
    constexpr std::size_t size() const noexcept { return size_; }

private:
    std::size_t size_;
};

#if VORN_MERO_OPENCL >= 110
/// The state of a command at which a callback is called (`cl_int`). Spelled with three m. Since OpenCL 1.1.
enum class commmand_exec_callback_type : std::int32_t {
    complete = 0,
    running = 1,
    submitted = 2,
};
#endif

#if VORN_MERO_OPENCL >= 120
/// Where memory objects migrate to (`cl_mem_migration_flags`), a bit field; without a flag to the device of the queue.
/// Since OpenCL 1.2.
enum class migration_flags : std::uint64_t {
    host = 1 << 0,              ///< To the host, whichever the queue.
    content_undefined = 1 << 1, ///< The content need not come along.
};
VORN_MERO_BIT_FIELD(migration_flags)

/// What a program holds for a device (`cl_program_binary_type`). Since OpenCL 1.2.
enum class program_binary_type : std::uint32_t {
    none = 0,            ///< Nothing: it was not built.
    compiled_object = 1, ///< To be linked, see `context::link_programs`.
    library = 2,         ///< The same, linked as a library.
    executable = 4,      ///< It has kernels.
};

/// What the compute units of a sub-device share (`cl_device_affinity_domain`), a bit field. Since OpenCL 1.2.
enum class device_affinity_domain : std::uint64_t {
    numa = 1 << 0,
    l4_cache = 1 << 1,
    l3_cache = 1 << 2,
    l2_cache = 1 << 3,
    l1_cache = 1 << 4,
    next_partitionable = 1 << 5, ///< The first of the above by which the device can be divided.
};
VORN_MERO_BIT_FIELD(device_affinity_domain)

/// One word of a list that says how a device was partitioned (`cl_device_partition_property`): a scheme, then its
/// numbers, then maybe a 0. Converts from and to the number that it carries. Since OpenCL 1.2.
class device_partition_property {
public:
    constexpr device_partition_property(std::intptr_t value = 0) noexcept : value_(value) {}
    constexpr operator std::intptr_t() const noexcept { return value_; }

    // The schemes: followed by the compute units of each sub-device; by a count for each sub-device and the list's end;
    // by a `device_affinity_domain`.
    static device_partition_property const equally;
    static device_partition_property const by_counts;
    static device_partition_property const by_counts_list_end;
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
    global = 0x119B,
    local = 0x119C,
    constant = 0x119D,
    private_ = 0x119E,
};

/// The access of a kernel's image or pipe argument (`cl_kernel_arg_access_qualifier`), `none` for any other. Since
/// OpenCL 1.2.
enum class kernel_argument_access_qualifier : std::uint32_t {
    read_only = 0x11A0,
    write_only = 0x11A1,
    read_write = 0x11A2,
    none = 0x11A3,
};

/// The qualifiers of a kernel argument's type (`cl_kernel_arg_type_qualifier`), a bit field. For a pointer they are
/// those of what it points to. Since OpenCL 1.2.
enum class kernel_argument_type_qualifier : std::uint64_t {
    none = 0,
    const_ = 1 << 0,
    restrict_ = 1 << 1,
    volatile_ = 1 << 2,
#if VORN_MERO_OPENCL >= 200
    pipe = 1 << 3,
#endif
};
VORN_MERO_BIT_FIELD(kernel_argument_type_qualifier)
#endif

#if VORN_MERO_OPENCL >= 200
/// How shared virtual memory is made and used (`cl_svm_mem_flags`), a bit field. One flag of access at most,
/// `read_write` without any. Since OpenCL 2.0.
enum class svm_mem_flags : std::uint64_t {
    read_write = 1 << 0,
    write_only = 1 << 1,
    read_only = 1 << 2,
    fine_grain_buffer = 1 << 10, ///< Host and device use it at once, without mapping it.
    atomics = 1 << 11,           ///< The same with atomic operations; beside the flag above.
};
VORN_MERO_BIT_FIELD(svm_mem_flags)
#endif

#undef VORN_MERO_BIT_FIELD

} // namespace vorn::mero::VORN_MERO_NAMESPACE
