#pragma once

// The operations to compare, and the interfaces to OpenCL that perform them.

#define CL_TARGET_OPENCL_VERSION 300
#define CL_USE_DEPRECATED_OPENCL_1_2_APIS
#include <CL/cl.h>

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace bench {

/// One operation of one interface.
struct operation {
    std::string name;
    std::function<void(int)> run; // the number of times
};

/// One interface to OpenCL, with its own objects on the tested device.
struct contender {
    std::string name;
    std::string missing; // why it is left out; empty if it takes part
    std::vector<operation> operations;
    std::function<void()> finish; // waits until its commands are complete
};

// The first has every operation, the others those that they support.
contender c_api(cl_device_id device);
contender library(cl_device_id device);
contender easy(cl_device_id device); // the library's convenient layer
contender khronos_bindings(cl_device_id device);
contender boost_compute(cl_device_id device);

inline constexpr std::array<std::size_t, 3> origin{0, 0, 0};
inline constexpr std::size_t work_items = 64;
inline constexpr std::size_t group_size = 8;
inline constexpr std::array<std::size_t, 3> box{8, 8, 1}; // bytes of buffers, pixels of images
inline constexpr std::size_t buffer_size = 4096;
inline constexpr std::size_t bytes = 64;
inline constexpr std::size_t image_side = 16;
inline constexpr cl_uint pattern = 7;
inline constexpr char const* program_text =
    "kernel void nothing(global uchar* memory) {}"
    "kernel void add(global float const* a, global float const* b, global float* sum)"
    "{ size_t i = get_global_id(0); sum[i] = a[i] + b[i]; }";

/// No argument of a kernel has this index. The OpenCL that does nothing returns 1000 minus the index as status.
inline constexpr cl_uint invalid_index = 1049;

/// Host memory that commands read and write.
inline std::array<unsigned char, buffer_size> host{};

/// The operations of a contender on its objects.
template <class Objects>
class rows {
public:
    rows(contender& to, std::shared_ptr<Objects> objects) : to_(to), objects_(std::move(objects)) {}

    template <class Operation>
    void operator()(char const* name, Operation operation) {
        (*this)(name, operation, [](Objects&) {});
    }

    /// `prepare` runs before each loop.
    template <class Operation, class Prepare>
    void operator()(char const* name, Operation, Prepare) {
        static_assert(std::is_empty_v<Operation> && std::is_empty_v<Prepare>);
        to_.operations.push_back({name, [objects = objects_](int count) {
                                      Objects& on = *objects;
                                      Prepare{}(on);
                                      for (int i = 0; i != count; ++i) {
                                          Operation{}(on);
                                      }
                                  }});
    }

private:
    contender& to_;
    std::shared_ptr<Objects> objects_;
};

/// Keeps the compiler from removing an unused value.
template <class T>
void keep(T const& value) {
    asm volatile("" : : "r"(&value) : "memory");
}

} // namespace bench
