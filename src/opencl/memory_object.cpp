#include "opencl/perform.hpp"

template <>
struct vorn::mero::internal::ownership<vorn::mero::VORN_MERO_NAMESPACE::internal::memory_object_kind>
    : counted<nq::capability::VORN_MERO_NAMESPACE, nq::block::clRetainMemObject, nq::block::clReleaseMemObject> {
    static constexpr char const* destructor_message = "Exception caught in memory_object::~memory_object().";
};

template class vorn::mero::internal::owner<vorn::mero::VORN_MERO_NAMESPACE::internal::memory_object_kind>;

namespace vorn::mero::VORN_MERO_NAMESPACE {

using namespace detail;

namespace {

query<&block::clGetMemObjectInfo::memobj> ask(memory_object const& object, std::uint32_t name) {
    return {call_handle_of(object), name, raw_of(object)};
}

query<&block::clGetImageInfo::image> ask_image(image const& object, std::uint32_t name) {
    return {call_handle_of(object), name, raw_of(object)};
}

} // namespace

mem_flags memory_object::flags() const { return read_scalar<mem_flags>(ask(*this, cl::mem_flags)); }
std::size_t memory_object::size() const { return read_scalar<std::size_t>(ask(*this, cl::mem_size)); }
void* memory_object::host_ptr() const { return read_scalar<void*>(ask(*this, cl::mem_host_ptr)); }
context memory_object::get_context() const { return read_object<context>(*this, ask(*this, cl::mem_context)); }

image_format image::get_image_format() const { return read_scalar<image_format>(ask_image(*this, cl::image_format)); }
std::size_t image::element_size() const { return read_scalar<std::size_t>(ask_image(*this, cl::image_element_size)); }
std::size_t image::row_pitch() const { return read_scalar<std::size_t>(ask_image(*this, cl::image_row_pitch)); }
std::size_t image::slice_pitch() const { return read_scalar<std::size_t>(ask_image(*this, cl::image_slice_pitch)); }
std::size_t image::width() const { return read_scalar<std::size_t>(ask_image(*this, cl::image_width)); }
std::size_t image::height() const { return read_scalar<std::size_t>(ask_image(*this, cl::image_height)); }
std::size_t image::depth() const { return read_scalar<std::size_t>(ask_image(*this, cl::image_depth)); }

#if VORN_MERO_OPENCL >= 110
std::size_t sub_buffer::offset() const { return read_scalar<std::size_t>(ask(*this, cl::mem_offset)); }
buffer sub_buffer::parent_buffer() { return read_object<buffer>(*this, ask(*this, cl::mem_associated_memobject)); }
#endif

#if VORN_MERO_OPENCL >= 120
std::size_t image::array_size() const { return read_scalar<std::size_t>(ask_image(*this, cl::image_array_size)); }
std::uint32_t image::num_mip_levels() const {
    return read_scalar<std::uint32_t>(ask_image(*this, cl::image_num_mip_levels));
}
std::uint32_t image::num_samples() const { return read_scalar<std::uint32_t>(ask_image(*this, cl::image_num_samples)); }
#endif

#if VORN_MERO_OPENCL >= 200
namespace {

query<&block::clGetPipeInfo::pipe> ask_pipe(pipe const& object, std::uint32_t name) {
    return {call_handle_of(object), name, raw_of(object)};
}

} // namespace

std::uint32_t pipe::packet_size() const { return read_scalar<std::uint32_t>(ask_pipe(*this, cl::pipe_packet_size)); }
std::uint32_t pipe::max_packets() const { return read_scalar<std::uint32_t>(ask_pipe(*this, cl::pipe_max_packets)); }
#endif

namespace internal {

std::vector<image_format> get_image_formats(nq::call_handle const& call_handle, _nq_cl_context* context,
                                            mem_flags flags, mem_object_type type) {
    std::uint32_t count = 0;
    block::clGetSupportedImageFormats block{.flags = static_cast<std::uint64_t>(flags),
                                            .context = context,
                                            .num_image_formats = &count,
                                            .image_type = static_cast<std::uint32_t>(type)};
    perform(call_handle, block);
    std::vector<image_format> formats(count);
    if (count != 0) {
        block.image_formats = formats.data();
        block.num_image_formats = nullptr;
        block.num_entries = count;
        perform(call_handle, block);
    }
    return formats;
}

} // namespace internal

namespace raw {

_nq_cl_mem* get_raw_memory_object(memory_object const& object) noexcept { return raw_of(object); }
nq::call_handle const& get_call_handle(memory_object const& object) noexcept { return call_handle_of(object); }
void retain(memory_object const& object) { mero::internal::retain(object); }
void release(memory_object const& object) { mero::internal::release(object); }

std::uint32_t refcount(memory_object const& object) {
    return read_scalar<std::uint32_t>(ask(object, cl::mem_reference_count));
}

buffer create_buffer(nq::call_handle const& call_handle, _nq_cl_mem* handle) {
    return {call_handle, handle, internal::create_reference{}};
}

image_2d create_image_2d(nq::call_handle const& call_handle, _nq_cl_mem* handle) {
    return {call_handle, handle, internal::create_reference{}};
}

image_3d create_image3d(nq::call_handle const& call_handle, _nq_cl_mem* handle) {
    return {call_handle, handle, internal::create_reference{}};
}

#if VORN_MERO_OPENCL >= 110
sub_buffer create_sub_buffer(nq::call_handle const& call_handle, _nq_cl_mem* handle) {
    return {call_handle, handle, internal::create_reference{}};
}
#endif

#if VORN_MERO_OPENCL >= 120
image_1d create_image_1d(nq::call_handle const& call_handle, _nq_cl_mem* handle) {
    return {call_handle, handle, internal::create_reference{}};
}

image_1d_buffer create_image_1d_buffer(nq::call_handle const& call_handle, _nq_cl_mem* handle) {
    return {call_handle, handle, internal::create_reference{}};
}

image_1d_array create_image_1d_array(nq::call_handle const& call_handle, _nq_cl_mem* handle) {
    return {call_handle, handle, internal::create_reference{}};
}

image_2d_array create_image_2d_array(nq::call_handle const& call_handle, _nq_cl_mem* handle) {
    return {call_handle, handle, internal::create_reference{}};
}
#endif

#if VORN_MERO_OPENCL >= 200
pipe create_pipe(nq::call_handle const& call_handle, _nq_cl_mem* handle) {
    return {call_handle, handle, internal::create_reference{}};
}
#endif

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE
