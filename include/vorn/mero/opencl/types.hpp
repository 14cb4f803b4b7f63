// The value types of an OpenCL version. Each carries the OpenCL value unchanged; an enumerator bears the name of the
// OpenCL constant without its prefix and the words of its group. Any value can be carried: `mem_flags{0x13A}`.
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

/// How a memory object is made and used (`cl_mem_flags`), a bit field.
enum class mem_flags : std::uint64_t {
    read_write = 1 << 0,
    write_only = 1 << 1,
    read_only = 1 << 2,
    use_host_ptr = 1 << 3,
    alloc_host_ptr = 1 << 4,
    copy_host_ptr = 1 << 5,
#if VORN_MERO_OPENCL >= 120
    host_write_only = 1 << 7,
    host_read_only = 1 << 8,
    host_no_access = 1 << 9,
#endif
#if VORN_MERO_OPENCL >= 200
    kernel_read_and_write = 1 << 12,
#endif
};
VORN_MERO_BIT_FIELD(mem_flags)

/// How a mapped region is used (`cl_map_flags`), a bit field.
enum class map_flags : std::uint64_t {
    read = 1 << 0,
    write = 1 << 1,
#if VORN_MERO_OPENCL >= 120
    write_invalidate_region = 1 << 2,
#endif
};
VORN_MERO_BIT_FIELD(map_flags)

/// The kind of a device (`cl_device_type`), a bit field.
enum class device_type : std::uint64_t {
    default_ = 1 << 0,
    cpu = 1 << 1,
    gpu = 1 << 2,
    accelerator = 1 << 3,
#if VORN_MERO_OPENCL >= 120
    custom = 1 << 4,
#endif
    all = 0xFFFFFFFF,
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
    none = 0x1130,
    clamp_to_edge = 0x1131,
    clamp = 0x1132,
    repeat = 0x1133,
    mirrored_repeat = 0x1134, ///< A constant of OpenCL since 1.1; refused by implementations of 1.0.
};

/// How a sampler reads between elements (`cl_filter_mode`).
enum class sampler_filter_mode : std::uint32_t {
    nearest = 0x1140,
    linear = 0x1141,
};

/// The channels of an image element and their order (`cl_channel_order`).
enum class image_channel_order : std::uint32_t {
    r = 0x10B0,
    a = 0x10B1,
    rg = 0x10B2,
    ra = 0x10B3,
    rgb = 0x10B4,
    rgba = 0x10B5,
    bgra = 0x10B6,
    argb = 0x10B7,
    intensity = 0x10B8,
    luminance = 0x10B9,
#if VORN_MERO_OPENCL >= 110
    rx = 0x10BA,
    rgx = 0x10BB,
    rgbx = 0x10BC,
#endif
#if VORN_MERO_OPENCL >= 120
    depth = 0x10BD,
    depth_stencil = 0x10BE,
#endif
#if VORN_MERO_OPENCL >= 200
    srgb = 0x10BF,
    srgbx = 0x10C0,
    srgba = 0x10C1,
    sbgra = 0x10C2,
    abgr = 0x10C3,
#endif
};

/// The type of an image element's channels (`cl_channel_type`).
enum class image_channel_type : std::uint32_t {
    snorm_int8 = 0x10D0,
    snorm_int16 = 0x10D1,
    unorm_int8 = 0x10D2,
    unorm_int16 = 0x10D3,
    unorm_short_565 = 0x10D4,
    unorm_short_555 = 0x10D5,
    unorm_int_101010 = 0x10D6,
    signed_int8 = 0x10D7,
    signed_int16 = 0x10D8,
    signed_int32 = 0x10D9,
    unsigned_int8 = 0x10DA,
    unsigned_int16 = 0x10DB,
    unsigned_int32 = 0x10DC,
    half_float = 0x10DD,
    float_ = 0x10DE,
#if VORN_MERO_OPENCL >= 120
    unorm_int24 = 0x10DF,
#endif
#if VORN_MERO_OPENCL >= 210
    unorm_int_101010_2 = 0x10E0,
#endif
};

