#include "c_answers.hpp"

#include <algorithm>

namespace real {
namespace {

answer ask_device(_nq_cl_device_id* device, cl_device_info name) {
    return ask(REAL_C_API(clGetDeviceInfo), reinterpret_cast<cl_device_id>(device), name);
}

/// One query: the member that makes it, and what it makes of the C API's word; nothing if that is void.
template <class Word, class Member, class Convert>
struct query {
    char const* name;
    cl_device_info info;
    Member member;
    Convert convert;
};

template <class Word, class Member, class Convert = std::identity>
query<Word, Member, Convert> make_query(char const* name, cl_device_info info, Member member, Convert convert = {}) {
    return {name, info, member, convert};
}

/// Compares the queries that the version has.
template <class Device, class... Queries>
void compare(Device const& device, Queries const&... queries) {
    auto const one = [&device]<class Word, class Member, class Convert>(query<Word, Member, Convert> const& each) {
        if constexpr (requires { each.member(device); }) {
            using word = typename std::conditional_t<std::is_void_v<Word>, std::invoke_result<Member, Device const&>,
                                                     std::type_identity<Word>>::type;
            auto const call = [&] { return each.member(device); };
            expect_same<word>(each.name, ask_device(raw_of(device), each.info), call, each.convert);
        }
    };
    (one(queries), ...);
}

#define QUERY(word, member, info, ...)                                                                                 \
    make_query<word>(#member, CL_DEVICE_##info, [](auto const& device_) -> decltype(device_.member()) {                \
        return device_.member();                                                                                       \
    } __VA_OPT__(, ) __VA_ARGS__)
#define NUMBER(member, info) QUERY(void, member, info)
#define TRUTH(member, info) QUERY(cl_bool, member, info, [](cl_bool value) { return value != CL_FALSE; })
#define IS(member, word, info, expected) QUERY(word, member, info, [](word value) { return value == (expected); })
#define BIT(member, info, bit) QUERY(cl_ulong, member, info, [](cl_ulong value) { return (value & (bit)) != 0; })

#define WIDTHS(kind, info)                                                                                             \
    NUMBER(kind##_vector_width_char, info##_CHAR), NUMBER(kind##_vector_width_short, info##_SHORT),                    \
        NUMBER(kind##_vector_width_int, info##_INT), NUMBER(kind##_vector_width_long, info##_LONG),                    \
        NUMBER(kind##_vector_width_float, info##_FLOAT), NUMBER(kind##_vector_width_double, info##_DOUBLE),            \
        NUMBER(kind##_vector_width_half, info##_HALF)
#define FLOATS(kind, info)                                                                                             \
    BIT(kind##_fp_denorms_supported, info, CL_FP_DENORM), BIT(kind##_fp_inf_nan_supported, info, CL_FP_INF_NAN),       \
        BIT(kind##_fp_round_to_nearest_supported, info, CL_FP_ROUND_TO_NEAREST),                                       \
        BIT(kind##_fp_round_to_zero_supported, info, CL_FP_ROUND_TO_ZERO),                                             \
        BIT(kind##_fp_round_to_inf_supported, info, CL_FP_ROUND_TO_INF),                                               \
        BIT(kind##_fp_fma_supported, info, CL_FP_FMA), BIT(kind##_fp_software_emulated, info, CL_FP_SOFT_FLOAT)

template <class Api>
void compare_numbers(typename Api::device const& device) {
    compare(
        device, NUMBER(vendor_id, VENDOR_ID), NUMBER(max_compute_units, MAX_COMPUTE_UNITS),
        NUMBER(max_work_item_dimensions, MAX_WORK_ITEM_DIMENSIONS), NUMBER(max_work_group_size, MAX_WORK_GROUP_SIZE),
        NUMBER(max_clock_frequency, MAX_CLOCK_FREQUENCY), NUMBER(address_bits, ADDRESS_BITS),
        NUMBER(max_read_image_args, MAX_READ_IMAGE_ARGS), NUMBER(max_write_image_args, MAX_WRITE_IMAGE_ARGS),
        NUMBER(max_read_write_image_args, MAX_READ_WRITE_IMAGE_ARGS), NUMBER(max_mem_alloc_size, MAX_MEM_ALLOC_SIZE),
        NUMBER(image2d_max_width, IMAGE2D_MAX_WIDTH), NUMBER(image2d_max_height, IMAGE2D_MAX_HEIGHT),
        NUMBER(image3d_max_width, IMAGE3D_MAX_WIDTH), NUMBER(image3d_max_height, IMAGE3D_MAX_HEIGHT),
        NUMBER(image3d_max_depth, IMAGE3D_MAX_DEPTH), NUMBER(image_max_buffer_size, IMAGE_MAX_BUFFER_SIZE),
        NUMBER(image_max_array_size, IMAGE_MAX_ARRAY_SIZE), NUMBER(image_pitch_alignment, IMAGE_PITCH_ALIGNMENT),
        NUMBER(image_base_address_alignment, IMAGE_BASE_ADDRESS_ALIGNMENT),
        NUMBER(max_parameter_size, MAX_PARAMETER_SIZE), NUMBER(max_samplers, MAX_SAMPLERS),
        NUMBER(mem_base_addr_align, MEM_BASE_ADDR_ALIGN), NUMBER(min_data_type_align_size, MIN_DATA_TYPE_ALIGN_SIZE),
        NUMBER(global_mem_cacheline_size, GLOBAL_MEM_CACHELINE_SIZE),
        NUMBER(global_mem_cache_size, GLOBAL_MEM_CACHE_SIZE), NUMBER(global_mem_size, GLOBAL_MEM_SIZE),
        NUMBER(max_constant_buffer_size, MAX_CONSTANT_BUFFER_SIZE), NUMBER(max_constant_args, MAX_CONSTANT_ARGS),
        NUMBER(max_global_variable_size, MAX_GLOBAL_VARIABLE_SIZE),
        NUMBER(global_variable_preferred_total_size, GLOBAL_VARIABLE_PREFERRED_TOTAL_SIZE),
        NUMBER(local_mem_size, LOCAL_MEM_SIZE), NUMBER(profiling_timer_resolution, PROFILING_TIMER_RESOLUTION),
        NUMBER(printf_buffer_size, PRINTF_BUFFER_SIZE), NUMBER(partition_max_sub_devices, PARTITION_MAX_SUB_DEVICES),
        NUMBER(max_pipe_args, MAX_PIPE_ARGS), NUMBER(pipe_max_active_reservations, PIPE_MAX_ACTIVE_RESERVATIONS),
        NUMBER(pipe_max_packet_size, PIPE_MAX_PACKET_SIZE),
        NUMBER(queue_on_device_preferred_size, QUEUE_ON_DEVICE_PREFERRED_SIZE),
        NUMBER(queue_on_device_max_size, QUEUE_ON_DEVICE_MAX_SIZE), NUMBER(max_on_device_queues, MAX_ON_DEVICE_QUEUES),
        NUMBER(max_on_device_events, MAX_ON_DEVICE_EVENTS),
        NUMBER(preferred_platform_atomic_alignment, PREFERRED_PLATFORM_ATOMIC_ALIGNMENT),
        NUMBER(preferred_global_atomic_alignment, PREFERRED_GLOBAL_ATOMIC_ALIGNMENT),
        NUMBER(preferred_local_atomic_alignment, PREFERRED_LOCAL_ATOMIC_ALIGNMENT),
        NUMBER(max_num_sub_groups, MAX_NUM_SUB_GROUPS),
        NUMBER(partition_supported_affinity_domains, PARTITION_AFFINITY_DOMAIN),
        WIDTHS(preferred, PREFERRED_VECTOR_WIDTH), WIDTHS(native, NATIVE_VECTOR_WIDTH));
}

template <class Api>
void compare_predicates(typename Api::device const& device) {
    compare(device, TRUTH(image_support, IMAGE_SUPPORT), TRUTH(error_correction_support, ERROR_CORRECTION_SUPPORT),
            TRUTH(host_unified_memory, HOST_UNIFIED_MEMORY), TRUTH(endian_little, ENDIAN_LITTLE),
            TRUTH(available, AVAILABLE), TRUTH(compiler_available, COMPILER_AVAILABLE),
            TRUTH(linker_available, LINKER_AVAILABLE), TRUTH(preferred_interop_user_sync, PREFERRED_INTEROP_USER_SYNC),
            TRUTH(sub_group_independent_forward_progress, SUB_GROUP_INDEPENDENT_FORWARD_PROGRESS),
            IS(is_type_default, cl_ulong, TYPE, CL_DEVICE_TYPE_DEFAULT),
            IS(is_type_cpu, cl_ulong, TYPE, CL_DEVICE_TYPE_CPU), IS(is_type_gpu, cl_ulong, TYPE, CL_DEVICE_TYPE_GPU),
            IS(is_type_accelerator, cl_ulong, TYPE, CL_DEVICE_TYPE_ACCELERATOR),
            IS(is_type_custom, cl_ulong, TYPE, CL_DEVICE_TYPE_CUSTOM),
            IS(is_global_mem_cache_type_none, cl_uint, GLOBAL_MEM_CACHE_TYPE, CL_NONE),
            IS(is_global_mem_cache_type_read_only, cl_uint, GLOBAL_MEM_CACHE_TYPE, CL_READ_ONLY_CACHE),
            IS(is_global_mem_cache_type_read_write, cl_uint, GLOBAL_MEM_CACHE_TYPE, CL_READ_WRITE_CACHE),
            IS(dedicated_local_memory, cl_uint, LOCAL_MEM_TYPE, CL_LOCAL),
            BIT(can_execute_kernels, EXECUTION_CAPABILITIES, CL_EXEC_KERNEL),
            BIT(can_execute_native_kernels, EXECUTION_CAPABILITIES, CL_EXEC_NATIVE_KERNEL),
            BIT(out_of_order_command_queue_supported, QUEUE_PROPERTIES, 1U),
            BIT(profiling_command_queue_supported, QUEUE_PROPERTIES, 2U),
            BIT(host_out_of_order_command_queue_supported, QUEUE_ON_HOST_PROPERTIES, 1U),
            BIT(host_profiling_command_queue_supported, QUEUE_ON_HOST_PROPERTIES, 2U),
            BIT(device_out_of_order_command_queue_supported, QUEUE_ON_DEVICE_PROPERTIES, 1U),
            BIT(device_profiling_command_queue_supported, QUEUE_ON_DEVICE_PROPERTIES, 2U),
            BIT(svm_coarse_grain_buffer_supported, SVM_CAPABILITIES, CL_DEVICE_SVM_COARSE_GRAIN_BUFFER),
            BIT(svm_fine_grain_buffer_supported, SVM_CAPABILITIES, CL_DEVICE_SVM_FINE_GRAIN_BUFFER),
            BIT(svm_fine_grain_system_supported, SVM_CAPABILITIES, CL_DEVICE_SVM_FINE_GRAIN_SYSTEM),
            BIT(svm_atomics_supported, SVM_CAPABILITIES, CL_DEVICE_SVM_ATOMICS),
            IS(is_root_device, cl_ulong, PARENT_DEVICE, 0),
            IS(partition_equally_supported, cl_ulong, PARTITION_PROPERTIES, CL_DEVICE_PARTITION_EQUALLY),
            IS(partition_by_counts_supported, cl_ulong, PARTITION_PROPERTIES, CL_DEVICE_PARTITION_BY_COUNTS),
            BIT(partition_affinity_domain_supported, PARTITION_AFFINITY_DOMAIN, ~cl_ulong{0}),
            FLOATS(single, SINGLE_FP_CONFIG), FLOATS(double, DOUBLE_FP_CONFIG),
            BIT(single_fp_correctly_rounded_divide_sqrt, SINGLE_FP_CONFIG, CL_FP_CORRECTLY_ROUNDED_DIVIDE_SQRT));
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

SCENARIO(queries_device, "device queries", 100) {
    compare_numbers<Api>(b.device);
    compare_predicates<Api>(b.device);
    compare_texts<Api>(b.device);
    compare(b.device, NUMBER(max_work_item_sizes, MAX_WORK_ITEM_SIZES));
    expect_same("get_platform", ask_device(raw_of(b.device), CL_DEVICE_PLATFORM),
                [&] { return raw_of(b.device.get_platform()); });
    auto const found_again = Api::get_all_devices();
    EXPECT_EQ(std::ranges::count(found_again, b.device), 1);
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

SCENARIO(queries_platform, "platform queries", 100) {
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
        expect_same("host_timer_resolution", answer_to(CL_PLATFORM_HOST_TIMER_RESOLUTION),
                    [&] { return platform.host_timer_resolution(); });
    }
}

SCENARIO(contexts, "contexts", 100) {
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

SCENARIO(reads_timers, "device and host timers", 210) {
    auto const before = b.device.get_host_timer();
    auto const [host, device] = b.device.get_device_and_host_timer();
    auto const after = b.device.get_host_timer();
    EXPECT_LE(before, host);
    EXPECT_LE(host, after);
    EXPECT_LT(before, after);
    EXPECT_LT(device, b.device.get_device_and_host_timer().second);
}

template <class Api>
using devices = std::vector<typename Api::device>;

template <class Api>
void expect_part(typename Api::device const& part, typename Api::device const& whole, std::intptr_t scheme) {
    EXPECT_FALSE(part.is_root_device());
    EXPECT_EQ(part.parent_device(), whole);
    EXPECT_EQ(part.max_compute_units(), 1U);
    auto const type = part.partition_type();
    ASSERT_GE(type.size(), 2U);
    EXPECT_EQ(type[0], scheme);
    EXPECT_EQ(type[1], 1);
    expect_counted(part);
}

/// Runs a kernel on two devices that share a context and a buffer.
template <class Api>
void run_together(bench<Api>& b, devices<Api> const& parts) {
    auto context = create_context({}, devices<Api>{parts[0], parts[1]}, nullptr, nullptr);
    watch(b.name, raw_of(context));
    auto program = context.create_program_from_source("__kernel void f(__global int* v) { v[get_global_id(0)] += 1; }");
    program.build({}, "", nullptr, nullptr);
    numbers values{1, 2, 3};
    auto buffer = context.create_buffer(Api::mem_flags::read_write | Api::mem_flags::copy_host_ptr, 12, values.data());
    auto kernel = program.create_kernel("f");
    kernel.set_argument(0, buffer);
    for (std::size_t i : {0U, 1U}) {
        auto queue = Api::create_queue(context, parts[i], false, false);
        EXPECT_EQ(queue.get_device(), parts[i]);
        queue.enqueue_command_without_event(Api::launch(kernel, 3, 1));
        queue.enqueue_command_without_event(typename Api::read_buffer(buffer, true, 0, 12, values.data()));
        EXPECT_EQ(values, (i == 0 ? numbers{2, 3, 4} : numbers{3, 4, 5}));
    }
}

template <class Api, class Partition>
void partition(bench<Api>& b, std::intptr_t scheme, Partition create) {
    if (b.device.max_compute_units() < 2) {
        skip("the device has but one compute unit");
    }
    auto const before = refcount(b.device);
    {
        devices<Api> parts = create(b.device);
        ASSERT_GE(parts.size(), 2U);
        for (auto const& part : parts) {
            expect_part<Api>(part, b.device, scheme);
        }
        run_together(b, parts);
    }
    EXPECT_EQ(refcount(b.device), before);
}

SCENARIO(partition_equally, "sub-devices equally", 120) {
    partition(b, CL_DEVICE_PARTITION_EQUALLY, [](auto device) { return device.partition_equally(1); });
}

SCENARIO(partition_by_counts, "sub-devices by counts", 120) {
    partition(b, CL_DEVICE_PARTITION_BY_COUNTS, [](auto device) { return device.partition_by_counts({1, 1}); });
}

SCENARIO(partition_by_affinity, "sub-devices by affinity", 120) {
    auto const domains = b.device.partition_supported_affinity_domains();
    using domain = std::remove_const_t<decltype(domains)>;
    if (domains == domain{}) {
        EXPECT_THROW(b.device.partition_by_affinity(domain::numa), common::opencl_error);
        skip("the device lists no affinity domain");
    }
    EXPECT_FALSE(b.device.partition_by_affinity(domains).empty());
}

SCENARIO(refused_partition, "refused sub-devices", 120) {
    auto const units = b.device.max_compute_units();
    EXPECT_THROW(b.device.partition_by_counts({units, units}), common::opencl_error);
    EXPECT_THROW(b.device.partition_by_counts({1, 0}), std::logic_error);
}

} // namespace
} // namespace real
