#pragma once

// The tables of queries and listings.

#include <nq/describe/field.hpp>

#define NQ_NAME(values_of) NQ_FIELD(param_name, is::one_of(values::values_of))
#define NQ_REPLY_SIZE NQ_FIELD(param_value_size, is::size)
#define NQ_REPLY                                                                                                       \
    NQ_FIELD(param_value, is::bytes, is::out, has::counted(NQ_AT(param_value_size))),                                  \
        NQ_FIELD(param_value_size_ret, is::size, has::one)
#define NQ_INFO(entry, object, values_of)                                                                              \
    NQ_BLOCK(entry, NQ_FIELD(object), NQ_REPLY_SIZE, NQ_REPLY, NQ_STATUS, NQ_NAME(values_of))
#define NQ_PLAIN_INFO(entry, object, values_of)                                                                        \
    NQ_BLOCK(entry, NQ_FIELD(object), NQ_NAME(values_of), NQ_REPLY_SIZE, NQ_REPLY, NQ_STATUS)
#define NQ_DEVICE_INFO(entry, object, values_of)                                                                       \
    NQ_BLOCK(entry, NQ_FIELD(object), NQ_FIELD(device), NQ_REPLY_SIZE, NQ_REPLY, NQ_STATUS, NQ_NAME(values_of))
#define NQ_TIME(member) NQ_FIELD(member, is::number, has::one)

namespace nq::detail {

NQ_BLOCK(call_handle_device, NQ_RESULT)
NQ_PLAIN_INFO(clGetPlatformInfo, platform, platform_info)
NQ_BLOCK(clGetDeviceIDs, NQ_FIELD(platform), NQ_FIELD(device_type, is::bits_of(values::device_type)),
         NQ_FIELD(num_entries, is::count), NQ_LIST(devices, num_entries), NQ_FIELD(num_devices, is::count, has::one),
         NQ_STATUS)
NQ_BLOCK(clGetDeviceInfo, NQ_FIELD(device), NQ_REPLY, NQ_NAME(device_info), NQ_REPLY_SIZE, NQ_STATUS)
NQ_PLAIN_INFO(clGetContextInfo, context, context_info)
NQ_INFO(clGetCommandQueueInfo, command_queue, command_queue_info)
NQ_INFO(clGetMemObjectInfo, memobj, mem_info)
NQ_INFO(clGetImageInfo, image, image_info)
NQ_INFO(clGetPipeInfo, pipe, pipe_info)
NQ_INFO(clGetSamplerInfo, sampler, sampler_info)
NQ_INFO(clGetProgramInfo, program, program_info)
NQ_INFO(clGetKernelInfo, kernel, kernel_info)
NQ_INFO(clGetEventInfo, event, event_info)
NQ_INFO(clGetEventProfilingInfo, event, profiling_info)
NQ_DEVICE_INFO(clGetProgramBuildInfo, program, program_build_info)
NQ_DEVICE_INFO(clGetKernelWorkGroupInfo, kernel, kernel_work_group_info)
NQ_BLOCK(clGetKernelArgInfo, NQ_FIELD(kernel), NQ_REPLY_SIZE, NQ_REPLY, NQ_STATUS, NQ_FIELD(arg_index, is::number),
         NQ_NAME(kernel_arg_info))
NQ_BLOCK(clGetKernelSubGroupInfo, NQ_FIELD(kernel), NQ_FIELD(device), NQ_FIELD(input_value_size, is::size),
         NQ_FIELD(input_value, is::bytes, has::counted(NQ_AT(input_value_size))), NQ_REPLY_SIZE, NQ_REPLY, NQ_STATUS,
         NQ_NAME(kernel_sub_group_info))
NQ_BLOCK(clGetSupportedImageFormats, NQ_FIELD(flags, is::bits_of(values::mem_flags)), NQ_FIELD(context),
         NQ_FIELD(image_formats, is::image_format, is::out, has::counted(NQ_AT(num_entries))),
         NQ_FIELD(num_image_formats, is::count, has::one), NQ_STATUS,
         NQ_FIELD(image_type, is::one_of(values::mem_object_type)), NQ_FIELD(num_entries, is::count))
NQ_BLOCK(clGetExtensionFunctionAddress, NQ_FIELD(func_name),
         NQ_FIELD(result, is::address, is::out, has::no_known_length))
NQ_BLOCK(clGetExtensionFunctionAddressForPlatform, NQ_FIELD(platform), NQ_FIELD(func_name),
         NQ_FIELD(result, is::address, is::out, has::no_known_length))
NQ_BLOCK(clGetDeviceAndHostTimer, NQ_FIELD(device), NQ_TIME(device_timestamp), NQ_TIME(host_timestamp), NQ_STATUS)
NQ_BLOCK(clGetHostTimer, NQ_FIELD(device), NQ_TIME(host_timestamp), NQ_STATUS)

} // namespace nq::detail

#undef NQ_NAME
#undef NQ_REPLY_SIZE
#undef NQ_REPLY
#undef NQ_INFO
#undef NQ_PLAIN_INFO
#undef NQ_DEVICE_INFO
#undef NQ_TIME
