#pragma once

// The names that OpenCL 1.0 to 2.2 give to values, as <nq/describe/values.hpp> presents them.

#include <cstddef>
#include <cstdint>

namespace nq {

/// A value and its name in OpenCL.
struct value_name {
    char const* name;   ///< as in `CL_DEVICE_NAME`
    std::int64_t value; ///< unsigned values without their sign
};

/// The named values of an enumeration or a bit field.
struct value_set {
    value_name const* names = nullptr; ///< the first of them
    std::size_t count = 0;             ///< of names

    /// No names.
    constexpr value_set() = default;
    /// The names of an array, which must outlive the set.
    template <std::size_t Count>
    explicit constexpr value_set(value_name const (&array)[Count]) : names(array), count(Count) {}

    /// The first name.
    constexpr value_name const* begin() const { return names; }
    /// One past the last name.
    constexpr value_name const* end() const { return names + count; }
    /// The name of a value, null if it has none.
    constexpr char const* name_of(std::int64_t value) const {
        for (value_name const& each : *this) {
            if (each.value == value) {
                return each.name;
            }
        }
        return nullptr;
    }
};

namespace values::detail {

inline constexpr value_name status_names[] = {{"CL_SUCCESS", 0},
                                              {"CL_DEVICE_NOT_FOUND", -1},
                                              {"CL_DEVICE_NOT_AVAILABLE", -2},
                                              {"CL_COMPILER_NOT_AVAILABLE", -3},
                                              {"CL_MEM_OBJECT_ALLOCATION_FAILURE", -4},
                                              {"CL_OUT_OF_RESOURCES", -5},
                                              {"CL_OUT_OF_HOST_MEMORY", -6},
                                              {"CL_PROFILING_INFO_NOT_AVAILABLE", -7},
                                              {"CL_MEM_COPY_OVERLAP", -8},
                                              {"CL_IMAGE_FORMAT_MISMATCH", -9},
                                              {"CL_IMAGE_FORMAT_NOT_SUPPORTED", -10},
                                              {"CL_BUILD_PROGRAM_FAILURE", -11},
                                              {"CL_MAP_FAILURE", -12},
                                              {"CL_MISALIGNED_SUB_BUFFER_OFFSET", -13},
                                              {"CL_EXEC_STATUS_ERROR_FOR_EVENTS_IN_WAIT_LIST", -14},
                                              {"CL_COMPILE_PROGRAM_FAILURE", -15},
                                              {"CL_LINKER_NOT_AVAILABLE", -16},
                                              {"CL_LINK_PROGRAM_FAILURE", -17},
                                              {"CL_DEVICE_PARTITION_FAILED", -18},
                                              {"CL_KERNEL_ARG_INFO_NOT_AVAILABLE", -19},
                                              {"CL_INVALID_VALUE", -30},
                                              {"CL_INVALID_DEVICE_TYPE", -31},
                                              {"CL_INVALID_PLATFORM", -32},
                                              {"CL_INVALID_DEVICE", -33},
                                              {"CL_INVALID_CONTEXT", -34},
                                              {"CL_INVALID_QUEUE_PROPERTIES", -35},
                                              {"CL_INVALID_COMMAND_QUEUE", -36},
                                              {"CL_INVALID_HOST_PTR", -37},
                                              {"CL_INVALID_MEM_OBJECT", -38},
                                              {"CL_INVALID_IMAGE_FORMAT_DESCRIPTOR", -39},
                                              {"CL_INVALID_IMAGE_SIZE", -40},
                                              {"CL_INVALID_SAMPLER", -41},
                                              {"CL_INVALID_BINARY", -42},
                                              {"CL_INVALID_BUILD_OPTIONS", -43},
                                              {"CL_INVALID_PROGRAM", -44},
                                              {"CL_INVALID_PROGRAM_EXECUTABLE", -45},
                                              {"CL_INVALID_KERNEL_NAME", -46},
                                              {"CL_INVALID_KERNEL_DEFINITION", -47},
                                              {"CL_INVALID_KERNEL", -48},
                                              {"CL_INVALID_ARG_INDEX", -49},
                                              {"CL_INVALID_ARG_VALUE", -50},
                                              {"CL_INVALID_ARG_SIZE", -51},
                                              {"CL_INVALID_KERNEL_ARGS", -52},
                                              {"CL_INVALID_WORK_DIMENSION", -53},
                                              {"CL_INVALID_WORK_GROUP_SIZE", -54},
                                              {"CL_INVALID_WORK_ITEM_SIZE", -55},
                                              {"CL_INVALID_GLOBAL_OFFSET", -56},
                                              {"CL_INVALID_EVENT_WAIT_LIST", -57},
                                              {"CL_INVALID_EVENT", -58},
                                              {"CL_INVALID_OPERATION", -59},
                                              {"CL_INVALID_GL_OBJECT", -60},
                                              {"CL_INVALID_BUFFER_SIZE", -61},
                                              {"CL_INVALID_MIP_LEVEL", -62},
                                              {"CL_INVALID_GLOBAL_WORK_SIZE", -63},
                                              {"CL_INVALID_PROPERTY", -64},
                                              {"CL_INVALID_IMAGE_DESCRIPTOR", -65},
                                              {"CL_INVALID_COMPILER_OPTIONS", -66},
                                              {"CL_INVALID_LINKER_OPTIONS", -67},
                                              {"CL_INVALID_DEVICE_PARTITION_COUNT", -68},
                                              {"CL_INVALID_PIPE_SIZE", -69},
                                              {"CL_INVALID_DEVICE_QUEUE", -70},
                                              {"CL_INVALID_SPEC_ID", -71},
                                              {"CL_MAX_SIZE_RESTRICTION_EXCEEDED", -72}};

inline constexpr value_name platform_info_names[] = {
    {"CL_PLATFORM_PROFILE", 0x0900}, {"CL_PLATFORM_VERSION", 0x0901},    {"CL_PLATFORM_NAME", 0x0902},
    {"CL_PLATFORM_VENDOR", 0x0903},  {"CL_PLATFORM_EXTENSIONS", 0x0904}, {"CL_PLATFORM_HOST_TIMER_RESOLUTION", 0x0905}};

inline constexpr value_name device_info_names[] = {{"CL_DEVICE_TYPE", 0x1000},
                                                   {"CL_DEVICE_VENDOR_ID", 0x1001},
                                                   {"CL_DEVICE_MAX_COMPUTE_UNITS", 0x1002},
                                                   {"CL_DEVICE_MAX_WORK_ITEM_DIMENSIONS", 0x1003},
                                                   {"CL_DEVICE_MAX_WORK_GROUP_SIZE", 0x1004},
                                                   {"CL_DEVICE_MAX_WORK_ITEM_SIZES", 0x1005},
                                                   {"CL_DEVICE_PREFERRED_VECTOR_WIDTH_CHAR", 0x1006},
                                                   {"CL_DEVICE_PREFERRED_VECTOR_WIDTH_SHORT", 0x1007},
                                                   {"CL_DEVICE_PREFERRED_VECTOR_WIDTH_INT", 0x1008},
                                                   {"CL_DEVICE_PREFERRED_VECTOR_WIDTH_LONG", 0x1009},
                                                   {"CL_DEVICE_PREFERRED_VECTOR_WIDTH_FLOAT", 0x100A},
                                                   {"CL_DEVICE_PREFERRED_VECTOR_WIDTH_DOUBLE", 0x100B},
                                                   {"CL_DEVICE_MAX_CLOCK_FREQUENCY", 0x100C},
                                                   {"CL_DEVICE_ADDRESS_BITS", 0x100D},
                                                   {"CL_DEVICE_MAX_READ_IMAGE_ARGS", 0x100E},
                                                   {"CL_DEVICE_MAX_WRITE_IMAGE_ARGS", 0x100F},
                                                   {"CL_DEVICE_MAX_MEM_ALLOC_SIZE", 0x1010},
                                                   {"CL_DEVICE_IMAGE2D_MAX_WIDTH", 0x1011},
                                                   {"CL_DEVICE_IMAGE2D_MAX_HEIGHT", 0x1012},
                                                   {"CL_DEVICE_IMAGE3D_MAX_WIDTH", 0x1013},
                                                   {"CL_DEVICE_IMAGE3D_MAX_HEIGHT", 0x1014},
                                                   {"CL_DEVICE_IMAGE3D_MAX_DEPTH", 0x1015},
                                                   {"CL_DEVICE_IMAGE_SUPPORT", 0x1016},
                                                   {"CL_DEVICE_MAX_PARAMETER_SIZE", 0x1017},
                                                   {"CL_DEVICE_MAX_SAMPLERS", 0x1018},
                                                   {"CL_DEVICE_MEM_BASE_ADDR_ALIGN", 0x1019},
                                                   {"CL_DEVICE_MIN_DATA_TYPE_ALIGN_SIZE", 0x101A},
                                                   {"CL_DEVICE_SINGLE_FP_CONFIG", 0x101B},
                                                   {"CL_DEVICE_GLOBAL_MEM_CACHE_TYPE", 0x101C},
                                                   {"CL_DEVICE_GLOBAL_MEM_CACHELINE_SIZE", 0x101D},
                                                   {"CL_DEVICE_GLOBAL_MEM_CACHE_SIZE", 0x101E},
                                                   {"CL_DEVICE_GLOBAL_MEM_SIZE", 0x101F},
                                                   {"CL_DEVICE_MAX_CONSTANT_BUFFER_SIZE", 0x1020},
                                                   {"CL_DEVICE_MAX_CONSTANT_ARGS", 0x1021},
                                                   {"CL_DEVICE_LOCAL_MEM_TYPE", 0x1022},
                                                   {"CL_DEVICE_LOCAL_MEM_SIZE", 0x1023},
                                                   {"CL_DEVICE_ERROR_CORRECTION_SUPPORT", 0x1024},
                                                   {"CL_DEVICE_PROFILING_TIMER_RESOLUTION", 0x1025},
                                                   {"CL_DEVICE_ENDIAN_LITTLE", 0x1026},
                                                   {"CL_DEVICE_AVAILABLE", 0x1027},
                                                   {"CL_DEVICE_COMPILER_AVAILABLE", 0x1028},
                                                   {"CL_DEVICE_EXECUTION_CAPABILITIES", 0x1029},
                                                   {"CL_DEVICE_QUEUE_ON_HOST_PROPERTIES", 0x102A},
                                                   {"CL_DEVICE_NAME", 0x102B},
                                                   {"CL_DEVICE_VENDOR", 0x102C},
                                                   {"CL_DRIVER_VERSION", 0x102D},
                                                   {"CL_DEVICE_PROFILE", 0x102E},
                                                   {"CL_DEVICE_VERSION", 0x102F},
                                                   {"CL_DEVICE_EXTENSIONS", 0x1030},
                                                   {"CL_DEVICE_PLATFORM", 0x1031},
                                                   {"CL_DEVICE_DOUBLE_FP_CONFIG", 0x1032},
                                                   {"CL_DEVICE_PREFERRED_VECTOR_WIDTH_HALF", 0x1034},
                                                   {"CL_DEVICE_NATIVE_VECTOR_WIDTH_CHAR", 0x1036},
                                                   {"CL_DEVICE_NATIVE_VECTOR_WIDTH_SHORT", 0x1037},
                                                   {"CL_DEVICE_NATIVE_VECTOR_WIDTH_INT", 0x1038},
                                                   {"CL_DEVICE_NATIVE_VECTOR_WIDTH_LONG", 0x1039},
                                                   {"CL_DEVICE_NATIVE_VECTOR_WIDTH_FLOAT", 0x103A},
                                                   {"CL_DEVICE_NATIVE_VECTOR_WIDTH_DOUBLE", 0x103B},
                                                   {"CL_DEVICE_NATIVE_VECTOR_WIDTH_HALF", 0x103C},
                                                   {"CL_DEVICE_OPENCL_C_VERSION", 0x103D},
                                                   {"CL_DEVICE_LINKER_AVAILABLE", 0x103E},
                                                   {"CL_DEVICE_BUILT_IN_KERNELS", 0x103F},
                                                   {"CL_DEVICE_IMAGE_MAX_BUFFER_SIZE", 0x1040},
                                                   {"CL_DEVICE_IMAGE_MAX_ARRAY_SIZE", 0x1041},
                                                   {"CL_DEVICE_PARENT_DEVICE", 0x1042},
                                                   {"CL_DEVICE_PARTITION_MAX_SUB_DEVICES", 0x1043},
                                                   {"CL_DEVICE_PARTITION_PROPERTIES", 0x1044},
                                                   {"CL_DEVICE_PARTITION_AFFINITY_DOMAIN", 0x1045},
                                                   {"CL_DEVICE_PARTITION_TYPE", 0x1046},
                                                   {"CL_DEVICE_REFERENCE_COUNT", 0x1047},
                                                   {"CL_DEVICE_PREFERRED_INTEROP_USER_SYNC", 0x1048},
                                                   {"CL_DEVICE_PRINTF_BUFFER_SIZE", 0x1049},
                                                   {"CL_DEVICE_IMAGE_PITCH_ALIGNMENT", 0x104A},
                                                   {"CL_DEVICE_IMAGE_BASE_ADDRESS_ALIGNMENT", 0x104B},
                                                   {"CL_DEVICE_MAX_READ_WRITE_IMAGE_ARGS", 0x104C},
                                                   {"CL_DEVICE_MAX_GLOBAL_VARIABLE_SIZE", 0x104D},
                                                   {"CL_DEVICE_QUEUE_ON_DEVICE_PROPERTIES", 0x104E},
                                                   {"CL_DEVICE_QUEUE_ON_DEVICE_PREFERRED_SIZE", 0x104F},
                                                   {"CL_DEVICE_QUEUE_ON_DEVICE_MAX_SIZE", 0x1050},
                                                   {"CL_DEVICE_MAX_ON_DEVICE_QUEUES", 0x1051},
                                                   {"CL_DEVICE_MAX_ON_DEVICE_EVENTS", 0x1052},
                                                   {"CL_DEVICE_SVM_CAPABILITIES", 0x1053},
                                                   {"CL_DEVICE_GLOBAL_VARIABLE_PREFERRED_TOTAL_SIZE", 0x1054},
                                                   {"CL_DEVICE_MAX_PIPE_ARGS", 0x1055},
                                                   {"CL_DEVICE_PIPE_MAX_ACTIVE_RESERVATIONS", 0x1056},
                                                   {"CL_DEVICE_PIPE_MAX_PACKET_SIZE", 0x1057},
                                                   {"CL_DEVICE_PREFERRED_PLATFORM_ATOMIC_ALIGNMENT", 0x1058},
                                                   {"CL_DEVICE_PREFERRED_GLOBAL_ATOMIC_ALIGNMENT", 0x1059},
                                                   {"CL_DEVICE_PREFERRED_LOCAL_ATOMIC_ALIGNMENT", 0x105A},
                                                   {"CL_DEVICE_IL_VERSION", 0x105B},
                                                   {"CL_DEVICE_MAX_NUM_SUB_GROUPS", 0x105C},
                                                   {"CL_DEVICE_SUB_GROUP_INDEPENDENT_FORWARD_PROGRESS", 0x105D}};

inline constexpr value_name context_info_names[] = {{"CL_CONTEXT_REFERENCE_COUNT", 0x1080},
                                                    {"CL_CONTEXT_DEVICES", 0x1081},
                                                    {"CL_CONTEXT_PROPERTIES", 0x1082},
                                                    {"CL_CONTEXT_NUM_DEVICES", 0x1083}};

inline constexpr value_name command_queue_info_names[] = {
    {"CL_QUEUE_CONTEXT", 0x1090},    {"CL_QUEUE_DEVICE", 0x1091}, {"CL_QUEUE_REFERENCE_COUNT", 0x1092},
    {"CL_QUEUE_PROPERTIES", 0x1093}, {"CL_QUEUE_SIZE", 0x1094},   {"CL_QUEUE_DEVICE_DEFAULT", 0x1095}};

inline constexpr value_name mem_info_names[] = {{"CL_MEM_TYPE", 0x1100},      {"CL_MEM_FLAGS", 0x1101},
                                                {"CL_MEM_SIZE", 0x1102},      {"CL_MEM_HOST_PTR", 0x1103},
                                                {"CL_MEM_MAP_COUNT", 0x1104}, {"CL_MEM_REFERENCE_COUNT", 0x1105},
                                                {"CL_MEM_CONTEXT", 0x1106},   {"CL_MEM_ASSOCIATED_MEMOBJECT", 0x1107},
                                                {"CL_MEM_OFFSET", 0x1108},    {"CL_MEM_USES_SVM_POINTER", 0x1109}};

inline constexpr value_name image_info_names[] = {
    {"CL_IMAGE_FORMAT", 0x1110},         {"CL_IMAGE_ELEMENT_SIZE", 0x1111}, {"CL_IMAGE_ROW_PITCH", 0x1112},
    {"CL_IMAGE_SLICE_PITCH", 0x1113},    {"CL_IMAGE_WIDTH", 0x1114},        {"CL_IMAGE_HEIGHT", 0x1115},
    {"CL_IMAGE_DEPTH", 0x1116},          {"CL_IMAGE_ARRAY_SIZE", 0x1117},   {"CL_IMAGE_BUFFER", 0x1118},
    {"CL_IMAGE_NUM_MIP_LEVELS", 0x1119}, {"CL_IMAGE_NUM_SAMPLES", 0x111A}};

inline constexpr value_name pipe_info_names[] = {{"CL_PIPE_PACKET_SIZE", 0x1120}, {"CL_PIPE_MAX_PACKETS", 0x1121}};

inline constexpr value_name sampler_info_names[] = {
    {"CL_SAMPLER_REFERENCE_COUNT", 0x1150},   {"CL_SAMPLER_CONTEXT", 0x1151},
    {"CL_SAMPLER_NORMALIZED_COORDS", 0x1152}, {"CL_SAMPLER_ADDRESSING_MODE", 0x1153},
    {"CL_SAMPLER_FILTER_MODE", 0x1154},       {"CL_SAMPLER_MIP_FILTER_MODE", 0x1155},
    {"CL_SAMPLER_LOD_MIN", 0x1156},           {"CL_SAMPLER_LOD_MAX", 0x1157}};

inline constexpr value_name program_info_names[] = {{"CL_PROGRAM_REFERENCE_COUNT", 0x1160},
                                                    {"CL_PROGRAM_CONTEXT", 0x1161},
                                                    {"CL_PROGRAM_NUM_DEVICES", 0x1162},
                                                    {"CL_PROGRAM_DEVICES", 0x1163},
                                                    {"CL_PROGRAM_SOURCE", 0x1164},
                                                    {"CL_PROGRAM_BINARY_SIZES", 0x1165},
                                                    {"CL_PROGRAM_BINARIES", 0x1166},
                                                    {"CL_PROGRAM_NUM_KERNELS", 0x1167},
                                                    {"CL_PROGRAM_KERNEL_NAMES", 0x1168},
                                                    {"CL_PROGRAM_IL", 0x1169},
                                                    {"CL_PROGRAM_SCOPE_GLOBAL_CTORS_PRESENT", 0x116A},
                                                    {"CL_PROGRAM_SCOPE_GLOBAL_DTORS_PRESENT", 0x116B}};

inline constexpr value_name program_build_info_names[] = {{"CL_PROGRAM_BUILD_STATUS", 0x1181},
                                                          {"CL_PROGRAM_BUILD_OPTIONS", 0x1182},
                                                          {"CL_PROGRAM_BUILD_LOG", 0x1183},
                                                          {"CL_PROGRAM_BINARY_TYPE", 0x1184},
                                                          {"CL_PROGRAM_BUILD_GLOBAL_VARIABLE_TOTAL_SIZE", 0x1185}};

inline constexpr value_name kernel_info_names[] = {
    {"CL_KERNEL_FUNCTION_NAME", 0x1190}, {"CL_KERNEL_NUM_ARGS", 0x1191}, {"CL_KERNEL_REFERENCE_COUNT", 0x1192},
    {"CL_KERNEL_CONTEXT", 0x1193},       {"CL_KERNEL_PROGRAM", 0x1194},  {"CL_KERNEL_ATTRIBUTES", 0x1195}};

inline constexpr value_name kernel_arg_info_names[] = {{"CL_KERNEL_ARG_ADDRESS_QUALIFIER", 0x1196},
                                                       {"CL_KERNEL_ARG_ACCESS_QUALIFIER", 0x1197},
                                                       {"CL_KERNEL_ARG_TYPE_NAME", 0x1198},
                                                       {"CL_KERNEL_ARG_TYPE_QUALIFIER", 0x1199},
                                                       {"CL_KERNEL_ARG_NAME", 0x119A}};

inline constexpr value_name kernel_work_group_info_names[] = {
    {"CL_KERNEL_WORK_GROUP_SIZE", 0x11B0},  {"CL_KERNEL_COMPILE_WORK_GROUP_SIZE", 0x11B1},
    {"CL_KERNEL_LOCAL_MEM_SIZE", 0x11B2},   {"CL_KERNEL_PREFERRED_WORK_GROUP_SIZE_MULTIPLE", 0x11B3},
    {"CL_KERNEL_PRIVATE_MEM_SIZE", 0x11B4}, {"CL_KERNEL_GLOBAL_WORK_SIZE", 0x11B5}};

inline constexpr value_name kernel_sub_group_info_names[] = {{"CL_KERNEL_MAX_SUB_GROUP_SIZE_FOR_NDRANGE", 0x2033},
                                                             {"CL_KERNEL_SUB_GROUP_COUNT_FOR_NDRANGE", 0x2034},
                                                             {"CL_KERNEL_LOCAL_SIZE_FOR_SUB_GROUP_COUNT", 0x11B8},
                                                             {"CL_KERNEL_MAX_NUM_SUB_GROUPS", 0x11B9},
                                                             {"CL_KERNEL_COMPILE_NUM_SUB_GROUPS", 0x11BA}};

inline constexpr value_name kernel_exec_info_names[] = {{"CL_KERNEL_EXEC_INFO_SVM_PTRS", 0x11B6},
                                                        {"CL_KERNEL_EXEC_INFO_SVM_FINE_GRAIN_SYSTEM", 0x11B7}};

inline constexpr value_name event_info_names[] = {{"CL_EVENT_COMMAND_QUEUE", 0x11D0},
                                                  {"CL_EVENT_COMMAND_TYPE", 0x11D1},
                                                  {"CL_EVENT_REFERENCE_COUNT", 0x11D2},
                                                  {"CL_EVENT_COMMAND_EXECUTION_STATUS", 0x11D3},
                                                  {"CL_EVENT_CONTEXT", 0x11D4}};

inline constexpr value_name profiling_info_names[] = {{"CL_PROFILING_COMMAND_QUEUED", 0x1280},
                                                      {"CL_PROFILING_COMMAND_SUBMIT", 0x1281},
                                                      {"CL_PROFILING_COMMAND_START", 0x1282},
                                                      {"CL_PROFILING_COMMAND_END", 0x1283},
                                                      {"CL_PROFILING_COMMAND_COMPLETE", 0x1284}};

inline constexpr value_name execution_status_names[] = {
    {"CL_COMPLETE", 0x0}, {"CL_RUNNING", 0x1}, {"CL_SUBMITTED", 0x2}, {"CL_QUEUED", 0x3}};

inline constexpr value_name addressing_mode_names[] = {{"CL_ADDRESS_NONE", 0x1130},
                                                       {"CL_ADDRESS_CLAMP_TO_EDGE", 0x1131},
                                                       {"CL_ADDRESS_CLAMP", 0x1132},
                                                       {"CL_ADDRESS_REPEAT", 0x1133},
                                                       {"CL_ADDRESS_MIRRORED_REPEAT", 0x1134}};

inline constexpr value_name filter_mode_names[] = {{"CL_FILTER_NEAREST", 0x1140}, {"CL_FILTER_LINEAR", 0x1141}};

inline constexpr value_name mem_object_type_names[] = {
    {"CL_MEM_OBJECT_BUFFER", 0x10F0},         {"CL_MEM_OBJECT_IMAGE2D", 0x10F1},
    {"CL_MEM_OBJECT_IMAGE3D", 0x10F2},        {"CL_MEM_OBJECT_IMAGE2D_ARRAY", 0x10F3},
    {"CL_MEM_OBJECT_IMAGE1D", 0x10F4},        {"CL_MEM_OBJECT_IMAGE1D_ARRAY", 0x10F5},
    {"CL_MEM_OBJECT_IMAGE1D_BUFFER", 0x10F6}, {"CL_MEM_OBJECT_PIPE", 0x10F7}};

inline constexpr value_name buffer_create_type_names[] = {{"CL_BUFFER_CREATE_TYPE_REGION", 0x1220}};

inline constexpr value_name channel_order_names[] = {
    {"CL_R", 0x10B0},         {"CL_A", 0x10B1},     {"CL_RG", 0x10B2},
    {"CL_RA", 0x10B3},        {"CL_RGB", 0x10B4},   {"CL_RGBA", 0x10B5},
    {"CL_BGRA", 0x10B6},      {"CL_ARGB", 0x10B7},  {"CL_INTENSITY", 0x10B8},
    {"CL_LUMINANCE", 0x10B9}, {"CL_Rx", 0x10BA},    {"CL_RGx", 0x10BB},
    {"CL_RGBx", 0x10BC},      {"CL_DEPTH", 0x10BD}, {"CL_DEPTH_STENCIL", 0x10BE},
    {"CL_sRGB", 0x10BF},      {"CL_sRGBx", 0x10C0}, {"CL_sRGBA", 0x10C1},
    {"CL_sBGRA", 0x10C2},     {"CL_ABGR", 0x10C3}};

inline constexpr value_name channel_type_names[] = {
    {"CL_SNORM_INT8", 0x10D0},       {"CL_SNORM_INT16", 0x10D1},       {"CL_UNORM_INT8", 0x10D2},
    {"CL_UNORM_INT16", 0x10D3},      {"CL_UNORM_SHORT_565", 0x10D4},   {"CL_UNORM_SHORT_555", 0x10D5},
    {"CL_UNORM_INT_101010", 0x10D6}, {"CL_SIGNED_INT8", 0x10D7},       {"CL_SIGNED_INT16", 0x10D8},
    {"CL_SIGNED_INT32", 0x10D9},     {"CL_UNSIGNED_INT8", 0x10DA},     {"CL_UNSIGNED_INT16", 0x10DB},
    {"CL_UNSIGNED_INT32", 0x10DC},   {"CL_HALF_FLOAT", 0x10DD},        {"CL_FLOAT", 0x10DE},
    {"CL_UNORM_INT24", 0x10DF},      {"CL_UNORM_INT_101010_2", 0x10E0}};

inline constexpr value_name context_properties_names[] = {{"CL_CONTEXT_PLATFORM", 0x1084},
                                                          {"CL_CONTEXT_INTEROP_USER_SYNC", 0x1085}};

inline constexpr value_name queue_properties_names[] = {{"CL_QUEUE_PROPERTIES", 0x1093}, {"CL_QUEUE_SIZE", 0x1094}};

inline constexpr value_name sampler_properties_names[] = {
    {"CL_SAMPLER_NORMALIZED_COORDS", 0x1152}, {"CL_SAMPLER_ADDRESSING_MODE", 0x1153},
    {"CL_SAMPLER_FILTER_MODE", 0x1154},       {"CL_SAMPLER_MIP_FILTER_MODE", 0x1155},
    {"CL_SAMPLER_LOD_MIN", 0x1156},           {"CL_SAMPLER_LOD_MAX", 0x1157}};

inline constexpr value_name partition_properties_names[] = {{"CL_DEVICE_PARTITION_EQUALLY", 0x1086},
                                                            {"CL_DEVICE_PARTITION_BY_COUNTS", 0x1087},
                                                            {"CL_DEVICE_PARTITION_BY_AFFINITY_DOMAIN", 0x1088}};

inline constexpr value_name device_type_names[] = {{"CL_DEVICE_TYPE_DEFAULT", 0x1}, {"CL_DEVICE_TYPE_CPU", 0x2},
                                                   {"CL_DEVICE_TYPE_GPU", 0x4},     {"CL_DEVICE_TYPE_ACCELERATOR", 0x8},
                                                   {"CL_DEVICE_TYPE_CUSTOM", 0x10}, {"CL_DEVICE_TYPE_ALL", 0xFFFFFFFF}};

inline constexpr value_name command_queue_properties_names[] = {{"CL_QUEUE_OUT_OF_ORDER_EXEC_MODE_ENABLE", 0x1},
                                                                {"CL_QUEUE_PROFILING_ENABLE", 0x2},
                                                                {"CL_QUEUE_ON_DEVICE", 0x4},
                                                                {"CL_QUEUE_ON_DEVICE_DEFAULT", 0x8}};

inline constexpr value_name mem_flags_names[] = {
    {"CL_MEM_READ_WRITE", 0x1},       {"CL_MEM_WRITE_ONLY", 0x2},
    {"CL_MEM_READ_ONLY", 0x4},        {"CL_MEM_USE_HOST_PTR", 0x8},
    {"CL_MEM_ALLOC_HOST_PTR", 0x10},  {"CL_MEM_COPY_HOST_PTR", 0x20},
    {"CL_MEM_HOST_WRITE_ONLY", 0x80}, {"CL_MEM_HOST_READ_ONLY", 0x100},
    {"CL_MEM_HOST_NO_ACCESS", 0x200}, {"CL_MEM_SVM_FINE_GRAIN_BUFFER", 0x400},
    {"CL_MEM_SVM_ATOMICS", 0x800},    {"CL_MEM_KERNEL_READ_AND_WRITE", 0x1000}};

inline constexpr value_name migration_flags_names[] = {{"CL_MIGRATE_MEM_OBJECT_HOST", 0x1},
                                                       {"CL_MIGRATE_MEM_OBJECT_CONTENT_UNDEFINED", 0x2}};

inline constexpr value_name map_flags_names[] = {
    {"CL_MAP_READ", 0x1}, {"CL_MAP_WRITE", 0x2}, {"CL_MAP_WRITE_INVALIDATE_REGION", 0x4}};

} // namespace values::detail
} // namespace nq
