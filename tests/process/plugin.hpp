#pragma once

// What plugins and their host do to each other. The plugins are compiled by other compilers than the host.

#include <vorn/mero/opencl_1_2.hpp>

#include <memory>

struct plugin_functions {
    /// Throws `common::invalid_buffer_size`.
    void (*fail)(vorn::mero::opencl_1_2::context& context);
    /// Whether the plugin recognizes the same, thrown by the host.
    bool (*catches)(void (*fail)(void*), void* argument);
    std::unique_ptr<vorn::mero::opencl_1_2::memory_object> (*make)(vorn::mero::opencl_1_2::context& context);
    /// Puts objects where they are destroyed when the plugin is unloaded or the process ends.
    void (*keep)(vorn::mero::opencl_1_2::context const& context);
};
