#pragma once

// What the tests of commands, queues and events share.

#include "support.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <numeric>
#include <thread>

namespace real {

using box = std::array<std::size_t, 3>;
using bytes = std::vector<unsigned char>;
using numbers = std::vector<std::int32_t>;

/// `count` values from `first` on, each one more than the one before.
template <class T = std::int32_t>
std::vector<T> counting(std::size_t count, T first = 1) {
    std::vector<T> values(count);
    std::iota(values.begin(), values.end(), first);
    return values;
}

/// Prints on which thread OpenCL called a function of the program.
inline void tell_thread(char const* what, std::thread::id caller) {
    std::printf("%s ran on %s\n", what,
                caller == std::this_thread::get_id() ? "the thread that waited" : "a thread of the implementation");
}

void add_buffer_commands();
void add_image_commands();
void add_kernel_commands();
void add_queues();
void add_events();
void add_shared_virtual_memory();
void add_device_queues_and_pipes();
void add_extensions();

} // namespace real
