// What crosses to OpenCL by address is laid out as the OpenCL headers have it.
#include <nq/types.hpp>
#include <vorn/mero/opencl.hpp>

#define CL_TARGET_OPENCL_VERSION 220
#include <CL/cl.h>

namespace {

template <class Ours, class Theirs>
concept laid_out_alike =
    sizeof(Ours) == sizeof(Theirs) &&
    alignof(Ours) == alignof(Theirs) && std::is_standard_layout_v<Ours>&& std::is_trivially_copyable_v<Ours>;

#define SAME_FIELD(ours, our_field, theirs, their_field)                                                               \
    static_assert(offsetof(ours, our_field) == offsetof(theirs, their_field) &&                                        \
                  sizeof(ours::our_field) == sizeof(theirs::their_field))

static_assert(laid_out_alike<nq::image_desc, cl_image_desc>);
SAME_FIELD(nq::image_desc, image_type, cl_image_desc, image_type);
SAME_FIELD(nq::image_desc, image_width, cl_image_desc, image_width);
SAME_FIELD(nq::image_desc, image_height, cl_image_desc, image_height);
SAME_FIELD(nq::image_desc, image_depth, cl_image_desc, image_depth);
SAME_FIELD(nq::image_desc, image_array_size, cl_image_desc, image_array_size);
SAME_FIELD(nq::image_desc, image_row_pitch, cl_image_desc, image_row_pitch);
SAME_FIELD(nq::image_desc, image_slice_pitch, cl_image_desc, image_slice_pitch);
SAME_FIELD(nq::image_desc, num_mip_levels, cl_image_desc, num_mip_levels);
SAME_FIELD(nq::image_desc, num_samples, cl_image_desc, num_samples);
SAME_FIELD(nq::image_desc, mem_object, cl_image_desc, buffer);

static_assert(laid_out_alike<nq::buffer_region, cl_buffer_region>);
SAME_FIELD(nq::buffer_region, origin, cl_buffer_region, origin);
SAME_FIELD(nq::buffer_region, size, cl_buffer_region, size);

template <class Api>
constexpr bool passes_by_address() {
    using format = typename Api::image_format;
    static_assert(laid_out_alike<format, cl_image_format>);
    SAME_FIELD(format, channel_order, cl_image_format, image_channel_order);
    SAME_FIELD(format, channel_data_type, cl_image_format, image_channel_data_type);
    static_assert(laid_out_alike<typename Api::context_property, cl_context_properties>);
    return true;
}

static_assert(passes_by_address<vorn::mero::api<100>>() && passes_by_address<vorn::mero::api<110>>() &&
              passes_by_address<vorn::mero::api<120>>() && passes_by_address<vorn::mero::api<200>>() &&
              passes_by_address<vorn::mero::api<210>>() && passes_by_address<vorn::mero::api<220>>());
static_assert(laid_out_alike<vorn::mero::opencl_1_2::device_partition_property, cl_device_partition_property>);

// The functions that programs hand to OpenCL.
static_assert(std::is_same_v<void(CL_CALLBACK*)(char const*, void const*, size_t, void*), nq::context_callback>);
static_assert(std::is_same_v<void(CL_CALLBACK*)(void*), nq::native_function>);
static_assert(sizeof(cl_int) == sizeof(int) && std::is_same_v<cl_uint, std::uint32_t>);

} // namespace
