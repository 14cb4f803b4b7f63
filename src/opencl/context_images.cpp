#include "opencl/perform.hpp"

namespace vorn::mero::VORN_MERO_NAMESPACE {

using namespace detail;

namespace {

std::vector<image_format> formats_of(context const& owner, mem_flags flags, mem_object_type type) {
    return internal::get_image_formats(call_handle_of(owner), raw_of(owner), flags, type);
}

} // namespace

std::vector<image_format> context::image_2d_supported_formats(mem_flags flags) {
    return formats_of(*this, flags, mem_object_type::image2d);
}

std::vector<image_format> context::image_3d_supported_formats(mem_flags flags) {
    return formats_of(*this, flags, mem_object_type::image3d);
}

#if VORN_MERO_OPENCL < 120
image_2d context::create_image_2d(mem_flags flags, image_format const& format, std::size_t width, std::size_t height,
                                  std::size_t row_pitch, void* host_ptr) {
    block::clCreateImage2D block;
    block.flags = static_cast<std::uint64_t>(flags);
    block.context = raw_of(*this);
    block.image_format = &format;
    block.image_width = width;
    block.image_height = height;
    block.image_row_pitch = row_pitch;
    block.host_ptr = host_ptr;
    return create<image_2d>(*this, block);
}

image_3d context::create_image_3d(mem_flags flags, image_format const& format, std::size_t width, std::size_t height,
                                  std::size_t depth, std::size_t row_pitch, std::size_t slice_pitch, void* host_ptr) {
    block::clCreateImage3D block;
    block.flags = static_cast<std::uint64_t>(flags);
    block.context = raw_of(*this);
    block.image_format = &format;
    block.image_width = width;
    block.image_height = height;
    block.image_depth = depth;
    block.image_row_pitch = row_pitch;
    block.image_slice_pitch = slice_pitch;
    block.host_ptr = host_ptr;
    return create<image_3d>(*this, block);
}
#endif

#if VORN_MERO_OPENCL >= 120
namespace {

constexpr std::uint32_t type_of(mem_object_type type) { return static_cast<std::uint32_t>(type); }

template <class Image>
Image create_image(context const& owner, mem_flags flags, image_format const& format, nq::image_desc const& desc,
                   void* host_ptr) {
    block::clCreateImage block;
    block.flags = static_cast<std::uint64_t>(flags);
    block.context = raw_of(owner);
    block.image_format = &format;
    block.image_desc = &desc;
    block.host_ptr = host_ptr;
    return create<Image>(owner, block);
}

} // namespace

image_1d context::create_image_1d(mem_flags flags, image_format const& format, std::size_t width, std::size_t row_pitch,
                                  void* host_ptr) {
    nq::image_desc desc{};
    desc.image_type = type_of(mem_object_type::image1d);
    desc.image_width = width;
    desc.image_row_pitch = row_pitch;
    return create_image<image_1d>(*this, flags, format, desc, host_ptr);
}

image_1d_buffer context::create_image_1d_buffer(mem_flags flags, image_format const& format, buffer& store,
                                                std::size_t width, std::size_t row_pitch, void* host_ptr) {
    nq::image_desc desc{};
    desc.image_type = type_of(mem_object_type::image1d_buffer);
    desc.image_width = width;
    desc.image_row_pitch = row_pitch;
    desc.mem_object = raw_of(store);
    return create_image<image_1d_buffer>(*this, flags, format, desc, host_ptr);
}

image_1d_array context::create_image_1d_array(mem_flags flags, image_format const& format, std::size_t width,
                                              std::size_t array_size, std::size_t slice_pitch, std::size_t row_pitch,
                                              void* host_ptr) {
    nq::image_desc desc{};
    desc.image_type = type_of(mem_object_type::image1d_array);
    desc.image_width = width;
    desc.image_array_size = array_size;
    desc.image_row_pitch = row_pitch;
    desc.image_slice_pitch = slice_pitch;
    return create_image<image_1d_array>(*this, flags, format, desc, host_ptr);
}

image_2d context::create_image_2d(mem_flags flags, image_format const& format, std::size_t width, std::size_t height,
                                  std::size_t row_pitch, void* host_ptr) {
    nq::image_desc desc{};
    desc.image_type = type_of(mem_object_type::image2d);
    desc.image_width = width;
    desc.image_height = height;
    desc.image_row_pitch = row_pitch;
    return create_image<image_2d>(*this, flags, format, desc, host_ptr);
}

image_2d_array context::create_image_2d_array(mem_flags flags, image_format const& format, std::size_t width,
                                              std::size_t height, std::size_t array_size, std::size_t slice_pitch,
                                              std::size_t row_pitch, void* host_ptr) {
    nq::image_desc desc{};
    desc.image_type = type_of(mem_object_type::image2d_array);
    desc.image_width = width;
    desc.image_height = height;
    desc.image_array_size = array_size;
    desc.image_row_pitch = row_pitch;
    desc.image_slice_pitch = slice_pitch;
    return create_image<image_2d_array>(*this, flags, format, desc, host_ptr);
}

image_3d context::create_image_3d(mem_flags flags, image_format const& format, std::size_t width, std::size_t height,
                                  std::size_t depth, std::size_t row_pitch, std::size_t slice_pitch, void* host_ptr) {
    nq::image_desc desc{};
    desc.image_type = type_of(mem_object_type::image3d);
    desc.image_width = width;
    desc.image_height = height;
    desc.image_depth = depth;
    desc.image_row_pitch = row_pitch;
    desc.image_slice_pitch = slice_pitch;
    return create_image<image_3d>(*this, flags, format, desc, host_ptr);
}

std::vector<image_format> context::image_1d_supported_formats(mem_flags flags) {
    return formats_of(*this, flags, mem_object_type::image1d);
}

std::vector<image_format> context::image_1d_buffer_supported_formats(mem_flags flags) {
    return formats_of(*this, flags, mem_object_type::image1d_buffer);
}

std::vector<image_format> context::image_1d_array_supported_formats(mem_flags flags) {
    return formats_of(*this, flags, mem_object_type::image1d_array);
}

std::vector<image_format> context::image_2d_array_supported_formats(mem_flags flags) {
    return formats_of(*this, flags, mem_object_type::image2d_array);
}
#endif

} // namespace vorn::mero::VORN_MERO_NAMESPACE
