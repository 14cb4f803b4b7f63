#include "c_answers.hpp"
#include "objects.hpp"

#include <algorithm>

namespace real {
namespace {

answer ask_device(_nq_cl_device_id* device, cl_device_info name) {
    return ask(REAL_C_API(clGetDeviceInfo), reinterpret_cast<cl_device_id>(device), name);
}

#define EXPECT_WORD(first, last, word, member, name, expression)                                                       \
    if constexpr (Api::number >= first && Api::number <= last) {                                                       \
        expect_same<word>(                                                                                             \
            #member, ask_device(raw_of(device), name), [&] { return device.member(); },                                \
            [](word value) { return expression; });                                                                    \
    }
#define EXPECT_NUMBER(first, last, word, member, name)                                                                 \
    EXPECT_WORD(first, last, word, member, name, static_cast<decltype(device.member())>(value))
#define EXPECT_TRUTH(first, last, member, name) EXPECT_WORD(first, last, cl_bool, member, name, value != CL_FALSE)
#define EXPECT_BIT(first, last, member, name, bit)                                                                     \
    EXPECT_WORD(first, last, cl_ulong, member, name, (value & (bit)) != 0)

template <class Api>
void compare_numbers(typename Api::device const& device) {
    EXPECT_NUMBER(100, 220, cl_uint, vendor_id, CL_DEVICE_VENDOR_ID)
    EXPECT_NUMBER(100, 220, cl_uint, max_compute_units, CL_DEVICE_MAX_COMPUTE_UNITS)
    EXPECT_NUMBER(100, 220, cl_uint, max_work_item_dimensions, CL_DEVICE_MAX_WORK_ITEM_DIMENSIONS)
    EXPECT_NUMBER(100, 220, std::size_t, max_work_group_size, CL_DEVICE_MAX_WORK_GROUP_SIZE)
    EXPECT_NUMBER(100, 220, cl_uint, max_clock_frequency, CL_DEVICE_MAX_CLOCK_FREQUENCY)
    EXPECT_NUMBER(100, 220, cl_uint, address_bits, CL_DEVICE_ADDRESS_BITS)
    EXPECT_NUMBER(100, 220, cl_uint, max_read_image_args, CL_DEVICE_MAX_READ_IMAGE_ARGS)
    EXPECT_NUMBER(100, 120, cl_uint, max_write_image_args, CL_DEVICE_MAX_WRITE_IMAGE_ARGS)
    EXPECT_NUMBER(200, 220, cl_uint, max_read_write_image_args, CL_DEVICE_MAX_READ_WRITE_IMAGE_ARGS)
    EXPECT_NUMBER(100, 220, cl_ulong, max_mem_alloc_size, CL_DEVICE_MAX_MEM_ALLOC_SIZE)
    EXPECT_NUMBER(100, 220, std::size_t, image2d_max_width, CL_DEVICE_IMAGE2D_MAX_WIDTH)
    EXPECT_NUMBER(100, 220, std::size_t, image2d_max_height, CL_DEVICE_IMAGE2D_MAX_HEIGHT)
    EXPECT_NUMBER(100, 220, std::size_t, image3d_max_width, CL_DEVICE_IMAGE3D_MAX_WIDTH)
    EXPECT_NUMBER(100, 220, std::size_t, image3d_max_height, CL_DEVICE_IMAGE3D_MAX_HEIGHT)
    EXPECT_NUMBER(100, 220, std::size_t, image3d_max_depth, CL_DEVICE_IMAGE3D_MAX_DEPTH)
    EXPECT_NUMBER(120, 220, std::size_t, image_max_buffer_size, CL_DEVICE_IMAGE_MAX_BUFFER_SIZE)
    EXPECT_NUMBER(120, 220, std::size_t, image_max_array_size, CL_DEVICE_IMAGE_MAX_ARRAY_SIZE)
    EXPECT_NUMBER(200, 220, cl_uint, image_pitch_alignment, CL_DEVICE_IMAGE_PITCH_ALIGNMENT)
    EXPECT_NUMBER(200, 220, cl_uint, image_base_address_alignment, CL_DEVICE_IMAGE_BASE_ADDRESS_ALIGNMENT)
    EXPECT_NUMBER(100, 220, std::size_t, max_parameter_size, CL_DEVICE_MAX_PARAMETER_SIZE)
    EXPECT_NUMBER(100, 220, cl_uint, max_samplers, CL_DEVICE_MAX_SAMPLERS)
    EXPECT_NUMBER(100, 220, cl_uint, mem_base_addr_align, CL_DEVICE_MEM_BASE_ADDR_ALIGN)
    EXPECT_NUMBER(110, 110, cl_uint, min_data_type_align_size, CL_DEVICE_MIN_DATA_TYPE_ALIGN_SIZE)
    EXPECT_NUMBER(100, 220, cl_uint, global_mem_cacheline_size, CL_DEVICE_GLOBAL_MEM_CACHELINE_SIZE)
    EXPECT_NUMBER(100, 220, cl_ulong, global_mem_cache_size, CL_DEVICE_GLOBAL_MEM_CACHE_SIZE)
    EXPECT_NUMBER(100, 220, cl_ulong, global_mem_size, CL_DEVICE_GLOBAL_MEM_SIZE)
    EXPECT_NUMBER(100, 220, cl_ulong, max_constant_buffer_size, CL_DEVICE_MAX_CONSTANT_BUFFER_SIZE)
    EXPECT_NUMBER(100, 220, cl_uint, max_constant_args, CL_DEVICE_MAX_CONSTANT_ARGS)
    EXPECT_NUMBER(200, 220, std::size_t, max_global_variable_size, CL_DEVICE_MAX_GLOBAL_VARIABLE_SIZE)
    EXPECT_NUMBER(200, 220, std::size_t, global_variable_preferred_total_size,
                  CL_DEVICE_GLOBAL_VARIABLE_PREFERRED_TOTAL_SIZE)
    EXPECT_NUMBER(100, 220, cl_ulong, local_mem_size, CL_DEVICE_LOCAL_MEM_SIZE)
    EXPECT_NUMBER(100, 220, std::size_t, profiling_timer_resolution, CL_DEVICE_PROFILING_TIMER_RESOLUTION)
    EXPECT_NUMBER(120, 220, std::size_t, printf_buffer_size, CL_DEVICE_PRINTF_BUFFER_SIZE)
    EXPECT_NUMBER(120, 220, cl_uint, partition_max_sub_devices, CL_DEVICE_PARTITION_MAX_SUB_DEVICES)
    EXPECT_NUMBER(200, 220, cl_uint, max_pipe_args, CL_DEVICE_MAX_PIPE_ARGS)
    EXPECT_NUMBER(200, 220, cl_uint, pipe_max_active_reservations, CL_DEVICE_PIPE_MAX_ACTIVE_RESERVATIONS)
    EXPECT_NUMBER(200, 220, cl_uint, pipe_max_packet_size, CL_DEVICE_PIPE_MAX_PACKET_SIZE)
    EXPECT_NUMBER(200, 220, cl_uint, queue_on_device_preferred_size, CL_DEVICE_QUEUE_ON_DEVICE_PREFERRED_SIZE)
    EXPECT_NUMBER(200, 220, cl_uint, queue_on_device_max_size, CL_DEVICE_QUEUE_ON_DEVICE_MAX_SIZE)
    EXPECT_NUMBER(200, 220, cl_uint, max_on_device_queues, CL_DEVICE_MAX_ON_DEVICE_QUEUES)
    EXPECT_NUMBER(200, 220, cl_uint, max_on_device_events, CL_DEVICE_MAX_ON_DEVICE_EVENTS)
    EXPECT_NUMBER(200, 220, cl_uint, preferred_platform_atomic_alignment, CL_DEVICE_PREFERRED_PLATFORM_ATOMIC_ALIGNMENT)
    EXPECT_NUMBER(200, 220, cl_uint, preferred_global_atomic_alignment, CL_DEVICE_PREFERRED_GLOBAL_ATOMIC_ALIGNMENT)
    EXPECT_NUMBER(200, 220, cl_uint, preferred_local_atomic_alignment, CL_DEVICE_PREFERRED_LOCAL_ATOMIC_ALIGNMENT)
    EXPECT_NUMBER(210, 220, cl_uint, max_num_sub_groups, CL_DEVICE_MAX_NUM_SUB_GROUPS)
}

#define EXPECT_WIDTHS(first, last, kind, name)                                                                         \
    EXPECT_NUMBER(first, last, cl_uint, kind##_vector_width_char, name##_CHAR)                                         \
    EXPECT_NUMBER(first, last, cl_uint, kind##_vector_width_short, name##_SHORT)                                       \
    EXPECT_NUMBER(first, last, cl_uint, kind##_vector_width_int, name##_INT)                                           \
    EXPECT_NUMBER(first, last, cl_uint, kind##_vector_width_long, name##_LONG)                                         \
    EXPECT_NUMBER(first, last, cl_uint, kind##_vector_width_float, name##_FLOAT)                                       \
    EXPECT_NUMBER(first, last, cl_uint, kind##_vector_width_double, name##_DOUBLE)

#define EXPECT_FLOATS(kind, name)                                                                                      \
    EXPECT_BIT(100, 220, kind##_fp_denorms_supported, name, CL_FP_DENORM)                                              \
    EXPECT_BIT(100, 220, kind##_fp_inf_nan_supported, name, CL_FP_INF_NAN)                                             \
    EXPECT_BIT(100, 220, kind##_fp_round_to_nearest_supported, name, CL_FP_ROUND_TO_NEAREST)                           \
    EXPECT_BIT(100, 220, kind##_fp_round_to_zero_supported, name, CL_FP_ROUND_TO_ZERO)                                 \
    EXPECT_BIT(100, 220, kind##_fp_round_to_inf_supported, name, CL_FP_ROUND_TO_INF)                                   \
    EXPECT_BIT(100, 220, kind##_fp_fma_supported, name, CL_FP_FMA)                                                     \
    EXPECT_BIT(110, 220, kind##_fp_software_emulated, name, CL_FP_SOFT_FLOAT)

template <class Api>
void compare_predicates(typename Api::device const& device) {
    EXPECT_TRUTH(100, 220, image_support, CL_DEVICE_IMAGE_SUPPORT)
    EXPECT_TRUTH(100, 220, error_correction_support, CL_DEVICE_ERROR_CORRECTION_SUPPORT)
    EXPECT_TRUTH(110, 120, host_unified_memory, CL_DEVICE_HOST_UNIFIED_MEMORY)
    EXPECT_TRUTH(100, 220, endian_little, CL_DEVICE_ENDIAN_LITTLE)
    EXPECT_TRUTH(100, 220, available, CL_DEVICE_AVAILABLE)
    EXPECT_TRUTH(100, 220, compiler_available, CL_DEVICE_COMPILER_AVAILABLE)
    EXPECT_TRUTH(120, 220, linker_available, CL_DEVICE_LINKER_AVAILABLE)
    EXPECT_TRUTH(120, 220, preferred_interop_user_sync, CL_DEVICE_PREFERRED_INTEROP_USER_SYNC)
    EXPECT_TRUTH(210, 220, sub_group_independent_forward_progress, CL_DEVICE_SUB_GROUP_INDEPENDENT_FORWARD_PROGRESS)
    EXPECT_WORD(100, 220, cl_ulong, is_type_default, CL_DEVICE_TYPE, value == CL_DEVICE_TYPE_DEFAULT)
    EXPECT_WORD(100, 220, cl_ulong, is_type_cpu, CL_DEVICE_TYPE, value == CL_DEVICE_TYPE_CPU)
    EXPECT_WORD(100, 220, cl_ulong, is_type_gpu, CL_DEVICE_TYPE, value == CL_DEVICE_TYPE_GPU)
    EXPECT_WORD(100, 220, cl_ulong, is_type_accelerator, CL_DEVICE_TYPE, value == CL_DEVICE_TYPE_ACCELERATOR)
    EXPECT_WORD(120, 220, cl_ulong, is_type_custom, CL_DEVICE_TYPE, value == CL_DEVICE_TYPE_CUSTOM)
    EXPECT_WORD(100, 220, cl_uint, is_global_mem_cache_type_none, CL_DEVICE_GLOBAL_MEM_CACHE_TYPE, value == CL_NONE)
    EXPECT_WORD(100, 220, cl_uint, is_global_mem_cache_type_read_only, CL_DEVICE_GLOBAL_MEM_CACHE_TYPE,
                value == CL_READ_ONLY_CACHE)
    EXPECT_WORD(100, 220, cl_uint, is_global_mem_cache_type_read_write, CL_DEVICE_GLOBAL_MEM_CACHE_TYPE,
                value == CL_READ_WRITE_CACHE)
    EXPECT_WORD(100, 220, cl_uint, dedicated_local_memory, CL_DEVICE_LOCAL_MEM_TYPE, value == CL_LOCAL)
    EXPECT_BIT(100, 220, can_execute_kernels, CL_DEVICE_EXECUTION_CAPABILITIES, CL_EXEC_KERNEL)
    EXPECT_BIT(100, 220, can_execute_native_kernels, CL_DEVICE_EXECUTION_CAPABILITIES, CL_EXEC_NATIVE_KERNEL)
    EXPECT_BIT(100, 120, out_of_order_command_queue_supported, CL_DEVICE_QUEUE_PROPERTIES, 1U)
    EXPECT_BIT(100, 120, profiling_command_queue_supported, CL_DEVICE_QUEUE_PROPERTIES, 2U)
    EXPECT_BIT(200, 220, host_out_of_order_command_queue_supported, CL_DEVICE_QUEUE_ON_HOST_PROPERTIES, 1U)
    EXPECT_BIT(200, 220, host_profiling_command_queue_supported, CL_DEVICE_QUEUE_ON_HOST_PROPERTIES, 2U)
    EXPECT_BIT(200, 220, device_out_of_order_command_queue_supported, CL_DEVICE_QUEUE_ON_DEVICE_PROPERTIES, 1U)
    EXPECT_BIT(200, 220, device_profiling_command_queue_supported, CL_DEVICE_QUEUE_ON_DEVICE_PROPERTIES, 2U)
    EXPECT_BIT(200, 220, svm_coarse_grain_buffer_supported, CL_DEVICE_SVM_CAPABILITIES,
               CL_DEVICE_SVM_COARSE_GRAIN_BUFFER)
    EXPECT_BIT(200, 220, svm_fine_grain_buffer_supported, CL_DEVICE_SVM_CAPABILITIES, CL_DEVICE_SVM_FINE_GRAIN_BUFFER)
    EXPECT_BIT(200, 220, svm_fine_grain_system_supported, CL_DEVICE_SVM_CAPABILITIES, CL_DEVICE_SVM_FINE_GRAIN_SYSTEM)
    EXPECT_BIT(200, 220, svm_atomics_supported, CL_DEVICE_SVM_CAPABILITIES, CL_DEVICE_SVM_ATOMICS)
    EXPECT_WORD(120, 220, cl_ulong, is_root_device, CL_DEVICE_PARENT_DEVICE, value == 0)
    EXPECT_WORD(120, 220, cl_ulong, partition_equally_supported, CL_DEVICE_PARTITION_PROPERTIES,
                value == CL_DEVICE_PARTITION_EQUALLY)
    EXPECT_WORD(120, 220, cl_ulong, partition_by_counts_supported, CL_DEVICE_PARTITION_PROPERTIES,
                value == CL_DEVICE_PARTITION_BY_COUNTS)
    EXPECT_WORD(120, 220, cl_ulong, partition_affinity_domain_supported, CL_DEVICE_PARTITION_AFFINITY_DOMAIN,
                value != 0)
    EXPECT_NUMBER(120, 220, cl_ulong, partition_supported_affinity_domains, CL_DEVICE_PARTITION_AFFINITY_DOMAIN)
    EXPECT_FLOATS(single, CL_DEVICE_SINGLE_FP_CONFIG)
    EXPECT_FLOATS(double, CL_DEVICE_DOUBLE_FP_CONFIG)
    EXPECT_BIT(120, 220, single_fp_correctly_rounded_divide_sqrt, CL_DEVICE_SINGLE_FP_CONFIG,
               CL_FP_CORRECTLY_ROUNDED_DIVIDE_SQRT)
    EXPECT_WIDTHS(100, 220, preferred, CL_DEVICE_PREFERRED_VECTOR_WIDTH)
    EXPECT_NUMBER(110, 220, cl_uint, preferred_vector_width_half, CL_DEVICE_PREFERRED_VECTOR_WIDTH_HALF)
    EXPECT_WIDTHS(110, 220, native, CL_DEVICE_NATIVE_VECTOR_WIDTH)
    EXPECT_NUMBER(110, 220, cl_uint, native_vector_width_half, CL_DEVICE_NATIVE_VECTOR_WIDTH_HALF)
}

template <class Api>
void compare_texts(typename Api::device const& device) {
    auto const text = [&](cl_device_info name) { return ask_device(raw_of(device), name).text(); };
    EXPECT_EQ(device.name(), text(CL_DEVICE_NAME));
    EXPECT_EQ(device.vendor(), text(CL_DEVICE_VENDOR));
    EXPECT_EQ(device.driver_version(), text(CL_DRIVER_VERSION));
    EXPECT_EQ(device.device_version(), text(CL_DEVICE_VERSION));
    EXPECT_EQ(device.extensions(), ask_device(raw_of(device), CL_DEVICE_EXTENSIONS).parts(' '));
    EXPECT_EQ(device.is_embedded_profile(), text(CL_DEVICE_PROFILE) == "EMBEDDED_PROFILE");
    EXPECT_NE(device.is_full_profile(), device.is_embedded_profile());
    if constexpr (Api::number >= 110) {
        EXPECT_EQ(device.opencl_c_version(), text(CL_DEVICE_OPENCL_C_VERSION));
    }
    if constexpr (Api::number >= 120) {
        EXPECT_EQ(device.built_in_kernels(), ask_device(raw_of(device), CL_DEVICE_BUILT_IN_KERNELS).parts(';'));
    }
    if constexpr (Api::number >= 210) {
        EXPECT_EQ(device.il_version(), text(CL_DEVICE_IL_VERSION));
    }
}

template <class Api>
void query_device(bench<Api>& b) {
    compare_numbers<Api>(b.device);
    compare_predicates<Api>(b.device);
    compare_texts<Api>(b.device);
    expect_same<std::array<std::size_t, 3>>(
        "max_work_item_sizes", ask_device(raw_of(b.device), CL_DEVICE_MAX_WORK_ITEM_SIZES),
        [&] { return b.device.max_work_item_sizes(); }, [](auto sizes) { return sizes; });
    expect_same<_nq_cl_platform_id*>(
        "get_platform", ask_device(raw_of(b.device), CL_DEVICE_PLATFORM),
        [&] { return raw_of(b.device.get_platform()); }, [](auto handle) { return handle; });
    if constexpr (Api::number >= 120) {
        EXPECT_TRUE(b.device.partition_type().empty());
        EXPECT_THROW(b.device.parent_device(), std::logic_error);
    }
}

template <class Api>
void* extension_function(typename Api::platform const& platform, char const* name) {
    auto const& handle = vorn::mero::internal::owner_access::call_handle(platform);
    if constexpr (Api::number >= 120) {
        return get_extension_function_address_for_platform(handle, platform, name);
    } else {
        return Api::number == 100 ? opencl_1_0::get_extension_function_address(handle, name)
                                  : opencl_1_1::get_extension_function_address(handle, name);
    }
}

template <class Api>
void query_platform(bench<Api>& b) {
    auto const platform = b.device.get_platform();
    auto const answer_to = [&](cl_platform_info name) {
        return ask(REAL_C_API(clGetPlatformInfo), reinterpret_cast<cl_platform_id>(raw_of(platform)), name);
    };
    EXPECT_EQ(platform.name(), answer_to(CL_PLATFORM_NAME).text());
    EXPECT_EQ(platform.vendor(), answer_to(CL_PLATFORM_VENDOR).text());
    EXPECT_EQ(platform.version(), answer_to(CL_PLATFORM_VERSION).text());
    EXPECT_EQ(platform.extensions(), answer_to(CL_PLATFORM_EXTENSIONS).parts(' '));
    EXPECT_EQ(platform.is_full_profile(), answer_to(CL_PLATFORM_PROFILE).text() == "FULL_PROFILE");
    EXPECT_EQ(platform.is_embedded_profile(), answer_to(CL_PLATFORM_PROFILE).text() == "EMBEDDED_PROFILE");
    EXPECT_EQ(b.context.get_platform(), platform);
    EXPECT_EQ(extension_function<Api>(platform, "clIcdGetPlatformIDsKHR"),
              REAL_C_API(clGetExtensionFunctionAddressForPlatform)(reinterpret_cast<cl_platform_id>(raw_of(platform)),
                                                                   "clIcdGetPlatformIDsKHR"));
    EXPECT_EQ(extension_function<Api>(platform, "clNoSuchFunction"), nullptr);
    auto const devices = platform.get_raw_devices();
    EXPECT_NE(std::ranges::find(devices, raw_of(b.device)), devices.end());
    if constexpr (Api::number >= 210) {
        expect_same<cl_ulong>(
            "host_timer_resolution", answer_to(CL_PLATFORM_HOST_TIMER_RESOLUTION),
            [&] { return platform.host_timer_resolution(); }, [](cl_ulong value) { return value; });
    }
}

template <class Api>
void contexts(bench<Api>& b) {
    using property = typename Api::context_property;
    auto const platform = b.device.get_platform();
    std::vector<property> const properties{property::platform, reinterpret_cast<std::intptr_t>(raw_of(platform)), 0};
    auto const made = create_context(properties, std::vector{b.device}, nullptr, nullptr);
    EXPECT_EQ(made.get_properties(), properties);
    EXPECT_EQ(made.get_devices(), std::vector{b.device});
    EXPECT_EQ(made.get_platform(), platform);
    EXPECT_FALSE(made == b.context);
    auto const& handle = vorn::mero::internal::owner_access::call_handle(b.device);
    auto const of_type = create_context_from_type(handle, properties, Api::device_type::all, nullptr, nullptr);
    auto const devices = of_type.get_devices();
    EXPECT_NE(std::ranges::find(devices, b.device), devices.end());
    std::vector<property> const unknown{property(0x7777), property(1), property(0)};
    if (b.name != "oclgrind") { // takes any property
        EXPECT_THROW(create_context(unknown, std::vector{b.device}, nullptr, nullptr), common::invalid_property);
    }
}

template <class Api>
void read_timers(bench<Api>& b) {
    auto const before = b.device.get_host_timer();
    auto const [host, device] = b.device.get_device_and_host_timer();
    auto const after = b.device.get_host_timer();
    EXPECT_LE(before, host);
    EXPECT_LE(host, after);
    EXPECT_LT(before, after);
    EXPECT_LT(device, b.device.get_device_and_host_timer().second);
}

} // namespace

void add_devices() {
    add_scenario<100>("queries_device", "device queries", [](auto& b) { query_device(b); });
    add_scenario<100>("queries_platform", "platform queries", [](auto& b) { query_platform(b); });
    add_scenario<100>("contexts", "contexts", [](auto& b) { contexts(b); });
    add_scenario<210>("reads_timers", "device and host timers", [](auto& b) { read_timers(b); });
}

} // namespace real
