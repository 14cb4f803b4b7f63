#include "scenario.hpp"

#include <numeric>

namespace contract {

using namespace nq::block;

numbers counting_from(std::int32_t first) {
    numbers values{};
    std::iota(values.begin(), values.end(), first);
    return values;
}

namespace {

void count_call(_nq_cl_mem*, void* counter) {
    if (counter != nullptr) {
        ++*static_cast<std::atomic<int>*>(counter);
    }
}

template <nq::capability Version>
void transfers(session<Version>& s, _nq_cl_mem* first, _nq_cl_mem* second) {
    auto const values = counting_from(1000);
    s.ok(clEnqueueWriteBuffer{
        .command_queue = s.queue, .buffer = first, .size = sizeof values, .ptr = &values, .blocking_write = 1});
    EXPECT_EQ(read(s, first), values);
    s.ok(clEnqueueCopyBuffer{
        .command_queue = s.queue, .src_buffer = first, .dst_buffer = second, .size = sizeof values});
    EXPECT_EQ(read(s, second), values);
    auto const mapped = s.ok(clEnqueueMapBuffer{
        .map_flags = map_read, .command_queue = s.queue, .buffer = second, .offset = 4, .size = 8, .blocking_map = 1});
    EXPECT_EQ(*static_cast<std::int32_t*>(mapped.result), 1001);
    s.ok(clEnqueueUnmapMemObject{.command_queue = s.queue, .memobj = second, .mapped_ptr = mapped.result});
}

// Rectangles of 2 rows of 8 bytes out of rows of 16.
template <nq::capability Version>
void rectangles(session<Version>& s, _nq_cl_mem* first, _nq_cl_mem* second) {
    using triple = std::array<std::size_t, 3>;
    triple const corner{0, 0, 0};
    triple const inner{8, 1, 0};
    triple const region{8, 2, 1};
    std::array<std::int32_t, 4> const source{1, 2, 3, 4};
    s.ok(clEnqueueWriteBufferRect{.command_queue = s.queue,
                                  .buffer = first,
                                  .buffer_origin = inner.data(),
                                  .host_origin = corner.data(),
                                  .region = region.data(),
                                  .buffer_row_pitch = 16,
                                  .host_row_pitch = 8,
                                  .ptr = &source,
                                  .blocking_write = 1});
    auto const written = read(s, first);
    EXPECT_EQ((std::array{written[6], written[7], written[10], written[11]}), source);
    s.ok(clEnqueueCopyBufferRect{.command_queue = s.queue,
                                 .src_buffer = first,
                                 .dst_buffer = second,
                                 .src_origin = inner.data(),
                                 .dst_origin = corner.data(),
                                 .region = region.data(),
                                 .src_row_pitch = 16,
                                 .dst_row_pitch = 16});
    std::array<std::int32_t, 4> target{};
    s.ok(clEnqueueReadBufferRect{.command_queue = s.queue,
                                 .buffer = second,
                                 .buffer_origin = corner.data(),
                                 .host_origin = corner.data(),
                                 .region = region.data(),
                                 .buffer_row_pitch = 16,
                                 .host_row_pitch = 8,
                                 .ptr = &target,
                                 .blocking_read = 1});
    EXPECT_EQ(target, source);
}

template <nq::capability Version>
void sub_buffer(session<Version>& s, _nq_cl_mem* whole) {
    nq::buffer_region const half{sizeof(numbers) / 2, sizeof(numbers) / 2};
    auto* const part = s.ok(clCreateSubBuffer{.flags = mem_read_write,
                                              .buffer = whole,
                                              .buffer_create_info = &half,
                                              .buffer_create_type = buffer_create_region})
                           .result;
    EXPECT_EQ(s.template info<_nq_cl_mem*>(clGetMemObjectInfo{part}, mem_associated), whole);
    std::int32_t const value = 77;
    s.ok(clEnqueueWriteBuffer{
        .command_queue = s.queue, .buffer = part, .size = sizeof value, .ptr = &value, .blocking_write = 1});
    EXPECT_EQ(read(s, whole)[length / 2], value);
    std::atomic<int> destroyed = 0;
    s.ok(clSetMemObjectDestructorCallback{.memobj = part, .pfn_notify = count_call, .user_data = &destroyed});
    s.ok(clReleaseMemObject{part});
    EXPECT_EQ(destroyed, 1);
}

template <nq::capability Version>
void fill_and_migrate(session<Version>& s, _nq_cl_mem* buffer) {
    std::int32_t const pattern = 5;
    s.ok(clEnqueueFillBuffer{.command_queue = s.queue,
                             .buffer = buffer,
                             .pattern = &pattern,
                             .pattern_size = sizeof pattern,
                             .offset = 4,
                             .size = 8});
    s.ok(clEnqueueMigrateMemObjects{
        .flags = migrate_to_host, .command_queue = s.queue, .mem_objects = &buffer, .num_mem_objects = 1});
    auto const values = read(s, buffer);
    EXPECT_NE(values[0], pattern);
    EXPECT_EQ((std::array{values[1], values[2]}), (std::array{pattern, pattern}));
    EXPECT_NE(values[3], pattern);
}

} // namespace

template <nq::capability Version>
void buffers(session<Version>& s) {
    auto const values = counting_from(1);
    auto* const first = make_buffer(s, values);
    auto* const second = make_buffer(s, numbers{});
    EXPECT_EQ(read(s, first), values);
    EXPECT_EQ(s.template info<std::size_t>(clGetMemObjectInfo{first}, mem_size), sizeof values);
    s.template references<clRetainMemObject, clReleaseMemObject, clGetMemObjectInfo>(first, mem_reference_count);
    transfers(s, first, second);
    if constexpr (nq::has_command<Version, clEnqueueReadBufferRect>) {
        rectangles(s, first, second);
        sub_buffer(s, first);
    }
    if constexpr (nq::has_command<Version, clEnqueueFillBuffer>) {
        fill_and_migrate(s, second);
    }
    s.ok(clReleaseMemObject{first});
    s.ok(clReleaseMemObject{second});
}
CONTRACT_INSTANTIATE(buffers);

} // namespace contract
