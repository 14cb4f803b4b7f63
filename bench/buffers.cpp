#include "measure.hpp"
#include "operations.hpp"

#include <array>

namespace bench {
namespace {

constexpr std::array<std::size_t, 3> origin{0, 0, 0};
constexpr std::array<std::size_t, 3> box{8, 8, 1};
constexpr std::size_t bytes = 64;

void compare_copies(fixture& on, std::function<void()> const& finish) {
    auto const queue = on.raw_queue();
    auto const a = on.raw(on.a);
    auto const b = on.raw(on.b);
    auto* const host = on.host.data();
    compare(
        "read_buffer", [=] { c_api().clEnqueueReadBuffer(queue, a, CL_FALSE, 0, bytes, host, 0, nullptr, nullptr); },
        [&, host] { on.queue.enqueue_command_without_event(mero::read_buffer(on.a, false, 0, bytes, host)); }, finish);
    compare(
        "write_buffer", [=] { c_api().clEnqueueWriteBuffer(queue, a, CL_FALSE, 0, bytes, host, 0, nullptr, nullptr); },
        [&, host] { on.queue.enqueue_command_without_event(mero::write_buffer(on.a, false, 0, bytes, host)); }, finish);
    compare(
        "copy_buffer", [=] { c_api().clEnqueueCopyBuffer(queue, a, b, 0, 0, bytes, 0, nullptr, nullptr); },
        [&] { on.queue.enqueue_command_without_event(mero::copy_buffer(on.a, on.b, 0, 0, bytes)); }, finish);
    compare(
        "map_buffer+unmap_mem_object",
        [=] {
            void* const mapped =
                c_api().clEnqueueMapBuffer(queue, a, CL_FALSE, CL_MAP_READ, 0, bytes, 0, nullptr, nullptr, nullptr);
            c_api().clEnqueueUnmapMemObject(queue, a, mapped, 0, nullptr, nullptr);
        },
        [&] {
            void* mapped = nullptr;
            on.queue.enqueue_command_without_event(
                mero::map_buffer(mapped, on.a, false, mero::map_flags::read, 0, bytes));
            on.queue.enqueue_command_without_event(mero::unmap_mem_object(on.a, mapped));
        },
        finish);
}

void compare_boxes(fixture& on, std::function<void()> const& finish) {
    auto const queue = on.raw_queue();
    auto const a = on.raw(on.a);
    auto const b = on.raw(on.b);
    auto* const host = on.host.data();
    compare(
        "read_buffer_rect",
        [=] {
            c_api().clEnqueueReadBufferRect(queue, a, CL_FALSE, origin.data(), origin.data(), box.data(), 0, 0, 0, 0,
                                            host, 0, nullptr, nullptr);
        },
        [&, host] {
            on.queue.enqueue_command_without_event(
                mero::read_buffer_rect(on.a, false, origin, origin, box, 0, 0, 0, 0, host));
        },
        finish);
    compare(
        "write_buffer_rect",
        [=] {
            c_api().clEnqueueWriteBufferRect(queue, a, CL_FALSE, origin.data(), origin.data(), box.data(), 0, 0, 0, 0,
                                             host, 0, nullptr, nullptr);
        },
        [&, host] {
            on.queue.enqueue_command_without_event(
                mero::write_buffer_rect(on.a, false, origin, origin, box, 0, 0, 0, 0, host));
        },
        finish);
    compare(
        "copy_buffer_rect",
        [=] {
            c_api().clEnqueueCopyBufferRect(queue, a, b, origin.data(), origin.data(), box.data(), 0, 0, 0, 0, 0,
                                            nullptr, nullptr);
        },
        [&] {
            on.queue.enqueue_command_without_event(mero::copy_buffer_rect(on.a, on.b, origin, origin, box, 0, 0, 0, 0));
        },
        finish);
}

void compare_fills(fixture& on, std::function<void()> const& finish) {
    auto const queue = on.raw_queue();
    auto const a = on.raw(on.a);
    static constexpr cl_uint pattern = 7;
    auto const fill = [=] {
        c_api().clEnqueueFillBuffer(queue, a, &pattern, sizeof pattern, 0, bytes, 0, nullptr, nullptr);
    };
    compare(
        "fill_buffer_base", fill,
        [&] {
            on.queue.enqueue_command_without_event(
                mero::fill_buffer_base(on.a, &pattern, sizeof pattern, 0, bytes / sizeof pattern));
        },
        finish);
    compare(
        "fill_buffer_bytes", fill,
        [&, command = mero::fill_buffer_bytes(on.a, {7, 0, 0, 0}, 0, bytes / sizeof pattern)] {
            on.queue.enqueue_command_without_event(command);
        },
        finish);
    compare(
        "migrate_mem_objects", [=] { c_api().clEnqueueMigrateMemObjects(queue, 1, &a, 0, 0, nullptr, nullptr); },
        [&, command = mero::migrate_mem_objects({mero::raw::get_raw_memory_object(on.a)}, mero::migration_flags{})] {
            on.queue.enqueue_command_without_event(command);
        },
        finish);
}

} // namespace

void compare_buffer_commands(fixture& on) {
    std::function<void()> const finish = [&] { on.queue.finish(); };
    compare_copies(on, finish);
    compare_boxes(on, finish);
    compare_fills(on, finish);
}

} // namespace bench
