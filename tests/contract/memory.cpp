#include "scenario.hpp"

#include <numeric>

namespace nq::block::contract {

numbers counting_from(std::int32_t first) {
    numbers values{};
    std::iota(values.begin(), values.end(), first);
    return values;
}

_nq_cl_mem* make_buffer(session& s, numbers values) {
    return s.make<clReleaseMemObject>(clCreateBuffer{.flags = CL_MEM_COPY_HOST_PTR, .host_ptr = &values});
}

numbers read(session& s, _nq_cl_mem* buffer) {
    numbers values{};
    s.ok(clEnqueueReadBuffer{.buffer = buffer, .ptr = &values});
    return values;
}

namespace {

// 16 rows of 16 bytes: in the first buffer in rows of 32, in the second tight, on the host in rows of 48.
void rectangles(session& s) {
    auto* const first = make_buffer(s);
    auto* const second = make_buffer(s);
    triple const inner{16, 2, 0};
    auto const source = counting_from(500);
    s.ok(clEnqueueWriteBufferRect{
        .buffer = first, .buffer_origin = inner.data(), .buffer_row_pitch = 32, .ptr = &source});
    s.ok(clEnqueueCopyBufferRect{
        .src_buffer = first, .dst_buffer = second, .src_origin = inner.data(), .src_row_pitch = 32});
    numbers target{};
    s.ok(clEnqueueReadBufferRect{
        .buffer = first, .buffer_origin = inner.data(), .buffer_row_pitch = 32, .host_row_pitch = 48, .ptr = &target});
    constexpr std::size_t row = 4; // the elements of a tight one
    EXPECT_EQ(read(s, first)[3 * 2 * row + row], source[row]);
    EXPECT_EQ(read(s, second)[row], source[row]);
    EXPECT_EQ(target[3 * row], source[row]);
}

void sub_buffer(session& s, _nq_cl_mem* buffer) {
    buffer_region const half{sizeof(numbers) / 2, sizeof(numbers) / 2};
    auto* const part =
        s.ok(clCreateSubBuffer{
                 .buffer = buffer, .buffer_create_info = &half, .buffer_create_type = CL_BUFFER_CREATE_TYPE_REGION})
            .result;
    EXPECT_EQ(s.info<_nq_cl_mem*>(clGetMemObjectInfo{part}, CL_MEM_ASSOCIATED_MEMOBJECT), buffer);
    EXPECT_EQ(s.info<std::size_t>(clGetMemObjectInfo{part}, CL_MEM_OFFSET), half.origin);
    std::atomic<int> destroyed = 0;
    s.ok(clSetMemObjectDestructorCallback{.memobj = part, .pfn_notify = count_call, .user_data = &destroyed});
    s.ok(clReleaseMemObject{part});
    EXPECT_EQ(destroyed, 1);
}

void fill_and_migrate(session& s, _nq_cl_mem* buffer) {
    auto expected = read(s, buffer);
    std::int32_t const pattern = expected[1] = expected[2] = 5;
    s.ok(clEnqueueFillBuffer{.buffer = buffer, .pattern = &pattern, .offset = 4, .size = 8});
    s.ok(clEnqueueMigrateMemObjects{.flags = CL_MIGRATE_MEM_OBJECT_HOST, .mem_objects = &buffer, .num_mem_objects = 1});
    EXPECT_EQ(read(s, buffer), expected);
}

_nq_cl_mem* make_image(session& s) {
    if (s.has<clCreateImage>()) {
        image_desc const description{CL_MEM_OBJECT_IMAGE2D, whole[0], whole[1]};
        return s.make<clReleaseMemObject>(clCreateImage{.image_desc = &description});
    }
    auto* const deep = s.make<clReleaseMemObject>(clCreateImage3D{.image_depth = 2});
    EXPECT_EQ(s.info<std::size_t>(clGetImageInfo{deep}, CL_IMAGE_DEPTH), 2U);
    return s.make<clReleaseMemObject>(clCreateImage2D{});
}

numbers read_image(session& s, _nq_cl_mem* image) {
    numbers values{};
    s.ok(clEnqueueReadImage{.image = image, .ptr = &values});
    return values;
}

void map_image(session& s, _nq_cl_mem* image) {
    clEnqueueMapImage request{.image = image};
    std::size_t row_pitch = 0;
    std::size_t slice_pitch = 0;
    request.image_row_pitch = &row_pitch;
    request.image_slice_pitch = &slice_pitch;
    auto* const mapped = s.ok(request).result;
    auto const* const second_row = reinterpret_cast<std::int32_t*>(static_cast<char*>(mapped) + row_pitch);
    EXPECT_EQ(*second_row, read_image(s, image)[whole[0]]);
    s.ok(clEnqueueUnmapMemObject{.memobj = image, .mapped_ptr = mapped});
}

void map_shared(session& s, void* memory, std::int32_t expected) {
    s.ok(clEnqueueSVMMap{.svm_ptr = memory});
    EXPECT_EQ(static_cast<std::int32_t const*>(memory)[1], expected);
    s.ok(clEnqueueSVMUnmap{.svm_ptr = memory});
}

_nq_cl_kernel* make_store(session& s) {
    auto* const program = make_program(s, kernel_source);
    build(s, program);
    return make_kernel(s, program, "store");
}

// A program's own function is to free the memory itself; here it only counts.
void count_freed(_nq_cl_command_queue*, std::uint32_t count, void**, void* counter) {
    *static_cast<std::atomic<std::uint32_t>*>(counter) += count;
}

void with_shared_memory(session& s, void* memory) {
    std::int32_t const pattern = 11;
    s.ok(clEnqueueSVMMemFill{.svm_ptr = memory, .pattern = &pattern});
    map_shared(s, memory, pattern);
    auto const values = counting_from(40);
    s.ok(clEnqueueSVMMemcpy{.dst_ptr = memory, .src_ptr = &values});
    void const* const list = memory;
    if (s.has<clEnqueueSVMMigrateMem>()) {
        s.ok(clEnqueueSVMMigrateMem{.num_svm_pointers = 1, .svm_pointers = &list});
    }
    map_shared(s, memory, values[1]);
    auto* const kernel = make_store(s);
    s.ok(clSetKernelArgSVMPointer{kernel, memory});
    s.ok(clSetKernelExecInfo{kernel, sizeof list, &list, 0, CL_KERNEL_EXEC_INFO_SVM_PTRS});
    launch(s, kernel);
    map_shared(s, memory, 1);
    std::atomic<std::uint32_t> freed = 0;
    s.ok(clEnqueueSVMFree{
        .svm_pointers = &memory, .pfn_free_func = count_freed, .user_data = &freed, .num_svm_pointers = 1});
    s.ok(clFinish{});
    EXPECT_EQ(freed, 1U);
    s.call(clSVMFree{s.context, memory});
}

void without_shared_memory(session& s) {
    constexpr auto refused = [](session& where, auto... blocks) { (where.refused(blocks, CL_INVALID_OPERATION), ...); };
    int byte = 0;
    s.call(clSVMFree{s.context, nullptr});
    refused(s, clEnqueueSVMFree{}, clEnqueueSVMMap{}, clEnqueueSVMUnmap{}, clEnqueueSVMMemcpy{},
            clEnqueueSVMMemFill{.pattern = &byte});
    auto* const kernel = make_store(s);
    refused(s, clSetKernelArgSVMPointer{kernel}, clSetKernelExecInfo{kernel});
    if (s.has<clEnqueueSVMMigrateMem>()) {
        refused(s, clEnqueueSVMMigrateMem{});
    }
}

} // namespace

// What is written is read back from where the last command has put it.
void buffers(session& s) {
    auto* const first = make_buffer(s);
    auto* const second = make_buffer(s);
    EXPECT_EQ(s.info<std::size_t>(clGetMemObjectInfo{first}, CL_MEM_SIZE), sizeof(numbers));
    s.references<clRetainMemObject, clReleaseMemObject, clGetMemObjectInfo>(first, CL_MEM_REFERENCE_COUNT);
    auto const values = counting_from(1000);
    s.ok(clEnqueueWriteBuffer{.buffer = first, .ptr = &values});
    s.ok(clEnqueueCopyBuffer{.src_buffer = first, .dst_buffer = second});
    EXPECT_EQ(read(s, second), values);
    auto* const mapped = s.ok(clEnqueueMapBuffer{.buffer = second, .offset = 4, .size = 8}).result;
    EXPECT_EQ(*static_cast<std::int32_t*>(mapped), values[1]);
    s.ok(clEnqueueUnmapMemObject{.memobj = second, .mapped_ptr = mapped});
    if (s.has<clEnqueueFillBuffer>()) {
        fill_and_migrate(s, second);
    }
    if (s.has<clEnqueueReadBufferRect>()) {
        rectangles(s);
        sub_buffer(s, first);
    }
}

void images(session& s) {
    std::array<cl_image_format, 512> formats{}; // rusticl writes all that it has, whatever the number of entries
    s.ok(clGetSupportedImageFormats{.flags = CL_MEM_READ_WRITE,
                                    .image_formats = formats.data(),
                                    .image_type = CL_MEM_OBJECT_IMAGE2D,
                                    .num_entries = formats.size()});
    EXPECT_NE(formats[0].image_channel_order, 0U);
    std::array const chain{make_image(s), make_image(s), make_image(s)};
    auto* const buffer = make_buffer(s);
    EXPECT_EQ(s.info<std::size_t>(clGetImageInfo{chain[0]}, CL_IMAGE_WIDTH), whole[0]);
    auto const values = counting_from(0x01020300);
    s.ok(clEnqueueWriteImage{.image = chain[0], .ptr = &values});
    s.ok(clEnqueueCopyImage{.src_image = chain[0], .dst_image = chain[1]});
    s.ok(clEnqueueCopyImageToBuffer{.src_image = chain[1], .dst_buffer = buffer});
    s.ok(clEnqueueCopyBufferToImage{.src_buffer = buffer, .dst_image = chain[2]});
    EXPECT_EQ(read_image(s, chain[2]), values);
    map_image(s, chain[2]);
    if (s.has<clEnqueueFillImage>()) {
        std::array<std::uint32_t, 4> const color{1, 2, 3, 4};
        s.ok(clEnqueueFillImage{.image = chain[0], .fill_color = &color});
        EXPECT_EQ(read_image(s, chain[0])[5], 0x04030201);
    }
}

void samplers(session& s) {
    std::array<std::uint64_t, 3> const properties{CL_SAMPLER_FILTER_MODE, CL_FILTER_LINEAR, 0};
    auto* const sampler =
        s.has<clCreateSampler>()
            ? s.make<clReleaseSampler>(clCreateSampler{s.context, 1, CL_ADDRESS_CLAMP, CL_FILTER_LINEAR})
            : s.make<clReleaseSampler>(clCreateSamplerWithProperties{s.context, properties.data()});
    EXPECT_EQ(s.info<cl_uint>(clGetSamplerInfo{sampler}, CL_SAMPLER_FILTER_MODE), cl_uint{CL_FILTER_LINEAR});
    s.references<clRetainSampler, clReleaseSampler, clGetSamplerInfo>(sampler, CL_SAMPLER_REFERENCE_COUNT);
}

void shared_memory(session& s) {
    if (clSVMAlloc request{.flags = CL_MEM_READ_WRITE}; s.feature(request)) {
        with_shared_memory(s, request.result);
    } else {
        without_shared_memory(s);
    }
}

// On a platform without pipes a buffer stands in for one.
void pipes(session& s) {
    clCreatePipe request{.pipe_packet_size = 4, .pipe_max_packets = 16};
    if (s.feature(request)) {
        EXPECT_EQ(s.info<std::uint32_t>(clGetPipeInfo{request.result}, CL_PIPE_PACKET_SIZE), 4U);
        EXPECT_EQ(s.info<std::uint32_t>(clGetPipeInfo{request.result}, CL_PIPE_MAX_PACKETS), 16U);
        s.ok(clReleaseMemObject{request.result});
    } else {
        s.refused(clGetPipeInfo{.pipe = make_buffer(s), .param_name = CL_PIPE_PACKET_SIZE}, CL_INVALID_MEM_OBJECT);
    }
}

} // namespace nq::block::contract
