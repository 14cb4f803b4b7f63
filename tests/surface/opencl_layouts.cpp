// What crosses to OpenCL by address is laid out as the OpenCL headers have it, and bit fields compute as OpenCL's do.
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
    constexpr format rgba{Api::image_channel_order::rgba, Api::image_channel_type::unorm_int8};
    static_assert(format{CL_RGBA, CL_UNORM_INT8} == rgba && !(format{CL_RGBA, CL_UNORM_INT16} == rgba) &&
                  !(format{CL_BGRA, CL_UNORM_INT8} == rgba));
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

template <class... Flags>
constexpr bool compute() {
    auto const right = [](auto none) {
        using T = decltype(none);
        T a{0b1100};
        bool const added = (a |= T{0b0001}) == T{0b1101}, masked = (a &= T{0b0111}) == T{0b0101};
        bool const changed = (a ^= T{0b0110}) == T{0b0011} && a == T{0b0011};
        return added && masked && changed && (T{0b1100} | T{0b1010}) == T{0b1110} &&
               (T{0b1100} & T{0b1010}) == T{0b1000} && (T{0b1100} ^ T{0b1010}) == T{0b0110} &&
               ~none == T(~std::uint64_t{0});
    };
    return (right(Flags{}) && ...);
}

namespace cl = vorn::mero::opencl_2_2;
static_assert(
    compute<vorn::mero::opencl_1_0::mem_flags, cl::mem_flags, cl::svm_mem_flags, cl::map_flags, cl::device_type,
            cl::migration_flags, cl::device_affinity_domain, cl::kernel_argument_type_qualifier>());

} // namespace
