#include "measure.hpp"
#include "operations.hpp"

#include <array>
#include <memory>

namespace bench {
namespace {

constexpr std::array<std::size_t, 3> origin{0, 0, 0};
constexpr std::array<std::size_t, 3> region{4, 4, 1};
constexpr std::array<cl_uint, 4> color{1, 2, 3, 4};

struct images {
    explicit images(fixture& on)
        : first(on.context.create_image_2d(mero::mem_flags::read_write, format, 16, 16, 0, nullptr)),
          second(on.context.create_image_2d(mero::mem_flags::read_write, format, 16, 16, 0, nullptr)) {}

    static constexpr mero::image_format format{mero::image_channel_order::rgba,
                                               mero::image_channel_type::unsigned_int8};
    mero::image_2d first;
    mero::image_2d second;
};

void compare_transfers(fixture& on, std::shared_ptr<images> const& of, std::function<void()> const& finish) {
    auto const queue = on.raw_queue();
    auto const image = on.raw(of->first);
    auto* const host = on.host.data();
    compare(
        "read_image",
        [=] {
            c_api().clEnqueueReadImage(queue, image, CL_FALSE, origin.data(), region.data(), 0, 0, host, 0, nullptr,
                                       nullptr);
        },
        [&on, of, host] {
            on.queue.enqueue_command_without_event(mero::read_image(of->first, false, origin, region, 0, 0, host));
        },
        finish);
    compare(
        "write_image",
        [=] {
            c_api().clEnqueueWriteImage(queue, image, CL_FALSE, origin.data(), region.data(), 0, 0, host, 0, nullptr,
                                        nullptr);
        },
        [&on, of, host] {
            on.queue.enqueue_command_without_event(mero::write_image(of->first, false, origin, region, 0, 0, host));
        },
        finish);
    compare(
        "map_image+unmap_mem_object",
        [=] {
            std::size_t row = 0;
            std::size_t slice = 0;
            void* const mapped = c_api().clEnqueueMapImage(queue, image, CL_FALSE, CL_MAP_READ, origin.data(),
                                                           region.data(), &row, &slice, 0, nullptr, nullptr, nullptr);
            c_api().clEnqueueUnmapMemObject(queue, image, mapped, 0, nullptr, nullptr);
        },
        [&on, of] {
            void* mapped = nullptr;
            std::size_t row = 0;
            std::size_t slice = 0;
            on.queue.enqueue_command_without_event(
                mero::map_image(mapped, of->first, false, mero::map_flags::read, origin, region, row, slice));
            on.queue.enqueue_command_without_event(mero::unmap_mem_object(of->first, mapped));
        },
        finish);
}

void compare_moves(fixture& on, std::shared_ptr<images> const& of, std::function<void()> const& finish) {
    auto const queue = on.raw_queue();
    auto const first = on.raw(of->first);
    auto const second = on.raw(of->second);
    auto const buffer = on.raw(on.a);
    compare(
        "copy_image",
        [=] {
            c_api().clEnqueueCopyImage(queue, first, second, origin.data(), origin.data(), region.data(), 0, nullptr,
                                       nullptr);
        },
        [&on, of] {
            on.queue.enqueue_command_without_event(mero::copy_image(of->first, of->second, origin, origin, region));
        },
        finish);
    compare(
        "copy_image_to_buffer",
        [=] {
            c_api().clEnqueueCopyImageToBuffer(queue, first, buffer, origin.data(), region.data(), 0, 0, nullptr,
                                               nullptr);
        },
        [&on, of] {
            on.queue.enqueue_command_without_event(mero::copy_image_to_buffer(of->first, on.a, origin, region, 0));
        },
        finish);
    compare(
        "copy_buffer_to_image",
        [=] {
            c_api().clEnqueueCopyBufferToImage(queue, buffer, first, 0, origin.data(), region.data(), 0, nullptr,
                                               nullptr);
        },
        [&on, of] {
            on.queue.enqueue_command_without_event(mero::copy_buffer_to_image(on.a, of->first, 0, origin, region));
        },
        finish);
    compare(
        "fill_image_base",
        [=] {
            c_api().clEnqueueFillImage(queue, first, color.data(), origin.data(), region.data(), 0, nullptr, nullptr);
        },
        [&on, of] {
            on.queue.enqueue_command_without_event(mero::fill_image_base(of->first, color.data(), origin, region));
        },
        finish);
}

} // namespace

void compare_image_commands(fixture& on) {
    std::function<void()> const finish = [&] { on.queue.finish(); };
    auto const of = std::make_shared<images>(on);
    compare_transfers(on, of, finish);
    compare_moves(on, of, finish);
}

} // namespace bench
