#pragma once

// The tables of contexts, queues, samplers, events, memory objects, programs, kernels and references.

#include <nq/describe/field.hpp>

#define NQ_REFERENCE(entry, object)                                                                                    \
    NQ_BLOCK(clRetain##entry, NQ_FIELD(object), NQ_STATUS)                                                             \
    NQ_BLOCK(clRelease##entry, NQ_FIELD(object), NQ_STATUS)
#define NQ_DEVICES NQ_LIST(device_list, num_devices)
#define NQ_NUM_DEVICES NQ_FIELD(num_devices, is::count)
#define NQ_CALLBACK NQ_FIELD(pfn_notify), NQ_FIELD(user_data, is::user_data)
#define NQ_MEM_FLAGS NQ_FIELD(flags, is::bits_of(values::mem_flags)), NQ_FIELD(context)
#define NQ_FORMAT NQ_FIELD(image_format, is::image_format, has::one)
#define NQ_SIZE(member) NQ_FIELD(member, is::size)

namespace nq::detail {

// Contexts, sub-devices, queues, samplers, user events

NQ_BLOCK(clCreateSubDevices, NQ_FIELD(in_device), NQ_FIELD(properties, has::partition(values::partition_properties)),
         NQ_NUM_DEVICES, NQ_LIST(out_devices, num_devices), NQ_FIELD(num_devices_ret, is::count, has::one), NQ_STATUS)
NQ_BLOCK(clCreateContext, NQ_FIELD(properties, has::properties(values::context_properties)), NQ_NUM_DEVICES,
         NQ_LIST(devices, num_devices), NQ_CALLBACK, NQ_RESULT, NQ_ERROR_CODE)
NQ_BLOCK(clCreateContextFromType, NQ_FIELD(properties, has::properties(values::context_properties)),
         NQ_FIELD(device_type, is::bits_of(values::device_type)), NQ_CALLBACK, NQ_RESULT, NQ_ERROR_CODE)
NQ_BLOCK(clCreateCommandQueue, NQ_FIELD(context), NQ_FIELD(device),
         NQ_FIELD(properties, is::bits_of(values::command_queue_properties)), NQ_ERROR_CODE, NQ_RESULT)
NQ_BLOCK(clCreateCommandQueueWithProperties, NQ_FIELD(device), NQ_FIELD(context),
         NQ_FIELD(properties, has::properties(values::queue_properties)), NQ_RESULT, NQ_ERROR_CODE)
NQ_BLOCK(clSetDefaultDeviceCommandQueue, NQ_FIELD(context), NQ_FIELD(device), NQ_FIELD(command_queue), NQ_STATUS)
NQ_BLOCK(clSetCommandQueueProperty, NQ_FIELD(command_queue),
         NQ_FIELD(properties, is::bits_of(values::command_queue_properties)),
         NQ_FIELD(old_properties, is::bits_of(values::command_queue_properties), has::one), NQ_STATUS,
         NQ_FIELD(enable, is::boolean))
NQ_BLOCK(clFlush, NQ_FIELD(command_queue), NQ_STATUS)
NQ_BLOCK(clFinish, NQ_FIELD(command_queue), NQ_STATUS)
NQ_BLOCK(clCreateSampler, NQ_FIELD(context), NQ_FIELD(normalized_coords, is::boolean),
         NQ_FIELD(addressing_mode, is::one_of(values::addressing_mode)),
         NQ_FIELD(filter_mode, is::one_of(values::filter_mode)), NQ_ERROR_CODE, NQ_RESULT)
NQ_BLOCK(clCreateSamplerWithProperties, NQ_FIELD(context),
         NQ_FIELD(sampler_properties, has::properties(values::sampler_properties)), NQ_RESULT, NQ_ERROR_CODE)
NQ_BLOCK(clCreateUserEvent, NQ_FIELD(context), NQ_RESULT, NQ_ERROR_CODE)
NQ_BLOCK(clSetUserEventStatus, NQ_FIELD(event), NQ_FIELD(execution_status, is::one_of(values::execution_status)),
         NQ_STATUS)
NQ_BLOCK(clSetEventCallback, NQ_FIELD(event), NQ_CALLBACK, NQ_STATUS,
         NQ_FIELD(command_exec_callback_type, is::one_of(values::execution_status)))
NQ_BLOCK(clWaitForEvents, NQ_LIST(event_list, num_events), NQ_STATUS, NQ_FIELD(num_events, is::count))

// References

NQ_REFERENCE(CommandQueue, command_queue)
NQ_REFERENCE(Context, context)
NQ_REFERENCE(Device, device)
NQ_REFERENCE(Event, event)
NQ_REFERENCE(Kernel, kernel)
NQ_REFERENCE(MemObject, memobj)
NQ_REFERENCE(Program, program)
NQ_REFERENCE(Sampler, sampler)

// Memory objects

NQ_BLOCK(clCreateBuffer, NQ_MEM_FLAGS, NQ_SIZE(size), NQ_FIELD(host_ptr, is::bytes, has::counted(NQ_AT(size))),
         NQ_RESULT, NQ_ERROR_CODE)
NQ_BLOCK(clCreateSubBuffer, NQ_FIELD(flags, is::bits_of(values::mem_flags)), NQ_FIELD(buffer),
         NQ_FIELD(buffer_create_info, has::one), NQ_RESULT, NQ_ERROR_CODE,
         NQ_FIELD(buffer_create_type, is::one_of(values::buffer_create_type)))
NQ_BLOCK(clCreateImage, NQ_MEM_FLAGS, NQ_FORMAT, NQ_FIELD(image_desc, has::one),
         NQ_FIELD(host_ptr, is::bytes, has::by(length_rule::described_image, NQ_AT(image_desc))), NQ_RESULT,
         NQ_ERROR_CODE)
NQ_BLOCK(clCreateImage2D, NQ_MEM_FLAGS, NQ_FORMAT, NQ_SIZE(image_width), NQ_SIZE(image_height),
         NQ_SIZE(image_row_pitch),
         NQ_FIELD(host_ptr, is::bytes,
                  has::by(length_rule::image, NQ_AT(image_width), NQ_AT(image_height), absent, NQ_AT(image_row_pitch),
                          absent)),
         NQ_RESULT, NQ_ERROR_CODE)
NQ_BLOCK(clCreateImage3D, NQ_MEM_FLAGS, NQ_FORMAT, NQ_SIZE(image_width), NQ_SIZE(image_height), NQ_SIZE(image_depth),
         NQ_SIZE(image_row_pitch), NQ_SIZE(image_slice_pitch),
         NQ_FIELD(host_ptr, is::bytes,
                  has::by(length_rule::image, NQ_AT(image_width), NQ_AT(image_height), NQ_AT(image_depth),
                          NQ_AT(image_row_pitch), NQ_AT(image_slice_pitch))),
         NQ_RESULT, NQ_ERROR_CODE)
NQ_BLOCK(clCreatePipe, NQ_MEM_FLAGS, NQ_FIELD(properties, has::properties({})), NQ_RESULT, NQ_SIZE(pipe_packet_size),
         NQ_FIELD(pipe_max_packets, is::count), NQ_ERROR_CODE)
NQ_BLOCK(clSetMemObjectDestructorCallback, NQ_FIELD(memobj), NQ_CALLBACK, NQ_STATUS)
NQ_BLOCK(clSVMAlloc, NQ_MEM_FLAGS, NQ_SIZE(size), NQ_FIELD(result, is::bytes, is::out, has::counted(NQ_AT(size))),
         NQ_SIZE(alignment))
NQ_BLOCK(clSVMFree, NQ_FIELD(context), NQ_FIELD(svm_pointer, is::address, has::no_known_length))

// Programs and kernels

NQ_BLOCK(clCreateProgramWithSource, NQ_FIELD(context),
         NQ_FIELD(strings, is::text, has::counted(NQ_AT(count), NQ_AT(lengths))),
         NQ_FIELD(lengths, is::size, has::counted(NQ_AT(count))), NQ_RESULT, NQ_ERROR_CODE, NQ_FIELD(count, is::count))
NQ_BLOCK(clCreateProgramWithBinary, NQ_FIELD(context), NQ_DEVICES,
         NQ_FIELD(lengths, is::size, has::counted(NQ_AT(num_devices))),
         NQ_FIELD(binaries, is::bytes, has::counted(NQ_AT(num_devices), NQ_AT(lengths))),
         NQ_FIELD(binary_status, is::status, has::counted(NQ_AT(num_devices))), NQ_RESULT, NQ_ERROR_CODE,
         NQ_NUM_DEVICES)
NQ_BLOCK(clCreateProgramWithBuiltInKernels, NQ_FIELD(context), NQ_DEVICES, NQ_FIELD(kernel_names), NQ_RESULT,
         NQ_ERROR_CODE, NQ_NUM_DEVICES)
NQ_BLOCK(clCreateProgramWithIL, NQ_FIELD(context), NQ_FIELD(il, is::bytes, has::counted(NQ_AT(length))),
         NQ_SIZE(length), NQ_RESULT, NQ_ERROR_CODE)
NQ_BLOCK(clBuildProgram, NQ_FIELD(program), NQ_DEVICES, NQ_FIELD(options), NQ_CALLBACK, NQ_STATUS, NQ_NUM_DEVICES)
NQ_BLOCK(clCompileProgram, NQ_FIELD(program), NQ_DEVICES, NQ_FIELD(options), NQ_LIST(input_headers, num_input_headers),
         NQ_FIELD(header_include_names, is::text, has::counted(NQ_AT(num_input_headers))), NQ_CALLBACK, NQ_STATUS,
         NQ_NUM_DEVICES, NQ_FIELD(num_input_headers, is::count))
NQ_BLOCK(clLinkProgram, NQ_FIELD(context), NQ_DEVICES, NQ_FIELD(options), NQ_LIST(input_programs, num_input_programs),
         NQ_FIELD(pfn_notify), NQ_RESULT, NQ_FIELD(user_data, is::user_data), NQ_ERROR_CODE, NQ_NUM_DEVICES,
         NQ_FIELD(num_input_programs, is::count))
NQ_BLOCK(clUnloadCompiler, NQ_STATUS)
NQ_BLOCK(clUnloadPlatformCompiler, NQ_FIELD(platform), NQ_STATUS)
NQ_BLOCK(clSetProgramSpecializationConstant, NQ_FIELD(program), NQ_FIELD(spec_id, is::number), NQ_SIZE(spec_size),
         NQ_FIELD(spec_value, is::bytes, has::counted(NQ_AT(spec_size))), NQ_STATUS)
NQ_BLOCK(clSetProgramReleaseCallback, NQ_FIELD(program), NQ_CALLBACK, NQ_STATUS)
NQ_BLOCK(clCreateKernel, NQ_FIELD(program), NQ_FIELD(kernel_name), NQ_RESULT, NQ_ERROR_CODE)
NQ_BLOCK(clCreateKernelsInProgram, NQ_FIELD(program), NQ_LIST(kernels, num_kernels),
         NQ_FIELD(num_kernels_ret, is::count, has::one), NQ_STATUS, NQ_FIELD(num_kernels, is::count))
NQ_BLOCK(clCloneKernel, NQ_FIELD(source_kernel), NQ_RESULT, NQ_ERROR_CODE)
NQ_BLOCK(clSetKernelArg, NQ_FIELD(kernel), NQ_SIZE(arg_size),
         NQ_FIELD(arg_value, is::bytes, has::counted(NQ_AT(arg_size))), NQ_STATUS, NQ_FIELD(arg_index, is::number))
NQ_BLOCK(clSetKernelArgSVMPointer, NQ_FIELD(kernel), NQ_FIELD(arg_value, is::address, has::no_known_length), NQ_STATUS,
         NQ_FIELD(arg_index, is::number))
NQ_BLOCK(clSetKernelExecInfo, NQ_FIELD(kernel), NQ_SIZE(param_value_size),
         NQ_FIELD(param_value, is::bytes, has::counted(NQ_AT(param_value_size))), NQ_STATUS,
         NQ_FIELD(param_name, is::one_of(values::kernel_exec_info)))

} // namespace nq::detail

#undef NQ_REFERENCE
#undef NQ_DEVICES
#undef NQ_NUM_DEVICES
#undef NQ_CALLBACK
#undef NQ_MEM_FLAGS
#undef NQ_FORMAT
#undef NQ_SIZE
