#define CL_TARGET_OPENCL_VERSION 220
#include "unit/allocations.hpp"
#include "unit/members.hpp"

#include <CL/cl.h>

namespace unit {
namespace {

using block::clGetDeviceInfo;

template <class Api>
class devices : public members<Api> {};
TYPED_TEST_SUITE(devices, versions);

enum class read_as { cl_uint, eight_bytes, cl_bool };
using enum read_as;

/// A member of one scalar query, or of one query and a test.
template <class World>
struct scalar {
    char const* member;
    int first;
    int last;
    std::uint32_t name;
    read_as type;
    bool present;
    bool gives_bool;
    word (*read)(World&);
};

#define SCALAR(member, first, last, name, type)                                                                        \
    scalar<World> {                                                                                                    \
#member, first, last, name, type, requires(World & w) { w.device.member(); }                                   \
        , requires(World & w) {                                                                                        \
            { w.device.member() } -> std::same_as<bool>;                                                               \
        }                                                                                                              \
        , [](World& w) {                                                                                               \
            if constexpr (requires { w.device.member(); }) {                                                           \
                return word_of(w.device.member());                                                                     \
            } else {                                                                                                   \
                return word{0};                                                                                        \
            }                                                                                                          \
        }                                                                                                              \
    }

template <class World>
std::vector<scalar<World>> const scalars{
    SCALAR(vendor_id, 100, 220, CL_DEVICE_VENDOR_ID, cl_uint),
    SCALAR(max_compute_units, 100, 220, CL_DEVICE_MAX_COMPUTE_UNITS, cl_uint),
    SCALAR(max_work_item_dimensions, 100, 220, CL_DEVICE_MAX_WORK_ITEM_DIMENSIONS, cl_uint),
    SCALAR(max_work_group_size, 100, 220, CL_DEVICE_MAX_WORK_GROUP_SIZE, eight_bytes),
    SCALAR(preferred_vector_width_char, 100, 220, CL_DEVICE_PREFERRED_VECTOR_WIDTH_CHAR, cl_uint),
    SCALAR(preferred_vector_width_short, 100, 220, CL_DEVICE_PREFERRED_VECTOR_WIDTH_SHORT, cl_uint),
    SCALAR(preferred_vector_width_int, 100, 220, CL_DEVICE_PREFERRED_VECTOR_WIDTH_INT, cl_uint),
    SCALAR(preferred_vector_width_long, 100, 220, CL_DEVICE_PREFERRED_VECTOR_WIDTH_LONG, cl_uint),
    SCALAR(preferred_vector_width_float, 100, 220, CL_DEVICE_PREFERRED_VECTOR_WIDTH_FLOAT, cl_uint),
    SCALAR(preferred_vector_width_double, 100, 220, CL_DEVICE_PREFERRED_VECTOR_WIDTH_DOUBLE, cl_uint),
    SCALAR(preferred_vector_width_half, 110, 220, CL_DEVICE_PREFERRED_VECTOR_WIDTH_HALF, cl_uint),
    SCALAR(native_vector_width_char, 110, 220, CL_DEVICE_NATIVE_VECTOR_WIDTH_CHAR, cl_uint),
    SCALAR(native_vector_width_short, 110, 220, CL_DEVICE_NATIVE_VECTOR_WIDTH_SHORT, cl_uint),
    SCALAR(native_vector_width_int, 110, 220, CL_DEVICE_NATIVE_VECTOR_WIDTH_INT, cl_uint),
    SCALAR(native_vector_width_long, 110, 220, CL_DEVICE_NATIVE_VECTOR_WIDTH_LONG, cl_uint),
    SCALAR(native_vector_width_float, 110, 220, CL_DEVICE_NATIVE_VECTOR_WIDTH_FLOAT, cl_uint),
    SCALAR(native_vector_width_double, 110, 220, CL_DEVICE_NATIVE_VECTOR_WIDTH_DOUBLE, cl_uint),
    SCALAR(native_vector_width_half, 110, 220, CL_DEVICE_NATIVE_VECTOR_WIDTH_HALF, cl_uint),
    SCALAR(max_clock_frequency, 100, 220, CL_DEVICE_MAX_CLOCK_FREQUENCY, cl_uint),
    SCALAR(address_bits, 100, 220, CL_DEVICE_ADDRESS_BITS, cl_uint),
    SCALAR(max_read_image_args, 100, 220, CL_DEVICE_MAX_READ_IMAGE_ARGS, cl_uint),
    SCALAR(max_write_image_args, 100, 120, CL_DEVICE_MAX_WRITE_IMAGE_ARGS, cl_uint),
    SCALAR(max_read_write_image_args, 200, 220, CL_DEVICE_MAX_READ_WRITE_IMAGE_ARGS, cl_uint),
    SCALAR(max_mem_alloc_size, 100, 220, CL_DEVICE_MAX_MEM_ALLOC_SIZE, eight_bytes),
    SCALAR(image2d_max_width, 100, 220, CL_DEVICE_IMAGE2D_MAX_WIDTH, eight_bytes),
    SCALAR(image2d_max_height, 100, 220, CL_DEVICE_IMAGE2D_MAX_HEIGHT, eight_bytes),
    SCALAR(image3d_max_width, 100, 220, CL_DEVICE_IMAGE3D_MAX_WIDTH, eight_bytes),
    SCALAR(image3d_max_height, 100, 220, CL_DEVICE_IMAGE3D_MAX_HEIGHT, eight_bytes),
    SCALAR(image3d_max_depth, 100, 220, CL_DEVICE_IMAGE3D_MAX_DEPTH, eight_bytes),
    SCALAR(image_max_buffer_size, 120, 220, CL_DEVICE_IMAGE_MAX_BUFFER_SIZE, eight_bytes),
    SCALAR(image_max_array_size, 120, 220, CL_DEVICE_IMAGE_MAX_ARRAY_SIZE, eight_bytes),
    SCALAR(image_pitch_alignment, 200, 220, CL_DEVICE_IMAGE_PITCH_ALIGNMENT, cl_uint),
    SCALAR(image_base_address_alignment, 200, 220, CL_DEVICE_IMAGE_BASE_ADDRESS_ALIGNMENT, cl_uint),
    SCALAR(image_support, 100, 220, CL_DEVICE_IMAGE_SUPPORT, cl_bool),
    SCALAR(max_parameter_size, 100, 220, CL_DEVICE_MAX_PARAMETER_SIZE, eight_bytes),
    SCALAR(max_samplers, 100, 220, CL_DEVICE_MAX_SAMPLERS, cl_uint),
    SCALAR(mem_base_addr_align, 100, 220, CL_DEVICE_MEM_BASE_ADDR_ALIGN, cl_uint),
    SCALAR(min_data_type_align_size, 110, 110, CL_DEVICE_MIN_DATA_TYPE_ALIGN_SIZE, cl_uint),
    SCALAR(global_mem_cacheline_size, 100, 220, CL_DEVICE_GLOBAL_MEM_CACHELINE_SIZE, cl_uint),
    SCALAR(global_mem_cache_size, 100, 220, CL_DEVICE_GLOBAL_MEM_CACHE_SIZE, eight_bytes),
    SCALAR(global_mem_size, 100, 220, CL_DEVICE_GLOBAL_MEM_SIZE, eight_bytes),
    SCALAR(max_constant_buffer_size, 100, 220, CL_DEVICE_MAX_CONSTANT_BUFFER_SIZE, eight_bytes),
    SCALAR(max_constant_args, 100, 220, CL_DEVICE_MAX_CONSTANT_ARGS, cl_uint),
    SCALAR(max_global_variable_size, 200, 220, CL_DEVICE_MAX_GLOBAL_VARIABLE_SIZE, eight_bytes),
    SCALAR(global_variable_preferred_total_size, 200, 220, CL_DEVICE_GLOBAL_VARIABLE_PREFERRED_TOTAL_SIZE, eight_bytes),
    SCALAR(local_mem_size, 100, 220, CL_DEVICE_LOCAL_MEM_SIZE, eight_bytes),
    SCALAR(error_correction_support, 100, 220, CL_DEVICE_ERROR_CORRECTION_SUPPORT, cl_bool),
    SCALAR(host_unified_memory, 110, 120, CL_DEVICE_HOST_UNIFIED_MEMORY, cl_bool),
    SCALAR(profiling_timer_resolution, 100, 220, CL_DEVICE_PROFILING_TIMER_RESOLUTION, eight_bytes),
    SCALAR(endian_little, 100, 220, CL_DEVICE_ENDIAN_LITTLE, cl_bool),
    SCALAR(available, 100, 220, CL_DEVICE_AVAILABLE, cl_bool),
    SCALAR(compiler_available, 100, 220, CL_DEVICE_COMPILER_AVAILABLE, cl_bool),
    SCALAR(linker_available, 120, 220, CL_DEVICE_LINKER_AVAILABLE, cl_bool),
    SCALAR(preferred_interop_user_sync, 120, 220, CL_DEVICE_PREFERRED_INTEROP_USER_SYNC, cl_bool),
    SCALAR(printf_buffer_size, 120, 220, CL_DEVICE_PRINTF_BUFFER_SIZE, eight_bytes),
    SCALAR(partition_max_sub_devices, 120, 220, CL_DEVICE_PARTITION_MAX_SUB_DEVICES, cl_uint),
    SCALAR(partition_supported_affinity_domains, 120, 220, CL_DEVICE_PARTITION_AFFINITY_DOMAIN, eight_bytes),
    SCALAR(max_pipe_args, 200, 220, CL_DEVICE_MAX_PIPE_ARGS, cl_uint),
    SCALAR(pipe_max_active_reservations, 200, 220, CL_DEVICE_PIPE_MAX_ACTIVE_RESERVATIONS, cl_uint),
    SCALAR(pipe_max_packet_size, 200, 220, CL_DEVICE_PIPE_MAX_PACKET_SIZE, cl_uint),
    SCALAR(queue_on_device_preferred_size, 200, 220, CL_DEVICE_QUEUE_ON_DEVICE_PREFERRED_SIZE, cl_uint),
    SCALAR(queue_on_device_max_size, 200, 220, CL_DEVICE_QUEUE_ON_DEVICE_MAX_SIZE, cl_uint),
    SCALAR(max_on_device_queues, 200, 220, CL_DEVICE_MAX_ON_DEVICE_QUEUES, cl_uint),
    SCALAR(max_on_device_events, 200, 220, CL_DEVICE_MAX_ON_DEVICE_EVENTS, cl_uint),
    SCALAR(preferred_platform_atomic_alignment, 200, 220, CL_DEVICE_PREFERRED_PLATFORM_ATOMIC_ALIGNMENT, cl_uint),
    SCALAR(preferred_global_atomic_alignment, 200, 220, CL_DEVICE_PREFERRED_GLOBAL_ATOMIC_ALIGNMENT, cl_uint),
    SCALAR(preferred_local_atomic_alignment, 200, 220, CL_DEVICE_PREFERRED_LOCAL_ATOMIC_ALIGNMENT, cl_uint),
    SCALAR(max_num_sub_groups, 210, 220, CL_DEVICE_MAX_NUM_SUB_GROUPS, cl_uint),
    SCALAR(sub_group_independent_forward_progress, 210, 220, CL_DEVICE_SUB_GROUP_INDEPENDENT_FORWARD_PROGRESS, cl_bool),
};

TYPED_TEST(devices, reads_scalars) {
    auto& w = this->objects;
    for (auto const& row : scalars<world<TypeParam>>) {
        SCOPED_TRACE(row.member);
        bool const present = row.first <= TypeParam::number && TypeParam::number <= row.last;
        ASSERT_EQ(present, row.present);
        if (!present) {
            continue;
        }
        EXPECT_EQ(row.gives_bool, row.type == cl_bool);
        auto const reads = [&](std::string const& reply, word expected) {
            this->template reads<clGetDeviceInfo>(w.device, row.name, reply, expected, [&] { return row.read(w); });
        };
        if (row.type == cl_uint) {
            reads(scripted::bytes_of(std::uint32_t{0x89ABCDEF}), 0x89ABCDEF);
        } else if (row.type == eight_bytes) {
            reads(scripted::bytes_of(word{0x8123456789ABCDEF}), 0x8123456789ABCDEF);
        } else {
            reads(scripted::bytes_of(std::uint32_t{0x100}), 1);
            reads(scripted::bytes_of(std::uint32_t{0}), 0);
        }
    }
}

/// A member that tests what a query of some bytes answers: true for the one answer, false for the others.
template <class World>
struct predicate {
    scalar<World> member;
    std::size_t width;
    word yes;
    std::vector<word> no;
};

constexpr word all_but(word bit) { return ~bit; }

#define BIT(member, first, last, name, bit)                                                                            \
    predicate<World> {                                                                                                 \
        SCALAR(member, first, last, name, eight_bytes), 8, word{1} << (bit), { all_but(word{1} << (bit)), 0 }          \
    }
#define EQUAL(member, first, last, name, width, ...)                                                                   \
    predicate<World> { SCALAR(member, first, last, name, cl_uint), width, __VA_ARGS__ }

template <class World>
std::vector<predicate<World>> const predicates{
    EQUAL(is_type_default, 100, 220, CL_DEVICE_TYPE, 8, 1, {0, 2, 5}),
    EQUAL(is_type_cpu, 100, 220, CL_DEVICE_TYPE, 8, 2, {0, 1, 3}),
    EQUAL(is_type_gpu, 100, 220, CL_DEVICE_TYPE, 8, 4, {0, 1, 5}),
    EQUAL(is_type_accelerator, 100, 220, CL_DEVICE_TYPE, 8, 8, {0, 9}),
    EQUAL(is_type_custom, 120, 220, CL_DEVICE_TYPE, 8, 16, {0, 17}),
    BIT(single_fp_denorms_supported, 100, 220, CL_DEVICE_SINGLE_FP_CONFIG, 0),
    BIT(single_fp_inf_nan_supported, 100, 220, CL_DEVICE_SINGLE_FP_CONFIG, 1),
    BIT(single_fp_round_to_nearest_supported, 100, 220, CL_DEVICE_SINGLE_FP_CONFIG, 2),
    BIT(single_fp_round_to_zero_supported, 100, 220, CL_DEVICE_SINGLE_FP_CONFIG, 3),
    BIT(single_fp_round_to_inf_supported, 100, 220, CL_DEVICE_SINGLE_FP_CONFIG, 4),
    BIT(single_fp_fma_supported, 100, 220, CL_DEVICE_SINGLE_FP_CONFIG, 5),
    BIT(single_fp_software_emulated, 110, 220, CL_DEVICE_SINGLE_FP_CONFIG, 6),
    BIT(single_fp_correctly_rounded_divide_sqrt, 120, 220, CL_DEVICE_SINGLE_FP_CONFIG, 7),
    BIT(double_fp_denorms_supported, 100, 220, CL_DEVICE_DOUBLE_FP_CONFIG, 0),
    BIT(double_fp_inf_nan_supported, 100, 220, CL_DEVICE_DOUBLE_FP_CONFIG, 1),
    BIT(double_fp_round_to_nearest_supported, 100, 220, CL_DEVICE_DOUBLE_FP_CONFIG, 2),
    BIT(double_fp_round_to_zero_supported, 100, 220, CL_DEVICE_DOUBLE_FP_CONFIG, 3),
    BIT(double_fp_round_to_inf_supported, 100, 220, CL_DEVICE_DOUBLE_FP_CONFIG, 4),
    BIT(double_fp_fma_supported, 100, 220, CL_DEVICE_DOUBLE_FP_CONFIG, 5),
    BIT(double_fp_software_emulated, 110, 220, CL_DEVICE_DOUBLE_FP_CONFIG, 6),
    EQUAL(is_global_mem_cache_type_none, 100, 220, CL_DEVICE_GLOBAL_MEM_CACHE_TYPE, 4, 0, {1, 2}),
    EQUAL(is_global_mem_cache_type_read_only, 100, 220, CL_DEVICE_GLOBAL_MEM_CACHE_TYPE, 4, 1, {0, 2, 3}),
    EQUAL(is_global_mem_cache_type_read_write, 100, 220, CL_DEVICE_GLOBAL_MEM_CACHE_TYPE, 4, 2, {0, 1, 3}),
    EQUAL(dedicated_local_memory, 100, 220, CL_DEVICE_LOCAL_MEM_TYPE, 4, 1, {0, 2, 3}),
    BIT(can_execute_kernels, 100, 220, CL_DEVICE_EXECUTION_CAPABILITIES, 0),
    BIT(can_execute_native_kernels, 100, 220, CL_DEVICE_EXECUTION_CAPABILITIES, 1),
    BIT(out_of_order_command_queue_supported, 100, 120, CL_DEVICE_QUEUE_PROPERTIES, 0),
    BIT(profiling_command_queue_supported, 100, 120, CL_DEVICE_QUEUE_PROPERTIES, 1),
    BIT(host_out_of_order_command_queue_supported, 200, 220, CL_DEVICE_QUEUE_ON_HOST_PROPERTIES, 0),
    BIT(host_profiling_command_queue_supported, 200, 220, CL_DEVICE_QUEUE_ON_HOST_PROPERTIES, 1),
    BIT(device_out_of_order_command_queue_supported, 200, 220, CL_DEVICE_QUEUE_ON_DEVICE_PROPERTIES, 0),
    BIT(device_profiling_command_queue_supported, 200, 220, CL_DEVICE_QUEUE_ON_DEVICE_PROPERTIES, 1),
    BIT(svm_coarse_grain_buffer_supported, 200, 220, CL_DEVICE_SVM_CAPABILITIES, 0),
    BIT(svm_fine_grain_buffer_supported, 200, 220, CL_DEVICE_SVM_CAPABILITIES, 1),
    BIT(svm_fine_grain_system_supported, 200, 220, CL_DEVICE_SVM_CAPABILITIES, 2),
    BIT(svm_atomics_supported, 200, 220, CL_DEVICE_SVM_CAPABILITIES, 3),
    EQUAL(is_root_device, 120, 220, CL_DEVICE_PARENT_DEVICE, 8, 0, {0x1000, all_but(0)}),
    EQUAL(partition_equally_supported, 120, 220, CL_DEVICE_PARTITION_PROPERTIES, 8, 0x1086, {0, 0x1087, 0x1088}),
    EQUAL(partition_by_counts_supported, 120, 220, CL_DEVICE_PARTITION_PROPERTIES, 8, 0x1087, {0, 0x1086, 0x1088}),
    EQUAL(partition_affinity_domain_supported, 120, 220, CL_DEVICE_PARTITION_AFFINITY_DOMAIN, 8, word{1} << 40, {0}),
};

TYPED_TEST(devices, tests_what_it_reads) {
    auto& w = this->objects;
    for (auto const& row : predicates<world<TypeParam>>) {
        SCOPED_TRACE(row.member.member);
        bool const present = row.member.first <= TypeParam::number && TypeParam::number <= row.member.last;
        ASSERT_EQ(present, row.member.present);
        if (!present) {
            continue;
        }
        auto const answers = [&](word reply, word expected) {
            this->template reads<clGetDeviceInfo>(w.device, row.member.name,
                                                  scripted::bytes_of(reply).substr(0, row.width), expected,
                                                  [&] { return row.member.read(w); });
        };
        answers(row.yes, 1);
        for (word const reply : row.no) {
            answers(reply, 0);
        }
    }
}

TYPED_TEST(devices, reads_texts_and_lists) {
    auto& w = this->objects;
    auto const reads = [&](std::uint32_t name, std::string const& text, auto const& expected, auto read) {
        this->template reads<clGetDeviceInfo>(w.device, name, scripted::text(text), expected, read);
    };
    reads(CL_DEVICE_NAME, "a name", "a name", [&] { return w.device.name(); });
    reads(CL_DEVICE_VENDOR, "a maker", "a maker", [&] { return w.device.vendor(); });
    reads(CL_DRIVER_VERSION, "3", "3", [&] { return w.device.driver_version(); });
    reads(CL_DEVICE_VERSION, "OpenCL 1", "OpenCL 1", [&] { return w.device.device_version(); });
    reads(CL_DEVICE_EXTENSIONS, " a;b  c ", calls{"a;b", "c"}, [&] { return w.device.extensions(); });
    for (auto const& [profile, embedded] :
         {std::pair{"EMBEDDED_PROFILE", true}, {"FULL_PROFILE", false}, {"", false}}) {
        reads(CL_DEVICE_PROFILE, profile, embedded, [&] { return w.device.is_embedded_profile(); });
        reads(CL_DEVICE_PROFILE, profile, !embedded, [&] { return w.device.is_full_profile(); });
    }
    if constexpr (TypeParam::number >= 110) {
        reads(CL_DEVICE_OPENCL_C_VERSION, "C", "C", [&] { return w.device.opencl_c_version(); });
    }
    if constexpr (TypeParam::number >= 120) {
        reads(CL_DEVICE_BUILT_IN_KERNELS, ";a b;;c", calls{"a b", "c"}, [&] { return w.device.built_in_kernels(); });
    }
    if constexpr (TypeParam::number >= 210) {
        reads(CL_DEVICE_IL_VERSION, "SPIR-V", "SPIR-V", [&] { return w.device.il_version(); });
    }
}

TYPED_TEST(devices, reads_sizes_and_related_objects) {
    auto& w = this->objects;
    auto const reads = [&](std::uint32_t name, std::string const& reply, auto const& expected, auto read) {
        this->template reads<clGetDeviceInfo>(w.device, name, reply, expected, read);
    };
    std::vector<std::size_t> const sizes{7, 8, 9, 10};
    reads(CL_DEVICE_MAX_WORK_ITEM_SIZES, scripted::bytes_of(sizes[0], sizes[1], sizes[2]),
          std::array<std::size_t, 3>{7, 8, 9}, [&] { return w.device.max_work_item_sizes(); });
    this->libnq.template reply<clGetDeviceInfo>(CL_DEVICE_MAX_WORK_ITEM_SIZES, scripted::bytes_of_list(sizes));
    EXPECT_EQ(message_of<common::bad_implementation>([&] { w.device.max_work_item_sizes(); }),
              "Expected to read an array of 3 elements from the OpenCL implementation.  Implementation reported the "
              "array to be 32 bytes, but expected the array to be 24 bytes.");

    reads(CL_DEVICE_PLATFORM, scripted::bytes_of(word_of(w.platform)), w.platform,
          [&] { return w.device.get_platform(); });
    if constexpr (TypeParam::number >= 120) {
        reads(CL_DEVICE_PARENT_DEVICE, scripted::bytes_of(word_of(w.device_2)), w.device_2,
              [&] { return w.device.parent_device(); });
    }
}

TYPED_TEST(devices, allocates_for_its_results_alone) {
    auto& w = this->objects;
    this->libnq.template reply<clGetDeviceInfo>(CL_DEVICE_NAME, scripted::text(std::string(100, 'a')));
    this->libnq.template reply<clGetDeviceInfo>(CL_DEVICE_ADDRESS_BITS, scripted::bytes_of(64));
    this->libnq.template reply<clGetDeviceInfo>(CL_DEVICE_MAX_WORK_ITEM_SIZES, std::string(24, '\1'));
    allocation_watch const watch;
    w.device.address_bits();
    w.device.max_work_item_sizes();
    EXPECT_EQ(watch.count(), 0U);
    w.device.name();
    EXPECT_EQ(watch.count(), 1U);
}

TYPED_TEST(devices, reads_timers) {
    if constexpr (TypeParam::number >= 210) {
        auto& w = this->objects;
        auto* const device_time = reinterpret_cast<void*>(0x1111);
        auto* const host_time = reinterpret_cast<void*>(0x2222);
        this->template performs<block::clGetHostTimer>(w.device, {.status = 16, .through = 8}, {u8(0, w.device)},
                                                       [&] { return w.device.get_host_timer(); });
        this->template performs<block::clGetDeviceAndHostTimer>(
            w.device, {.status = 24, .through = 16}, {u8(0, w.device)},
            [&] { return w.device.get_device_and_host_timer().first; });
        this->libnq.template on<block::clGetDeviceAndHostTimer>([=](block::clGetDeviceAndHostTimer& block) {
            answer(&block, {.through = 8}, 0, device_time);
            answer(&block, {.through = 16}, 0, host_time);
        });
        EXPECT_EQ(w.device.get_device_and_host_timer(), (std::pair<word, word>{0x2222, 0x1111}));
    }
}

} // namespace
} // namespace unit