/// The format of an image's elements; laid out as `cl_image_format`.
struct image_format {
    image_channel_order channel_order;
    image_channel_type channel_data_type;

    bool operator==(image_format const&) const = default;
};
static_assert(sizeof(image_format) == 8);

/// The state of a command (`cl_int`): `failed` stands for every negative status, which `event::error_code` tells apart.
enum class event_execution_status : std::int32_t {
    failed = -1,
    complete = 0,
    running = 1,
    submitted = 2,
    queued = 3,
};

/// The state of a program's build (`cl_build_status`).
enum class program_build_status : std::int32_t {
    success = 0,
    none = -1,
    error = -2,
    in_progress = -3,
};

/// One word of a context's property list (`cl_context_properties`). A list that is not empty must end with 0.
class context_property {
public:
    constexpr context_property(std::intptr_t value = 0) noexcept : value_(value) {}
    constexpr operator std::intptr_t() const noexcept { return value_; }

    static context_property const platform;
#if VORN_MERO_OPENCL >= 120
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

/// A size in bytes of local memory, for a kernel argument in the `__local` address space.
class local_memory {
public:
    explicit constexpr local_memory(std::size_t size) noexcept : size_(size) {}
    constexpr std::size_t size() const noexcept { return size_; }

private:
    std::size_t size_;
};

#if VORN_MERO_OPENCL >= 110
/// The state of a command at which a callback is called (`cl_int`).
enum class commmand_exec_callback_type : std::int32_t {
    complete = 0,
    running = 1,
    submitted = 2,
};
#endif

#if VORN_MERO_OPENCL >= 120
/// Where memory objects migrate to (`cl_mem_migration_flags`), a bit field. Since OpenCL 1.2.
enum class migration_flags : std::uint64_t {
    host = 1 << 0,
    content_undefined = 1 << 1,
};
VORN_MERO_BIT_FIELD(migration_flags)

/// What a program holds for a device (`cl_program_binary_type`). Since OpenCL 1.2.
enum class program_binary_type : std::uint32_t {
    none = 0,
    compiled_object = 1,
    library = 2,
    executable = 4,
};

/// What sub-devices share (`cl_device_affinity_domain`), a bit field. Since OpenCL 1.2.
enum class device_affinity_domain : std::uint64_t {
    numa = 1 << 0,
    l4_cache = 1 << 1,
    l3_cache = 1 << 2,
    l2_cache = 1 << 3,
    l1_cache = 1 << 4,
    next_partitionable = 1 << 5,
};
VORN_MERO_BIT_FIELD(device_affinity_domain)

/// One word of a list that says how a device was partitioned (`cl_device_partition_property`). Since OpenCL 1.2.
class device_partition_property {
public:
    constexpr device_partition_property(std::intptr_t value = 0) noexcept : value_(value) {}
    constexpr operator std::intptr_t() const noexcept { return value_; }

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

/// The access of a kernel's image or pipe argument (`cl_kernel_arg_access_qualifier`). Since OpenCL 1.2.
enum class kernel_argument_access_qualifier : std::uint32_t {
    read_only = 0x11A0,
    write_only = 0x11A1,
    read_write = 0x11A2,
    none = 0x11A3,
};

/// The qualifiers of a kernel argument's type (`cl_kernel_arg_type_qualifier`), a bit field. Since OpenCL 1.2.
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
/// How shared virtual memory is made and used (`cl_svm_mem_flags`), a bit field. Since OpenCL 2.0.
enum class svm_mem_flags : std::uint64_t {
    read_write = 1 << 0,
    write_only = 1 << 1,
    read_only = 1 << 2,
    fine_grain_buffer = 1 << 10,
    atomics = 1 << 11,
};
VORN_MERO_BIT_FIELD(svm_mem_flags)
#endif

#undef VORN_MERO_BIT_FIELD

} // namespace vorn::mero::VORN_MERO_NAMESPACE
