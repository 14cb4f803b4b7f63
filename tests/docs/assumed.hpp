#pragma once

// What the examples in the comments of the public headers leave out: each is compiled within the namespace for its
// folder.

#include <nq/describe.hpp>
#include <nq/nq.hpp>
#include <vorn/mero/easy.hpp>
#include <vorn/mero/easy/binary_cache.hpp>
#include <vorn/mero/easy/borders.hpp>
#include <vorn/mero/easy/devices.hpp>
#include <vorn/mero/easy/image.hpp>
#include <vorn/mero/easy/sampler.hpp>
#include <vorn/mero/easy/shared.hpp>
#include <vorn/mero/easy/split.hpp>
#include <vorn/mero/easy/tune.hpp>
#include <vorn/mero/internal/call_capability.hpp>
#include <vorn/mero/internal/check_error.hpp>
#include <vorn/mero/internal/logger.hpp>
#include <vorn/mero/opencl.hpp>

#include <cstdio>
#include <stdexcept>
#include <unordered_map>

namespace ez = vorn::mero::easy;

namespace my {
struct matrix {
    ez::array<float> elements;
};
} // namespace my

struct table {
    template <class Block>
    void add();
};

int clEnqueueSomething(_nq_cl_command_queue* queue);

// NOLINTBEGIN(bugprone-macro-parentheses): they are names
#define EXACT_INTERFACE(version, queue_class)                                                                          \
    namespace cl = vorn::mero::version;                                                                                \
    extern cl::device device;                                                                                          \
    extern cl::platform platform;                                                                                      \
    extern cl::context context;                                                                                        \
    extern cl::queue_class queue;                                                                                      \
    extern cl::buffer buffer;                                                                                          \
    extern cl::image_2d image;                                                                                         \
    extern cl::program program;                                                                                        \
    extern cl::kernel kernel;                                                                                          \
    extern cl::nd_range_kernel launch;                                                                                 \
    extern cl::read_buffer command;                                                                                    \
    extern std::vector<cl::device> devices;                                                                            \
    extern nq::call_handle call_handle;                                                                                \
    extern nq_call_handle* handle;                                                                                     \
    extern _nq_cl_command_queue* raw_queue;                                                                            \
    extern _nq_cl_event* raw_event;                                                                                    \
    extern std::uint32_t id;                                                                                           \
    extern std::size_t bytes, count, needed_bytes;                                                                     \
    extern char const* text;                                                                                           \
    extern float *values, *memory, *tile, *input, *output;                                                             \
    void work(void* arguments);                                                                                        \
    void fall_back_to_smaller_groups();                                                                                \
    void report(int code, char const* message);
// NOLINTEND(bugprone-macro-parentheses)

namespace exact_1_2 {
EXACT_INTERFACE(opencl_1_2, command_queue)
} // namespace exact_1_2

namespace exact_2_0 {
EXACT_INTERFACE(opencl_2_0, host_command_queue)
} // namespace exact_2_0

namespace layer {
namespace cl = vorn::mero::opencl_1_2;
extern ez::session gpu;
extern ez::array<float> a, b, c, first, second, numbers;
extern ez::image2d<ez::rgba8> picture, result;
extern ez::program program;
extern ez::kernel add, scale, blur, invert, sum, kernel;
extern ez::basic_kernel<200> walk, grow;
extern ez::event earlier;
extern std::vector<std::array<std::uint8_t, 4>> pixels;
extern ez::user_event loaded;
extern std::vector<float> values;
extern char const *source, *kernel_source, *helpers_source, *first_source;
extern std::size_t w, h, width, height, bytes;
struct node {};
void read_file();
void work_that_may_throw();
void other_work();
void link(ez::mapped_shared<node, 200> const& nodes);
extern cl_context their_context;
extern cl_command_queue their_queue;
extern cl_mem their_memory;
extern cl_event their_event;
void their_sum(cl_command_queue queue, cl_mem memory, std::size_t count);
} // namespace layer
