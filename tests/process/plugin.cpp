#include "plugin.hpp"

#include <optional>

namespace {

using namespace vorn::mero;
namespace cl = opencl_1_2;

std::optional<cl::context> kept;
std::optional<cl::buffer> kept_buffer;

cl::buffer make_buffer(cl::context& context, std::size_t size) {
    return context.create_buffer(cl::mem_flags::read_write, size, nullptr);
}

void fail(cl::context& context) { auto const none = make_buffer(context, 0); }

bool catches(void (*host)(void*), void* argument) {
    try {
        host(argument);
    } catch (common::invalid_buffer_size const& caught) {
        return caught.code() == common::error_code::invalid_buffer_size;
    } catch (...) { // not recognized
    }
    return false;
}

std::unique_ptr<cl::memory_object> make(cl::context& context) {
    return std::make_unique<cl::buffer>(make_buffer(context, 64 * sizeof(int)));
}

void keep(cl::context const& context) {
    kept = context;
    kept_buffer = make_buffer(*kept, 64);
}

} // namespace

extern "C" __attribute__((visibility("default"))) plugin_functions const plugin{fail, catches, make, keep};
